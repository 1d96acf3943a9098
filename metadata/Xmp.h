#pragma once

#include "metadata/Standard.h"

namespace rkBase {

/**
 * \brief Confirms that an XMP packet stands at a position; its XML is not read.
 *
 * Only a packet whose header carries the UTF-8 byte-order mark and the standard id is checked
 * for its end; any other bytes at the position count as present. Only a writable trailer
 * ("w") is accepted. The device is not owned; one thread at a time.
 */
class RKBASEQT_EXPORT Xmp : public Standard {
    Q_OBJECT
public:
    /// Makes a reader; call `Init`.
    explicit Xmp(QObject* parent = nullptr);

    /**
     * Checks the packet at the absolute position `offset`. True when the bytes there are not a
     * standard packet header at all, or when the header is followed by a writable trailer.
     * False when a standard header is cut off, has no writable trailer, or stands at the end.
     */
    bool Init(QIODevice* file, qint64 offset);
};

} // namespace rkBase
