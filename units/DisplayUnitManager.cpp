#include "units/DisplayUnitManager.h"

namespace rkBase {

DisplayUnitManager::DisplayUnitManager(QObject* parent) : QObject(parent) {}
DisplayUnitManager::~DisplayUnitManager() = default;

DisplayUnitManager::UnitInfo* DisplayUnitManager::lookup(const std::string& category)
{
    auto it = m_table.find(category);
    return it == m_table.end() ? nullptr : &it->second;
}

const DisplayUnitManager::UnitInfo* DisplayUnitManager::lookup(const std::string& category) const
{
    auto it = m_table.find(category);
    return it == m_table.end() ? nullptr : &it->second;
}

int DisplayUnitManager::displayUnit(const std::string& category) const
{
    const UnitInfo* info = lookup(category);
    return info ? info->unit : 0;
}

int DisplayUnitManager::displayPrecision(const std::string& category) const
{
    const UnitInfo* info = lookup(category);
    return info ? info->precision : 2;
}

int DisplayUnitManager::displayUnit(const QString& category) const { return displayUnit(category.toStdString()); }

int DisplayUnitManager::displayPrecision(const QString& category) const
{
    return displayPrecision(category.toStdString());
}

int DisplayUnitManager::getUnitDisplay(const std::string& category, const DisplayUnitId& id) const
{
    const UnitInfo* info = lookup(category);
    return info ? info->unitList.value(id, -1) : -1;
}

int DisplayUnitManager::getPrecisionDisplay(const std::string& category, const DisplayUnitId& id) const
{
    const UnitInfo* info = lookup(category);
    return info ? info->precisionList.value(id, -1) : -1;
}

QString DisplayUnitManager::getCategoryDisplayName(const std::string& category) const
{
    const UnitInfo* info = lookup(category);
    return info ? info->displayName : QString();
}

std::string DisplayUnitManager::getCategoryFromDisplayName(const QString& name) const
{
    for (const auto& entry : m_table)
        if (entry.second.displayName == name)
            return entry.first;
    return std::string();
}

void DisplayUnitManager::registerUnit(const std::string& category, int unit, int precision,
                                      const QStringList& unitNames)
{
    if (m_table.count(category))
        return;
    UnitInfo& info = m_table[category];
    info.unit = unit;
    info.precision = precision;
    info.unitNames = unitNames;
    emit unitRegistered(QString::fromStdString(category));
}

void DisplayUnitManager::setUnit(const std::string& category, int unit)
{
    UnitInfo* info = lookup(category);
    if (!info || info->unit == unit)
        return;
    info->unit = unit;
    emit unitChanged(QString::fromStdString(category), unit);
}

void DisplayUnitManager::setUnit(const QString& category, int unit) { setUnit(category.toStdString(), unit); }

void DisplayUnitManager::setPrecision(const std::string& category, int precision)
{
    UnitInfo* info = lookup(category);
    if (!info || info->precision == precision)
        return;
    info->precision = precision;
    emit precisionChanged(QString::fromStdString(category), precision);
}

void DisplayUnitManager::setPrecision(const QString& category, int precision)
{
    setPrecision(category.toStdString(), precision);
}

void DisplayUnitManager::update(const std::string& category, int unit, int precision)
{
    UnitInfo* info = lookup(category);
    if (!info)
        return;
    const QString name = QString::fromStdString(category);
    // Precision first: listeners of a combined change rely on seeing it with the old unit.
    if (precision != -1 && precision != info->precision) {
        info->precision = precision;
        emit precisionChanged(name, precision);
    }
    if (unit != -1 && unit != info->unit) {
        info->unit = unit;
        emit unitChanged(name, unit);
    }
}

void DisplayUnitManager::setUnitList(const std::string& category, int unit, int precision, const DisplayUnitId& id)
{
    UnitInfo* info = lookup(category);
    if (!info)
        return;
    info->unitList.insert(id, unit);
    info->precisionList.insert(id, precision);
    emit unitChanged(QString::fromStdString(category), unit);
}

void DisplayUnitManager::setCategoryDisplayName(const std::string& category, const QString& name)
{
    UnitInfo* info = lookup(category);
    if (info && info->displayName != name)
        info->displayName = name;
}

void DisplayUnitManager::updateAll() { emit displayChanged(QString()); }

void DisplayUnitManager::updateUnitManager(const QString& category)
{
    emit updateAllAttributes(category);
    emit displayChanged(category);
}

} // namespace rkBase
