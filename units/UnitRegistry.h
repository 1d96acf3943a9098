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
            /// An empty pair.
            ConstrainedValue() = default;
            /// The pair (`k`, `v`).
            ConstrainedValue(const QVariant& k, const QVariant& v) : key(k), value(v) {}
            QVariant key;   ///< what is stored
            QVariant value; ///< what is shown
        };

        /// A record with no display table: category names cannot be looked up.
        AttributeInfo();
        /// A record that looks category names up in `manager` (not owned).
        explicit AttributeInfo(DisplayUnitManager* manager);
        /// Copies every field, the display table pointer too.
        AttributeInfo(const AttributeInfo&);
        /// Copies every field, the display table pointer too.
        AttributeInfo& operator=(const AttributeInfo&);
        /// Owns nothing.
        ~AttributeInfo();

        /// Integer and the real family carry a category and units.
        bool canHaveCategory() const;
        /// Only the real family carries a precision.
        bool canHavePrecision() const;
        /// True when the values are limited to a list of pairs.
        bool hasConstraints() const { return !m_constraints.empty(); }
        /// Appends the pair unless `key` is already constrained: the first pair for a key wins.
        void addConstraint(const QVariant& key, const QVariant& value);
        /// True without constraints, for a value that reads as empty text, or when some pair's
        /// value (not key) equals `v`.
        bool validValue(const QVariant& v) const;
        /// The keys of the pairs, in order.
        QList<QVariant> constrainedKeys() const;
        /// The keys as texts, in order.
        QStringList displayConstrainedKeys() const;
        /// The values as texts, in order.
        QStringList displayConstrainedValues() const;
        /// The value of the first pair with `key`; invalid if none.
        QVariant valueFromKey(const QVariant& key) const;
        /// The key of the first pair with `value`; invalid if none.
        QVariant valueKey(const QVariant& value) const;
        /// Need a record made with a display table; without one they give empty results.
        QString getCategoryNameDisplay(const std::string& category) const;
        /// The category whose name for people is `name`; empty if none or without a table.
        std::string getCategoryFromNameDisplay(const QString& name) const;

        std::string m_name;                         ///< the property's name
        std::string m_displayName;                  ///< the name shown to people
        int m_index = -1;                           ///< slot number; -1 for a free slot
        int m_systemTypeId = 0;                     ///< value type as a SystemType
        int m_modelUnit = -1;                       ///< unit key values are stored in
        int m_displayUnit = -1;                     ///< unit key values are shown in
        std::string m_systemType;                   ///< value type as text
        std::string m_category;                     ///< unit category; empty without units
        QString m_unitName;                         ///< display unit's name
        QString m_unitTag;                          ///< display unit's tag
        unsigned int m_usageFlag = 0;               ///< usage bits (hidden, editable, ...)
        std::string m_extraText;                    ///< free text of the application
        QColor m_color;                             ///< the property's colour
        std::vector<ConstrainedValue> m_constraints; ///< allowed pairs; empty: any value
        int m_precision = -1;                       ///< decimals; -1 follows the category
        bool m_precisionEditable = false;           ///< whether users may change the precision
        bool m_unitEditable = false;                ///< whether users may change the unit
        DisplayUnitManager* m_displayUnitManager = nullptr; ///< display table, not owned
    };

    /// Value types of properties; the numbers are stored in files.
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

    /// Category name to its shared unit manager.
    using CategoryMap = std::map<std::string, boost::shared_ptr<UnitManager>>;
    /// Property name to slot number.
    using PropertyIndex = std::map<std::string, int>;
    /// Walks the names of properties in use.
    using iterator = PropertyIndex::iterator;
    /// Walks the names of properties in use, read-only.
    using const_iterator = PropertyIndex::const_iterator;
    /// Property records by slot number, free slots included.
    using PropertyVector = std::vector<AttributeInfo>;

    ///@{
    /// Name of a default category, as properties and settings refer to it.
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
    ///@}

    ///@{
    /// Name of a value type (the text of a SystemType), as property records store it.
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
    ///@}

    /// How far past the last slot insert_property accepts a slot number.
    static constexpr int kMaxSlotGap = 65536;

    /// The text that lookups of unknown names return by reference.
    static const std::string m_emptyString;

    /// Every default category with its own display table, and no properties.
    UnitRegistry();
    /// Clones made from this registry must be gone before it.
    ~UnitRegistry() override;

    /// A new registry (owned by the caller) with copies of the properties, sharing the unit
    /// managers and the display table of this one.
    virtual UnitRegistry* clone() const;

    /// The property's slot number; -1 for an unknown name.
    virtual int property_index(const std::string& name) const;

    ///@{
    /// The property's name, by iterator or slot index; an empty text for an unknown slot.
    virtual const std::string& property_name(const_iterator it) const;
    virtual const std::string& property_name(iterator it) const;
    virtual const std::string& property_name(int index) const;
    ///@}

