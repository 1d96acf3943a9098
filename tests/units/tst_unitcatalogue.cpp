// The unit catalogue checked against a table of its own: every class, every row, every field.
// This table is typed in apart from the library's tables, so that a slip in either one shows up
// here. Factors are compared bit for bit.

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

using ManagerPtr = std::shared_ptr<UnitManager>;
using Factory = std::function<ManagerPtr(const std::string& category, DisplayUnitManager* table)>;

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
    int major;
    int second;
    int last;
};
const Chain kNoChain{-1, -1, -1};

struct Row {
    QString name;
    QString tag;
    double factor;
    Chain chain;
};

struct Entry {
    QString label;
    std::string key;
    int count;       // rows of the table
    int numUnits;    // rows offered to the user
    int model;       // model unit
    int display;     // default display unit
    int precision;   // precision registered by the constructor
    bool ownConvert; // convert() does not use the factors
    Factory make;
    std::function<ManagerPtr()> probe;
    std::vector<Row> rows;
};

template <class T> Factory plain()
{
    return [](const std::string& c, DisplayUnitManager* t) { return ManagerPtr(new T(c, t)); };
}

template <class T> std::function<ManagerPtr()> probe()
{
    return [] { return ManagerPtr(new FactorProbe<T>(std::string(), nullptr)); };
}

// The angle class reads the product name when it is built, so the factory sets it first.
Factory angleFor(const char* product)
{
    return [product](const std::string& c, DisplayUnitManager* t) {
        rkProductInfo::instance().init(product);
        return ManagerPtr(new AngleUnitManager(c, t));
    };
}

Factory smallLengthWithModel(int model)
{
    return [model](const std::string& c, DisplayUnitManager* t) {
        return ManagerPtr(new SmallLengthUnitManager(c, model, t));
    };
}

std::vector<Row> smallLengthRows()
{
    const Chain metric{4, 2, 4};
    return {{QStringLiteral("kilometre"), QStringLiteral("km"), 1000.0, kNoChain},
            {QStringLiteral("metre"), QStringLiteral("m"), 1.0, kNoChain},
            {QStringLiteral("decimetre"), QStringLiteral("dm"), 0.1, metric},
            {QStringLiteral("centimetre"), QStringLiteral("cm"), 0.01, metric},
            {QStringLiteral("millimetre"), QStringLiteral("mm"), 0.001, metric},
            {QStringLiteral("mile"), QStringLiteral("mi"), 1609.344, kNoChain},
            {QStringLiteral("foot"), QStringLiteral("ft"), 0.3048, kNoChain},
            {QStringLiteral("inch"), QStringLiteral("in"), 0.0254, kNoChain}};
}

std::vector<Row> angleRows()
{
    const Chain dms{0, 2, 3};
    return {{QStringLiteral("degree"), QStringLiteral("deg"), 1.0, dms},
            {QStringLiteral("radian"), QStringLiteral("rad"), 57.2957795, kNoChain},
            {QStringLiteral("minute"), QStringLiteral("'"), 0.0166666667, dms},
            {QStringLiteral("second"), QStringLiteral("\""), 0.000277777778, dms}};
}

// Per-length rows; the chain is that of the length class for the classes that compound-print.
std::vector<Row> perLengthRows(bool chained)
{
    const Chain metric = chained ? Chain{1, 0, -1} : kNoChain;
    const Chain imperial = chained ? Chain{2, -1, -1} : kNoChain;
    return {{QStringLiteral("1/metre"), QStringLiteral("m\u207B\u00B9"), 1.0, metric},
            {QStringLiteral("1/kilometre"), QStringLiteral("km\u207B\u00B9"), 0.001, metric},
            {QStringLiteral("1/foot"), QStringLiteral("ft\u207B\u00B9"), 3.280839895013123, imperial},
            {QStringLiteral("1/mile"), QStringLiteral("mi\u207B\u00B9"), 0.0006213711922373339, imperial}};
}

