// TIFF directory walking and Exif values, on TIFF blocks built byte by byte in both orders.
#include "metadata/Exif.h"
#include "metadata/TiffBuilder_p.h"
#include "metadata/TiffHeader.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QtTest>

#include <cmath>

using namespace rkBase;
using namespace rkBase::tiffbuild;

namespace {

// A photograph's worth of tags in every directory the reader visits.
QByteArray sampleTiff(bool big)
{
    Builder b(big);
    b.add(Builder::Ifd0, 271, 2, ascii("Canon"))  // ASCII in the data area
        .add(Builder::Ifd0, 272, 2, ascii("EOS")) // ASCII in the entry itself
        .add(Builder::Ifd0, 274, 3, shorts({6}))
        .add(Builder::Ifd0, 282, 5, rationals({{1, 3}}))
        .add(Builder::Ifd0, 296, 3, shorts({2}))
        .add(Builder::ExifDir, 36867, 2, ascii("2024:05:01 10:20:30"))
        .add(Builder::ExifDir, 37380, 10, rationals({{-1, 2}}))
        .add(Builder::ExifDir, 33434, 5, rationals({{1, 250}}))
        .add(Builder::GpsDir, 1, 2, ascii("S"))
        .add(Builder::GpsDir, 2, 5, rationals({{33, 1}, {51, 1}, {3000, 100}}))
        .add(Builder::GpsDir, 0, 1, QByteArray("\x02\x02\x00\x00", 4))
        .add(Builder::Ifd1, 259, 3, shorts({6}))
        .add(Builder::Ifd1, 274, 3, shorts({1})) // also in IFD0: the later one wins
        .thumbnail(QByteArray("\xff\xd8thumb\xff\xd9", 9));
    return b.build();
}

struct Reader {
    QBuffer buffer;
    TiffHeader header;
    Exif exif;
    bool headerOk = false, exifOk = false;
    explicit Reader(const QByteArray& bytes, qint64 start = 0)
    {
        buffer.setData(bytes);
        buffer.open(QIODevice::ReadOnly);
        headerOk = header.Init(&buffer, start);
        exifOk = headerOk && exif.Init(&buffer, &header);
    }
};

} // namespace

