// Conversions of the unit catalogue held against GNU units 2.22 and its own definitions file. Each figure was
// printed by `units -t -d 15 <from> <to>` with the arguments in the comment beside it, and is written in as a
// literal so the test needs no GNU units at run time. Where the catalogue's data knowingly differ from the physical
// value, the row pins the catalogue's figure and asserts that it still differs from GNU units', so that a
// "correction" of the data, which would change stored values, cannot pass unnoticed.

#include "frame/rkProductInfo.h"
#include "units/UnitManager.h"
#include "units/UnitManagers.h"

#include <QtTest>

#include <cmath>
#include <memory>

using namespace rkBase;

namespace {

// The relative difference from GNU units lies in [low, high]. GNU units prints 15 significant digits: 1e-13 leaves
// room for its rounding and ours; figures exact in decimal get a few ulps. For a knowing departure, `catalogue` is
// the catalogue's own result, value * f[from] / f[to], compared exactly.
struct Case {
    const char* label;
    std::shared_ptr<UnitManager> (*make)();
    double value;
    int from, to;
    double gnu, low, high, catalogue = std::nan("");
};

#define M(T) [] { return std::shared_ptr<UnitManager>(new T##UnitManager(std::string(), nullptr)); }

// clang-format off
const Case kCases[] = {
    // Length: 1 km, 3 mi; small length: 5 mi, 6 ft.
    {"5 km in mi", M(Length), 5.0, 1, 3, 3.10685596118667, 0, 1e-13},         // '5 km' 'mi'
    {"12 mi in km", M(Length), 12.0, 3, 1, 19.312128, 0, 1e-14},              // '12 mi' 'km'
    {"3 mi in ft", M(SmallLength), 3.0, 5, 6, 15840.0, 0, 1e-15},             // '3 mi' 'ft'
    // Area: 1 km2, 3 mi2; volume: 2 km3, 3 mi3.
    {"3 mi2 in km2", M(Area), 3.0, 3, 1, 7.769964331008, 0, 1e-13},           // '3 mi^2' 'km^2'
    {"2 km3 in mi3", M(Volume), 2.0, 2, 3, 0.479825517157855, 0, 1e-13},      // '2 km^3' 'mi^3'
    // Pressure: 2 GPa, 4 kbar.
    {"1 GPa in kbar", M(Pressure), 1.0, 2, 4, 10.0, 0, 1e-15},                // '1 GPa' 'kbar'
    // Temperature: 0 Celsius, 1 Fahrenheit, 2 kelvin, through GNU units' function syntax.
    {"37 C in F", M(Temperature), 37.0, 0, 1, 98.6, 0, 1e-14},                // 'tempC(37)' 'tempF'
    {"25 C in K", M(Temperature), 25.0, 0, 2, 298.15, 0, 1e-14},              // 'tempC(25)' 'K'
    {"300 K in C", M(Temperature), 300.0, 2, 0, 26.85, 0, 1e-13},             // '300 K' 'tempC'
    // Per length, area and volume: 0 per metre, 1 per kilometre, 2 per foot, 3 per mile.
    {"1 /ft in /m", M(DimensionFrequency), 1.0, 2, 0, 3.28083989501312, 0, 1e-13},           // '1 /ft' '/m'
    {"10 /mi in /km", M(DimensionFrequency), 10.0, 3, 1, 6.21371192237334, 0, 1e-13},        // '10 /mi' '/km'
    {"1 /mi in /m", M(DepthCoefficient), 1.0, 3, 0, 0.000621371192237334, 0, 1e-13},         // '1 /mi' '/m'
    {"1 /ft2 in /m2", M(DimensionFrequencySquared), 1.0, 2, 0, 10.7639104167097, 0, 1e-13},  // '1 /ft^2' '/m^2'
    {"1 /ft3 in /m3", M(PerVolume), 1.0, 2, 0, 35.3146667214886, 0, 1e-13},                  // '1 /ft^3' '/m^3'
    // Fracture intensity.
    {"1 ft2/ft3 in m2/m3", M(P32), 1.0, 1, 0, 3.28083989501312, 0, 1e-13},    // '1 ft^2/ft^3' 'm^2/m^3'

    // Knowing departures. The cubic kilometre row holds 1e-06 where 1e-09 is meant; stored values
    // were written with it, so it stays.
    {"1 /km3 in /m3", M(PerVolume), 1.0, 1, 0, 1e-09, 100.0, 1e4, 1e-06},                      // '1 /km^3' '/m^3'
    // Angle factors carry nine significant digits only: a radian is 2.3e-10 short, a minute 2e-9
    // and a second 8e-10 long.
    {"1 rad in deg", M(Angle), 1.0, 1, 0, 57.2957795130823, 1e-11, 1e-9, 57.2957795},          // '1 radian' 'degree'
    {"1 min in deg", M(Angle), 1.0, 2, 0, 0.0166666666666667, 1e-10, 1e-8, 0.0166666667},      // '1 arcmin' 'degree'
    {"1 sec in deg", M(Angle), 1.0, 3, 0, 0.000277777777777778, 1e-10, 1e-8, 0.000277777778},  // '1 arcsec' 'degree'
    // The catalogue's psi is 6894.757294604437 Pa, 2.1e-10 above the exact pound-force figure. '1 psi' 'kPa':
    {"1 psi in kPa", M(Pressure), 1.0, 5, 0, 6.89475729316836, 1e-11, 1e-9, 0.006894757294604437 / 0.001},
    // A square metre is 1013249966000 darcy in the catalogue, 3.4e-8 short of GNU units; a square
    // foot 94130921830 darcy, 3.3e-5 short.
    {"1 m2 in D", M(Permeability), 1.0, 2, 0, 1013250000000.0, 1e-9, 1e-7, 1013249966000.0},   // '1 m^2' 'darcy'
    {"1 ft2 in D", M(Permeability), 1.0, 3, 0, 94134005280.0, 1e-5, 1e-4, 94130921830.0},      // '1 ft^2' 'darcy'
};
// clang-format on

QString text(double v) { return QString::number(v, 'g', 17); }

} // namespace

class TestGnuUnits : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { rkProductInfo::instance().init("rkdemo"); }
    void conversions_data();
    void conversions();
};

void TestGnuUnits::conversions_data()
{
    QTest::addColumn<int>("index");
    for (size_t i = 0; i < sizeof kCases / sizeof kCases[0]; ++i)
        QTest::newRow(kCases[i].label) << static_cast<int>(i);
}

void TestGnuUnits::conversions()
{
    QFETCH(int, index);
    const Case& c = kCases[index];
    const double got = c.make()->convert(c.value, c.from, c.to);
    if (!std::isnan(c.catalogue))
        QVERIFY2(got == c.catalogue,
                 qPrintable(QStringLiteral("%1, the catalogue says %2").arg(text(got), text(c.catalogue))));
    const double d = std::fabs(got - c.gnu) / std::fabs(c.gnu);
    QVERIFY2(d >= c.low && d <= c.high,
             qPrintable(QStringLiteral("%1 against GNU units' %2: relative difference %3, expected in [%4, %5]")
                            .arg(text(got), text(c.gnu), text(d), text(c.low), text(c.high))));
}

QTEST_GUILESS_MAIN(TestGnuUnits)
#include "tst_gnuunits.moc"
