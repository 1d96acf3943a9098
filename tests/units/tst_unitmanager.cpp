#include "tests/units/TestUnitManagers.h"

#include <QLocale>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>

using rkBase::DisplayUnitManager;
using rkBase::UnitManager;
using rkTest::AngleTestManager;
using rkTest::LengthTestManager;

namespace {
const std::string kAngle = "angle";
const std::string kLength = "length";

const double kNotChecked = std::numeric_limits<double>::quiet_NaN();

// Sets the default locale for one scope and puts the C locale back afterwards.
class DefaultLocale {
public:
    explicit DefaultLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(QLocale::c()); }
};

QByteArray rowName(bool comma, const char* name) { return QByteArray(comma ? "de: " : "C: ") + name; }

bool bitEqual(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }
} // namespace

class TestUnitManager : public QObject {
    Q_OBJECT

private slots:
    void init() { QLocale::setDefault(QLocale::c()); }

    void tablesAndKeys();
    void patternText_data();
    void patternText();
    void convert_data();
    void convert();
    void effectivePrecision();

    void print_data();
    void print();
    void shortPrintsUseModelAndDisplayUnits();
    void compoundPrint_data();
    void compoundPrint();
    void compoundAtDisplayUnitZeroPrintsPlainly();
    void compoundWithoutChainPrintsPlainly();

    void parseValue_data();
    void parseValue();
    void parseNumber_data();
    void parseNumber();
    void parseNeedsATable();

    void modelUnitByKey();
    void modelUnitByName();
    void displayUnitSetters();
    void schemesAndCategoryNames();
    void setCategoryRegistersAgain_data();
    void setCategoryRegistersAgain();
    void survivesItsTable();
};

void TestUnitManager::tablesAndKeys()
{
    DisplayUnitManager table;
    LengthTestManager length(kLength, &table);

    QCOMPARE(length.key(), std::string("Length"));
    QCOMPARE(length.category(), kLength);
    QCOMPARE(length.numUnits(), 3);
    QCOMPARE(length.getUnitName(1), QStringLiteral("mile"));
    QCOMPARE(length.getUnitTag(2), QStringLiteral("km"));
    // The row beyond the unit count has no name or tag to show.
    QCOMPARE(length.getUnitName(3), QString());
    QCOMPARE(length.getUnitTag(3), QString());
    QCOMPARE(length.getUnitTag(-1), QString());
    QCOMPARE(length.getUnitKey(QStringLiteral("kilometre")), 2);
    QCOMPARE(length.getUnitKey(QStringLiteral("km")), 2);
    QCOMPARE(length.getUnitKey(QStringLiteral("KM")), -1);
    QCOMPARE(length.getUnitKey(QStringLiteral("yd")), -1);
    QCOMPARE(length.getUnitKey(QStringLiteral("yard")), -1);
    QCOMPARE(length.getModelUnitName(), QStringLiteral("metre"));
    QVERIFY(length.showsUnitTag());
    QVERIFY(!length.getMSP());
}

void TestUnitManager::patternText_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("pattern");

    // Tags go in unescaped and in table order, the row beyond the unit count included.
    QTest::newRow("length") << "length"
                            << R"(([+-]?[\d.,]+(e[+-]?[.,\d]+)?)\s*(m|mi|km|yd)?)";
    QTest::newRow("angle") << "angle"
                           << R"(([+-]?[\d.,]+(e[+-]?[.,\d]+)?)\s*(deg|'|")?)";
    QTest::newRow("empty tag") << "ratio"
                               << R"(([+-]?[\d.,]+(e[+-]?[.,\d]+)?)\s*()?)";
}

void TestUnitManager::patternText()
{
    QFETCH(QString, kind);
    QFETCH(QString, pattern);

    DisplayUnitManager table;
    rkTest::ManagerPtr manager = rkTest::makeTestManager(kind, &table);
    QVERIFY(manager);
    QCOMPARE(manager->regexString(), pattern);
}

