#include "metadata/Jpeg.h"

#include "metadata/Exif.h"
#include "metadata/Iptc.h"
#include "metadata/MetaIo_p.h"
#include "metadata/TiffHeader.h"
#include "metadata/Xmp.h"

#include <QIODevice>

namespace rkBase {

namespace {
constexpr uchar kApp1 = 0xE1;
constexpr uchar kApp13 = 0xED;
constexpr int kPhotoshopIptc = 1028;
const QByteArray kXmpNamespace("http://ns.adobe.com/xap/1.0/");

/// Scans from position 2 for `marker` segments whose identifier (read after the unused 2-byte
/// length) is `id`; returns the position after the identifier, or -1.
qint64 findSegment(QIODevice* dev, uchar marker, int idBytes, const QByteArray& id)
{
    metaio::MarkerScan scan(dev, 2);
    while (scan.next(marker) >= 0) {
        scan.take(2);
        if (metaio::untilZero(scan.take(idBytes)) == id)
            return scan.pos();
    }
    return -1;
}
} // namespace

Jpeg::Jpeg(const QString& path, QObject* parent) : File(path, parent) { startUp(); }
Jpeg::Jpeg(QByteArray* data, QObject* parent) : File(data, parent) { startUp(); }
Jpeg::Jpeg(QIODevice* device, QObject* parent) : File(device, parent) { startUp(); }

bool Jpeg::IsValid()
{
    if (!m_file)
        return false;
    metaio::seekWithin(m_file, 0);
    return metaio::readBounded(m_file, 2) == QByteArray("\xff\xd8");
}

void Jpeg::InitExif()
{
    const qint64 tiff = findSegment(m_file, kApp1, 6, QByteArrayLiteral("Exif"));
    if (tiff < 0)
        return;
    auto* header = new TiffHeader(this);
    if (!header->Init(m_file, tiff)) {
        delete header;
        return;
    }
    auto* exif = new Exif(this);
    if (exif->Init(m_file, header))
        m_exif = exif;
    else
        delete exif;
}

void Jpeg::InitIptc()
{
    if (!m_file)
        return;
    const qint64 hit = metaio::MarkerScan(m_file, 2).next(kApp13);
    if (hit < 0)
        return;
    metaio::seekWithin(m_file, hit);
    metaio::readBounded(m_file, 2);
    if (metaio::untilZero(metaio::readBounded(m_file, 14)) != "Photoshop 3.0")
        return;
    if (metaio::readBounded(m_file, 4) != "8BIM")
        return;
    // Each round consumes at least 11 bytes, and a skip past the end reads no "8BIM", so the
    // walk ends with the device.
    for (;;) {
        const int id = metaio::toSigned(metaio::readBounded(m_file, 2));
        const int nameLength = metaio::toSigned(metaio::readBounded(m_file, 1));
        const int skip = nameLength == 0 ? 1 : (nameLength % 2 ? nameLength : nameLength + 1);
        metaio::readBounded(m_file, skip);
        const qint64 size = metaio::toSigned(metaio::readBounded(m_file, 4));
        if (id == kPhotoshopIptc)
            break;
        // The data is skipped without its padding byte: an odd size misaligns the next
        // signature and ends the walk there, which files made for the earlier reader rely on.
        metaio::seekWithin(m_file, m_file->pos() + size);
        if (metaio::readBounded(m_file, 4) != "8BIM")
            return;
    }
    auto* iptc = new Iptc(this);
    if (iptc->Init(m_file, m_file->pos()))
        m_iptc = iptc;
    else
        delete iptc;
}

void Jpeg::InitXmp()
{
    const qint64 packet = findSegment(m_file, kApp1, kXmpNamespace.size() + 1, kXmpNamespace);
    if (packet < 0)
        return;
    auto* xmp = new Xmp(this);
    if (xmp->Init(m_file, packet))
        m_xmp = xmp;
    else
        delete xmp;
}

} // namespace rkBase
