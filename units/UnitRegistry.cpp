#include "units/UnitRegistry.h"

#include "matrix/MatrixData.h"
#include "units/UnitManagers.h"

#include <algorithm>

namespace rkBase {

const std::string UnitRegistry::CATEGORY_AGE = "age";
const std::string UnitRegistry::CATEGORY_AREA = "area";
const std::string UnitRegistry::CATEGORY_DENSITY = "density";
const std::string UnitRegistry::CATEGORY_DEPTH_COEFFICENT = "depth coefficient";
const std::string UnitRegistry::CATEGORY_DIMENSION = "dimension";
const std::string UnitRegistry::CATEGORY_DIMENSIONLESS = "dimensionless";
const std::string UnitRegistry::CATEGORY_DIMENSION_FREQUENCY = "dimension frequency";
const std::string UnitRegistry::CATEGORY_DIMENSION_FREQUENCY_SQUARED = "inverse length squared";
const std::string UnitRegistry::CATEGORY_ELEVATION = "elevation";
const std::string UnitRegistry::CATEGORY_FRACTION = "fraction";
const std::string UnitRegistry::CATEGORY_FREQUENCY = "frequency";
const std::string UnitRegistry::CATEGORY_GRAIN_SIZE = "grain size";
const std::string UnitRegistry::CATEGORY_HEAT_CAPACITY = "heat capacity";
const std::string UnitRegistry::CATEGORY_ORIENTATION = "orientation";
const std::string UnitRegistry::CATEGORY_P32 = "p32";
const std::string UnitRegistry::CATEGORY_PERCENT = "percent";
const std::string UnitRegistry::CATEGORY_PERMEABILITY = "permeability";
const std::string UnitRegistry::CATEGORY_PER_VOLUME = "pervolume";
const std::string UnitRegistry::CATEGORY_PHYSICAL_SIZE = "physical size";
const std::string UnitRegistry::CATEGORY_PRESSURE = "pressure";
const std::string UnitRegistry::CATEGORY_TEMPERATURE = "temperature";
const std::string UnitRegistry::CATEGORY_THERMAL_CONDUCTIVITY = "thermal conductivity";
const std::string UnitRegistry::CATEGORY_THERMAL_DIFFUSIVITY = "thermal diffusivity";
const std::string UnitRegistry::CATEGORY_TIME = "time";
const std::string UnitRegistry::CATEGORY_VELOCITY = "velocity";
const std::string UnitRegistry::CATEGORY_VOLUME = "volume";
const std::string UnitRegistry::CATEGORY_XY = "xy";
const std::string UnitRegistry::CATEGORY_ZDIMENSION = "zdimension";

const std::string UnitRegistry::UNKNOWN_SYSTEM_TYPE = "Unknown";
const std::string UnitRegistry::BOOLEAN_SYSTEM_TYPE = "Boolean";
const std::string UnitRegistry::COLOR_SYSTEM_TYPE = "Color";
const std::string UnitRegistry::COLORMAP_SYSTEM_TYPE = "Colormap";
const std::string UnitRegistry::DIP_SYSTEM_TYPE = "Dip";
const std::string UnitRegistry::FLAG_SYSTEM_TYPE = "Flag";
const std::string UnitRegistry::INTEGER_SYETEM_TYPE = "Integer";
const std::string UnitRegistry::MAPPED_IMAGE_SYSTEM_TYPE = "MappedImage";
const std::string UnitRegistry::PATTERN_SYSTEM_TYPE = "Pattern";
const std::string UnitRegistry::PROJECTED_IMAGE_SYSTEM_TYPE = "ProjectedImage";
const std::string UnitRegistry::REAL_SYSTEM_TYPE = "Real";
const std::string UnitRegistry::REAL_VECTOR2_SYSTEM_TYPE = "RealVector2";
const std::string UnitRegistry::REAL_VECTOR3_SYSTEM_TYPE = "RealVector3";
const std::string UnitRegistry::TEXT_SYSTEM_TYPE = "Text";
const std::string UnitRegistry::VERTEX_DISPLAY_SYSTEM_TYPE = "VertexDisplay";

const std::string UnitRegistry::m_emptyString;

bool UnitRegistry::m_s_showHiddenAttributes = false;

namespace {

using Maker = boost::shared_ptr<UnitManager> (*)(const std::string&, DisplayUnitManager*);

// The shared pointer is made from the concrete type, whose destructor is public.
template <class T> boost::shared_ptr<UnitManager> make(const std::string& category, DisplayUnitManager* table)
{
    return boost::shared_ptr<UnitManager>(new T(category, table));
}

boost::shared_ptr<UnitManager> makeDimension(const std::string& category, DisplayUnitManager* table)
{
    // Lengths of objects are stored in metres, not in the small-length default of millimetres.
    return boost::shared_ptr<UnitManager>(new SmallLengthUnitManager(category, 1, table));
}

struct CategoryRow {
    const std::string& category;
    const char* displayName;
    Maker make;
    int scheme[3][2]; // unit, precision of the metric, imperial and metric-horizontal schemes
};

// Built in this order, which is the order in which the display table learns the categories.
const std::vector<CategoryRow>& categoryTable()
{
    using R = UnitRegistry;
    static const std::vector<CategoryRow> rows = {
        {R::CATEGORY_XY, "XY", make<LengthUnitManager>, {{0, 1}, {2, 1}, {0, 1}}},
        {R::CATEGORY_DIMENSION, "Length", makeDimension, {{1, 1}, {6, 1}, {1, 1}}},
        {R::CATEGORY_ELEVATION, "Elevation", make<LengthUnitManager>, {{0, 1}, {2, 1}, {2, 1}}},
        {R::CATEGORY_TIME, "Time", make<TimeUnitManager>, {{0, 2}, {0, 2}, {0, 2}}},
        {R::CATEGORY_AGE, "Geological Time", make<AgeUnitManager>, {{0, 1}, {0, 1}, {0, 1}}},
        {R::CATEGORY_ZDIMENSION, "Depth Measure", make<LengthUnitManager>, {{0, 1}, {2, 1}, {2, 1}}},
        {R::CATEGORY_ORIENTATION, "Angle", make<AngleUnitManager>, {{0, 2}, {0, 2}, {0, 2}}},
        {R::CATEGORY_AREA, "Area", make<AreaUnitManager>, {{0, 0}, {2, 0}, {2, 0}}},
        {R::CATEGORY_VOLUME, "Volume", make<VolumeUnitManager>, {{0, 0}, {1, 0}, {1, 0}}},
        {R::CATEGORY_PHYSICAL_SIZE, "Physical Size", make<SmallLengthUnitManager>, {{4, 2}, {7, 2}, {7, 2}}},
        {R::CATEGORY_TEMPERATURE, "Temperature", make<TemperatureUnitManager>, {{0, 1}, {1, 1}, {1, 1}}},
        {R::CATEGORY_PRESSURE, "Pressure", make<PressureUnitManager>, {{1, 1}, {5, 1}, {5, 1}}},
        {R::CATEGORY_VELOCITY, "Velocity", make<VelocityUnitManager>, {{0, 0}, {1, 0}, {1, 0}}},
        {R::CATEGORY_DENSITY, "Density", make<DensityUnitManager>, {{0, 0}, {0, 0}, {0, 0}}},
        {R::CATEGORY_THERMAL_CONDUCTIVITY,
         "Thermal Conductivity",
         make<ThermalConductivityUnitManager>,
         {{0, 2}, {0, 2}, {0, 2}}},
        {R::CATEGORY_THERMAL_DIFFUSIVITY,
         "Thermal Diffusivity",
         make<ThermalDiffusivityUnitManager>,
         {{0, 7}, {0, 7}, {0, 7}}},
        {R::CATEGORY_HEAT_CAPACITY, "Heat Capacity", make<SpecificHeatCapacityUnitManager>, {{0, 3}, {0, 3}, {0, 3}}},
        {R::CATEGORY_FRACTION, "Fraction", make<FractionUnitManager>, {{0, 4}, {0, 4}, {0, 4}}},
        {R::CATEGORY_PERMEABILITY, "Permeability", make<PermeabilityUnitManager>, {{0, 4}, {0, 4}, {0, 4}}},
        {R::CATEGORY_P32, "p32", make<P32UnitManager>, {{0, 4}, {0, 4}, {0, 4}}},
        {R::CATEGORY_PER_VOLUME, "Per Volume", make<PerVolumeUnitManager>, {{0, 4}, {2, 4}, {2, 4}}},
        {R::CATEGORY_PERCENT, "Percent", make<FractionUnitManager>, {{1, 1}, {1, 1}, {1, 1}}},
        {R::CATEGORY_DIMENSIONLESS, "Unitless", make<DimensionlessUnitManager>, {{0, 4}, {0, 4}, {0, 4}}},
        {R::CATEGORY_DEPTH_COEFFICENT,
         "Depth Coefficient",
         make<DepthCoefficientUnitManager>,
         {{1, 2}, {2, 2}, {2, 2}}},
        {R::CATEGORY_GRAIN_SIZE, "Grain Size", make<SedimentGrainUnitManager>, {{1, 4}, {6, 4}, {6, 4}}},
        {R::CATEGORY_DIMENSION_FREQUENCY_SQUARED,
         "Inverse Length Squared",
         make<DimensionFrequencySquaredUnitManager>,
         {{0, 2}, {2, 2}, {2, 2}}},
        {R::CATEGORY_DIMENSION_FREQUENCY, "Per Length", make<DimensionFrequencyUnitManager>, {{0, 2}, {2, 2}, {2, 2}}},
        {R::CATEGORY_FREQUENCY, "Frequency", make<TimeFrequencyUnitManager>, {{0, 2}, {0, 2}, {0, 2}}},
    };
    return rows;
}

const std::string* const kSystemTypes[] = {
    &UnitRegistry::UNKNOWN_SYSTEM_TYPE,
    &UnitRegistry::BOOLEAN_SYSTEM_TYPE,
    &UnitRegistry::COLOR_SYSTEM_TYPE,
    &UnitRegistry::COLORMAP_SYSTEM_TYPE,
    &UnitRegistry::DIP_SYSTEM_TYPE,
    &UnitRegistry::FLAG_SYSTEM_TYPE,
    &UnitRegistry::INTEGER_SYETEM_TYPE,
    &UnitRegistry::MAPPED_IMAGE_SYSTEM_TYPE,
    &UnitRegistry::PATTERN_SYSTEM_TYPE,
    &UnitRegistry::PROJECTED_IMAGE_SYSTEM_TYPE,
    &UnitRegistry::REAL_SYSTEM_TYPE,
    &UnitRegistry::REAL_VECTOR2_SYSTEM_TYPE,
    &UnitRegistry::REAL_VECTOR3_SYSTEM_TYPE,
    &UnitRegistry::TEXT_SYSTEM_TYPE,
    &UnitRegistry::VERTEX_DISPLAY_SYSTEM_TYPE,
};
constexpr int kSystemTypeCount = sizeof kSystemTypes / sizeof kSystemTypes[0];

// What a name says about its quantity, tried in this order on the lower-cased name: "dip"
// wins over "frac_", so frac_sigma_dip is an orientation.
struct DeductionRule {
    const char* first;
    const char* second; // also required when not null
    const std::string& category;
};
const DeductionRule kDeductionRules[] = {
    {"dip", nullptr, UnitRegistry::CATEGORY_ORIENTATION},
    {"azimuth", nullptr, UnitRegistry::CATEGORY_ORIENTATION},
    {"strike", nullptr, UnitRegistry::CATEGORY_ORIENTATION},
    {"size", nullptr, UnitRegistry::CATEGORY_DIMENSION},
    {"width", nullptr, UnitRegistry::CATEGORY_DIMENSION},
    {"frac_", "porosity", UnitRegistry::CATEGORY_FRACTION},
    {"frac_", "p32", UnitRegistry::CATEGORY_P32},
    {"frac_", "perm", UnitRegistry::CATEGORY_PERMEABILITY},
    {"frac_", "anisotropy", UnitRegistry::CATEGORY_FRACTION},
    {"frac_", "sigma", UnitRegistry::CATEGORY_FRACTION},
    {"frac_", "conn", UnitRegistry::CATEGORY_FRACTION},
};

constexpr unsigned int kHiddenUsageBits = 0x20 | 0x10 | 0x08;
constexpr unsigned int kEditableUsageBit = 0x100;

const UnitRegistry::AttributeInfo& emptyInfo()
{
    static const UnitRegistry::AttributeInfo none;
    return none;
}

} // namespace

// --- construction ----------------------------------------------------------

UnitRegistry::UnitRegistry() : m_displayUnitManager(new DisplayUnitManager(this))
{
    // The table is filled silently: nobody listens yet, and a registry under construction must
    // not answer its own refresh signals.
    const bool wasBlocked = m_displayUnitManager->blockSignals(true);
    for (const CategoryRow& row : categoryTable()) {
        boost::shared_ptr<UnitManager> manager = row.make(row.category, m_displayUnitManager);
        m_categories[row.category] = manager;
        for (int id = 0; id < 3; ++id)
            manager->setUnitList(static_cast<DisplayUnitId>(id), row.scheme[id][0], row.scheme[id][1]);
        manager->setCategoryDisplayName(QString::fromLatin1(row.displayName));
        m_defaultCategories.insert(row.category);
    }
    setCategoryTable(DISPLAY_METRIC);
    m_displayUnitManager->blockSignals(wasBlocked);
    connectDisplayTable();
}

UnitRegistry::UnitRegistry(const UnitRegistry& other)
    : QObject(nullptr), m_defaultCategories(other.m_defaultCategories), m_defaultProperties(other.m_defaultProperties),
      m_categories(other.m_categories), m_displayUnitManager(other.m_displayUnitManager),
      m_properties(other.m_properties), m_propertyIndex(other.m_propertyIndex)
{
    connectDisplayTable();
}

UnitRegistry::~UnitRegistry() = default;

UnitRegistry* UnitRegistry::clone() const { return new UnitRegistry(*this); }

void UnitRegistry::connectDisplayTable()
{
    if (!m_displayUnitManager)
        return;
    connect(m_displayUnitManager, SIGNAL(unitChanged(QString, int)), this, SLOT(onUnitChanged(QString, int)));
    connect(m_displayUnitManager, SIGNAL(precisionChanged(QString, int)), this,
            SLOT(onPrecisionUnitChanged(QString, int)));
    connect(m_displayUnitManager, SIGNAL(updateAllAttributes(QString)), this, SLOT(onUpdateAllAttribute(QString)));
}

// --- slots of the property table ------------------------------------------

UnitRegistry::AttributeInfo* UnitRegistry::slot(int index)
{
    return (index >= 0 && index < static_cast<int>(m_properties.size())) ? &m_properties[static_cast<size_t>(index)]
                                                                         : nullptr;
}

const UnitRegistry::AttributeInfo* UnitRegistry::slot(int index) const
{
    return const_cast<UnitRegistry*>(this)->slot(index);
}

UnitRegistry::AttributeInfo* UnitRegistry::slot(const std::string& name)
{
    auto it = m_propertyIndex.find(name);
    return it == m_propertyIndex.end() ? nullptr : slot(it->second);
}

const UnitRegistry::AttributeInfo* UnitRegistry::slot(const std::string& name) const
{
    return const_cast<UnitRegistry*>(this)->slot(name);
}

// --- the four-form accessors ------------------------------------------------
// The iterator forms read the slot number from the index; int and name forms look the slot
// up. Unknown names and bad slot numbers give the empty record's values.

int UnitRegistry::property_index(const std::string& name) const
{
    auto it = m_propertyIndex.find(name);
    return it == m_propertyIndex.end() ? -1 : it->second;
}

const std::string& UnitRegistry::property_name(const_iterator it) const { return property_name(it->second); }
const std::string& UnitRegistry::property_name(iterator it) const { return property_name(it->second); }
const std::string& UnitRegistry::property_name(int index) const
{
    const AttributeInfo* info = slot(index);
    return info ? info->m_name : m_emptyString;
}

std::string UnitRegistry::display_name(const std::string& name) const { return name; }
const std::string& UnitRegistry::display_name(int index) const
{
    const AttributeInfo* info = slot(index);
    return info ? info->m_displayName : m_emptyString;
}

#define RK_FOUR_FORMS(Type, Name, Body)                                                                                \
    Type UnitRegistry::Name(const_iterator it) const { return Name(it->second); }                                      \
    Type UnitRegistry::Name(iterator it) const { return Name(it->second); }                                            \
    Type UnitRegistry::Name(const std::string& name) const { return Name(property_index(name)); }                      \
    Type UnitRegistry::Name(int index) const                                                                           \
    {                                                                                                                  \
        const AttributeInfo& info = slot(index) ? *slot(index) : emptyInfo();                                          \
        Body                                                                                                           \
    }

RK_FOUR_FORMS(const UnitRegistry::AttributeInfo&, property_info, return info;)
RK_FOUR_FORMS(const std::string&, property_to_system_type, return info.m_systemType;)
RK_FOUR_FORMS(int, property_to_system_type_id, return info.m_systemTypeId;)
RK_FOUR_FORMS(const std::string&, property_category, return info.m_category;)
RK_FOUR_FORMS(boost::shared_ptr<UnitManager>, property_unit_manager, return getCategory(info.m_category);)
RK_FOUR_FORMS(int, property_model_unit, return info.m_modelUnit;)
RK_FOUR_FORMS(int, property_display_unit, return info.m_displayUnit;)
RK_FOUR_FORMS(QString, property_unit_tag, return info.m_unitTag;)
RK_FOUR_FORMS(QString, property_model_unit_name, {
    const boost::shared_ptr<UnitManager> manager = getCategory(info.m_category);
    return manager ? manager->getUnitName(info.m_modelUnit) : QString();
})
RK_FOUR_FORMS(QColor, property_color, return info.m_color;)
RK_FOUR_FORMS(int, property_precision, return info.m_precision;)
RK_FOUR_FORMS(unsigned int, usage_flag, return info.m_usageFlag;)
RK_FOUR_FORMS(bool, editable, return (info.m_usageFlag & kEditableUsageBit) != 0;)
RK_FOUR_FORMS(bool, visible_to_user, {
    if (m_s_showHiddenAttributes)
        return true;
    if (!slot(index) || (!info.m_name.empty() && info.m_name[0] == '$'))
        return false;
    if (info.m_usageFlag & kHiddenUsageBits)
        return false;
    return info.m_systemType != VERTEX_DISPLAY_SYSTEM_TYPE;
})

#undef RK_FOUR_FORMS

// --- properties ------------------------------------------------------------

std::string UnitRegistry::deduceCategory(const std::string& name)
{
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const DeductionRule& rule : kDeductionRules) {
        if (lower.find(rule.first) == std::string::npos)
            continue;
        if (rule.second && lower.find(rule.second) == std::string::npos)
            continue;
        return rule.category;
    }
    return CATEGORY_DIMENSIONLESS;
}