const std::vector<Entry>& catalogue()
{
    static const std::vector<Entry> table = [] {
        std::vector<Entry> t;
        t.push_back({QStringLiteral("LengthUnitManager"),
                     "Length",
                     4,
                     4,
                     0,
                     0,
                     1,
                     false,
                     plain<LengthUnitManager>(),
                     probe<LengthUnitManager>(),
                     {{QStringLiteral("metre"), QStringLiteral("m"), 1.0, {1, 0, -1}},
                      {QStringLiteral("kilometre"), QStringLiteral("km"), 1000.0, {1, 0, -1}},
                      {QStringLiteral("foot"), QStringLiteral("ft"), 0.3048, {2, -1, -1}},
                      {QStringLiteral("mile"), QStringLiteral("mi"), 1609.344, {2, -1, -1}}}});
        t.push_back({QStringLiteral("SmallLengthUnitManager"), "Small Length", 8, 8, 4, 4, 2, false,
                     plain<SmallLengthUnitManager>(), probe<SmallLengthUnitManager>(), smallLengthRows()});
        // The second constructor takes the model unit and always shows unit 1 first.
        t.push_back({QStringLiteral("SmallLengthUnitManager(model 1)"), "Small Length", 8, 8, 1, 1, 2, false,
                     smallLengthWithModel(1),
                     [] { return ManagerPtr(new FactorProbe<SmallLengthUnitManager>(std::string(), 1, nullptr)); },
                     smallLengthRows()});
        t.push_back({QStringLiteral("SmallLengthUnitManager(model 7)"), "Small Length", 8, 8, 7, 1, 2, false,
                     smallLengthWithModel(7),
                     [] { return ManagerPtr(new FactorProbe<SmallLengthUnitManager>(std::string(), 7, nullptr)); },
                     smallLengthRows()});
        t.push_back({QStringLiteral("AreaUnitManager"),
                     "Area",
                     4,
                     4,
                     0,
                     0,
                     0,
                     false,
                     plain<AreaUnitManager>(),
                     probe<AreaUnitManager>(),
                     {{QStringLiteral("square metre"), QStringLiteral("m\u00B2"), 1.0, kNoChain},
                      {QStringLiteral("square kilometre"), QStringLiteral("km\u00B2"), 1000000.0, kNoChain},
                      {QStringLiteral("square foot"), QStringLiteral("ft\u00B2"), 0.09290304, kNoChain},
                      {QStringLiteral("square mile"), QStringLiteral("mi\u00B2"), 2589988.110336, kNoChain}}});
        t.push_back({QStringLiteral("VolumeUnitManager"),
                     "Volume",
                     4,
                     4,
                     0,
                     0,
                     0,
                     false,
                     plain<VolumeUnitManager>(),
                     probe<VolumeUnitManager>(),
                     {{QStringLiteral("cubic metre"), QStringLiteral("m\u00B3"), 1.0, kNoChain},
                      {QStringLiteral("cubic foot"), QStringLiteral("ft\u00B3"), 0.028316846592000004, kNoChain},
                      {QStringLiteral("cubic kilometre"), QStringLiteral("km\u00B3"), 1000000000.0, kNoChain},
                      {QStringLiteral("cubic mile"), QStringLiteral("mi\u00B3"), 4168181825.44058, kNoChain}}});
        t.push_back({QStringLiteral("AngleUnitManager"), "Angle", 4, 4, 0, 0, 2, false, angleFor("rkdemo"),
                     probe<AngleUnitManager>(), angleRows()});
        t.push_back({QStringLiteral("AngleUnitManager(FieldTesk)"), "Angle", 4, 4, 0, 0, 0, false,
                     angleFor("FieldTesk"), probe<AngleUnitManager>(), angleRows()});
        t.push_back({QStringLiteral("TimeUnitManager"),
                     "Time",
                     3,
                     2,
                     2,
                     0,
                     2,
                     false,
                     plain<TimeUnitManager>(),
                     probe<TimeUnitManager>(),
                     {{QStringLiteral("millisecond"), QStringLiteral("ms"), -1.0, kNoChain},
                      {QStringLiteral("second"), QStringLiteral("secs"), -1000.0, {-1, -1, 1}},
                      {QStringLiteral("model time"), QStringLiteral("mtime"), 1.0, kNoChain}}});
        t.push_back({QStringLiteral("PositiveTimeUnitManager"),
                     "Real Time",
                     4,
                     4,
                     0,
                     0,
                     2,
                     false,
                     plain<PositiveTimeUnitManager>(),
                     probe<PositiveTimeUnitManager>(),
                     {{QStringLiteral("millisecond twt"), QStringLiteral("ms twt"), 1.0, kNoChain},
                      {QStringLiteral("millisecond owt"), QStringLiteral("ms owt"), 0.5, {-1, -1, 1}},
                      {QStringLiteral("second twt"), QStringLiteral("s twt"), 1000.0, {-1, -1, 2}},
                      {QStringLiteral("second owt"), QStringLiteral("s owt"), 500.0, {-1, -1, 3}}}});
        t.push_back({QStringLiteral("AgeUnitManager"),
                     "Age",
                     1,
                     1,
                     0,
                     0,
                     1,
                     false,
                     plain<AgeUnitManager>(),
                     probe<AgeUnitManager>(),
                     {{QStringLiteral("million year"), QStringLiteral("Ma"), -1.0, {-1, -1, 0}}}});
        t.push_back({QStringLiteral("TimeFrequencyUnitManager"),
                     "frequency",
                     1,
                     1,
                     0,
                     0,
                     2,
                     false,
                     plain<TimeFrequencyUnitManager>(),
                     probe<TimeFrequencyUnitManager>(),
                     {{QStringLiteral("hertz"), QStringLiteral("Hz"), 1.0, {-1, -1, 0}}}});
        t.push_back({QStringLiteral("VelocityUnitManager"),
                     "Velocity",
                     2,
                     2,
                     0,
                     0,
                     0,
                     false,
                     plain<VelocityUnitManager>(),
                     probe<VelocityUnitManager>(),
                     {{QStringLiteral("metre/second"), QStringLiteral("m/s"), 1.0, kNoChain},
                      {QStringLiteral("foot/second"), QStringLiteral("ft/s"), 0.3048, kNoChain}}});
        t.push_back({QStringLiteral("DensityUnitManager"),
                     "Density",
                     2,
                     2,
                     0,
                     0,
                     0,
                     false,
                     plain<DensityUnitManager>(),
                     probe<DensityUnitManager>(),
                     {{QStringLiteral("kilogram/cubic metre"), QStringLiteral("kg/m\u00B3"), 0.001, kNoChain},
                      {QStringLiteral("gram/cubic centimetre"), QStringLiteral("g/cm\u00B3"), 1.0, kNoChain}}});
        t.push_back({QStringLiteral("PressureUnitManager"),
                     "Pressure",
                     6,
                     6,
                     1,
                     1,
                     1,
                     false,
                     plain<PressureUnitManager>(),
                     probe<PressureUnitManager>(),
                     {{QStringLiteral("kilopascal"), QStringLiteral("kPa"), 0.001, kNoChain},
                      {QStringLiteral("megapascal"), QStringLiteral("MPa"), 1.0, kNoChain},
                      {QStringLiteral("gigapascal"), QStringLiteral("GPa"), 1000.0, kNoChain},
                      {QStringLiteral("bar"), QStringLiteral("bar"), 0.1, kNoChain},
                      {QStringLiteral("kilobar"), QStringLiteral("kbar"), 100.0, kNoChain},
                      {QStringLiteral("pound/square inch"), QStringLiteral("psi"), 0.006894757294604437, kNoChain}}});
        // The factors stand in the table although the class's own convert() never reads them.
        t.push_back({QStringLiteral("TemperatureUnitManager"),
                     "Temperature",
                     3,
                     3,
                     0,
                     0,
                     1,
                     true,
                     plain<TemperatureUnitManager>(),
                     probe<TemperatureUnitManager>(),
                     {{QStringLiteral("degree Celsius"), QStringLiteral("\u00B0C"), 1.0, kNoChain},
                      {QStringLiteral("degree Fahrenheit"), QStringLiteral("\u00B0F"), 60.0, kNoChain},
                      {QStringLiteral("kelvin"), QStringLiteral("K"), 273.15, kNoChain}}});
        t.push_back(
            {QStringLiteral("ThermalConductivityUnitManager"),
             "Thermal Conductivity",
             1,
             1,
             0,
             0,
             2,
             false,
             plain<ThermalConductivityUnitManager>(),
             probe<ThermalConductivityUnitManager>(),
             {{QStringLiteral("watt/(metre\u00B7kelvin)"), QStringLiteral("W/(m\u00B7K)"), -1.0, {-1, -1, 0}}}});
        t.push_back({QStringLiteral("ThermalDiffusivityUnitManager"),
                     "Thermal Diffusivity",
                     1,
                     1,
                     0,
                     0,
                     7,
                     false,
                     plain<ThermalDiffusivityUnitManager>(),
                     probe<ThermalDiffusivityUnitManager>(),
                     {{QStringLiteral("square metre/second"), QStringLiteral("m\u00B2/s"), -1.0, {-1, -1, 0}}}});
        t.push_back(
            {QStringLiteral("SpecificHeatCapacityUnitManager"),
             "Specific Heat Capacity",
             1,
             1,
             0,
             0,
             3,
             false,
             plain<SpecificHeatCapacityUnitManager>(),
             probe<SpecificHeatCapacityUnitManager>(),
             {{QStringLiteral("kcal/kilogram\u00B7kelvin"), QStringLiteral("kcal/(kg\u00B7K)"), -1.0, {-1, -1, 0}}}});
        t.push_back({QStringLiteral("PermeabilityUnitManager"),
                     "Permeability",
                     4,
                     4,
                     0,
                     0,
                     4,
                     false,
                     plain<PermeabilityUnitManager>(),
                     probe<PermeabilityUnitManager>(),
                     {{QStringLiteral("darcy"), QStringLiteral("D"), 1.0, kNoChain},
                      {QStringLiteral("millidarcy"), QStringLiteral("mD"), 0.001, kNoChain},
                      {QStringLiteral("square metre"), QStringLiteral("m\u00B2"), 1013249966000.0, kNoChain},
                      {QStringLiteral("square foot"), QStringLiteral("ft\u00B2"), 94130921830.0, kNoChain}}});
        t.push_back({QStringLiteral("FractionUnitManager"),
                     "Fraction",
                     2,
                     2,
                     0,
                     0,
                     4,
                     false,
                     plain<FractionUnitManager>(),
                     probe<FractionUnitManager>(),
                     {{QStringLiteral("fraction"), QString(), 1.0, {0, 1, 0}},
                      {QStringLiteral("percent"), QStringLiteral("%"), 0.01, {0, 1, 0}}}});
        t.push_back({QStringLiteral("DimensionlessUnitManager"),
                     "Dimension",
                     1,
                     1,
                     0,
                     0,
                     4,
                     false,
                     plain<DimensionlessUnitManager>(),
                     probe<DimensionlessUnitManager>(),
                     {{QString(), QString(), 1.0, {0, 0, 0}}}});
        // phi is a plain factor here, not a logarithm.
        t.push_back({QStringLiteral("SedimentGrainUnitManager"),
                     "grain size",
                     7,
                     7,
                     2,
                     2,
                     1,
                     false,
                     plain<SedimentGrainUnitManager>(),
                     probe<SedimentGrainUnitManager>(),
                     {{QStringLiteral("metre"), QStringLiteral("m"), 1.0, kNoChain},
                      {QStringLiteral("centimetre"), QStringLiteral("cm"), 0.01, kNoChain},
                      {QStringLiteral("millimetre"), QStringLiteral("mm"), 0.001, kNoChain},
                      {QStringLiteral("micrometre"), QStringLiteral("\u00B5m"), 1e-06, kNoChain},
                      {QStringLiteral("phi"), QStringLiteral("\u0278"), 0.30102999566, kNoChain},
                      {QStringLiteral("foot"), QStringLiteral("ft"), 0.3048, kNoChain},
                      {QStringLiteral("inch"), QStringLiteral("in"), 0.0254, kNoChain}}});
        t.push_back({QStringLiteral("P32UnitManager"),
                     "p32",
                     2,
                     2,
                     0,
                     0,
                     4,
                     false,
                     plain<P32UnitManager>(),
                     probe<P32UnitManager>(),
                     {{QStringLiteral("square metre/cubic metre"), QStringLiteral("m\u00B2/m\u00B3"), 1.0, kNoChain},
                      {QStringLiteral("square foot/cubic foot"), QStringLiteral("ft\u00B2/ft\u00B3"), 3.280839895013123,
                       kNoChain}}});
        // Row 1 holds 1e-06 (the per-area figure), not 1e-09; stored data depend on it as it is.
        t.push_back(
            {QStringLiteral("PerVolumeUnitManager"),
             "Per Volume",
             4,
             4,
             0,
             0,
             4,
             false,
             plain<PerVolumeUnitManager>(),
             probe<PerVolumeUnitManager>(),
             {{QStringLiteral("1/cubic metre"), QStringLiteral("1/m\u00B3"), 1.0, kNoChain},
              {QStringLiteral("1/cubic kilometre"), QStringLiteral("1/km\u00B3"), 1e-06, kNoChain},
              {QStringLiteral("1/cubic foot"), QStringLiteral("1/ft\u00B3"), 35.314666721488585, kNoChain},
              {QStringLiteral("1/cubic mile"), QStringLiteral("1/mi\u00B3"), 2.399127585789277e-10, kNoChain}}});
        t.push_back({QStringLiteral("DepthCoefficientUnitManager"), "depth coefficient", 4, 4, 1, 1, 2, false,
                     plain<DepthCoefficientUnitManager>(), probe<DepthCoefficientUnitManager>(), perLengthRows(false)});
        t.push_back({QStringLiteral("DimensionFrequencyUnitManager"), "Dimension Frequency", 4, 4, 0, 1, 2, false,
                     plain<DimensionFrequencyUnitManager>(), probe<DimensionFrequencyUnitManager>(),
                     perLengthRows(true)});
        t.push_back(
            {QStringLiteral("DimensionFrequencySquaredUnitManager"),
             "Dimension Frequency Squared",
             4,
             4,
             0,
             1,
             4,
             false,
             plain<DimensionFrequencySquaredUnitManager>(),
             probe<DimensionFrequencySquaredUnitManager>(),
             {{QStringLiteral("1/square metre"), QStringLiteral("m\u207B\u00B2"), 1.0, {1, 0, -1}},
              {QStringLiteral("1/square kilometre"), QStringLiteral("km\u207B\u00B2"), 1e-06, {1, 0, -1}},
              {QStringLiteral("1/square foot"), QStringLiteral("ft\u207B\u00B2"), 10.763910416709722, {2, -1, -1}},
              {QStringLiteral("1/square mile"),
               QStringLiteral("mi\u207B\u00B2"),
               3.861021585424458e-07,
               {2, -1, -1}}}});
        return t;
    }();
    return table;
}

