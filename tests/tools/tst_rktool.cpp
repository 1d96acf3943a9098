// rktool as a process: exit codes, help texts, and the units verbs on values whose results are
// known independently.
#include <QJsonDocument>
#include <QJsonObject>
#include <QImage>
#include <QJsonArray>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cmath>

namespace {

struct Run {
    int code = -1;
    QString out;
    QString err;
};

Run rktool(const QStringList& args)
{
    QProcess p;
    p.start(QStringLiteral(RKTOOL_PATH), args);
    Run r;
    if (!p.waitForFinished(30000)) {
        p.kill();
        r.err = QStringLiteral("rktool did not finish");
        return r;
    }
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

} // namespace

class TestRkTool : public QObject {
    Q_OBJECT

private slots:
    void exitCodes_data();
    void exitCodes();
    void helpListsEveryArea();
    void version();
    void convert_data();
    void convert();
    void convertNeedsCategoryWhenAmbiguous();
    void printUnderSchemes();
    void parse();
    void strictReading_data();
    void strictReading();
    void refusals_data();
    void refusals();
    void shortestNumbers();
    void listOneCategory();
    void helpAndVersionForms();
    void listAsJson();
    void tableVerbs();
    void colormapVerbs();
    void tourRuns();
};

void TestRkTool::exitCodes_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("code");
    QTest::newRow("no arguments") << QStringList{} << 2;
    QTest::newRow("help") << QStringList{"--help"} << 0;
    QTest::newRow("unknown area") << QStringList{"nonsense"} << 2;
    QTest::newRow("area help") << QStringList{"units", "--help"} << 0;
    QTest::newRow("verb help") << QStringList{"units", "convert", "--help"} << 0;
    QTest::newRow("no verb") << QStringList{"units"} << 2;
    QTest::newRow("unknown verb") << QStringList{"units", "frobnicate"} << 2;
    QTest::newRow("missing value") << QStringList{"units", "convert", "5", "km"} << 2;
    QTest::newRow("not a number") << QStringList{"units", "convert", "five", "km", "mi"} << 2;
    QTest::newRow("unknown option") << QStringList{"units", "list", "--colour"} << 2;
    QTest::newRow("option without value") << QStringList{"units", "print", "5", "--category"} << 2;
    QTest::newRow("unknown category") << QStringList{"units", "print", "5", "--category", "weight"} << 2;
    QTest::newRow("bad scheme") << QStringList{"units", "list", "--scheme", "3"} << 2;
    QTest::newRow("bad scheme name") << QStringList{"units", "list", "--scheme", "metrc"} << 2;
    QTest::newRow("bad precision") << QStringList{"units", "convert", "1", "m", "ft", "--precision", "x"} << 2;
    QTest::newRow("help of two areas") << QStringList{"help", "units", "version"} << 2;
    // An unknown unit is a failed operation in every verb.
    QTest::newRow("unknown unit, parse") << QStringList{"units", "parse", "5 furlong", "--category", "xy"} << 1;
    QTest::newRow("unknown unit, print") << QStringList{"units", "print", "5", "--category", "xy", "--unit", "fur"} << 1;
    QTest::newRow("unknown unit, convert in a category")
        << QStringList{"units", "convert", "5", "m", "fur", "--category", "xy"} << 1;
    QTest::newRow("unknown units") << QStringList{"units", "convert", "5", "parsec", "km"} << 1;
    QTest::newRow("unreadable text") << QStringList{"units", "parse", "deep", "--category", "xy"} << 1;
    // The pattern reads "W/(m·K)" as a group, so it matches the text "W/m·K", which is no tag.
    QTest::newRow("tag the pattern misreads")
        << QStringList{"units", "parse", QStringLiteral("5 W/m%1K").arg(QChar(0x00B7)), "--category",
                       "thermal conductivity"}
        << 1;
}

void TestRkTool::exitCodes()
{
    QFETCH(QStringList, args);
    QFETCH(int, code);
    const Run r = rktool(args);
    QCOMPARE(r.code, code);
    // Failures and usage errors say why on stderr, in one line, and print nothing else.
    if (code != 0 && !args.isEmpty()) {
        QVERIFY(r.out.isEmpty());
        QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
        QVERIFY(r.err.startsWith(QStringLiteral("rktool")));
    }
}

void TestRkTool::helpListsEveryArea()
{
    const Run r = rktool({"--help"});
    for (const char* area : {"units", "version", "tour"})
        QVERIFY2(r.out.contains(QStringLiteral("\n  %1 ").arg(QLatin1String(area))), area);
    const Run units = rktool({"units", "--help"});
    for (const char* verb : {"list", "convert", "print", "parse"})
        QVERIFY2(units.out.contains(QStringLiteral("rktool units %1").arg(QLatin1String(verb))), verb);
}

