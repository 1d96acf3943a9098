#include "frame/Environment.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QRegularExpression>
#include <QSet>
#include <QTextCodec>
#include <QTransform>
#include <QtEndian>
#include <QtTest>

namespace {

// Paths that the library's code and its applications name, with the picture's side in pixels
// (0 for a page).
struct NamedFile {
    const char* path;
    int side;
};

const NamedFile kNamedFiles[] = {
    {":/rkBaseQt/Resources/time.png", 32},
    {":/rkBaseQt/Resources/lock2.png", 32},
    {":/rkBaseQt/Resources/filter.png", 32},
    {":/model/Resources/icon_folder.png", 32},
    {":/tesk/Resources/rktoolappicon.png", 64},
    {":/tesk/Resources/rkdemoappicon.png", 64},
    {":/tesk/aboutGeneric.htm", 0},
    {":/www/welcome/index.html", 0},
    {":/Qocoa/qsearchfield_nonmac.png", 32},
    {":/Qocoa/qprogressindicatorspinning_nonmac.gif", 32},
};

const char kSpinner[] = ":/Qocoa/qprogressindicatorspinning_nonmac.gif";

quint32 crc32(const char* data, int size)
{
    quint32 crc = 0xFFFFFFFFu;
    for (int i = 0; i < size; ++i) {
        crc ^= static_cast<quint8>(data[i]);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

// Every file of a kind that the library compiles in; Qt keeps its own under qt-project.org.
QStringList ownResources(const QString& suffix)
{
    QStringList files;
    QDirIterator it(QStringLiteral(":/"), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        if (!path.startsWith(QLatin1String(":/qt-project.org/")) && path.endsWith(suffix))
            files << path;
    }
    files.sort();
    return files;
}

// Walks a PNG's chunks; empty when every length fits and every CRC matches, else the fault.
// Decoders may pass over a bad CRC in a chunk they do not need, so it is checked here directly.
QString pngChunkFault(const QByteArray& png)
{
    if (!png.startsWith(QByteArray("\x89PNG\r\n\x1a\n", 8)))
        return QStringLiteral("no PNG signature");
    QList<QByteArray> tags;
    int pos = 8;
    while (png.size() - pos >= 12) {
        const quint32 length = qFromBigEndian<quint32>(png.constData() + pos);
        if (length > quint32(png.size() - pos - 12))
            return QStringLiteral("chunk runs past the end of the file");
        const char* tagAndData = png.constData() + pos + 4;
        tags << QByteArray(tagAndData, 4);
        if (crc32(tagAndData, int(length) + 4) != qFromBigEndian<quint32>(tagAndData + 4 + length))
            return QStringLiteral("CRC mismatch in chunk ") + QString::fromLatin1(tags.last());
        pos += 12 + int(length);
    }
    if (pos != png.size())
        return QStringLiteral("trailing bytes after the last chunk");
    if (tags.value(0) != "IHDR" || tags.last() != "IEND" || !tags.contains("IDAT"))
        return QStringLiteral("chunks out of order: ") + QString::fromLatin1(tags.join(' '));
    return {};
}

} // namespace

class TestResources : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void namedFiles_data();
    void namedFiles();
    void pngIntegrity_data();
    void pngIntegrity();
    void spinnerTurns();
    void pages_data();
    void pages();
};

void TestResources::initTestCase()
{
    // The bundles must register themselves when the library loads, so nothing here calls
    // Q_INIT_RESOURCE. Linkers run with --as-needed drop a library that no code refers to,
    // resources and all; this reference keeps it a real dependency of the test.
    void (*volatile keepLinked)(const QString&) = &rkBase::Environment::putQEnv;
    Q_UNUSED(keepLinked)
}

void TestResources::namedFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("side");
    for (const NamedFile& file : kNamedFiles)
        QTest::newRow(file.path) << QString::fromLatin1(file.path) << file.side;
}

