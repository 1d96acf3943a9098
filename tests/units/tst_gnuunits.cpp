// Conversions of the unit catalogue held against GNU units (version 2.22, its own definitions
// file). Each figure below was printed by the command in the comment beside it, run as
// `units -t -d 15 <from> <to>`; they are written in as literals so the test needs no GNU units
// at run time. Where the catalogue's data knowingly differ from the physical value, the second
// test pins the catalogue's figure and asserts that it still differs from GNU units', so that a
// "correction" of the data, which would change stored values, cannot pass unnoticed.

#include "frame/rkProductInfo.h"
#include "units/UnitManager.h"
#include "units/UnitManagers.h"

#include <QtTest>

#include <cmath>
#include <memory>

using namespace rkBase;

namespace {

std::shared_ptr<UnitManager> make(const QString& cls)
{
    const std::string none; // no category: plain conversion, nothing registered
    if (cls == QLatin1String("Length"))
        return std::make_shared<LengthUnitManager>(none, nullptr);
    if (cls == QLatin1String("SmallLength"))
        return std::make_shared<SmallLengthUnitManager>(none, nullptr);
    if (cls == QLatin1String("Area"))
        return std::make_shared<AreaUnitManager>(none, nullptr);
    if (cls == QLatin1String("Volume"))
        return std::make_shared<VolumeUnitManager>(none, nullptr);
    if (cls == QLatin1String("Angle"))
        return std::make_shared<AngleUnitManager>(none, nullptr);
    if (cls == QLatin1String("Pressure"))
        return std::make_shared<PressureUnitManager>(none, nullptr);
    if (cls == QLatin1String("Temperature"))
        return std::make_shared<TemperatureUnitManager>(none, nullptr);
    if (cls == QLatin1String("Permeability"))
        return std::make_shared<PermeabilityUnitManager>(none, nullptr);
    if (cls == QLatin1String("Velocity"))
        return std::make_shared<VelocityUnitManager>(none, nullptr);
    if (cls == QLatin1String("Density"))
        return std::make_shared<DensityUnitManager>(none, nullptr);
    if (cls == QLatin1String("P32"))
        return std::make_shared<P32UnitManager>(none, nullptr);
    if (cls == QLatin1String("SedimentGrain"))
        return std::make_shared<SedimentGrainUnitManager>(none, nullptr);
    if (cls == QLatin1String("DepthCoefficient"))
        return std::make_shared<DepthCoefficientUnitManager>(none, nullptr);
    if (cls == QLatin1String("DimensionFrequency"))
        return std::make_shared<DimensionFrequencyUnitManager>(none, nullptr);
    if (cls == QLatin1String("DimensionFrequencySquared"))
        return std::make_shared<DimensionFrequencySquaredUnitManager>(none, nullptr);
    if (cls == QLatin1String("PerVolume"))
        return std::make_shared<PerVolumeUnitManager>(none, nullptr);
    qFatal("unknown class %s", qPrintable(cls));
    return nullptr;
}

// Relative difference; GNU units' zero is compared absolutely.
double difference(double got, double reference)
{
    return reference == 0.0 ? std::fabs(got) : std::fabs(got - reference) / std::fabs(reference);
}

QString text(double v) { return QString::number(v, 'g', 17); }

} // namespace

class TestGnuUnits : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void agrees_data();
    void agrees();
    void departs_data();
    void departs();
};

void TestGnuUnits::initTestCase() { rkProductInfo::instance().init("rkdemo"); }

