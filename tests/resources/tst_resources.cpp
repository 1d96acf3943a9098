// The compiled-in resource bundles: every path that code names is there, registered at load
// (nothing calls Q_INIT_RESOURCE), and every picture decodes whole.
#include "frame/Environment.h"

#include <QDir>
#include <QFile>
#include <QFontDatabase>
#include <QImageReader>
#include <QRegularExpression>
#include <QSet>
#include <QTextCodec>
#include <QTransform>
#include <QtTest>

class TestResources : public QObject {
    Q_OBJECT

private slots:
    void initTestCase()
    {
        // Linkers run with --as-needed drop a library that no code refers to, resources and all.
        void (*volatile keepLinked)(const QString&) = &rkBase::Environment::putQEnv;
        Q_UNUSED(keepLinked)
    }
    void pictures_data();
    void pictures();
    void spinnerTurns();
    void pages_data();
    void pages();
    void everyNamedFolderHoldsFiles_data();
    void everyNamedFolderHoldsFiles();
    void cursorHotSpots();
    void fonts_data();
    void fonts();
};

void TestResources::pictures_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("side");
    for (const char* name : {"rkBaseQt/Resources/time.png", "rkBaseQt/Resources/lock2.png",
                             "rkBaseQt/Resources/filter.png", "model/Resources/icon_folder.png",
                             "Qocoa/qsearchfield_nonmac.png", "Qocoa/qprogressindicatorspinning_nonmac.gif"})
        QTest::newRow(name) << QStringLiteral(":/") + QLatin1String(name) << 32;
    for (const char* tool : {"zoomin", "zoomout", "pan", "select", "measure", "pick"})
        QTest::newRow(tool) << QStringLiteral(":/2DTesk/Resources/%1.png").arg(QLatin1String(tool)) << 32;
    for (const char* product : {"rktool", "rkdemo"})
        QTest::newRow(product) << QStringLiteral(":/tesk/Resources/%1appicon.png").arg(QLatin1String(product)) << 64;
}

void TestResources::pictures()
{
    QFETCH(QString, path);
    QFETCH(int, side);
    QVERIFY2(QFile::exists(path), qPrintable(path));
    QImageReader reader(path);
    if (!reader.canRead() && !QImageReader::supportedImageFormats().contains(reader.format()))
        QSKIP("no image reader for this format (image plugin missing)");
    // libpng rejects a chunk with a wrong CRC and a broken zlib stream, so a whole decode is
    // the integrity check.
    const QImage image = reader.read().convertToFormat(QImage::Format_ARGB32);
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    QCOMPARE(image.size(), QSize(side, side));
    // A drawing with hard edges: clear background, opaque ink in more than one colour.
    int clear = 0, opaque = 0;
    QSet<QRgb> inks;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const QRgb pixel = image.pixel(x, y);
            clear += qAlpha(pixel) == 0;
            if (qAlpha(pixel) == 255) {
                ++opaque;
                inks.insert(pixel);
            }
        }
    QVERIFY(clear > 0 && opaque >= side * side / 8 && inks.size() >= 2);
    QCOMPARE(clear + opaque, side * side);
}

void TestResources::spinnerTurns()
{
    QImageReader reader(QStringLiteral(":/Qocoa/qprogressindicatorspinning_nonmac.gif"));
    if (!QImageReader::supportedImageFormats().contains("gif"))
        QSKIP("no GIF reader (the qgif image plugin is missing)");
    const int count = reader.imageCount();
    QVERIFY(count > 1 && count % 4 == 0);
    QCOMPARE(reader.loopCount(), -1);
    QVector<QImage> frames;
    for (int i = 0; i < count; ++i) {
        frames << reader.read().convertToFormat(QImage::Format_ARGB32);
        QVERIFY2(!frames.last().isNull(), qPrintable(reader.errorString()));
    }
    // Each frame is the one a quarter turn earlier rotated clockwise: the spinner turns, and a
    // corrupt code stream in any frame breaks the symmetry.
    const int quarter = count / 4;
    for (int i = 0; i + quarter < count; ++i)
        QVERIFY(frames[i].transformed(QTransform().rotate(90)).convertToFormat(QImage::Format_ARGB32) ==
                frames[i + quarter]);
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
    QCOMPARE(state.invalidChars + state.remainingChars, 0);
    // Pages served from qrc have no HTTP header, so each names its own encoding.
    const auto ci = QRegularExpression::CaseInsensitiveOption;
    QVERIFY(text.contains(QRegularExpression(QStringLiteral("<meta\\s+charset=\"?utf-8\"?\\s*/?>"), ci)));
    QVERIFY(text.contains(QRegularExpression(QStringLiteral("<title>[^<]*\\S[^<]*</title>"), ci)));
}

