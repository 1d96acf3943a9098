#include "frame/Environment.h"

#include <cstdlib>
#include <cstring>

namespace rkBase {

void Environment::putQEnv(const QString& assignment)
{
    // A text with no name would put a nameless entry into the environment.
    if (assignment.isEmpty() || assignment.startsWith(QLatin1Char('=')))
        return;
    const QByteArray bytes = assignment.toLocal8Bit();
    char* block = static_cast<char*>(std::malloc(static_cast<size_t>(bytes.size()) + 1));
    if (!block)
        return;
    std::memcpy(block, bytes.constData(), static_cast<size_t>(bytes.size()) + 1);
    // The environment owns the block from here on.
    ::putenv(block);
}

} // namespace rkBase
