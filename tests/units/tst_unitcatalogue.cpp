// The unit catalogue checked against a table of its own: every class, every row, every field.
// This table is typed in apart from the library's tables, so that a slip in either one shows up
// here. Factors are compared bit for bit, tags code point for code point.

#include "frame/rkProductInfo.h"
#include "units/DisplayUnitManager.h"
#include "units/UnitManager.h"
#include "units/UnitManagers.h"

#include <QtTest>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace rkBase;

namespace {

using Ptr = std::shared_ptr<UnitManager>;

// A manager with one more row, of factor exactly 1.0, after its own table. Then
// convert(1.0, row, extra) = 1.0 * f[row] / 1.0 is f[row] to the last bit, also for the one-row
// tables whose factor no conversion between their own rows can show.
template <class T> class FactorProbe : public T {
public:
    template <class... A> explicit FactorProbe(A&&... args) : T(std::forward<A>(args)...)
    {
        this->addUnit(1.0, QStringLiteral("probe"), QStringLiteral("probe"));
    }
};

struct Chain {
    int major, second, last;
};
const Chain N{-1, -1, -1};

struct Row {
    const char* name; // UTF-8
    const char* tag;  // UTF-8
    double factor;
    Chain chain;
};

// Builds the class, or its factor probe; both take (category, [model unit,] display table).
using Make = std::function<Ptr(const std::string&, DisplayUnitManager*, bool probe)>;
#define MAKE_WITH(T, ...)                                                                                              \
    [](const std::string& c, DisplayUnitManager* d, bool probe) {                                                      \
        return probe ? Ptr(new FactorProbe<T>(c, __VA_ARGS__ d)) : Ptr(new T(c, __VA_ARGS__ d));                       \
    }
#define MAKE(T) MAKE_WITH(T, )

struct Entry {
    const char* label;
    const char* key;
    int numUnits, model, display, precision; // rows offered, model unit, default display unit, precision registered
    Make make;
    std::vector<Row> rows;
};

// clang-format off
const std::vector<Row> kSmallLength = {
    {"kilometre", "km", 1000.0, N}, {"metre", "m", 1.0, N}, {"decimetre", "dm", 0.1, {4, 2, 4}},
    {"centimetre", "cm", 0.01, {4, 2, 4}}, {"millimetre", "mm", 0.001, {4, 2, 4}}, {"mile", "mi", 1609.344, N},
    {"foot", "ft", 0.3048, N}, {"inch", "in", 0.0254, N}};

const std::vector<Entry> kCatalogue = {
    {"Length", "Length", 4, 0, 0, 1, MAKE(LengthUnitManager), {
        {"metre", "m", 1.0, {1, 0, -1}}, {"kilometre", "km", 1000.0, {1, 0, -1}},
        {"foot", "ft", 0.3048, {2, -1, -1}}, {"mile", "mi", 1609.344, {2, -1, -1}}}},
    {"SmallLength", "Small Length", 8, 4, 4, 2, MAKE(SmallLengthUnitManager), kSmallLength},
    // The second constructor takes the model unit and always shows unit 1 first.
    {"SmallLength(model 7)", "Small Length", 8, 7, 1, 2, MAKE_WITH(SmallLengthUnitManager, 7,), kSmallLength},
    {"Area", "Area", 4, 0, 0, 0, MAKE(AreaUnitManager), {
        {"square metre", u8"m\u00B2", 1.0, N}, {"square kilometre", u8"km\u00B2", 1000000.0, N},
        {"square foot", u8"ft\u00B2", 0.09290304, N}, {"square mile", u8"mi\u00B2", 2589988.110336, N}}},
    // Not in the order of the area rows.
    {"Volume", "Volume", 4, 0, 0, 0, MAKE(VolumeUnitManager), {
        {"cubic metre", u8"m\u00B3", 1.0, N}, {"cubic foot", u8"ft\u00B3", 0.028316846592000004, N},
        {"cubic kilometre", u8"km\u00B3", 1000000000.0, N}, {"cubic mile", u8"mi\u00B3", 4168181825.44058, N}}},
    {"Angle", "Angle", 4, 0, 0, 2, MAKE(AngleUnitManager), {
        {"degree", "deg", 1.0, {0, 2, 3}}, {"radian", "rad", 57.2957795, N},
        {"minute", "'", 0.0166666667, {0, 2, 3}}, {"second", "\"", 0.000277777778, {0, 2, 3}}}},
    // Shown time is negative where depth-positive model time is positive.
    {"Time", "Time", 2, 2, 0, 2, MAKE(TimeUnitManager), {
        {"millisecond", "ms", -1.0, N}, {"second", "secs", -1000.0, {-1, -1, 1}}, {"model time", "mtime", 1.0, N}}},
    {"PositiveTime", "Real Time", 4, 0, 0, 2, MAKE(PositiveTimeUnitManager), {
        {"millisecond twt", "ms twt", 1.0, N}, {"millisecond owt", "ms owt", 0.5, {-1, -1, 1}},
        {"second twt", "s twt", 1000.0, {-1, -1, 2}}, {"second owt", "s owt", 500.0, {-1, -1, 3}}}},
    {"Age", "Age", 1, 0, 0, 1, MAKE(AgeUnitManager), {{"million year", "Ma", -1.0, {-1, -1, 0}}}},
    {"TimeFrequency", "frequency", 1, 0, 0, 2, MAKE(TimeFrequencyUnitManager), {{"hertz", "Hz", 1.0, {-1, -1, 0}}}},
    {"Velocity", "Velocity", 2, 0, 0, 0, MAKE(VelocityUnitManager), {
        {"metre/second", "m/s", 1.0, N}, {"foot/second", "ft/s", 0.3048, N}}},
    {"Density", "Density", 2, 0, 0, 0, MAKE(DensityUnitManager), {
        {"kilogram/cubic metre", u8"kg/m\u00B3", 0.001, N}, {"gram/cubic centimetre", u8"g/cm\u00B3", 1.0, N}}},
    {"Pressure", "Pressure", 6, 1, 1, 1, MAKE(PressureUnitManager), {
        {"kilopascal", "kPa", 0.001, N}, {"megapascal", "MPa", 1.0, N}, {"gigapascal", "GPa", 1000.0, N},
        {"bar", "bar", 0.1, N}, {"kilobar", "kbar", 100.0, N}, {"pound/square inch", "psi", 0.006894757294604437, N}}},
    // The factors stand in the table although the class's own convert() never reads them.
    {"Temperature", "Temperature", 3, 0, 0, 1, MAKE(TemperatureUnitManager), {
        {"degree Celsius", u8"\u00B0C", 1.0, N}, {"degree Fahrenheit", u8"\u00B0F", 60.0, N},
        {"kelvin", "K", 273.15, N}}},
    {"ThermalConductivity", "Thermal Conductivity", 1, 0, 0, 2, MAKE(ThermalConductivityUnitManager), {
        {u8"watt/(metre\u00B7kelvin)", u8"W/(m\u00B7K)", -1.0, {-1, -1, 0}}}},
    {"ThermalDiffusivity", "Thermal Diffusivity", 1, 0, 0, 7, MAKE(ThermalDiffusivityUnitManager), {
        {"square metre/second", u8"m\u00B2/s", -1.0, {-1, -1, 0}}}},
    {"SpecificHeatCapacity", "Specific Heat Capacity", 1, 0, 0, 3, MAKE(SpecificHeatCapacityUnitManager), {
        {u8"kcal/kilogram\u00B7kelvin", u8"kcal/(kg\u00B7K)", -1.0, {-1, -1, 0}}}},
    {"Permeability", "Permeability", 4, 0, 0, 4, MAKE(PermeabilityUnitManager), {
        {"darcy", "D", 1.0, N}, {"millidarcy", "mD", 0.001, N},
        {"square metre", u8"m\u00B2", 1013249966000.0, N}, {"square foot", u8"ft\u00B2", 94130921830.0, N}}},
    {"Fraction", "Fraction", 2, 0, 0, 4, MAKE(FractionUnitManager), {
        {"fraction", "", 1.0, {0, 1, 0}}, {"percent", "%", 0.01, {0, 1, 0}}}},
    {"Dimensionless", "Dimension", 1, 0, 0, 4, MAKE(DimensionlessUnitManager), {{"", "", 1.0, {0, 0, 0}}}},
    // phi is a plain factor here, not a logarithm; the micro sign is U+00B5, not Greek mu.
    {"SedimentGrain", "grain size", 7, 2, 2, 1, MAKE(SedimentGrainUnitManager), {
        {"metre", "m", 1.0, N}, {"centimetre", "cm", 0.01, N}, {"millimetre", "mm", 0.001, N},
        {"micrometre", u8"\u00B5m", 1e-06, N}, {"phi", u8"\u0278", 0.30102999566, N}, {"foot", "ft", 0.3048, N},
        {"inch", "in", 0.0254, N}}},
    {"P32", "p32", 2, 0, 0, 4, MAKE(P32UnitManager), {
        {"square metre/cubic metre", u8"m\u00B2/m\u00B3", 1.0, N},
        {"square foot/cubic foot", u8"ft\u00B2/ft\u00B3", 3.280839895013123, N}}},
    // Row 1 holds 1e-06 (the per-area figure), not 1e-09; stored data depend on it as it is.
    {"PerVolume", "Per Volume", 4, 0, 0, 4, MAKE(PerVolumeUnitManager), {
        {"1/cubic metre", u8"1/m\u00B3", 1.0, N}, {"1/cubic kilometre", u8"1/km\u00B3", 1e-06, N},
        {"1/cubic foot", u8"1/ft\u00B3", 35.314666721488585, N},
        {"1/cubic mile", u8"1/mi\u00B3", 2.399127585789277e-10, N}}},
    {"DepthCoefficient", "depth coefficient", 4, 1, 1, 2, MAKE(DepthCoefficientUnitManager), {
        {"1/metre", u8"m\u207B\u00B9", 1.0, N}, {"1/kilometre", u8"km\u207B\u00B9", 0.001, N},
        {"1/foot", u8"ft\u207B\u00B9", 3.280839895013123, N},
        {"1/mile", u8"mi\u207B\u00B9", 0.0006213711922373339, N}}},
    {"DimensionFrequency", "Dimension Frequency", 4, 0, 1, 2, MAKE(DimensionFrequencyUnitManager), {
        {"1/metre", u8"m\u207B\u00B9", 1.0, {1, 0, -1}}, {"1/kilometre", u8"km\u207B\u00B9", 0.001, {1, 0, -1}},
        {"1/foot", u8"ft\u207B\u00B9", 3.280839895013123, {2, -1, -1}},
        {"1/mile", u8"mi\u207B\u00B9", 0.0006213711922373339, {2, -1, -1}}}},
    {"DimensionFrequencySquared", "Dimension Frequency Squared", 4, 0, 1, 4,
     MAKE(DimensionFrequencySquaredUnitManager), {
        {"1/square metre", u8"m\u207B\u00B2", 1.0, {1, 0, -1}},
        {"1/square kilometre", u8"km\u207B\u00B2", 1e-06, {1, 0, -1}},
        {"1/square foot", u8"ft\u207B\u00B2", 10.763910416709722, {2, -1, -1}},
        {"1/square mile", u8"mi\u207B\u00B2", 3.861021585424458e-07, {2, -1, -1}}}},
};
// clang-format on

QString exact(double v) { return QString::number(v, 'g', 17); }

// One unit as text, tag spelled in code points, so that a failure names the row and the glyph.
QString rowText(int key, const QString& name, const QString& tag, double factor, const Chain& c)
{
    QStringList points;
    for (uint u : tag.toUcs4())
        points << QStringLiteral("U+%1").arg(u, 4, 16, QLatin1Char('0')).toUpper();
    const QString keyAndChain = QStringLiteral("%1 (%2, %3, %4)").arg(key).arg(c.major).arg(c.second).arg(c.last);
    return QStringLiteral("%1 %2 [%3] %4").arg(keyAndChain, name, points.join(QLatin1Char(' ')), exact(factor));
}

} // namespace