void TestRkTool::version()
{
    QVERIFY(rktool({"version"}).out.contains(QStringLiteral("Product name           : rktool\n")));
    const Run json = rktool({"version", "--json"});
    QCOMPARE(QJsonDocument::fromJson(json.out.toUtf8()).object().value(QStringLiteral("build_number")).toString(),
             QStringLiteral("16946"));
}

void TestRkTool::convert_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<double>("expected");
    QTest::addColumn<QString>("tag");
    // 5 km is 5000 / 1609.344 international miles.
    QTest::newRow("km to mi") << QStringList{"5", "km", "mi", "--category", "xy"} << 5000.0 / 1609.344 << "mi";
    QTest::newRow("names") << QStringList{"1", "mile", "foot"} << 5280.0 << "ft";
    QTest::newRow("display name") << QStringList{"1", "km", "m", "--category", "Depth Measure"} << 1000.0 << "m";
    QTest::newRow("temperature") << QStringList{"-40", "degree Celsius", "degree Fahrenheit"} << -40.0
                                 << QStringLiteral("%1F").arg(QChar(0x00B0));
    QTest::newRow("negative value") << QStringList{"-2.5", "MPa", "kPa"} << -2500.0 << "kPa";
    QTest::newRow("percent") << QStringList{"0.25", "fraction", "percent", "--category", "fraction"} << 25.0 << "%";
}

void TestRkTool::convert()
{
    QFETCH(QStringList, args);
    QFETCH(double, expected);
    QFETCH(QString, tag);
    const Run r = rktool(QStringList{"units", "convert"} + args);
    QCOMPARE(r.code, 0);
    const QStringList parts = r.out.trimmed().split(QLatin1Char(' '));
    QCOMPARE(parts.size(), 2);
    bool ok = false;
    const double value = parts[0].toDouble(&ok);
    QVERIFY(ok);
    QVERIFY2(qAbs(value - expected) <= 1e-12 * qMax(1.0, qAbs(expected)), qPrintable(r.out));
    QCOMPARE(parts[1], tag);
}

void TestRkTool::convertNeedsCategoryWhenAmbiguous()
{
    // Square metres and feet are areas and permeabilities, whose factors differ in the last digits.
    const Run r = rktool({"units", "convert", "1", "square metre", "square foot"});
    QCOMPARE(r.code, 2);
    QVERIFY(r.err.contains(QStringLiteral("--category")));
    QCOMPARE(rktool({"units", "convert", "1", "square metre", "square foot", "--category", "area"}).code, 0);
    // A category that lacks a unit is a failure, not a guess.
    QCOMPARE(rktool({"units", "convert", "1", "psi", "km", "--category", "xy"}).code, 1);
}

void TestRkTool::printUnderSchemes()
{
    QCOMPARE(rktool({"units", "print", "1000", "--category", "elevation"}).out, QStringLiteral("1000.0 m\n"));
    QCOMPARE(rktool({"units", "print", "304.8", "--category", "elevation", "--scheme", "1"}).out,
             QStringLiteral("1000.0 ft\n"));
    QCOMPARE(rktool({"units", "print", "304.8", "--category", "xy", "--scheme", "2"}).out, QStringLiteral("304.8 m\n"));
    QCOMPARE(rktool({"units", "print", "1609.344", "--category", "xy", "--unit", "mi"}).out,
             QStringLiteral("1.0 mi\n"));
    const Run json = rktool({"units", "print", "-1609.344", "--category", "xy", "--unit", "mi", "--json"});
    QCOMPARE(QJsonDocument::fromJson(json.out.toUtf8()).object().value(QStringLiteral("display_value")).toDouble(),
             -1.0);
}

