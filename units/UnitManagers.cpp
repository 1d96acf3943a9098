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

// One row of a unit table: factor, long name, tag. Texts are UTF-8; "%1" and "%2" in them stand
// for the glyphs `first` and `second`, and are left alone when no glyph is given (the percent
// tag is a plain "%").
struct UnitRow {
    double factor;
    const char* name;
    const char* tag;
    Glyph first = Glyph::None;
    Glyph second = Glyph::None;

    QString text(const char* pattern) const
    {
        QString out = QString::fromUtf8(pattern);
        if (first != Glyph::None)
            out.replace(QLatin1String("%1"), glyphText(first));
        if (second != Glyph::None)
            out.replace(QLatin1String("%2"), glyphText(second));
        return out;
    }
    QString nameText() const { return text(name); }
    QString tagText() const { return text(tag); }
};

// Per length, shared by the depth coefficient and the dimension frequency.
constexpr UnitRow kPerLengthUnits[] = {
    {1.0, "1/metre", "m%1", Glyph::Inverted},
    {0.001, "1/kilometre", "km%1", Glyph::Inverted},
    {3.280839895013123, "1/foot", "ft%1", Glyph::Inverted},
    {0.0006213711922373339, "1/mile", "mi%1", Glyph::Inverted},
};

// One link of compound printing: how `unit` splits into major, second and last parts.
struct MspLink {
    int unit;
    int major;
    int second;
    int last;
};

// Metric rows print as kilometres and metres, imperial ones as their major unit alone; neither
// chain has a last unit. Shared with the inverse-length managers, whose rows run in the same order.
constexpr MspLink kLengthChains[] = {{0, 1, 0, -1}, {1, 1, 0, -1}, {2, 2, -1, -1}, {3, 2, -1, -1}};
constexpr MspLink kSmallLengthChains[] = {{2, 4, 2, 4}, {3, 4, 2, 4}, {4, 4, 2, 4}};
constexpr MspLink kAngleChains[] = {{0, 0, 2, 3}, {2, 0, 2, 3}, {3, 0, 2, 3}};
constexpr MspLink kFractionChains[] = {{0, 0, 1, 0}, {1, 0, 1, 0}};
constexpr MspLink kDimensionlessChains[] = {{0, 0, 0, 0}};
constexpr MspLink kTimeChains[] = {{1, -1, -1, 1}};
constexpr MspLink kPositiveTimeChains[] = {{1, -1, -1, 1}, {2, -1, -1, 2}, {3, -1, -1, 3}};
// The one unit of a single-unit quantity is printed plainly as the last part.
constexpr MspLink kSingleUnitChains[] = {{0, -1, -1, 0}};

template <std::size_t N> void findChain(const MspLink (&links)[N], int unit, int& major, int& second, int& last)
{
    major = second = last = -1;
    for (const MspLink& link : links) {
        if (link.unit == unit) {
            major = link.major;
            second = link.second;
            last = link.last;
            return;
        }
    }
}

} // namespace

// Each initUnitTables keeps its rows in a function-local table: that scope may read the base's
// protected foot and mile, and the table is built on first use, whatever the load order.

// --- lengths ----------------------------------------------------------------

LengthUnitManager::LengthUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Length", category, 4, 0, 0, manager)
{
    setup(1);
}

LengthUnitManager::~LengthUnitManager() = default;

void LengthUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "metre", "m"},
        {1000.0, "kilometre", "km"},
        {m_metresPerFoot, "foot", "ft"},
        {m_metresPerMile, "mile", "mi"},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

void LengthUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kLengthChains, unit, major, second, last);
}

SmallLengthUnitManager::SmallLengthUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Small Length", category, 8, 4, 4, manager)
{
    setup(2);
}

SmallLengthUnitManager::SmallLengthUnitManager(const std::string& category, int modelUnit, DisplayUnitManager* manager)
    : UnitManager("Small Length", category, 8, modelUnit, 1, manager)
{
    setup(2);
}

SmallLengthUnitManager::~SmallLengthUnitManager() = default;

void SmallLengthUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        // One row per line, in key order.
        // clang-format off
        {1000.0, "kilometre", "km"},
        {1.0, "metre", "m"},
        {0.1, "decimetre", "dm"},
        {0.01, "centimetre", "cm"},
        {0.001, "millimetre", "mm"},
        {m_metresPerMile, "mile", "mi"},
        {m_metresPerFoot, "foot", "ft"},
        {0.0254, "inch", "in"},
        // clang-format on
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

void SmallLengthUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kSmallLengthChains, unit, major, second, last);
}

// --- areas and volumes ------------------------------------------------------

AreaUnitManager::AreaUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Area", category, 4, 0, 0, manager)
{
    setup(0);
}

AreaUnitManager::~AreaUnitManager() = default;

void AreaUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "square metre", "m%1", Glyph::Squared},
        {1000000.0, "square kilometre", "km%1", Glyph::Squared},
        {0.09290304, "square foot", "ft%1", Glyph::Squared},
        {2589988.110336, "square mile", "mi%1", Glyph::Squared},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

VolumeUnitManager::VolumeUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Volume", category, 4, 0, 0, manager)
{
    setup(0);
}

VolumeUnitManager::~VolumeUnitManager() = default;

void VolumeUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "cubic metre", "m%1", Glyph::Cubed},
        {0.028316846592000004, "cubic foot", "ft%1", Glyph::Cubed},
        {1000000000.0, "cubic kilometre", "km%1", Glyph::Cubed},
        {4168181825.44058, "cubic mile", "mi%1", Glyph::Cubed},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

// --- angles -----------------------------------------------------------------

AngleUnitManager::AngleUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Angle", category, 4, 0, 0, manager)
{
    // The field product shows whole degrees.
    setup(rkProductInfo::instance().product_name() == "FieldTesk" ? 0 : 2);
}

AngleUnitManager::~AngleUnitManager() = default;

void AngleUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "degree", "deg"},
        {57.2957795, "radian", "rad"},
        {0.0166666667, "minute", "'"},
        {0.000277777778, "second", "\""},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

void AngleUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kAngleChains, unit, major, second, last);
}

// --- time -------------------------------------------------------------------

TimeUnitManager::TimeUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Time", category, 3, 2, 0, manager)
{
    setup(2);
}

TimeUnitManager::~TimeUnitManager() = default;

void TimeUnitManager::initUnitTables()
{
    // Model time grows with depth; shown time runs the other way, hence the negative factors.
    static const UnitRow rows[] = {
        {-1.0, "millisecond", "ms"},
        {-1000.0, "second", "secs"},
        {1.0, "model time", "mtime"},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

// Model time converts and parses, but a user never picks it.
int TimeUnitManager::numUnits() const { return 2; }

void TimeUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kTimeChains, unit, major, second, last);
}

PositiveTimeUnitManager::PositiveTimeUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Real Time", category, 4, 0, 0, manager)
{
    setup(2);
}

PositiveTimeUnitManager::~PositiveTimeUnitManager() = default;

void PositiveTimeUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "millisecond twt", "ms twt"},
        {0.5, "millisecond owt", "ms owt"},
        {1000.0, "second twt", "s twt"},
        {500.0, "second owt", "s owt"},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

int PositiveTimeUnitManager::numUnits() const { return 4; }

void PositiveTimeUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kPositiveTimeChains, unit, major, second, last);
}

AgeUnitManager::AgeUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Age", category, 1, 0, 0, manager)
{
    setup(1);
}

AgeUnitManager::~AgeUnitManager() = default;

void AgeUnitManager::initUnitTables()
{
    // A one-unit table never applies its factor: converting a unit to itself returns the input.
    static const UnitRow rows[] = {{-1.0, "million year", "Ma"}};
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

int AgeUnitManager::numUnits() const { return 1; }

void AgeUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kSingleUnitChains, unit, major, second, last);
}

TimeFrequencyUnitManager::TimeFrequencyUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("frequency", category, 1, 0, 0, manager)
{
    setup(2);
}

TimeFrequencyUnitManager::~TimeFrequencyUnitManager() = default;

void TimeFrequencyUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {{1.0, "hertz", "Hz"}};
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

int TimeFrequencyUnitManager::numUnits() const { return 1; }

void TimeFrequencyUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kSingleUnitChains, unit, major, second, last);
}

// --- velocity, density, pressure --------------------------------------------

VelocityUnitManager::VelocityUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Velocity", category, 2, 0, 0, manager)
{
    setup(0);
}

VelocityUnitManager::~VelocityUnitManager() = default;

void VelocityUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "metre/second", "m/s"},
        {m_metresPerFoot, "foot/second", "ft/s"},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

DensityUnitManager::DensityUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Density", category, 2, 0, 0, manager)
{
    setup(0);
}

DensityUnitManager::~DensityUnitManager() = default;

void DensityUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {0.001, "kilogram/cubic metre", "kg/m%1", Glyph::Cubed},
        {1.0, "gram/cubic centimetre", "g/cm%1", Glyph::Cubed},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

PressureUnitManager::PressureUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Pressure", category, 6, 1, 1, manager)
{
    setup(1);
}

PressureUnitManager::~PressureUnitManager() = default;

void PressureUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        // One row per line, in key order.
        // clang-format off
        {0.001, "kilopascal", "kPa"},
        {1.0, "megapascal", "MPa"},
        {1000.0, "gigapascal", "GPa"},
        {0.1, "bar", "bar"},
        {100.0, "kilobar", "kbar"},
        {0.006894757294604437, "pound/square inch", "psi"},
        // clang-format on
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

// --- thermal ----------------------------------------------------------------

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

TemperatureUnitManager::TemperatureUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Temperature", category, 3, 0, 0, manager)
{
    setup(1);
}

TemperatureUnitManager::~TemperatureUnitManager() = default;

void TemperatureUnitManager::initUnitTables()
{
    // The scales have different zeros, so convert() goes by formula and never reads these factors.
    static const UnitRow rows[] = {
        {1.0, "degree Celsius", "%1C", Glyph::Degree},
        {60.0, "degree Fahrenheit", "%1F", Glyph::Degree},
        {273.15, "kelvin", "K"},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

double TemperatureUnitManager::convert(double value, int from, int to) const
{
    if (from == to || from < Celsius || from > Kelvin || to < Celsius || to > Kelvin)
        return value;
    // Passing through Celsius is exact for either end that is Celsius and otherwise does the same
    // arithmetic, in the same order, as the direct formula.
    return fromCelsius(toCelsius(value, from), to);
}

ThermalConductivityUnitManager::ThermalConductivityUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Thermal Conductivity", category, 1, 0, 0, manager)
{
    setup(2);
}

ThermalConductivityUnitManager::~ThermalConductivityUnitManager() = default;

void ThermalConductivityUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {{-1.0, "watt/(metre%1kelvin)", "W/(m%1K)", Glyph::MiddleDot}};
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

int ThermalConductivityUnitManager::numUnits() const { return 1; }

void ThermalConductivityUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kSingleUnitChains, unit, major, second, last);
}

ThermalDiffusivityUnitManager::ThermalDiffusivityUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Thermal Diffusivity", category, 1, 0, 0, manager)
{
    setup(7);
}

ThermalDiffusivityUnitManager::~ThermalDiffusivityUnitManager() = default;

void ThermalDiffusivityUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {{-1.0, "square metre/second", "m%1/s", Glyph::Squared}};
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

int ThermalDiffusivityUnitManager::numUnits() const { return 1; }

void ThermalDiffusivityUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kSingleUnitChains, unit, major, second, last);
}

SpecificHeatCapacityUnitManager::SpecificHeatCapacityUnitManager(const std::string& category,
                                                                 DisplayUnitManager* manager)
    : UnitManager("Specific Heat Capacity", category, 1, 0, 0, manager)
{
    setup(3);
}

SpecificHeatCapacityUnitManager::~SpecificHeatCapacityUnitManager() = default;

void SpecificHeatCapacityUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {{-1.0, "kcal/kilogram%1kelvin", "kcal/(kg%1K)", Glyph::MiddleDot}};
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

int SpecificHeatCapacityUnitManager::numUnits() const { return 1; }

void SpecificHeatCapacityUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kSingleUnitChains, unit, major, second, last);
}

// --- rock and sediment properties -------------------------------------------

PermeabilityUnitManager::PermeabilityUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Permeability", category, 4, 0, 0, manager)
{
    setup(4);
}

PermeabilityUnitManager::~PermeabilityUnitManager() = default;

void PermeabilityUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "darcy", "D"},
        {0.001, "millidarcy", "mD"},
        {1013249966000.0, "square metre", "m%1", Glyph::Squared},
        {94130921830.0, "square foot", "ft%1", Glyph::Squared},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

FractionUnitManager::FractionUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Fraction", category, 2, 0, 0, manager)
{
    setup(4);
}

FractionUnitManager::~FractionUnitManager() = default;

void FractionUnitManager::initUnitTables()
{
    // A fraction has no tag: its printed value ends in the separating blank alone.
    static const UnitRow rows[] = {
        {1.0, "fraction", ""},
        {0.01, "percent", "%"},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

void FractionUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kFractionChains, unit, major, second, last);
}

DimensionlessUnitManager::DimensionlessUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Dimension", category, 1, 0, 0, manager)
{
    setup(4);
}