void TestUnitManager::convert_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<double>("expected");
    QTest::addColumn<double>("faultyResult"); // what a wrong grouping gives; NaN: exact check only

    const double n = kNotChecked;
    // Equal keys return the value untouched: the arithmetic would give 0.9000000000000001.
    QTest::newRow("equal keys, no arithmetic") << "length" << 0.9 << 1 << 1 << 0.9 << 0.9 * 1609.344 / 1609.344;
    QTest::newRow("from -1") << "length" << 5.0 << -1 << 1 << 5.0 << n;
    QTest::newRow("to -1") << "length" << 5.0 << 1 << -1 << 5.0 << n;
    QTest::newRow("to past the table") << "length" << 5.0 << 0 << 99 << 5.0 << n;
    QTest::newRow("from past the table") << "length" << 5.0 << 4 << 0 << 5.0 << n;
    QTest::newRow("beyond the unit count, inside the table") << "length" << 2.0 << 3 << 0 << 1.8288 << n;
    QTest::newRow("mile to metre") << "length" << 12.0 << 1 << 0 << 19312.128 << n;
    // Multiplication first: the other groupings round differently for these values.
    QTest::newRow("minute to second, multiply first")
        << "angle" << 0.7 << 1 << 2 << 0.7 * (1.0 / 60.0) / (1.0 / 3600.0) << 0.7 * ((1.0 / 60.0) / (1.0 / 3600.0));
    QTest::newRow("second to minute, multiply first")
        << "angle" << 3.3 << 2 << 1 << 3.3 * (1.0 / 3600.0) / (1.0 / 60.0) << 3.3 * ((1.0 / 3600.0) / (1.0 / 60.0));
    QTest::newRow("kilometre to yard, multiply first")
        << "length" << 12.345 << 2 << 3 << 12.345 * 1000.0 / 0.9144 << 12.345 * (1000.0 / 0.9144);
}

void TestUnitManager::convert()
{
    QFETCH(QString, kind);
    QFETCH(double, value);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(double, expected);
    QFETCH(double, faultyResult);

    DisplayUnitManager table;
    rkTest::ManagerPtr manager = rkTest::makeTestManager(kind, &table);
    QVERIFY(manager);

    const double result = manager->convert(value, from, to);
    if (std::isnan(faultyResult)) {
        QCOMPARE(result, expected);
        return;
    }
    QVERIFY2(!bitEqual(expected, faultyResult), "row cannot tell the right result from the faulty one");
    QVERIFY2(bitEqual(result, expected), qPrintable(QString::number(result, 'g', 17)));
}

void TestUnitManager::effectivePrecision()
{
    // Without a table the setup value plays no part.
    LengthTestManager detached(kLength, nullptr, 5);
    QCOMPARE(detached.precision(), 2);
    detached.setCustomPrecision(6);
    QCOMPARE(detached.precision(), 6);

    DisplayUnitManager table;
    LengthTestManager length(kLength, &table, 4);
    QCOMPARE(length.precision(), 4);
    QCOMPARE(table.displayPrecision(kLength), 4);
    length.precision(1);
    QCOMPARE(table.displayPrecision(kLength), 1);
    QCOMPARE(length.precision(), 1);

    // A second manager of the category follows the table, until it has its own precision.
    LengthTestManager other(kLength, &table, 7);
    QCOMPARE(other.precision(), 1);
    other.setCustomPrecision(0);
    QCOMPARE(other.precision(), 0);
    QCOMPARE(table.displayPrecision(kLength), 1);
    table.setPrecision(kLength, 3);
    QCOMPARE(other.precision(), 0);
    QCOMPARE(length.precision(), 3);

    // A manager without a category is never registered and reads the table's default.
    LengthTestManager uncategorised(std::string(), &table, 5);
    QCOMPARE(uncategorised.precision(), 2);
    QCOMPARE(table.size(), std::uint64_t(1));
}

