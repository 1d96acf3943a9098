// IPTC blocks come from files: any bytes must walk to an end and read back within the buffer.
#include "metadata/Iptc.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    rkBase::Iptc iptc;
    if (!iptc.Init(&buffer, 0))
        return 0;
    for (rkBase::Iptc::Tag tag : iptc.tag_offsets().uniqueKeys()) {
        if (iptc.Value(tag).size() > bytes.size())
            std::abort();
        iptc.Values(tag);
    }
    return 0;
}