int entryIndex(const QString& label)
{
    const auto& t = catalogue();
    for (size_t i = 0; i < t.size(); ++i)
        if (t[i].label == label)
            return static_cast<int>(i);
    qFatal("no catalogue entry %s", qPrintable(label));
    return -1;
}

QStringList namesOf(const Entry& e)
{
    QStringList names;
    for (const Row& r : e.rows)
        names << r.name;
    return names;
}

// The parsing pattern as the base class builds it from the tags, put in unescaped.
QString patternOf(const Entry& e)
{
    QStringList tags;
    for (const Row& r : e.rows)
        tags << r.tag;
    return QStringLiteral("([+-]?[\\d.,]+(e[+-]?[.,\\d]+)?)\\s*(") + tags.join(QLatin1Char('|')) + QStringLiteral(")?");
}

// Code points spelled out, so a failure names the glyph (U+00B5 against U+03BC, say).
QString codePoints(const QString& s)
{
    QStringList out;
    for (uint c : s.toUcs4())
        out << QStringLiteral("U+") + QString::number(c, 16).toUpper().rightJustified(4, QLatin1Char('0'));
    return out.join(QLatin1Char(' '));
}

QString exact(double v) { return QString::number(v, 'g', 17); }

QString chainText(int a, int b, int c) { return QStringLiteral("(%1, %2, %3)").arg(a).arg(b).arg(c); }

} // namespace

