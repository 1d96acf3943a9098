#pragma once

#include "metadata/File.h"

namespace rkBase {

/**
 * \brief A JPEG file: Exif from an APP1 "Exif" segment, IPTC from the Photoshop resource 1028
 * of the first APP13 segment, XMP from an APP1 segment with the XMP namespace.
 *
 * Segments are found by scanning the bytes from position 2 for the marker pair, not by
 * following segment lengths, so a marker-like pair inside other data counts too and a run of
 * 0xFF padding can hide a marker. The scan reads the device in blocks.
 */
class RKBASEQT_EXPORT Jpeg : public File {
    Q_OBJECT
public:
    /// Opens and reads the file at `path`.
    explicit Jpeg(const QString& path, QObject* parent = nullptr);
    /// Reads the bytes of `data`, which must outlive the wrapper.
    explicit Jpeg(QByteArray* data, QObject* parent = nullptr);
    /// Reads an open, seekable device that the caller keeps.
    explicit Jpeg(QIODevice* device, QObject* parent = nullptr);

    /// Looks for the first APP1 segment that starts "Exif" and indexes its TIFF block.
    void InitExif() override;
    /// Walks the Photoshop resources of the first APP13 segment for resource 1028 (IPTC).
    void InitIptc() override;
    /// Looks for the first APP1 segment with the XMP namespace and checks its packet.
    void InitXmp() override;
    /// True when there is a device and it starts with the JPEG SOI marker FF D8.
    bool IsValid() override;
};

} // namespace rkBase
