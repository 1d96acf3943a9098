// Writing and reading a 1M-row, 8-column attribute table file (about 75 MB), beside Python's
// csv module and pandas on the same file in the same run (bench/table_peers.py, run with
// Debian's python3 and python3-pandas). Each reader runs in its own process so that its peak
// memory is its own. Prints our time over each peer's.
#include "matrix/MatrixData.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <memory>

namespace {

constexpr int kRows = 1000000, kColumns = 8;

std::unique_ptr<rkBase::MatrixData> makeTable()
{
    auto root = std::make_unique<rkBase::MatrixData>(QStringLiteral("table"), 0, 1, QVariant::Double, false);
    auto* group = new rkBase::MatrixData(QStringLiteral("bench"), 0, 1, QVariant::Double, false);
    root->appendChild(group, false);
    for (int c = 0; c < kColumns; ++c) {
        auto* leaf = new rkBase::MatrixData(QStringLiteral("c%1").arg(c), kRows, 1, QVariant::Double, true);
        for (int r = 0; r < kRows; ++r)
            leaf->setDouble(r, 0, (r * kColumns + c) * 0.5);
        group->appendChild(leaf, false);
    }
    return root;
}

// Seconds (as `work` measures them) and peak kilobytes of `work` run in a child process.
std::pair<double, long> inChild(const std::function<double()>& work)
{
    int pipeFd[2];
    if (pipe(pipeFd) != 0)
        return {-1, -1};
    const pid_t pid = fork();
    if (pid == 0) {
        close(pipeFd[0]);
        const double seconds = work();
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        const double out[2] = {seconds, double(usage.ru_maxrss)};
        (void)!write(pipeFd[1], out, sizeof out);
        _exit(0);
    }
    close(pipeFd[1]);
    double in[2] = {-1, -1};
    (void)!read(pipeFd[0], in, sizeof in);
    close(pipeFd[0]);
    waitpid(pid, nullptr, 0);
    return {in[0], long(in[1])};
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("table.csv"));
    const QString ourOut = dir.filePath(QStringLiteral("ours_written.csv"));

    // Write once to have the file (in the parent), then time a write in a child.
    makeTable()->writeCSV(file, nullptr, true, false, false, false, nullptr);
    std::printf("file: %.1f MB, %d rows x %d columns\n", QFileInfo(file).size() / 1e6, kRows, kColumns);
    const auto write = inChild([&] {
        auto table = makeTable();
        QElapsedTimer t;
        t.start();
        table->writeCSV(ourOut, nullptr, true, false, false, false, nullptr);
        return t.nsecsElapsed() / 1e9;
    });
    const auto read = inChild([&] {
        QElapsedTimer t;
        t.start();
        rkBase::MatrixData root(QStringLiteral("table"), 0, 1, QVariant::Double, false);
        root.readCSV(file, 0);
        return t.nsecsElapsed() / 1e9;
    });

    const QString python = QStringLiteral("/usr/bin/python3");
    const QString script = QStringLiteral(RKBASE_BENCH_DIR "/table_peers.py");
    QProcess peers;
    peers.start(python, {script, file, QStringLiteral("7"), QString::number(kColumns), dir.filePath("pandas.csv")});
    peers.waitForFinished(-1);
    const QJsonObject result = QJsonDocument::fromJson(peers.readAllStandardOutput()).object();
    const auto seconds = [&](const char* step) { return result.value(QLatin1String(step)).toObject().value("seconds").toDouble(-1); };
    const auto peak = [&](const char* step) { return result.value(QLatin1String(step)).toObject().value("peak_kb").toDouble(-1); };

    std::printf("\n%-28s %10s %12s\n", "step", "seconds", "peak MB");
    std::printf("%-28s %10.2f %12.0f\n", "our read (readCSV)", read.first, read.second / 1024.0);
    std::printf("%-28s %10.2f %12.0f\n", "Python csv read", seconds("csv"), peak("csv") / 1024.0);
    std::printf("%-28s %10.2f %12.0f\n", "pandas read_csv", seconds("pandas_read"), peak("pandas_read") / 1024.0);
    std::printf("%-28s %10.2f %12s\n", "our write (writeCSV)", write.first, "-");
    std::printf("%-28s %10.2f %12s\n", "pandas to_csv", seconds("pandas_write"), "-");
    std::printf("\n%-44s %8s %8s\n", "ratio", "value", "target");
    if (seconds("csv") > 0)
        std::printf("%-44s %8.2f %8s\n", "our read / Python csv read", read.first / seconds("csv"), "0.5");
    if (seconds("pandas_read") > 0)
        std::printf("%-44s %8.2f %8s\n", "our read / pandas read_csv", read.first / seconds("pandas_read"), "-");
    if (seconds("pandas_write") > 0)
        std::printf("%-44s %8.2f %8s\n", "our write / pandas to_csv", write.first / seconds("pandas_write"), "-");
    if (result.isEmpty())
        std::printf("(peers not run: %s)\n", qPrintable(QString::fromUtf8(peers.readAllStandardError()).left(200)));
    return 0;
}
