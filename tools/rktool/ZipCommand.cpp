#include "Cli.h"
#include "TerminalProgress.h"

#include "archive/RKUnzip.h"
#include "archive/RKZip.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>

namespace rktool {
namespace {

// The archive classes report percentages through a plain callback; the bar answers whether to
// go on (Ctrl-C makes it say no).
bool report(void* data, int percent)
{
    auto* bar = static_cast<TerminalProgress*>(data);
    return !bar->set_progress(percent);
}

int runZip(Args& args, Io& io)
{
    const QStringList p = args.expect(2, QStringLiteral("<folder> <archive.zip>"));
    if (!QFileInfo(p[0]).isDir())
        throw Failure{QStringLiteral("not a folder: %1").arg(p[0])};
    const QString target = QFileInfo(p[1]).absoluteFilePath();
    if (target.startsWith(QFileInfo(p[0]).absoluteFilePath() + QLatin1Char('/')))
        throw Failure{QStringLiteral("the archive would be inside the folder it holds; put it elsewhere")};
    rkBase::RKZip zip;
    if (!zip.create(p[1]))
        throw Failure{QStringLiteral("cannot create %1").arg(p[1])};
    TerminalProgress bar;
    bar.set_caption(QStringLiteral("zipping"));
    bar.start_progress(true);
    const bool ok = zip.addFolder(p[0], &report, &bar);
    bar.finish_progress();
    zip.close();
    if (!ok)
        throw Failure{bar.is_cancelled() ? QStringLiteral("cancelled; %1 holds what was written so far").arg(p[1])
                                         : QStringLiteral("cannot add %1 to %2 (a file could not be read or written)").arg(p[0], p[1])};
    io.out << "wrote " << p[1] << "\n";
    return Success;
}

int runUnzip(Args& args, Io& io)
{
    const bool list = args.flag(QStringLiteral("--list"));
    const bool json = args.flag(QStringLiteral("--json"));
    const QStringList p = args.expect(list ? 1 : 2, list ? QStringLiteral("<archive.zip>") : QStringLiteral("<archive.zip> <folder>"));
    rkBase::RKUnzip unzip;
    QString error;
    if (!unzip.open(p[0], error))
        throw Failure{QStringLiteral("%1: %2").arg(p[0], error)};
    if (list) {
        const QStringList names = unzip.entries();
        if (json)
            io.out << QJsonDocument(QJsonArray::fromStringList(names)).toJson(QJsonDocument::Indented);
        else
            for (const QString& n : names)
                io.out << n << "\n";
        return Success;
    }
    TerminalProgress bar;
    bar.set_caption(QStringLiteral("unzipping"));
    bar.start_progress(true);
    const bool ok = unzip.extract(p[1], &report, &bar);
    bar.finish_progress();
    if (!ok)
        throw Failure{bar.is_cancelled()
                          ? QStringLiteral("cancelled; %1 keeps what was written so far").arg(p[1])
                          : QStringLiteral("cannot extract %1: an entry would leave the folder, is damaged, or could not be written")
                                .arg(p[0])};
    io.out << "extracted " << p[0] << " into " << p[1] << "\n";
    return Success;
}

const AreaRegistration zipArea{
    Area{40, QStringLiteral("zip"), QStringLiteral("zip a folder into an archive"),
         QStringLiteral("Usage: rktool zip <folder> <archive.zip>\n\n"
                        "Writes everything below the folder (not its own name) into the archive: folders\n"
                        "first, names in UTF-8, compressed kinds (.png, .jpg, .gz, .zip, ...) stored and\n"
                        "the rest deflated, files of 4 GiB and more with Zip64. Ctrl-C stops cleanly and\n"
                        "leaves what was written. Exit codes: 0 done, 1 failed or cancelled, 2 bad usage.\n"),
         [](Args& args, Io& io) { return runZip(args, io); }, nullptr}};

const AreaRegistration unzipArea{
    Area{41, QStringLiteral("unzip"), QStringLiteral("list or extract a zip archive"),
         QStringLiteral("Usage: rktool unzip <archive.zip> <folder>\n"
                        "       rktool unzip --list <archive.zip> [--json]\n\n"
                        "Extracts every entry below the folder. An archive with an entry that would land\n"
                        "outside the folder (absolute, a drive letter, \"..\") is refused before anything is\n"
                        "written; links are written as plain files and never followed. Names without the\n"
                        "UTF-8 flag that are not UTF-8 are read as code page 437. Ctrl-C stops cleanly.\n"
                        "Exit codes: 0 done, 1 failed or cancelled, 2 bad usage.\n"),
         [](Args& args, Io& io) { return runUnzip(args, io); }, nullptr}};

} // namespace
} // namespace rktool
