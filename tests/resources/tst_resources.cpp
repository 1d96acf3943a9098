// The compiled-in resource bundles: every path that code names is there, registered at load
// (nothing calls Q_INIT_RESOURCE), and every picture decodes whole.
#include "frame/Environment.h"

#include <QFile>
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
};

void TestResources::pictures_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("side");
    for (const char* name : {"rkBaseQt/Resources/time.png", "rkBaseQt/Resources/lock2.png",
                             "rkBaseQt/Resources/filter.png", "model/Resources/icon_folder.png",
                             "Qocoa/qsearchfield_nonmac.png", "Qocoa/qprogressindicatorspinning_nonmac.gif"})
        QTest::newRow(name) << QStringLiteral(":/") + QLatin1String(name) << 32;
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

QTEST_GUILESS_MAIN(TestResources)
#include "tst_resources.moc"
