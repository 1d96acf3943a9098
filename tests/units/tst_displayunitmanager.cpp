#include "units/DisplayUnitManager.h"

#include <QSignalSpy>
#include <QStringList>
#include <QtTest>

using rkBase::DisplayUnitId;
using rkBase::DisplayUnitManager;

namespace {
const std::string kLength = "length";
// A scheme beyond the three named ones (3 is still a valid value of the enumeration's type).
const DisplayUnitId kFourthScheme = static_cast<DisplayUnitId>(3);

// Records every signal of a table in the order it arrives, with the state the listener sees.
class SignalLog : public QObject {
public:
    explicit SignalLog(DisplayUnitManager* table) : m_table(table)
    {
        connect(table, &DisplayUnitManager::precisionChanged, this, [this](const QString& c, int p) {
            entries << QStringLiteral("precision %1 %2 (unit %3)").arg(c).arg(p).arg(m_table->displayUnit(c));
        });
        connect(table, &DisplayUnitManager::unitChanged, this, [this](const QString& c, int u) {
            entries << QStringLiteral("unit %1 %2 (precision %3)").arg(c).arg(u).arg(m_table->displayPrecision(c));
        });
        connect(table, &DisplayUnitManager::displayChanged, this,
                [this](const QString& c) { entries << QStringLiteral("display '%1'").arg(c); });
        connect(table, &DisplayUnitManager::unitRegistered, this,
                [this](const QString& c) { entries << QStringLiteral("registered %1").arg(c); });
        connect(table, &DisplayUnitManager::updateAllAttributes, this,
                [this](const QString& c) { entries << QStringLiteral("attributes '%1'").arg(c); });
    }
    QStringList entries;

private:
    DisplayUnitManager* m_table;
};
} // namespace

class TestDisplayUnitManager : public QObject {
    Q_OBJECT

private slots:
    void firstRegistrationWins();
    void unknownCategoryKeepsDefaultsAndStaysUnknown();
    void updateSignalsPrecisionBeforeUnit_data();
    void updateSignalsPrecisionBeforeUnit();
    void setUnitAndPrecisionSignalOnlyOnChange();
    void setUnitListAlwaysSignals();
    void displayNames();
    void displayNameLookupTakesFirstInKeyOrder();
    void refreshSignals();
};

void TestDisplayUnitManager::firstRegistrationWins()
{
    DisplayUnitManager table;
    QSignalSpy registered(&table, &DisplayUnitManager::unitRegistered);

    table.registerUnit(kLength, 1, 3, {"metre", "kilometre"});
    table.registerUnit(kLength, 0, 5, {"foot"});

    QCOMPARE(registered.count(), 1);
    QCOMPARE(registered.at(0).at(0).toString(), QStringLiteral("length"));
    QCOMPARE(table.displayUnit(kLength), 1);
    QCOMPARE(table.displayPrecision(kLength), 3);
    QCOMPARE(table.size(), std::uint64_t(1));
    auto it = table.find(QStringLiteral("length"));
    QVERIFY(it != table.end());
    QCOMPARE(it->second.unitNames, QStringList({"metre", "kilometre"}));
    // Registration fills in neither the display name nor any scheme.
    QVERIFY(it->second.displayName.isEmpty());
    QCOMPARE(table.getUnitDisplay(kLength, rkBase::DISPLAY_METRIC), -1);
    QCOMPARE(table.getPrecisionDisplay(kLength, rkBase::DISPLAY_METRIC), -1);
}

void TestDisplayUnitManager::unknownCategoryKeepsDefaultsAndStaysUnknown()
{
    DisplayUnitManager table;
    table.registerUnit(kLength, 1, 3, {"metre", "kilometre"});
    SignalLog log(&table);

    const std::string unknown = "nowhere";
    QCOMPARE(table.displayUnit(unknown), 0);
    QCOMPARE(table.displayPrecision(unknown), 2);
    QCOMPARE(table.displayUnit(QStringLiteral("nowhere")), 0);
    QCOMPARE(table.displayPrecision(QStringLiteral("nowhere")), 2);
    QCOMPARE(table.getUnitDisplay(unknown, rkBase::DISPLAY_IMPERIAL), -1);
    QCOMPARE(table.getPrecisionDisplay(unknown, rkBase::DISPLAY_IMPERIAL), -1);
    QCOMPARE(table.getCategoryDisplayName(unknown), QString());

    table.setUnit(unknown, 4);
    table.setUnit(QStringLiteral("nowhere"), 4);
    table.setPrecision(unknown, 6);
    table.setPrecision(QStringLiteral("nowhere"), 6);
    table.update(unknown, 4, 6);
    table.setUnitList(unknown, 4, 6, rkBase::DISPLAY_METRIC);
    table.setCategoryDisplayName(unknown, QStringLiteral("Nowhere"));

    // Neither the reads nor the ignored writes may add an entry.
    QCOMPARE(table.size(), std::uint64_t(1));
    QVERIFY(table.find(unknown) == table.end());
    QCOMPARE(table.getCategoryFromDisplayName(QStringLiteral("Nowhere")), std::string());
    QCOMPARE(log.entries, QStringList());
    QCOMPARE(table.displayUnit(kLength), 1);
    QCOMPARE(table.displayPrecision(kLength), 3);
}

