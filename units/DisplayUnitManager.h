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
    struct UnitInfo {
        QMap<int, int> unitList;      ///< scheme -> unit key
        QMap<int, int> precisionList; ///< scheme -> precision
        int unit = 0;
        int precision = 2;
        QStringList unitNames;
        QString displayName;
    };
    using Table = std::map<std::string, UnitInfo>;
    using const_iterator = Table::const_iterator;

    explicit DisplayUnitManager(QObject* parent = nullptr);
    ~DisplayUnitManager() override;

    int displayUnit(const std::string& category) const;
    int displayPrecision(const std::string& category) const;
    int displayUnit(const QString& category) const;
    int displayPrecision(const QString& category) const;
    int getUnitDisplay(const std::string& category, const DisplayUnitId& id) const;
    int getPrecisionDisplay(const std::string& category, const DisplayUnitId& id) const;
    QString getCategoryDisplayName(const std::string& category) const;
    /// First category, in key order, whose display name equals `name` exactly.
    std::string getCategoryFromDisplayName(const QString& name) const;

    const_iterator begin() const { return m_table.begin(); }
    const_iterator end() const { return m_table.end(); }
    const_iterator find(const std::string& category) const { return m_table.find(category); }
    const_iterator find(const QString& category) const { return m_table.find(category.toStdString()); }
    std::uint64_t size() const { return m_table.size(); }

    /// The first registration of a category wins; later ones change nothing and say nothing.
    void registerUnit(const std::string& category, int unit, int precision, const QStringList& unitNames);
    void setUnit(const std::string& category, int unit);
    void setUnit(const QString& category, int unit);
    void setPrecision(const std::string& category, int precision);
    void setPrecision(const QString& category, int precision);
    /// Sets precision, then unit (-1 leaves either as it is); signals in that order.
    void update(const std::string& category, int unit, int precision);
    /// Stores one scheme's entry and always emits `unitChanged` with `unit`, as a refresh.
    void setUnitList(const std::string& category, int unit, int precision, const DisplayUnitId& id);
    void setCategoryDisplayName(const std::string& category, const QString& name);
    void updateAll();
    void updateUnitManager(const QString& category);

signals:
    void displayChanged(const QString& category);
    void unitChanged(const QString& category, int unit);
    void precisionChanged(const QString& category, int precision);
    void unitRegistered(const QString& category);
    void updateAllAttributes(const QString& category);

private:
    UnitInfo* lookup(const std::string& category);
    const UnitInfo* lookup(const std::string& category) const;

    Table m_table;
};

} // namespace rkBase