class TestUnitCatalogue : public QObject {
    Q_OBJECT

private slots:
    void classes_data();
    void classes();
    void rows_data();
    void rows();
    void anglePrecision_data();
    void anglePrecision();
    void temperature_data();
    void temperature();
    void timeChangesSign();
    void patterns_data();
    void patterns();
    void angleQuoteTags();
};

void TestUnitCatalogue::classes_data()
{
    QTest::addColumn<int>("entry");
    const auto& t = catalogue();
    for (size_t i = 0; i < t.size(); ++i)
        QTest::newRow(qPrintable(t[i].label)) << static_cast<int>(i);
}

// Key, sizes, model unit and what the constructor registers in a fresh display table.
void TestUnitCatalogue::classes()
{
    QFETCH(int, entry);
    const Entry& e = catalogue()[entry];
    QCOMPARE(static_cast<int>(e.rows.size()), e.count); // guards the table above

    DisplayUnitManager table;
    const std::string category = "test " + e.label.toStdString();
    const ManagerPtr m = e.make(category, &table);

    QCOMPARE(QString::fromStdString(m->key()), QString::fromStdString(e.key));
    QCOMPARE(QString::fromStdString(m->category()), QString::fromStdString(category));
    QCOMPARE(m->numUnits(), e.numUnits);
    QCOMPARE(m->modelUnit(), e.model);

    const auto registered = table.find(category);
    QVERIFY2(registered != table.end(), "the constructor did not register its category");
    QCOMPARE(static_cast<int>(table.size()), 1);
    QCOMPARE(table.displayUnit(category), e.display);
    QCOMPARE(table.displayPrecision(category), e.precision);
    QCOMPARE(registered->second.unitNames, namesOf(e));
    QCOMPARE(m->displayUnit(), e.display);
    QCOMPARE(m->precision(), e.precision);
    QCOMPARE(m->regexString(), patternOf(e));

    // Nothing past the table, and no chain for keys outside it.
    QCOMPARE(m->getUnitName(e.count), QString());
    QCOMPARE(m->getUnitTag(e.count), QString());
    for (int outside : {-1, e.count, 99}) {
        int a = 7, b = 7, c = 7;
        m->getMSPSystem(outside, a, b, c);
        QCOMPARE(chainText(a, b, c), chainText(-1, -1, -1));
    }

    // The unit count the base class was given bounds what may become the display unit.
    m->displayUnit(e.count);
    QCOMPARE(table.displayUnit(category), e.display);
    if (e.count - 1 != e.display) {
        m->displayUnit(e.count - 1);
        QCOMPARE(table.displayUnit(category), e.count - 1);
    }
}

