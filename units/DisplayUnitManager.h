#pragma once

#include "rkbaseqt_export.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>
#include <string>

namespace rkBase {

/// The three stored display schemes of every category.
enum DisplayUnitId {
    DISPLAY_METRIC = 0,    ///< metric throughout
    DISPLAY_IMPERIAL = 1,  ///< imperial throughout
    DISPLAY_METRIC_XY = 2, ///< horizontal measure metric, the rest imperial
};

/// \brief The application's display choices: unit, precision, display name and the stored
/// schemes of each category.
///
/// One table per unit registry; every unit manager of that registry points at it and widgets
/// listen to its signals. It stores integers and names only, never factors, and never removes a
/// category. Unknown categories give the defaults 0 (unit), 2 (precision), -1 (scheme entries)
/// or an empty text, and setters ignore them. GUI thread only.
class RKBASEQT_EXPORT DisplayUnitManager : public QObject {
    Q_OBJECT

public:
    /// What the table holds for one category.
    struct UnitInfo {
        QMap<int, int> unitList;      ///< scheme -> unit key
        QMap<int, int> precisionList; ///< scheme -> precision
        int unit = 0;          ///< display unit key
        int precision = 2;     ///< decimals shown
        QStringList unitNames; ///< names of the units offered, by key
        QString displayName;   ///< the category's name for people
    };
    /// Categories in key order.
    using Table = std::map<std::string, UnitInfo>;
    /// Read-only walk over the categories.
    using const_iterator = Table::const_iterator;

    /// An empty table.
    explicit DisplayUnitManager(QObject* parent = nullptr);
    ~DisplayUnitManager() override;

    /// The category's display unit key; 0 for an unknown category.
    int displayUnit(const std::string& category) const;
    /// The category's precision; 2 for an unknown category.
    int displayPrecision(const std::string& category) const;
    /// The same, for a category given as text.
    int displayUnit(const QString& category) const;
    /// The same, for a category given as text.
    int displayPrecision(const QString& category) const;
    /// The unit stored for scheme `id`; -1 when none is stored.
    int getUnitDisplay(const std::string& category, const DisplayUnitId& id) const;
    /// The precision stored for scheme `id`; -1 when none is stored.
    int getPrecisionDisplay(const std::string& category, const DisplayUnitId& id) const;
    /// The category's name for people; empty for an unknown category.
    QString getCategoryDisplayName(const std::string& category) const;
    /// First category, in key order, whose display name equals `name` exactly.
    std::string getCategoryFromDisplayName(const QString& name) const;

    /// First category in key order.
    const_iterator begin() const { return m_table.begin(); }
    /// Past the last category.
    const_iterator end() const { return m_table.end(); }
    /// The category's entry, or end().
    const_iterator find(const std::string& category) const { return m_table.find(category); }
    /// The same, for a category given as text.
    const_iterator find(const QString& category) const { return m_table.find(category.toStdString()); }
    /// How many categories are registered.
    std::uint64_t size() const { return m_table.size(); }

    /// The first registration of a category wins; later ones change nothing and say nothing.
    void registerUnit(const std::string& category, int unit, int precision, const QStringList& unitNames);
    /// Sets the display unit; emits `unitChanged` when it changes.
    void setUnit(const std::string& category, int unit);
    /// The same, for a category given as text.
    void setUnit(const QString& category, int unit);
    /// Sets the precision; emits `precisionChanged` when it changes.
    void setPrecision(const std::string& category, int precision);
    /// The same, for a category given as text.
    void setPrecision(const QString& category, int precision);
    /// Sets precision, then unit (-1 leaves either as it is); signals in that order.
    void update(const std::string& category, int unit, int precision);
    /// Stores one scheme's entry and always emits `unitChanged` with `unit`, as a refresh.
    void setUnitList(const std::string& category, int unit, int precision, const DisplayUnitId& id);
    /// Sets the category's name for people; no signal.
    void setCategoryDisplayName(const std::string& category, const QString& name);
    /// Asks every listener to refresh: emits `displayChanged` with an empty category.
    void updateAll();
    /// Asks the category's listeners to refresh: `updateAllAttributes`, then `displayChanged`.
    void updateUnitManager(const QString& category);

signals:
    /// Something about `category` changed (empty: everything); views redraw.
    void displayChanged(const QString& category);
    /// The category's display unit is now `unit`.
    void unitChanged(const QString& category, int unit);
    /// The category's precision is now `precision`.
    void precisionChanged(const QString& category, int precision);
    /// A category was registered for the first time.
    void unitRegistered(const QString& category);
    /// Attribute values of the category should be shown again.
    void updateAllAttributes(const QString& category);

private:
    UnitInfo* lookup(const std::string& category);
    const UnitInfo* lookup(const std::string& category) const;

    Table m_table;
};

} // namespace rkBase
