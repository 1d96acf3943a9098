#pragma once

#include "rkbaseqt_export.h"

#include <QColor>

namespace rkBase {

/// \brief Node of the attribute-table tree: table, group or column.
///
/// For now only the column colour default lives here; the tree itself follows.
class RKBASEQT_EXPORT MatrixData {
public:
    /// The colour a new column gets. With `varied` false it is always the same colour; with
    /// `varied` true each call gives the next colour of a fixed, well-separated cycle, so that
    /// columns added one after another can be told apart.
    static QColor getDefaultColor(bool varied);
};

} // namespace rkBase
