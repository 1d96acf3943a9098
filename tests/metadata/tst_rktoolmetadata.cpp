// rktool metadata as users run it: output, JSON, thumbnails and exit codes.
#include "metadata/TiffBuilder_p.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

using namespace rkBase::tiffbuild;

namespace {

struct Run {
    int code;
    QByteArray out, err;
};

Run rktool(const QStringList& args)
{
    QProcess p;
    p.start(QStringLiteral(RKTOOL_PATH), args);
    p.waitForFinished(60000);
    return {p.exitCode(), p.readAllStandardOutput(), p.readAllStandardError()};
}

QByteArray jpeg(int w, int h)
{
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(Qt::darkGray);
    QByteArray bytes;
    QBuffer b(&bytes);
    b.open(QIODevice::WriteOnly);
    img.save(&b, "JPG");
    return bytes;
}

// South and west, so that the signs show; a negative altitude (below sea level).
QByteArray photo(bool big)
{
    const QByteArray tiff = Builder(big)
                                .add(Builder::Ifd0, 271, 2, ascii("Survey Cam"))
                                .add(Builder::ExifDir, 33434, 5, rationals({{1, 200}}))
                                .add(Builder::GpsDir, 1, 2, ascii("S"))
                                .add(Builder::GpsDir, 2, 5, rationals({{33, 1}, {52, 1}, {1800, 100}}))
                                .add(Builder::GpsDir, 3, 2, ascii("W"))
                                .add(Builder::GpsDir, 4, 5, rationals({{70, 1}, {30, 1}, {0, 1}}))
                                .add(Builder::GpsDir, 5, 1, QByteArray("\x01", 1))
                                .add(Builder::GpsDir, 6, 5, rationals({{125, 10}}))
                                .thumbnail(jpeg(10, 6))
                                .build();
    const QByteArray iptc = dataset(25, "basalt") + dataset(25, "dyke") + dataset(105, "Contact");
    return withSegments(jpeg(40, 30), exifSegment(tiff) + photoshopSegment(resource(1028, iptc)) +
                                          xmpSegment(xmpPacket("<x:xmpmeta/>")));
}

} // namespace

class TestRkToolMetadata : public QObject {
    Q_OBJECT
    QTemporaryDir m_dir;
    QString write(const QString& name, const QByteArray& bytes)
    {
        QFile f(m_dir.filePath(name));
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
        return f.fileName();
    }

private slots:
    void json_data()
    {
        QTest::addColumn<bool>("big");
        QTest::newRow("II") << false;
        QTest::newRow("MM") << true;
    }
    void json()
    {
        QFETCH(bool, big);
        const QString path = write(QStringLiteral("photo.jpg"), photo(big));
        const Run r = rktool({"metadata", "--json", path});
        QCOMPARE(r.code, 0);
        const QJsonObject o = QJsonDocument::fromJson(r.out).array().at(0).toObject();
        QCOMPARE(o["type"].toString(), QStringLiteral("jpeg"));
        QCOMPARE(o["exif"].toObject()["Make"].toString(), QStringLiteral("Survey Cam"));
        QCOMPARE(o["exif"].toObject()["Exposure Time"].toDouble(), 0.005);
        const QJsonObject gps = o["gps"].toObject();
        QCOMPARE(gps["latitude"].toDouble(), -(33 + 52 / 60.0 + 18 / 3600.0));
        QCOMPARE(gps["longitude"].toDouble(), -70.5);
        QCOMPARE(gps["altitude_m"].toDouble(), -12.5);
        QCOMPARE(o["thumbnail_bytes"].toInt(), jpeg(10, 6).size());
        QCOMPARE(o["iptc"].toObject()["Keywords"].toArray(), (QJsonArray{"basalt", "dyke"}));
        QCOMPARE(o["iptc"].toObject()["Headline"].toString(), QStringLiteral("Contact"));
        QCOMPARE(o["xmp"].toBool(), true);
    }

    void textAndThumbnail()
    {
        const QString path = write(QStringLiteral("shot.jpg"), photo(false));
        const QString out = m_dir.filePath(QStringLiteral("thumbs"));
        const Run r = rktool({"metadata", "--extract-thumbnail", out, path});
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.contains("GPS position: -33.8716667, -70.5000000, altitude -12.5 m"));
        QVERIFY(r.out.contains("Keywords: [basalt; dyke]"));
        QVERIFY(r.out.contains("XMP: present"));
        QFile thumb(out + QStringLiteral("/shot_thumbnail.jpg"));
        QVERIFY(thumb.open(QIODevice::ReadOnly));
        QCOMPARE(QImage::fromData(thumb.readAll()).size(), QSize(10, 6));
    }

    void failures_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        QTest::newRow("no files") << QStringList{"metadata"} << 2 << "give one or more";
        QTest::newRow("unknown option") << QStringList{"metadata", "--jsonn", "x.jpg"} << 2 << "unknown option --jsonn";
        QTest::newRow("option without folder")
            << QStringList{"metadata", "--extract-thumbnail"} << 2 << "needs a value";
        QTest::newRow("missing file") << QStringList{"metadata", "/nonexistent/x.jpg"} << 1 << "cannot open";
        QTest::newRow("text file") << QStringList{"metadata", "@text"} << 1 << "not a JPEG or TIFF";
        QTest::newRow("folder") << QStringList{"metadata", "@dir"} << 1 << "is a folder";
    }
    void failures()
    {
        QFETCH(QStringList, args);
        for (QString& a : args) {
            if (a == QLatin1String("@text"))
                a = write(QStringLiteral("notes.jpg"), "strike 120 dip 45\n");
            else if (a == QLatin1String("@dir"))
                a = m_dir.path();
        }
        const Run r = rktool(args);
        QTEST(r.code, "code");
        QFETCH(QString, message);
        QVERIFY2(r.err.contains(message.toUtf8()), r.err.constData());
        QCOMPARE(r.err.count('\n'), 1);
    }

    void goodFilesStillShownBesideBadOnes()
    {
        const QString good = write(QStringLiteral("good.jpg"), photo(true));
        const Run r = rktool({"metadata", "/nonexistent/a.jpg", good});
        QCOMPARE(r.code, 1);
        QVERIFY(r.out.contains("Make: Survey Cam"));
    }
};

QTEST_GUILESS_MAIN(TestRkToolMetadata)
#include "tst_rktoolmetadata.moc"