void TestGnuUnits::agrees_data()
{
    QTest::addColumn<QString>("cls");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<double>("gnu");
    // GNU units prints 15 significant digits: 1e-13 leaves room for its rounding and ours. Short
    // figures that are exact in decimal get a few ulps only.
    QTest::addColumn<double>("tolerance");

    // Length: 1 km, 3 mi.
    QTest::newRow("5 km in mi") << QStringLiteral("Length") << 5.0 << 1 << 3 << 3.10685596118667
                                << 1e-13;                                                             // '5 km' 'mi'
    QTest::newRow("12 mi in km") << QStringLiteral("Length") << 12.0 << 3 << 1 << 19.312128 << 1e-14; // '12 mi' 'km'
    QTest::newRow("1 ft in m") << QStringLiteral("Length") << 1.0 << 2 << 0 << 0.3048 << 1e-15;       // '1 ft' 'm'
    // Small length: 3 cm, 5 mi, 6 ft, 7 in.
    QTest::newRow("1 in in cm") << QStringLiteral("SmallLength") << 1.0 << 7 << 3 << 2.54 << 1e-15;    // '1 inch' 'cm'
    QTest::newRow("3 mi in ft") << QStringLiteral("SmallLength") << 3.0 << 5 << 6 << 15840.0 << 1e-15; // '3 mi' 'ft'
    QTest::newRow("1 um in mm") << QStringLiteral("SedimentGrain") << 1.0 << 3 << 2 << 0.001
                                << 1e-14; // '1 micron' 'mm'
    // Area: 0 m2, 1 km2, 2 ft2, 3 mi2.
    QTest::newRow("3 mi2 in km2") << QStringLiteral("Area") << 3.0 << 3 << 1 << 7.769964331008
                                  << 1e-13;                                                         // '3 mi^2' 'km^2'
    QTest::newRow("1 ft2 in m2") << QStringLiteral("Area") << 1.0 << 2 << 0 << 0.09290304 << 1e-15; // '1 ft^2' 'm^2'
    // Volume: 0 m3, 1 ft3, 2 km3, 3 mi3.
    QTest::newRow("2 km3 in mi3") << QStringLiteral("Volume") << 2.0 << 2 << 3 << 0.479825517157855
                                  << 1e-13; // '2 km^3' 'mi^3'
    QTest::newRow("1 ft3 in m3") << QStringLiteral("Volume") << 1.0 << 1 << 0 << 0.028316846592
                                 << 1e-14; // '1 ft^3' 'm^3'
    // Pressure: 0 kPa, 2 GPa, 3 bar, 4 kbar; psi in departs() below.
    QTest::newRow("1 GPa in kbar") << QStringLiteral("Pressure") << 1.0 << 2 << 4 << 10.0 << 1e-15;   // '1 GPa' 'kbar'
    QTest::newRow("250 kPa in bar") << QStringLiteral("Pressure") << 250.0 << 0 << 3 << 2.5 << 1e-15; // '250 kPa' 'bar'
    // Temperature: 0 Celsius, 1 Fahrenheit, 2 kelvin, through GNU units' function syntax.
    QTest::newRow("100 C in F") << QStringLiteral("Temperature") << 100.0 << 0 << 1 << 212.0
                                << 1e-14; // 'tempC(100)' 'tempF'
    QTest::newRow("37 C in F") << QStringLiteral("Temperature") << 37.0 << 0 << 1 << 98.6
                               << 1e-14; // 'tempC(37)' 'tempF'
    QTest::newRow("-40 F in C") << QStringLiteral("Temperature") << -40.0 << 1 << 0 << -40.0
                                << 1e-14; // 'tempF(-40)' 'tempC'
    QTest::newRow("98.6 F in C") << QStringLiteral("Temperature") << 98.6 << 1 << 0 << 37.0
                                 << 1e-14; // 'tempF(98.6)' 'tempC'
    QTest::newRow("25 C in K") << QStringLiteral("Temperature") << 25.0 << 0 << 2 << 298.15 << 1e-14; // 'tempC(25)' 'K'
    QTest::newRow("212 F in K") << QStringLiteral("Temperature") << 212.0 << 1 << 2 << 373.15
                                << 1e-14; // 'tempF(212)' 'K'
    QTest::newRow("300 K in C") << QStringLiteral("Temperature") << 300.0 << 2 << 0 << 26.85
                                << 1e-13;                                                            // '300 K' 'tempC'
    QTest::newRow("0 K in F") << QStringLiteral("Temperature") << 0.0 << 2 << 1 << -459.67 << 1e-14; // '0 K' 'tempF'
    QTest::newRow("-273.15 C in K") << QStringLiteral("Temperature") << -273.15 << 0 << 2 << 0.0
                                    << 1e-12; // 'tempC(-273.15)' 'K'
    // Permeability: 0 D, 1 mD; the square rows in departs() below.
    QTest::newRow("1 mD in D") << QStringLiteral("Permeability") << 1.0 << 1 << 0 << 0.001
                               << 1e-15; // '1 millidarcy' 'darcy'
    // Per length: 0 1/m, 1 1/km, 2 1/ft, 3 1/mi.
    QTest::newRow("1 /ft in /m") << QStringLiteral("DimensionFrequency") << 1.0 << 2 << 0 << 3.28083989501312
                                 << 1e-13; // '1 /ft' '/m'
    QTest::newRow("10 /mi in /km") << QStringLiteral("DimensionFrequency") << 10.0 << 3 << 1 << 6.21371192237334
                                   << 1e-13; // '10 /mi' '/km'
    QTest::newRow("1 /mi in /m") << QStringLiteral("DepthCoefficient") << 1.0 << 3 << 0 << 0.000621371192237334
                                 << 1e-13; // '1 /mi' '/m'
    QTest::newRow("1 /km in /m") << QStringLiteral("DepthCoefficient") << 1.0 << 1 << 0 << 0.001
                                 << 1e-15; // '1 /km' '/m'
    // Per area.
    QTest::newRow("1 /ft2 in /m2") << QStringLiteral("DimensionFrequencySquared") << 1.0 << 2 << 0 << 10.7639104167097
                                   << 1e-13; // '1 /ft^2' '/m^2'
    QTest::newRow("1 /mi2 in /m2") << QStringLiteral("DimensionFrequencySquared") << 1.0 << 3 << 0
                                   << 3.86102158542446e-07 << 1e-13; // '1 /mi^2' '/m^2'
    QTest::newRow("1 /km2 in /m2") << QStringLiteral("DimensionFrequencySquared") << 1.0 << 1 << 0 << 1e-06
                                   << 1e-15; // '1 /km^2' '/m^2'
    // Per volume; the cubic kilometre row in departs() below.
    QTest::newRow("1 /ft3 in /m3") << QStringLiteral("PerVolume") << 1.0 << 2 << 0 << 35.3146667214886
                                   << 1e-13; // '1 /ft^3' '/m^3'
    QTest::newRow("1 /mi3 in /m3") << QStringLiteral("PerVolume") << 1.0 << 3 << 0 << 2.39912758578928e-10
                                   << 1e-13; // '1 /mi^3' '/m^3'
    // Velocity, density, fracture intensity.
    QTest::newRow("1 ft/s in m/s") << QStringLiteral("Velocity") << 1.0 << 1 << 0 << 0.3048 << 1e-15; // '1 ft/s' 'm/s'
    QTest::newRow("1 g/cm3 in kg/m3") << QStringLiteral("Density") << 1.0 << 1 << 0 << 1000.0
                                      << 1e-15; // '1 g/cm^3' 'kg/m^3'
    QTest::newRow("1 ft2/ft3 in m2/m3") << QStringLiteral("P32") << 1.0 << 1 << 0 << 3.28083989501312
                                        << 1e-13; // '1 ft^2/ft^3' 'm^2/m^3'
}