void TestResources::everyNamedFolderHoldsFiles_data()
{
    QTest::addColumn<QString>("folder");
    for (const char* folder : {":/rkBaseQt/Resources", ":/2DTesk/Resources", ":/cursor/Resources", ":/tesk/Resources",
                               ":/www/welcome", ":/www/fonts", ":/Qocoa", ":/model/Resources"})
        QTest::newRow(folder) << QString::fromLatin1(folder);
}

void TestResources::everyNamedFolderHoldsFiles()
{
    QFETCH(QString, folder);
    QVERIFY2(!QDir(folder).entryList(QDir::Files).isEmpty(), qPrintable(folder));
}

// Every cursor picture has one hot spot row and every row a picture; a hot spot lies on the
// cursor's own opaque ink, where the user's click is meant to land.
void TestResources::cursorHotSpots()
{
    QFile table(QStringLiteral(":/cursor/Resources/hotspots.csv"));
    QVERIFY(table.open(QIODevice::ReadOnly | QIODevice::Text));
    QCOMPARE(table.readLine().trimmed(), QByteArray("name,x,y"));
    QSet<QString> listed;
    while (!table.atEnd()) {
        const QList<QByteArray> cells = table.readLine().trimmed().split(',');
        QCOMPARE(cells.size(), 3);
        const QString path = QStringLiteral(":/cursor/Resources/") + QString::fromUtf8(cells[0]);
        listed.insert(QString::fromUtf8(cells[0]));
        const QImage image = QImage(path).convertToFormat(QImage::Format_ARGB32);
        QVERIFY2(!image.isNull(), qPrintable(path));
        QCOMPARE(image.size(), QSize(32, 32));
        const QPoint hot(cells[1].toInt(), cells[2].toInt());
        QVERIFY2(image.rect().contains(hot), qPrintable(path));
        QVERIFY2(qAlpha(image.pixel(hot)) == 255, qPrintable(path));
    }
    const QStringList pictures = QDir(QStringLiteral(":/cursor/Resources")).entryList({QStringLiteral("*.png")});
    QCOMPARE(listed, QSet<QString>(pictures.begin(), pictures.end()));
}

void TestResources::fonts_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("style");
    QTest::newRow("regular") << QStringLiteral("DejaVuSans.ttf") << QStringLiteral("Book");
    QTest::newRow("bold") << QStringLiteral("DejaVuSans-Bold.ttf") << QStringLiteral("Bold");
}

// The welcome page names its fonts by family; each embedded file loads as that family, and the
// licence that allows embedding travels with them.
void TestResources::fonts()
{
    QFETCH(QString, file);
    QFETCH(QString, style);
    QFile font(QStringLiteral(":/www/fonts/") + file);
    QVERIFY(font.open(QIODevice::ReadOnly));
    const int id = QFontDatabase::addApplicationFontFromData(font.readAll());
    QVERIFY(id >= 0);
    QCOMPARE(QFontDatabase::applicationFontFamilies(id), QStringList{QStringLiteral("DejaVu Sans")});
    QVERIFY(QFontDatabase().styles(QStringLiteral("DejaVu Sans")).contains(style));
    QFile licence(QStringLiteral(":/www/fonts/LICENSE-DejaVu.txt"));
    QVERIFY(licence.open(QIODevice::ReadOnly));
    QVERIFY(licence.readAll().contains("Bitstream Vera"));
}

QTEST_MAIN(TestResources)
#include "tst_resources.moc"
