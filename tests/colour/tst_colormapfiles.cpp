// Colour map files: the cpt and cmap forms as stated, GMT's colour tables, legend pictures and
// every real-world table of the corpus.
#include "colour/RKColormap.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

using rkBase::RKColormap;

namespace {

RKColormap fromCpt(const QByteArray& text, bool keepRange = false, RKColormap start = RKColormap())
{
    QBuffer b;
    b.setData(text);
    b.open(QIODevice::ReadOnly | QIODevice::Text);
    start.load(b, keepRange);
    return start;
}

RKColormap fromGmt(const QByteArray& text, RKColormap::GmtColours* extra = nullptr, bool* ok = nullptr)
{
    QBuffer b;
    b.setData(text);
    b.open(QIODevice::ReadOnly | QIODevice::Text);
    RKColormap m;
    const bool read = m.loadGmt(b, extra);
    if (ok)
        *ok = read;
    return m;
}

QByteArray cptText(const RKColormap& m)
{
    QBuffer b;
    b.open(QIODevice::WriteOnly | QIODevice::Text);
    m.save(b);
    return b.data();
}

} // namespace

class TestColormapFiles : public QObject {
    Q_OBJECT

    QTemporaryDir m_dir;

private slots:
    void statedCptReading()
    {
        QVERIFY(fromCpt("# only a comment\n# COLOR_MODEL = RGB\n").empty());
        // Hard step at 10: the colour arriving from the first line, the one leaving in the second.
        const RKColormap step = fromCpt("0 255 0 0 10 255 255 0\n10 0 0 255 20 0 255 255\nB 0 0 0\nF 1 1 1\n");
        QCOMPARE(step.interpolation(), RKColormap::Interpolated);
        QCOMPARE(step.at(10).first, QColor(255, 255, 0));
        QCOMPARE(step.at(10).second, QColor(0, 0, 255));
        // Lines of one colour each make a blocked map whose breaks carry the leaving colour.
        const RKColormap blocked = fromCpt("0 10 20 30 1 10 20 30\n1 40 50 60 2 40 50 60\n");
        QCOMPARE(blocked.interpolation(), RKColormap::Blocked);
        QCOMPARE(blocked.at(1).first, QColor(40, 50, 60));
        // RGBA read whole (QRegExp), HSV at 100 of 255, unparsable numbers as 0.
        const RKColormap rgba = fromCpt("# COLOR_MODEL = RGBA\n0 1 2 3 4 5 6 7 8 9\n");
        QCOMPARE(rgba.at(0).first, QColor(1, 2, 3, 4));
        const RKColormap hsv = fromCpt("# COLOR_MODEL = HSV\n0 120 1 1 10 120 1 1\n");
        QCOMPARE(hsv.at(0).first.hsvSaturation(), 100);
        QCOMPARE(hsv.at(0).first.value(), 100);
        const RKColormap junk = fromCpt("0 x 2 3 10 4 5 6\n");
        QCOMPARE(junk.at(0).first, QColor(0, 2, 3));
    }

    void keepRangeStretches()
    {
        RKColormap start;
        start[100] = {Qt::black, Qt::black};
        start[200] = {Qt::black, Qt::black};
        const RKColormap kept = fromCpt("0 0 0 0 1 255 255 255\n", true, start);
        QCOMPARE(kept.min_value(), 100.0);
        QCOMPARE(kept.max_value(), 200.0);
        const RKColormap own = fromCpt("0 0 0 0 1 255 255 255\n", false, start);
        QCOMPARE(own.max_value(), 1.0);
    }

    void cptRoundTrip()
    {
        RKColormap m;
        m.fill_spectrum_color_list(-4.0, 1276.0, 6, false); // breaks 256 apart: exact in six digits
        // A middle break with a see-through colour; values of six significant digits.
        std::next(m.begin(), 2)->second.first.setAlpha(40);
        std::next(m.begin(), 2)->second.second.setAlpha(40);
        const RKColormap back = fromCpt(cptText(m));
        QCOMPARE(back, m);
        RKColormap blocked = m;
        blocked.set_interpolation(RKColormap::Blocked);
        QCOMPARE(fromCpt(cptText(blocked)).interpolation(), RKColormap::Blocked);
        RKColormap one;
        one[1] = {Qt::red, Qt::red};
        QCOMPARE(cptText(one), QByteArray("# RKE COLORMAP\n# COLOR_MODEL = RGBA\n"));
        QCOMPARE(cptText(RKColormap()), QByteArray("# RKE COLORMAP\n# COLOR_MODEL = RGBA\n"));
    }

