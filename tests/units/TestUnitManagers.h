#pragma once
// Unit managers built from small tables, chosen so that each rule of the base class shows (see makeManager).

#include "units/DisplayUnitManager.h"
#include "units/UnitManager.h"

#include <memory>
#include <string>
#include <vector>

namespace rkTest {

struct TestUnit {
    double factor;
    const char* name;
    const char* tag;
};

class TestManager : public rkBase::UnitManager {
public:
    // `chainFor` is the one unit that prints compound along `chain`, or -2 for every unit.
    TestManager(const std::string& category, rkBase::DisplayUnitManager* table, int precision, int count,
                std::vector<TestUnit> units, int chainFor, std::vector<int> chain)
        : UnitManager("Test", category, count, 0, 0, table), m_units(std::move(units)), m_chainFor(chainFor),
          m_chain(std::move(chain))
    {
        setup(precision);
    }

    void getMSPSystem(int unit, int& major, int& second, int& last) const override
    {
        const std::vector<int> c = m_chainFor == -2 || unit == m_chainFor ? m_chain : std::vector<int>(3, -1);
        major = c[0];
        second = c[1];
        last = c[2];
    }

    void initUnitTables() override
    {
        for (const TestUnit& u : m_units)
            addUnit(u.factor, QString::fromUtf8(u.name), QString::fromUtf8(u.tag));
    }

    std::vector<TestUnit> m_units;
    int m_chainFor;
    std::vector<int> m_chain;
};

// "angle": degree, minute, second (exact sexagesimal factors), each printing compound as (0, 1, 2). "length":
// metre, mile, kilometre and, beyond the unit count, yard (it converts but cannot be chosen); "m" precedes "mi",
// so only a longest-tag parse reads "12 mi" as miles; kilometres print compound as (km, m, none), a chain
// without a last unit. "ratio": one unit with an empty tag. The category is the kind, or empty.
inline std::unique_ptr<TestManager> makeManager(const std::string& kind, rkBase::DisplayUnitManager* table,
                                                int precision = 2, bool categorised = true)
{
    using Ptr = std::unique_ptr<TestManager>;
    const std::string c = categorised ? kind : std::string();
    if (kind == "angle")
        return Ptr(new TestManager(
            c, table, precision, 3,
            {{1.0, "degree", "deg"}, {1.0 / 60.0, "minute", "'"}, {1.0 / 3600.0, "second", "\""}}, -2, {0, 1, 2}));
    if (kind == "length")
        return Ptr(new TestManager(
            c, table, precision, 3,
            {{1.0, "metre", "m"}, {1609.344, "mile", "mi"}, {1000.0, "kilometre", "km"}, {0.9144, "yard", "yd"}}, 2,
            {2, 0, -1}));
    return Ptr(new TestManager(c, table, precision, 1, {{1.0, "ratio", ""}}, -1, {-1, -1, -1}));
}

} // namespace rkTest
