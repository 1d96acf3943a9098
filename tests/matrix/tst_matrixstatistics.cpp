// Column statistics checked against values worked out independently: directions with a known
// mean, points on a known line, lineations on known planes, histogram edges, polygons.
#include "matrix/MatrixData.h"

#include <QtTest>

#include <cmath>
#include <memory>

using rkBase::MatrixData;

namespace {

std::unique_ptr<MatrixData> doubles(const QVector<double>& values)
{
    auto m = std::make_unique<MatrixData>(QStringLiteral("v"), values.size(), 1, QVariant::Double, true);
    for (int i = 0; i < values.size(); ++i)
        m->setDouble(i, 0, values[i]);
    return m;
}

std::unique_ptr<MatrixData> points(const QVector<QPointF>& values)
{
    auto m = std::make_unique<MatrixData>(QStringLiteral("p"), values.size(), 1, QVariant::PointF, true);
    for (int i = 0; i < values.size(); ++i)
        m->setValue(i, 0, values[i]);
    return m;
}

double deg(double radians) { return radians * 180.0 / M_PI; }

} // namespace

class TestMatrixStatistics : public QObject {
    Q_OBJECT

private slots:
    void meanDirection_data()
    {
        QTest::addColumn<QVector<double>>("directions");
        QTest::addColumn<double>("mean");
        // Two directions 2a apart around m: the mean is m and the resultant length cos(a).
        QTest::newRow("first quadrant") << QVector<double>{30, 60} << 45.0;
        QTest::newRow("second quadrant") << QVector<double>{100, 140} << 120.0;
        QTest::newRow("third quadrant") << QVector<double>{200, 220} << 210.0;
        QTest::newRow("fourth quadrant") << QVector<double>{300, 340} << 320.0;
        QTest::newRow("blank cells skipped") << QVector<double>{30, 99999, 60} << 45.0;
    }
    void meanDirection()
    {
        QFETCH(QVector<double>, directions);
        QFETCH(double, mean);
        auto m = doubles(directions);
        double length = -1;
        QCOMPARE(m->resultantMeanDirection(length, {}), mean);
        const double half = std::fabs(directions.first() - directions.last()) / 2;
        QVERIFY(std::fabs(length - std::cos(half * M_PI / 180)) < 1e-12);
        // A set whose cosines cancel has no mean.
        double untouched = -1;
        QCOMPARE(doubles({90, 90, 90})->resultantMeanDirection(untouched, {}), 99999.0);
        QCOMPARE(untouched, -1.0);
        // Only the chosen rows count.
        QCOMPARE(doubles({30, 60, 200})->resultantMeanDirection(length, {0, 1}), 45.0);
    }

    void regression()
    {
        QVector<QPointF> line;
        for (double x : {-2.0, 0.5, 1.0, 4.0, 7.5})
            line << QPointF(x, 2 * x + 3);
        double slope = 0, intercept = 0, r = 0;
        points(line)->calculateRegressionLine(slope, intercept, r);
        QVERIFY(std::fabs(slope - 2) < 1e-12);
        QVERIFY(std::fabs(intercept - 3) < 1e-12);
        QVERIFY(std::fabs(r - 1) < 1e-12);
        // Anti-correlated, with noise of known effect: y = -x exactly except symmetric errors.
        points({{0, 1}, {1, -2}, {2, -1}, {3, -4}})->calculateRegressionLine(slope, intercept, r);
        QVERIFY(std::fabs(slope - (-1.4)) < 1e-12); // sum dx dy / sum dx^2 = -7 / 5
        QVERIFY(r < -0.8);
        points({{4, 1}, {4, 5}, {4, 6}})->calculateRegressionLine(slope, intercept, r);
        QCOMPARE(slope, 99999.0);
        QCOMPARE(intercept, 4.0);
    }

    void spreadAboutRowOne()
    {
        // The reference is the value of row 1 (5), not the mean (3).
        QVERIFY(std::fabs(doubles({1, 5, 3})->standardDeviation() - std::sqrt(20.0 / 3.0)) < 1e-12);
        QCOMPARE(doubles({})->standardDeviation(), 0.0);
        // One row: row 1 is blank, so the reference is 99999.
        QVERIFY(std::fabs(doubles({1})->standardDeviation() - 99998.0) < 1e-9);
    }

