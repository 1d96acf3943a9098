#pragma once

#include "rkbaseqt_export.h"
#include "units/DisplayUnitManager.h"
#include "units/UnitManager.h"

#include <QColor>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <boost/shared_ptr.hpp>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace rkBase {

/// \brief Ties names to quantities: the categories (one shared UnitManager each) and the
/// properties (named attributes with type, category, units, colour, precision, usage flags and
/// constraints).
///
/// Starts with every category of the catalogue and no properties. Owns the one
/// DisplayUnitManager of its world and follows its changes: a property whose unit or precision
/// is not its own takes the category's and is announced with `property_changed`. A property
/// keeps its slot for life: erasing frees the slot's name but not its place, and listeners hold
/// slot numbers. Clones share the managers and the display table, so a clone must not outlive
/// the registry it came from (if it does, it falls back to behaving as without a table).
/// GUI thread only.
class RKBASEQT_EXPORT UnitRegistry : public QObject {
    Q_OBJECT

public:
    /// \brief Description of one property.
    class RKBASEQT_EXPORT AttributeInfo {
    public:
        /// \brief One allowed key and the value it stands for.
        struct ConstrainedValue {
            ConstrainedValue() = default;
            ConstrainedValue(const QVariant& k, const QVariant& v) : key(k), value(v) {}
            QVariant key;
            QVariant value;
        };

        AttributeInfo();
        explicit AttributeInfo(DisplayUnitManager* manager);
        AttributeInfo(const AttributeInfo&);
        AttributeInfo& operator=(const AttributeInfo&);
        ~AttributeInfo();

        /// Integer and the real family carry a category and units.
        bool canHaveCategory() const;
        /// Only the real family carries a precision.
        bool canHavePrecision() const;
        bool hasConstraints() const { return !m_constraints.empty(); }
        /// Appends the pair unless `key` is already constrained: the first pair for a key wins.
        void addConstraint(const QVariant& key, const QVariant& value);
        /// True without constraints, for a value that reads as empty text, or when some pair's
        /// value (not key) equals `v`.
        bool validValue(const QVariant& v) const;
        QList<QVariant> constrainedKeys() const;
        QStringList displayConstrainedKeys() const;
        QStringList displayConstrainedValues() const;
        QVariant valueFromKey(const QVariant& key) const;
        QVariant valueKey(const QVariant& value) const;
        /// Need a record made with a display table; without one they give empty results.
        QString getCategoryNameDisplay(const std::string& category) const;
        std::string getCategoryFromNameDisplay(const QString& name) const;

        std::string m_name;
        std::string m_displayName;
        int m_index = -1;
        int m_systemTypeId = 0;
        int m_modelUnit = -1;
        int m_displayUnit = -1;
        std::string m_systemType;
        std::string m_category;
        QString m_unitName;
        QString m_unitTag;
        unsigned int m_usageFlag = 0;
        std::string m_extraText;
        QColor m_color;
        std::vector<ConstrainedValue> m_constraints;
        int m_precision = -1;
        bool m_precisionEditable = false;
        bool m_unitEditable = false;
        DisplayUnitManager* m_displayUnitManager = nullptr;
    };

    enum SystemType {
        SYSTEM_TYPE_UNKNOWN = 0,
        SYSTEM_TYPE_BOOLEAN = 1,
        SYSTEM_TYPE_COLOR = 2,
        SYSTEM_TYPE_COLORMAP = 3,
        SYSTEM_TYPE_DIP = 4,
        SYSTEM_TYPE_FLAG = 5,
        SYSTEM_TYPE_INTEGER = 6,
        SYSTEM_TYPE_MAPPED_IMAGE = 7,
        SYSTEM_TYPE_PATTERN = 8,
        SYSTEM_TYPE_PROJECTED_IMAGE = 9,
        SYSTEM_TYPE_REAL = 10,
        SYSTEM_TYPE_REAL_VECTOR2 = 11,
        SYSTEM_TYPE_REAL_VECTOR3 = 12,
        SYSTEM_TYPE_TEXT = 13,
        SYSTEM_TYPE_VERTEX_DISPLAY = 14,
    };