class TestUnitCatalogue : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { rkProductInfo::instance().init("rkdemo"); }
    void catalogue_data();
    void catalogue();
    void anglePrecision();
    void temperature();
    void timeAndTexts();
};

void TestUnitCatalogue::catalogue_data()
{
    QTest::addColumn<int>("entry");
    for (size_t i = 0; i < kCatalogue.size(); ++i)
        QTest::newRow(kCatalogue[i].label) << static_cast<int>(i);
}

// Key, sizes, model unit and what the constructor registers; then each row, and the rows just
// outside the table, which have no name, tag, factor or chain.
void TestUnitCatalogue::catalogue()
{
    QFETCH(int, entry);
    const Entry& e = kCatalogue[entry];
    const int count = static_cast<int>(e.rows.size());
    const std::string category = "test";
    DisplayUnitManager table;
    const Ptr m = e.make(category, &table, false);
    const Ptr probe = e.make(std::string(), nullptr, true);

    QCOMPARE(QString::fromStdString(m->key()), QString::fromUtf8(e.key));
    QCOMPARE(m->numUnits(), e.numUnits);
    QCOMPARE(m->modelUnit(), e.model);
    QVERIFY2(table.find(category) != table.end(), "the constructor did not register its category");
    QCOMPARE(table.displayUnit(category), e.display);
    QCOMPARE(table.displayPrecision(category), e.precision);

    QStringList names;
    for (int key = -1; key <= count; ++key) {
        const bool inside = key >= 0 && key < count;
        const Row r = inside ? e.rows[key] : Row{"", "", 1.0, N};
        Chain c{7, 7, 7};
        m->getMSPSystem(key, c.major, c.second, c.last);
        // The base conversion, called by name, so that the temperature table is read as well.
        const double factor = probe->UnitManager::convert(1.0, key, inside ? count : key);
        QCOMPARE(rowText(key, m->getUnitName(key), m->getUnitTag(key), factor, c),
                 rowText(key, QString::fromUtf8(r.name), QString::fromUtf8(r.tag), r.factor, r.chain));
        if (inside)
            names << QString::fromUtf8(r.name);
    }
    QCOMPARE(table.find(category)->second.unitNames, names);

    // The unit count the base class was given bounds what may become the display unit.
    m->displayUnit(count);
    QCOMPARE(table.displayUnit(category), e.display);
    m->displayUnit(count - 1);
    QCOMPARE(table.displayUnit(category), count - 1);
}

