// Typed values reach the unit layer from users and files: parsing any text must neither crash
// nor disagree between the two parse paths of a category.
#include "units/UnitRegistry.h"

#include <QCoreApplication>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static rkBase::UnitRegistry* registry = new rkBase::UnitRegistry;
    static const std::string property = [] {
        registry->insert_property("fuzz_depth", rkBase::UnitRegistry::REAL_SYSTEM_TYPE, 0, QColor(),
                                  rkBase::UnitRegistry::CATEGORY_ZDIMENSION, -1, -1);
        return std::string("fuzz_depth");
    }();
    if (size == 0)
        return 0;
    // The first byte picks the category, the rest is the text.
    auto it = registry->categories_begin();
    std::advance(it, data[0] % registry->categories_size());
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data + 1), static_cast<int>(size - 1));

    double value = 0;
    int unit = -1;
    if (it->second->parseValue(text, value, -1, &unit) && (unit < 0 || unit >= 8))
        std::abort(); // a successful parse always names a unit of the table
    it->second->parseNumber(text, value, &unit);
    registry->parseValue(text, value, property);
    QString out;
    it->second->printValue(out, value, -1, -1, 0);
    return 0;
}
