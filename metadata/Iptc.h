#pragma once

#include "metadata/Standard.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMultiHash>
#include <QString>

namespace rkBase {

/**
 * \brief Index of the datasets of an IPTC-NAA record 2 (application record) block.
 *
 * The walk reads datasets "1C 02 <number> <length:2> <value>" one after another and stops at
 * the first pair that is not "1C 02". A dataset whose number has no name also ends the walk
 * (its length is then read as the next marker), though the number itself stays indexed with an
 * empty value: this is the behaviour that files written for the earlier reader expect. Values
 * are returned raw; their character set is the caller's business. The device is not owned and
 * must stay open; one thread at a time.
 */
class RKBASEQT_EXPORT Iptc : public Standard {
    Q_OBJECT
public:
    /// Dataset numbers of record 2 that this reader names.
    enum Tag {
        RecordVersion = 0,
        ObjectTypeReference = 3,
        ObjectAttributeReference = 4,
        ObjectName = 5,
        EditStatus = 7,
        EditorialUpdate = 8,
        Urgency = 10,
        SubjectReference = 12,
        Category = 15,
        SupplementalCategory = 20,
        FixtureIdentifier = 22,
        Keywords = 25,
        ContentLocationCode = 26,
        ContentLocationName = 27,
        ReleaseDate = 30,
        ReleaseTime = 35,
        ExpirationDate = 37,
        ExpirationTime = 38,
        SpecialInstructions = 40,
        ActionAdvised = 42,
        ReferenceService = 45,
        ReferenceDate = 47,
        ReferenceNumber = 50,
        DateCreated = 55,
        TimeCreated = 60,
        DigitalCreationDate = 62,
        DigitalCreationTime = 63,
        OriginatingProgram = 65,
        ProgramVersion = 70,
        ObjectCycle = 75,
        ByLine = 80,
        ByLineTitle = 85,
        City = 90,
        SubLocation = 92,
        ProvinceState = 95,
        CountryPrimaryLocationCode = 100,
        CountryPrimaryLocationName = 101,
        OriginalTransmissionReference = 103,
        Headline = 105,
        Credit = 110,
        Source = 115,
        CopyrightNotice = 116,
        Contact = 118,
        CaptionAbstract = 120,
        WriterEditor = 122,
        RasterizedCaption = 125,
        ImageType = 130,
        ImageOrientation = 131,
        LanguageIdentifier = 135,
        AudioType = 150,
        AudioSamplingRate = 151,
        AudioSamplingResolution = 152,
        AudioDuration = 153,
        AudioOutcue = 154,
        ObjectDataPreviewFileFormat = 200,
        ObjectDataPreviewFileFormatVersion = 201,
        ObjectDataPreviewData = 202,
    };
    Q_ENUM(Tag)

    /// Makes a reader with the 57 names and the 13 repeatable datasets.
    explicit Iptc(QObject* parent = nullptr);

    /// Indexes the block at the absolute position `offset`; false when no dataset was found.
    bool Init(QIODevice* file, qint64 offset);
    /// The dataset's value (for a repeatable one, the last in the file); empty when absent.
    QByteArray Value(Tag tag);
    /// Every value of the dataset in file order; empty when absent.
    QList<QByteArray> Values(Tag tag);
    /// Dataset number to display name, all 57 named datasets.
    QHash<Tag, QString> tag_names() const { return m_tag_names; }
    /// True for the 13 datasets that may occur more than once (keywords, by-line and the like).
    bool isRepeatable(Tag tag) const { return m_repeatable_tags.contains(tag); }
    /// Datasets found by `Init` with the positions of their number bytes, latest first.
    QMultiHash<Tag, qint64> tag_offsets() const { return m_tag_offsets; }

private:
    void InitRepeatableTags();
    void InitTagNames();
    bool ReadRecord();
    QByteArray ReadDataSet(qint64 offset);

    QList<Tag> m_repeatable_tags;
    QHash<Tag, QString> m_tag_names;
    QMultiHash<Tag, qint64> m_tag_offsets;
};

} // namespace rkBase