void UnitRegistry::applyUnitKey(AttributeInfo& info, const UnitManager& manager, int key)
{
    info.m_displayUnit = key;
    info.m_unitName = manager.getUnitName(key);
    info.m_unitTag = manager.getUnitTag(key);
}

std::pair<UnitRegistry::iterator, bool> UnitRegistry::insert_property(int index, const std::string& name,
                                                                      const std::string& systemType, unsigned int usage,
                                                                      const QColor& colour, const std::string& category,
                                                                      const int& precision, const int& unitKey)
{
    auto existing = m_propertyIndex.find(name);
    if (existing != m_propertyIndex.end())
        return {existing, false};

    const int size = static_cast<int>(m_properties.size());
    // Slot numbers come from files and other registries; one far past the end would allocate a
    // record for every slot in between (a quarter of a kilobyte each), so it is refused as a
    // name in use is.
    if (index < -1 || index > size + kMaxSlotGap)
        return {m_propertyIndex.end(), false};
    if (unitKey != -1) {
        const std::string wanted = category.empty() ? deduceCategory(name) : category;
        const boost::shared_ptr<UnitManager> manager = getCategory(wanted);
        if (manager && (unitKey < 0 || unitKey >= manager->numUnits()))
            return {m_propertyIndex.end(), false};
    }
    if (index < 0 || (index < size && inUse(m_properties[static_cast<size_t>(index)])))
        index = size;
    if (index >= size)
        m_properties.resize(static_cast<size_t>(index) + 1);

    AttributeInfo info(m_displayUnitManager);
    info.m_name = name;
    info.m_index = index;
    info.m_displayName = display_name(name);
    info.m_systemType = systemType == "Colour" ? COLOR_SYSTEM_TYPE : systemType;
    info.m_systemTypeId = system_type_id(info.m_systemType);
    info.m_usageFlag = usage;
    info.m_category = category.empty() ? deduceCategory(name) : category;

    if (info.canHavePrecision()) {
        info.m_precisionEditable = precision != -1;
        info.m_precision = info.m_precisionEditable ? precision
                           : m_displayUnitManager   ? m_displayUnitManager->displayPrecision(info.m_category)
                                                    : 2;
    }

    if (colour.isValid())
        info.m_color = colour;
    else
        info.m_color = info.m_systemType == COLOR_SYSTEM_TYPE ? MatrixData::getDefaultColor(false) : QColor(Qt::white);

    const boost::shared_ptr<UnitManager> manager = getCategory(info.m_category);
    if (!manager || !info.canHaveCategory()) {
        info.m_category.clear();
        info.m_unitName.clear();
        info.m_unitTag.clear();
        info.m_modelUnit = info.m_displayUnit = -1;
    } else {
        info.m_unitEditable = unitKey != -1;
        applyUnitKey(info, *manager, info.m_unitEditable ? unitKey : manager->displayUnit());
        info.m_modelUnit = manager->modelUnit();
    }

    iterator it = m_propertyIndex.emplace(name, index).first;
    m_properties[static_cast<size_t>(index)] = info;
    emit property_added(name, index);
    return {it, true};
}

