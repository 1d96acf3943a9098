// Archives come from anywhere: opening and extracting arbitrary bytes must not crash, hang,
// allocate without bound or write outside the target folder.
#include "archive/RKUnzip.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir* work = new QTemporaryDir;
    const QString archive = work->filePath(QStringLiteral("in.zip"));
    const QString target = work->filePath(QStringLiteral("out"));
    {
        QFile f(archive);
        if (!f.open(QIODevice::WriteOnly))
            return 0;
        f.write(reinterpret_cast<const char*>(data), qint64(size));
    }
    rkBase::RKUnzip unzip;
    QString error;
    if (unzip.open(archive, error)) {
        unzip.entries();
        unzip.extract(target, nullptr, nullptr);
    }
    // Nothing may appear beside the two names the harness uses.
    for (const QString& name : QDir(work->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
        if (name != QLatin1String("in.zip") && name != QLatin1String("out"))
            std::abort();
    QDir(target).removeRecursively();
    return 0;
}
