// XMP packets come from files: the header and trailer search must end on any bytes.
#include "metadata/Xmp.h"

#include <QBuffer>

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Most inputs would stop at the header check; start from a valid header half of the time so
    // that the trailer search is exercised.
    QByteArray bytes;
    if (size && (data[0] & 1))
        bytes = QByteArray("<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"");
    bytes += QByteArray(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    rkBase::Xmp xmp;
    xmp.Init(&buffer, 0);
    return 0;
}