std::pair<UnitRegistry::iterator, bool> UnitRegistry::insert_property(const std::string& name,
                                                                      const std::string& systemType, unsigned int usage,
                                                                      const QColor& colour, const std::string& category,
                                                                      const int& precision, const int& unitKey)
{
    return insert_property(-1, name, systemType, usage, colour, category, precision, unitKey);
}

std::pair<UnitRegistry::iterator, bool> UnitRegistry::insert_property(const std::string& name,
                                                                      const AttributeInfo& info)
{
    auto existing = m_propertyIndex.find(name);
    if (existing != m_propertyIndex.end())
        return {existing, false};
    const int index = static_cast<int>(m_properties.size());
    m_properties.push_back(info);
    m_properties.back().m_index = index;
    iterator it = m_propertyIndex.emplace(name, index).first;
    emit property_added(name, index);
    return {it, true};
}

bool UnitRegistry::erase_property(const std::string& name)
{
    if (is_default_property(name))
        return false;
    auto it = m_propertyIndex.find(name);
    if (it == m_propertyIndex.end())
        return false;
    const int index = it->second;
    m_propertyIndex.erase(it);
    if (AttributeInfo* info = slot(index))
        info->m_index = -1;
    emit property_removed(name, index);
    return true;
}

bool UnitRegistry::rename_property(const std::string& oldName, const std::string& newName)
{
    auto it = m_propertyIndex.find(oldName);
    if (it == m_propertyIndex.end() || m_propertyIndex.count(newName))
        return false;
    const int index = it->second;
    m_propertyIndex.erase(it);
    m_propertyIndex.emplace(newName, index);
    if (AttributeInfo* info = slot(index))
        info->m_name = newName;
    return true;
}

