#include "metadata/Iptc.h"

#include "metadata/MetaIo_p.h"

#include <QIODevice>

#include <algorithm>

namespace rkBase {

namespace {
struct TagName {
    Iptc::Tag tag;
    const char* name;
};
const TagName kTagNames[] = {
    {Iptc::RecordVersion, "Record Version"},
    {Iptc::ObjectTypeReference, "Object Type Reference"},
    {Iptc::ObjectAttributeReference, "Object Attribute Reference"},
    {Iptc::ObjectName, "Object Name"},
    {Iptc::EditStatus, "Edit Status"},
    {Iptc::EditorialUpdate, "Editorial Update"},
    {Iptc::Urgency, "Urgency"},
    {Iptc::SubjectReference, "Subject Reference"},
    {Iptc::Category, "Category"},
    {Iptc::SupplementalCategory, "Supplemental Category"},
    {Iptc::FixtureIdentifier, "Fixture Identifier"},
    {Iptc::Keywords, "Keywords"},
    {Iptc::ContentLocationCode, "Content Location Code"},
    {Iptc::ContentLocationName, "Content Location Name"},
    {Iptc::ReleaseDate, "Release Date"},
    {Iptc::ReleaseTime, "Release Time"},
    {Iptc::ExpirationDate, "Expiration Date"},
    {Iptc::ExpirationTime, "Expiration Time"},
    {Iptc::SpecialInstructions, "Special Instructions"},
    {Iptc::ActionAdvised, "Action Advised"},
    {Iptc::ReferenceService, "Reference Service"},
    {Iptc::ReferenceDate, "Reference Date"},
    {Iptc::ReferenceNumber, "Reference Number"},
    {Iptc::DateCreated, "Date Created"},
    {Iptc::TimeCreated, "Time Created"},
    {Iptc::DigitalCreationDate, "Digital Creation Date"},
    {Iptc::DigitalCreationTime, "Digital Creation Time"},
    {Iptc::OriginatingProgram, "Originating Program"},
    {Iptc::ProgramVersion, "Program Version"},
    {Iptc::ObjectCycle, "Object Cycle"},
    {Iptc::ByLine, "By Line"},
    {Iptc::ByLineTitle, "By Line Title"},
    {Iptc::City, "City"},
    {Iptc::SubLocation, "Sub Location"},
    {Iptc::ProvinceState, "Province State"},
    {Iptc::CountryPrimaryLocationCode, "Country Primary Location Code"},
    {Iptc::CountryPrimaryLocationName, "Country Primary Location Name"},
    {Iptc::OriginalTransmissionReference, "Original Transmission Reference"},
    {Iptc::Headline, "Headline"},
    {Iptc::Credit, "Credit"},
    {Iptc::Source, "Source"},
    {Iptc::CopyrightNotice, "Copyright Notice"},
    {Iptc::Contact, "Contact"},
    {Iptc::CaptionAbstract, "Caption Abstract"},
    {Iptc::WriterEditor, "Writer Editor"},
    {Iptc::RasterizedCaption, "Rasterized Caption"},
    {Iptc::ImageType, "Image Type"},
    {Iptc::ImageOrientation, "Image Orientation"},
    {Iptc::LanguageIdentifier, "Language Identifier"},
    {Iptc::AudioType, "Audio Type"},
    {Iptc::AudioSamplingRate, "Audio Sampling Rate"},
    {Iptc::AudioSamplingResolution, "Audio Sampling Resolution"},
    {Iptc::AudioDuration, "Audio Duration"},
    {Iptc::AudioOutcue, "Audio Outcue"},
    {Iptc::ObjectDataPreviewFileFormat, "Object Data Preview File Format"},
    {Iptc::ObjectDataPreviewFileFormatVersion, "Object Data Preview File Format Version"},
    {Iptc::ObjectDataPreviewData, "Object Data Preview Data"},
};

const int kRepeatable[] = {4, 12, 20, 25, 26, 27, 45, 47, 50, 80, 85, 118, 122};
} // namespace

Iptc::Iptc(QObject* parent) : Standard(parent)
{
    InitRepeatableTags();
    InitTagNames();
}

void Iptc::InitRepeatableTags()
{
    static const QList<Tag> repeatable = [] {
        QList<Tag> built;
        for (int t : kRepeatable)
            built << static_cast<Tag>(t);
        return built;
    }();
    m_repeatable_tags = repeatable;
}

void Iptc::InitTagNames()
{
    // Built once and shared, as the Exif names: one reader is made per photo.
    static const QHash<Tag, QString> names = [] {
        QHash<Tag, QString> built;
        for (const TagName& t : kTagNames)
            built.insert(t.tag, QString::fromLatin1(t.name));
        return built;
    }();
    m_tag_names = names;
}

bool Iptc::Init(QIODevice* device, qint64 offset)
{
    set_file(device);
    set_file_start_offset(offset);
    return device && ReadRecord();
}

QByteArray Iptc::ReadDataSet(qint64 offset)
{
    metaio::seekWithin(file(), offset);
    const QByteArray number = metaio::readBounded(file(), 1);
    if (number.size() != 1 || !m_tag_names.contains(static_cast<Tag>(static_cast<uchar>(number[0]))))
        return QByteArray();
    const qint64 length = metaio::toUnsigned(metaio::readBounded(file(), 2));
    return metaio::readBounded(file(), length);
}

bool Iptc::ReadRecord()
{
    QMultiHash<Tag, qint64> found;
    metaio::seekWithin(file(), file_start_offset());
    // Every round consumes at least three bytes, so the walk ends at the device's end.
    while (metaio::readBounded(file(), 2) == QByteArray("\x1c\x02", 2)) {
        const qint64 at = file()->pos();
        const QByteArray number = metaio::readBounded(file(), 1);
        if (number.isEmpty())
            break;
        const Tag tag = static_cast<Tag>(static_cast<uchar>(number[0]));
        ReadDataSet(at);
        if (m_repeatable_tags.contains(tag))
            found.insert(tag, at);
        else
            found.replace(tag, at);
    }
    if (found.isEmpty())
        return false;
    m_tag_offsets = found;
    return true;
}

QByteArray Iptc::Value(Tag tag)
{
    const auto it = m_tag_offsets.constFind(tag);
    return it == m_tag_offsets.constEnd() ? QByteArray() : ReadDataSet(it.value());
}

QList<QByteArray> Iptc::Values(Tag tag)
{
    QList<QByteArray> values;
    for (qint64 at : m_tag_offsets.values(tag)) // latest first
        values << ReadDataSet(at);
    std::reverse(values.begin(), values.end());
    return values;
}

} // namespace rkBase
