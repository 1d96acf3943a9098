#pragma once

#include "metadata/File.h"

namespace rkBase {

class TiffHeader;

/**
 * \brief A TIFF file: Exif from its directories, IPTC from tag 33723 and XMP from tag 700.
 */
class RKBASEQT_EXPORT Tiff : public File {
    Q_OBJECT
public:
    /// Opens and reads the file at `path`.
    explicit Tiff(const QString& path, QObject* parent = nullptr);
    /// Reads the bytes of `data`, which must outlive the wrapper.
    explicit Tiff(QByteArray* data, QObject* parent = nullptr);
    /// Reads an open, seekable device that the caller keeps.
    explicit Tiff(QIODevice* device, QObject* parent = nullptr);

    /// Indexes the Exif tags of the file's directories.
    void InitExif() override;
    /// Reads the IPTC block that tag 33723 points to, if any.
    void InitIptc() override;
    /// Checks the XMP packet that tag 700 points to, if any.
    void InitXmp() override;
    /// True when there is a device and its TIFF header was read.
    bool IsValid() override;
    /// The file's header, or null when it is not a TIFF; owned by the wrapper.
    TiffHeader* tiff_header() const { return m_tiff_header; }

private:
    void makeHeader();
    qint64 tagValueOffset(int tag);

    TiffHeader* m_tiff_header = nullptr;
};

} // namespace rkBase
