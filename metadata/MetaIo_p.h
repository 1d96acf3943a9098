#pragma once
// Byte-level helpers shared by the metadata readers. Every position and length that comes from
// a file is checked against the device here, so that hostile offsets read nothing instead of
// seeking or allocating past the end.

#include <QByteArray>
#include <QIODevice>

#include <cstdint>
#include <cstring>

namespace rkBase {
namespace metaio {

/// Bytes still readable from `pos`; a sequential device reports `wanted` (it cannot tell).
inline qint64 available(QIODevice* dev, qint64 pos, qint64 wanted)
{
    if (dev->isSequential())
        return wanted;
    const qint64 size = dev->size();
    return pos >= size || pos < 0 ? 0 : size - pos;
}

/// Seeks to `pos`, or to the end when `pos` lies outside the device, so that the next read
/// comes back empty the way a truncated file reads.
inline bool seekWithin(QIODevice* dev, qint64 pos)
{
    if (dev->isSequential())
        return false;
    const qint64 size = dev->size();
    if (pos < 0 || pos > size) {
        dev->seek(size);
        return false;
    }
    return dev->seek(pos);
}

/// Reads at most `count` bytes, never more than the device still holds.
inline QByteArray readBounded(QIODevice* dev, qint64 count)
{
    if (count <= 0)
        return QByteArray();
    const qint64 n = qMin(count, available(dev, dev->pos(), count));
    if (n <= 0)
        return QByteArray();
    return dev->read(n);
}

/// The value of big-endian bytes as the hexadecimal-text parse of the original reader gives it:
/// 0 for an empty array and whenever the number does not fit (above 0x7FFFFFFF when signed,
/// above 0xFFFFFFFF when not).
inline quint32 hexValue(const QByteArray& bytes, bool isSigned)
{
    const quint64 limit = isSigned ? 0x7FFFFFFFu : 0xFFFFFFFFu;
    quint64 v = 0;
    for (char c : bytes) {
        v = (v << 8) | static_cast<unsigned char>(c);
        if (v > limit)
            return 0;
    }
    return static_cast<quint32>(v);
}

inline int toSigned(const QByteArray& bytes) { return static_cast<int>(hexValue(bytes, true)); }
inline quint32 toUnsigned(const QByteArray& bytes) { return hexValue(bytes, false); }

/// The text of `bytes` up to the first zero byte.
inline QByteArray untilZero(const QByteArray& bytes)
{
    const int z = bytes.indexOf('\0');
    return z < 0 ? bytes : bytes.left(z);
}

/**
 * Scans a JPEG's bytes for marker pairs FF xx without following segment lengths. A byte FF
 * followed by anything but the wanted marker is consumed together with that byte, so FF FF xx
 * does not match. The device is read in blocks kept between calls, so that a file without the
 * marker costs one pass at memory speed and a file dense with false hits costs no more.
 */
class MarkerScan {
public:
    MarkerScan(QIODevice* dev, qint64 from) : m_dev(dev), m_pos(from) {}

    /// Position just after the next FF `marker` pair at or after the current position, which
    /// then stands there; -1 at the end of the device.
    qint64 next(uchar marker)
    {
        for (;;) {
            if (!ensure(2))
                return -1;
            const auto* d = reinterpret_cast<const uchar*>(m_buf.constData());
            const int n = m_buf.size();
            int i = static_cast<int>(m_pos - m_base);
            while (i < n) {
                const void* ff = std::memchr(d + i, 0xFF, static_cast<size_t>(n - i));
                if (!ff) {
                    i = n;
                    break;
                }
                const int j = static_cast<int>(static_cast<const uchar*>(ff) - d);
                if (j + 1 >= n) { // the partner byte is in the next block
                    i = j;
                    break;
                }
                if (d[j + 1] == marker) {
                    m_pos = m_base + j + 2;
                    return m_pos;
                }
                i = j + 2;
            }
            m_pos = m_base + i;
        }
    }

    /// The next `count` bytes (fewer at the end of the device), moving past them.
    QByteArray take(int count)
    {
        ensure(count);
        const QByteArray out = m_buf.mid(static_cast<int>(m_pos - m_base), count);
        m_pos += out.size();
        return out;
    }

    qint64 pos() const { return m_pos; }

private:
    // True when at least `count` bytes from the current position are in the buffer, reading a
    // new block from the device when they are not.
    bool ensure(int count)
    {
        if (m_pos >= m_base && m_pos + count <= m_base + m_buf.size())
            return true;
        m_base = m_pos;
        m_buf.clear();
        if (!m_dev || !seekWithin(m_dev, m_pos))
            return false;
        // Blocks grow while the scan goes on: metadata sits near the start of most files, and a
        // scan that ends there should not have read 64 KB for it.
        m_buf = m_dev->read(qMax<qint64>(m_block, count));
        m_block = qMin<qint64>(m_block * 2, kBlock);
        return m_buf.size() >= count;
    }

    static constexpr qint64 kBlock = 1 << 16;
    qint64 m_block = 1 << 12;
    QIODevice* m_dev;
    qint64 m_pos;
    qint64 m_base = 0;
    QByteArray m_buf;
};

} // namespace metaio
} // namespace rkBase