    void minMaxOverColumns()
    {
        MatrixData m(QStringLiteral("m"), 3, 2, QVariant::Double, true);
        m.setDouble(0, 0, 4);
        m.setDouble(1, 0, -1);
        m.setDouble(2, 1, 10);
        double min = 0, mean = 0, max = 0;
        QVERIFY(m.getMinMax(min, mean, max, boost::dynamic_bitset<>()));
        QCOMPARE(min, -1.0);
        QCOMPARE(max, 10.0);
        QCOMPARE(mean, 13.0 / 3.0);
        MatrixData empty(QStringLiteral("e"), 3, 1, QVariant::Double, true);
        QVERIFY(!empty.getMinMax(min, mean, max, boost::dynamic_bitset<>()));
    }

    void plunges_data()
    {
        QTest::addColumn<double>("rake");
        QTest::addColumn<double>("dip");
        // sin(plunge) = sin(rake) sin(dip): the line's height gained per unit along it.
        QTest::newRow("down dip") << 90.0 << 30.0;
        QTest::newRow("along strike") << 0.0 << 60.0;
        QTest::newRow("oblique") << 45.0 << 45.0;
        QTest::newRow("vertical plane") << 30.0 << 90.0;
    }
    void plunges()
    {
        QFETCH(double, rake);
        QFETCH(double, dip);
        double plunge = 0, azimuth = 0;
        MatrixData::plungeAndAzimuth(plunge, azimuth, rake, 40.0, dip);
        const double expected = deg(std::asin(std::sin(rake * M_PI / 180) * std::sin(dip * M_PI / 180)));
        QVERIFY(std::fabs(plunge - expected) < 1e-9);
        // The line lies in the plane: its horizontal part makes the angle t with the strike
        // line, where cos(rake) = cos(t) cos(plunge).
        const double t = deg(std::acos(std::cos(rake * M_PI / 180) / std::cos(plunge * M_PI / 180)));
        const double fromStrike = std::fmod(azimuth - (360.0 - (90.0 - 40.0)) + 720.0, 360.0);
        QVERIFY2(std::fabs(fromStrike - t) < 1e-9, qPrintable(QString::number(azimuth)));
    }

    void orientationMatrix()
    {
        // Five vertical lines: the orientation matrix is diag(n, n, 0).
        auto m = points({{90, 0}, {90, 45}, {90, 100}, {90, 200}, {90, 300}});
        double a = 0, b = 0, c = 0;
        QVERIFY(m->calculateMomentsOfInertia(a, b, c));
        QVERIFY(std::fabs(a - 5) < 1e-9 && std::fabs(b - 5) < 1e-9 && std::fabs(c) < 1e-9);
        // Horizontal lines along north and east: cosines (1,0,0) and (0,1,0). North is written
        // as azimuth 360: a QPointF of (0, 0) is a null cell, skipped like a blank.
        auto h = points({{0, 360}, {0, 90}});
        QVERIFY(h->calculateMomentsOfInertia(a, b, c));
        QVERIFY(std::fabs(a - 2) < 1e-9 && std::fabs(b - 1) < 1e-9 && std::fabs(c - 1) < 1e-9);
    }

    void intervals_data()
    {
        QTest::addColumn<double>("v");
        QTest::addColumn<int>("bin");
        // Four bins of 2.5 from 10: [10, 12.5), [12.5, 15), [15, 17.5), [17.5, 20].
        QTest::newRow("bottom edge") << 10.0 << 0;
        QTest::newRow("inner edge belongs to the next") << 12.5 << 1;
        QTest::newRow("inside") << 16.0 << 2;
        QTest::newRow("top of the last bin") << 20.0 << 3;
        QTest::newRow("below") << 9.99 << -1;
        QTest::newRow("above") << 20.01 << -1;
    }
    void intervals()
    {
        QFETCH(double, v);
        QFETCH(int, bin);
        int counts[4] = {0, 0, 0, 0};
        double lower[4] = {0}, upper[4] = {0};
        QCOMPARE(MatrixData::findInterval(v, 4, 10.0, 2.5, counts, lower, upper), bin);
        if (bin >= 0) {
            QCOMPARE(counts[bin], 1);
            QCOMPARE(lower[bin], 10.0 + 2.5 * bin);
        }
        QCOMPARE(MatrixData::findInterval(v, 0, 10.0, 2.5, counts, lower, upper), -1);
    }