void TestDisplayUnitManager::updateSignalsPrecisionBeforeUnit_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("precision");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<int>("unitAfter");
    QTest::addColumn<int>("precisionAfter");

    // The table starts at unit 1, precision 2.
    QTest::newRow("both new: precision first, seen with the old unit")
        << 3 << 4 << QStringList{"precision length 4 (unit 1)", "unit length 3 (precision 4)"} << 3 << 4;
    QTest::newRow("both -1: nothing") << -1 << -1 << QStringList() << 1 << 2;
    QTest::newRow("both unchanged: nothing") << 1 << 2 << QStringList() << 1 << 2;
    QTest::newRow("precision only") << -1 << 5 << QStringList{"precision length 5 (unit 1)"} << 1 << 5;
    QTest::newRow("unit only, precision unchanged") << 0 << 2 << QStringList{"unit length 0 (precision 2)"} << 0 << 2;
    QTest::newRow("unit 0 is a real unit, not 'none'")
        << 0 << -1 << QStringList{"unit length 0 (precision 2)"} << 0 << 2;
}

void TestDisplayUnitManager::updateSignalsPrecisionBeforeUnit()
{
    QFETCH(int, unit);
    QFETCH(int, precision);
    QFETCH(QStringList, expected);
    QFETCH(int, unitAfter);
    QFETCH(int, precisionAfter);

    DisplayUnitManager table;
    table.registerUnit(kLength, 1, 2, {"metre", "kilometre", "mile", "foot"});
    SignalLog log(&table);
    QSignalSpy units(&table, &DisplayUnitManager::unitChanged);
    QSignalSpy precisions(&table, &DisplayUnitManager::precisionChanged);

    table.update(kLength, unit, precision);

    QCOMPARE(log.entries, expected);
    QCOMPARE(units.count() + precisions.count(), expected.size());
    QCOMPARE(table.displayUnit(kLength), unitAfter);
    QCOMPARE(table.displayPrecision(kLength), precisionAfter);
}

void TestDisplayUnitManager::setUnitAndPrecisionSignalOnlyOnChange()
{
    DisplayUnitManager table;
    table.registerUnit(kLength, 1, 2, {"metre", "kilometre"});
    QSignalSpy units(&table, &DisplayUnitManager::unitChanged);
    QSignalSpy precisions(&table, &DisplayUnitManager::precisionChanged);

    table.setUnit(kLength, 1);
    table.setPrecision(kLength, 2);
    QCOMPARE(units.count(), 0);
    QCOMPARE(precisions.count(), 0);

    // The unit is not checked against the registered names.
    table.setUnit(QStringLiteral("length"), 7);
    table.setPrecision(QStringLiteral("length"), 0);
    QCOMPARE(units.count(), 1);
    QCOMPARE(units.at(0), QVariantList({QStringLiteral("length"), 7}));
    QCOMPARE(precisions.count(), 1);
    QCOMPARE(precisions.at(0), QVariantList({QStringLiteral("length"), 0}));
    QCOMPARE(table.displayUnit(kLength), 7);
    QCOMPARE(table.displayPrecision(kLength), 0);
}