void TestResources::namedFiles()
{
    QFETCH(QString, path);
    QFETCH(int, side);
    QFile file(path);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(file.errorString()));
    QVERIFY(file.size() > 0);
    if (side == 0)
        return;
    if (path.endsWith(QLatin1String(".png")))
        QVERIFY2(ownResources(QStringLiteral(".png")).contains(path), "the integrity walk misses this picture");

    const QByteArray format = QFileInfo(path).suffix().toLatin1();
    if (!QImageReader::supportedImageFormats().contains(format))
        QSKIP("this Qt has no reader for the picture's format (image plugin missing)");
    QImageReader reader(path);
    QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    QCOMPARE(image.size(), QSize(side, side));

    // A drawing with hard edges: clear background, opaque ink in more than one colour.
    image = image.convertToFormat(QImage::Format_ARGB32);
    int clear = 0, opaque = 0;
    QSet<QRgb> inks;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const QRgb pixel = image.pixel(x, y);
            clear += qAlpha(pixel) == 0;
            if (qAlpha(pixel) == 255) {
                ++opaque;
                inks.insert(pixel);
            }
        }
    }
    QVERIFY(clear > 0);
    QVERIFY2(opaque >= side * side / 8, "hardly anything drawn");
    QCOMPARE(clear + opaque, side * side);
    QVERIFY(inks.size() >= 2);
}

void TestResources::pngIntegrity_data()
{
    QTest::addColumn<QString>("path");
    for (const QString& path : ownResources(QStringLiteral(".png")))
        QTest::newRow(qPrintable(path)) << path;
}

void TestResources::pngIntegrity()
{
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString fault = pngChunkFault(file.readAll());
    QVERIFY2(fault.isEmpty(), qPrintable(fault));
    // libpng rejects a critical chunk whose CRC is wrong and a broken zlib stream in IDAT.
    QImageReader reader(path, "png");
    QVERIFY2(!reader.read().isNull(), qPrintable(reader.errorString()));
}

void TestResources::spinnerTurns()
{
    if (!QImageReader::supportedImageFormats().contains("gif"))
        QSKIP("this Qt has no GIF reader (the qgif image plugin is missing)");
    QImageReader reader(QString::fromLatin1(kSpinner));
    QVERIFY(reader.supportsAnimation());
    const int count = reader.imageCount();
    QVERIFY2(count > 1, qPrintable(reader.errorString()));
    QVERIFY2(count % 4 == 0, "a quarter turn must take a whole number of frames");
    QCOMPARE(reader.loopCount(), -1); // for ever

    QVector<QImage> frames;
    for (int i = 0; i < count; ++i) {
        const QImage frame = reader.read();
        QVERIFY2(!frame.isNull(), qPrintable(QStringLiteral("frame %1: %2").arg(i).arg(reader.errorString())));
        QCOMPARE(frame.size(), QSize(32, 32));
        QVERIFY(reader.nextImageDelay() > 0);
        frames << frame.convertToFormat(QImage::Format_ARGB32);
    }
    // Every frame is the one a quarter turn before it rotated clockwise: the spinner turns, and
    // every frame decodes whole (a corrupt code stream breaks the symmetry).
    QVERIFY(frames[0] != frames[1]);
    const int quarter = count / 4;
    for (int i = 0; i + quarter < count; ++i) {
        const QImage turned = frames[i].transformed(QTransform().rotate(90)).convertToFormat(QImage::Format_ARGB32);
        QVERIFY2(turned == frames[i + quarter], qPrintable(QStringLiteral("frame %1").arg(i + quarter)));
    }
}

void TestResources::pages_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("about") << QStringLiteral(":/tesk/aboutGeneric.htm");
    QTest::newRow("welcome") << QStringLiteral(":/www/welcome/index.html");
}

void TestResources::pages()
{
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(path));
    const QByteArray bytes = file.readAll();
    QTextCodec::ConverterState state;
    const QString text = QTextCodec::codecForName("UTF-8")->toUnicode(bytes.constData(), bytes.size(), &state);
    QCOMPARE(state.invalidChars, 0);
    QCOMPARE(state.remainingChars, 0);

    // Pages served from qrc have no HTTP header, so each names its own encoding.
    const auto ci = QRegularExpression::CaseInsensitiveOption;
    QVERIFY(text.contains(QRegularExpression(QStringLiteral("<meta\\s+charset=\"?utf-8\"?\\s*/?>"), ci)));
    const QRegularExpressionMatch title = QRegularExpression(QStringLiteral("<title>([^<]*)</title>"), ci).match(text);
    QVERIFY(title.hasMatch());
    QVERIFY(!title.captured(1).trimmed().isEmpty());
    QVERIFY(text.contains(QRegularExpression(QStringLiteral("<body[^>]*>.*\\S.*</body>"),
                                             ci | QRegularExpression::DotMatchesEverythingOption)));
}

QTEST_GUILESS_MAIN(TestResources)
#include "tst_resources.moc"