void TestUnitManager::print_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<bool>("withTable");
    QTest::addColumn<int>("displayUnit");
    QTest::addColumn<bool>("positive");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("from");
    QTest::addColumn<int>("to");
    QTest::addColumn<int>("fieldWidth");
    QTest::addColumn<QString>("expected");

    // Precision 2 throughout.
    QTest::newRow("no table: no conversion, no tag")
        << "length" << false << 0 << false << 1.5 << -1 << -1 << 0 << "1.50";
    QTest::newRow("no table, explicit units") << "length" << false << 0 << false << 1.5 << 2 << 0 << 0 << "1500.00 m";
    QTest::newRow("display unit by default") << "length" << true << 2 << false << 1500.0 << -1 << -1 << 0 << "1.50 km";
    QTest::newRow("field width pads on the left")
        << "length" << true << 0 << false << 1.5 << 0 << 0 << 10 << "      1.50 m";
    QTest::newRow("negative, padded") << "length" << true << 0 << false << -1.5 << 0 << 0 << 8 << "   -1.50 m";
    QTest::newRow("longest tag") << "length" << true << 0 << false << 1609.344 << 0 << 1 << 0 << "1.00 mi";
    QTest::newRow("fixed notation, never exponent")
        << "length" << true << 0 << false << 1.0e9 << 0 << 0 << 0 << "1000000000.00 m";
    QTest::newRow("bad target: value as given, no tag")
        << "length" << true << 0 << false << 1.5 << 0 << 99 << 0 << "1.50";
    QTest::newRow("positive: absolute value") << "length" << true << 0 << true << -1.5 << 0 << 0 << 0 << "1.50 m";
    QTest::newRow("positive: converted, then absolute")
        << "length" << true << 2 << true << -2500.0 << -1 << -1 << 6 << "  2.50 km";
    QTest::newRow("positive: bad target still gets the blank")
        << "length" << true << 0 << true << -1.5 << 0 << 99 << 0 << "1.50 ";
    QTest::newRow("empty tag: trailing blank") << "ratio" << true << 0 << false << 1.5 << -1 << -1 << 0 << "1.50 ";
    QTest::newRow("empty tag, positive") << "ratio" << true << 0 << true << -0.25 << -1 << -1 << 0 << "0.25 ";
}

void TestUnitManager::print()
{
    QFETCH(QString, kind);
    QFETCH(bool, withTable);
    QFETCH(int, displayUnit);
    QFETCH(bool, positive);
    QFETCH(double, value);
    QFETCH(int, from);
    QFETCH(int, to);
    QFETCH(int, fieldWidth);
    QFETCH(QString, expected);

    DisplayUnitManager table;
    rkTest::ManagerPtr manager = rkTest::makeTestManager(kind, withTable ? &table : nullptr);
    QVERIFY(manager);
    manager->displayUnit(displayUnit);

    QString out = QStringLiteral("stale");
    QString& result = positive ? manager->printPositiveValue(out, value, from, to, fieldWidth)
                               : manager->printValue(out, value, from, to, fieldWidth);
    QCOMPARE(&result, &out);
    QCOMPARE(out, expected);
}

void TestUnitManager::shortPrintsUseModelAndDisplayUnits()
{
    DisplayUnitManager table;
    LengthTestManager length(kLength, &table, 3);
    length.displayUnit(2);

    // The short forms pass the precision as the field width; it never shows as padding.
    QCOMPARE(length.printValue(1500.0), QStringLiteral("1.500 km"));
    QCOMPARE(length.printValue(-2.0), QStringLiteral("-0.002 km"));
    QCOMPARE(length.printPositiveValue(-1500.0), QStringLiteral("1.500 km"));
    QCOMPARE(length.convertModelToDisplay(1500.0), 1.5);
    QCOMPARE(length.convertModelToDisplay(1609.344, 1), 1.0);
    QCOMPARE(length.convertDisplayToModel(1.5), 1500.0);
    QCOMPARE(length.getDisplayUnitName(), QStringLiteral("kilometre"));
    QCOMPARE(length.getDisplayUnitTag(), QStringLiteral("km"));

    // printNumber: the value as given, no tag, the effective precision.
    QString out;
    QCOMPARE(length.printNumber(out, 1500.0), QStringLiteral("1500.000"));
    length.setCustomPrecision(0);
    QCOMPARE(length.printNumber(out, 2.4), QStringLiteral("2"));
    QCOMPARE(length.printValue(1600.0), QStringLiteral("2 km"));
}

