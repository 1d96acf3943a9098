#include "units/UnitManagers.h"

#include "frame/rkProductInfo.h"

#include <QLatin1String>

#include <cstddef>

namespace rkBase {

namespace {

// Superscripts and other signs in names and tags come from the base's glyph functions, so that
// every manager spells m² or °C with the same characters that parsing compares against.
enum class Glyph { None, Degree, Squared, Cubed, MiddleDot, Inverted, InvertedSquared };

QString glyphText(Glyph glyph)
{
    switch (glyph) {
    case Glyph::Degree:
        return UnitManager::degreeString();
    case Glyph::Squared:
        return UnitManager::squaredString();
    case Glyph::Cubed:
        return UnitManager::cubedString();
    case Glyph::MiddleDot:
        return UnitManager::middleDotString();
    case Glyph::Inverted:
        return UnitManager::invertedString();
    case Glyph::InvertedSquared:
        return UnitManager::invertedSquaredString();
    case Glyph::None:
        break;
    }
    return QString();
}

// Rows in feet and miles take the base's foot and mile; every other factor is written out.
enum class Size { Given, Foot, Mile };

// One row of a unit table: factor, long name, tag. Texts are UTF-8; "%1" and "%2" in them stand
// for the glyphs `first` and `second`, and are left alone when no glyph is given (the percent
// tag is a plain "%").
struct UnitRow {
    double factor;
    const char* name;
    const char* tag;
    Glyph first = Glyph::None;
    Glyph second = Glyph::None;
    Size size = Size::Given;

