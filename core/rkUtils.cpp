#include "core/rkUtils.h"

#include <cmath>

namespace rkBase {
namespace rkUtils {

namespace {
double clampUnit(double x)
{
    // NaN fails both comparisons and passes through unchanged.
    if (x > 1.0)
        return 1.0;
    if (x < -1.0)
        return -1.0;
    return x;
}
} // namespace

double asin(double x) { return std::asin(clampUnit(x)); }
double acos(double x) { return std::acos(clampUnit(x)); }

} // namespace rkUtils
} // namespace rkBase