void TestUnitManager::compoundPrint_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("displayUnit");
    QTest::addColumn<bool>("direct");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("fieldWidth");
    QTest::addColumn<QString>("expected");

    const double dms = 1.0 + 2.0 / 60.0 + 3.5 / 3600.0;
    // Through printValue the field width is always 6; printValueMSP keeps the caller's width.
    // The last part has as many decimals as the display unit's key, whatever the precision.
    QTest::newRow("negative: whole parts rounded towards zero")
        << "angle" << 2 << false << -1.5 << 0 << "-1 deg -30 '   0.00 \"";
    QTest::newRow("positive") << "angle" << 2 << false << 1.5 << 0 << "1 deg 30 '   0.00 \"";
    QTest::newRow("all three parts") << "angle" << 2 << false << dms << 0 << "1 deg 2 '   3.50 \"";
    QTest::newRow("all three parts, negative") << "angle" << 2 << false << -dms << 0 << "-1 deg -2 '  -3.50 \"";
    QTest::newRow("zero: starts with a blank") << "angle" << 2 << false << 0.0 << 0 << "   0.00 \"";
    QTest::newRow("no whole degree") << "angle" << 2 << false << -0.5 << 0 << " -30 '   0.00 \"";
    QTest::newRow("decimals follow display key 1") << "angle" << 1 << false << 1.5 << 0 << "1 deg 30 '    0.0 \"";
    QTest::newRow("printValueMSP keeps its width") << "angle" << 2 << true << dms << 0 << "1 deg 2 ' 3.50 \"";
    QTest::newRow("printValueMSP, wide") << "angle" << 2 << true << dms << 8 << "1 deg 2 '     3.50 \"";
    // A chain whose last unit is none: major and second parts only.
    QTest::newRow("chain without last unit") << "length" << 2 << false << 1500.0 << 0 << "1 km 500 m";
    QTest::newRow("chain without last unit, negative") << "length" << 2 << false << -2500.7 << 0 << "-2 km -500 m";
    QTest::newRow("chain without last unit, no major") << "length" << 2 << true << 500.0 << 0 << " 500 m";
    QTest::newRow("chain without last unit, nothing whole") << "length" << 2 << true << 0.25 << 0 << "";
}

void TestUnitManager::compoundPrint()
{
    QFETCH(QString, kind);
    QFETCH(int, displayUnit);
    QFETCH(bool, direct);
    QFETCH(double, value);
    QFETCH(int, fieldWidth);
    QFETCH(QString, expected);

    DisplayUnitManager table;
    rkTest::ManagerPtr manager = rkTest::makeTestManager(kind, &table, 5);
    QVERIFY(manager);
    manager->displayUnit(displayUnit);
    manager->setMSP(true);

    QString out = QStringLiteral("stale");
    if (direct)
        manager->printValueMSP(out, value, 0, -1, fieldWidth);
    else
        manager->printValue(out, value, 0, -1, fieldWidth);
    QCOMPARE(out, expected);
    QVERIFY(manager->getMSP());
}