bool UnitRegistry::is_default_property(const std::string& name) const { return m_defaultProperties.count(name) > 0; }

void UnitRegistry::add_constraint(int index, const QVariant& key, const QVariant& value)
{
    AttributeInfo* info = slot(index);
    if (!info)
        return;
    info->addConstraint(key, value);
    changed(*info);
}

void UnitRegistry::add_constraints(int index, const std::vector<AttributeInfo::ConstrainedValue>& constraints)
{
    if (AttributeInfo* info = slot(index))
        info->m_constraints = constraints;
}

void UnitRegistry::clear_constraints(int index)
{
    if (AttributeInfo* info = slot(index))
        info->m_constraints.clear();
}

bool UnitRegistry::is_property_used(int) const { return false; }

// --- categories ------------------------------------------------------------

bool UnitRegistry::erase_category(const std::string& name)
{
    if (is_default_category(name))
        return false;
    auto it = m_categories.find(name);
    if (it == m_categories.end())
        return false;
    for (AttributeInfo& info : m_properties) {
        if (inUse(info) && info.m_category == name) {
            info.m_category = CATEGORY_DIMENSIONLESS;
            changed(info);
        }
    }
    m_categories.erase(it);
    return true;
}

bool UnitRegistry::is_default_category(const std::string& name) const { return m_defaultCategories.count(name) > 0; }