void TestUnitCatalogue::rows_data()
{
    QTest::addColumn<int>("entry");
    QTest::addColumn<int>("row");
    const auto& t = catalogue();
    for (size_t i = 0; i < t.size(); ++i) {
        for (size_t r = 0; r < t[i].rows.size(); ++r) {
            const QString name = QStringLiteral("%1/%2 %3").arg(t[i].label).arg(r).arg(t[i].rows[r].name);
            QTest::newRow(qPrintable(name)) << static_cast<int>(i) << static_cast<int>(r);
        }
    }
}

// One unit: name, tag to the code point, factor to the bit, compound chain.
void TestUnitCatalogue::rows()
{
    QFETCH(int, entry);
    QFETCH(int, row);
    const Entry& e = catalogue()[entry];
    const Row& r = e.rows[row];

    // Without a display table, as an application may build one for plain conversion.
    const ManagerPtr m = e.make(std::string(), nullptr);
    QCOMPARE(m->getUnitName(row), r.name);
    QCOMPARE(codePoints(m->getUnitTag(row)), codePoints(r.tag));
    QCOMPARE(m->getUnitTag(row), r.tag);

    // The base conversion, called by name, so that the temperature table is read as well.
    const ManagerPtr p = e.probe();
    const double factor = p->UnitManager::convert(1.0, row, e.count);
    QVERIFY2(factor == r.factor,
             qPrintable(QStringLiteral("factor %1, expected %2").arg(exact(factor), exact(r.factor))));

    // And through the class's own convert, to the model unit, multiplication first.
    if (!e.ownConvert) {
        const double expected = 1.0 * r.factor / e.rows[e.model].factor;
        const double got = m->convert(1.0, row, e.model);
        QVERIFY2(got == expected,
                 qPrintable(QStringLiteral("to model %1, expected %2").arg(exact(got), exact(expected))));
    }

    int a = 7, b = 7, c = 7;
    m->getMSPSystem(row, a, b, c);
    QCOMPARE(chainText(a, b, c), chainText(r.chain.major, r.chain.second, r.chain.last));
}

