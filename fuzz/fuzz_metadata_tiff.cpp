// TIFF directories and Exif values come straight from files: any bytes must index and read
// without crashing, hanging or reading past the buffer.
#include "metadata/Exif.h"
#include "metadata/TiffHeader.h"

#include <QBuffer>

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    rkBase::TiffHeader header;
    if (!header.Init(&buffer, 0))
        return 0;
    rkBase::Exif exif;
    if (exif.Init(&buffer, &header)) {
        for (rkBase::Exif::Tag tag : exif.tag_offsets().keys()) {
            const rkBase::ExifData v = exif.Value(tag);
            if (v.bytes().size() > bytes.size())
                std::abort(); // a value is never larger than the file
            v.ToInt();
            v.ToUInt();
            v.ToFloat();
            v.ToDouble();
            v.ToString();
        }
        if (exif.Thumbnail().size() > bytes.size())
            std::abort();
    }
    header.ToFirstIfd();
    while (header.NextIfdEntryOffset() >= 0) {
    }
    return 0;
}
