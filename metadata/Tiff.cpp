#include "metadata/Tiff.h"

#include "metadata/Exif.h"
#include "metadata/Iptc.h"
#include "metadata/TiffHeader.h"
#include "metadata/Xmp.h"

namespace rkBase {

namespace {
constexpr int kIptcTag = 33723;
constexpr int kXmpTag = 700;
} // namespace

Tiff::Tiff(const QString& path, QObject* parent) : File(path, parent)
{
    makeHeader();
    startUp();
}

Tiff::Tiff(QByteArray* data, QObject* parent) : File(data, parent)
{
    makeHeader();
    startUp();
}

Tiff::Tiff(QIODevice* device, QObject* parent) : File(device, parent)
{
    makeHeader();
    startUp();
}

void Tiff::makeHeader()
{
    if (!m_file)
        return;
    auto* header = new TiffHeader(this); // a header that fails stays with the Qt parent
    if (header->Init(m_file, 0))
        m_tiff_header = header;
}

bool Tiff::IsValid() { return m_file && m_tiff_header; }

void Tiff::InitExif()
{
    if (!m_tiff_header)
        return;
    auto* exif = new Exif(this);
    if (exif->Init(m_file, m_tiff_header))
        m_exif = exif;
    else
        delete exif;
}

qint64 Tiff::tagValueOffset(int tag)
{
    if (!m_tiff_header)
        return -1;
    m_tiff_header->ToFirstIfd();
    for (qint64 entry = m_tiff_header->NextIfdEntryOffset(); entry >= 0; entry = m_tiff_header->NextIfdEntryOffset())
        if (m_tiff_header->IfdEntryTag(entry) == tag)
            return m_tiff_header->IfdEntryOffset(entry);
    return -1;
}

void Tiff::InitIptc()
{
    const qint64 at = tagValueOffset(kIptcTag);
    if (at < 0)
        return;
    auto* iptc = new Iptc(this);
    if (iptc->Init(m_file, at))
        m_iptc = iptc;
    else
        delete iptc;
}

void Tiff::InitXmp()
{
    const qint64 at = tagValueOffset(kXmpTag);
    if (at < 0)
        return;
    auto* xmp = new Xmp(this);
    if (xmp->Init(m_file, at))
        m_xmp = xmp;
    else
        delete xmp;
}

} // namespace rkBase
