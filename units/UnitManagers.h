#pragma once

#include "rkbaseqt_export.h"
#include "units/UnitManager.h"

#include <string>

namespace rkBase {

// Every class below takes the category it registers under (empty: do not register) and the
// shared display table (may be null), fills its unit table and registers with its own default
// display unit and precision. A unit key is the row number in the class's table in
// UnitManagers.cpp; settings and display schemes refer to units by key, so rows keep their order.

/// \brief Lengths. `LengthUnitManager`: metre, kilometre, foot, mile (model: metre).
/// `SmallLengthUnitManager`: kilometre down to millimetre, then mile, foot, inch (model:
/// millimetre, or the key given).
///
/// Their compound chains end without a last unit, so compound printing must stay off for them.
class RKBASEQT_EXPORT LengthUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    LengthUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~LengthUnitManager() override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Short lengths from kilometre down to millimetre, then mile, foot and inch (model: millimetre unless given).
class RKBASEQT_EXPORT SmallLengthUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    SmallLengthUnitManager(const std::string& category, DisplayUnitManager* manager);
    /// Model unit as given; metre is then the default display unit.
    SmallLengthUnitManager(const std::string& category, int modelUnit, DisplayUnitManager* manager);
    ~SmallLengthUnitManager() override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Areas and volumes in metric and imperial units; model: the square or cubic metre.
/// The volume rows run metre, foot, kilometre, mile, unlike the area rows.
class RKBASEQT_EXPORT AreaUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    AreaUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~AreaUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Volumes: cubic metre (model), foot, kilometre and mile.
class RKBASEQT_EXPORT VolumeUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    VolumeUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~VolumeUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Angles: degree (model), radian, minute, second; compound printing gives degrees,
/// minutes and seconds.
///
/// Registers with precision 0 when the running product is "FieldTesk", else 2: call
/// `rkProductInfo::init` before building one. The radian factor has nine digits only, so a
/// full turn in radians is not exact.
class RKBASEQT_EXPORT AngleUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    AngleUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~AngleUnitManager() override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Time and its kin.
///
/// `TimeUnitManager`: model time (depth positive) shown as negative milliseconds or seconds; the
/// model row converts and parses but is not offered, so `numUnits()` is 2.
/// `PositiveTimeUnitManager`: two-way and one-way travel times in milliseconds and seconds.
/// `AgeUnitManager` (million years) and `TimeFrequencyUnitManager` (hertz) have one unit each.
class RKBASEQT_EXPORT TimeUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    TimeUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~TimeUnitManager() override;
    int numUnits() const override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Two-way and one-way travel times in milliseconds and seconds.
class RKBASEQT_EXPORT PositiveTimeUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    PositiveTimeUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~PositiveTimeUnitManager() override;
    int numUnits() const override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Geological age in million years (one unit).
class RKBASEQT_EXPORT AgeUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    AgeUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~AgeUnitManager() override;
    int numUnits() const override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Frequency in hertz (one unit).
class RKBASEQT_EXPORT TimeFrequencyUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    TimeFrequencyUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~TimeFrequencyUnitManager() override;
    int numUnits() const override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Velocity (metre or foot per second), density (model: kilogram per cubic metre) and
/// pressure (model: megapascal; kilopascal to kilobar and psi).
class RKBASEQT_EXPORT VelocityUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    VelocityUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~VelocityUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Density; model: kilogram per cubic metre.
class RKBASEQT_EXPORT DensityUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    DensityUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~DensityUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Pressure; model: megapascal, shown from kilopascal to kilobar and psi.
class RKBASEQT_EXPORT PressureUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    PressureUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~PressureUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Thermal quantities. `TemperatureUnitManager` (Celsius, Fahrenheit, kelvin) converts by
/// formula, as the scales have different zeros; its factors are never read. The other three have
/// a single unit each.
class RKBASEQT_EXPORT TemperatureUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    TemperatureUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~TemperatureUnitManager() override;
    /// Exact formulas between the three scales; the value unchanged for equal or bad keys.
    double convert(double value, int from, int to) const override;

protected:
    void initUnitTables() override;
};

/// \brief Thermal conductivity (one unit).
class RKBASEQT_EXPORT ThermalConductivityUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    ThermalConductivityUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~ThermalConductivityUnitManager() override;
    int numUnits() const override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Thermal diffusivity (one unit).
class RKBASEQT_EXPORT ThermalDiffusivityUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    ThermalDiffusivityUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~ThermalDiffusivityUnitManager() override;
    int numUnits() const override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Specific heat capacity (one unit).
class RKBASEQT_EXPORT SpecificHeatCapacityUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    SpecificHeatCapacityUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~SpecificHeatCapacityUnitManager() override;
    int numUnits() const override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Rock and sediment properties: permeability (darcy, millidarcy, square metre and foot),
/// fraction or percent, a unitless number (empty name and tag), and grain size (model:
/// millimetre; phi is a plain factor here, not a logarithm).
class RKBASEQT_EXPORT PermeabilityUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    PermeabilityUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~PermeabilityUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief A fraction, shown as a fraction or in percent.
class RKBASEQT_EXPORT FractionUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    FractionUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~FractionUnitManager() override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief A plain number: one unit with empty name and tag.
class RKBASEQT_EXPORT DimensionlessUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    DimensionlessUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~DimensionlessUnitManager() override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Grain size; model: millimetre (phi is a plain factor here, not a logarithm).
class RKBASEQT_EXPORT SedimentGrainUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    SedimentGrainUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~SedimentGrainUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Quantities per length, area or volume: fracture intensity P32 (area per volume), per
/// volume, depth coefficient and dimension frequency (per length), and per area.
///
/// The per-volume kilometre row holds 1e-06, the same factor as the per-area one, and is kept
/// so because stored values rely on it.
class RKBASEQT_EXPORT P32UnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    P32UnitManager(const std::string& category, DisplayUnitManager* manager);
    ~P32UnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Counts per volume.
class RKBASEQT_EXPORT PerVolumeUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    PerVolumeUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~PerVolumeUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Depth coefficient: a quantity per length.
class RKBASEQT_EXPORT DepthCoefficientUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    DepthCoefficientUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~DepthCoefficientUnitManager() override;

protected:
    void initUnitTables() override;
};

/// \brief Dimension frequency: counts per length.
class RKBASEQT_EXPORT DimensionFrequencyUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    DimensionFrequencyUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~DimensionFrequencyUnitManager() override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

/// \brief Counts per area.
class RKBASEQT_EXPORT DimensionFrequencySquaredUnitManager : public UnitManager {
public:
    /// Fills the unit table and, with a non-empty `category`, registers in `manager` (may be null).
    DimensionFrequencySquaredUnitManager(const std::string& category, DisplayUnitManager* manager);
    ~DimensionFrequencySquaredUnitManager() override;
    void getMSPSystem(int unit, int& major, int& second, int& last) const override;

protected:
    void initUnitTables() override;
};

} // namespace rkBase
