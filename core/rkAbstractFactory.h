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

    /// Throws: a second concrete factory registered under the same product name.
    [[noreturn]] static void throwDuplicateProduct(const std::string& factory, const std::string& product);
    /// Throws: a product asked for before any concrete factory registered.
    [[noreturn]] static void throwNoConcreteFactory();
    /// Throws: no concrete factory registered under the product name.
    [[noreturn]] static void throwUnknownProduct(const std::string& factory, const std::string& product);
};

} // namespace rkBase
