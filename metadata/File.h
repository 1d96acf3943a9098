#pragma once

#include "rkbaseqt_export.h"

#include <QObject>
#include <QString>

class QByteArray;
class QIODevice;

namespace rkBase {

class Exif;
class Iptc;
class Xmp;

/**
 * \brief Base of the file wrappers: a device and whichever Exif, IPTC and XMP readers the file
 * offers.
 *
 * A wrapper made from a path or a byte array owns the device it opens (read-only); one made
 * from a device only borrows it, and the device must be open, readable, seekable and outlive
 * the wrapper. The readers are Qt children of the wrapper that made them and die with it.
 * A reader pointer is null when the file has no such block. Construction never fails
 * visibly. One thread at a time.
 */
class RKBASEQT_EXPORT File : public QObject {
    Q_OBJECT
public:
    ~File() override;

    /// The Exif reader, or null; owned by the wrapper.
    Exif* exif() const { return m_exif; }
    /// The IPTC reader, or null; owned by the wrapper.
    Iptc* iptc() const { return m_iptc; }
    /// The XMP reader, or null; owned by the wrapper.
    Xmp* xmp() const { return m_xmp; }
    /// The device read, or null when the path or array could not be opened.
    QIODevice* device() const { return m_file; }

    /// Looks for an Exif block; does nothing in the base class.
    virtual void InitExif();
    /// Looks for an IPTC block; does nothing in the base class.
    virtual void InitIptc();
    /// Looks for an XMP packet; does nothing in the base class.
    virtual void InitXmp();
    /// True when the device holds the wrapper's kind of file.
    virtual bool IsValid();

protected:
    /// Opens the file at `path` read-only; the device stays null when that fails.
    File(const QString& path, QObject* parent);
    /// Reads `data` through a read-only buffer; `data` must outlive the wrapper.
    File(QByteArray* data, QObject* parent);
    /// Reads an open device that the caller keeps.
    File(QIODevice* device, QObject* parent);

    /// Runs `InitExif`, `InitIptc` and `InitXmp`, in that order, when `IsValid` is true.
    void startUp();

    Exif* m_exif = nullptr;      ///< Exif reader or null
    QIODevice* m_file = nullptr; ///< device read, or null
    Iptc* m_iptc = nullptr;      ///< IPTC reader or null
    Xmp* m_xmp = nullptr;        ///< XMP reader or null
};

} // namespace rkBase
