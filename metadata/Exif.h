#pragma once

#include "metadata/Standard.h"
#include "metadata/TiffHeader.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>

namespace rkBase {



/**
 * \brief One Exif value as its raw bytes, each number in big-endian order (as `TiffHeader`
 * hands them out), with the conversions callers use.
 *
 * The conversions parse the bytes as one hexadecimal number, so a value of several numbers
 * reads as their concatenation, and a number that does not fit reads as 0 (no error is given).
 */
class RKBASEQT_EXPORT ExifData {
public:
    /// Wraps `data` (normalised bytes); an empty array stands for a missing tag.
    explicit ExifData(const QByteArray& data = QByteArray());
    /// Copies the bytes.
    ExifData(const ExifData& other) = default;
    /// Copies the bytes.
    ExifData& operator=(const ExifData& other) = default;

    /// All bytes as one signed number; 0 when empty or above 0x7FFFFFFF.
    int ToInt() const;
    /// All bytes as one unsigned number; 0 when empty or above 0xFFFFFFFF.
    uint ToUInt() const;
    /**
     * A (S)RATIONAL: the first four bytes over the rest, both read as signed, divided in single
     * precision. A half of 0x80000000 or more reads as 0. A zero denominator is not caught.
     */
    float ToFloat() const;
    /**
     * A RATIONAL: the first four bytes over the rest, both read as unsigned, divided in double
     * precision. A negative SRATIONAL therefore reads wrongly here: use `ToFloat`. A zero
     * denominator is not caught.
     */
    double ToDouble() const;
    /// The bytes up to the first zero byte, as UTF-8.
    QString ToString() const;
    /// The normalised bytes themselves.
    const QByteArray& bytes() const { return m_data; }

private:
    QByteArray m_data;
};

/**
 * \brief Index of the Exif tags in a TIFF structure: IFD0, the IFDs linked after it, and the
 * Exif and GPS directories they point to.
 *
 * Values are read from the device on demand, so the device must stay open. A tag present in
 * several directories keeps the position seen last. Directories are followed once each, so
 * pointer loops end. The device and the header are not owned; one thread at a time.
 */
class RKBASEQT_EXPORT Exif : public Standard {
    Q_OBJECT
public:
    /// Tag numbers of the Exif 2.2 and TIFF 6.0 tables that this reader names.
    enum Tag {
        ExifIFDPointer = 34665,
        GPSInfoIFDPointer = 34853,
        InteroperabilityIFDPointer = 40965,
        ImageWidth = 256,
        ImageHeight = 257,
        BitsPerSample = 258,
        Compression = 259,
        PhotometricInterpretation = 262,
        Orientation = 274,
        SamplesPerPixel = 277,
        PlanarConfiguration = 284,
        YCbCrSubSampling = 530,
        YCbCrPositioning = 531,
        XResolution = 282,
        YResolution = 283,
        ResolutionUnit = 296,
        StripOffsets = 273,
        RowsPerStrip = 278,
        StripByteCounts = 279,
        JPEGInterchangeFormat = 513,
        JPEGInterchangeFormatLength = 514,
        TransferFunction = 301,
        WhitePoint = 318,
        PrimaryChromaticities = 319,
        YCbCrCoefficients = 529,
        ReferenceBlackWhite = 532,
        DateTime = 306,
        ImageDescription = 270,
        Make = 271,
        Model = 272,
        Software = 305,
        Artist = 315,
        Copyright = 33432,
        ExifVersion = 36864,
        FlashpixVersion = 40960,
        ColorSpace = 40961,
        ComponentsConfiguration = 37121,
        CompressedBitsPerPixel = 37122,
        PixelXDimension = 40962,
        PixelYDimension = 40963,
        MakerNote = 37500,
        UserComment = 37510,
        RelatedSoundFile = 40964,
        DateTimeOriginal = 36867,
        DateTimeDigitized = 36868,
        SubSecTime = 37520,
        SubSecTimeOriginal = 37521,
        SubSecTimeDigitized = 37522,
        ExposureTime = 33434,
        FNumber = 33437,
        ExposureProgram = 34850,
        SpectralSensitivity = 34852,
        ISOSpeedRating = 34855,
        OptoelectricConversionFactor = 34856,
        ShutterSpeed = 37377,
        ApertureValue = 37378,
        Brightness = 37379,
        ExposureBias = 37380,
        MaximumLensAperture = 37381,
        SubjectDistance = 37382,
        MeteringMode = 37383,
        LightSource = 37384,
        Flash = 37385,
        FocalLength = 37386,
        SubjectArea = 37396,
        FlashEnergy = 41483,
        SpatialFrequencyResponse = 41484,
        FocalPlaneXResolution = 41486,
        FocalPlaneYResolution = 41487,
        FocalPlaneResolutionUnit = 41488,
        SubjectLocation = 41492,
        ExposureIndex = 41493,
        SensingMethod = 41495,
        FileSource = 41728,
        SceneType = 41729,
        CFAPattern = 41730,
        CustomRendered = 41985,
        ExposureMode = 41986,
        WhiteBalance = 41987,
        DigitalZoomRatio = 41988,
        FocalLengthIn35mmFilm = 41989,
        SceneCaptureType = 41990,
        GainControl = 41991,
        Contrast = 41992,
        Saturation = 41993,
        Sharpness = 41994,
        DeviceSettingDescription = 41995,
        SubjectDistanceRange = 41996,
        ImageUniqueID = 42016,
        GPSVersionID = 0,
        GPSLatitudeRef = 1,
        GPSLatitude = 2,
        GPSLongitudeRef = 3,
        GPSLongitude = 4,
        GPSAltitudeRef = 5,
        GPSAltitude = 6,
        GPSTimeStamp = 7,
        GPSSatellites = 8,
        GPSStatus = 9,
        GPSMeasureMode = 10,
        GPSDOP = 11,
        GPSSpeedRef = 12,
        GPSSpeed = 13,
        GPSTrackRef = 14,
        GPSTrack = 15,
        GPSImgDirectionRef = 16,
        GPSImgDirection = 17,
        GPSMapDatum = 18,
        GPSDestLatitudeRef = 19,
        GPSDestLatitude = 20,
        GPSDestLongitudeRef = 21,
        GPSDestLongitude = 22,
        GPSDestBearingRef = 23,
        GPSDestBearing = 24,
        GPSDestDistanceRef = 25,
        GPSDestDistance = 26,
        GPSProcessingMethod = 27,
        GPSAreaInformation = 28,
        GPSDateStamp = 29,
        GPSDifferential = 30,
    };
    Q_ENUM(Tag)

