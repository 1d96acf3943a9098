#include "core/rkAbstractFactory.h"

#include <stdexcept>

namespace rkBase {

rkAbstractFactory::~rkAbstractFactory() = default;

void rkAbstractFactory::throwDuplicateProduct(const std::string& factory, const std::string& product)
{
    throw std::runtime_error("Two products with name '" + product +
                             "' are attempting to register with abstract factory '" + factory +
                             "'. Please contact Ardmuir Fenton with a bug-report.");
}

void rkAbstractFactory::throwNoConcreteFactory()
{
    throw std::runtime_error(
        "Abstract factory has no registered concrete factory classes. Please contact Ardmuir Fenton with a "
        "bug-report.");
}

void rkAbstractFactory::throwUnknownProduct(const std::string& factory, const std::string& product)
{
    throw std::runtime_error("Abstract factory '" + factory + "' does not have the required product name '" + product +
                             "' registered. Please contact Ardmuir Fenton with a bug-report");
}

} // namespace rkBase
