// Zipping and unzipping a generated 300 MB tree of mixed files (text that compresses, random
// bytes that do not, and .png files that are stored), beside Info-ZIP's `zip -4 -r -q` and
// `unzip -q` on the same tree in the same run. Prints our time over theirs.
#include "archive/RKUnzip.h"
#include "archive/RKZip.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>

namespace {

void makeTree(const QString& root)
{
    QRandomGenerator rng(42);
    qint64 written = 0;
    int n = 0;
    const QByteArray words = "granite gneiss schist fault fold hinge strike dip plunge azimuth outcrop ";
    while (written < 300LL * 1000 * 1000) {
        const QString dir = root + QStringLiteral("/d%1/e%2").arg(n % 17).arg(n % 5);
        QDir().mkpath(dir);
        QByteArray data;
        const int kind = n % 3;
        const int size = 200000 + int(rng.bounded(3000000));
        data.resize(size);
        if (kind == 0) { // text
            for (int i = 0; i < size; ++i)
                data[i] = words[(i * 7 + n) % words.size()];
        } else { // random bytes, as a .bin or a .png
            rng.fillRange(reinterpret_cast<quint32*>(data.data()), size / 4);
        }
        const char* suffix = kind == 0 ? "txt" : kind == 1 ? "bin" : "png";
        QFile f(dir + QStringLiteral("/f%1.%2").arg(n).arg(QLatin1String(suffix)));
        f.open(QIODevice::WriteOnly);
        f.write(data);
        written += size;
        ++n;
    }
    std::printf("tree: %d files, %.0f MB\n", n, written / 1e6);
}

double timed(const std::function<bool()>& work)
{
    QElapsedTimer t;
    t.start();
    const bool ok = work();
    const double s = t.nsecsElapsed() / 1e9;
    return ok ? s : -s;
}

bool run(const QString& program, const QStringList& args, const QString& dir = QString())
{
    QProcess p;
    if (!dir.isEmpty())
        p.setWorkingDirectory(dir);
    p.start(program, args);
    return p.waitForFinished(-1) && p.exitCode() == 0;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString tree = dir.filePath("tree");
    makeTree(tree);
    run("sync", {});
    const double ourZip = timed([&] {
        rkBase::RKZip zip;
        return zip.create(dir.filePath("ours.zip")) && zip.addFolder(tree, nullptr, nullptr);
    });
    const bool haveInfoZip = !QStandardPaths::findExecutable("zip").isEmpty() && !QStandardPaths::findExecutable("unzip").isEmpty();
    const double theirZip = haveInfoZip ? timed([&] { return run("zip", {"-4", "-r", "-q", dir.filePath("theirs.zip"), "."}, tree); }) : -1;
    const double ourUnzip = timed([&] {
        rkBase::RKUnzip unzip;
        QString error;
        return unzip.open(dir.filePath("ours.zip"), error) && unzip.extract(dir.filePath("ours_out"), nullptr, nullptr);
    });
    const double theirUnzip =
        haveInfoZip ? timed([&] { return run("unzip", {"-q", dir.filePath("ours.zip"), "-d", dir.filePath("theirs_out")}); }) : -1;
    std::printf("\n%-22s %10s %10s\n", "step", "seconds", "MB");
    std::printf("%-22s %10.2f %10.0f\n", "our zip", ourZip, QFileInfo(dir.filePath("ours.zip")).size() / 1e6);
    std::printf("%-22s %10.2f %10.0f\n", "Info-ZIP zip -4", theirZip, QFileInfo(dir.filePath("theirs.zip")).size() / 1e6);
    std::printf("%-22s %10.2f\n", "our unzip", ourUnzip);
    std::printf("%-22s %10.2f\n", "Info-ZIP unzip", theirUnzip);
    if (theirZip > 0 && theirUnzip > 0) {
        std::printf("\n%-30s %8s %8s\n", "ratio", "value", "target");
        std::printf("%-30s %8.2f %8s\n", "our zip / zip -4", ourZip / theirZip, "1.0");
        std::printf("%-30s %8.2f %8s\n", "our unzip / unzip", ourUnzip / theirUnzip, "1.0");
    }
    return 0;
}
