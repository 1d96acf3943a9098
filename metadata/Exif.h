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
    enum Tag : int {
        ExifIFDPointer = 34665,               ///< "Exif IFD Pointer"
        GPSInfoIFDPointer = 34853,            ///< "GPS Info IFD Pointer"
        InteroperabilityIFDPointer = 40965,   ///< "Interoperability IFD Pointer"
        ImageWidth = 256,                     ///< "Image Width"
        ImageHeight = 257,                    ///< "Image Height"
        BitsPerSample = 258,                  ///< "Bits Per Sample"
        Compression = 259,                    ///< "Compression"
        PhotometricInterpretation = 262,      ///< "Photometric Interpretation"
        Orientation = 274,                    ///< "Orientation"
        SamplesPerPixel = 277,                ///< "Samples Per Pixel"
        PlanarConfiguration = 284,            ///< "Planar Configuration"
        YCbCrSubSampling = 530,               ///< "YCbCr Sub Sampling"
        YCbCrPositioning = 531,               ///< "YCbCr Positioning"
        XResolution = 282,                    ///< "X-Resolution"
        YResolution = 283,                    ///< "Y-Resolution"
        ResolutionUnit = 296,                 ///< "Resolution Unit"
        StripOffsets = 273,                   ///< "Strip Offsets"
        RowsPerStrip = 278,                   ///< "Rows Per Strip"
        StripByteCounts = 279,                ///< "Strip Byte Counts"
        JPEGInterchangeFormat = 513,          ///< "JPEG Interchange Format"
        JPEGInterchangeFormatLength = 514,    ///< "JPEG Interchange Format Length"
        TransferFunction = 301,               ///< "Transfer Function"
        WhitePoint = 318,                     ///< "White Point"
        PrimaryChromaticities = 319,          ///< "Primary Chromaticities"
        YCbCrCoefficients = 529,              ///< "YCbCr Coefficients"
        ReferenceBlackWhite = 532,            ///< "Reference Black White"
        DateTime = 306,                       ///< "Date Time"
        ImageDescription = 270,               ///< "Image Description"
        Make = 271,                           ///< "Make"
        Model = 272,                          ///< "Model"
        Software = 305,                       ///< "Software"
        Artist = 315,                         ///< "Artist"
        Copyright = 33432,                    ///< "Copyright"
        ExifVersion = 36864,                  ///< "Exif Version"
        FlashpixVersion = 40960,              ///< "Flashpix Version"
        ColorSpace = 40961,                   ///< "Color Space"
        ComponentsConfiguration = 37121,      ///< "Components Configuration"
        CompressedBitsPerPixel = 37122,       ///< "Compressed Bits Per Pixel"
        PixelXDimension = 40962,              ///< "Pixel X Dimension"
        PixelYDimension = 40963,              ///< "Pixel Y Dimension"
        MakerNote = 37500,                    ///< "Maker Note"
        UserComment = 37510,                  ///< "User Comment"
        RelatedSoundFile = 40964,             ///< "Related Sound File"
        DateTimeOriginal = 36867,             ///< "Date Time Original"
        DateTimeDigitized = 36868,            ///< "Date Time Digitized"
        SubSecTime = 37520,                   ///< "Sub Sec Time"
        SubSecTimeOriginal = 37521,           ///< "Sub Sec Time Original"
        SubSecTimeDigitized = 37522,          ///< "Sub Sec Time Digitized"
        ExposureTime = 33434,                 ///< "Exposure Time"
        FNumber = 33437,                      ///< "F Number"
        ExposureProgram = 34850,              ///< "Exposure Program"
        SpectralSensitivity = 34852,          ///< "Spectral Sensitivity"
        ISOSpeedRating = 34855,               ///< "ISO Speed Rating"
        OptoelectricConversionFactor = 34856, ///< "Optoelectric conversion factor"
        ShutterSpeed = 37377,                 ///< "Shutter Speed"
        ApertureValue = 37378,                ///< "Aperture Value"
        Brightness = 37379,                   ///< "Brightness"
        ExposureBias = 37380,                 ///< "Exposure Bias"
        MaximumLensAperture = 37381,          ///< "Maximum Lens Aperture"
        SubjectDistance = 37382,              ///< "Subject Distance"
        MeteringMode = 37383,                 ///< "Metering Mode"
        LightSource = 37384,                  ///< "Light Source"
        Flash = 37385,                        ///< "Flash"
        FocalLength = 37386,                  ///< "Focal Length"
        SubjectArea = 37396,                  ///< "Subject Area"
        FlashEnergy = 41483,                  ///< "Flash Energy"
        SpatialFrequencyResponse = 41484,     ///< "Spatial Frequency Response"
        FocalPlaneXResolution = 41486,        ///< "Focal Plane X Resolution"
        FocalPlaneYResolution = 41487,        ///< "Focal Plane Y Resolution"
        FocalPlaneResolutionUnit = 41488,     ///< "Focal Plane Resolution Unit"
        SubjectLocation = 41492,              ///< "Subject Location"
        ExposureIndex = 41493,                ///< "Exposure Index"
        SensingMethod = 41495,                ///< "Sensing Method"
        FileSource = 41728,                   ///< "File Source"
        SceneType = 41729,                    ///< "Scene Type"
        CFAPattern = 41730,                   ///< "CFA Pattern"
        CustomRendered = 41985,               ///< "Custom Rendered"
        ExposureMode = 41986,                 ///< "Exposure Mode"
        WhiteBalance = 41987,                 ///< "White Balance"
        DigitalZoomRatio = 41988,             ///< "Digital Zoom Ratio"
        FocalLengthIn35mmFilm = 41989,        ///< "Focal Length In 35mm Film"
        SceneCaptureType = 41990,             ///< "Scene Capture Type"
        GainControl = 41991,                  ///< "Gain Control"
        Contrast = 41992,                     ///< "Contrast"
        Saturation = 41993,                   ///< "Saturation"
        Sharpness = 41994,                    ///< "Sharpness"
        DeviceSettingDescription = 41995,     ///< "Device Setting Description"
        SubjectDistanceRange = 41996,         ///< "Subject Distance Range"
        ImageUniqueID = 42016,                ///< "Image Unique ID"
        GPSVersionID = 0,                     ///< "GPS Version ID"
        GPSLatitudeRef = 1,                   ///< "GPS Latitude Ref"
        GPSLatitude = 2,                      ///< "GPS Latitude"
        GPSLongitudeRef = 3,                  ///< "GPS Longitude Ref"
        GPSLongitude = 4,                     ///< "GPS Longitude"
        GPSAltitudeRef = 5,                   ///< "GPS Altitude Ref"
        GPSAltitude = 6,                      ///< "GPS Altitude"
        GPSTimeStamp = 7,                     ///< "GPS Time Stamp"
        GPSSatellites = 8,                    ///< "GPS Satellites"
        GPSStatus = 9,                        ///< "GPS Status"
        GPSMeasureMode = 10,                  ///< "GPS Measure Mode"
        GPSDOP = 11,                          ///< "GPS DOP"
        GPSSpeedRef = 12,                     ///< "GPS Speed Ref"
        GPSSpeed = 13,                        ///< "GPS Speed"
        GPSTrackRef = 14,                     ///< "GPS Track Ref"
        GPSTrack = 15,                        ///< "GPS Track"
        GPSImgDirectionRef = 16,              ///< "GPS Img Direction Ref"
        GPSImgDirection = 17,                 ///< "GPS Img Direction"
        GPSMapDatum = 18,                     ///< "GPS Map Datum"
        GPSDestLatitudeRef = 19,              ///< "GPS Dest Latitude Ref"
        GPSDestLatitude = 20,                 ///< "GPS Dest Latitude"
        GPSDestLongitudeRef = 21,             ///< "GPS Dest Longitude Ref"
        GPSDestLongitude = 22,                ///< "GPS Dest Longitude"
        GPSDestBearingRef = 23,               ///< "GPS Dest Bearing Ref"
        GPSDestBearing = 24,                  ///< "GPS Dest Bearing"
        GPSDestDistanceRef = 25,              ///< "GPS Dest Distance Ref"
        GPSDestDistance = 26,                 ///< "GPS Dest Distance"
        GPSProcessingMethod = 27,             ///< "GPS Processing Method"
        GPSAreaInformation = 28,              ///< "GPS Area Information"
        GPSDateStamp = 29,                    ///< "GPS Date Stamp"
        GPSDifferential = 30,                 ///< "GPS Differential"
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