void TestUnitManager::compoundAtDisplayUnitZeroPrintsPlainly()
{
    DisplayUnitManager table;
    AngleTestManager angle(kAngle, &table);
    angle.setMSP(true);
    QCOMPARE(angle.displayUnit(), 0);

    // Each of these would recurse for ever if the plain fallback went back into the compound form.
    QString out;
    QCOMPARE(angle.printValue(1.5), QStringLiteral("  1.50 deg"));
    // The positive print shares the compound branch, whose plain fallback is the signed print.
    QCOMPARE(angle.printPositiveValue(-1.5), QStringLiteral(" -1.50 deg"));
    QCOMPARE(angle.printValue(out, -1.5, -1, -1, 12), QStringLiteral(" -1.50 deg"));
    QCOMPARE(angle.printValueMSP(out, 1.5, -1, 1, 0), QStringLiteral(" 90.00 '"));
    QVERIFY(angle.getMSP());

    // With msp off, the compound form itself falls back to the plain one, also at width 6.
    angle.setMSP(false);
    angle.displayUnit(2);
    QCOMPARE(angle.printValueMSP(out, 1.5, 0, 1, 0), QStringLiteral(" 90.00 '"));
    QVERIFY(!angle.getMSP());
}

void TestUnitManager::compoundWithoutChainPrintsPlainly()
{
    DisplayUnitManager table;
    LengthTestManager length(kLength, &table);
    length.displayUnit(1); // miles: no chain
    length.setMSP(true);

    QString out;
    // From printValue the width is already 6; the direct call keeps its own.
    QCOMPARE(length.printValue(out, 1609.344, 0, -1, 0), QStringLiteral("  1.00 mi"));
    QCOMPARE(length.printValueMSP(out, 3218.688, 0, -1, 9), QStringLiteral("     2.00 mi"));
    QVERIFY(length.getMSP());
    // Without a table the compound form goes on to the chain; there is none, so plain at the
    // caller's width.
    LengthTestManager detached(kLength, nullptr);
    detached.setMSP(true);
    QCOMPARE(detached.printValueMSP(out, 1.5, 0, 0, 0), QStringLiteral("1.50 m"));
}