void TestDisplayUnitManager::setUnitListAlwaysSignals()
{
    DisplayUnitManager table;
    table.registerUnit(kLength, 1, 2, {"metre", "kilometre", "foot"});
    QSignalSpy units(&table, &DisplayUnitManager::unitChanged);
    QSignalSpy precisions(&table, &DisplayUnitManager::precisionChanged);

    // The present values: still a signal, as a refresh.
    table.setUnitList(kLength, 1, 2, rkBase::DISPLAY_METRIC);
    // Another unit: the signal names it, but the present unit stays.
    table.setUnitList(kLength, 2, 1, rkBase::DISPLAY_IMPERIAL);
    // Overwriting a scheme, and a scheme id beyond the three named ones.
    table.setUnitList(kLength, 0, 4, rkBase::DISPLAY_IMPERIAL);
    table.setUnitList(kLength, 2, 6, kFourthScheme);

    QCOMPARE(units.count(), 4);
    QCOMPARE(units.at(0), QVariantList({QStringLiteral("length"), 1}));
    QCOMPARE(units.at(1), QVariantList({QStringLiteral("length"), 2}));
    QCOMPARE(units.at(2), QVariantList({QStringLiteral("length"), 0}));
    QCOMPARE(precisions.count(), 0);
    QCOMPARE(table.displayUnit(kLength), 1);
    QCOMPARE(table.displayPrecision(kLength), 2);

    QCOMPARE(table.getUnitDisplay(kLength, rkBase::DISPLAY_METRIC), 1);
    QCOMPARE(table.getPrecisionDisplay(kLength, rkBase::DISPLAY_METRIC), 2);
    QCOMPARE(table.getUnitDisplay(kLength, rkBase::DISPLAY_IMPERIAL), 0);
    QCOMPARE(table.getPrecisionDisplay(kLength, rkBase::DISPLAY_IMPERIAL), 4);
    QCOMPARE(table.getUnitDisplay(kLength, kFourthScheme), 2);
    QCOMPARE(table.getPrecisionDisplay(kLength, kFourthScheme), 6);
    QCOMPARE(table.getUnitDisplay(kLength, rkBase::DISPLAY_METRIC_XY), -1);
    QCOMPARE(table.getPrecisionDisplay(kLength, rkBase::DISPLAY_METRIC_XY), -1);
}

void TestDisplayUnitManager::displayNames()
{
    DisplayUnitManager table;
    table.registerUnit(kLength, 0, 2, {"metre"});
    SignalLog log(&table);

    table.setCategoryDisplayName(kLength, QStringLiteral("Length"));
    QCOMPARE(table.getCategoryDisplayName(kLength), QStringLiteral("Length"));
    QCOMPARE(table.getCategoryFromDisplayName(QStringLiteral("Length")), kLength);
    // Exact and case-sensitive.
    QCOMPARE(table.getCategoryFromDisplayName(QStringLiteral("length")), std::string());
    QCOMPARE(table.getCategoryFromDisplayName(QStringLiteral("Length ")), std::string());
    QCOMPARE(log.entries, QStringList());
}

void TestDisplayUnitManager::displayNameLookupTakesFirstInKeyOrder()
{
    DisplayUnitManager table;
    // Registered out of key order; keys compare bytewise, so upper case sorts first.
    for (const char* category : {"zeta", "beta", "Zulu", "gamma"})
        table.registerUnit(category, 0, 2, {"unit"});
    table.setCategoryDisplayName("zeta", QStringLiteral("Shared"));
    table.setCategoryDisplayName("gamma", QStringLiteral("Shared"));
    table.setCategoryDisplayName("beta", QStringLiteral("Shared"));
    QCOMPARE(table.getCategoryFromDisplayName(QStringLiteral("Shared")), std::string("beta"));

    table.setCategoryDisplayName("Zulu", QStringLiteral("Shared"));
    QCOMPARE(table.getCategoryFromDisplayName(QStringLiteral("Shared")), std::string("Zulu"));

    QStringList order;
    for (auto it = table.begin(); it != table.end(); ++it)
        order << QString::fromStdString(it->first);
    QCOMPARE(order, QStringList({"Zulu", "beta", "gamma", "zeta"}));
    QCOMPARE(table.size(), std::uint64_t(4));
}

void TestDisplayUnitManager::refreshSignals()
{
    DisplayUnitManager table;
    SignalLog log(&table);
    table.updateAll();
    table.updateUnitManager(QStringLiteral("length"));
    // The table need not know the category it refreshes.
    QCOMPARE(log.entries, QStringList({"display ''", "attributes 'length'", "display 'length'"}));
}

QTEST_GUILESS_MAIN(TestDisplayUnitManager)
#include "tst_displayunitmanager.moc"