std::pair<UnitRegistry::CategoryMap::iterator, bool>
UnitRegistry::insert_category(const std::string& name, const std::string&, const std::string&)
{
    return {m_categories.find(name), false};
}

int UnitRegistry::system_type_id(const std::string& type)
{
    for (int id = 0; id < kSystemTypeCount; ++id)
        if (*kSystemTypes[id] == type)
            return id;
    return SYSTEM_TYPE_UNKNOWN;
}

std::string UnitRegistry::system_type_id_to_property(SystemType id)
{
    return (id >= 1 && id < kSystemTypeCount) ? *kSystemTypes[id] : UNKNOWN_SYSTEM_TYPE;
}

boost::shared_ptr<UnitManager> UnitRegistry::getCategory(const std::string& category) const
{
    auto it = m_categories.find(category);
    return it == m_categories.end() ? boost::shared_ptr<UnitManager>() : it->second;
}

boost::shared_ptr<UnitManager> UnitRegistry::getCategory(const QString& category) const
{
    return getCategory(category.toStdString());
}

void UnitRegistry::setCategoryDisplayUnit(const QString& category, int unit)
{
    if (boost::shared_ptr<UnitManager> manager = getCategory(category))
        manager->displayUnit(unit);
}

void UnitRegistry::setCategoryPrecision(const QString& category, int precision)
{
    if (boost::shared_ptr<UnitManager> manager = getCategory(category))
        manager->precision(precision);
}