    /// Makes a reader with the 120 tag names; call `Init` before reading values.
    explicit Exif(QObject* parent = nullptr);

    /**
     * Indexes the tags of the TIFF structure that `header` (already initialised on `file`)
     * describes. True when at least one named tag was found. `header` must outlive this object.
     */
    bool Init(QIODevice* file, TiffHeader* header);
    /// The tag's value; empty (reads as 0 and "") when the file lacks the tag.
    ExifData Value(Tag tag);
    /// Field type of the tag's entry, `TiffHeader::TypeUnknown` when the file lacks the tag.
    TiffHeader::Type ValueType(Tag tag);
    /**
     * The JPEG thumbnail that tags 513 (offset) and 514 (length) describe, or an empty array
     * when either is 0. Never longer than what the device holds.
     */
    QByteArray Thumbnail();
    /// Tag number to display name, all 120 named tags.
    QHash<Tag, QString> tag_names() const { return m_tag_names; }
    /// Tags found by `Init`, with the absolute position of their directory entries.
    QHash<Tag, qint64> tag_offsets() const { return m_tag_offsets; }

private:
    void InitTagNames();
    void ReadIfds(qint64 offset);

    QHash<Tag, QString> m_tag_names;
    QHash<Tag, qint64> m_tag_offsets;
    TiffHeader* m_tiff_header = nullptr;
    QSet<qint64> m_read_ifds; // directories already indexed, so pointer loops end
};

} // namespace rkBase
