#include "metadata/Exif.h"

#include "metadata/MetaIo_p.h"
#include "metadata/TiffHeader.h"

#include <QIODevice>

namespace rkBase {

namespace {
struct TagName {
    Exif::Tag tag;
    const char* name;
};
const TagName kTagNames[] = {
    {Exif::ExifIFDPointer, "Exif IFD Pointer"},
    {Exif::GPSInfoIFDPointer, "GPS Info IFD Pointer"},
    {Exif::InteroperabilityIFDPointer, "Interoperability IFD Pointer"},
    {Exif::ImageWidth, "Image Width"},
    {Exif::ImageHeight, "Image Height"},
    {Exif::BitsPerSample, "Bits Per Sample"},
    {Exif::Compression, "Compression"},
    {Exif::PhotometricInterpretation, "Photometric Interpretation"},
    {Exif::Orientation, "Orientation"},
    {Exif::SamplesPerPixel, "Samples Per Pixel"},
    {Exif::PlanarConfiguration, "Planar Configuration"},
    {Exif::YCbCrSubSampling, "YCbCr Sub Sampling"},
    {Exif::YCbCrPositioning, "YCbCr Positioning"},
    {Exif::XResolution, "X-Resolution"},
    {Exif::YResolution, "Y-Resolution"},
    {Exif::ResolutionUnit, "Resolution Unit"},
    {Exif::StripOffsets, "Strip Offsets"},
    {Exif::RowsPerStrip, "Rows Per Strip"},
    {Exif::StripByteCounts, "Strip Byte Counts"},
    {Exif::JPEGInterchangeFormat, "JPEG Interchange Format"},
    {Exif::JPEGInterchangeFormatLength, "JPEG Interchange Format Length"},
    {Exif::TransferFunction, "Transfer Function"},
    {Exif::WhitePoint, "White Point"},
    {Exif::PrimaryChromaticities, "Primary Chromaticities"},
    {Exif::YCbCrCoefficients, "YCbCr Coefficients"},
    {Exif::ReferenceBlackWhite, "Reference Black White"},
    {Exif::DateTime, "Date Time"},
    {Exif::ImageDescription, "Image Description"},
    {Exif::Make, "Make"},
    {Exif::Model, "Model"},
    {Exif::Software, "Software"},
    {Exif::Artist, "Artist"},
    {Exif::Copyright, "Copyright"},
    {Exif::ExifVersion, "Exif Version"},
    {Exif::FlashpixVersion, "Flashpix Version"},
    {Exif::ColorSpace, "Color Space"},
    {Exif::ComponentsConfiguration, "Components Configuration"},
    {Exif::CompressedBitsPerPixel, "Compressed Bits Per Pixel"},
    {Exif::PixelXDimension, "Pixel X Dimension"},
    {Exif::PixelYDimension, "Pixel Y Dimension"},
    {Exif::MakerNote, "Maker Note"},
    {Exif::UserComment, "User Comment"},
    {Exif::RelatedSoundFile, "Related Sound File"},
    {Exif::DateTimeOriginal, "Date Time Original"},
    {Exif::DateTimeDigitized, "Date Time Digitized"},
    {Exif::SubSecTime, "Sub Sec Time"},
    {Exif::SubSecTimeOriginal, "Sub Sec Time Original"},
    {Exif::SubSecTimeDigitized, "Sub Sec Time Digitized"},
    {Exif::ExposureTime, "Exposure Time"},
    {Exif::FNumber, "F Number"},
    {Exif::ExposureProgram, "Exposure Program"},
    {Exif::SpectralSensitivity, "Spectral Sensitivity"},
    {Exif::ISOSpeedRating, "ISO Speed Rating"},
    {Exif::OptoelectricConversionFactor, "Optoelectric conversion factor"},
    {Exif::ShutterSpeed, "Shutter Speed"},
    {Exif::ApertureValue, "Aperture Value"},
    {Exif::Brightness, "Brightness"},
    {Exif::ExposureBias, "Exposure Bias"},
    {Exif::MaximumLensAperture, "Maximum Lens Aperture"},
    {Exif::SubjectDistance, "Subject Distance"},
    {Exif::MeteringMode, "Metering Mode"},
    {Exif::LightSource, "Light Source"},
    {Exif::Flash, "Flash"},
    {Exif::FocalLength, "Focal Length"},
    {Exif::SubjectArea, "Subject Area"},
    {Exif::FlashEnergy, "Flash Energy"},
    {Exif::SpatialFrequencyResponse, "Spatial Frequency Response"},
    {Exif::FocalPlaneXResolution, "Focal Plane X Resolution"},
    {Exif::FocalPlaneYResolution, "Focal Plane Y Resolution"},
    {Exif::FocalPlaneResolutionUnit, "Focal Plane Resolution Unit"},
    {Exif::SubjectLocation, "Subject Location"},
    {Exif::ExposureIndex, "Exposure Index"},
    {Exif::SensingMethod, "Sensing Method"},
    {Exif::FileSource, "File Source"},
    {Exif::SceneType, "Scene Type"},
    {Exif::CFAPattern, "CFA Pattern"},
    {Exif::CustomRendered, "Custom Rendered"},
    {Exif::ExposureMode, "Exposure Mode"},
    {Exif::WhiteBalance, "White Balance"},
    {Exif::DigitalZoomRatio, "Digital Zoom Ratio"},
    {Exif::FocalLengthIn35mmFilm, "Focal Length In 35mm Film"},
    {Exif::SceneCaptureType, "Scene Capture Type"},
    {Exif::GainControl, "Gain Control"},
    {Exif::Contrast, "Contrast"},
    {Exif::Saturation, "Saturation"},
    {Exif::Sharpness, "Sharpness"},
    {Exif::DeviceSettingDescription, "Device Setting Description"},
    {Exif::SubjectDistanceRange, "Subject Distance Range"},
    {Exif::ImageUniqueID, "Image Unique ID"},
    {Exif::GPSVersionID, "GPS Version ID"},
    {Exif::GPSLatitudeRef, "GPS Latitude Ref"},
    {Exif::GPSLatitude, "GPS Latitude"},
    {Exif::GPSLongitudeRef, "GPS Longitude Ref"},
    {Exif::GPSLongitude, "GPS Longitude"},
    {Exif::GPSAltitudeRef, "GPS Altitude Ref"},
    {Exif::GPSAltitude, "GPS Altitude"},
    {Exif::GPSTimeStamp, "GPS Time Stamp"},
    {Exif::GPSSatellites, "GPS Satellites"},
    {Exif::GPSStatus, "GPS Status"},
    {Exif::GPSMeasureMode, "GPS Measure Mode"},
    {Exif::GPSDOP, "GPS DOP"},
    {Exif::GPSSpeedRef, "GPS Speed Ref"},
    {Exif::GPSSpeed, "GPS Speed"},
    {Exif::GPSTrackRef, "GPS Track Ref"},
    {Exif::GPSTrack, "GPS Track"},
    {Exif::GPSImgDirectionRef, "GPS Img Direction Ref"},
    {Exif::GPSImgDirection, "GPS Img Direction"},
    {Exif::GPSMapDatum, "GPS Map Datum"},
    {Exif::GPSDestLatitudeRef, "GPS Dest Latitude Ref"},
    {Exif::GPSDestLatitude, "GPS Dest Latitude"},
    {Exif::GPSDestLongitudeRef, "GPS Dest Longitude Ref"},
    {Exif::GPSDestLongitude, "GPS Dest Longitude"},
    {Exif::GPSDestBearingRef, "GPS Dest Bearing Ref"},
    {Exif::GPSDestBearing, "GPS Dest Bearing"},
    {Exif::GPSDestDistanceRef, "GPS Dest Distance Ref"},
    {Exif::GPSDestDistance, "GPS Dest Distance"},
    {Exif::GPSProcessingMethod, "GPS Processing Method"},
    {Exif::GPSAreaInformation, "GPS Area Information"},
    {Exif::GPSDateStamp, "GPS Date Stamp"},
    {Exif::GPSDifferential, "GPS Differential"},
};

// Pointer directories beyond this many are not followed; real files have two or three.
constexpr int kMaxPointedDirectories = 16;
// Pointer entries of one directory whose values are read. Real directories hold one of each;
// a hostile one full of pointers with huge counts would otherwise read the file once per entry.
constexpr int kMaxPointersPerDirectory = 8;
} // namespace

ExifData::ExifData(const QByteArray& data) : m_data(data) {}

int ExifData::ToInt() const { return metaio::toSigned(m_data); }

uint ExifData::ToUInt() const { return metaio::toUnsigned(m_data); }

float ExifData::ToFloat() const
{
    const float num = static_cast<float>(metaio::toSigned(m_data.left(4)));
    const float den = static_cast<float>(metaio::toSigned(m_data.mid(4)));
    return num / den;
}

double ExifData::ToDouble() const
{
    const double num = metaio::toUnsigned(m_data.left(4));
    const double den = metaio::toUnsigned(m_data.mid(4));
    return num / den;
}

QString ExifData::ToString() const { return QString::fromUtf8(metaio::untilZero(m_data)); }

Exif::Exif(QObject* parent) : Standard(parent) { InitTagNames(); }

void Exif::InitTagNames()
{
    // Built once and shared (Qt's implicit sharing): a reader is made for every photo read, and
    // building 120 strings each time cost more than reading the file's tags.
    static const QHash<Tag, QString> names = [] {
        QHash<Tag, QString> built;
        for (const TagName& t : kTagNames)
            built.insert(t.tag, QString::fromLatin1(t.name));
        return built;
    }();
    m_tag_names = names;
}

bool Exif::Init(QIODevice* device, TiffHeader* header)
{
    set_file(device);
    m_tiff_header = header;
    m_tag_offsets.clear();
    m_read_ifds.clear();
    if (!device || !header)
        return false;
    set_file_start_offset(header->file_start_offset());
    header->ToFirstIfd();
    ReadIfds(header->current_ifd_offset());
    return !m_tag_offsets.isEmpty();
}

void Exif::ReadIfds(qint64 offset)
{
    if (m_read_ifds.contains(offset) || m_read_ifds.size() >= kMaxPointedDirectories)
        return;
    m_read_ifds.insert(offset);
    TiffHeader* h = m_tiff_header;
    h->ToIfd(offset);
    QList<qint64> pending;
    while (h->HasNextIfdEntry()) {
        const qint64 entry = h->NextIfdEntryOffset();
        const Tag tag = static_cast<Tag>(h->IfdEntryTag(entry));
        if (!m_tag_names.contains(tag))
            continue;
        m_tag_offsets.insert(tag, entry);
        if ((tag == ExifIFDPointer || tag == GPSInfoIFDPointer) && pending.size() < kMaxPointersPerDirectory)
            pending << file_start_offset() + metaio::toUnsigned(h->IfdEntryValue(entry));
    }
    for (qint64 p : pending)
        ReadIfds(p);
}

ExifData Exif::Value(Tag tag)
{
    const auto it = m_tag_offsets.constFind(tag);
    if (it == m_tag_offsets.constEnd() || !m_tiff_header)
        return ExifData();
    return ExifData(m_tiff_header->IfdEntryValue(it.value()));
}

TiffHeader::Type Exif::ValueType(Tag tag)
{
    const auto it = m_tag_offsets.constFind(tag);
    if (it == m_tag_offsets.constEnd() || !m_tiff_header)
        return TiffHeader::TypeUnknown;
    return m_tiff_header->IfdEntryType(it.value());
}

QByteArray Exif::Thumbnail()
{
    const uint offset = Value(JPEGInterchangeFormat).ToUInt();
    const uint length = Value(JPEGInterchangeFormatLength).ToUInt();
    if (offset == 0 || length == 0 || !file())
        return QByteArray();
    if (!metaio::seekWithin(file(), file_start_offset() + offset))
        return QByteArray();
    return metaio::readBounded(file(), length);
}

} // namespace rkBase