void TestRkTool::parse()
{
    const Run r = rktool({"units", "parse", "12.5 km", "--category", "xy", "--json"});
    QCOMPARE(r.code, 0);
    const QJsonObject o = QJsonDocument::fromJson(r.out.toUtf8()).object();
    QCOMPARE(o.value(QStringLiteral("model_value")).toDouble(), 12500.0);
    QCOMPARE(o.value(QStringLiteral("unit_read")).toString(), QStringLiteral("kilometre"));
    // The lenient reading ignores text after the value, as editors do, and says so, on stderr
    // and in the JSON.
    const Run junk = rktool({"units", "parse", "5 furlong", "--category", "xy", "--lenient"});
    QCOMPARE(junk.code, 0);
    QVERIFY(junk.out.startsWith(QStringLiteral("5 m ")));
    QVERIFY2(junk.err.contains(QStringLiteral("'furlong'")), qPrintable(junk.err));
    const Run junkJson = rktool({"units", "parse", "5 furlong", "--category", "xy", "--lenient", "--json"});
    QCOMPARE(QJsonDocument::fromJson(junkJson.out.toUtf8()).object().value(QStringLiteral("ignored")).toString(),
             QStringLiteral("furlong"));
    // Without a tag the display unit of the scheme is read: feet under the imperial one.
    const Run feet = rktool({"units", "parse", "1000", "--category", "elevation", "--scheme", "1", "--json"});
    QCOMPARE(QJsonDocument::fromJson(feet.out.toUtf8()).object().value(QStringLiteral("model_value")).toDouble(),
             304.8);
}

void TestRkTool::strictReading_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("category");
    QTest::addColumn<double>("stored");
    QTest::addColumn<QString>("unitRead");
    const QString minus = QString(QChar(0x2212));
    QTest::newRow("case of a tag") << "100 KPa" << "pressure" << 0.1 << "kilopascal";
    QTest::newRow("plural name") << "5 feet" << "xy" << 1.524 << "foot";
    QTest::newRow("plural of a name") << "2 kilometres" << "xy" << 2000.0 << "kilometre";
    QTest::newRow("upper-case name") << "12 KM" << "xy" << 12000.0 << "kilometre";
    QTest::newRow("typographic minus") << minus + "5 km" << "xy" << -5000.0 << "kilometre";
    QTest::newRow("upper-case exponent") << "5E3" << "xy" << 5000.0 << "metre";
    QTest::newRow("no blank before the unit") << "5km" << "xy" << 5000.0 << "kilometre";
    QTest::newRow("blanks around") << "  7 m  " << "xy" << 7.0 << "metre";
    QTest::newRow("degC") << "20 degC" << "temperature" << 20.0 << QStringLiteral("degree Celsius");
    const QString degree = QString(QChar(0x00B0));
    QTest::newRow("dms with symbols") << "45" + degree + "30'15\"" << "orientation"
                                      << 45 + 30 / 60.0 + 15 / 3600.0 << "degree";
    QTest::newRow("dms with blanks") << "45 30 15" << "orientation" << 45 + 30 / 60.0 + 15 / 3600.0 << "degree";
    QTest::newRow("dms with letters") << "45d30m15s" << "orientation" << 45 + 30 / 60.0 + 15 / 3600.0 << "degree";
    QTest::newRow("negative dms") << "-12" + degree + "5'" << "orientation"
                                  << -(12 + 5 / 60.0) << "degree";
}

void TestRkTool::strictReading()
{
    QFETCH(QString, text);
    QFETCH(QString, category);
    QFETCH(double, stored);
    QFETCH(QString, unitRead);
    const Run r = rktool({"units", "parse", text, "--category", category, "--json"});
    QVERIFY2(r.code == 0, qPrintable(r.err));
    const QJsonObject o = QJsonDocument::fromJson(r.out.toUtf8()).object();
    QVERIFY2(qAbs(o.value(QStringLiteral("model_value")).toDouble() - stored) <= 1e-12 * qMax(1.0, qAbs(stored)),
             qPrintable(r.out));
    QCOMPARE(o.value(QStringLiteral("unit_read")).toString(), unitRead);
    QCOMPARE(o.value(QStringLiteral("reading")).toString(), QStringLiteral("strict"));
}

void TestRkTool::refusals_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("says");
    const QStringList xy{"--category", "xy"};
    QTest::newRow("text before the number") << QStringList{"units", "parse", "abc 5 km"} + xy << 1 << "start with a number";
    QTest::newRow("unknown unit lists the units") << QStringList{"units", "parse", "5 furlong"} + xy << 1 << "ft (foot)";
    QTest::newRow("typo gets a suggestion") << QStringList{"units", "parse", "5 kmm"} + xy << 1 << "did you mean 'km'";
    QTest::newRow("text after the unit") << QStringList{"units", "parse", "5 m junk"} + xy << 1 << "unknown unit";
    QTest::newRow("NaN to parse") << QStringList{"units", "parse", "nan"} + xy << 1 << "NaN and infinities";
    QTest::newRow("infinity to convert") << QStringList{"units", "convert", "-inf", "m", "km"} << 2 << "NaN and infinities";
    QTest::newRow("overflowing result") << QStringList{"units", "convert", "1e308", "km", "m"} << 1 << "too large";
    QTest::newRow("number too large") << QStringList{"units", "parse", "1e999 m"} + xy << 1 << "too large";
    QTest::newRow("minutes of 60") << QStringList{"units", "parse", "12 75 0", "--category", "orientation"} << 1
                                   << "below 60";
    QTest::newRow("empty text") << QStringList{"units", "parse", ""} + xy << 1 << "start with a number";
    QTest::newRow("a megabyte of digits") << QStringList{"units", "parse", QString(100000, QLatin1Char('5')) + " fur"} + xy
                                          << 1 << "characters)";
    QTest::newRow("units differing by case only are not guessed")
        << QStringList{"units", "convert", "1", "Mpa", "PSI", "--category", "pressure"} << 0 << "";
}