class TestExif : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void sampleValues_data()
    {
        QTest::addColumn<bool>("big");
        QTest::newRow("little-endian") << false;
        QTest::newRow("big-endian") << true;
    }
    void sampleValues()
    {
        QFETCH(bool, big);
        Reader r(sampleTiff(big));
        QVERIFY(r.exifOk);
        QCOMPARE(r.exif.Value(Exif::Make).ToString(), QStringLiteral("Canon"));
        QCOMPARE(r.exif.Value(Exif::Model).ToString(), QStringLiteral("EOS"));
        QCOMPARE(r.exif.Value(Exif::Orientation).ToInt(), 1); // IFD1 overrides IFD0
        QCOMPARE(r.exif.Value(Exif::Compression).ToInt(), 6); // IFD1 reached without a step
        QCOMPARE(r.exif.Value(Exif::XResolution).ToDouble(), 1.0 / 3.0);
        // A negative half fails the signed parse and reads as 0; the unsigned one wraps.
        QCOMPARE(r.exif.Value(Exif::ExposureBias).ToFloat(), 0.0f);
        QCOMPARE(r.exif.Value(Exif::ExposureBias).ToDouble(), 4294967295.0 / 2.0);
        QCOMPARE(r.exif.Value(Exif::ExposureTime).ToDouble(), 1.0 / 250.0);
        QCOMPARE(r.exif.Value(Exif::DateTimeOriginal).ToString(), QStringLiteral("2024:05:01 10:20:30"));
        QCOMPARE(r.exif.Value(Exif::GPSLatitudeRef).ToString(), QStringLiteral("S"));
        QCOMPARE(r.exif.Value(Exif::GPSLatitude).bytes(), rationals({{33, 1}, {51, 1}, {3000, 100}}));
        QCOMPARE(r.exif.Value(Exif::GPSVersionID).bytes(), QByteArray("\x02\x02\x00\x00", 4));
        QCOMPARE(r.exif.Thumbnail(), QByteArray("\xff\xd8thumb\xff\xd9", 9));
        // Absent tags read as nothing.
        QCOMPARE(r.exif.Value(Exif::Artist).ToInt(), 0);
        QVERIFY(r.exif.Value(Exif::Artist).ToString().isEmpty());
        QVERIFY(r.exif.Value(Exif::Artist).bytes().isEmpty());
    }

    void byteOrdersGiveSameBytes()
    {
        Reader le(sampleTiff(false)), be(sampleTiff(true));
        QVERIFY(le.exifOk && be.exifOk);
        const auto tags = le.exif.tag_offsets().keys();
        QCOMPARE(tags.size(), be.exif.tag_offsets().size());
        QCOMPARE(tags.size(), 16); // 12 distinct tags added, 2 pointers, 2 thumbnail tags
        for (Exif::Tag t : tags)
            QVERIFY2(le.exif.Value(t).bytes() == be.exif.Value(t).bytes(), qPrintable(QString::number(t)));
    }

    void entryWalk()
    {
        Reader r(sampleTiff(false));
        QVERIFY(r.headerOk);
        r.header.ToFirstIfd();
        QList<int> tags;
        qint64 entry;
        while ((entry = r.header.NextIfdEntryOffset()) >= 0)
            tags << r.header.IfdEntryTag(entry);
        // IFD0 then, through its link, IFD1: one sequence for the caller.
        QCOMPARE(tags, (QList<int>{271, 272, 274, 282, 296, 34665, 34853, 259, 274, 513, 514}));
        QVERIFY(!r.header.HasNextIfdEntry());

        r.header.ToFirstIfd();
        const qint64 make = r.header.NextIfdEntryOffset(), model = r.header.NextIfdEntryOffset();
        QCOMPARE(r.header.IfdEntryType(make), TiffHeader::TypeAscii);
        QVERIFY(r.header.IfdEntryOffset(make) > 0);           // 6 bytes: elsewhere
        QCOMPARE(r.header.IfdEntryOffset(model), qint64(-1)); // 4 bytes: in the entry
        QCOMPARE(r.header.IfdEntryValue(model), QByteArray("EOS", 4));
        QCOMPARE(r.header.IfdEntryValue(make), QByteArray("Canon", 6));
    }

    void conversions_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("asInt");
        QTest::addColumn<uint>("asUInt");
        QTest::addColumn<double>("asDouble");
        QTest::addColumn<float>("asFloat");
        QTest::addColumn<QString>("asString");
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("empty") << QByteArray() << 0 << 0u << std::nan("") << std::nanf("") << QString();
        QTest::newRow("short") << shorts({0x1234}) << 0x1234 << 0x1234u << inf << float(inf) << QString("\x12\x34");
        QTest::newRow("two shorts concatenate")
            << shorts({1, 2}) << 0x10002 << 0x10002u << inf << float(inf) << QString();
        QTest::newRow("0x80000000 fails signed")
            << longs({0x80000000u}) << 0 << 0x80000000u << inf << 0.0f / 0.0f << QString("\x80");
        QTest::newRow("1/3") << rationals({{1, 3}}) << 0 << 0u << 1.0 / 3.0 << 1.0f / 3.0f << QString("");
        QTest::newRow("srational -1/2 reads 0 signed")
            << rationals({{-1, 2}}) << 0 << 0u << 4294967295.0 / 2.0 << 0.0f << QString("\xff\xff\xff\xff");
        QTest::newRow("zero denominator") << rationals({{5, 0}}) << 0 << 0u << inf << float(inf) << QString("");
        QTest::newRow("text stops at zero")
            << QByteArray("ab\0cd", 5) << 0 << 0u << 1633812579.0 / 100 << 1633812579.0f / 100.0f << QString("ab");
        QTest::newRow("eight bytes overflow") << longs({1, 2}) << 0 << 0u << 0.5 << 0.5f << QString("");
        QTest::newRow("leading zeros fit") << longs({0, 7}) << 7 << 7u << 0.0 << 0.0f << QString("");
    }
    void conversions()
    {
        QFETCH(QByteArray, bytes);
        const ExifData d(bytes);
        QTEST(d.ToInt(), "asInt");
        QTEST(d.ToUInt(), "asUInt");
        QFETCH(double, asDouble);
        QFETCH(float, asFloat);
        if (std::isnan(asDouble))
            QVERIFY(std::isnan(d.ToDouble()));
        else
            QCOMPARE(d.ToDouble(), asDouble);
        if (std::isnan(asFloat))
            QVERIFY(std::isnan(d.ToFloat()));
        else
            QCOMPARE(d.ToFloat(), asFloat);
        QFETCH(QString, asString);
        if (!bytes.contains('\x80') && !bytes.contains('\xff') && !bytes.contains('\x12'))
            QCOMPARE(d.ToString(), asString);
        const ExifData copy = d;
        QCOMPARE(copy.bytes(), bytes);
    }

    void header_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("ok");
        QTest::newRow("II") << (QByteArray("II") + QByteArray("\x2a\0\x08\0\0\0", 6)) << true;
        QTest::newRow("MM") << (QByteArray("MM") + QByteArray("\0\x2a\0\0\0\x08", 6)) << true;
        QTest::newRow("bad mark") << QByteArray("IM\x2a\0\x08\0\0\0", 8) << false;
        QTest::newRow("bad magic") << QByteArray("II\x2b\0\x08\0\0\0", 8) << false;
        QTest::newRow("magic in wrong order") << QByteArray("II\0\x2a\0\0\0\x08", 8) << false;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("mark only") << QByteArray("MM") << false;
    }
    void header()
    {
        QFETCH(QByteArray, bytes);
        Reader r(bytes);
        QTEST(r.headerOk, "ok");
        QVERIFY(!r.exifOk); // no directory
    }

    // The first-directory offset is absolute unless it is 8: a TIFF block at 20 whose directory
    // sits at block offset 10 is read from device position 10.
    void firstIfdOffsetIsAbsolute()
    {
        QByteArray tiff = Builder(false).add(Builder::Ifd0, 274, 3, shorts({3})).build();
        // Move the directory two bytes on and point the header at it.
        tiff = tiff.left(8) + QByteArray(2, '\0') + tiff.mid(8);
        tiff[4] = 10;
        const QByteArray device = QByteArray(20, '\0') + tiff;
        Reader misread(device, 20);
        QVERIFY(misread.headerOk);
        QCOMPARE(misread.header.current_ifd_offset(), qint64(10));
        QVERIFY(!misread.exifOk); // position 10 holds zeros: no entries
        Reader atZero(tiff, 0);   // at start 0 absolute and relative agree
        QVERIFY(atZero.exifOk);
        QCOMPARE(atZero.exif.Value(Exif::Orientation).ToInt(), 3);
    }

    // Hostile directories: each must end quickly and never read beyond the device.
    void hostile_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("exifOk");
        QTest::addColumn<int>("orientation");

        QByteArray selfLink = Builder(false).add(Builder::Ifd0, 274, 3, shorts({5})).build();
        selfLink[8 + 2 + 12] = 8; // IFD0's link points to IFD0
        QTest::newRow("IFD links to itself") << selfLink << true << 5;

        QByteArray pointerLoop = Builder(true).add(Builder::ExifDir, 274, 3, shorts({4})).build();
        // IFD0 holds only the Exif pointer; make it point back at IFD0.
        pointerLoop[8 + 2 + 8 + 3] = 8;
        pointerLoop.truncate(8 + 2 + 12 + 4);
        QTest::newRow("Exif pointer to IFD0") << pointerLoop << true << 0;

        QByteArray hugeCount("II\x2a\0\x08\0\0\0\xff\xff", 10);
        hugeCount += QByteArray("\x12\x01\x03\0\x01\0\0\0\x07\0\0\0", 12);
        QTest::newRow("entry count past the end") << hugeCount << true << 7;

        QByteArray longValue("II\x2a\0\x08\0\0\0\x01\0", 10);
        longValue += QByteArray("\x12\x01\x04\0\xff\xff\xff\x7f\x08\0\0\0", 12); // 2^31-1 LONGs
        QTest::newRow("value count past the end") << longValue + QByteArray(4, '\0') << true << 0;

        QByteArray unknownType("II\x2a\0\x08\0\0\0\x01\0", 10);
        unknownType += QByteArray("\x12\x01\x63\0\xff\xff\xff\x7f\0\0\0\0", 12);
        QTest::newRow("unknown type, huge count") << unknownType << true << 0;

        QByteArray highOffset("MM\0\x2a\x80\0\0\0", 8); // reads as 0: directory at 0
        QTest::newRow("first offset 0x80000000") << highOffset << false << 0;
    }
    void hostile()
    {
        QFETCH(QByteArray, bytes);
        QElapsedTimer t;
        t.start();
        Reader r(bytes);
        QTEST(r.exifOk, "exifOk");
        QTEST(r.exif.Value(Exif::Orientation).ToInt(), "orientation");
        for (Exif::Tag tag : r.exif.tag_offsets().keys())
            QVERIFY(r.exif.Value(tag).bytes().size() <= bytes.size());
        QVERIFY(r.exif.Thumbnail().size() <= bytes.size());
        QVERIFY(t.elapsed() < 2000);
    }

    void longDirectoryChainIsBounded()
    {
        // 200 directories, each linking to the next: the walk stops at its limit.
        QByteArray b("II\x2a\0\x08\0\0\0", 8);
        for (int i = 0; i < 200; ++i) {
            const quint32 next = i == 199 ? 0 : quint32(b.size() + 18);
            b += QByteArray("\x01\0\x12\x01\x03\0\x01\0\0\0\x01\0\0\0", 14);
            b.append(char(next)).append(char(next >> 8)).append(char(next >> 16)).append('\0');
        }
        Reader r(b);
        r.header.ToFirstIfd();
        int entries = 0;
        while (r.header.NextIfdEntryOffset() >= 0)
            ++entries;
        QCOMPARE(entries, TiffHeader::MaxDirectories);
    }

    // A megabyte-sized directory of pointer entries whose values span the whole file: each is
    // indexed, but the file is not read once per entry.
    void denseHugePointers()
    {
        const int entries = 65535;
        QByteArray b("II\x2a\0\x08\0\0\0", 8);
        b.append(char(entries & 0xff)).append(char(entries >> 8));
        for (int i = 0; i < entries; ++i)
            b += QByteArray("\x69\x87\x04\0\xff\xff\xff\x3f\0\0\0\0", 12);
        b += QByteArray(4, '\0');
        QElapsedTimer t;
        t.start();
        Reader r(b);
        QVERIFY(r.exifOk);
        QCOMPARE(r.exif.tag_offsets().size(), 1);
        QVERIFY2(t.elapsed() < 3000, qPrintable(QString::number(t.elapsed())));
    }

    void thumbnailPastEnd()
    {
        QByteArray b = Builder(false)
                           .add(Builder::Ifd0, 513, 4, longs({8}))
                           .add(Builder::Ifd0, 514, 4, longs({0x7fffffff}))
                           .build();
        Reader r(b);
        QCOMPARE(r.exif.Thumbnail(), b.mid(8));
        QByteArray zero =
            Builder(false).add(Builder::Ifd0, 513, 4, longs({8})).add(Builder::Ifd0, 514, 4, longs({0})).build();
        Reader z(zero);
        QVERIFY(z.exif.Thumbnail().isEmpty());
    }

    void tagNames()
    {
        Exif e;
        const auto names = e.tag_names();
        QCOMPARE(names.size(), 120);
        QCOMPARE(names.value(Exif::GPSInfoIFDPointer), QStringLiteral("GPS Info IFD Pointer"));
        QCOMPARE(names.value(static_cast<Exif::Tag>(34855)), QStringLiteral("ISO Speed Rating"));
        QCOMPARE(names.value(static_cast<Exif::Tag>(30)), QStringLiteral("GPS Differential"));
    }
};

QTEST_GUILESS_MAIN(TestExif)
#include "tst_exif.moc"
