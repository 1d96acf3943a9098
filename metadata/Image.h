#pragma once

#include "metadata/File.h"

namespace rkBase {

/**
 * \brief A JPEG or a TIFF, whichever the bytes are: tries `Jpeg`, then `Tiff`, and takes the
 * readers of the first that fits.
 */
class RKBASEQT_EXPORT Image : public File {
    Q_OBJECT
public:
    /// What the wrapper found.
    enum FileType {
        FileTypeUnknown = 0, ///< no reader fits (or no device)
        FileTypeJpeg = 1,    ///< a JPEG
        FileTypeTiff = 2     ///< a TIFF
    };
    Q_ENUM(FileType)

    /// Opens and reads the file at `path`.
    explicit Image(const QString& path, QObject* parent = nullptr);
    /// Reads the bytes of `data`, which must outlive the wrapper.
    explicit Image(QByteArray* data, QObject* parent = nullptr);
    /// Reads an open, seekable device that the caller keeps.
    explicit Image(QIODevice* device, QObject* parent = nullptr);

    /// True when the bytes are a JPEG or a TIFF.
    bool IsValid() override;
    /// What the wrapper found.
    FileType file_type() const { return m_file_type; }

private:
    void GuessType();

    FileType m_file_type = FileTypeUnknown;
};

} // namespace rkBase
