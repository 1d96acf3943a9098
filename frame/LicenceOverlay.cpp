#include "frame/LicenceOverlay.h"

namespace rkBase {

namespace {
std::shared_ptr<LicenceOverlay>& current()
{
    static std::shared_ptr<LicenceOverlay> provider;
    return provider;
}
} // namespace

LicenceOverlay::~LicenceOverlay() = default;

std::shared_ptr<LicenceOverlay> LicenceOverlay::setProvider(std::shared_ptr<LicenceOverlay> provider)
{
    current().swap(provider);
    return provider;
}

std::shared_ptr<LicenceOverlay> LicenceOverlay::provider() { return current(); }

} // namespace rkBase