void TestUnitCatalogue::anglePrecision_data()
{
    QTest::addColumn<QString>("product");
    QTest::addColumn<int>("precision");
    QTest::newRow("FieldTesk") << QStringLiteral("FieldTesk") << 0;
    QTest::newRow("other product") << QStringLiteral("rkdemo") << 2;
    // Only the exact name switches to whole degrees.
    QTest::newRow("lower case") << QStringLiteral("fieldtesk") << 2;
    QTest::newRow("longer") << QStringLiteral("FieldTesk Pro") << 2;
    QTest::newRow("trailing blank") << QStringLiteral("FieldTesk ") << 2;
    QTest::newRow("empty") << QString() << 2;
}

void TestUnitCatalogue::anglePrecision()
{
    QFETCH(QString, product);
    QFETCH(int, precision);
    rkProductInfo::instance().init(product.toStdString());
    QCOMPARE(QString::fromStdString(rkProductInfo::const_instance().product_name()), product);

    DisplayUnitManager table;
    AngleUnitManager angle("orientation", &table);
    QCOMPARE(table.displayPrecision(std::string("orientation")), precision);
    QCOMPARE(angle.precision(), precision);
    // The product decides the decimals only, never the table.
    QCOMPARE(angle.convert(90.0, 0, 1), 90.0 * 1.0 / 57.2957795);
}