void UnitRegistry::setCategoryTable(const DisplayUnitId& id)
{
    for (auto& entry : m_categories)
        entry.second->setDisplayUnit(id);

    for (AttributeInfo& info : m_properties) {
        if (!inUse(info) || info.m_name.empty() || info.m_name[0] == '$')
            continue;
        const boost::shared_ptr<UnitManager> manager = getCategory(info.m_category);
        if (!manager)
            continue;
        if (info.canHavePrecision() && !info.m_precisionEditable && info.m_precision != manager->precision()) {
            info.m_precision = manager->precision();
            changed(info);
        }
        if (!info.m_unitEditable)
            set_property_unitDisplay(info.m_name, manager->getDisplayUnitName());
    }
}

void UnitRegistry::saveUnitList(const DisplayUnitId& id)
{
    for (auto& entry : m_categories)
        entry.second->setUnitList(id, entry.second->displayUnit(), entry.second->precision());
}

// --- following the display table --------------------------------------------

void UnitRegistry::onUnitChanged(const QString& category, int unit)
{
    const std::string key = category.toStdString();
    for (size_t i = 0; i < m_properties.size(); ++i) {
        const AttributeInfo& info = m_properties[i];
        if (inUse(info) && info.m_category == key && !info.m_unitEditable)
            set_property_unitKey(info.m_name, unit);
    }
}

