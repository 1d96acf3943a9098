// rktool: puts each subsystem of the library to work from the command line.
#include "Cli.h"

#include "frame/rkProductInfo.h"

#include <QApplication>

#include <exception>
#include <memory>

using namespace rktool;

namespace {

void printMainHelp(QTextStream& s)
{
    s << "Usage: rktool <area> [verb] [options] [files]\n"
         "       rktool <area> --help     (or: rktool help <area>)\n"
         "       rktool --version\n\n"
         "Works with the rkBaseQt library from the command line.\n\n"
         "Areas:\n";
    for (const Area& a : areas())
        s << "  " << a.name.leftJustified(10) << " " << a.summary << "\n";
    s << "\nExit codes: 0 success, 1 the operation failed (reason on stderr), 2 bad usage.\n";
}

const Area* findArea(const QString& name)
{
    for (const Area& a : areas())
        if (a.name == name)
            return &a;
    return nullptr;
}

} // namespace

int main(int argc, char** argv)
{
    // Legends are drawn with fonts, which need a GUI application; the areas that draw get one,
    // offscreen unless told otherwise (a command-line tool has no display), and the others stay
    // a plain core application that starts fast and says nothing about displays.
    const bool draws = argc > 1 && QByteArray(argv[1]) == "colormap";
    if (draws && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    std::unique_ptr<QCoreApplication> application(draws ? new QApplication(argc, argv) : new QCoreApplication(argc, argv));
    QCoreApplication& app = *application;
    rkBase::rkProductInfo::instance().init("rktool");
    Io io;

    QStringList args = app.arguments().mid(1);
    if (args.isEmpty()) {
        printMainHelp(io.err);
        return BadUsage;
    }
    QString first = args.takeFirst();
    if (first == QLatin1String("help") && !args.isEmpty()) {
        // "rktool help units" is "rktool units --help".
        first = args.takeFirst();
        if (!args.isEmpty()) {
            io.err << "rktool: 'help' takes one area; see 'rktool --help'\n";
            return BadUsage;
        }
        args << QStringLiteral("--help");
    } else if (first == QLatin1String("--help") || first == QLatin1String("-h") || first == QLatin1String("help")) {
        printMainHelp(io.out);
        return Success;
    } else if (first == QLatin1String("--version") || first == QLatin1String("-V")) {
        first = QStringLiteral("version");
    }
    const Area* area = findArea(first);
    if (!area) {
        io.err << "rktool: unknown area '" << first << "'; see 'rktool --help'\n";
        return BadUsage;
    }
    if (args.contains(QLatin1String("--help")) || args.contains(QLatin1String("-h"))) {
        io.out << area->help;
        return Success;
    }
    try {
        Args parsed(args);
        return area->run(parsed, io);
    } catch (const UsageError& e) {
        io.err << "rktool " << area->name << ": " << e.message << "; see 'rktool " << area->name << " --help'\n";
        return BadUsage;
    } catch (const Failure& e) {
        io.err << "rktool " << area->name << ": " << e.message << "\n";
        return Failed;
    } catch (const std::exception& e) {
        io.err << "rktool " << area->name << ": " << e.what() << "\n";
        return Failed;
    }
}
