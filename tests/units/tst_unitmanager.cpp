#include "tests/units/TestUnitManagers.h"

#include <QLocale>
#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <iterator>
#include <limits>

using rkBase::DisplayUnitManager;
using rkBase::UnitManager;
using rkTest::makeManager;

namespace {
const std::string kAngle = "angle", kLength = "length";
// kAny: a result that is not checked; kUntouched: what a parse starts from.
const double kAny = std::numeric_limits<double>::quiet_NaN(), kUntouched = 42.0;
const int kNoUnit = -99;

// faulty: what a wrong grouping of the arithmetic gives, NaN if none.
// clang-format off
struct ConvertRow { const char *name, *kind; double value; int from, to; double expected, faulty; };
const ConvertRow kConvertRows[] = {
    {"equal keys, no arithmetic", "length", 0.9, 1, 1, 0.9, 0.9 * 1609.344 / 1609.344},
    {"from -1", "length", 5, -1, 1, 5, kAny},
    {"to -1", "length", 5, 1, -1, 5, kAny},
    {"to past the table", "length", 5, 0, 99, 5, kAny},
    {"from past the table", "length", 5, 4, 0, 5, kAny},
    {"beyond the unit count, inside the table", "length", 2, 3, 0, 2 * 0.9144, kAny},
    {"min to s, multiply first", "angle", 0.7, 1, 2, 0.7 * (1. / 60) / (1. / 3600), 0.7 * ((1. / 60) / (1. / 3600))},
    {"km to yd, multiply first", "length", 12.345, 2, 3, 12.345 * 1000 / 0.9144, 12.345 * (1000 / 0.9144)},
};
// clang-format on

using Print = QString& (UnitManager::*)(QString&, double, int, int, int) const;
const Print V = &UnitManager::printValue, P = &UnitManager::printPositiveValue, M = &UnitManager::printValueMSP;
// clang-format off
struct PrintRow { const char *name, *kind; int precision, display; bool msp; Print call; double value; // display -1: none
                  int from, to, width; const char* expected; };
const double kDms = 1 + 2 / 60.0 + 3.5 / 3600;
const PrintRow kPrintRows[] = {
    {"no table: no conversion, no tag", "length", 2, -1, false, V, 1.5, -1, -1, 0, "1.50"},
    {"no table, explicit units", "length", 2, -1, false, V, 1.5, 2, 0, 0, "1500.00 m"},
    {"display unit by default", "length", 2, 2, false, V, 1500, -1, -1, 0, "1.50 km"},
    {"width pads on the left", "length", 2, 0, false, V, -1.5, 0, 0, 8, "   -1.50 m"},
    {"fixed notation", "length", 2, 0, false, V, 1e9, 0, 0, 0, "1000000000.00 m"},
    {"bad target: value as given, no tag", "length", 2, 0, false, V, 1.5, 0, 99, 0, "1.50"},
    {"positive: converted, then absolute", "length", 2, 2, false, P, -2500, -1, -1, 6, "  2.50 km"},
    {"positive: bad target still gets the blank", "length", 2, 0, false, P, -1.5, 0, 99, 0, "1.50 "},
    {"empty tag: trailing blank", "ratio", 2, 0, false, V, 1.5, -1, -1, 0, "1.50 "},
    // Through printValue the width is 6; the last part has as many decimals as the display unit's key.
    {"compound: three parts", "angle", 5, 2, true, V, kDms, 0, -1, 0, "1 deg 2 '   3.50 \""},
    {"compound: three parts, negative", "angle", 5, 2, true, V, -kDms, 0, -1, 0, "-1 deg -2 '  -3.50 \""},
    {"compound: zero starts with a blank", "angle", 5, 2, true, V, 0, 0, -1, 0, "   0.00 \""},
    {"compound: no whole degree", "angle", 5, 2, true, V, -0.5, 0, -1, 0, " -30 '   0.00 \""},
    {"compound: printValueMSP keeps its width", "angle", 5, 2, true, M, kDms, 0, -1, 8, "1 deg 2 '     3.50 \""},
    {"compound without last unit", "length", 5, 2, true, V, 1500, 0, -1, 0, "1 km 500 m"},
    {"compound without last unit, no major", "length", 5, 2, true, M, 500, 0, -1, 0, " 500 m"},
    // Plain fallbacks, each of which would recurse for ever if it went back into the compound form.
    {"display unit 0: plain at width 6", "angle", 2, 0, true, V, -1.5, 0, -1, 12, " -1.50 deg"},
    {"display unit 0, positive: signed", "angle", 2, 0, true, P, -1.5, 0, -1, 0, " -1.50 deg"},
    {"display unit 0, printValueMSP", "angle", 2, 0, true, M, 1.5, 0, 1, 0, " 90.00 '"},
    {"msp off, printValueMSP", "angle", 2, 2, false, M, 1.5, 0, 1, 0, " 90.00 '"},
    {"no chain: plain at width 6", "length", 2, 1, true, V, 1609.344, 0, -1, 0, "  1.00 mi"},
    {"no chain, printValueMSP keeps its width", "length", 2, 1, true, M, 3218.688, 0, -1, 9, "     2.00 mi"},
    {"no table, printValueMSP: no chain", "length", 2, -1, true, M, 1.5, 0, 0, 0, "1.50 m"},
};
// clang-format on

// The length manager with kilometres shown; `number` picks parseNumber, which neither converts nor reads a tag.
// clang-format off
struct ParseRow { const char* name; bool number; const char* text; int to; bool ok; double value; int unit; };
const ParseRow kParseRows[] = {
    {"no tag: display unit", false, "12", -1, true, 12000, 2},
    {"longest tag", false, "12 mi", -1, true, 19312.128, 1},
    {"longest tag, text after it", false, "12 mi junk", -1, true, 19312.128, 1},
    {"sign and exponent", false, "-1.5e3 m", -1, true, -1500, 0},
    {"unanchored, plus and negative exponent", false, "x+2.5e-1 km", -1, true, 250, 2},
    {"upper-case E ends the number", false, "1.5E3 m", -1, true, 1500, 2},
    {"tags are case-sensitive", false, "12 KM", -1, true, 12000, 2},
    {"into another unit", false, "1 km", 1, true, 1000 / 1609.344, 2},
    {"tag beyond the unit count", false, "12 yd", -1, false, kAny, kNoUnit},
    {"comma", false, "1,5", -1, false, 0, kNoUnit},
    {"no number: value untouched", false, "abc", -1, false, kUntouched, kNoUnit},
    {"number: no conversion, tag ignored", true, "1.5 mi", -1, true, 1.5, 2},
    {"number at 1", true, "x12", -1, true, 12, 2},
    {"number at 2 rejected", true, "  12", -1, false, kAny, kNoUnit},
    {"number: comma", true, "1,5", -1, false, 0, kNoUnit},
    {"number: none", true, "abc", -1, false, kUntouched, kNoUnit},
};
// clang-format on

template <typename Row, std::size_t N> void addRows(const Row (&rows)[N])
{
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < N; ++i)
        QTest::newRow(rows[i].name) << int(i);
}
} // namespace