void TestRkTool::refusals()
{
    QFETCH(QStringList, args);
    QFETCH(int, code);
    QFETCH(QString, says);
    const Run r = rktool(args);
    QCOMPARE(r.code, code);
    if (code == 0)
        return;
    QVERIFY(r.out.isEmpty());
    QCOMPARE(r.err.count(QLatin1Char('\n')), 1);
    QVERIFY2(r.err.contains(says), qPrintable(r.err));
    QVERIFY(r.err.size() < 400);
}

void TestRkTool::shortestNumbers()
{
    QCOMPARE(rktool({"units", "convert", "1", "ft", "m"}).out, QStringLiteral("0.3048 m\n"));
    QCOMPARE(rktool({"units", "convert", "100", "degC", "K", "--category", "temperature"}).out,
             QStringLiteral("373.15 K\n"));
    QCOMPARE(rktool({"units", "convert", "1", "ft", "m", "--precision", "6"}).out, QStringLiteral("0.304800 m\n"));
    QCOMPARE(rktool({"units", "parse", "1 ft", "--category", "xy"}).out,
             QStringLiteral("0.3048 m (read as foot, stored in metre)\n"));
}

void TestRkTool::listOneCategory()
{
    const Run xy = rktool({"units", "list", "--category", "xy", "--scheme", "imperial"});
    QCOMPARE(xy.code, 0);
    QCOMPARE(xy.out.count(QStringLiteral("\n  units: ")), 1);
    QVERIFY2(xy.out.contains(QStringLiteral("shown as foot with 1 decimal;")), qPrintable(xy.out));
    const Run none = rktool({"units", "list", "--category", "dimensionless"});
    QVERIFY2(none.out.contains(QStringLiteral("units: none: plain numbers only")), qPrintable(none.out));
    QVERIFY(none.out.contains(QStringLiteral("shown as a plain number with 4 decimals")));
    QCOMPARE(rktool({"units", "list", "--category", "xy", "--scheme", "mixed"}).code, 0);
}

void TestRkTool::helpAndVersionForms()
{
    QCOMPARE(rktool({"--version"}).out, rktool({"version"}).out);
    QCOMPARE(rktool({"help", "units"}).out, rktool({"units", "--help"}).out);
    const Run help = rktool({"--help"});
    // Every usage form the main help shows works.
    QVERIFY(help.out.contains(QStringLiteral("rktool --version")));
    QVERIFY(help.out.contains(QStringLiteral("rktool help <area>")));
    const Run unitsHelp = rktool({"units", "--help"});
    for (const char* word : {"--lenient", "strict", "--precision", "metric, imperial or mixed", "45d30m15s"})
        QVERIFY2(unitsHelp.out.contains(QLatin1String(word)), word);
}

void TestRkTool::listAsJson()
{
    const Run r = rktool({"units", "list", "--json", "--scheme", "1"});
    const QJsonArray all = QJsonDocument::fromJson(r.out.toUtf8()).array();
    QCOMPARE(all.size(), 28);
    // Categories come in key order: "age", "area", ..., "xy", "zdimension".
    const QJsonObject xy = all.at(26).toObject();
    QCOMPARE(xy.value(QStringLiteral("category")).toString(), QStringLiteral("xy"));
    QCOMPARE(xy.value(QStringLiteral("display_unit")).toString(), QStringLiteral("foot"));
    QCOMPARE(xy.value(QStringLiteral("units")).toArray().size(), 4);
}