    QString text(const char* pattern) const
    {
        QString out = QString::fromUtf8(pattern);
        if (first != Glyph::None)
            out.replace(QLatin1String("%1"), glyphText(first));
        if (second != Glyph::None)
            out.replace(QLatin1String("%2"), glyphText(second));
        return out;
    }
};

constexpr UnitRow foot(const char* name, const char* tag)
{
    return {0.0, name, tag, Glyph::None, Glyph::None, Size::Foot};
}
constexpr UnitRow mile(const char* name, const char* tag)
{
    return {0.0, name, tag, Glyph::None, Glyph::None, Size::Mile};
}

// One link of compound printing: how `unit` splits into major, second and last parts.
struct MspLink {
    int unit;
    int major;
    int second;
    int last;
};

template <class T> struct Table {
    const T* rows = nullptr;
    std::size_t size = 0;
    const T* begin() const { return rows; }
    const T* end() const { return rows + size; }
};
template <class T, std::size_t N> constexpr Table<T> table(const T (&rows)[N]) { return {rows, N}; }

// A quantity of the catalogue: key, unit count, model and default display unit, the precision
// it registers with, its units in key order and its compound-printing chains. Settings and
// display schemes refer to units by key, so rows keep their order.
struct Quantity {
    const char* key;
    int count;
    int model;
    int display;
    int precision;
    Table<UnitRow> units;
    Table<MspLink> chains;
};

// clang-format off
constexpr UnitRow kLengthUnits[] = {
    {1.0, "metre", "m"}, {1000.0, "kilometre", "km"}, foot("foot", "ft"), mile("mile", "mi")};
constexpr UnitRow kSmallLengthUnits[] = {
    {1000.0, "kilometre", "km"}, {1.0, "metre", "m"}, {0.1, "decimetre", "dm"}, {0.01, "centimetre", "cm"},
    {0.001, "millimetre", "mm"}, mile("mile", "mi"), foot("foot", "ft"), {0.0254, "inch", "in"}};
constexpr UnitRow kAreaUnits[] = {
    {1.0, "square metre", "m%1", Glyph::Squared}, {1000000.0, "square kilometre", "km%1", Glyph::Squared},
    {0.09290304, "square foot", "ft%1", Glyph::Squared}, {2589988.110336, "square mile", "mi%1", Glyph::Squared}};
// Unlike areas, volumes run metre, foot, kilometre, mile.
constexpr UnitRow kVolumeUnits[] = {
    {1.0, "cubic metre", "m%1", Glyph::Cubed}, {0.028316846592000004, "cubic foot", "ft%1", Glyph::Cubed},
    {1000000000.0, "cubic kilometre", "km%1", Glyph::Cubed}, {4168181825.44058, "cubic mile", "mi%1", Glyph::Cubed}};
// Nine digits only: a full turn in radians is not exact, and stored angles rely on these factors.
constexpr UnitRow kAngleUnits[] = {
    {1.0, "degree", "deg"}, {57.2957795, "radian", "rad"}, {0.0166666667, "minute", "'"},
    {0.000277777778, "second", "\""}};
// Model time grows with depth; shown time runs the other way, hence the negative factors.
constexpr UnitRow kTimeUnits[] = {
    {-1.0, "millisecond", "ms"}, {-1000.0, "second", "secs"}, {1.0, "model time", "mtime"}};
constexpr UnitRow kPositiveTimeUnits[] = {
    {1.0, "millisecond twt", "ms twt"}, {0.5, "millisecond owt", "ms owt"}, {1000.0, "second twt", "s twt"},
    {500.0, "second owt", "s owt"}};
// A one-unit table never applies its factor: converting a unit to itself returns the input.
constexpr UnitRow kAgeUnits[] = {{-1.0, "million year", "Ma"}};
constexpr UnitRow kFrequencyUnits[] = {{1.0, "hertz", "Hz"}};
constexpr UnitRow kVelocityUnits[] = {{1.0, "metre/second", "m/s"}, foot("foot/second", "ft/s")};
constexpr UnitRow kDensityUnits[] = {
    {0.001, "kilogram/cubic metre", "kg/m%1", Glyph::Cubed}, {1.0, "gram/cubic centimetre", "g/cm%1", Glyph::Cubed}};
constexpr UnitRow kPressureUnits[] = {
    {0.001, "kilopascal", "kPa"}, {1.0, "megapascal", "MPa"}, {1000.0, "gigapascal", "GPa"}, {0.1, "bar", "bar"},
    {100.0, "kilobar", "kbar"}, {0.006894757294604437, "pound/square inch", "psi"}};
// The scales have different zeros, so convert() goes by formula and never reads these factors.
constexpr UnitRow kTemperatureUnits[] = {
    {1.0, "degree Celsius", "%1C", Glyph::Degree}, {60.0, "degree Fahrenheit", "%1F", Glyph::Degree},
    {273.15, "kelvin", "K"}};
constexpr UnitRow kConductivityUnits[] = {{-1.0, "watt/(metre%1kelvin)", "W/(m%1K)", Glyph::MiddleDot}};
constexpr UnitRow kDiffusivityUnits[] = {{-1.0, "square metre/second", "m%1/s", Glyph::Squared}};
constexpr UnitRow kHeatCapacityUnits[] = {{-1.0, "kcal/kilogram%1kelvin", "kcal/(kg%1K)", Glyph::MiddleDot}};
constexpr UnitRow kPermeabilityUnits[] = {
    {1.0, "darcy", "D"}, {0.001, "millidarcy", "mD"}, {1013249966000.0, "square metre", "m%1", Glyph::Squared},
    {94130921830.0, "square foot", "ft%1", Glyph::Squared}};
// A fraction has no tag: its printed value ends in the separating blank alone.
constexpr UnitRow kFractionUnits[] = {{1.0, "fraction", ""}, {0.01, "percent", "%"}};
constexpr UnitRow kDimensionlessUnits[] = {{1.0, "", ""}};
// Phi is a logarithmic scale in sedimentology; here it is a plain factor, as it always was.
constexpr UnitRow kGrainUnits[] = {
    {1.0, "metre", "m"}, {0.01, "centimetre", "cm"}, {0.001, "millimetre", "mm"}, {1e-06, "micrometre", u8"\u00B5m"},
    {0.30102999566, "phi", u8"\u0278"}, foot("foot", "ft"), {0.0254, "inch", "in"}};
constexpr UnitRow kP32Units[] = {
    {1.0, "square metre/cubic metre", "m%1/m%2", Glyph::Squared, Glyph::Cubed},
    {3.280839895013123, "square foot/cubic foot", "ft%1/ft%2", Glyph::Squared, Glyph::Cubed}};
// The kilometre row repeats the per-area factor (1e-06, not 1e-09); stored values rely on it.
constexpr UnitRow kPerVolumeUnits[] = {
    {1.0, "1/cubic metre", "1/m%2", Glyph::None, Glyph::Cubed},
    {1e-06, "1/cubic kilometre", "1/km%2", Glyph::None, Glyph::Cubed},
    {35.314666721488585, "1/cubic foot", "1/ft%2", Glyph::None, Glyph::Cubed},
    {2.399127585789277e-10, "1/cubic mile", "1/mi%2", Glyph::None, Glyph::Cubed}};
constexpr UnitRow kPerLengthUnits[] = {
    {1.0, "1/metre", "m%1", Glyph::Inverted}, {0.001, "1/kilometre", "km%1", Glyph::Inverted},
    {3.280839895013123, "1/foot", "ft%1", Glyph::Inverted}, {0.0006213711922373339, "1/mile", "mi%1", Glyph::Inverted}};
constexpr UnitRow kPerAreaUnits[] = {
    {1.0, "1/square metre", "m%1", Glyph::InvertedSquared},
    {1e-06, "1/square kilometre", "km%1", Glyph::InvertedSquared},
    {10.763910416709722, "1/square foot", "ft%1", Glyph::InvertedSquared},
    {3.861021585424458e-07, "1/square mile", "mi%1", Glyph::InvertedSquared}};

// Metric lengths print as kilometres and metres, imperial ones as their major unit alone; neither
// chain has a last unit. The inverse-length managers share them, their rows running alike.
constexpr MspLink kLengthChains[] = {{0, 1, 0, -1}, {1, 1, 0, -1}, {2, 2, -1, -1}, {3, 2, -1, -1}};
constexpr MspLink kSmallLengthChains[] = {{2, 4, 2, 4}, {3, 4, 2, 4}, {4, 4, 2, 4}};
constexpr MspLink kAngleChains[] = {{0, 0, 2, 3}, {2, 0, 2, 3}, {3, 0, 2, 3}};
constexpr MspLink kFractionChains[] = {{0, 0, 1, 0}, {1, 0, 1, 0}};
constexpr MspLink kDimensionlessChains[] = {{0, 0, 0, 0}};
constexpr MspLink kTimeChains[] = {{1, -1, -1, 1}};
constexpr MspLink kPositiveTimeChains[] = {{1, -1, -1, 1}, {2, -1, -1, 2}, {3, -1, -1, 3}};
// The one unit of a single-unit quantity is printed plainly as the last part.
constexpr MspLink kSingleUnitChains[] = {{0, -1, -1, 0}};
constexpr Table<MspLink> kNoChains{};

// key, unit count, model unit, default display unit, precision, units, chains
const Quantity kLength{"Length", 4, 0, 0, 1, table(kLengthUnits), table(kLengthChains)};
const Quantity kSmallLength{"Small Length", 8, 4, 4, 2, table(kSmallLengthUnits), table(kSmallLengthChains)};
const Quantity kArea{"Area", 4, 0, 0, 0, table(kAreaUnits), kNoChains};
const Quantity kVolume{"Volume", 4, 0, 0, 0, table(kVolumeUnits), kNoChains};
const Quantity kAngle{"Angle", 4, 0, 0, 2, table(kAngleUnits), table(kAngleChains)};
const Quantity kTime{"Time", 3, 2, 0, 2, table(kTimeUnits), table(kTimeChains)};
const Quantity kPositiveTime{"Real Time", 4, 0, 0, 2, table(kPositiveTimeUnits), table(kPositiveTimeChains)};
const Quantity kAge{"Age", 1, 0, 0, 1, table(kAgeUnits), table(kSingleUnitChains)};
const Quantity kFrequency{"frequency", 1, 0, 0, 2, table(kFrequencyUnits), table(kSingleUnitChains)};
const Quantity kVelocity{"Velocity", 2, 0, 0, 0, table(kVelocityUnits), kNoChains};
const Quantity kDensity{"Density", 2, 0, 0, 0, table(kDensityUnits), kNoChains};
const Quantity kPressure{"Pressure", 6, 1, 1, 1, table(kPressureUnits), kNoChains};
const Quantity kTemperature{"Temperature", 3, 0, 0, 1, table(kTemperatureUnits), kNoChains};
const Quantity kConductivity{"Thermal Conductivity", 1, 0, 0, 2, table(kConductivityUnits), table(kSingleUnitChains)};
const Quantity kDiffusivity{"Thermal Diffusivity", 1, 0, 0, 7, table(kDiffusivityUnits), table(kSingleUnitChains)};
const Quantity kHeatCapacity{"Specific Heat Capacity", 1, 0, 0, 3, table(kHeatCapacityUnits), table(kSingleUnitChains)};
const Quantity kPermeability{"Permeability", 4, 0, 0, 4, table(kPermeabilityUnits), kNoChains};
const Quantity kFraction{"Fraction", 2, 0, 0, 4, table(kFractionUnits), table(kFractionChains)};
const Quantity kDimensionless{"Dimension", 1, 0, 0, 4, table(kDimensionlessUnits), table(kDimensionlessChains)};
const Quantity kGrain{"grain size", 7, 2, 2, 1, table(kGrainUnits), kNoChains};
const Quantity kP32{"p32", 2, 0, 0, 4, table(kP32Units), kNoChains};
const Quantity kPerVolume{"Per Volume", 4, 0, 0, 4, table(kPerVolumeUnits), kNoChains};
const Quantity kDepthCoeff{"depth coefficient", 4, 1, 1, 2, table(kPerLengthUnits), kNoChains};
const Quantity kPerLength{"Dimension Frequency", 4, 0, 1, 2, table(kPerLengthUnits), table(kLengthChains)};
const Quantity kPerArea{"Dimension Frequency Squared", 4, 0, 1, 4, table(kPerAreaUnits), table(kLengthChains)};
// clang-format on

template <class AddUnit>
void fillUnits(const Quantity& quantity, double metresPerFoot, double metresPerMile, AddUnit add)
{
    for (const UnitRow& row : quantity.units) {
        const double factor = row.size == Size::Foot   ? metresPerFoot
                              : row.size == Size::Mile ? metresPerMile
                                                       : row.factor;
        add(factor, row.text(row.name), row.text(row.tag));
    }
}

void findChain(const Quantity& quantity, int unit, int& major, int& second, int& last)
{
    major = second = last = -1;
    for (const MspLink& link : quantity.chains) {
        if (link.unit == unit) {
            major = link.major;
            second = link.second;
            last = link.last;
            return;
        }
    }
}

} // namespace

// The members every class of the catalogue defines alike, from its row of the table above. The
// unit table is filled from inside the class, where the base's foot and mile can be read.
#define RK_QUANTITY_TABLE(Class, quantity)                                                                             \
    Class::~Class() = default;                                                                                         \
    void Class::initUnitTables()                                                                                       \
    {                                                                                                                  \
        fillUnits(quantity, m_metresPerFoot, m_metresPerMile,                                                          \
                  [this](double factor, const QString& name, const QString& tag) { addUnit(factor, name, tag); });     \
    }

#define RK_QUANTITY(Class, quantity)                                                                                   \
    Class::Class(const std::string& category, DisplayUnitManager* manager)                                             \
        : UnitManager(quantity.key, category, quantity.count, quantity.model, quantity.display, manager)               \
    {                                                                                                                  \
        setup(quantity.precision);                                                                                     \
    }                                                                                                                  \
    RK_QUANTITY_TABLE(Class, quantity)

#define RK_QUANTITY_CHAINS(Class, quantity)                                                                            \
    void Class::getMSPSystem(int unit, int& major, int& second, int& last) const                                       \
    {                                                                                                                  \
        findChain(quantity, unit, major, second, last);                                                                \
    }

RK_QUANTITY(LengthUnitManager, kLength)
RK_QUANTITY_CHAINS(LengthUnitManager, kLength)
RK_QUANTITY(SmallLengthUnitManager, kSmallLength)
RK_QUANTITY_CHAINS(SmallLengthUnitManager, kSmallLength)
RK_QUANTITY(AreaUnitManager, kArea)
RK_QUANTITY(VolumeUnitManager, kVolume)
RK_QUANTITY_TABLE(AngleUnitManager, kAngle)
RK_QUANTITY_CHAINS(AngleUnitManager, kAngle)
RK_QUANTITY(TimeUnitManager, kTime)
RK_QUANTITY_CHAINS(TimeUnitManager, kTime)
RK_QUANTITY(PositiveTimeUnitManager, kPositiveTime)
RK_QUANTITY_CHAINS(PositiveTimeUnitManager, kPositiveTime)
RK_QUANTITY(AgeUnitManager, kAge)
RK_QUANTITY_CHAINS(AgeUnitManager, kAge)
RK_QUANTITY(TimeFrequencyUnitManager, kFrequency)
RK_QUANTITY_CHAINS(TimeFrequencyUnitManager, kFrequency)
RK_QUANTITY(VelocityUnitManager, kVelocity)
RK_QUANTITY(DensityUnitManager, kDensity)
RK_QUANTITY(PressureUnitManager, kPressure)
RK_QUANTITY(TemperatureUnitManager, kTemperature)
RK_QUANTITY(ThermalConductivityUnitManager, kConductivity)
RK_QUANTITY_CHAINS(ThermalConductivityUnitManager, kConductivity)
RK_QUANTITY(ThermalDiffusivityUnitManager, kDiffusivity)
RK_QUANTITY_CHAINS(ThermalDiffusivityUnitManager, kDiffusivity)
RK_QUANTITY(SpecificHeatCapacityUnitManager, kHeatCapacity)
RK_QUANTITY_CHAINS(SpecificHeatCapacityUnitManager, kHeatCapacity)
RK_QUANTITY(PermeabilityUnitManager, kPermeability)
RK_QUANTITY(FractionUnitManager, kFraction)
RK_QUANTITY_CHAINS(FractionUnitManager, kFraction)
RK_QUANTITY(DimensionlessUnitManager, kDimensionless)
RK_QUANTITY_CHAINS(DimensionlessUnitManager, kDimensionless)
RK_QUANTITY(SedimentGrainUnitManager, kGrain)
RK_QUANTITY(P32UnitManager, kP32)
RK_QUANTITY(PerVolumeUnitManager, kPerVolume)
RK_QUANTITY(DepthCoefficientUnitManager, kDepthCoeff)
RK_QUANTITY(DimensionFrequencyUnitManager, kPerLength)
RK_QUANTITY_CHAINS(DimensionFrequencyUnitManager, kPerLength)
RK_QUANTITY(DimensionFrequencySquaredUnitManager, kPerArea)
RK_QUANTITY_CHAINS(DimensionFrequencySquaredUnitManager, kPerArea)

#undef RK_QUANTITY_CHAINS
#undef RK_QUANTITY
#undef RK_QUANTITY_TABLE

// --- what differs from the table ------------------------------------------------

SmallLengthUnitManager::SmallLengthUnitManager(const std::string& category, int modelUnit, DisplayUnitManager* manager)
    : UnitManager(kSmallLength.key, category, kSmallLength.count, modelUnit, 1, manager)
{
    setup(kSmallLength.precision);
}

AngleUnitManager::AngleUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager(kAngle.key, category, kAngle.count, kAngle.model, kAngle.display, manager)
{
    // The field product shows whole degrees.
    setup(rkProductInfo::instance().product_name() == "FieldTesk" ? 0 : kAngle.precision);
}

// Model time converts and parses, but a user never picks it.
int TimeUnitManager::numUnits() const { return 2; }
int PositiveTimeUnitManager::numUnits() const { return kPositiveTime.count; }
int AgeUnitManager::numUnits() const { return 1; }
int TimeFrequencyUnitManager::numUnits() const { return 1; }
int ThermalConductivityUnitManager::numUnits() const { return 1; }
int ThermalDiffusivityUnitManager::numUnits() const { return 1; }
int SpecificHeatCapacityUnitManager::numUnits() const { return 1; }

namespace {
enum TemperatureScale { Celsius = 0, Fahrenheit = 1, Kelvin = 2 };

double toCelsius(double value, int scale)
{
    switch (scale) {
    case Fahrenheit:
        return (value - 32.0) * 5.0 / 9.0;
    case Kelvin:
        return value - 273.15;
    default:
        return value;
    }
}

double fromCelsius(double celsius, int scale)
{
    switch (scale) {
    case Fahrenheit:
        return celsius * 9.0 / 5.0 + 32.0;
    case Kelvin:
        return celsius + 273.15;
    default:
        return celsius;
    }
}
} // namespace

double TemperatureUnitManager::convert(double value, int from, int to) const
{
    if (from == to || from < Celsius || from > Kelvin || to < Celsius || to > Kelvin)
        return value;
    // Passing through Celsius is exact for either end that is Celsius and otherwise does the same
    // arithmetic, in the same order, as the direct formula.
    return fromCelsius(toCelsius(value, from), to);
}

} // namespace rkBase