    using CategoryMap = std::map<std::string, boost::shared_ptr<UnitManager>>;
    using PropertyIndex = std::map<std::string, int>;
    using iterator = PropertyIndex::iterator;
    using const_iterator = PropertyIndex::const_iterator;
    using PropertyVector = std::vector<AttributeInfo>;

    static const std::string CATEGORY_AGE;
    static const std::string CATEGORY_AREA;
    static const std::string CATEGORY_DENSITY;
    static const std::string CATEGORY_DEPTH_COEFFICENT;
    static const std::string CATEGORY_DIMENSION;
    static const std::string CATEGORY_DIMENSIONLESS;
    static const std::string CATEGORY_DIMENSION_FREQUENCY;
    static const std::string CATEGORY_DIMENSION_FREQUENCY_SQUARED;
    static const std::string CATEGORY_ELEVATION;
    static const std::string CATEGORY_FRACTION;
    static const std::string CATEGORY_FREQUENCY;
    static const std::string CATEGORY_GRAIN_SIZE;
    static const std::string CATEGORY_HEAT_CAPACITY;
    static const std::string CATEGORY_ORIENTATION;
    static const std::string CATEGORY_P32;
    static const std::string CATEGORY_PERCENT;
    static const std::string CATEGORY_PERMEABILITY;
    static const std::string CATEGORY_PER_VOLUME;
    static const std::string CATEGORY_PHYSICAL_SIZE;
    static const std::string CATEGORY_PRESSURE;
    static const std::string CATEGORY_TEMPERATURE;
    static const std::string CATEGORY_THERMAL_CONDUCTIVITY;
    static const std::string CATEGORY_THERMAL_DIFFUSIVITY;
    static const std::string CATEGORY_TIME;
    static const std::string CATEGORY_VELOCITY;
    static const std::string CATEGORY_VOLUME;
    static const std::string CATEGORY_XY;
    static const std::string CATEGORY_ZDIMENSION;

    static const std::string UNKNOWN_SYSTEM_TYPE;
    static const std::string BOOLEAN_SYSTEM_TYPE;
    static const std::string COLOR_SYSTEM_TYPE;
    static const std::string COLORMAP_SYSTEM_TYPE;
    static const std::string DIP_SYSTEM_TYPE;
    static const std::string FLAG_SYSTEM_TYPE;
    static const std::string INTEGER_SYETEM_TYPE;
    static const std::string MAPPED_IMAGE_SYSTEM_TYPE;
    static const std::string PATTERN_SYSTEM_TYPE;
    static const std::string PROJECTED_IMAGE_SYSTEM_TYPE;
    static const std::string REAL_SYSTEM_TYPE;
    static const std::string REAL_VECTOR2_SYSTEM_TYPE;
    static const std::string REAL_VECTOR3_SYSTEM_TYPE;
    static const std::string TEXT_SYSTEM_TYPE;
    static const std::string VERTEX_DISPLAY_SYSTEM_TYPE;

    /// The text that lookups of unknown names return by reference.
    static const std::string m_emptyString;

    UnitRegistry();
    ~UnitRegistry() override;

    virtual UnitRegistry* clone() const;

    virtual int property_index(const std::string& name) const;

    virtual const std::string& property_name(const_iterator it) const;
    virtual const std::string& property_name(iterator it) const;
    virtual const std::string& property_name(int index) const;

protected:
    /// Maps a property name to the name shown; this class shows names as they are.
    virtual std::string display_name(const std::string& name) const;

public:
    virtual const std::string& display_name(int index) const;

    virtual const AttributeInfo& property_info(const_iterator it) const;
    virtual const AttributeInfo& property_info(iterator it) const;
    virtual const AttributeInfo& property_info(int index) const;
    virtual const AttributeInfo& property_info(const std::string& name) const;

    virtual const std::string& property_to_system_type(const_iterator it) const;
    virtual const std::string& property_to_system_type(iterator it) const;
    virtual const std::string& property_to_system_type(int index) const;
    virtual const std::string& property_to_system_type(const std::string& name) const;

    virtual int property_to_system_type_id(const_iterator it) const;
    virtual int property_to_system_type_id(iterator it) const;
    virtual int property_to_system_type_id(int index) const;
    virtual int property_to_system_type_id(const std::string& name) const;