void TestGnuUnits::agrees()
{
    QFETCH(QString, cls);
    QFETCH(double, value);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(double, gnu);
    QFETCH(double, tolerance);
    const double got = make(cls)->convert(value, from, to);
    QVERIFY2(difference(got, gnu) <= tolerance,
             qPrintable(QStringLiteral("%1 against GNU units' %2").arg(text(got), text(gnu))));
}

void TestGnuUnits::departs_data()
{
    QTest::addColumn<QString>("cls");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    // The catalogue's own result, value * f[from] / f[to] from its factors: compared exactly.
    QTest::addColumn<double>("catalogue");
    QTest::addColumn<double>("gnu");
    // The relative difference from GNU units lies strictly between these two.
    QTest::addColumn<double>("above");
    QTest::addColumn<double>("below");

    // The per-volume row of the cubic kilometre holds 1e-06 where 1e-09 is meant; stored values
    // were written with it, so it stays.
    QTest::newRow("1 /km3 in /m3") << QStringLiteral("PerVolume") << 1.0 << 1 << 0 << 1.0 * 1e-06 / 1.0
                                   << 1e-09 // '1 /km^3' '/m^3'
                                   << 100.0 << 1e4;
    // Angle factors carry nine significant digits only: a radian is 2.3e-10 short, a minute
    // 2e-9 and a second 8e-10 long.
    QTest::newRow("1 rad in deg") << QStringLiteral("Angle") << 1.0 << 1 << 0 << 1.0 * 57.2957795 / 1.0
                                  << 57.2957795130823 << 1e-11 << 1e-9; // '1 radian' 'degree'
    QTest::newRow("1 min in deg") << QStringLiteral("Angle") << 1.0 << 2 << 0 << 1.0 * 0.0166666667 / 1.0
                                  << 0.0166666666666667 << 1e-10 << 1e-8; // '1 arcmin' 'degree'
    QTest::newRow("1 sec in deg") << QStringLiteral("Angle") << 1.0 << 3 << 0 << 1.0 * 0.000277777778 / 1.0
                                  << 0.000277777777777778 << 1e-10 << 1e-8; // '1 arcsec' 'degree'
    QTest::newRow("1 rad in sec") << QStringLiteral("Angle") << 1.0 << 1 << 3 << 1.0 * 57.2957795 / 0.000277777778
                                  << 206264.806247096 << 1e-10 << 1e-8; // '1 radian' 'arcsec'
    QTest::newRow("90 deg in rad") << QStringLiteral("Angle") << 90.0 << 0 << 1 << 90.0 * 1.0 / 57.2957795
                                   << 1.5707963267949 << 1e-11 << 1e-9; // '90 degree' 'radian'
    // The catalogue's psi is 6894.757294604437 Pa, 2.1e-10 above the exact pound-force figure.
    QTest::newRow("1 psi in kPa") << QStringLiteral("Pressure") << 1.0 << 5 << 0 << 1.0 * 0.006894757294604437 / 0.001
                                  << 6.89475729316836 << 1e-11 << 1e-9; // '1 psi' 'kPa'
    QTest::newRow("1000 psi in bar") << QStringLiteral("Pressure") << 1000.0 << 5 << 3
                                     << 1000.0 * 0.006894757294604437 / 0.1 << 68.9475729316836 << 1e-11
                                     << 1e-9; // '1000 psi' 'bar'
    // A square metre is 1013249966000 darcy in the catalogue, 1.01325e12 (3.4e-8 more) in GNU
    // units; a square foot is 94130921830 darcy, 3.3e-5 short of GNU units' 94134005280.
    QTest::newRow("1 D in m2") << QStringLiteral("Permeability") << 1.0 << 0 << 2 << 1.0 * 1.0 / 1013249966000.0
                               << 9.86923266716013e-13 << 1e-9 << 1e-7; // '1 darcy' 'm^2'
    QTest::newRow("250 mD in m2") << QStringLiteral("Permeability") << 250.0 << 1 << 2
                                  << 250.0 * 0.001 / 1013249966000.0 << 2.46730816679003e-13 << 1e-9
                                  << 1e-7; // '250 millidarcy' 'm^2'
    QTest::newRow("1 m2 in D") << QStringLiteral("Permeability") << 1.0 << 2 << 0 << 1.0 * 1013249966000.0 / 1.0
                               << 1013250000000.0 << 1e-9 << 1e-7; // '1 m^2' 'darcy'
    QTest::newRow("1 D in ft2") << QStringLiteral("Permeability") << 1.0 << 0 << 3 << 1.0 * 1.0 / 94130921830.0
                                << 1.06231536310977e-11 << 1e-5 << 1e-4; // '1 darcy' 'ft^2'
    QTest::newRow("1 ft2 in D") << QStringLiteral("Permeability") << 1.0 << 3 << 0 << 1.0 * 94130921830.0 / 1.0
                                << 94134005280.0 << 1e-5 << 1e-4; // '1 ft^2' 'darcy'
}

void TestGnuUnits::departs()
{
    QFETCH(QString, cls);
    QFETCH(double, value);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(double, catalogue);
    QFETCH(double, gnu);
    QFETCH(double, above);
    QFETCH(double, below);
    const double got = make(cls)->convert(value, from, to);
    QVERIFY2(got == catalogue, qPrintable(QStringLiteral("%1, the catalogue says %2").arg(text(got), text(catalogue))));
    const double d = difference(got, gnu);
    QVERIFY2(d > above && d < below,
             qPrintable(QStringLiteral("relative difference %1 from GNU units' %2, expected between %3 and %4")
                            .arg(text(d), text(gnu), text(above), text(below))));
}

QTEST_GUILESS_MAIN(TestGnuUnits)
#include "tst_gnuunits.moc"