void TestRkTool::tableVerbs()
{
    QTemporaryDir dir;
    const QString plain = dir.filePath(QStringLiteral("plain.csv"));
    QFile f(plain);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("x,dir,name\n1,10,a\n2,350,b\n2,20,c\n3,,d\n7,15,e\n");
    f.close();
    const Run stats = rktool({"table", "stats", plain, "--column", "x", "--json"});
    QCOMPARE(stats.code, 0);
    const QJsonObject x = QJsonDocument::fromJson(stats.out.toUtf8()).array().at(0).toObject();
    QCOMPARE(x.value(QStringLiteral("mean")).toDouble(), 3.0);
    QCOMPARE(x.value(QStringLiteral("count")).toInt(), 5);
    QVERIFY(std::fabs(x.value(QStringLiteral("standard_deviation")).toDouble() - std::sqrt(22.0 / 5.0)) < 1e-12);
    // The default histogram counts every value, the maximum too.
    const Run histogram = rktool({"table", "histogram", plain, "--column", "x", "--json"});
    int total = 0;
    for (const QJsonValue& bin : QJsonDocument::fromJson(histogram.out.toUtf8()).object().value("bins").toArray())
        total += bin.toObject().value(QStringLiteral("value")).toInt();
    QCOMPARE(total, 5);
    const QString converted = dir.filePath(QStringLiteral("out.csv"));
    QCOMPARE(rktool({"table", "convert", plain, converted}).code, 0);
    const Run info = rktool({"table", "info", converted, "--json"});
    QCOMPARE(QJsonDocument::fromJson(info.out.toUtf8()).array().at(0).toObject().value("columns").toArray().size(), 3);
    QCOMPARE(rktool({"table", "stats", dir.filePath("missing.csv")}).code, 1);
    QCOMPARE(rktool({"table", "histogram", plain, "--column", "name"}).code, 1);
    QCOMPARE(rktool({"table", "histogram", plain}).code, 2);
    QCOMPARE(rktool({"table", "convert", plain, plain}).code, 1); // never over its own input
}

void TestRkTool::colormapVerbs()
{
    QTemporaryDir dir;
    const QString cpt = dir.filePath(QStringLiteral("map.cpt"));
    QCOMPARE(rktool({"colormap", "spectrum", cpt, "--min", "0", "--max", "10", "--count", "5"}).code, 0);
    const Run sample = rktool({"colormap", "sample", cpt, "0", "10", "25"});
    QCOMPARE(sample.code, 0);
    QCOMPARE(sample.out, QStringLiteral("0 #FF00FFFF\n10 #0000FFFF\n25 #0000FFFF\n"));
    // The legend: magenta at the left end of the bar, blue at the right, labels below.
    const QString png = dir.filePath(QStringLiteral("legend.png"));
    QCOMPARE(rktool({"colormap", "render", cpt, png, "--size", "300x50"}).code, 0);
    const QImage legend(png);
    QCOMPARE(legend.size(), QSize(300, 50));
    const QColor left(legend.pixel(5, 10)), right(legend.pixel(294, 10));
    QVERIFY2(left.red() == 255 && left.green() == 0 && left.blue() > 230, qPrintable(left.name()));
    QVERIFY2(right.red() == 0 && right.green() < 40 && right.blue() == 255, qPrintable(right.name()));
    // A GMT table in its own forms, with its colour above the range.
    const QString gmt = dir.filePath(QStringLiteral("gmt.cpt"));
    QFile f(gmt);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("0 red 1 0/0/255\nF gray\n");
    f.close();
    QCOMPARE(rktool({"colormap", "sample", gmt, "2", "--gmt"}).out, QStringLiteral("2 #BEBEBEFF\n"));
    QCOMPARE(rktool({"colormap", "info", gmt}).code, 1); // the stated reader finds no colours: says so
    // An HSV table from hue 0 to 360 runs round the whole circle: cyan halfway.
    const QString cyclic = dir.filePath(QStringLiteral("cyclic.cpt"));
    QFile c(cyclic);
    QVERIFY(c.open(QIODevice::WriteOnly));
    c.write("# COLOR_MODEL = hsv\n0 0-1-1 1 360-1-1\n");
    c.close();
    QCOMPARE(rktool({"colormap", "sample", cyclic, "0.5", "--gmt"}).out, QStringLiteral("0.5 #00FFFFFF\n"));
    QCOMPARE(rktool({"colormap", "sample", cpt, "nan"}).code, 2);
    QCOMPARE(rktool({"colormap", "render", cpt, png, "--size", "5"}).code, 2);
    QCOMPARE(rktool({"colormap", "info", dir.filePath("none.cpt")}).code, 1);
}

void TestRkTool::tourRuns()
{
    const Run r = rktool({"tour"});
    QCOMPARE(r.code, 0);
    QVERIFY(r.out.contains(QStringLiteral("== Units ==")));
    QVERIFY(r.out.contains(QStringLiteral("5 km = 3.106855961 mi")));
    QVERIFY(r.err.isEmpty());
}

QTEST_GUILESS_MAIN(TestRkTool)
#include "tst_rktool.moc"