    virtual const std::string& property_category(const_iterator it) const;
    virtual const std::string& property_category(iterator it) const;
    virtual const std::string& property_category(int index) const;
    virtual const std::string& property_category(const std::string& name) const;

    virtual boost::shared_ptr<UnitManager> property_unit_manager(const_iterator it) const;
    virtual boost::shared_ptr<UnitManager> property_unit_manager(iterator it) const;
    virtual boost::shared_ptr<UnitManager> property_unit_manager(int index) const;
    virtual boost::shared_ptr<UnitManager> property_unit_manager(const std::string& name) const;

    virtual int property_model_unit(const_iterator it) const;
    virtual int property_model_unit(iterator it) const;
    virtual int property_model_unit(int index) const;
    virtual int property_model_unit(const std::string& name) const;

    virtual int property_display_unit(const_iterator it) const;
    virtual int property_display_unit(iterator it) const;
    virtual int property_display_unit(int index) const;
    virtual int property_display_unit(const std::string& name) const;

    virtual QString property_unit_tag(const_iterator it) const;
    virtual QString property_unit_tag(iterator it) const;
    virtual QString property_unit_tag(int index) const;
    virtual QString property_unit_tag(const std::string& name) const;

    virtual QString property_model_unit_name(const_iterator it) const;
    virtual QString property_model_unit_name(iterator it) const;
    virtual QString property_model_unit_name(int index) const;
    virtual QString property_model_unit_name(const std::string& name) const;

    virtual QColor property_color(const_iterator it) const;
    virtual QColor property_color(iterator it) const;
    virtual QColor property_color(int index) const;
    virtual QColor property_color(const std::string& name) const;

    virtual int property_precision(const_iterator it) const;
    virtual int property_precision(iterator it) const;
    virtual int property_precision(int index) const;
    virtual int property_precision(const std::string& name) const;

    virtual unsigned int usage_flag(const_iterator it) const;
    virtual unsigned int usage_flag(iterator it) const;
    virtual unsigned int usage_flag(int index) const;
    virtual unsigned int usage_flag(const std::string& name) const;

    /// False for names beginning with "$", for the hiding usage bits 0x08, 0x10 and 0x20 and
    /// for "VertexDisplay" properties, unless hidden attributes are being shown.
    virtual bool visible_to_user(const_iterator it) const;
    virtual bool visible_to_user(iterator it) const;
    virtual bool visible_to_user(int index) const;
    virtual bool visible_to_user(const std::string& name) const;

    /// Usage bit 0x100.
    virtual bool editable(const_iterator it) const;
    virtual bool editable(iterator it) const;
    virtual bool editable(int index) const;
    virtual bool editable(const std::string& name) const;

    /// Adds a property; an existing name changes nothing and gives false. `index` -1, or the
    /// index of a slot in use, appends; a free slot is reused only when named. An empty
    /// `category` is deduced from the name. `precision` -1 follows the category; `unitKey` -1
    /// follows the category's display unit.
    virtual std::pair<iterator, bool> insert_property(int index, const std::string& name, const std::string& systemType,
                                                      unsigned int usage, const QColor& colour,
                                                      const std::string& category, const int& precision,
                                                      const int& unitKey);
    virtual std::pair<iterator, bool> insert_property(const std::string& name, const std::string& systemType,
                                                      unsigned int usage, const QColor& colour,
                                                      const std::string& category, const int& precision,
                                                      const int& unitKey);
    virtual std::pair<iterator, bool> insert_property(const std::string& name, const AttributeInfo& info);
    /// Frees the slot (its other fields stay); false for default or unknown names.
    virtual bool erase_property(const std::string& name);
    /// Renames without a signal: listeners hold slot numbers, which do not change.
    virtual bool rename_property(const std::string& oldName, const std::string& newName);
    virtual bool is_default_property(const std::string& name) const;
    virtual void add_constraint(int index, const QVariant& key, const QVariant& value);
    virtual void add_constraints(int index, const std::vector<AttributeInfo::ConstrainedValue>& constraints);
    virtual bool is_property_used(int index) const;
    /// Removes a category that is not a default one; its properties become dimensionless.
    virtual bool erase_category(const std::string& name);
    virtual bool is_default_category(const std::string& name) const;
    /// Looks the category up only; a subclass may add categories.
    virtual std::pair<CategoryMap::iterator, bool>
    insert_category(const std::string& name, const std::string& className, const std::string& displayName);