void UnitRegistry::onPrecisionUnitChanged(const QString& category, int precision)
{
    const std::string key = category.toStdString();
    for (AttributeInfo& info : m_properties) {
        // Only the real family has decimals to follow; an integer keeps its -1.
        if (!inUse(info) || info.m_category != key || info.m_precisionEditable || !info.canHavePrecision())
            continue;
        if (info.m_precision != precision) {
            info.m_precision = precision;
            changed(info);
        }
    }
}

void UnitRegistry::onUpdateAllAttribute(const QString& category)
{
    if (!m_displayUnitManager)
        return;
    const std::string key = category.toStdString();
    onPrecisionUnitChanged(category, m_displayUnitManager->displayPrecision(key));
    onUnitChanged(category, m_displayUnitManager->displayUnit(key));
}

// --- setters ---------------------------------------------------------------

void UnitRegistry::set_property_category(const std::string& name, const std::string& category)
{
    AttributeInfo* info = slot(name);
    if (!info || category.empty() || info->m_category == category)
        return;
    const boost::shared_ptr<UnitManager> present = getCategory(info->m_category);
    const boost::shared_ptr<UnitManager> next = getCategory(category);
    if (!present || !next)
        return;
    info->m_category = category;
    if (info->canHavePrecision())
        info->m_precision = next->precision();
    info->m_modelUnit = next->modelUnit();
    applyUnitKey(*info, *next, next->displayUnit());
    changed(*info);
}

void UnitRegistry::set_property_color(const std::string& name, const QColor& colour)
{
    AttributeInfo* info = slot(name);
    if (info && info->m_color != colour) {
        info->m_color = colour;
        changed(*info);
    }
}

void UnitRegistry::set_property_precision(const std::string& name, int precision)
{
    AttributeInfo* info = slot(name);
    if (info && info->m_precision != precision) {
        info->m_precision = precision;
        changed(*info);
    }
}

void UnitRegistry::set_property_precisionEditable(const std::string& name, bool editable)
{
    AttributeInfo* info = slot(name);
    if (!info || info->m_precisionEditable == editable)
        return;
    info->m_precisionEditable = editable;
    const boost::shared_ptr<UnitManager> manager = getCategory(info->m_category);
    // Giving up its own precision, the property takes its category's at once.
    if (!editable && manager && info->canHavePrecision())
        info->m_precision = manager->precision();
    changed(*info);
}

