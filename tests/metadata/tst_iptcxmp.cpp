// IPTC record walking and XMP packet checks on blocks built byte by byte.
#include "metadata/Iptc.h"
#include "metadata/TiffBuilder_p.h"
#include "metadata/Xmp.h"

#include <QBuffer>
#include <QtTest>

using namespace rkBase;
using namespace rkBase::tiffbuild;

using ByteList = QList<QByteArray>;

class TestIptcXmp : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale::c()); }

    void iptc_data()
    {
        QTest::addColumn<QByteArray>("block");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<int>("tag");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<ByteList>("values");

        const QByteArray keywords = dataset(0, QByteArray("\0\x04", 2)) + dataset(25, "rock") + dataset(105, "first") +
                                    dataset(25, "fault") + dataset(105, "second") + dataset(25, "dip");
        QTest::newRow("repeatable keywords in file order")
            << keywords << true << 25 << QByteArray("dip") << ByteList{"rock", "fault", "dip"};
        QTest::newRow("headline keeps the later one")
            << keywords << true << 105 << QByteArray("second") << ByteList{"second"};
        QTest::newRow("absent tag") << keywords << true << 80 << QByteArray() << ByteList{};

        const QByteArray unknown = dataset(5, "name") + dataset(9, "??") + dataset(90, "Oslo");
        QTest::newRow("walk stops at an unnamed dataset") << unknown << true << 90 << QByteArray() << ByteList{};
        QTest::newRow("before the unnamed one") << unknown << true << 5 << QByteArray("name") << ByteList{"name"};
        QTest::newRow("the unnamed one reads empty") << unknown << true << 9 << QByteArray() << ByteList{QByteArray()};

        QTest::newRow("record 1 first") << (QByteArray("\x1c\x01\x5a\0\x03UTF", 8) + dataset(5, "x")) << false << 5
                                        << QByteArray() << ByteList{};
        QTest::newRow("empty block") << QByteArray() << false << 5 << QByteArray() << ByteList{};
        // The extended-length bit is not special: the length is huge and the value runs to the end.
        QTest::newRow("extended length") << QByteArray("\x1c\x02\x78\x80\x04"
                                                       "abc",
                                                       8)
                                         << true << 120 << QByteArray("abc") << ByteList{"abc"};
        QTest::newRow("truncated value") << QByteArray("\x1c\x02\x69\x00\x10"
                                                       "abc",
                                                       8)
                                         << true << 105 << QByteArray("abc") << ByteList{"abc"};
    }
    void iptc()
    {
        QFETCH(QByteArray, block);
        // Put the block at an offset, after unrelated bytes, to check that positions are absolute.
        QByteArray bytes = QByteArray(7, '\x1c') + block;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::ReadOnly);
        Iptc iptc;
        QTEST(iptc.Init(&buffer, 7), "ok");
        QFETCH(int, tag);
        QTEST(iptc.Value(static_cast<Iptc::Tag>(tag)), "value");
        QTEST(iptc.Values(static_cast<Iptc::Tag>(tag)), "values");
    }

    void iptcTables()
    {
        Iptc iptc;
        QCOMPARE(iptc.tag_names().size(), 57);
        QCOMPARE(iptc.tag_names().value(Iptc::CaptionAbstract), QStringLiteral("Caption Abstract"));
        QCOMPARE(iptc.tag_names().value(static_cast<Iptc::Tag>(202)), QStringLiteral("Object Data Preview Data"));
        int repeatable = 0;
        for (int n = 0; n < 256; ++n)
            repeatable += iptc.isRepeatable(static_cast<Iptc::Tag>(n));
        QCOMPARE(repeatable, 13);
        QVERIFY(iptc.isRepeatable(Iptc::Keywords) && !iptc.isRepeatable(Iptc::Headline));
    }

    void xmp_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("ok");
        const QByteArray body("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><?not-the-end?></x:xmpmeta>");
        QTest::newRow("writable packet") << xmpPacket(body, 'w') << true;
        QTest::newRow("read-only trailer") << xmpPacket(body, 'r') << false;
        QTest::newRow("cut before trailer") << xmpPacket(body).left(100) << false;
        QTest::newRow("no byte-order mark: present unchecked")
            << QByteArray("<?xpacket begin=\"\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>no end") << true;
        QTest::newRow("other bytes: present") << QByteArray("GIF89a") << true;
        QTest::newRow("nothing at all: present") << QByteArray() << true;
        QTest::newRow("header at the end") << xmpPacket(QByteArray()).left(51) << false;
        QTest::newRow("header closed at the end") << xmpPacket(QByteArray()).left(53) << false;
        // "??>" closes no header: the second "?" is consumed with the first, so the search runs on
        // to the trailer's "?>", after which nothing is left.
        QTest::newRow("? consumes its follower") << xmpPacket("body").replace("9d\"?>", "9d\"?\?>") << false;
        QTest::newRow("trailer with padding before it")
            << (xmpPacket(QByteArray(4096, ' ')) + QByteArray(2048, '\n')) << true;
    }
    void xmp()
    {
        QFETCH(QByteArray, bytes);
        QByteArray device = QByteArray("prefix") + bytes;
        QBuffer buffer(&device);
        buffer.open(QIODevice::ReadOnly);
        Xmp xmp;
        QTEST(xmp.Init(&buffer, 6), "ok");
    }
};

QTEST_GUILESS_MAIN(TestIptcXmp)
#include "tst_iptcxmp.moc"