namespace {
// Parse rows for the length manager with kilometres as the display unit and metres as the model.
struct ParseRow {
    const char* name;
    const char* text;
    int to;
    bool ok;
    double value;
    int unit;
};

const double kUntouched = 42.0; // the value a parse starts from
const int kNoUnit = -99;        // the unit output a parse starts from

const ParseRow kParseValueRows[] = {
    {"no tag: display unit", "12", -1, true, 12000.0, 2},
    {"tag", "12 m", -1, true, 12.0, 0},
    {"tag without blank", "12m", -1, true, 12.0, 0},
    {"longest tag wins over the first listed", "12 mi", -1, true, 19312.128, 1},
    {"longest tag, followed by text", "12 mi junk", -1, true, 19312.128, 1},
    {"longest tag, glued on", " 12mi", -1, true, 19312.128, 1},
    {"text after the match is ignored", "12 m junk", -1, true, 12.0, 0},
    {"unanchored, sign and exponent", "  -1.5e3 m", -1, true, -1500.0, 0},
    {"after a letter, plus and negative exponent", "x+2.5e-1 km", -1, true, 250.0, 2},
    {"decimal point", "12.5 m", -1, true, 12.5, 0},
    {"upper-case E ends the number", "1.5E3 m", -1, true, 1500.0, 2},
    {"unknown word: not a tag, display unit", "12 ft", -1, true, 12000.0, 2},
    {"tags are case-sensitive", "12 KM", -1, true, 12000.0, 2},
    {"into another unit", "1 km", 1, true, 1000.0 / 1609.344, 2},
    {"into the display unit", "500 m", 2, true, 0.5, 0},
    {"tag beyond the unit count", "12 yd", -1, false, kNotChecked, kNoUnit},
    {"comma", "1,5", -1, false, 0.0, kNoUnit},
    {"two points", "1.2.3 m", -1, false, 0.0, kNoUnit},
    {"a point alone", ". m", -1, false, 0.0, kNoUnit},
    {"no number: value untouched", "abc", -1, false, kUntouched, kNoUnit},
    {"empty text", "", -1, false, kUntouched, kNoUnit},
};

const ParseRow kParseNumberRows[] = {
    {"at 0: tag ignored", "12 m", -1, true, 12.0, 2},
    {"no conversion", "1.5 mi", -1, true, 1.5, 2},
    {"at 1", " 12", -1, true, 12.0, 2},
    {"at 1 after a letter", "x12", -1, true, 12.0, 2},
    {"at 2 rejected", "  12", -1, false, kNotChecked, kNoUnit},
    {"at 2 after letters rejected", "ab12 km", -1, false, kNotChecked, kNoUnit},
    {"comma", "1,5", -1, false, 0.0, kNoUnit},
    {"no number", "abc", -1, false, kUntouched, kNoUnit},
};

template <std::size_t N> void addParseRows(const ParseRow (&rows)[N])
{
    QTest::addColumn<bool>("commaLocale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("to");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("unit");
    // Every row once more under a locale whose decimal point is a comma: it must change nothing.
    for (bool comma : {false, true})
        for (const ParseRow& row : rows)
            QTest::newRow(rowName(comma, row.name).constData())
                << comma << QString::fromUtf8(row.text) << row.to << row.ok << row.value << row.unit;
}

// The length manager with kilometres shown, under the C or a comma-decimal default locale.
struct ParseFixture {
    explicit ParseFixture(bool comma) : locale(comma ? QLocale(QLocale::German) : QLocale::c()), length(kLength, &table)
    {
        length.displayUnit(2);
    }
    DefaultLocale locale;
    DisplayUnitManager table;
    LengthTestManager length;
};
} // namespace

void TestUnitManager::parseValue_data() { addParseRows(kParseValueRows); }

void TestUnitManager::parseValue()
{
    QFETCH(bool, commaLocale);
    QFETCH(QString, text);
    QFETCH(int, to);
    QFETCH(bool, ok);
    QFETCH(double, value);
    QFETCH(int, unit);
    ParseFixture fixture(commaLocale);
    QCOMPARE(QLocale().decimalPoint(), commaLocale ? QChar(',') : QChar('.'));
    double result = kUntouched;
    int unitOut = kNoUnit;

    QCOMPARE(fixture.length.parseValue(text, result, to, &unitOut), ok);
    if (!std::isnan(value))
        QCOMPARE(result, value);
    QCOMPARE(unitOut, unit);

    // The unit output is optional.
    double again = kUntouched;
    QCOMPARE(fixture.length.parseValue(text, again, to), ok);
    if (!std::isnan(value))
        QCOMPARE(again, value);
}

void TestUnitManager::parseNumber_data() { addParseRows(kParseNumberRows); }

void TestUnitManager::parseNumber()
{
    QFETCH(bool, commaLocale);
    QFETCH(QString, text);
    QFETCH(int, to);
    QFETCH(bool, ok);
    QFETCH(double, value);
    QFETCH(int, unit);
    ParseFixture fixture(commaLocale);
    QCOMPARE(QLocale().decimalPoint(), commaLocale ? QChar(',') : QChar('.'));
    double result = kUntouched;
    int unitOut = kNoUnit;
    Q_UNUSED(to);

    QCOMPARE(fixture.length.parseNumber(text, result, &unitOut), ok);
    if (!std::isnan(value))
        QCOMPARE(result, value);
    QCOMPARE(unitOut, unit);
}

void TestUnitManager::parseNeedsATable()
{
    LengthTestManager detached(kLength, nullptr);
    double value = kUntouched;
    int unit = kNoUnit;
    QVERIFY(!detached.parseValue(QStringLiteral("12 m"), value, -1, &unit));
    QVERIFY(!detached.parseNumber(QStringLiteral("12"), value, &unit));
    QCOMPARE(value, kUntouched);
    QCOMPARE(unit, kNoUnit);
}

void TestUnitManager::modelUnitByKey()
{
    DisplayUnitManager table;
    LengthTestManager length(kLength, &table);
    QSignalSpy changed(&length, &UnitManager::unitChanged);

    for (int ignored : {0, -1, 3, 99})
        length.modelUnit(ignored);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(length.modelUnit(), 0);

    length.modelUnit(2);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toInt(), 2);
    QCOMPARE(length.modelUnit(), 2);
    QCOMPARE(length.getModelUnitName(), QStringLiteral("kilometre"));

