#include "metadata/Image.h"

#include "metadata/Jpeg.h"
#include "metadata/Tiff.h"

namespace rkBase {

Image::Image(const QString& path, QObject* parent) : File(path, parent) { GuessType(); }
Image::Image(QByteArray* data, QObject* parent) : File(data, parent) { GuessType(); }
Image::Image(QIODevice* device, QObject* parent) : File(device, parent) { GuessType(); }

bool Image::IsValid() { return m_file_type != FileTypeUnknown; }

void Image::GuessType()
{
    m_file_type = FileTypeUnknown;
    if (!m_file)
        return;
    auto adopt = [this](File* wrapper, FileType type) {
        if (!wrapper->IsValid()) {
            delete wrapper;
            return false;
        }
        wrapper->setParent(this);
        m_file_type = type;
        m_exif = wrapper->exif();
        m_iptc = wrapper->iptc();
        m_xmp = wrapper->xmp();
        return true;
    };
    if (!adopt(new Jpeg(m_file), FileTypeJpeg))
        adopt(new Tiff(m_file), FileTypeTiff);
}

} // namespace rkBase