    void histogram()
    {
        auto m = doubles({1, 2, 2, 3, 7, 99999});
        double step = 99999.0;
        std::unique_ptr<MatrixData> h(m->newFrequencyData(step, MatrixData::HISTOGRAM_COUNT, {}, nullptr, true, true));
        QVERIFY(h);
        QCOMPARE(step, 6.0 / 49.0); // the caller receives the step
        QCOMPARE(h->rowCount(), 50);
        // 50 bins from min - step: the maximum sits exactly at the top of the last bin and falls
        // out of range, as the bin rule of this histogram has always had it.
        QCOMPARE(h->validValueRowCount(), 4);
        step = 2.0;
        std::unique_ptr<MatrixData> two(m->newFrequencyData(step, MatrixData::HISTOGRAM_PERCENT, {}, nullptr, true, true));
        // Bins of 2 from min - step = -1: [-1,1) [1,3) [3,5) [5,7) [7,9).
        QCOMPARE(two->rowCount(), 5);
        QCOMPARE(two->toDouble(1, 0), 60.0);
        QCOMPARE(two->toDouble(2, 0), 20.0);
        QCOMPARE(two->toDouble(4, 0), 20.0);
        QCOMPARE(two->toDouble(4, 2), 7.0);
        QCOMPARE(two->toDouble(4, 3), 9.0);
        // A direction counted also at +180 when not axial.
        auto dirs = doubles({10, 20});
        step = 90.0;
        std::vector<std::vector<QVariant>> none;
        std::unique_ptr<MatrixData> rose(dirs->newFrequencyData(90.0, 4, 0.0, MatrixData::HISTOGRAM_COUNT, {}, nullptr,
                                                               nullptr, none, false));
        QCOMPARE(rose->toInt(0, 0), 2);
        QCOMPARE(rose->toInt(2, 0), 2);
        QCOMPARE(rose->validValueRowCount(), 4);
        // Text columns have no histogram.
        MatrixData text(QStringLiteral("t"), 2, 1, QVariant::String, true);
        std::unique_ptr<MatrixData> nothing(text.newFrequencyData(step, MatrixData::HISTOGRAM_COUNT, {}, nullptr, true, true));
        QCOMPARE(nothing->name(), QStringLiteral("No Scalar Value(s)"));
    }

    void interpolation()
    {
        MatrixData m(QStringLiteral("m"), 4, 2, QVariant::Double, true);
        const double xs[] = {0, 1, 3, 6}, ys[] = {10, 20, 0, 30};
        for (int i = 0; i < 4; ++i) {
            m.setDouble(i, 0, xs[i]);
            m.setDouble(i, 1, ys[i]);
        }
        QCOMPARE(m.getInterpolationValue(2.0, 0, 1), 10.0);
        QCOMPARE(m.getInterpolationValue(4.5, 0, 1), 15.0);
        QCOMPARE(m.getInterpolationValue(-5, 0, 1), 10.0);
        QCOMPARE(m.getInterpolationValue(9, 0, 1), 30.0);
        auto ramp = doubles({1, 99999, 99999, 99999, 9});
        ramp->interpolate(4, 0, 0, nullptr);
        QCOMPARE(ramp->toDouble(1, 0), 3.0);
        QCOMPARE(ramp->toDouble(3, 0), 7.0);
    }

    void polygon()
    {
        auto square = points({{0, 0}, {2, 0}, {2, 2}, {0, 2}});
        QVERIFY(square->pointInOrOut({1, 1}));
        QVERIFY(!square->pointInOrOut({3, 1}));
        QVERIFY(square->pointInOrOut({2, 2})); // a vertex
        QVERIFY(!doubles({1, 2})->pointInOrOut({1, 1})); // not a point column
    }

    void measuredDepth()
    {
        auto x = doubles({0, 3, 3}), y = doubles({0, 4, 4}), z = doubles({0, 0, 12});
        std::unique_ptr<MatrixData> md(MatrixData::createMeasuredDepth(x.get(), y.get(), z.get()));
        QCOMPARE(md->toDouble(1, 0), 5.0);
        QCOMPARE(md->toDouble(2, 0), 17.0);
        QVERIFY(md->isNullObject(0, 0)); // row 0 is not written
    }
};

QTEST_GUILESS_MAIN(TestMatrixStatistics)
#include "tst_matrixstatistics.moc"