    // Rebased factors still give the same conversions, for every row of the table.
    QCOMPARE(length.convert(1.0, 0, 2), 0.001);
    QCOMPARE(length.convert(1.0, 1, 0), 1609.344);
    QCOMPARE(length.convert(2.0, 3, 0), 1.8288);
    QCOMPARE(length.convert(1.0, 2, 3), 1000.0 / 0.9144);
    // Stored values are now kilometres.
    QCOMPARE(length.printValue(1.5), QStringLiteral("1500.00 m"));
    double parsed = 0.0;
    QVERIFY(length.parseValue(QStringLiteral("250 m"), parsed));
    QCOMPARE(parsed, 0.25);

    length.modelUnit(2);
    QCOMPARE(changed.count(), 1);
}

void TestUnitManager::modelUnitByName()
{
    DisplayUnitManager table;
    AngleTestManager angle(kAngle, &table);
    QSignalSpy changed(&angle, &UnitManager::unitChanged);

    // Names only: a tag or an unknown name does nothing.
    angle.modelUnit(QStringLiteral("'"));
    angle.modelUnit(QStringLiteral("grad"));
    QCOMPARE(changed.count(), 0);

    // Unlike the key form, the name form signals even when nothing changes.
    angle.modelUnit(QStringLiteral("degree"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toInt(), 0);

    angle.modelUnit(QStringLiteral("minute"));
    QCOMPARE(changed.count(), 2);
    QCOMPARE(angle.modelUnit(), 1);
    QCOMPARE(angle.convert(1.0, 0, 2), 3600.0);
    QCOMPARE(angle.convert(90.0, 1, 0), 1.5);
    QCOMPARE(angle.printValue(90.0), QStringLiteral("1.50 deg"));

    angle.modelUnit(QStringLiteral("minute"));
    QCOMPARE(changed.count(), 3);
    QCOMPARE(changed.at(2).at(0).toInt(), 1);
    QCOMPARE(angle.convert(1.0, 0, 2), 3600.0);
}

void TestUnitManager::displayUnitSetters()
{
    DisplayUnitManager table;
    LengthTestManager length(kLength, &table);
    QSignalSpy changed(&table, &DisplayUnitManager::unitChanged);

    // Key form: only a unit a user may choose, and only a change, reaches the table.
    for (int ignored : {0, -1, 3, 99})
        length.displayUnit(ignored);
    QCOMPARE(changed.count(), 0);

    // Name form: names only, never tags; the row beyond the unit count cannot be chosen.
    length.displayUnit(QStringLiteral("km"));
    length.displayUnit(QStringLiteral("yard"));
    length.displayUnit(QStringLiteral("furlong"));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(length.displayUnit(), 0);

    length.displayUnit(QStringLiteral("mile"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0), QVariantList({QStringLiteral("length"), 1}));
    QCOMPARE(length.displayUnit(), 1);
    QCOMPARE(table.displayUnit(kLength), 1);

    length.displayUnit(2);
    QCOMPARE(changed.count(), 2);
    QCOMPARE(length.displayUnit(), 2);
}

void TestUnitManager::schemesAndCategoryNames()
{
    DisplayUnitManager table;
    AngleTestManager angle(kAngle, &table);
    QStringList order;
    connect(&table, &DisplayUnitManager::precisionChanged, this,
            [&](const QString&, int p) { order << QStringLiteral("precision %1").arg(p); });
    connect(&table, &DisplayUnitManager::unitChanged, this,
            [&](const QString&, int u) { order << QStringLiteral("unit %1").arg(u); });

    angle.setUnitList(rkBase::DISPLAY_IMPERIAL, 2, 4);
    QCOMPARE(order, QStringList({"unit 2"}));
    QCOMPARE(angle.displayUnit(), 0);

    order.clear();
    angle.setDisplayUnit(rkBase::DISPLAY_IMPERIAL);
    QCOMPARE(order, QStringList({"precision 4", "unit 2"}));
    QCOMPARE(angle.displayUnit(), 2);
    QCOMPARE(angle.precision(), 4);

    // A scheme that was never stored changes nothing.
    order.clear();
    angle.setDisplayUnit(rkBase::DISPLAY_METRIC_XY);
    QCOMPARE(order, QStringList());
    QCOMPARE(angle.displayUnit(), 2);

    // The argument of getCategoryDisplayName plays no part: the manager's own category is asked.
    angle.setCategoryDisplayName(QStringLiteral("Angles"));
    QCOMPARE(angle.getCategoryDisplayName("length"), QStringLiteral("Angles"));
    QCOMPARE(angle.getCategoryFromDisplayName(QStringLiteral("Angles")), kAngle);
    QCOMPARE(angle.getCategoryFromDisplayName(QStringLiteral("angles")), std::string());

    LengthTestManager detached(kLength, nullptr);
    detached.setCategoryDisplayName(QStringLiteral("Lengths"));
    QCOMPARE(detached.getCategoryDisplayName(), QString());
    QCOMPARE(detached.getCategoryFromDisplayName(QStringLiteral("Angles")), std::string());
}

void TestUnitManager::setCategoryRegistersAgain_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<int>("precision");

    QTest::newRow("time keeps four decimals") << "time" << 4;
    QTest::newRow("any other category two") << "depth" << 2;
    QTest::newRow("case matters") << "Time" << 2;
}

