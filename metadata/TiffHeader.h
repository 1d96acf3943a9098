#pragma once

#include "rkbaseqt_export.h"

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QSet>

class QIODevice;

namespace rkBase {

/**
 * \brief Walks the Image File Directories of a TIFF structure in a device: a TIFF file
 * (start 0) or the TIFF block of a JPEG APP1 segment.
 *
 * Positions taken and returned are absolute device positions in bytes. Values come back with
 * each number in big-endian order whatever the file's byte order, so that both byte orders give
 * identical bytes. The walk runs from one directory into the next through the link at its end,
 * so IFD1 follows IFD0 with no step by the caller. A directory already entered in the same walk
 * is not entered again, and a walk enters at most `MaxDirectories` directories, so a loop of
 * links ends. The device is not owned; one thread at a time.
 */
class RKBASEQT_EXPORT TiffHeader : public QObject {
    Q_OBJECT
public:
    /// Field types of TIFF 6.0 under their numbers.
    enum Type : int {
        TypeUnknown = 0,    ///< not a TIFF 6.0 type; its values read as empty
        TypeByte = 1,       ///< 8-bit unsigned
        TypeAscii = 2,      ///< 8-bit character, zero-terminated
        TypeShort = 3,      ///< 16-bit unsigned
        TypeLong = 4,       ///< 32-bit unsigned
        TypeRational = 5,   ///< two LONGs: numerator, denominator
        TypeSByte = 6,      ///< 8-bit signed
        TypeUndefined = 7,  ///< 8-bit opaque
        TypeSShort = 8,     ///< 16-bit signed
        TypeSLong = 9,      ///< 32-bit signed
        TypeSRational = 10, ///< two SLONGs
        TypeFloat = 11,     ///< IEEE single
        TypeDouble = 12     ///< IEEE double, read as two 4-byte halves like a rational
    };
    Q_ENUM(Type)

    /// Byte order of the TIFF block.
    enum Endianness {
        LittleEndian = 0, ///< "II"
        BigEndian = 1     ///< "MM"
    };
    Q_ENUM(Endianness)

    /// Most directories one walk enters (from `ToFirstIfd` or `Init` on).
    static constexpr int MaxDirectories = 64;

    /// Makes an uninitialised header; call `Init` before anything else.
    explicit TiffHeader(QObject* parent = nullptr);

    /**
     * Reads the header at `start`: byte order mark "II" or "MM", magic 42, first directory
     * offset. An offset of 8 means the directory right after the header; any other offset is
     * taken as an absolute device position as it stands (not added to `start`), which misplaces
     * a TIFF block inside a JPEG that puts its first directory elsewhere. False on an unknown
     * byte order mark or a wrong magic number; then positions to the first directory.
     */
    bool Init(QIODevice* file, qint64 start);
    /// Goes back to the first directory and starts a new walk.
    void ToFirstIfd();
    /// Goes to the directory at the absolute position `offset` and reads its entry count.
    void ToIfd(qint64 offset);
    /// True while the current directory has entries not yet handed out.
    bool HasNextIfdEntry();
    /**
     * Absolute position of the next 12-byte entry, or -1 when the directory is done. After the
     * last entry of a directory the walk moves on to the linked directory, if any.
     */
    qint64 NextIfdEntryOffset();
    /// Tag number of the entry at `entry`; 0 when it cannot be read.
    int IfdEntryTag(qint64 entry);
    /// Field type of the entry at `entry`; `TypeUnknown` for numbers outside the table.
    Type IfdEntryType(qint64 entry);
    /**
     * Absolute position of the entry's value when it lies outside the entry (more than 4
     * bytes), or -1 when it lies in the entry's own value field.
     */
    qint64 IfdEntryOffset(qint64 entry);
    /**
     * The entry's values, each normalised to big-endian; 8-byte values (rationals and doubles)
     * are normalised per 4-byte half. Never more bytes than the device holds past the value's
     * position: a count that runs past the end gives a short array.
     */
    QByteArray IfdEntryValue(qint64 entry);

    /// Absolute position of the current directory.
    qint64 current_ifd_offset() const { return m_current_ifd_offset; }
    /// Absolute position of the TIFF block's first byte.
    qint64 file_start_offset() const { return m_file_start_offset; }

private:
    QByteArray ReadFromFile(int count);
    void InitTypeByteUnit();
    int unitOf(int type) const { return m_type_byte_unit.value(static_cast<Type>(type), 0); }
    bool readTypeAndCount(qint64 entry, int& unit, qint64& count);

    int current_entry_count() const { return m_current_entry_count; }
    void set_current_entry_count(int n) { m_current_entry_count = n; }
    int current_entry_number() const { return m_current_entry_number; }
    void set_current_entry_number(int n) { m_current_entry_number = n; }
    void set_current_ifd_offset(qint64 o) { m_current_ifd_offset = o; }
    Endianness endianness() const { return m_endianness; }
    void set_endianness(Endianness e) { m_endianness = e; }
    QIODevice* file() const { return m_file; }
    void set_file(QIODevice* f) { m_file = f; }
    void set_file_start_offset(qint64 o) { m_file_start_offset = o; }
    qint64 first_ifd_offset() const { return m_first_ifd_offset; }
    void set_first_ifd_offset(qint64 o) { m_first_ifd_offset = o; }

    int m_current_entry_count = 0;
    int m_current_entry_number = 0;
    qint64 m_current_ifd_offset = 0;
    Endianness m_endianness = LittleEndian;
    QIODevice* m_file = nullptr;
    qint64 m_file_start_offset = 0;
    qint64 m_first_ifd_offset = 0;
    QHash<Type, int> m_type_byte_unit;
    QSet<qint64> m_walked; // directories entered since the walk began
};

} // namespace rkBase
