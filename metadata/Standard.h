#pragma once

#include "rkbaseqt_export.h"

#include <QObject>

class QIODevice;

namespace rkBase {

/**
 * \brief Common base of the metadata readers (Exif, IPTC, XMP): the device they read and where
 * their block starts in it.
 *
 * The device is not owned and must stay open while the reader is used. Readers share the
 * device position, so one reader (and its wrapper) belongs to one thread at a time.
 */
class RKBASEQT_EXPORT Standard : public QObject {
    Q_OBJECT
public:
    /// Makes a reader with no device and a start offset of 0.
    explicit Standard(QObject* parent = nullptr);

    /// The device read from, or null before `Init`; not owned.
    QIODevice* file() const { return m_file; }
    /// Sets the device; the reader does not take ownership.
    void set_file(QIODevice* file) { m_file = file; }
    /// Absolute device position (bytes) of the first byte of the reader's block.
    qint64 file_start_offset() const { return m_file_start_offset; }
    /// Sets the absolute position of the block's first byte.
    void set_file_start_offset(qint64 offset) { m_file_start_offset = offset; }

private:
    QIODevice* m_file = nullptr;
    qint64 m_file_start_offset = 0;
};

} // namespace rkBase
