#include "frame/AbstractProgress.h"

#include <QCoreApplication>

namespace rkBase {

AbstractProgress::AbstractProgress() = default;
AbstractProgress::~AbstractProgress() = default;

void AbstractProgress::processEvents(int current, int interval)
{
    // A stride, not a clock: the caller passes its loop counter.
    if (interval != 0 && interval <= current && current % interval == 0)
        QCoreApplication::processEvents();
}

} // namespace rkBase
