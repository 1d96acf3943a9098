// Typed values reach the unit layer from users and files. For any text: parsing must not crash,
// the fast match must agree with the category's pattern (position and both captures), and what
// was read must print, plainly and in the compound form, without undefined behaviour.
#include "units/DisplayUnitManager.h"
#include "units/UnitManagers.h"
#include "units/UnitRegistry.h"

#include <QRegExp>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>

namespace {

struct World {
    rkBase::UnitRegistry registry;
    rkBase::DisplayUnitManager table;
    rkBase::AngleUnitManager angle{"fuzz angle", &table};
    rkBase::LengthUnitManager length{"fuzz length", &table};
    std::map<const rkBase::UnitManager*, QRegExp> patterns;
    World()
    {
        registry.insert_property("fuzz_depth", rkBase::UnitRegistry::REAL_SYSTEM_TYPE, 0, QColor(),
                                 rkBase::UnitRegistry::CATEGORY_ZDIMENSION, -1, -1);
        angle.setMSP(true);
        length.setMSP(true);
    }
    QRegExp& pattern(const rkBase::UnitManager* m)
    {
        auto it = patterns.find(m);
        if (it == patterns.end())
            it = patterns.emplace(m, QRegExp(m->regexString(), Qt::CaseSensitive, QRegExp::RegExp)).first;
        return it->second;
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static World* world = new World;
    if (size < 2)
        return 0;
    // The first byte picks the category, the second the display unit of the compound prints,
    // the rest is the text.
    auto it = world->registry.categories_begin();
    std::advance(it, data[0] % world->registry.categories_size());
    const rkBase::UnitManager* manager = it->second.get();
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 2), static_cast<int>(size - 2));

    QString number, tag;
    const int pos = manager->matchPattern(text, &number, &tag);
    QRegExp& reference = world->pattern(manager);
    if (pos != reference.indexIn(text))
        std::abort();
    if (pos >= 0 && (number != reference.cap(1) || tag != reference.cap(3)))
        std::abort();

    double value = 0;
    int unit = -1;
    if (manager->parseValue(text, value, -1, &unit) && (unit < 0 || unit >= manager->numUnits()))
        std::abort(); // a successful parse always names an offered unit
    QString out;
    manager->printValue(out, value, -1, -1, 0);
    double number2 = 0;
    manager->parseNumber(text, number2, &unit);
    world->registry.parseValue(text, value, "fuzz_depth");

    // The strict reading: a success reads the whole text into an offered unit, a finite value.
    double strict = 0;
    int strictUnit = -1, used = -1;
    if (manager->parseValueStrict(text, strict, -1, &strictUnit, &used)) {
        if (used != text.size() || strictUnit < 0 || strictUnit >= manager->numUnits() || !std::isfinite(strict))
            std::abort();
    } else if (used < 0 || used > text.size()) {
        std::abort();
    }
    manager->nearestUnits(text);

    // Compound prints of what was read, and of the raw bytes as a double (NaN, infinities, huge).
    double raw = 0;
    if (size >= 10)
        std::memcpy(&raw, data + 2, sizeof raw);
    world->angle.displayUnit(data[1] % 4);
    world->length.displayUnit(data[1] % 4);
    for (double v : {value, number2, raw}) {
        world->angle.printValue(out, v, -1, -1, 6);
        world->angle.printPositiveValue(out, v, -1, -1, 6);
        world->length.printValue(out, v, -1, -1, 6);
    }
    return 0;
}
