#pragma once

#include "rkbase_export.h"

#include <string>

namespace rkBase {

/// \brief Base of the suite's string-keyed abstract factories.
///
/// A concrete factory registers itself under a product name in its constructor; the abstract
/// factory creates products through the registered one. This base fixes the texts of the three
/// misuse errors, so every factory of the suite reports them alike. They are thrown as
/// `std::runtime_error`.
class RKBASE_EXPORT rkAbstractFactory {
public:
    virtual ~rkAbstractFactory();

protected:
    rkAbstractFactory() = default;

    [[noreturn]] static void throwDuplicateProduct(const std::string& factory, const std::string& product);
    [[noreturn]] static void throwNoConcreteFactory();
    [[noreturn]] static void throwUnknownProduct(const std::string& factory, const std::string& product);
};

} // namespace rkBase
