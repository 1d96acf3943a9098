#include "Cli.h"

#include "metadata/Exif.h"
#include "metadata/Image.h"
#include "metadata/Iptc.h"
#include "metadata/TiffBuilder_p.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMetaEnum>
#include <QSaveFile>
#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace rktool {
namespace {

using rkBase::Exif;
using rkBase::Image;
using rkBase::Iptc;
using rkBase::TiffHeader;

constexpr int kShownBinaryBytes = 16; // longer binary values are summarised by their size

QString number(double v) { return std::isfinite(v) ? QString::number(v, 'g', 10) : QStringLiteral("undefined"); }
QJsonValue jsonNumber(double v) { return std::isfinite(v) ? QJsonValue(v) : QJsonValue(); }

QString hexText(const QByteArray& bytes)
{
    if (bytes.size() > kShownBinaryBytes)
        return QStringLiteral("(%1 bytes)").arg(bytes.size());
    return QString::fromLatin1(bytes.toHex(' '));
}

bool printable(const QByteArray& bytes)
{
    return !bytes.isEmpty() && std::all_of(bytes.begin(), bytes.end(), [](char c) {
        return static_cast<uchar>(c) >= 0x20 || c == '\n' || c == '\r' || c == '\t';
    });
}

QString text(const QByteArray& bytes)
{
    // IPTC and UNDEFINED values carry no character set here; UTF-8 when it is, else Latin-1.
    const QString utf8 = QString::fromUtf8(bytes);
    return utf8.contains(QChar::ReplacementCharacter) ? QString::fromLatin1(bytes) : utf8;
}

// The numbers of one Exif value, each decoded from its big-endian bytes by its type.
QVector<double> numbers(TiffHeader::Type type, const QByteArray& b)
{
    QVector<double> out;
    const auto* d = reinterpret_cast<const uchar*>(b.constData());
    auto u32 = [d](int i) { return qFromBigEndian<quint32>(d + i); };
    switch (type) {
    case TiffHeader::TypeShort:
    case TiffHeader::TypeSShort:
        for (int i = 0; i + 2 <= b.size(); i += 2) {
            const quint16 v = qFromBigEndian<quint16>(d + i);
            out << (type == TiffHeader::TypeShort ? double(v) : double(qint16(v)));
        }
        break;
    case TiffHeader::TypeLong:
    case TiffHeader::TypeSLong:
        for (int i = 0; i + 4 <= b.size(); i += 4)
            out << (type == TiffHeader::TypeLong ? double(u32(i)) : double(qint32(u32(i))));
        break;
    case TiffHeader::TypeRational:
    case TiffHeader::TypeSRational:
        for (int i = 0; i + 8 <= b.size(); i += 8) {
            const bool s = type == TiffHeader::TypeSRational;
            const double num = s ? double(qint32(u32(i))) : double(u32(i));
            const double den = s ? double(qint32(u32(i + 4))) : double(u32(i + 4));
            out << (den == 0 ? std::nan("") : num / den);
        }
        break;
    case TiffHeader::TypeFloat:
        for (int i = 0; i + 4 <= b.size(); i += 4) {
            const quint32 bits = u32(i);
            float f;
            std::memcpy(&f, &bits, 4);
            out << f;
        }
        break;
    case TiffHeader::TypeDouble:
        for (int i = 0; i + 8 <= b.size(); i += 8) {
            const quint64 bits = qFromBigEndian<quint64>(d + i);
            double v;
            std::memcpy(&v, &bits, 8);
            out << v;
        }
        break;
    default:
        break;
    }
    return out;
}

// One Exif value for people (text) and for programs (JSON).
struct Shown {
    QString text;
    QJsonValue json;
};

Shown showExif(Exif& exif, Exif::Tag tag)
{
    const TiffHeader::Type type = exif.ValueType(tag);
    const QByteArray bytes = exif.Value(tag).bytes();
    if (bytes.isEmpty()) // an entry whose value lies past the end of the file, or has no type
        return {QStringLiteral("(empty)"), QJsonValue()};
    if (type == TiffHeader::TypeAscii) {
        const QString s = exif.Value(tag).ToString().trimmed();
        return {s, s};
    }
    if (type == TiffHeader::TypeByte || type == TiffHeader::TypeSByte || type == TiffHeader::TypeUndefined ||
        type == TiffHeader::TypeUnknown) {
        // Version tags and comments are text in UNDEFINED clothing.
        if (printable(bytes) && bytes.size() <= 256)
            return {text(bytes), text(bytes)};
        const QString h = hexText(bytes);
        return {h, h};
    }
    const QVector<double> v = numbers(type, bytes);
    if (v.size() == 1)
        return {number(v[0]), jsonNumber(v[0])};
    QStringList parts;
    QJsonArray array;
    for (double x : v) {
        parts << number(x);
        array.append(jsonNumber(x));
    }
    if (v.size() > 32)
        return {QStringLiteral("(%1 values)").arg(v.size()), array};
    return {parts.join(QStringLiteral(" ")), array};
}

// Degrees, minutes and seconds with their hemisphere as signed decimal degrees; NaN when the
// value is not three finite rationals or the reference is not one of the two expected letters.
double signedDegrees(Exif& exif, Exif::Tag value, Exif::Tag ref, QChar positive, QChar negative)
{
    const QVector<double> dms = numbers(TiffHeader::TypeRational, exif.Value(value).bytes());
    const QString r = exif.Value(ref).ToString().trimmed().toUpper();
    if (dms.size() != 3 || exif.ValueType(value) != TiffHeader::TypeRational || r.size() != 1 ||
        (r[0] != positive && r[0] != negative))
        return std::nan("");
    const double deg = dms[0] + dms[1] / 60.0 + dms[2] / 3600.0;
    if (!std::isfinite(deg) || deg > (positive == QLatin1Char('N') ? 90.0 : 180.0))
        return std::nan("");
    return r[0] == negative ? -deg : deg;
}

struct FileReport {
    QJsonObject json;
    QStringList lines;
    bool failed = false;
    QString reason;
};

// Two files of the same name from different folders must not overwrite each other's thumbnail.
QString thumbnailPath(const QString& dir, const QString& file, QSet<QString>& used)
{
    const QString base = QFileInfo(file).completeBaseName() + QStringLiteral("_thumbnail");
    QString name = base + QStringLiteral(".jpg");
    for (int n = 2; used.contains(name); ++n)
        name = QStringLiteral("%1_%2.jpg").arg(base).arg(n);
    used.insert(name);
    return QDir(dir).filePath(name);
}

FileReport describe(Image& image, const QString& label, const QString& thumbDir, QSet<QString>* used = nullptr)
{
    FileReport rep;
    QJsonObject& j = rep.json;
    j[QStringLiteral("file")] = label;
    static const char* const typeNames[] = {"unknown", "jpeg", "tiff"};
    j[QStringLiteral("type")] = QLatin1String(typeNames[image.file_type()]);
    rep.lines << QStringLiteral("%1: %2").arg(label, image.file_type() == Image::FileTypeJpeg ? QStringLiteral("JPEG")
                                                     : image.file_type() == Image::FileTypeTiff
                                                         ? QStringLiteral("TIFF")
                                                         : QStringLiteral("unknown type"));
    if (!image.device()) {
        rep.failed = true;
        rep.reason = QStringLiteral("%1: cannot open").arg(label);
        return rep;
    }
    if (!image.IsValid()) {
        rep.failed = true;
        rep.reason = QStringLiteral("%1: not a JPEG or TIFF file").arg(label);
        return rep;
    }

    QJsonObject exifJson;
    if (Exif* exif = image.exif()) {
        rep.lines << QStringLiteral("  Exif:");
        QList<Exif::Tag> tags = exif->tag_offsets().keys();
        std::sort(tags.begin(), tags.end());
        const auto names = exif->tag_names();
        for (Exif::Tag tag : tags) {
            const Shown s = showExif(*exif, tag);
            exifJson[names.value(tag)] = s.json;
            rep.lines << QStringLiteral("    %1: %2").arg(names.value(tag), s.text);
        }
        const double lat = signedDegrees(*exif, Exif::GPSLatitude, Exif::GPSLatitudeRef, 'N', 'S');
        const double lon = signedDegrees(*exif, Exif::GPSLongitude, Exif::GPSLongitudeRef, 'E', 'W');
        if (std::isfinite(lat) && std::isfinite(lon)) {
            QJsonObject gps{{QStringLiteral("latitude"), lat}, {QStringLiteral("longitude"), lon}};
            QString line = QStringLiteral("  GPS position: %1, %2").arg(lat, 0, 'f', 7).arg(lon, 0, 'f', 7);
            const QVector<double> alt = numbers(TiffHeader::TypeRational, exif->Value(Exif::GPSAltitude).bytes());
            if (alt.size() == 1 && std::isfinite(alt[0])) {
                const double a = exif->Value(Exif::GPSAltitudeRef).ToInt() == 1 ? -alt[0] : alt[0];
                gps[QStringLiteral("altitude_m")] = a;
                line += QStringLiteral(", altitude %1 m").arg(number(a));
            }
            j[QStringLiteral("gps")] = gps;
            rep.lines << line;
        } else if (exif->tag_offsets().contains(Exif::GPSLatitude)) {
            rep.lines << QStringLiteral("  GPS position: invalid");
        }
        const QByteArray thumb = exif->Thumbnail();
        j[QStringLiteral("thumbnail_bytes")] = thumb.size();
        rep.lines << QStringLiteral("  Thumbnail: %1")
                         .arg(thumb.isEmpty() ? QStringLiteral("none") : QStringLiteral("%1 bytes").arg(thumb.size()));
        if (!thumb.isEmpty() && !thumbDir.isEmpty() && used) {
            const QString out = thumbnailPath(thumbDir, label, *used);
            QSaveFile f(out);
            if (!f.open(QIODevice::WriteOnly) || f.write(thumb) != thumb.size() || !f.commit()) {
                rep.failed = true;
                rep.reason = QStringLiteral("cannot write %1").arg(out);
            } else {
                j[QStringLiteral("thumbnail_file")] = out;
                rep.lines << QStringLiteral("  Thumbnail written to %1").arg(out);
            }
        }
    } else {
        rep.lines << QStringLiteral("  Exif: none");
    }
    j[QStringLiteral("exif")] = exifJson;

    QJsonObject iptcJson;
    if (Iptc* iptc = image.iptc()) {
        rep.lines << QStringLiteral("  IPTC:");
        QList<Iptc::Tag> tags = iptc->tag_offsets().uniqueKeys();
        std::sort(tags.begin(), tags.end());
        const auto names = iptc->tag_names();
        for (Iptc::Tag tag : tags) {
            const QString name = names.value(tag, QStringLiteral("Dataset %1").arg(int(tag)));
            auto show = [](const QByteArray& b) { return printable(b) ? text(b) : hexText(b); };
            if (iptc->isRepeatable(tag)) {
                QJsonArray list;
                QStringList shown;
                for (const QByteArray& v : iptc->Values(tag)) {
                    list.append(show(v));
                    shown << show(v);
                }
                iptcJson[name] = list;
                rep.lines << QStringLiteral("    %1: [%2]").arg(name, shown.join(QStringLiteral("; ")));
            } else {
                iptcJson[name] = show(iptc->Value(tag));
                rep.lines << QStringLiteral("    %1: %2").arg(name, show(iptc->Value(tag)));
            }
        }
    } else {
        rep.lines << QStringLiteral("  IPTC: none");
    }
    j[QStringLiteral("iptc")] = iptcJson;
    j[QStringLiteral("xmp")] = image.xmp() != nullptr;
    rep.lines << QStringLiteral("  XMP: %1").arg(image.xmp() ? QStringLiteral("present") : QStringLiteral("none"));
    return rep;
}

int runMetadata(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const bool extract = args.has(QStringLiteral("--extract-thumbnail"));
    const QString thumbDir = args.option(QStringLiteral("--extract-thumbnail"));
    if (extract && thumbDir.isEmpty())
        throw UsageError{QStringLiteral("--extract-thumbnail needs a folder")};
    const QStringList files = args.positionals();
    if (files.isEmpty())
        throw UsageError{QStringLiteral("give one or more JPEG or TIFF files")};
    if (extract && !QDir().mkpath(thumbDir))
        throw Failure{QStringLiteral("cannot create folder %1").arg(thumbDir)};

    QJsonArray all;
    QStringList failures;
    QSet<QString> usedNames;
    for (const QString& path : files) {
        if (QFileInfo(path).isDir()) {
            failures << QStringLiteral("%1: is a folder").arg(path);
            continue;
        }
        Image image(path);
        const FileReport rep = describe(image, path, thumbDir, &usedNames);
        if (rep.failed)
            failures << rep.reason;
        if (json)
            all.append(rep.json);
        else if (!(rep.failed && !image.IsValid()))
            io.out << rep.lines.join(QLatin1Char('\n')) << "\n";
    }
    if (json)
        io.out << QJsonDocument(all).toJson(QJsonDocument::Indented);
    io.out.flush();
    if (failures.isEmpty())
        return Success;
    for (int i = 0; i + 1 < failures.size(); ++i)
        io.err << "rktool metadata: " << failures[i] << "\n";
    throw Failure{failures.last()};
}

// A photograph made here: Qt writes the JPEG, our builder adds Exif with GPS and a thumbnail,
// a Photoshop block with IPTC keywords and an XMP packet.
QByteArray samplePhoto()
{
    using namespace rkBase::tiffbuild;
    auto jpeg = [](int w, int h) {
        QImage img(w, h, QImage::Format_RGB32);
        img.fill(QColor(120, 110, 90));
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        img.save(&buffer, "JPG", 85);
        return bytes;
    };
    const QByteArray tiff = Builder(false)
                                .add(Builder::Ifd0, 271, 2, ascii("Field Camera"))
                                .add(Builder::Ifd0, 274, 3, shorts({1}))
                                .add(Builder::ExifDir, 36867, 2, ascii("2016:08:02 14:05:09"))
                                .add(Builder::ExifDir, 37386, 5, rationals({{35, 1}}))
                                .add(Builder::GpsDir, 1, 2, ascii("N"))
                                .add(Builder::GpsDir, 2, 5, rationals({{69, 1}, {38, 1}, {4500, 100}}))
                                .add(Builder::GpsDir, 3, 2, ascii("E"))
                                .add(Builder::GpsDir, 4, 5, rationals({{18, 1}, {57, 1}, {1200, 100}}))
                                .add(Builder::GpsDir, 6, 5, rationals({{1215, 10}}))
                                .thumbnail(jpeg(16, 12))
                                .build();
    const QByteArray iptc = dataset(0, QByteArray("\0\x04", 2)) + dataset(25, "gneiss") + dataset(25, "fold hinge") +
                            dataset(120, "Outcrop north of the road cut");
    return withSegments(jpeg(64, 48), exifSegment(tiff) + xmpSegment(xmpPacket("<x:xmpmeta/>")) +
                                          photoshopSegment(resource(1028, iptc)));
}

void tourMetadata(Io& io)
{
    tourHeading(io, QStringLiteral("Image metadata"));
    QByteArray photo = samplePhoto();
    io.out << "A " << photo.size() << "-byte JPEG written by Qt, with Exif, GPS, IPTC and XMP added:\n";
    Image image(&photo);
    io.out << describe(image, QStringLiteral("sample.jpg"), QString()).lines.join(QLatin1Char('\n')) << "\n";
}

const AreaRegistration registration{
    Area{80, QStringLiteral("metadata"), QStringLiteral("Exif, GPS, IPTC and XMP of JPEG and TIFF files"),
         QStringLiteral("Usage: rktool metadata [--json] [--extract-thumbnail DIR] <files...>\n\n"
                        "For each file: its type (JPEG or TIFF), every Exif tag found by name with its value\n"
                        "(rationals as decimal numbers, ASCII as text, other binary values as hex or their\n"
                        "size), the GPS position as signed decimal degrees (south and west negative) with\n"
                        "the altitude in metres when present, the thumbnail's size, the IPTC datasets by name\n"
                        "(repeatable ones such as Keywords as lists, in file order) and whether an XMP packet\n"
                        "is present.\n\n"
                        "--json                    one JSON array with an object per file\n"
                        "--extract-thumbnail DIR   writes each Exif thumbnail to DIR/<name>_thumbnail.jpg\n"
                        "                          (the folder is created when missing)\n\n"
                        "Exit code 1 when a file cannot be opened or is neither JPEG nor TIFF (the other\n"
                        "files are still shown), 2 on bad usage.\n"),
         runMetadata, tourMetadata}};

} // namespace
} // namespace rktool