void TestUnitCatalogue::temperature_data()
{
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");

    // 0 Celsius, 1 Fahrenheit, 2 kelvin; the results as the conversion defines them, operation
    // for operation, so that they compare exactly.
    for (double v : {-40.0, 0.0, 36.6, 100.0, -273.15, 1234.5}) {
        const QByteArray at = QByteArray::number(v);
        QTest::newRow(("C->F " + at).constData()) << 0 << 1 << v << v * 9.0 / 5.0 + 32.0;
        QTest::newRow(("C->K " + at).constData()) << 0 << 2 << v << v + 273.15;
        QTest::newRow(("F->C " + at).constData()) << 1 << 0 << v << (v - 32.0) * 5.0 / 9.0;
        QTest::newRow(("F->K " + at).constData()) << 1 << 2 << v << (v - 32.0) * 5.0 / 9.0 + 273.15;
        QTest::newRow(("K->C " + at).constData()) << 2 << 0 << v << v - 273.15;
        QTest::newRow(("K->F " + at).constData()) << 2 << 1 << v << (v - 273.15) * 9.0 / 5.0 + 32.0;
    }
    // Anchors that a swapped formula or a wrong offset cannot meet.
    QTest::newRow("freezing C->F") << 0 << 1 << 0.0 << 32.0;
    QTest::newRow("boiling C->F") << 0 << 1 << 100.0 << 212.0;
    QTest::newRow("crossover F->C") << 1 << 0 << -40.0 << -40.0;
    QTest::newRow("freezing K->C") << 2 << 0 << 273.15 << 0.0;

    // Same unit or a key outside 0..2: the value as given.
    const double v = 5.0;
    QTest::newRow("C->C") << 0 << 0 << v << v;
    QTest::newRow("F->F") << 1 << 1 << v << v;
    QTest::newRow("K->K") << 2 << 2 << v << v;
    QTest::newRow("C->3") << 0 << 3 << v << v;
    QTest::newRow("3->C") << 3 << 0 << v << v;
    QTest::newRow("-1->F") << -1 << 1 << v << v;
    QTest::newRow("K->-1") << 2 << -1 << v << v;
    QTest::newRow("99->K") << 99 << 2 << v << v;
}

void TestUnitCatalogue::temperature()
{
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(double, value);
    QFETCH(double, expected);
    TemperatureUnitManager t(std::string(), nullptr);
    const double got = t.convert(value, from, to);
    QVERIFY2(got == expected, qPrintable(QStringLiteral("%1, expected %2").arg(exact(got), exact(expected))));
}

