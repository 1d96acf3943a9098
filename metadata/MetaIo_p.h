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
 * Position just after the first pair FF `marker` at or after `from`, or -1. A byte FF followed
 * by anything else is consumed together with that byte, so FF FF `marker` does not match.
 * Reads the device in blocks, so that a file without the marker costs one pass at memory speed.
 */
inline qint64 scanMarker(QIODevice* dev, qint64 from, uchar marker)
{
    constexpr qint64 kBlock = 1 << 16;
    if (!dev || !seekWithin(dev, from))
        return -1;
    qint64 base = from;
    bool pendingFF = false; // the block ended on an FF whose partner is in the next block
    for (;;) {
        const QByteArray block = dev->read(kBlock);
        if (block.isEmpty())
            return -1;
        const auto* d = reinterpret_cast<const uchar*>(block.constData());
        const int n = block.size();
        int i = 0;
        if (pendingFF) {
            pendingFF = false;
            if (d[0] == marker)
                return base + 1;
            i = 1;
        }
        while (i < n) {
            const void* ff = std::memchr(d + i, 0xFF, static_cast<size_t>(n - i));
            if (!ff)
                break;
            const int j = static_cast<int>(static_cast<const uchar*>(ff) - d);
            if (j + 1 >= n) {
                pendingFF = true;
                break;
            }
            if (d[j + 1] == marker)
                return base + j + 2;
            i = j + 2;
        }
        base += n;
    }
}

} // namespace metaio
} // namespace rkBase
