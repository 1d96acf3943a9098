// The strict reading of typed values: what a form or a command line accepts without guessing,
// checked on the catalogue's own managers.
#include "tests/units/TestUnitManagers.h"
#include "units/DisplayUnitManager.h"
#include "units/UnitManagers.h"
#include "units/UnitRegistry.h"

#include <QtTest>

#include <cmath>

using namespace rkBase;

class TestStrictReading : public QObject {
    Q_OBJECT

    UnitRegistry m_registry;

private slots:
    void parse_data()
    {
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<double>("stored"); // in the model unit
        QTest::addColumn<int>("used");      // characters understood
        const QString minus = QString(QChar(0x2212));
        // category xy: model metre, display metre (metric scheme)
        QTest::newRow("number only: display unit") << "xy" << "12.5" << true << 12.5 << 4;
        QTest::newRow("tag") << "xy" << "12.5 km" << true << 12500.0 << 7;
        QTest::newRow("name") << "xy" << "2 mile" << true << 3218.688 << 6;
        QTest::newRow("plural") << "xy" << "2 miles" << true << 3218.688 << 7;
        QTest::newRow("irregular plural") << "xy" << "10 feet" << true << 3.048 << 7;
        QTest::newRow("case where unique") << "xy" << "1 KM" << true << 1000.0 << 4;
        QTest::newRow("exponent, either case") << "xy" << "1.5E3" << true << 1500.0 << 5;
        QTest::newRow("typographic minus") << "xy" << minus + "3 m" << true << -3.0 << 4;
        QTest::newRow("typographic minus in the exponent") << "xy" << "3e" + minus + "1 m" << true << 0.3 << 6;
        QTest::newRow("leading point") << "xy" << ".5 m" << true << 0.5 << 4;
        QTest::newRow("blanks around") << "xy" << "  4 m " << true << 4.0 << 6;
        QTest::newRow("text before") << "xy" << "abc 5 km" << false << 0.0 << 0;
        QTest::newRow("unknown unit") << "xy" << "5 furlong" << false << 0.0 << 1;
        QTest::newRow("text after the unit") << "xy" << "5 m junk" << false << 0.0 << 1;
        QTest::newRow("comma") << "xy" << "1,5 m" << false << 0.0 << 1;
        QTest::newRow("two points") << "xy" << "1.2.3" << false << 0.0 << 3;
        QTest::newRow("NaN") << "xy" << "nan" << false << 0.0 << 0;
        QTest::newRow("infinity") << "xy" << "inf m" << false << 0.0 << 0;
        QTest::newRow("too large") << "xy" << "1e999 m" << false << 0.0 << 5;
        QTest::newRow("empty") << "xy" << "" << false << 0.0 << 0;
        QTest::newRow("sign alone") << "xy" << "- m" << false << 0.0 << 0;
        // glyph tags typed in ASCII
        QTest::newRow("squared as ^2") << "area" << "2 m^2" << true << 2.0 << 5;
        QTest::newRow("squared as 2") << "area" << "3 ft2" << true << 3 * 0.3048 * 0.3048 << 5;
        QTest::newRow("degC") << "temperature" << "20 degC" << true << 20.0 << 7;
        QTest::newRow("degF") << "temperature" << "212 degF" << true << 100.0 << 8;
        QTest::newRow("micro as u") << "grain size" << "250 um" << true << 0.25 << 6;
        QTest::newRow("Greek mu") << "grain size" << QString("250 ") + QChar(0x03BC) + "m" << true << 0.25 << 6;
    }
    void parse()
    {
        QFETCH(QString, category);
        QFETCH(QString, text);
        QFETCH(bool, ok);
        QFETCH(double, stored);
        QFETCH(int, used);
        const boost::shared_ptr<UnitManager> m = m_registry.getCategory(category);
        QVERIFY(m);
        double value = 42.0;
        int unit = -5, understood = -5;
        QCOMPARE(m->parseValueStrict(text, value, -1, &unit, &understood), ok);
        QCOMPARE(understood, used);
        if (!ok) {
            QCOMPARE(value, 42.0); // untouched
            QCOMPARE(unit, -5);
            return;
        }
        QVERIFY2(std::fabs(value - stored) <= 1e-12 * qMax(1.0, std::fabs(stored)), qPrintable(QString::number(value, 'g', 17)));
        QVERIFY(unit >= 0 && unit < m->numUnits());
    }

    // Where two units differ by case alone, case decides and nothing is guessed.
    void caseOnlyDifferencesAreNotGuessed()
    {
        // Megametre and millimetre differ by case alone: "MM" is refused, the exact tags still work.
        rkTest::TestManager mm("", nullptr, 2, 2, {{1e6, "megametre", "Mm"}, {1e-3, "millimetre", "mm"}}, -1, {-1, -1, -1});
        QCOMPARE(mm.findUnit(QStringLiteral("MM")), -1);
        QCOMPARE(mm.findUnit(QStringLiteral("Mm")), 0);
        QCOMPARE(mm.findUnit(QStringLiteral("mm")), 1);
        QCOMPARE(mm.findUnit(QStringLiteral("MILLIMETRE")), 1); // the names do not clash
        // Permeability: "D" (darcy) and "mD" (millidarcy); pressure: "MPa" and "kPa".
        const boost::shared_ptr<UnitManager> p = m_registry.getCategory(UnitRegistry::CATEGORY_PERMEABILITY);
        QCOMPARE(p->findUnit(QStringLiteral("mD")), p->getUnitKey(QStringLiteral("mD")));
        QCOMPARE(p->findUnit(QStringLiteral("md")), p->getUnitKey(QStringLiteral("mD")));
        const boost::shared_ptr<UnitManager> time = m_registry.getCategory(UnitRegistry::CATEGORY_TIME);
        // "ms" and "MS" would both be millisecond: a unique fold is accepted.
        QCOMPARE(time->findUnit(QStringLiteral("MS")), time->getUnitKey(QStringLiteral("ms")));
        QCOMPARE(time->findUnit(QStringLiteral("parsec")), -1);
        QCOMPARE(time->findUnit(QString()), -1);
    }

    void nearestNames()
    {
        const boost::shared_ptr<UnitManager> xy = m_registry.getCategory(UnitRegistry::CATEGORY_XY);
        QCOMPARE(xy->nearestUnits(QStringLiteral("kmm")).value(0), QStringLiteral("km"));
        QCOMPARE(xy->nearestUnits(QStringLiteral("metr")).value(0), QStringLiteral("metre"));
        QVERIFY(xy->nearestUnits(QStringLiteral("xyzzyplugh")).isEmpty());
    }

    void readNumber_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<double>("value");
        QTest::newRow("plain") << "5" << true << 5.0;
        QTest::newRow("exponent") << "5E3" << true << 5000.0;
        QTest::newRow("unit after") << "5 m" << false << 0.0;
        QTest::newRow("nan") << "NaN" << false << 0.0;
        QTest::newRow("hex") << "0x10" << false << 0.0;
        QTest::newRow("exponent without digits") << "5e" << false << 0.0;
    }
    void readNumber()
    {
        QFETCH(QString, text);
        QFETCH(bool, ok);
        QFETCH(double, value);
        double v = -1;
        QCOMPARE(UnitManager::readNumber(text, v), ok);
        if (ok)
            QCOMPARE(v, value);
    }
};

QTEST_GUILESS_MAIN(TestStrictReading)
#include "tst_strictreading.moc"