    void cmapFiles()
    {
        QByteArray text;
        for (int i = 0; i < 256; ++i)
            text += QByteArray::number(i) + " " + QByteArray::number(i) + " 0 " + QByteArray::number(255 - i) + " 255\n";
        QBuffer b;
        b.setData(text);
        b.open(QIODevice::ReadOnly | QIODevice::Text);
        RKColormap m;
        m[0] = {Qt::black, Qt::black};
        m[1] = {Qt::black, Qt::black};
        QVERIFY(m.loadCMapFile(b));
        QCOMPARE(int(m.size()), 256);
        QVERIFY(std::fabs(std::next(m.begin())->first - 1.0 / 255.0) < 1e-15);
        QCOMPARE(m.rbegin()->second.first, QColor(255, 0, 0));
        // Fractions are scaled; a fraction below 1 is cut to 0 first, as it always was.
        QBuffer f;
        f.setData("0.5 0.5 0.5\n1 1 1\n");
        f.open(QIODevice::ReadOnly | QIODevice::Text);
        RKColormap frac;
        QVERIFY(frac.loadCMapFile(f));
        QCOMPARE(frac.rbegin()->second.first, QColor(255, 255, 255));
        QCOMPARE(frac.begin()->second.first, QColor(0, 0, 0));
    }

    void bySuffix()
    {
        RKColormap m;
        m.fill_spectrum_color_list(0, 9, 4, false); // breaks the cpt form writes exactly
        const QString upper = m_dir.filePath("MAP.CPT"), cmap = m_dir.filePath("map.cmap"), clm = m_dir.filePath("x.clm");
        QVERIFY(m.save(upper));
        QVERIFY(m.save(cmap));
        QVERIFY(!m.save(clm)); // read, never written
        QVERIFY(!m.save(m_dir.filePath("map.txt")));
        RKColormap back;
        QVERIFY(back.load(upper, false));
        QCOMPARE(back, m);
        QVERIFY(!back.load(m_dir.filePath("missing.cpt"), false));
        QCOMPARE(back, m); // left as it was
        QVERIFY(!back.load(m_dir.filePath("map.txt"), false));
    }

