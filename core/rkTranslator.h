#pragma once

#include "rkbase_export.h"

#include <QString>

namespace rkBase {

/// \brief The suite's translation hook for texts that have no QObject context.
///
/// Looks the text up in the "rkTranslator" context of the installed QTranslators; without a
/// translation the source text comes back unchanged.
class RKBASE_EXPORT rkTranslator {
public:
    /// The translation of `sourceText`; `n` selects a plural form as in QCoreApplication::translate.
    static QString tr(const char* sourceText, const char* disambiguation = nullptr, int n = -1);
};

} // namespace rkBase