// Only the exact product name switches the angle to whole degrees.
void TestUnitCatalogue::anglePrecision()
{
    const std::pair<const char*, int> products[] = {
        {"FieldTesk", 0}, {"rkdemo", 2}, {"fieldtesk", 2}, {"FieldTesk ", 2}};
    for (const auto& p : products) {
        rkProductInfo::instance().init(p.first);
        DisplayUnitManager table;
        AngleUnitManager angle("orientation", &table);
        QVERIFY2(table.displayPrecision(std::string("orientation")) == p.second, p.first);
    }
    rkProductInfo::instance().init("rkdemo");
}

// 0 Celsius, 1 Fahrenheit, 2 kelvin; the results as the conversion defines them, operation for
// operation, so that they compare exactly. Same unit or a key outside 0..2: the value as given.
void TestUnitCatalogue::temperature()
{
    TemperatureUnitManager t(std::string(), nullptr);
    const auto text = [](int from, int to, double v) {
        return QStringLiteral("%1->%2 %3").arg(from).arg(to).arg(exact(v));
    };
    for (double v : {36.6, -273.15}) {
        const double want[3][3] = {{v, v * 9.0 / 5.0 + 32.0, v + 273.15},
                                   {(v - 32.0) * 5.0 / 9.0, v, (v - 32.0) * 5.0 / 9.0 + 273.15},
                                   {v - 273.15, (v - 273.15) * 9.0 / 5.0 + 32.0, v}};
        for (int from = -1; from <= 3; ++from) {
            for (int to = -1; to <= 3; ++to) {
                const bool known = from >= 0 && from < 3 && to >= 0 && to < 3;
                QCOMPARE(text(from, to, t.convert(v, from, to)), text(from, to, known ? want[from][to] : v));
            }
        }
    }
}

