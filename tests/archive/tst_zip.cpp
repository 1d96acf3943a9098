// Zip archives: round trips of real trees, the stored/deflated rule read back from the headers,
// Info-ZIP both ways, hostile archives that must write nothing outside the target, progress,
// empty archives and every archive of the corpus.
#include "archive/RKUnzip.h"
#include "archive/RKZip.h"

#include <QDirIterator>
#include <QProcess>
#include <QStorageInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

#include <minizip/unzip.h>
#include <minizip/zip.h>

using rkBase::RKUnzip;
using rkBase::RKZip;

namespace {

void writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

// Every file and folder below `root`, relative, folders ending in "/", with file contents.
QMap<QString, QByteArray> tree(const QString& root)
{
    QMap<QString, QByteArray> out;
    QDirIterator it(root, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString p = it.next();
        const QString rel = QDir(root).relativeFilePath(p);
        if (QFileInfo(p).isDir()) {
            out.insert(rel + QLatin1Char('/'), QByteArray());
        } else {
            QFile f(p);
            f.open(QIODevice::ReadOnly);
            out.insert(rel, f.readAll());
        }
    }
    return out;
}

// An archive with the given entry names, each holding its own name, written by the zip library.
void hostileArchive(const QString& path, const QList<QByteArray>& names)
{
    zipFile z = zipOpen64(QFile::encodeName(path).constData(), APPEND_STATUS_CREATE);
    QVERIFY(z);
    for (const QByteArray& name : names) {
        zip_fileinfo info{};
        QCOMPARE(zipOpenNewFileInZip64(z, name.constData(), &info, nullptr, 0, nullptr, 0, nullptr, Z_DEFLATED, 4, 0), ZIP_OK);
        zipWriteInFileInZip(z, name.constData(), unsigned(name.size()));
        zipCloseFileInZip(z);
    }
    zipClose(z, nullptr);
}

struct Progress {
    QList<int> seen;
    int stopAt = 1000;
    static bool call(void* data, int percent)
    {
        auto* self = static_cast<Progress*>(data);
        self->seen << percent;
        return percent < self->stopAt;
    }
};

QByteArray bytes(int n, int seed)
{
    QByteArray b(n, '\0');
    for (int i = 0; i < n; ++i)
        b[i] = char((i * 31 + seed * 7) % 251);
    return b;
}

} // namespace

class TestZip : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;
    QString at(const QString& name) const { return m_dir.filePath(name); }

    void makeSample(const QString& root)
    {
        writeFile(root + "/notes.txt", QByteArray(20000, 'a') + "end");
        writeFile(root + "/maps/outcrop map.png", bytes(30000, 1));
        writeFile(root + "/maps/SCAN.PNG", bytes(5000, 2));
        writeFile(root + "/maps/deep/log.gz", bytes(7000, 3));
        writeFile(root + QString::fromUtf8("/Gneiss \u00e9chantillon/r\u00f8d.txt"), "Fjell\n");
        writeFile(root + "/empty.dat", QByteArray());
        QDir().mkpath(root + "/nothing/inside");
    }

