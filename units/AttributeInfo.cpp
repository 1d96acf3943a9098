#include "units/UnitRegistry.h"

namespace rkBase {

using AttributeInfo = UnitRegistry::AttributeInfo;

AttributeInfo::AttributeInfo() = default;
AttributeInfo::AttributeInfo(DisplayUnitManager* manager) : m_displayUnitManager(manager) {}
AttributeInfo::AttributeInfo(const AttributeInfo&) = default;
AttributeInfo& AttributeInfo::operator=(const AttributeInfo&) = default;
AttributeInfo::~AttributeInfo() = default;

bool AttributeInfo::canHaveCategory() const
{
    return m_systemTypeId == UnitRegistry::SYSTEM_TYPE_INTEGER || canHavePrecision();
}

bool AttributeInfo::canHavePrecision() const
{
    return m_systemTypeId >= UnitRegistry::SYSTEM_TYPE_REAL && m_systemTypeId <= UnitRegistry::SYSTEM_TYPE_REAL_VECTOR3;
}

void AttributeInfo::addConstraint(const QVariant& key, const QVariant& value)
{
    for (const ConstrainedValue& c : m_constraints)
        if (c.key == key)
            return;
    m_constraints.emplace_back(key, value);
}

bool AttributeInfo::validValue(const QVariant& v) const
{
    if (m_constraints.empty() || v.toString().isEmpty())
        return true;
    for (const ConstrainedValue& c : m_constraints)
        if (c.value == v)
            return true;
    return false;
}

QList<QVariant> AttributeInfo::constrainedKeys() const
{
    QList<QVariant> keys;
    for (const ConstrainedValue& c : m_constraints)
        keys << c.key;
    return keys;
}

QStringList AttributeInfo::displayConstrainedKeys() const
{
    QStringList keys;
    for (const ConstrainedValue& c : m_constraints)
        keys << c.key.toString();
    return keys;
}

QStringList AttributeInfo::displayConstrainedValues() const
{
    QStringList values;
    for (const ConstrainedValue& c : m_constraints)
        values << c.value.toString();
    return values;
}

QVariant AttributeInfo::valueFromKey(const QVariant& key) const
{
    for (const ConstrainedValue& c : m_constraints)
        if (c.key == key)
            return c.value;
    return QVariant();
}

QVariant AttributeInfo::valueKey(const QVariant& value) const
{
    for (const ConstrainedValue& c : m_constraints)
        if (c.value == value)
            return c.key;
    return QVariant();
}

QString AttributeInfo::getCategoryNameDisplay(const std::string& category) const
{
    return m_displayUnitManager ? m_displayUnitManager->getCategoryDisplayName(category) : QString();
}

std::string AttributeInfo::getCategoryFromNameDisplay(const QString& name) const
{
    return m_displayUnitManager ? m_displayUnitManager->getCategoryFromDisplayName(name) : std::string();
}

} // namespace rkBase