void TestUnitManager::setCategoryRegistersAgain()
{
    QFETCH(QString, category);
    QFETCH(int, precision);

    DisplayUnitManager table;
    AngleTestManager angle(kAngle, &table, 6);
    QCOMPARE(table.displayPrecision(kAngle), 6);
    QSignalSpy registered(&table, &DisplayUnitManager::unitRegistered);

    angle.setCategory(category.toStdString());
    QCOMPARE(angle.category(), category.toStdString());
    QCOMPARE(registered.count(), 1);
    QCOMPARE(table.displayPrecision(category), precision);
    QCOMPARE(table.displayUnit(category), 0);
    QCOMPARE(table.find(category)->second.unitNames, QStringList({"degree", "minute", "second"}));
    QCOMPARE(angle.precision(), precision);
    // The old entry stays.
    QCOMPARE(table.displayPrecision(kAngle), 6);

    // Back to a known category: the first registration still wins.
    angle.setCategory(kAngle);
    QCOMPARE(registered.count(), 1);
    QCOMPARE(angle.precision(), 6);
}

void TestUnitManager::survivesItsTable()
{
    auto* table = new DisplayUnitManager;
    LengthTestManager length(kLength, table);
    length.displayUnit(2);
    QCOMPARE(length.printValue(1500.0), QStringLiteral("1.50 km"));

    delete table;
    QCOMPARE(length.displayUnitManager(), static_cast<DisplayUnitManager*>(nullptr));

    // Without a table: no conversion to a display unit, no tag, precision 2, no parsing.
    QCOMPARE(length.printValue(1500.0), QStringLiteral("1500.00"));
    QCOMPARE(length.precision(), 2);
    double value = kUntouched;
    QVERIFY(!length.parseValue(QStringLiteral("1 km"), value));
    QCOMPARE(value, kUntouched);
    // Setters that would reach the table are ignored.
    length.displayUnit(1);
    length.precision(4);
    length.setCategory("time");
    length.setUnitList(rkBase::DISPLAY_METRIC, 1, 1);
    length.setDisplayUnit(rkBase::DISPLAY_METRIC);
    length.setMSP(true);
    QString out;
    QCOMPARE(length.printValue(out, 1500.0, 0, 2, 0), QStringLiteral("1 km 500 m"));
}

QTEST_GUILESS_MAIN(TestUnitManager)
#include "tst_unitmanager.moc"