// Model time is depth-positive, shown time is not; "model time" is never offered but still read.
void TestUnitCatalogue::timeAndTexts()
{
    DisplayUnitManager table;
    TimeUnitManager time("time", &table);
    QCOMPARE(time.convert(1.0, 2, 0), -1.0);
    QCOMPARE(time.convert(1.0, 1, 0), 1000.0);
    QCOMPARE(time.printValue(1500.0), QStringLiteral("-1500.00 ms"));
    double value = 0.0;
    int unit = -2;
    QVERIFY(time.parseValue(QStringLiteral("5"), value, -1, &unit));
    QCOMPARE(unit, 0);
    QCOMPARE(value, -5.0);
    QVERIFY(time.parseValue(QStringLiteral("5 mtime"), value, -1, &unit));
    QCOMPARE(unit, 2);
    QCOMPARE(value, 5.0);

    // The quote marks are tags like any other.
    AngleUnitManager angle("orientation", &table);
    QVERIFY(angle.parseValue(QStringLiteral("30\""), value, 0, &unit));
    QCOMPARE(unit, 3);
    QVERIFY(angle.parseValue(QStringLiteral("12 '"), value, 0, &unit));
    QCOMPARE(unit, 2);
    QCOMPARE(value, 12.0 * 0.0166666667 / 1.0);
}

QTEST_GUILESS_MAIN(TestUnitCatalogue)
#include "tst_unitcatalogue.moc"
