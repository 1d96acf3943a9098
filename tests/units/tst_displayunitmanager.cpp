#include "units/DisplayUnitManager.h"

#include <QtTest>

using rkBase::DisplayUnitManager;

namespace {
const std::string kLength = "length";

// A table that logs its signals in arrival order, with the state a listener sees at that moment.
struct LoggedTable : DisplayUnitManager {
    QStringList log;
    LoggedTable()
    {
        connect(this, &DisplayUnitManager::precisionChanged, [this](const QString& c, int p) {
            log << QStringLiteral("%1 precision %2 (unit %3)").arg(c).arg(p).arg(displayUnit(c));
        });
        connect(this, &DisplayUnitManager::unitChanged, [this](const QString& c, int u) {
            log << QStringLiteral("%1 unit %2 (precision %3)").arg(c).arg(u).arg(displayPrecision(c));
        });
        connect(this, &DisplayUnitManager::displayChanged, [this](const QString& c) { log << "display '" + c + "'"; });
        connect(this, &DisplayUnitManager::unitRegistered, [this](const QString& c) { log << "registered " + c; });
        connect(this, &DisplayUnitManager::updateAllAttributes,
                [this](const QString& c) { log << "attrs '" + c + "'"; });
    }
};
} // namespace

class TestDisplayUnitManager : public QObject {
    Q_OBJECT

private slots:
    void registrationNamesAndRefreshes()
    {
        LoggedTable t;
        t.registerUnit(kLength, 1, 3, {"metre", "kilometre"});
        t.registerUnit(kLength, 0, 5, {"foot"});
        // The first registration wins; it fills in no scheme.
        QCOMPARE(t.displayUnit(kLength), 1);
        QCOMPARE(t.displayPrecision(kLength), 3);
        QCOMPARE(t.find(QStringLiteral("length"))->second.unitNames, QStringList({"metre", "kilometre"}));
        QCOMPARE(t.getUnitDisplay(kLength, rkBase::DISPLAY_METRIC), -1);

        // An unknown category reads as the defaults, ignores every write and is never added.
        const std::string unknown = "nowhere";
        QCOMPARE(t.displayUnit(unknown), 0);
        QCOMPARE(t.displayPrecision(QStringLiteral("nowhere")), 2);
        QCOMPARE(t.getPrecisionDisplay(unknown, rkBase::DISPLAY_IMPERIAL), -1);
        t.setUnit(QStringLiteral("nowhere"), 4);
        t.setPrecision(unknown, 6);
        t.update(unknown, 4, 6);
        t.setUnitList(unknown, 4, 6, rkBase::DISPLAY_METRIC);
        t.setCategoryDisplayName(unknown, QStringLiteral("Nowhere"));
        QCOMPARE(t.size(), std::uint64_t(1));

        // Display names: exact and case-sensitive; of several the first in bytewise key order (upper case first).
        for (const char* category : {"zeta", "beta", "Zulu", "gamma"})
            t.registerUnit(category, 0, 2, {"unit"});
        for (const char* category : {"zeta", "gamma", "beta"})
            t.setCategoryDisplayName(category, QStringLiteral("Shared"));
        QCOMPARE(t.getCategoryFromDisplayName(QStringLiteral("shared")), std::string());
        QCOMPARE(t.getCategoryFromDisplayName(QStringLiteral("Shared")), std::string("beta"));
        t.setCategoryDisplayName("Zulu", QStringLiteral("Shared"));
        QCOMPARE(t.getCategoryFromDisplayName(QStringLiteral("Shared")), std::string("Zulu"));
        // Only first registrations signalled above: not the ignored writes, not the display names.
        QCOMPARE(t.log, QStringList({"registered length", "registered zeta", "registered beta", "registered Zulu",
                                     "registered gamma"}));
        // Refreshes need not name a known category.
        t.log.clear();
        t.updateAll();
        t.updateUnitManager(QStringLiteral("length"));
        QCOMPARE(t.log, QStringList({"display ''", "attrs 'length'", "display 'length'"}));
    }

    void writesSignalInOrder()
    {
        LoggedTable t;
        t.registerUnit(kLength, 1, 2, {"metre"});
        t.log.clear();
        // update sends precision first, so a listener sees the new precision with the old unit; -1 or an unchanged
        // value sends nothing, and unit 0 is a unit, not "none".
        t.update(kLength, -1, -1);
        t.update(kLength, 1, 2);
        t.update(kLength, 3, 4);
        t.update(kLength, 0, -1);
        t.update(kLength, -1, 5);
        // setUnit and setPrecision signal a change only; a unit is not checked against the names.
        t.setUnit(kLength, 0);
        t.setPrecision(QStringLiteral("length"), 5);
        t.setUnit(QStringLiteral("length"), 7);
        t.setPrecision(kLength, 1);
        // setUnitList signals always, as a refresh, yet the unit it names does not become the present one.
        t.setUnitList(kLength, 7, 1, rkBase::DISPLAY_METRIC);
        t.setUnitList(kLength, 2, 3, rkBase::DISPLAY_IMPERIAL);
        QCOMPARE(t.log, QStringList({"length precision 4 (unit 1)", "length unit 3 (precision 4)",
                                     "length unit 0 (precision 4)", "length precision 5 (unit 0)",
                                     "length unit 7 (precision 5)", "length precision 1 (unit 7)",
                                     "length unit 7 (precision 1)", "length unit 2 (precision 1)"}));
        QCOMPARE(t.displayUnit(kLength), 7);
        QCOMPARE(t.getUnitDisplay(kLength, rkBase::DISPLAY_IMPERIAL), 2);
        QCOMPARE(t.getPrecisionDisplay(kLength, rkBase::DISPLAY_IMPERIAL), 3);
    }
};

QTEST_GUILESS_MAIN(TestDisplayUnitManager)
#include "tst_displayunitmanager.moc"