private slots:
    void roundTrip()
    {
        const QString src = at("src");
        makeSample(src);
        RKZip zip;
        QVERIFY(zip.create(at("sample.zip")));
        Progress progress;
        QVERIFY(zip.addFolder(src, &Progress::call, &progress));
        zip.close();
        QVERIFY(!progress.seen.isEmpty());
        QCOMPARE(progress.seen.last(), 100);
        QVERIFY(std::is_sorted(progress.seen.begin(), progress.seen.end()));

        // Stored or deflated, read back from the archive's own headers.
        unzFile u = unzOpen64(QFile::encodeName(at("sample.zip")).constData());
        QVERIFY(u);
        QMap<QString, int> methods;
        for (int r = unzGoToFirstFile(u); r == UNZ_OK; r = unzGoToNextFile(u)) {
            unz_file_info64 info{};
            char name[512] = {0};
            unzGetCurrentFileInfo64(u, &info, name, sizeof name, nullptr, 0, nullptr, 0);
            methods.insert(QString::fromUtf8(name), int(info.compression_method));
            QVERIFY(info.flag & 0x800); // names are flagged UTF-8
        }
        unzClose(u);
        QCOMPARE(methods.value("maps/outcrop map.png"), 0);
        QCOMPARE(methods.value("maps/SCAN.PNG"), 0);
        QCOMPARE(methods.value("maps/deep/log.gz"), 0);
        QCOMPARE(methods.value("notes.txt"), Z_DEFLATED);
        QVERIFY(methods.contains("nothing/inside/"));
        QVERIFY(!methods.keys().join(',').contains("src")); // the folder's own name is not in it

        RKUnzip unzip;
        QString error;
        QVERIFY(unzip.open(at("sample.zip"), error));
        QVERIFY(unzip.extract(at("out"), nullptr, nullptr));
        QCOMPARE(tree(at("out")), tree(src));
    }

    void infoZipBothWays()
    {
        if (QStandardPaths::findExecutable("unzip").isEmpty() || QStandardPaths::findExecutable("zip").isEmpty())
            QSKIP("Info-ZIP not installed");
        const QString src = at("iz");
        makeSample(src);
        RKZip zip;
        QVERIFY(zip.create(at("ours.zip")));
        QVERIFY(zip.addFolder(src, nullptr, nullptr));
        zip.close();
        QProcess test;
        test.start("unzip", {"-t", "-q", at("ours.zip")});
        QVERIFY(test.waitForFinished(60000));
        QVERIFY2(test.exitCode() == 0, test.readAllStandardOutput().constData());

        QProcess make;
        make.setWorkingDirectory(src);
        make.start("zip", {"-q", "-r", at("theirs.zip"), "."});
        QVERIFY(make.waitForFinished(60000));
        QCOMPARE(make.exitCode(), 0);
        RKUnzip unzip;
        QString error;
        QVERIFY(unzip.open(at("theirs.zip"), error));
        QVERIFY(unzip.extract(at("from_infozip"), nullptr, nullptr));
        QCOMPARE(tree(at("from_infozip")), tree(src));
    }

    void hostileNames_data()
    {
        QTest::addColumn<QList<QByteArray>>("names");
        QTest::newRow("climbing with /") << QList<QByteArray>{"fine.txt", "../evil.txt"};
        QTest::newRow("climbing inside a path") << QList<QByteArray>{"a/../../evil.txt"};
        QTest::newRow("climbing with backslash") << QList<QByteArray>{"..\\evil.txt"};
        QTest::newRow("absolute") << QList<QByteArray>{"/tmp/rkbase-evil.txt"};
        QTest::newRow("drive letter") << QList<QByteArray>{"C:/evil.txt"};
    }
    void hostileNames()
    {
        QFETCH(QList<QByteArray>, names);
        const QString archive = at("hostile.zip");
        QFile::remove(archive);
        hostileArchive(archive, names);
        const QString target = at("hostile_out/inner");
        QDir(at("hostile_out")).removeRecursively();
        RKUnzip unzip;
        QString error;
        QVERIFY(unzip.open(archive, error));
        QVERIFY(!unzip.extract(target, nullptr, nullptr));
        // Nothing at all was written: the names are checked before the first byte.
        QVERIFY(!QFileInfo::exists(at("hostile_out/evil.txt")));
        QVERIFY(!QFileInfo::exists(at("evil.txt")));
        QVERIFY(!QFileInfo::exists("/tmp/rkbase-evil.txt"));
        QVERIFY(!QFileInfo::exists(target + "/fine.txt"));
    }

    void noWritingThroughLinks()
    {
        const QString target = at("linked");
        QDir().mkpath(target);
        QVERIFY(QFile::link(at("outside_dir"), target + "/sub"));
        QDir().mkpath(at("outside_dir"));
        hostileArchive(at("link.zip"), {"sub/file.txt"});
        RKUnzip unzip;
        QString error;
        QVERIFY(unzip.open(at("link.zip"), error));
        QVERIFY(!unzip.extract(target, nullptr, nullptr));
        QVERIFY(!QFileInfo::exists(at("outside_dir/file.txt")));
    }

    void brokenArchives()
    {
        const QString src = at("b");
        writeFile(src + "/a.txt", bytes(50000, 9));
        RKZip zip;
        QVERIFY(zip.create(at("whole.zip")));
        QVERIFY(zip.addFolder(src, nullptr, nullptr));
        zip.close();
        QFile whole(at("whole.zip"));
        QVERIFY(whole.open(QIODevice::ReadOnly));
        const QByteArray all = whole.readAll();
        writeFile(at("truncated.zip"), all.left(all.size() / 2));
        QByteArray bogus = all;
        const int central = bogus.lastIndexOf(QByteArray("PK\x01\x02", 4));
        bogus[central + 20] = char(0xff); // compressed size made absurd
        bogus[central + 21] = char(0xff);
        bogus[central + 22] = char(0xff);
        writeFile(at("bogus.zip"), bogus);
        RKUnzip unzip;
        QString error;
        QVERIFY(!unzip.open(at("truncated.zip"), error));
        QCOMPARE(error, QStringLiteral("Error opening zip archive. Probably not a zip archive or file has been corrupted."));
        if (unzip.open(at("bogus.zip"), error))
            QVERIFY(!unzip.extract(at("bogus_out"), nullptr, nullptr));
        QVERIFY(!unzip.open(at("b"), error)); // a directory
        QCOMPARE(error, QStringLiteral("Given file does not exist"));
    }

    void emptyFoldersAndArchives()
    {
        QDir().mkpath(at("hollow/a/b"));
        RKZip zip;
        QVERIFY(zip.create(at("hollow.zip")));
        Progress progress;
        QVERIFY(zip.addFolder(at("hollow"), &Progress::call, &progress));
        zip.close();
        QVERIFY(progress.seen.isEmpty()); // no files, no progress
        RKUnzip unzip;
        QString error;
        QVERIFY(unzip.open(at("hollow.zip"), error));
        QVERIFY(unzip.extract(at("hollow_out"), nullptr, nullptr));
        QVERIFY(QFileInfo(at("hollow_out/a/b")).isDir());

        QDir().mkpath(at("void"));
        QVERIFY(zip.create(at("void.zip")));
        QVERIFY(zip.addFolder(at("void"), nullptr, nullptr));
        zip.close();
        QCOMPARE(QFileInfo(at("void.zip")).size(), 22); // the end record alone
        QVERIFY(unzip.open(at("void.zip"), error));
        QVERIFY(unzip.extract(at("void_out"), nullptr, nullptr));
        QVERIFY(unzip.entries().isEmpty());
    }

    void cancelKeepsWhatWasWritten()
    {
        const QString src = at("c");
        for (int i = 0; i < 5; ++i)
            writeFile(src + QString("/f%1.txt").arg(i), bytes(40000, i));
        RKZip zip;
        QVERIFY(zip.create(at("c.zip")));
        Progress stop;
        stop.stopAt = 30;
        QVERIFY(!zip.addFolder(src, &Progress::call, &stop));
        zip.close();
        QVERIFY(QFileInfo::exists(at("c.zip")));
        QVERIFY(zip.create(at("c_full.zip")));
        QVERIFY(zip.addFolder(src, nullptr, nullptr));
        zip.close();
        RKUnzip unzip;
        QString error;
        QVERIFY(unzip.open(at("c_full.zip"), error));
        Progress halt;
        halt.stopAt = 50;
        QVERIFY(!unzip.extract(at("c_out"), &Progress::call, &halt));
        QVERIFY(QFileInfo::exists(at("c_out/f0.txt"))); // kept
    }

    // A file of 4 GiB + 1 byte (sparse on disk) through Zip64 both ways, and Info-ZIP's view of
    // our archive. The packaged zip library misreads the size of such an entry; the extraction
    // reads it to the end of its stream and checks the checksum itself.
    void zip64RoundTrip()
    {
#if defined(__SANITIZE_ADDRESS__)
        QSKIP("4 GiB through the sanitizers takes minutes; the Release build runs this");
#endif
        const qint64 size = (qint64(1) << 32) + 1;
        if (QStorageInfo(m_dir.path()).bytesAvailable() < size + (qint64(1) << 30))
            QSKIP("not enough disk for a 4 GiB extraction");
        const QString src = at("large");
        QDir().mkpath(src);
        QFile big(src + "/big.bin");
        QVERIFY(big.open(QIODevice::WriteOnly));
        if (!big.resize(size))
            QSKIP("the file system does not take a 4 GiB file");
        QVERIFY(big.seek(size - 4));
        big.write("TAIL");
        big.close();
        RKZip zip;
        QVERIFY(zip.create(at("large.zip")));
        QVERIFY(zip.addFolder(src, nullptr, nullptr));
        zip.close();
        QFile::remove(src + "/big.bin"); // room for the extraction
        if (!QStandardPaths::findExecutable("unzip").isEmpty()) {
            QProcess test;
            test.start("unzip", {"-t", "-q", at("large.zip")});
            QVERIFY(test.waitForFinished(600000));
            QCOMPARE(test.exitCode(), 0);
        }
        RKUnzip unzip;
        QString error;
        QVERIFY(unzip.open(at("large.zip"), error));
        QVERIFY(unzip.extract(at("large_out"), nullptr, nullptr));
        QFile out(at("large_out/big.bin"));
        QCOMPARE(out.size(), size);
        QVERIFY(out.open(QIODevice::ReadOnly));
        QVERIFY(out.seek(size - 4));
        QCOMPARE(out.read(4), QByteArray("TAIL"));
        QVERIFY(out.seek(size / 2));
        QCOMPARE(out.read(16), QByteArray(16, '\0'));
        out.close();
        QFile::remove(at("large_out/big.bin"));
    }

    void corpus()
    {
        const QString dir = qEnvironmentVariable("RKBASE_CORPUS") + QStringLiteral("/zip");
        if (!QDir(dir).exists())
            QSKIP("corpus not present");
        int opened = 0;
        for (const QString& name : QDir(dir).entryList({"*.zip"}, QDir::Files)) {
            RKUnzip unzip;
            QString error;
            const QString out = at("corpus/" + name);
            if (!unzip.open(dir + "/" + name, error)) {
                QVERIFY(!error.isEmpty());
                continue;
            }
            ++opened;
            unzip.extract(out, nullptr, nullptr); // may fail (encrypted, multi-disk), never escape
            QDirIterator it(at("corpus"), QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
            while (it.hasNext()) {
                const QFileInfo f(it.next());
                QVERIFY2(f.absoluteFilePath().startsWith(at("corpus/")), qPrintable(f.absoluteFilePath()));
                QVERIFY2(!f.isSymLink(), qPrintable(f.absoluteFilePath()));
            }
        }
        QVERIFY(opened >= 8);
        // Names without the UTF-8 flag: code page 437 where they are not UTF-8, UTF-8 where they are.
        RKUnzip cp437;
        QString error;
        QVERIFY(cp437.open(dir + "/libzip_testfile-cp437.zip", error));
        QVERIFY2(cp437.entries().join(',').contains(QString::fromUtf8("\u00fc\u00e9\u00e2\u00e4")),
                 qPrintable(cp437.entries().join(',')));
        RKUnzip mac;
        QVERIFY(mac.open(dir + "/go_utf8-osx.zip", error));
        QVERIFY(mac.entries().join(',').contains(QString::fromUtf8("\u4e16\u754c")));
    }
};

QTEST_GUILESS_MAIN(TestZip)
#include "tst_zip.moc"
