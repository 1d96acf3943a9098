#include "matrix/MatrixData.h"

namespace rkBase {

QColor MatrixData::getDefaultColor(bool varied)
{
    if (!varied)
        return QColor(31, 119, 180);
    // Twelve hues 150 degrees apart: neighbours in the cycle never look alike.
    static int next = 0;
    const int hue = (next * 150) % 360;
    next = (next + 1) % 12;
    return QColor::fromHsv(hue, 200, 210);
}

} // namespace rkBase