class TestUnitManager : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void tablesAndPattern()
    {
        DisplayUnitManager table;
        // Tags go in unescaped and in table order, the row beyond the unit count included.
        QCOMPARE(makeManager(kLength, &table)->regexString(), R"(([+-]?[\d.,]+(e[+-]?[.,\d]+)?)\s*(m|mi|km|yd)?)");
        QCOMPARE(makeManager(kAngle, &table)->regexString(), "([+-]?[\\d.,]+(e[+-]?[.,\\d]+)?)\\s*(deg|'|\")?");
        QCOMPARE(makeManager("ratio", &table)->regexString(), R"(([+-]?[\d.,]+(e[+-]?[.,\d]+)?)\s*()?)");

        auto length = makeManager(kLength, &table);
        QCOMPARE(length->getUnitName(3), QString());
        QCOMPARE(length->getUnitTag(-1), QString());
        const QVector<int> keys = {length->getUnitKey("kilometre"), length->getUnitKey("km"), length->getUnitKey("KM"),
                                   length->getUnitKey("yd")};
        QCOMPARE(keys, QVector<int>({2, 2, -1, -1}));
    }

    void convert_data() { addRows(kConvertRows); }
    void convert()
    {
        QFETCH(int, row);
        const ConvertRow& r = kConvertRows[row];
        const double result = makeManager(r.kind, nullptr)->convert(r.value, r.from, r.to);
        QVERIFY2(result == r.expected, qPrintable(QString::number(result, 'g', 17)));
        QVERIFY2(!(r.faulty == r.expected), "the row cannot tell the right result from the faulty one");
    }

    void precision()
    {
        // Without a table the setup value plays no part.
        QCOMPARE(makeManager(kLength, nullptr, 5)->precision(), 2);
        // Managers of one category share the table's precision until one has its own, which the table never sees.
        DisplayUnitManager table;
        auto length = makeManager(kLength, &table, 4), other = makeManager(kLength, &table, 7);
        QCOMPARE(other->precision(), 4);
        length->precision(1);
        QCOMPARE(other->precision(), 1);
        other->setCustomPrecision(0);
        QCOMPARE(length->precision(), 1);
        table.setPrecision(kLength, 3);
        QCOMPARE(other->precision(), 0);
        // A manager without a category is never registered.
        QCOMPARE(makeManager(kAngle, &table, 5, false)->precision(), 2);
        QCOMPARE(table.size(), std::uint64_t(1));

        // setCategory registers anew, with four decimals for "time" alone; the first registration wins.
        auto angle = makeManager(kAngle, &table, 6);
        for (const char* category : {"time", "Time", "angle"})
            angle->setCategory(category);
        QCOMPARE(table.displayPrecision(QStringLiteral("time")), 4);
        QCOMPARE(table.displayPrecision(QStringLiteral("Time")), 2);
        QCOMPARE(table.find(QStringLiteral("Time"))->second.unitNames, QStringList({"degree", "minute", "second"}));
        QCOMPARE(angle->precision(), 6);
    }

    void print_data() { addRows(kPrintRows); }
    void print()
    {
        QFETCH(int, row);
        const PrintRow& r = kPrintRows[row];
        DisplayUnitManager table;
        auto m = makeManager(r.kind, r.display < 0 ? nullptr : &table, r.precision);
        m->displayUnit(r.display);
        m->setMSP(r.msp);
        QString out = QStringLiteral("stale");
        QCOMPARE((m.get()->*r.call)(out, r.value, r.from, r.to, r.width), QString::fromUtf8(r.expected));
        QCOMPARE(m->getMSP(), r.msp);
    }

    void parse_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("comma");
        // Every row once more under a locale whose decimal point is a comma: it must change nothing.
        for (bool comma : {false, true})
            for (int i = 0; i < int(std::size(kParseRows)); ++i)
                QTest::newRow(QByteArray(comma ? "de: " : "C: ").append(kParseRows[i].name).constData()) << i << comma;
    }
    void parse()
    {
        QFETCH(int, row);
        QFETCH(bool, comma);
        const ParseRow& r = kParseRows[row];
        QLocale::setDefault(comma ? QLocale(QLocale::German) : QLocale::c());
        QCOMPARE(QLocale().decimalPoint(), comma ? QChar(',') : QChar('.'));
        DisplayUnitManager table;
        auto m = makeManager(kLength, &table);
        m->displayUnit(2);
        const QString text = QString::fromUtf8(r.text);
        double value = kUntouched, again = kUntouched;
        int unit = kNoUnit;
        QCOMPARE(r.number ? m->parseNumber(text, value, &unit) : m->parseValue(text, value, r.to, &unit), r.ok);
        QCOMPARE(unit, r.unit);
        // The unit output is optional.
        QCOMPARE(r.number ? m->parseNumber(text, again) : m->parseValue(text, again, r.to), r.ok);
        if (!std::isnan(r.value))
            QCOMPARE(value, r.value);
    }

    void modelUnit()
    {
        DisplayUnitManager table;
        auto length = makeManager(kLength, &table), angle = makeManager(kAngle, &table);
        QSignalSpy byKey(length.get(), &UnitManager::unitChanged), byName(angle.get(), &UnitManager::unitChanged);
        // By key only a change to a unit within the count signals; by name (not tag) any known one, changed or not.
        for (int unit : {0, -1, 3, 2, 2})
            length->modelUnit(unit);
        for (const char* name : {"'", "grad", "degree", "minute", "minute"})
            angle->modelUnit(QString(name));
        QCOMPARE(byKey.count(), 1);
        QCOMPARE(byKey.at(0).at(0).toInt(), 2);
        QCOMPARE(byName.count(), 3);
        QCOMPARE(byName.at(2).at(0).toInt(), 1);
        // Every row is rebased, so conversions stay and stored values are now kilometres or minutes.
        QCOMPARE(length->convert(2.0, 3, 0), 1.8288);
        QCOMPARE(length->printValue(1.5), QStringLiteral("1500.00 m"));
        QCOMPARE(angle->convert(1.0, 0, 2), 3600.0);
        QCOMPARE(angle->printValue(90.0), QStringLiteral("1.50 deg"));
    }

    void forwardsToTheTable()
    {
        DisplayUnitManager table;
        auto length = makeManager(kLength, &table);
        QSignalSpy changed(&table, &DisplayUnitManager::unitChanged);
        // Only a change to a unit a user may choose, by key or by name (never by tag), reaches the table.
        for (int ignored : {0, -1, 3})
            length->displayUnit(ignored);
        for (const char* ignored : {"km", "yard", "furlong", "kilometre"})
            length->displayUnit(QString(ignored));
        QCOMPARE(changed.count(), 1);
        QCOMPARE(length->convertModelToDisplay(1500.0), 1.5);
        QCOMPARE(length->convertDisplayToModel(1.5), 1500.0);
        // The short forms pass the precision as the field width: never wider than the number.
        length->setCustomPrecision(0);
        QCOMPARE(length->printValue(1600.0), QStringLiteral("2 km"));
        QCOMPARE(length->printPositiveValue(-2600.0), QStringLiteral("3 km"));
        QString out;
        QCOMPARE(length->printNumber(out, 2400.0), QStringLiteral("2400")); // no conversion, no tag

        auto angle = makeManager(kAngle, &table);
        angle->setUnitList(rkBase::DISPLAY_IMPERIAL, 2, 4);
        angle->setDisplayUnit(rkBase::DISPLAY_IMPERIAL);
        QCOMPARE(angle->displayUnit(), 2);
        QCOMPARE(angle->precision(), 4);
        // The argument of getCategoryDisplayName plays no part: the manager's own category is asked.
        angle->setCategoryDisplayName(QStringLiteral("Angles"));
        QCOMPARE(angle->getCategoryDisplayName(kLength), QStringLiteral("Angles"));
        QCOMPARE(angle->getCategoryFromDisplayName(QStringLiteral("Angles")), kAngle);
    }

    void survivesItsTable()
    {
        auto* table = new DisplayUnitManager;
        auto length = makeManager(kLength, table);
        delete table;
        // No display unit, no tag, no parsing; what would reach the table is ignored.
        length->displayUnit(1);
        length->precision(4);
        length->setCategory("time");
        length->setCategoryDisplayName(QStringLiteral("Lengths"));
        length->setUnitList(rkBase::DISPLAY_METRIC, 1, 1);
        length->setDisplayUnit(rkBase::DISPLAY_METRIC);
        QCOMPARE(length->getCategoryDisplayName(), QString());
        QCOMPARE(length->printValue(1500.0), QStringLiteral("1500.00"));
        double value = kUntouched;
        int unit = kNoUnit;
        QVERIFY(!length->parseValue(QStringLiteral("1 km"), value, -1, &unit));
        QVERIFY(!length->parseNumber(QStringLiteral("12"), value, &unit));
        QVERIFY(value == kUntouched && unit == kNoUnit);
    }
};

QTEST_GUILESS_MAIN(TestUnitManager)
#include "tst_unitmanager.moc"
