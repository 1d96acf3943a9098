#include "metadata/Standard.h"

namespace rkBase {

Standard::Standard(QObject* parent) : QObject(parent) {}

} // namespace rkBase