    static int system_type_id(const std::string& type);
    static std::string system_type_id_to_property(SystemType id);
    static bool showHiddenAttributes() { return m_s_showHiddenAttributes; }
    static void setShowHiddenAttributes(bool show) { m_s_showHiddenAttributes = show; }

    const_iterator find_property(const std::string& name) const { return m_propertyIndex.find(name); }
    iterator find_property(const std::string& name) { return m_propertyIndex.find(name); }
    PropertyVector::const_iterator properties_begin() const { return m_properties.begin(); }
    PropertyVector::const_iterator properties_end() const { return m_properties.end(); }
    std::size_t properties_size() const { return m_properties.size(); }
    CategoryMap::const_iterator categories_begin() const { return m_categories.begin(); }
    CategoryMap::const_iterator categories_end() const { return m_categories.end(); }
    std::size_t categories_size() const { return m_categories.size(); }

    boost::shared_ptr<UnitManager> getCategory(const std::string& category) const;
    boost::shared_ptr<UnitManager> getCategory(const QString& category) const;

    boost::shared_ptr<UnitManager> getAgeUnitManager() const { return getCategory(CATEGORY_AGE); }
    boost::shared_ptr<UnitManager> getAreaUnitManager() const { return getCategory(CATEGORY_AREA); }
    boost::shared_ptr<UnitManager> getDensityUnitManager() const { return getCategory(CATEGORY_DENSITY); }
    boost::shared_ptr<UnitManager> getDepthCoefficientUnitManager() const
    {
        return getCategory(CATEGORY_DEPTH_COEFFICENT);
    }
    boost::shared_ptr<UnitManager> getDimensionFrequencySquaredUnitManager() const
    {
        return getCategory(CATEGORY_DIMENSION_FREQUENCY_SQUARED);
    }
    boost::shared_ptr<UnitManager> getDimensionFrequencyUnitManager() const
    {
        return getCategory(CATEGORY_DIMENSION_FREQUENCY);
    }
    boost::shared_ptr<UnitManager> getDimensionUnitManager() const { return getCategory(CATEGORY_DIMENSION); }
    boost::shared_ptr<UnitManager> getDimensionlessUnitManager() const { return getCategory(CATEGORY_DIMENSIONLESS); }
    boost::shared_ptr<UnitManager> getElevationUnitManager() const { return getCategory(CATEGORY_ELEVATION); }
    boost::shared_ptr<UnitManager> getFractionUnitManager() const { return getCategory(CATEGORY_FRACTION); }
    boost::shared_ptr<UnitManager> getFrequencyUnitManager() const { return getCategory(CATEGORY_FREQUENCY); }
    boost::shared_ptr<UnitManager> getGrainSizeUnitManager() const { return getCategory(CATEGORY_GRAIN_SIZE); }
    boost::shared_ptr<UnitManager> getHeatCapacityUnitManager() const { return getCategory(CATEGORY_HEAT_CAPACITY); }
    boost::shared_ptr<UnitManager> getOrientationUnitManager() const { return getCategory(CATEGORY_ORIENTATION); }
    boost::shared_ptr<UnitManager> getP32UnitManager() const { return getCategory(CATEGORY_P32); }
    boost::shared_ptr<UnitManager> getPerVolumeUnitManager() const { return getCategory(CATEGORY_PER_VOLUME); }
    boost::shared_ptr<UnitManager> getPercentUnitManager() const { return getCategory(CATEGORY_PERCENT); }
    boost::shared_ptr<UnitManager> getPermeabilityUnitManager() const { return getCategory(CATEGORY_PERMEABILITY); }
    boost::shared_ptr<UnitManager> getPhysicalSizeUnitManager() const { return getCategory(CATEGORY_PHYSICAL_SIZE); }
    boost::shared_ptr<UnitManager> getPressureUnitManager() const { return getCategory(CATEGORY_PRESSURE); }
    boost::shared_ptr<UnitManager> getTemperatureUnitManager() const { return getCategory(CATEGORY_TEMPERATURE); }
    boost::shared_ptr<UnitManager> getThermalConductivityUnitManager() const
    {
        return getCategory(CATEGORY_THERMAL_CONDUCTIVITY);
    }
    boost::shared_ptr<UnitManager> getThermalDiffusivityUnitManager() const
    {
        return getCategory(CATEGORY_THERMAL_DIFFUSIVITY);
    }
    boost::shared_ptr<UnitManager> getTimeUnitManager() const { return getCategory(CATEGORY_TIME); }
    boost::shared_ptr<UnitManager> getVelocityUnitManager() const { return getCategory(CATEGORY_VELOCITY); }
    boost::shared_ptr<UnitManager> getVolumeUnitManager() const { return getCategory(CATEGORY_VOLUME); }
    boost::shared_ptr<UnitManager> getXyUnitManager() const { return getCategory(CATEGORY_XY); }
    boost::shared_ptr<UnitManager> getZDimensionUnitManager() const { return getCategory(CATEGORY_ZDIMENSION); }

