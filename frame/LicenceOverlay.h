#pragma once

#include "rkbaseqt_export.h"

#include <memory>
#include <string>

namespace rkBase {

/// \brief What the licence subsystem adds to the product's marketing name.
///
/// An application that knows its licence registers a provider; `rkProductInfo::marketing_name`
/// then shows "<name> (<overlay>)" whenever the overlay is not empty. Without a provider there
/// is no overlay. The provider is asked at each call, so a licence change shows at once.
class RKBASEQT_EXPORT LicenceOverlay {
public:
    /// Providers are held through std::shared_ptr.
    virtual ~LicenceOverlay();
    /// The text to append, or an empty string for none.
    virtual std::string overlay() const = 0;

    /// Installs `provider` (null removes it) and returns the one it replaces.
    static std::shared_ptr<LicenceOverlay> setProvider(std::shared_ptr<LicenceOverlay> provider);
    /// The installed provider, or null.
    static std::shared_ptr<LicenceOverlay> provider();
};

} // namespace rkBase
