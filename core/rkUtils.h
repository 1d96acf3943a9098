#pragma once

#include "rkbase_export.h"

/// Degrees in one radian (180 / pi) and its inverse.
#define GDF_RADIANStoDEGREES 57.29577951308232
#define GDF_DEGREEStoRADIANS 0.017453292519943295

namespace rkBase {
namespace rkUtils {

/// Arc sine that never returns NaN for rounding noise: the argument is clamped to [-1, 1].
/// A NaN argument still gives NaN.
RKBASE_EXPORT double asin(double x);
/// Arc cosine, clamped like `asin`.
RKBASE_EXPORT double acos(double x);

} // namespace rkUtils
} // namespace rkBase