    void gmtForms_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QColor>("atZero");
        QTest::addColumn<QColor>("atTop");
        QTest::newRow("r/g/b") << QByteArray("0 10/20/30 1 40/50/60\n") << QColor(10, 20, 30) << QColor(40, 50, 60);
        QTest::newRow("r g b columns") << QByteArray("0 10 20 30 1 40 50 60\n") << QColor(10, 20, 30) << QColor(40, 50, 60);
        QTest::newRow("grey levels") << QByteArray("0 0 1 255\n") << QColor(0, 0, 0) << QColor(255, 255, 255);
        QTest::newRow("X11 names") << QByteArray("0 gray 1 green\n") << QColor(190, 190, 190) << QColor(0, 255, 0);
        QTest::newRow("grayN") << QByteArray("0 gray50 1 grey100\n") << QColor(128, 128, 128) << QColor(255, 255, 255);
        QTest::newRow("hex") << QByteArray("0 #0a141e 1 #ffffff\n") << QColor(10, 20, 30) << QColor(255, 255, 255);
        QTest::newRow("h-s-v") << QByteArray("0 0-1-1 1 240-1-1\n") << QColor(255, 0, 0) << QColor(0, 0, 255);
        QTest::newRow("HSV model columns") << QByteArray("# COLOR_MODEL = +HSV\n0 120 1 1 1 0 0 1\n")
                                          << QColor(0, 255, 0) << QColor(255, 255, 255);
        QTest::newRow("c/m/y/k") << QByteArray("0 0/100/100/0 1 100/0/0/50\n") << QColor(255, 0, 0) << QColor(0, 128, 128);
        QTest::newRow("transparency") << QByteArray("0 red@50 1 red\n") << QColor(255, 0, 0, 128) << QColor(255, 0, 0);
        QTest::newRow("annotation flag and label") << QByteArray("0 red 1 blue L ; first\n") << QColor(255, 0, 0)
                                                  << QColor(0, 0, 255);
    }
    void gmtForms()
    {
        QFETCH(QByteArray, text);
        QFETCH(QColor, atZero);
        QFETCH(QColor, atTop);
        bool ok = false;
        const RKColormap m = fromGmt(text, nullptr, &ok);
        QVERIFY(ok);
        QCOMPARE(m.value_to_color(0).rgba(), atZero.rgba());
        QCOMPARE(m.value_to_color(1).rgba(), atTop.rgba());
    }

    void gmtExtrasAndCategories()
    {
        RKColormap::GmtColours extra;
        bool ok = false;
        const RKColormap m = fromGmt("0 red 1 blue\nB black\nF white\nN 128/128/128\n", &extra, &ok);
        QVERIFY(ok);
        QCOMPARE(extra.background, QColor(0, 0, 0));
        QCOMPARE(extra.foreground, QColor(255, 255, 255));
        QCOMPARE(extra.noData, QColor(128, 128, 128));
        const RKColormap categories = fromGmt("1 red ;one\n2 orange\n3 yellow\n");
        QCOMPARE(int(categories.size()), 3);
        QCOMPARE(categories.interpolation(), RKColormap::Blocked);
        QCOMPARE(categories.value_to_color(2), QColor(Qt::red)); // blocked: the colour below a break
        fromGmt("# nothing\nnot a colour table at all\n0 nosuchcolour 1 red\n", nullptr, &ok);
        QVERIFY(!ok);
    }

    void legendPicture()
    {
        RKColormap m;
        m[0] = {Qt::red, Qt::red};
        m[1] = {Qt::blue, Qt::blue};
        m.set_interpolation(RKColormap::Blocked);
        const QString png = m_dir.filePath("legend.png");
        QVERIFY(m.saveImage(png, QSize(300, 40)));
        QImage image(png);
        QCOMPARE(image.size(), QSize(300, 40));
        QCOMPARE(QColor(image.pixel(20, 5)), QColor(Qt::red));
        QCOMPARE(QColor(image.pixel(280, 5)), QColor(Qt::red)); // blocked: one interval, one colour
        m.set_interpolation(RKColormap::Interpolated);
        QVERIFY(m.saveImage(png, QSize(40, 300)));
        QImage vertical(png);
        QCOMPARE(QColor(vertical.pixel(10, 290)).red(), 255); // low values at the bottom
        QCOMPARE(QColor(vertical.pixel(10, 6)).blue(), 255);
    }

    // Every real-world table: the stated reader never crashes and the GMT reader reads breaks
    // from all but the files it is known not to understand.
    void corpus()
    {
        const QString dir = qEnvironmentVariable("RKBASE_CORPUS") + QStringLiteral("/colour");
        if (!QDir(dir).exists())
            QSKIP("corpus not present");
        int read = 0, files = 0;
        for (const QString& name : QDir(dir).entryList(QDir::Files)) {
            const QString path = dir + QLatin1Char('/') + name;
            RKColormap stated;
            const QString suffix = QFileInfo(name).suffix().toLower();
            const bool known = suffix == QLatin1String("cpt") || suffix == QLatin1String("cmap") || suffix == QLatin1String("clm");
            QCOMPARE(stated.load(path, false), known);
            if (suffix != QLatin1String("cpt"))
                continue;
            ++files;
            RKColormap gmt;
            if (gmt.loadGmt(path)) {
                ++read;
                QVERIFY2(gmt.size() >= 2 || gmt.interpolation() == RKColormap::Blocked, qPrintable(name));
                for (const auto& e : gmt)
                    QVERIFY2(e.second.first.isValid() && std::isfinite(e.first), qPrintable(name));
            } else {
                qInfo("not read as a GMT table: %s", qPrintable(name));
            }
        }
        QVERIFY(files > 10);
        QVERIFY2(read >= files - 2, qPrintable(QStringLiteral("%1 of %2").arg(read).arg(files)));
    }
};

QTEST_MAIN(TestColormapFiles)
#include "tst_colormapfiles.moc"