// Model time is depth-positive, shown time is not: every path between them flips the sign.
void TestUnitCatalogue::timeChangesSign()
{
    DisplayUnitManager table;
    TimeUnitManager time("time", &table);
    QCOMPARE(time.convert(1.0, 2, 0), -1.0);
    QCOMPARE(time.convert(1.0, 1, 0), 1000.0);
    QCOMPARE(time.convert(1.0, 2, 1), -0.001);
    QCOMPARE(time.convert(-2500.0, 0, 2), 2500.0);
    QCOMPARE(time.convertModelToDisplay(1500.0), -1500.0);
    QCOMPARE(time.convertDisplayToModel(-1500.0), 1500.0);

    // "model time" is hidden from choice lists but still read and converted.
    QCOMPARE(time.numUnits(), 2);
    QCOMPARE(time.getUnitTag(2), QStringLiteral("mtime"));
    double value = 0.0;
    int unit = -2;
    QVERIFY(time.parseValue(QStringLiteral("5"), value, -1, &unit));
    QCOMPARE(unit, 0);
    QCOMPARE(value, -5.0);
    QVERIFY(time.parseValue(QStringLiteral("5 mtime"), value, -1, &unit));
    QCOMPARE(unit, 2);
    QCOMPARE(value, 5.0);
    QVERIFY(time.parseValue(QStringLiteral("2 secs"), value, -1, &unit));
    QCOMPARE(unit, 1);
    QCOMPARE(value, -2000.0);
    QCOMPARE(time.printValue(1500.0), QStringLiteral("-1500.00 ms"));
}

void TestUnitCatalogue::patterns_data()
{
    QTest::addColumn<QString>("label");
    QTest::addColumn<QString>("pattern");
    const QString number = QStringLiteral("([+-]?[\\d.,]+(e[+-]?[.,\\d]+)?)\\s*");
    // The quote tags go in as they are: neither is special to the pattern.
    QTest::newRow("angle") << QStringLiteral("AngleUnitManager") << number + QStringLiteral("(deg|rad|'|\")?");
    // An empty tag leaves only its separator.
    QTest::newRow("fraction") << QStringLiteral("FractionUnitManager") << number + QStringLiteral("(|%)?");
    QTest::newRow("dimensionless") << QStringLiteral("DimensionlessUnitManager") << number + QStringLiteral("()?");
    QTest::newRow("grain size") << QStringLiteral("SedimentGrainUnitManager")
                                << number + QStringLiteral("(m|cm|mm|\u00B5m|\u0278|ft|in)?");
    QTest::newRow("per volume") << QStringLiteral("PerVolumeUnitManager")
                                << number + QStringLiteral("(1/m\u00B3|1/km\u00B3|1/ft\u00B3|1/mi\u00B3)?");
    QTest::newRow("time") << QStringLiteral("TimeUnitManager") << number + QStringLiteral("(ms|secs|mtime)?");
}

void TestUnitCatalogue::patterns()
{
    QFETCH(QString, label);
    QFETCH(QString, pattern);
    const ManagerPtr m = catalogue()[entryIndex(label)].make(std::string(), nullptr);
    QCOMPARE(m->regexString(), pattern);
}

// The angle's minute and second tags are quote marks; parsing must reach them.
void TestUnitCatalogue::angleQuoteTags()
{
    rkProductInfo::instance().init("rkdemo");
    DisplayUnitManager table;
    AngleUnitManager angle("orientation", &table);
    double value = 0.0;
    int unit = -2;
    QVERIFY(angle.parseValue(QStringLiteral("30\""), value, 0, &unit));
    QCOMPARE(unit, 3);
    QCOMPARE(value, 30.0 * 0.000277777778 / 1.0);
    QVERIFY(angle.parseValue(QStringLiteral("12 '"), value, 0, &unit));
    QCOMPARE(unit, 2);
    QCOMPARE(value, 12.0 * 0.0166666667 / 1.0);
    QVERIFY(angle.parseValue(QStringLiteral("1.5 rad"), value, 0, &unit));
    QCOMPARE(unit, 1);
    QCOMPARE(value, 1.5 * 57.2957795 / 1.0);
}

QTEST_GUILESS_MAIN(TestUnitCatalogue)
#include "tst_unitcatalogue.moc"
