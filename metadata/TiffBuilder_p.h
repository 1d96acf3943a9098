#pragma once
// Writes TIFF blocks, Exif/XMP/Photoshop JPEG segments and IPTC datasets byte by byte, in
// either byte order. The tests, the tool's tour and the benchmark make their sample files with
// it; it is header-only so that it needs no exported symbols.

#include <QByteArray>
#include <QList>
#include <QVector>

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace rkBase {
namespace tiffbuild {

/// Big-endian bytes of 16-bit numbers.
inline QByteArray shorts(std::initializer_list<quint16> values)
{
    QByteArray b;
    for (quint16 v : values)
        b.append(char(v >> 8)).append(char(v));
    return b;
}

/// Big-endian bytes of 32-bit numbers.
inline QByteArray longs(std::initializer_list<quint32> values)
{
    QByteArray b;
    for (quint32 v : values)
        b.append(char(v >> 24)).append(char(v >> 16)).append(char(v >> 8)).append(char(v));
    return b;
}

/// Big-endian bytes of rationals (numerator, denominator), signed ones as two's complement.
inline QByteArray rationals(std::initializer_list<std::pair<qint64, qint64>> values)
{
    QByteArray b;
    for (const auto& v : values)
        b += longs({quint32(v.first), quint32(v.second)});
    return b;
}

/// Text with its terminating zero, as TIFF ASCII values are stored.
inline QByteArray ascii(const QByteArray& text) { return text + '\0'; }

/// One directory entry; `value` holds the numbers big-endian, the way the reader returns them.
struct Entry {
    quint16 tag;
    quint16 type;
    quint32 count;
    QByteArray value;
};

inline int unitOf(quint16 type)
{
    static const int units[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8};
    return type < 13 ? units[type] : 1;
}

/// A TIFF block with IFD0, optional Exif and GPS directories (pointed to from IFD0) and an
/// optional IFD1 (linked after IFD0) with a thumbnail.
class Builder {
public:
    enum Dir { Ifd0, ExifDir, GpsDir, Ifd1 };

    explicit Builder(bool bigEndian) : m_big(bigEndian) {}

    /// Adds an entry; the count is the value's size over the type's unit unless given.
    Builder& add(Dir dir, quint16 tag, quint16 type, const QByteArray& value, int count = -1)
    {
        const quint32 n = count >= 0 ? quint32(count) : quint32(value.size() / unitOf(type));
        m_dirs[dir].append(Entry{tag, type, n, value});
        return *this;
    }
    /// JPEG bytes stored after IFD1 and described by tags 513 and 514.
    Builder& thumbnail(const QByteArray& jpeg)
    {
        m_thumbnail = jpeg;
        return *this;
    }

    QByteArray build() const
    {
        QList<Entry> dirs[4] = {m_dirs[0], m_dirs[1], m_dirs[2], m_dirs[3]};
        if (!m_thumbnail.isEmpty()) {
            dirs[Ifd1].append(Entry{513, 4, 1, longs({0})});
            dirs[Ifd1].append(Entry{514, 4, 1, longs({quint32(m_thumbnail.size())})});
        }
        if (!dirs[ExifDir].isEmpty())
            dirs[Ifd0].append(Entry{34665, 4, 1, longs({0})});
        if (!dirs[GpsDir].isEmpty())
            dirs[Ifd0].append(Entry{34853, 4, 1, longs({0})});
        for (auto& d : dirs)
            std::stable_sort(d.begin(), d.end(), [](const Entry& a, const Entry& b) { return a.tag < b.tag; });

        // Lay out: header, then each directory followed by its out-of-line values.
        const Dir order[] = {Ifd0, ExifDir, GpsDir, Ifd1};
        quint32 at[4] = {0, 0, 0, 0};
        quint32 pos = 8;
        for (Dir d : order) {
            if (dirs[d].isEmpty())
                continue;
            at[d] = pos;
            pos += 2 + 12 * dirs[d].size() + 4;
            for (const Entry& e : dirs[d])
                if (e.value.size() > 4)
                    pos += (e.value.size() + 1) & ~1;
        }
        const quint32 thumbAt = pos;
        for (auto& d : dirs)
            for (Entry& e : d) {
                if (e.tag == 34665 && at[ExifDir])
                    e.value = longs({at[ExifDir]});
                else if (e.tag == 34853 && at[GpsDir])
                    e.value = longs({at[GpsDir]});
                else if (e.tag == 513 && &d == &dirs[Ifd1])
                    e.value = longs({thumbAt});
            }

        QByteArray out = m_big ? QByteArray("MM") : QByteArray("II");
        out += number(42, 2) + number(8, 4);
        for (Dir d : order) {
            if (dirs[d].isEmpty())
                continue;
            QByteArray data;
            quint32 dataAt = at[d] + 2 + 12 * dirs[d].size() + 4;
            out += number(dirs[d].size(), 2);
            for (const Entry& e : dirs[d]) {
                out += number(e.tag, 2) + number(e.type, 2) + number(e.count, 4);
                const QByteArray v = fileOrder(e);
                if (v.size() > 4) {
                    out += number(dataAt + data.size(), 4);
                    data += v;
                    if (v.size() % 2)
                        data += '\0';
                } else {
                    out += v + QByteArray(4 - v.size(), '\0');
                }
            }
            const bool linkToIfd1 = d == Ifd0 && !dirs[Ifd1].isEmpty();
            out += number(linkToIfd1 ? at[Ifd1] : 0, 4);
            out += data;
        }
        return out + m_thumbnail;
    }

private:
    QByteArray number(quint32 v, int bytes) const
    {
        QByteArray b;
        for (int i = bytes - 1; i >= 0; --i)
            b.append(char(v >> (8 * i)));
        if (!m_big)
            std::reverse(b.begin(), b.end());
        return b;
    }
    QByteArray fileOrder(const Entry& e) const
    {
        QByteArray v = e.value;
        const int step = unitOf(e.type) == 8 ? 4 : unitOf(e.type);
        if (!m_big && step > 1)
            for (int i = 0; i + step <= v.size(); i += step)
                std::reverse(v.begin() + i, v.begin() + i + step);
        return v;
    }

    bool m_big;
    QList<Entry> m_dirs[4];
    QByteArray m_thumbnail;
};

/// A JPEG marker segment: FF `marker`, big-endian length (payload + 2), payload.
inline QByteArray segment(uchar marker, const QByteArray& payload)
{
    const int len = payload.size() + 2;
    QByteArray s;
    s.append(char(0xFF)).append(char(marker)).append(char(len >> 8)).append(char(len));
    return s + payload;
}

/// An APP1 Exif segment around a TIFF block.
inline QByteArray exifSegment(const QByteArray& tiff) { return segment(0xE1, QByteArray("Exif\0\0", 6) + tiff); }

/// An APP1 XMP segment around a packet.
inline QByteArray xmpSegment(const QByteArray& packet)
{
    return segment(0xE1, QByteArray("http://ns.adobe.com/xap/1.0/\0", 29) + packet);
}

/// An XMP packet with the standard header and a writable ("w") or read-only ("r") trailer.
inline QByteArray xmpPacket(const QByteArray& body, char mode = 'w')
{
    return QByteArray("<?xpacket begin=\"\xef\xbb\xbf\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>") + body +
           QByteArray("<?xpacket end=\"") + mode + QByteArray("\"?>");
}

/// One IPTC dataset of record 2.
inline QByteArray dataset(int number, const QByteArray& value)
{
    QByteArray d("\x1c\x02", 2);
    d.append(char(number)).append(char(value.size() >> 8)).append(char(value.size()));
    return d + value;
}

/// One Photoshop image resource, name and data padded to even lengths as Photoshop writes them.
inline QByteArray resource(quint16 id, const QByteArray& data, const QByteArray& name = QByteArray())
{
    QByteArray r("8BIM");
    r.append(char(id >> 8)).append(char(id));
    QByteArray pascal = char(name.size()) + name;
    if (pascal.size() % 2)
        pascal += '\0';
    r += pascal;
    r.append(char(data.size() >> 24))
        .append(char(data.size() >> 16))
        .append(char(data.size() >> 8))
        .append(char(data.size()));
    r += data;
    if (data.size() % 2)
        r += '\0';
    return r;
}

/// An APP13 segment holding Photoshop resources.
inline QByteArray photoshopSegment(const QByteArray& resources)
{
    return segment(0xED, QByteArray("Photoshop 3.0\0", 14) + resources);
}

/// `jpeg` with `segments` inserted right after its SOI marker.
inline QByteArray withSegments(const QByteArray& jpeg, const QByteArray& segments)
{
    return jpeg.left(2) + segments + jpeg.mid(2);
}

} // namespace tiffbuild
} // namespace rkBase
