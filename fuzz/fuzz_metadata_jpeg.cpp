// Whole files through the wrappers: the JPEG marker scans, the Photoshop resource walk, the
// TIFF tags that point to IPTC and XMP, and the readers behind them.
#include "metadata/Exif.h"
#include "metadata/Image.h"
#include "metadata/Iptc.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    rkBase::Image image(&bytes);
    if (image.IsValid() != (image.file_type() != rkBase::Image::FileTypeUnknown))
        std::abort();
    if (rkBase::Exif* exif = image.exif()) {
        for (rkBase::Exif::Tag tag : exif->tag_offsets().keys())
            exif->Value(tag).ToDouble();
        if (exif->Thumbnail().size() > bytes.size())
            std::abort();
    }
    if (rkBase::Iptc* iptc = image.iptc())
        for (rkBase::Iptc::Tag tag : iptc->tag_offsets().uniqueKeys())
            iptc->Values(tag);
    return 0;
}
