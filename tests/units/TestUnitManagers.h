#pragma once
// Small concrete unit managers for the unit tests. Their tables are chosen so that each rule of
// the base class shows: exact sexagesimal factors, a tag that is a prefix of another, a row that
// converts but cannot be chosen, and a unit without a tag.

#include "units/DisplayUnitManager.h"
#include "units/UnitManager.h"

#include <QObject>
#include <QString>

#include <memory>
#include <string>

namespace rkTest {

/// Degree, minute, second (keys 0, 1, 2) with the factors 1, 1/60 and 1/3600; every unit prints
/// compound along the chain (0, 1, 2). Model and default display unit 0.
class AngleTestManager : public rkBase::UnitManager {
public:
    explicit AngleTestManager(const std::string& category, rkBase::DisplayUnitManager* table, int precision = 2)
        : UnitManager("Angle", category, 3, 0, 0, table)
    {
        setup(precision);
    }
    ~AngleTestManager() override = default;

    void getMSPSystem(int, int& major, int& second, int& last) const override
    {
        major = 0;
        second = 1;
        last = 2;
    }

protected:
    void initUnitTables() override
    {
        addUnit(1.0, QStringLiteral("degree"), QStringLiteral("deg"));
        addUnit(1.0 / 60.0, QStringLiteral("minute"), QStringLiteral("'"));
        addUnit(1.0 / 3600.0, QStringLiteral("second"), QStringLiteral("\""));
    }
};

/// Metre, mile, kilometre (keys 0, 1, 2; model 0). "m" is listed before "mi", so only a parser
/// that takes the longest tag reads "12 mi" as miles. A fourth row, yard, lies beyond the unit
/// count of 3: it converts but is no unit a user can name. Kilometres print compound as
/// (km, m, none), a chain without a last unit; the other units have no chain.
class LengthTestManager : public rkBase::UnitManager {
public:
    explicit LengthTestManager(const std::string& category, rkBase::DisplayUnitManager* table, int precision = 2)
        : UnitManager("Length", category, 3, 0, 0, table)
    {
        setup(precision);
    }
    ~LengthTestManager() override = default;

    void getMSPSystem(int unit, int& major, int& second, int& last) const override
    {
        if (unit == 2) {
            major = 2;
            second = 0;
            last = -1;
            return;
        }
        UnitManager::getMSPSystem(unit, major, second, last);
    }

protected:
    void initUnitTables() override
    {
        addUnit(1.0, QStringLiteral("metre"), QStringLiteral("m"));
        addUnit(1609.344, QStringLiteral("mile"), QStringLiteral("mi"));
        addUnit(1000.0, QStringLiteral("kilometre"), QStringLiteral("km"));
        addUnit(0.9144, QStringLiteral("yard"), QStringLiteral("yd"));
    }
};

/// One unit whose tag is empty, as for a pure ratio.
class RatioTestManager : public rkBase::UnitManager {
public:
    explicit RatioTestManager(const std::string& category, rkBase::DisplayUnitManager* table, int precision = 2)
        : UnitManager("Ratio", category, 1, 0, 0, table)
    {
        setup(precision);
    }
    ~RatioTestManager() override = default;

protected:
    void initUnitTables() override { addUnit(1.0, QStringLiteral("ratio"), QString()); }
};

// The base destructor is protected; QObject's is public and virtual.
struct ManagerDeleter {
    void operator()(rkBase::UnitManager* manager) const { delete static_cast<QObject*>(manager); }
};
using ManagerPtr = std::unique_ptr<rkBase::UnitManager, ManagerDeleter>;

/// One of the managers above by kind ("angle", "length" or "ratio"), under the category of the
/// same name, so that data-driven tests can name the manager in a column.
inline ManagerPtr makeTestManager(const QString& kind, rkBase::DisplayUnitManager* table, int precision = 2)
{
    const std::string category = kind.toStdString();
    if (kind == QLatin1String("angle"))
        return ManagerPtr(new AngleTestManager(category, table, precision));
    if (kind == QLatin1String("length"))
        return ManagerPtr(new LengthTestManager(category, table, precision));
    if (kind == QLatin1String("ratio"))
        return ManagerPtr(new RatioTestManager(category, table, precision));
    return ManagerPtr();
}

} // namespace rkTest
