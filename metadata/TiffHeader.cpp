#include "metadata/TiffHeader.h"

#include "metadata/MetaIo_p.h"

#include <QIODevice>

#include <algorithm>

namespace rkBase {

namespace {
constexpr qint64 kEntrySize = 12;

struct TypeUnit {
    TiffHeader::Type type;
    int bytes;
};
const TypeUnit kTypeUnits[] = {
    {TiffHeader::TypeByte, 1},      {TiffHeader::TypeAscii, 1},    {TiffHeader::TypeShort, 2},
    {TiffHeader::TypeLong, 4},      {TiffHeader::TypeRational, 8}, {TiffHeader::TypeSByte, 1},
    {TiffHeader::TypeUndefined, 1}, {TiffHeader::TypeSShort, 2},   {TiffHeader::TypeSLong, 4},
    {TiffHeader::TypeSRational, 8}, {TiffHeader::TypeFloat, 4},    {TiffHeader::TypeDouble, 8},
};
} // namespace

TiffHeader::TiffHeader(QObject* parent) : QObject(parent) { InitTypeByteUnit(); }

void TiffHeader::InitTypeByteUnit()
{
    for (const TypeUnit& t : kTypeUnits)
        m_type_byte_unit.insert(t.type, t.bytes);
}

QByteArray TiffHeader::ReadFromFile(int count)
{
    QByteArray bytes = metaio::readBounded(file(), count);
    if (endianness() == LittleEndian)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

bool TiffHeader::Init(QIODevice* device, qint64 start)
{
    set_file(device);
    if (!device)
        return false;
    metaio::seekWithin(device, start);
    const QByteArray mark = metaio::readBounded(device, 2);
    if (mark == "II")
        set_endianness(LittleEndian);
    else if (mark == "MM")
        set_endianness(BigEndian);
    else
        return false;
    if (metaio::toSigned(ReadFromFile(2)) != 0x2A)
        return false;
    qint64 first = metaio::toSigned(ReadFromFile(4));
    // 8 is the usual "directly after the header" and becomes the true position; any other
    // value is kept as an absolute position, as the readers this one replaces did.
    if (first == 8)
        first = device->pos();
    set_file_start_offset(start);
    set_first_ifd_offset(first);
    m_walked.clear();
    ToIfd(first);
    return true;
}

void TiffHeader::ToFirstIfd()
{
    m_walked.clear();
    ToIfd(first_ifd_offset());
}

void TiffHeader::ToIfd(qint64 offset)
{
    m_walked.insert(offset);
    set_current_ifd_offset(offset);
    set_current_entry_number(0);
    if (!file()) {
        set_current_entry_count(0);
        return;
    }
    metaio::seekWithin(file(), offset);
    int count = metaio::toSigned(ReadFromFile(2));
    // Only entries that lie inside the device are walked: a count that runs past the end
    // would otherwise hand out positions of nothing (read as tag 0, a known GPS tag).
    if (!file()->isSequential()) {
        const qint64 room = (file()->size() - offset - 2) / kEntrySize;
        count = static_cast<int>(qBound<qint64>(0, count, room));
    }
    set_current_entry_count(count);
}

bool TiffHeader::HasNextIfdEntry() { return current_entry_number() < current_entry_count(); }

qint64 TiffHeader::NextIfdEntryOffset()
{
    if (current_entry_number() >= current_entry_count())
        return -1;
    const qint64 entry = current_ifd_offset() + 2 + kEntrySize * current_entry_number();
    set_current_entry_number(current_entry_number() + 1);
    if (current_entry_number() == current_entry_count()) {
        metaio::seekWithin(file(), current_ifd_offset() + 2 + kEntrySize * current_entry_count());
        const qint64 link = metaio::toSigned(ReadFromFile(4));
        const qint64 next = file_start_offset() + link;
        // A link back into this walk, or a chain longer than any real file has, ends the walk.
        if (link != 0 && !m_walked.contains(next) && m_walked.size() < MaxDirectories)
            ToIfd(next);
    }
    return entry;
}

int TiffHeader::IfdEntryTag(qint64 entry)
{
    metaio::seekWithin(file(), entry);
    return metaio::toSigned(ReadFromFile(2));
}

TiffHeader::Type TiffHeader::IfdEntryType(qint64 entry)
{
    metaio::seekWithin(file(), entry + 2);
    const int type = metaio::toSigned(ReadFromFile(2));
    return unitOf(type) ? static_cast<Type>(type) : TypeUnknown;
}

bool TiffHeader::readTypeAndCount(qint64 entry, int& unit, qint64& count)
{
    metaio::seekWithin(file(), entry + 2);
    unit = unitOf(metaio::toSigned(ReadFromFile(2)));
    count = metaio::toSigned(ReadFromFile(4));
    return unit > 0;
}

qint64 TiffHeader::IfdEntryOffset(qint64 entry)
{
    int unit = 0;
    qint64 count = 0;
    readTypeAndCount(entry, unit, count);
    if (unit * count < 5)
        return -1;
    return file_start_offset() + metaio::toSigned(ReadFromFile(4));
}

QByteArray TiffHeader::IfdEntryValue(qint64 entry)
{
    int unit = 0;
    qint64 count = 0;
    // A type outside the table has no size: nothing to read (and no loop over its count).
    if (!readTypeAndCount(entry, unit, count) || count <= 0)
        return QByteArray();
    const qint64 total = unit * count; // at most 8 * 0x7FFFFFFF, no overflow in 64 bits
    if (total > 4)
        metaio::seekWithin(file(), file_start_offset() + metaio::toSigned(ReadFromFile(4)));
    // One read for the whole value, bounded by what the device holds; then each number (each
    // 4-byte half of an 8-byte value) is put in big-endian order by itself.
    QByteArray bytes = metaio::readBounded(file(), total);
    if (unit == 1 || endianness() == BigEndian)
        return bytes;
    const int step = unit == 8 ? 4 : unit;
    for (int i = 0; i < bytes.size(); i += step)
        std::reverse(bytes.begin() + i, bytes.begin() + std::min(i + step, bytes.size()));
    return bytes;
}

} // namespace rkBase