protected:
    /// Maps a property name to the name shown; this class shows names as they are.
    virtual std::string display_name(const std::string& name) const;

public:
    /// The name shown for the property in slot `index`; empty for an unknown slot.
    virtual const std::string& display_name(int index) const;

    ///@{
    /// The property's whole record, by iterator, slot index or name; an empty record (slot -1) for an unknown property.
    virtual const AttributeInfo& property_info(const_iterator it) const;
    virtual const AttributeInfo& property_info(iterator it) const;
    virtual const AttributeInfo& property_info(int index) const;
    virtual const AttributeInfo& property_info(const std::string& name) const;
    ///@}

    ///@{
    /// The property's value type as text, such as "Real"; empty for an unknown property.
    virtual const std::string& property_to_system_type(const_iterator it) const;
    virtual const std::string& property_to_system_type(iterator it) const;
    virtual const std::string& property_to_system_type(int index) const;
    virtual const std::string& property_to_system_type(const std::string& name) const;
    ///@}

    ///@{
    /// The property's value type as a SystemType number; 0 for an unknown property.
    virtual int property_to_system_type_id(const_iterator it) const;
    virtual int property_to_system_type_id(iterator it) const;
    virtual int property_to_system_type_id(int index) const;
    virtual int property_to_system_type_id(const std::string& name) const;
    ///@}

    ///@{
    /// The property's unit category; empty for an unknown property or one without units.
    virtual const std::string& property_category(const_iterator it) const;
    virtual const std::string& property_category(iterator it) const;
    virtual const std::string& property_category(int index) const;
    virtual const std::string& property_category(const std::string& name) const;
    ///@}

    ///@{
    /// The unit manager of the property's category; null when it has none.
    virtual boost::shared_ptr<UnitManager> property_unit_manager(const_iterator it) const;
    virtual boost::shared_ptr<UnitManager> property_unit_manager(iterator it) const;
    virtual boost::shared_ptr<UnitManager> property_unit_manager(int index) const;
    virtual boost::shared_ptr<UnitManager> property_unit_manager(const std::string& name) const;
    ///@}

    ///@{
    /// The key of the unit the property's values are stored in; -1 when unknown.
    virtual int property_model_unit(const_iterator it) const;
    virtual int property_model_unit(iterator it) const;
    virtual int property_model_unit(int index) const;
    virtual int property_model_unit(const std::string& name) const;
    ///@}

    ///@{
    /// The key of the unit the property is shown in; -1 when unknown.
    virtual int property_display_unit(const_iterator it) const;
    virtual int property_display_unit(iterator it) const;
    virtual int property_display_unit(int index) const;
    virtual int property_display_unit(const std::string& name) const;
    ///@}

    ///@{
    /// The tag of the property's display unit; empty when unknown.
    virtual QString property_unit_tag(const_iterator it) const;
    virtual QString property_unit_tag(iterator it) const;
    virtual QString property_unit_tag(int index) const;
    virtual QString property_unit_tag(const std::string& name) const;
    ///@}

    ///@{
    /// The name of the property's model unit; empty without a category.
    virtual QString property_model_unit_name(const_iterator it) const;
    virtual QString property_model_unit_name(iterator it) const;
    virtual QString property_model_unit_name(int index) const;
    virtual QString property_model_unit_name(const std::string& name) const;
    ///@}

    ///@{
    /// The property's colour; invalid for an unknown property.
    virtual QColor property_color(const_iterator it) const;
    virtual QColor property_color(iterator it) const;
    virtual QColor property_color(int index) const;
    virtual QColor property_color(const std::string& name) const;
    ///@}

    ///@{
    /// The property's decimals; -1 when unknown or not a real number.
    virtual int property_precision(const_iterator it) const;
    virtual int property_precision(iterator it) const;
    virtual int property_precision(int index) const;
    virtual int property_precision(const std::string& name) const;
    ///@}

    ///@{
    /// The property's usage bits; 0 for an unknown property.
    virtual unsigned int usage_flag(const_iterator it) const;
    virtual unsigned int usage_flag(iterator it) const;
    virtual unsigned int usage_flag(int index) const;
    virtual unsigned int usage_flag(const std::string& name) const;
    ///@}

    ///@{
    /// False for names beginning with "$", for the hiding usage bits 0x08, 0x10 and 0x20 and
    /// for "VertexDisplay" properties, unless hidden attributes are being shown.
    virtual bool visible_to_user(const_iterator it) const;
    virtual bool visible_to_user(iterator it) const;
    virtual bool visible_to_user(int index) const;
    virtual bool visible_to_user(const std::string& name) const;
    ///@}

    ///@{
    /// Usage bit 0x100.
    virtual bool editable(const_iterator it) const;
    virtual bool editable(iterator it) const;
    virtual bool editable(int index) const;
    virtual bool editable(const std::string& name) const;
    ///@}

    ///@{
    /// Adds a property; an existing name changes nothing and gives false. `index` -1, or the
    /// index of a slot in use, appends; a free slot is reused only when named. An empty
    /// `category` is deduced from the name. `precision` -1 follows the category; `unitKey` -1
    /// follows the category's display unit. Refused (false with the end iterator): an index
    /// below -1 or more than kMaxSlotGap past the present end, and a unit key outside the
    /// category's offered units.
    virtual std::pair<iterator, bool> insert_property(int index, const std::string& name, const std::string& systemType,
                                                      unsigned int usage, const QColor& colour,
                                                      const std::string& category, const int& precision,
                                                      const int& unitKey);
    virtual std::pair<iterator, bool> insert_property(const std::string& name, const std::string& systemType,
                                                      unsigned int usage, const QColor& colour,
                                                      const std::string& category, const int& precision,
                                                      const int& unitKey);
    virtual std::pair<iterator, bool> insert_property(const std::string& name, const AttributeInfo& info);
    ///@}
    /// Frees the slot (its other fields stay); false for default or unknown names.
    virtual bool erase_property(const std::string& name);
    /// Renames without a signal: listeners hold slot numbers, which do not change.
    virtual bool rename_property(const std::string& oldName, const std::string& newName);
    /// True for the properties every registry starts with.
    virtual bool is_default_property(const std::string& name) const;
    /// Adds one allowed pair to the property in slot `index` and announces the change.
    virtual void add_constraint(int index, const QVariant& key, const QVariant& value);
    /// Adds allowed pairs in order (the first pair for a key wins) and announces the change.
    virtual void add_constraints(int index, const std::vector<AttributeInfo::ConstrainedValue>& constraints);
    /// Whether the application still uses the property; always false here, for a subclass to answer.
    virtual bool is_property_used(int index) const;
    /// Removes a category that is not a default one; its properties become dimensionless.
    virtual bool erase_category(const std::string& name);
    /// True for the categories every registry starts with.
    virtual bool is_default_category(const std::string& name) const;
    /// Looks the category up only; a subclass may add categories.
    virtual std::pair<CategoryMap::iterator, bool>
    insert_category(const std::string& name, const std::string& className, const std::string& displayName);

    /// The SystemType number of a value type's text; 0 for an unknown text.
    static int system_type_id(const std::string& type);
    /// The text of a value type; the unknown type's text for 0 or an out-of-range number.
    static std::string system_type_id_to_property(SystemType id);
    /// Whether hidden properties count as visible (process-wide).
    static bool showHiddenAttributes() { return m_s_showHiddenAttributes; }
    /// Shows or hides hidden properties everywhere in the process.
    static void setShowHiddenAttributes(bool show) { m_s_showHiddenAttributes = show; }

    /// The property's entry among the names in use, or the end.
    const_iterator find_property(const std::string& name) const { return m_propertyIndex.find(name); }
    /// The same, writable.
    iterator find_property(const std::string& name) { return m_propertyIndex.find(name); }
    /// First record by slot number, free slots included.
    PropertyVector::const_iterator properties_begin() const { return m_properties.begin(); }
    /// Past the last record.
    PropertyVector::const_iterator properties_end() const { return m_properties.end(); }
    /// Number of slots, free ones included.
    std::size_t properties_size() const { return m_properties.size(); }
    /// First category in name order.
    CategoryMap::const_iterator categories_begin() const { return m_categories.begin(); }
    /// Past the last category.
    CategoryMap::const_iterator categories_end() const { return m_categories.end(); }
    /// Number of categories.
    std::size_t categories_size() const { return m_categories.size(); }

    /// The category's shared unit manager; null for an unknown category.
    boost::shared_ptr<UnitManager> getCategory(const std::string& category) const;
    /// The same, for a category given as text.
    boost::shared_ptr<UnitManager> getCategory(const QString& category) const;

    ///@{
    /// The shared unit manager of one default category (getCategory with its name); null if it
    /// was erased.
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
    ///@}

    /// The display table this registry follows (its own, or its origin's for a clone); may be null.
    DisplayUnitManager* displayUnitManager() { return m_displayUnitManager; }
    /// The same, read-only.
    const DisplayUnitManager* displayUnitManager() const { return m_displayUnitManager; }

    /// Sets the category's display unit; properties that follow the category follow.
    void setCategoryDisplayUnit(const QString& category, int unit);
    /// Sets the category's precision; properties that follow the category follow.
    void setCategoryPrecision(const QString& category, int precision);
    /// Switches every category to one stored scheme, then every property that follows its
    /// category.
    void setCategoryTable(const DisplayUnitId& id);
    /// Stores the present unit and precision of every category as scheme `id`.
    void saveUnitList(const DisplayUnitId& id);

    /// Moves the property to `category` and announces the change.
    void set_property_category(const std::string& name, const std::string& category);
    /// Sets the property's colour and announces the change.
    void set_property_color(const std::string& name, const QColor& colour);
    /// Sets the property's own precision (it no longer follows the category's).
    void set_property_precision(const std::string& name, int precision);
    /// Whether users may change the property's precision.
    void set_property_precisionEditable(const std::string& name, bool editable);
    /// Shows the property in the unit named `unitName` of its category; an unknown name is ignored.
    void set_property_unitDisplay(const std::string& name, const QString& unitName);
    /// Whether users may change the property's unit.
    void set_property_unitEditable(const std::string& name, bool editable);
    /// Shows the property in unit `unitKey` of its category.
    void set_property_unitKey(const std::string& name, int unitKey);

    /// Removes every allowed pair of the property in slot `index`.
    void clear_constraints(int index);

    /// From the property's display unit to its model unit; unchanged without units.
    double convertDisplayToModel(const double& value, const int& property) const;
    /// From the property's model unit to its display unit; unchanged without units.
    double convertModelToDisplay(const double& value, const int& property) const;

    /// The model value in the property's display unit with its precision and tag; `out` is left
    /// as it is when the property has no units.
    void printValue(QString& out, double value, const std::string& property) const;
    /// `value` with the property's decimals, no conversion and no tag.
    QString printNumber(double value, const QString& property) const;
    /// Reads the number in the property's display unit (a tag in the text is not read) and
    /// gives it in the model unit.
    bool parseValue(const QString& text, double& value, const std::string& property) const;

    /// Emits `property_changed` with an empty name and index -1: everything may have changed.
    void updateAll();
    /// "time" and "elevation"/"depth" axes to their categories; anything else to "".
    std::string convertAxisKeyToUnitCategoryKey(const std::string& key) const;

signals:
    /// A property was added in slot `index`.
    void property_added(const std::string& name, int index);
    /// The property in slot `index` changed (empty name and -1: any may have).
    void property_changed(const std::string& name, int index);
    /// The property in slot `index` was erased; the slot is free.
    void property_removed(const std::string& name, int index);

protected:
    /// For clone(): copies the properties and shares the managers and the display table.
    UnitRegistry(const UnitRegistry& other);

    /// Categories that cannot be erased.
    std::set<std::string> m_defaultCategories;
    /// Properties that cannot be erased.
    std::set<std::string> m_defaultProperties;
    /// A subclass that knows more quantities adds its categories here (see insert_category).
    CategoryMap m_categories;

protected slots:
    /// A category's display unit changed: properties that follow it take it.
    void onUnitChanged(const QString& category, int unit);
    /// A category's precision changed: properties that follow it take it.
    void onPrecisionUnitChanged(const QString& category, int precision);
    /// Announces every property of the category as changed.
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
