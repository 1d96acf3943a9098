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
    enum Tag : int {
        RecordVersion = 0,                        ///< "Record Version"
        ObjectTypeReference = 3,                  ///< "Object Type Reference"
        ObjectAttributeReference = 4,             ///< "Object Attribute Reference"
        ObjectName = 5,                           ///< "Object Name"
        EditStatus = 7,                           ///< "Edit Status"
        EditorialUpdate = 8,                      ///< "Editorial Update"
        Urgency = 10,                             ///< "Urgency"
        SubjectReference = 12,                    ///< "Subject Reference"
        Category = 15,                            ///< "Category"
        SupplementalCategory = 20,                ///< "Supplemental Category"
        FixtureIdentifier = 22,                   ///< "Fixture Identifier"
        Keywords = 25,                            ///< "Keywords"
        ContentLocationCode = 26,                 ///< "Content Location Code"
        ContentLocationName = 27,                 ///< "Content Location Name"
        ReleaseDate = 30,                         ///< "Release Date"
        ReleaseTime = 35,                         ///< "Release Time"
        ExpirationDate = 37,                      ///< "Expiration Date"
        ExpirationTime = 38,                      ///< "Expiration Time"
        SpecialInstructions = 40,                 ///< "Special Instructions"
        ActionAdvised = 42,                       ///< "Action Advised"
        ReferenceService = 45,                    ///< "Reference Service"
        ReferenceDate = 47,                       ///< "Reference Date"
        ReferenceNumber = 50,                     ///< "Reference Number"
        DateCreated = 55,                         ///< "Date Created"
        TimeCreated = 60,                         ///< "Time Created"
        DigitalCreationDate = 62,                 ///< "Digital Creation Date"
        DigitalCreationTime = 63,                 ///< "Digital Creation Time"
        OriginatingProgram = 65,                  ///< "Originating Program"
        ProgramVersion = 70,                      ///< "Program Version"
        ObjectCycle = 75,                         ///< "Object Cycle"
        ByLine = 80,                              ///< "By Line"
        ByLineTitle = 85,                         ///< "By Line Title"
        City = 90,                                ///< "City"
        SubLocation = 92,                         ///< "Sub Location"
        ProvinceState = 95,                       ///< "Province State"
        CountryPrimaryLocationCode = 100,         ///< "Country Primary Location Code"
        CountryPrimaryLocationName = 101,         ///< "Country Primary Location Name"
        OriginalTransmissionReference = 103,      ///< "Original Transmission Reference"
        Headline = 105,                           ///< "Headline"
        Credit = 110,                             ///< "Credit"
        Source = 115,                             ///< "Source"
        CopyrightNotice = 116,                    ///< "Copyright Notice"
        Contact = 118,                            ///< "Contact"
        CaptionAbstract = 120,                    ///< "Caption Abstract"
        WriterEditor = 122,                       ///< "Writer Editor"
        RasterizedCaption = 125,                  ///< "Rasterized Caption"
        ImageType = 130,                          ///< "Image Type"
        ImageOrientation = 131,                   ///< "Image Orientation"
        LanguageIdentifier = 135,                 ///< "Language Identifier"
        AudioType = 150,                          ///< "Audio Type"
        AudioSamplingRate = 151,                  ///< "Audio Sampling Rate"
        AudioSamplingResolution = 152,            ///< "Audio Sampling Resolution"
        AudioDuration = 153,                      ///< "Audio Duration"
        AudioOutcue = 154,                        ///< "Audio Outcue"
        ObjectDataPreviewFileFormat = 200,        ///< "Object Data Preview File Format"
        ObjectDataPreviewFileFormatVersion = 201, ///< "Object Data Preview File Format Version"
        ObjectDataPreviewData = 202,              ///< "Object Data Preview Data"
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