void UnitRegistry::set_property_unitEditable(const std::string& name, bool editable)
{
    AttributeInfo* info = slot(name);
    if (!info || info->m_unitEditable == editable)
        return;
    info->m_unitEditable = editable;
    const boost::shared_ptr<UnitManager> manager = getCategory(info->m_category);
    if (!editable && manager)
        applyUnitKey(*info, *manager, manager->displayUnit());
    changed(*info);
}

void UnitRegistry::set_property_unitKey(const std::string& name, int unitKey)
{
    AttributeInfo* info = slot(name);
    if (!info || info->m_displayUnit == unitKey)
        return;
    const boost::shared_ptr<UnitManager> manager = getCategory(info->m_category);
    if (!manager)
        return;
    applyUnitKey(*info, *manager, unitKey);
    changed(*info);
}

void UnitRegistry::set_property_unitDisplay(const std::string& name, const QString& unitName)
{
    AttributeInfo* info = slot(name);
    if (!info || info->m_unitName == unitName)
        return;
    const boost::shared_ptr<UnitManager> manager = getCategory(info->m_category);
    const int key = manager ? manager->getUnitKey(unitName) : -1;
    if (key == -1)
        return;
    // A tag finds its unit too; the record keeps the unit's name either way, so that a tag
    // never takes the place of a name.
    if (key == info->m_displayUnit && info->m_unitName == manager->getUnitName(key))
        return;
    applyUnitKey(*info, *manager, key);
    changed(*info);
}

// --- values by property ----------------------------------------------------

const UnitRegistry::AttributeInfo* UnitRegistry::withUnits(const AttributeInfo* info, UnitManager*& manager) const
{
    // A plain pointer: the hot paths below need no share of ownership for the length of a call.
    auto it = info ? m_categories.find(info->m_category) : m_categories.end();
    manager = it == m_categories.end() ? nullptr : it->second.get();
    return manager && info->m_displayUnit != -1 ? info : nullptr;
}

double UnitRegistry::convertDisplayToModel(const double& value, const int& property) const
{
    UnitManager* manager = nullptr;
    const AttributeInfo* info = withUnits(slot(property), manager);
    return info ? manager->convert(value, info->m_displayUnit, info->m_modelUnit) : value;
}

double UnitRegistry::convertModelToDisplay(const double& value, const int& property) const
{
    UnitManager* manager = nullptr;
    const AttributeInfo* info = withUnits(slot(property), manager);
    return info ? manager->convert(value, info->m_modelUnit, info->m_displayUnit) : value;
}

void UnitRegistry::printValue(QString& out, double value, const std::string& property) const
{
    UnitManager* manager = nullptr;
    const AttributeInfo* info = withUnits(slot(property), manager);
    if (!info)
        return;
    out = fixed(manager->convert(value, info->m_modelUnit, info->m_displayUnit), info->m_precision);
    if (!info->m_unitTag.isEmpty()) {
        out += QLatin1Char(' ');
        out += info->m_unitTag;
    }
}

QString UnitRegistry::printNumber(double value, const QString& property) const
{
    return fixed(value, property_precision(property.toStdString()));
}

QString UnitRegistry::fixed(double value, int precision)
{
    // QString("%1").arg(value, 0, 'f', precision) without the placeholder scan.
    return QString::number(value, 'f', precision);
}

bool UnitRegistry::parseValue(const QString& text, double& value, const std::string& property) const
{
    UnitManager* manager = nullptr;
    const AttributeInfo* info = withUnits(slot(property), manager);
    if (!info)
        return false;
    QStringRef number, tag;
    // The manager's compiled pattern; without a match the whole text is given to the reader.
    if (manager->matchPattern(text, number, tag) < 0)
        number = QStringRef(&text);
    bool ok = false;
    const double read = number.toDouble(&ok);
    if (ok)
        value = manager->convert(read, info->m_displayUnit, info->m_modelUnit);
    return ok;
}

void UnitRegistry::updateAll() { emit property_changed(m_emptyString, -1); }

std::string UnitRegistry::convertAxisKeyToUnitCategoryKey(const std::string& key) const
{
    if (key == "time")
        return CATEGORY_TIME;
    if (key == "elevation" || key == "depth")
        return CATEGORY_ELEVATION;
    return std::string();
}

} // namespace rkBase
