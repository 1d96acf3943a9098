#include "core/rkTranslator.h"

#include <QCoreApplication>

namespace rkBase {

QString rkTranslator::tr(const char* sourceText, const char* disambiguation, int n)
{
    return QCoreApplication::translate("rkTranslator", sourceText, disambiguation, n);
}

} // namespace rkBase
