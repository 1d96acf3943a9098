// rktool crs as a process: numbers against cs2cs figures, refusals of typos and hostile values
// with the right exit code, file input.
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <clocale>

namespace {
struct Run {
    int code = -1;
    QString out, err;
};

Run rktool(const QStringList& args)
{
    QProcess p;
    p.start(QStringLiteral(RKTOOL_PATH), args);
    Run r;
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished();
        r.err = QStringLiteral("rktool did not finish");
        return r;
    }
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}
} // namespace

class TestCrsCommand : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { std::setlocale(LC_ALL, "C"); }

    void results_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("expected");
        // Figures from cs2cs (PROJ 9.1).
        QTest::newRow("to UTM") << QStringList{"crs",  "transform",  "--from", "EPSG:4326",
                                               "--to", "EPSG:32631", "3.7",    "45.5"}
                                << "554688.73877"; // cs2cs: 554688.7388 to four places
        QTest::newRow("tolatlong") << QStringList{"crs", "tolatlong", "EPSG:32631", "600000", "4500000"}
                                   << "latitude 40.64479965, longitude 4.182699623";
        QTest::newRow("PROJ string") << QStringList{"crs", "info", "+proj=utm +zone=34 +south +datum=WGS84"}
                                     << "UTM zone: 34 south";
        QTest::newRow("info parameters") << QStringList{"crs", "info", "EPSG:27700"} << "  False Easting: 400000";
        QTest::newRow("geographic area has zero height")
            << QStringList{"crs", "area", "4326"} << "min x -180, min y -90, max x 180, max y -90";
        QTest::newRow("state plane") << QStringList{"crs", "stateplane", "set", "hawaii", "2345"} << "Hawaii zone 2";
        QTest::newRow("NAD27 only zone") << QStringList{"crs", "stateplane", "list", "--nad27"}
                                         << "MICHIGAN: EAST, CENTRAL/M, WEST, NORTH, CENTRAL/L, SOUTH";
        QTest::newRow("catalogue") << QStringList{"crs", "projections"} << "  Zone (integer, 0..60, default 30)";
    }
    void results()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, expected);
        const Run r = rktool(args);
        QCOMPARE(r.code, 0);
        QVERIFY2(r.out.contains(expected), qPrintable(r.out.left(2000)));
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("code");
        QTest::newRow("typo in code") << QStringList{"crs", "info", "EPSG:3263l"} << 2;
        QTest::newRow("unknown code") << QStringList{"crs", "info", "EPSG:99999999"} << 1;
        QTest::newRow("negative code") << QStringList{"crs", "area", "-4326"} << 1;
        QTest::newRow("misspelt projection") << QStringList{"crs", "info", "+proj=utn +zone=31"} << 1;
        QTest::newRow("prose") << QStringList{"crs", "info", "WGS84 please"} << 1;
        QTest::newRow("empty") << QStringList{"crs", "info", ""} << 2;
        QTest::newRow("NaN") << QStringList{"crs", "tolatlong", "EPSG:32631", "nan", "5"} << 2;
        QTest::newRow("infinity") << QStringList{"crs", "fromlatlong", "EPSG:32631", "inf", "3"} << 2;
        QTest::newRow("huge") << QStringList{"crs", "tolatlong", "EPSG:32631", "1e308", "1e308"} << 1;
        QTest::newRow("latitude out of range") << QStringList{"crs", "fromlatlong", "EPSG:32631", "95", "3"} << 2;
        QTest::newRow("not projected") << QStringList{"crs", "tolatlong", "EPSG:4326", "1", "2"} << 1;
        QTest::newRow("missing y") << QStringList{"crs", "transform", "--from", "EPSG:4326", "--to", "EPSG:32631", "3"}
                                   << 2;
        QTest::newRow("unknown verb") << QStringList{"crs", "projectons"} << 2;
        QTest::newRow("unknown option") << QStringList{"crs", "projections", "--jsn"} << 2;
        QTest::newRow("vertical code has no area") << QStringList{"crs", "area", "5703"} << 1;
        QTest::newRow("zone of the other datum") << QStringList{"crs", "stateplane", "set", "MICHIGAN", "EAST"} << 1;
        QTest::newRow("unknown state") << QStringList{"crs", "stateplane", "set", "TEXA"} << 1;
    }
    void refusals()
    {
        QFETCH(QStringList, args);
        QFETCH(int, code);
        const Run r = rktool(args);
        QCOMPARE(r.code, code);
        QVERIFY(r.out.isEmpty());
        QVERIFY2(r.err.startsWith(QStringLiteral("rktool")) && r.err.count(QLatin1Char('\n')) == 1, qPrintable(r.err));
    }

    void fileInputs()
    {
        QTemporaryDir dir;
        QVERIFY(dir.isValid());
        const QString csv = dir.filePath(QStringLiteral("points.csv"));
        QFile f(csv);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("x,y\r\n500000,5000000\r\n# a comment\r\n600000,4500000\r\n");
        f.close();
        Run r = rktool({"crs", "transform", "--from", "EPSG:32631", "--to", "EPSG:4326", "--file", csv});
        QCOMPARE(r.code, 0);
        const QStringList lines = r.out.trimmed().split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 2);
        QCOMPARE(lines[0], QStringLiteral("3,45.153477183"));
        QCOMPARE(lines[1], QStringLiteral("4.182699623,40.64479965"));

        QVERIFY(f.open(QIODevice::Append));
        f.write("1,banana\r\n");
        f.close();
        r = rktool({"crs", "transform", "--from", "EPSG:32631", "--to", "EPSG:4326", "--file", csv});
        QCOMPARE(r.code, 1);
        QVERIFY(r.err.contains(QStringLiteral("line 5")));

        // A .prj of 1 MB of junk is refused without being parsed as a system.
        const QString big = dir.filePath(QStringLiteral("big.prj"));
        QFile b(big);
        QVERIFY(b.open(QIODevice::WriteOnly));
        b.write(QByteArray(1 << 20, 'x') + "\n");
        b.close();
        QCOMPARE(rktool({"crs", "info", big}).code, 1);

        const QString corpus = qEnvironmentVariable("RKBASE_CORPUS");
        if (corpus.isEmpty() || !QFile::exists(corpus + QStringLiteral("/raster/byte.tif")))
            QSKIP("corpus absent");
        r = rktool({"crs", "info", corpus + QStringLiteral("/raster/byte.tif")});
        QCOMPARE(r.code, 0);
        QVERIFY(r.out.contains(QStringLiteral("UTM ( zone:11N )")));
    }
};

QTEST_GUILESS_MAIN(TestCrsCommand)
#include "tst_crscommand.moc"