DimensionlessUnitManager::~DimensionlessUnitManager() = default;

void DimensionlessUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {{1.0, "", ""}};
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

void DimensionlessUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kDimensionlessChains, unit, major, second, last);
}

SedimentGrainUnitManager::SedimentGrainUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("grain size", category, 7, 2, 2, manager)
{
    setup(1);
}

SedimentGrainUnitManager::~SedimentGrainUnitManager() = default;

void SedimentGrainUnitManager::initUnitTables()
{
    // Phi is a logarithmic scale in sedimentology; here it is a plain factor, as it always was.
    static const UnitRow rows[] = {
        {1.0, "metre", "m"},
        {0.01, "centimetre", "cm"},
        {0.001, "millimetre", "mm"},
        {1e-06, "micrometre", u8"\u00B5m"},
        {0.30102999566, "phi", u8"\u0278"},
        {m_metresPerFoot, "foot", "ft"},
        {0.0254, "inch", "in"},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

// --- per length, area and volume --------------------------------------------

P32UnitManager::P32UnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("p32", category, 2, 0, 0, manager)
{
    setup(4);
}

P32UnitManager::~P32UnitManager() = default;

void P32UnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "square metre/cubic metre", "m%1/m%2", Glyph::Squared, Glyph::Cubed},
        {3.280839895013123, "square foot/cubic foot", "ft%1/ft%2", Glyph::Squared, Glyph::Cubed},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

PerVolumeUnitManager::PerVolumeUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Per Volume", category, 4, 0, 0, manager)
{
    setup(4);
}

PerVolumeUnitManager::~PerVolumeUnitManager() = default;

void PerVolumeUnitManager::initUnitTables()
{
    // The kilometre row repeats the per-area factor (1e-06, not 1e-09); stored values rely on it.
    static const UnitRow rows[] = {
        {1.0, "1/cubic metre", "1/m%2", Glyph::None, Glyph::Cubed},
        {1e-06, "1/cubic kilometre", "1/km%2", Glyph::None, Glyph::Cubed},
        {35.314666721488585, "1/cubic foot", "1/ft%2", Glyph::None, Glyph::Cubed},
        {2.399127585789277e-10, "1/cubic mile", "1/mi%2", Glyph::None, Glyph::Cubed},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

DepthCoefficientUnitManager::DepthCoefficientUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("depth coefficient", category, 4, 1, 1, manager)
{
    setup(2);
}

DepthCoefficientUnitManager::~DepthCoefficientUnitManager() = default;

void DepthCoefficientUnitManager::initUnitTables()
{
    for (const UnitRow& row : kPerLengthUnits)
        addUnit(row.factor, row.nameText(), row.tagText());
}

DimensionFrequencyUnitManager::DimensionFrequencyUnitManager(const std::string& category, DisplayUnitManager* manager)
    : UnitManager("Dimension Frequency", category, 4, 0, 1, manager)
{
    setup(2);
}

DimensionFrequencyUnitManager::~DimensionFrequencyUnitManager() = default;

void DimensionFrequencyUnitManager::initUnitTables()
{
    for (const UnitRow& row : kPerLengthUnits)
        addUnit(row.factor, row.nameText(), row.tagText());
}

void DimensionFrequencyUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kLengthChains, unit, major, second, last);
}

DimensionFrequencySquaredUnitManager::DimensionFrequencySquaredUnitManager(const std::string& category,
                                                                           DisplayUnitManager* manager)
    : UnitManager("Dimension Frequency Squared", category, 4, 0, 1, manager)
{
    setup(4);
}

DimensionFrequencySquaredUnitManager::~DimensionFrequencySquaredUnitManager() = default;

void DimensionFrequencySquaredUnitManager::initUnitTables()
{
    static const UnitRow rows[] = {
        {1.0, "1/square metre", "m%1", Glyph::InvertedSquared},
        {1e-06, "1/square kilometre", "km%1", Glyph::InvertedSquared},
        {10.763910416709722, "1/square foot", "ft%1", Glyph::InvertedSquared},
        {3.861021585424458e-07, "1/square mile", "mi%1", Glyph::InvertedSquared},
    };
    for (const UnitRow& row : rows)
        addUnit(row.factor, row.nameText(), row.tagText());
}

void DimensionFrequencySquaredUnitManager::getMSPSystem(int unit, int& major, int& second, int& last) const
{
    findChain(kLengthChains, unit, major, second, last);
}

} // namespace rkBase