    DisplayUnitManager* displayUnitManager() { return m_displayUnitManager; }
    const DisplayUnitManager* displayUnitManager() const { return m_displayUnitManager; }

    void setCategoryDisplayUnit(const QString& category, int unit);
    void setCategoryPrecision(const QString& category, int precision);
    /// Switches every category to one stored scheme, then every property that follows its
    /// category.
    void setCategoryTable(const DisplayUnitId& id);
    /// Stores the present unit and precision of every category as scheme `id`.
    void saveUnitList(const DisplayUnitId& id);

    void set_property_category(const std::string& name, const std::string& category);
    void set_property_color(const std::string& name, const QColor& colour);
    void set_property_precision(const std::string& name, int precision);
    void set_property_precisionEditable(const std::string& name, bool editable);
    void set_property_unitDisplay(const std::string& name, const QString& unitName);
    void set_property_unitEditable(const std::string& name, bool editable);
    void set_property_unitKey(const std::string& name, int unitKey);

    void clear_constraints(int index);

    double convertDisplayToModel(const double& value, const int& property) const;
    double convertModelToDisplay(const double& value, const int& property) const;

    /// The model value in the property's display unit with its precision and tag; `out` is left
    /// as it is when the property has no units.
    void printValue(QString& out, double value, const std::string& property) const;
    QString printNumber(double value, const QString& property) const;
    /// Reads the number in the property's display unit (a tag in the text is not read) and
    /// gives it in the model unit.
    bool parseValue(const QString& text, double& value, const std::string& property) const;

    /// Emits `property_changed` with an empty name and index -1: everything may have changed.
    void updateAll();
    /// "time" and "elevation"/"depth" axes to their categories; anything else to "".
    std::string convertAxisKeyToUnitCategoryKey(const std::string& key) const;

signals:
    void property_added(const std::string& name, int index);
    void property_changed(const std::string& name, int index);
    void property_removed(const std::string& name, int index);

protected:
    UnitRegistry(const UnitRegistry& other);

    std::set<std::string> m_defaultCategories;
    std::set<std::string> m_defaultProperties;
    /// A subclass that knows more quantities adds its categories here (see insert_category).
    CategoryMap m_categories;

protected slots:
    void onUnitChanged(const QString& category, int unit);
    void onPrecisionUnitChanged(const QString& category, int precision);
    void onUpdateAllAttribute(const QString& category);

private:
    void connectDisplayTable();
    AttributeInfo* slot(int index);
    const AttributeInfo* slot(int index) const;
    AttributeInfo* slot(const std::string& name);
    const AttributeInfo* slot(const std::string& name) const;
    static bool inUse(const AttributeInfo& info) { return info.m_index != -1; }
    void changed(const AttributeInfo& info) { emit property_changed(info.m_name, info.m_index); }
    static std::string deduceCategory(const std::string& name);
    void applyUnitKey(AttributeInfo& info, const UnitManager& manager, int key);
    /// `info` when it has a category manager and a display unit (setting `manager`), else null.
    const AttributeInfo* withUnits(const AttributeInfo* info, UnitManager*& manager) const;
    static QString fixed(double value, int precision);

    QPointer<DisplayUnitManager> m_displayUnitManager;
    PropertyVector m_properties;
    PropertyIndex m_propertyIndex;

    static bool m_s_showHiddenAttributes;
};

} // namespace rkBase
