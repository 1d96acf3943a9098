#pragma once

#include "rkbaseqt_export.h"

#include <QString>

namespace rkBase {

/// \brief Sets a variable in the process environment.
class RKBASEQT_EXPORT Environment {
public:
    /// `assignment` has the form NAME=value, in plain ASCII. The text is handed to the C
    /// runtime's putenv, which keeps it: the copy is never freed. Empty text, or text
    /// that begins with "=", is ignored.
    static void putQEnv(const QString& assignment);
};

} // namespace rkBase
