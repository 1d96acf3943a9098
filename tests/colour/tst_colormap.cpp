// The colour map model: the break rules of both modes, HSV blending, tables with the
// transparent entry, spectra, reshaping and the ramps of indexed images.
#include "colour/HSVInterpolator.h"
#include "colour/RKColormap.h"

#include <QImage>
#include <QtTest>

using rkBase::QColorHSVInterpolator;
using rkBase::RKColormap;

namespace {

// Breaks at 0 (red), 10 (green, leaving blue: a hard step), 20 (white).
RKColormap threeBreaks(RKColormap::Interpolation mode)
{
    RKColormap m;
    m.set_interpolation(mode);
    m[0] = {QColor(Qt::red), QColor(Qt::red)};
    m[10] = {QColor(Qt::green), QColor(Qt::blue)};
    m[20] = {QColor(Qt::white), QColor(Qt::white)};
    return m;
}

int hueOf(const QColor& c) { return c.hsvHue(); }

} // namespace

class TestColormap : public QObject {
    Q_OBJECT

private slots:
    void breakRules_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<double>("value");
        QTest::addColumn<QColor>("colour");
        const int b = RKColormap::Blocked, i = RKColormap::Interpolated;
        QTest::newRow("blocked, below") << b << -5.0 << QColor(Qt::red);
        QTest::newRow("blocked, lowest break") << b << 0.0 << QColor(Qt::red);
        QTest::newRow("blocked, between") << b << 5.0 << QColor(Qt::red);
        QTest::newRow("blocked, on a break: the second below") << b << 10.0 << QColor(Qt::red);
        QTest::newRow("blocked, after the step") << b << 15.0 << QColor(Qt::blue);
        QTest::newRow("blocked, above") << b << 25.0 << QColor(Qt::white);
        QTest::newRow("interpolated, below") << i << -5.0 << QColor(Qt::red);
        QTest::newRow("interpolated, on a break") << i << 10.0 << QColor(Qt::green);
        QTest::newRow("interpolated, above") << i << 99.0 << QColor(Qt::white);
    }
    void breakRules()
    {
        QFETCH(int, mode);
        QFETCH(double, value);
        QFETCH(QColor, colour);
        const RKColormap m = threeBreaks(RKColormap::Interpolation(mode));
        QCOMPARE(m.value_to_color(value), colour);
    }

    void blendingBetweenBreaks()
    {
        const RKColormap m = threeBreaks(RKColormap::Interpolated);
        // Halfway from red (hue 0) to green (120): yellow (60), the short way.
        const QColor half = m.value_to_color(5.0);
        QVERIFY(std::abs(hueOf(half) - 60) <= 1);
        // After the step: blue blending to white keeps blue's hue.
        QCOMPARE(hueOf(m.value_to_color(15.0)), QColor(Qt::blue).hsvHue());
        QColor found;
        QCOMPARE(m.getColorMapID(15.0, found), 2);
        QCOMPARE(m.getColorMapID(50.0, found), 0);
    }

    void redToBlueBothWaysRound()
    {
        QColorHSVInterpolator shortWay(QColor(Qt::red), QColor(Qt::blue), false);
        QCOMPARE(hueOf(shortWay.interpolate(0.5f)), 300); // magenta
        QColorHSVInterpolator longWay(QColor(Qt::red), QColor(Qt::blue), true);
        QCOMPARE(hueOf(longWay.interpolate(0.5f)), 120); // green
        QColorHSVInterpolator back(QColor(Qt::blue), QColor(Qt::red), false);
        QCOMPARE(hueOf(back.interpolate(0.5f)), 300);
    }

    void greyTakesTheOtherHue()
    {
        QColorHSVInterpolator toGrey(QColor(Qt::red), QColor(128, 128, 128), false);
        for (float t : {0.25f, 0.5f, 0.75f}) {
            const QColor c = toGrey.interpolate(t);
            QVERIFY2(c.hsvHue() == 0 || c.hsvSaturation() == 0, qPrintable(c.name()));
        }
        QColorHSVInterpolator fromBlack(QColor(Qt::black), QColor(0, 0, 200), false);
        QCOMPARE(fromBlack.interpolate(0.5f).hsvHue(), 240);
        // Alpha blends linearly and holds t to 0..1.
        QColorHSVInterpolator alpha(QColor(255, 0, 0, 0), QColor(255, 0, 0, 255), false);
        QVERIFY(std::abs(alpha.interpolate(0.5f).alpha() - 128) <= 1);
        QCOMPARE(alpha.interpolate(2.0f).alpha(), 255);
    }

    void tablesKeepTheTransparentEntry_data()
    {
        QTest::addColumn<int>("asked");
        QTest::addColumn<int>("colours");
        QTest::newRow("256") << 256 << 255;
        QTest::newRow("100") << 100 << 100;
        QTest::newRow("2") << 2 << 2;
    }
    void tablesKeepTheTransparentEntry()
    {
        QFETCH(int, asked);
        QFETCH(int, colours);
        const RKColormap m = threeBreaks(RKColormap::Interpolated);
        QVector<unsigned int> table;
        QVERIFY(m.getColorTable(table, asked));
        QCOMPARE(table.size(), colours + 1);
        QCOMPARE(table.last(), RKColormap::transparentEntry());
        QCOMPARE(QColor::fromRgba(table.first()), QColor(Qt::red));
        QCOMPARE(QColor::fromRgba(table.at(colours - 1)), QColor(Qt::white));
        QVERIFY(m.getColorTable(table, 1 << 30)); // absurd sizes are capped, not allocated
        QCOMPARE(table.size(), (1 << 20) + 1);
    }

    void spectrumEnds()
    {
        RKColormap m;
        m.fill_spectrum_color_list(0, 1, 8, true);
        QCOMPARE(int(m.size()), 8);
        QCOMPARE(m.begin()->second.first, QColor(0, 0, 255));
        QCOMPARE(m.rbegin()->second.first, QColor(255, 0, 255));
        m.fill_spectrum_color_list(0, 1, 8, false);
        QCOMPARE(m.begin()->second.first, QColor(255, 0, 255));
        QCOMPARE(m.rbegin()->second.first, QColor(0, 0, 255));
        m.fill_spectrum_color_list(5, 5, 8, false);
        QCOMPARE(int(m.size()), 1);
        m.fill_spectrum_color_list(0.0, 10.0, 2.5, false);
        QCOMPARE(int(m.size()), 5);
        QCOMPARE(m.max_value(), 10.0);
        RKColormap empty;
        QCOMPARE(empty.value_to_color(3), QColor(0, 0, 0));
        QVERIFY(!empty.is_valid());
        QCOMPARE(empty.max_value(), 0.0);
    }

    void reverseAndRotate()
    {
        RKColormap m = threeBreaks(RKColormap::Blocked);
        QVERIFY(m.reverse());
        QCOMPARE(m[0].first, QColor(Qt::white));
        QCOMPARE(m[10].first, QColor(Qt::green)); // a first stays a first
        QCOMPARE(m[10].second, QColor(Qt::blue));
        QCOMPARE(m[20].second, QColor(Qt::red));
        RKColormap r = threeBreaks(RKColormap::Blocked);
        QVERIFY(r.rotate(false));
        QCOMPARE(r[0].first, QColor(Qt::green));
        QCOMPARE(r[20].first, QColor(Qt::red));
        QVERIFY(r.rotate(true));
        QVERIFY(r == threeBreaks(RKColormap::Blocked));
        RKColormap one;
        one[3] = {QColor(Qt::red), QColor(Qt::red)};
        const RKColormap before = one;
        QVERIFY(!one.reverse());
        QVERIFY(!one.rotate(true));
        QVERIFY(one == before);
        QCOMPARE(one.value_to_color(-100), QColor(Qt::red));
        QCOMPARE(one.value_to_color(100), QColor(Qt::red));
    }

    void minAndMax()
    {
        RKColormap m = threeBreaks(RKColormap::Interpolated);
        m.set_max_value(30); // above: a white break is added
        QCOMPARE(m.max_value(), 30.0);
        QCOMPARE(int(m.size()), 4);
        m.set_max_value(20); // on a break: everything above goes
        QCOMPARE(m.max_value(), 20.0);
        QCOMPARE(int(m.size()), 3);
        m.set_max_value(15); // between: the break above gives its colours to the new end
        QCOMPARE(int(m.size()), 3);
        QCOMPARE(m[15].first, QColor(Qt::white));
        m.set_min_value(5); // between: the break below gives its colours
        QCOMPARE(m.min_value(), 5.0);
        QCOMPARE(m[5].first, QColor(Qt::red));
        m.set_min_value(10); // on a break
        QCOMPARE(int(m.size()), 2);
        m.set_min_value(-10); // below: a white break
        QCOMPARE(m[-10].first, QColor(Qt::white));
    }

    void reshaping()
    {
        RKColormap m = threeBreaks(RKColormap::Interpolated);
        m.fitToRange(100, 200);
        QCOMPARE(m.min_value(), 100.0);
        QVERIFY(m.count(150.0));
        QCOMPARE(m[150.0].second, QColor(Qt::blue));
        RKColormap uneven;
        uneven[0] = {QColor(Qt::red), QColor(Qt::red)};
        uneven[1] = {QColor(Qt::green), QColor(Qt::green)};
        uneven[9] = {QColor(Qt::blue), QColor(Qt::blue)};
        uneven.equalize();
        QVERIFY(uneven.count(4.5));
        QCOMPARE(uneven[4.5].first, QColor(Qt::green));
        RKColormap other = threeBreaks(RKColormap::Interpolated);
        QVERIFY(threeBreaks(RKColormap::Interpolated).sameColourRange(other));
        RKColormap shifted = threeBreaks(RKColormap::Interpolated);
        shifted.fitToRange(1000, 2000);
        QVERIFY(threeBreaks(RKColormap::Interpolated).sameColourRange(shifted));
        QVERIFY(threeBreaks(RKColormap::Interpolated) != threeBreaks(RKColormap::Blocked));
        RKColormap centre = threeBreaks(RKColormap::Interpolated);
        QVERIFY(centre.setTransparentCenter());
        QVERIFY(centre.hasTransparency());
    }

    void ramps()
    {
        QVector<unsigned int> table;
        RKColormap::colorTable(256, QColor(Qt::black), QColor(Qt::red), QColor(Qt::white), table, true);
        QCOMPARE(table.size(), 256);
        QCOMPARE(table.last(), RKColormap::transparentEntry());
        QCOMPARE(QColor::fromRgb(table.first()), QColor(Qt::black));
        QCOMPARE(QColor::fromRgb(table.at(254)), QColor(Qt::white));
        RKColormap::colorTable(3, QColor(Qt::black), QColor(Qt::red), QColor(Qt::white), table, true);
        QCOMPARE(table.size(), 3);
        // The nine-component image form gives the middle colour its red as blue.
        QImage image(4, 4, QImage::Format_Indexed8);
        RKColormap::setColourRange(&image, 3, 0, 0, 0, 200, 10, 30, 255, 255, 255, false);
        QCOMPARE(QColor::fromRgb(image.colorTable().at(1)), QColor(200, 10, 200));
        QImage rgb(4, 4, QImage::Format_RGB32);
        RKColormap::setColourRange(&rgb, 3, 0, 0, 0, 200, 10, 30, 255, 255, 255, false);
        QVERIFY(rgb.colorTable().isEmpty()); // only indexed images take a table
    }
};

QTEST_GUILESS_MAIN(TestColormap)
#include "tst_colormap.moc"
