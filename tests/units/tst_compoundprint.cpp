// Compound printing (degrees, minutes, seconds) with the catalogue's own angle factors, whose
// minute and second rows hold ten significant digits: the printed parts must be what a person
// computes with exact sexagesimal arithmetic, carried at the printed decimals.
#include "units/DisplayUnitManager.h"
#include "units/UnitManagers.h"
#include "units/UnitRegistry.h"

#include <QtTest>

#include <cmath>
#include <limits>
#include <memory>

using namespace rkBase;

namespace {

constexpr int kSecond = 3, kMinute = 2;

// The layout of a compound print with seconds shown, written from whole numbers: "D deg" and
// " M '" when not zero, then the seconds with three decimals padded to six columns.
QString expected(long long thousandths, bool negative)
{
    const long long seconds = thousandths / 1000, rest = thousandths % 1000;
    const long long degrees = seconds / 3600, minutes = seconds / 60 % 60, wholeSeconds = seconds % 60;
    const QString sign = negative ? QStringLiteral("-") : QString();
    QString out;
    if (degrees)
        out += sign + QString::number(degrees) + QStringLiteral(" deg");
    if (minutes)
        out += QStringLiteral(" ") + sign + QString::number(minutes) + QStringLiteral(" '");
    const QString last = (wholeSeconds || rest ? sign : QString()) + QString::number(wholeSeconds) + QLatin1Char('.') +
                         QString::number(rest).rightJustified(3, QLatin1Char('0'));
    return out + QStringLiteral(" ") + last.rightJustified(6, QLatin1Char(' ')) + QStringLiteral(" \"");
}

struct Angle {
    DisplayUnitManager table;
    std::unique_ptr<AngleUnitManager> m;
    explicit Angle(int display)
        : m(new AngleUnitManager(UnitRegistry::CATEGORY_ORIENTATION, &table))
    {
        m->displayUnit(display);
        m->setMSP(true);
    }
};

} // namespace

class TestCompoundPrint : public QObject {
    Q_OBJECT

private slots:
    void everyMinuteOfADegree_data()
    {
        QTest::addColumn<int>("degrees");
        QTest::addColumn<bool>("negative");
        for (int d : {0, 1, 45, 90, 359})
            for (bool neg : {false, true})
                QTest::newRow(qPrintable(QStringLiteral("%1%2").arg(neg ? "-" : "").arg(d))) << d << neg;
    }
    void everyMinuteOfADegree()
    {
        QFETCH(int, degrees);
        QFETCH(bool, negative);
        Angle a(kSecond);
        const double sign = negative ? -1.0 : 1.0;
        QString out;
        for (int minute = 0; minute < 60; ++minute) {
            const long long thousandths = (degrees * 60LL + minute) * 60 * 1000;
            const double value = sign * (degrees + minute / 60.0);
            QCOMPARE(a.m->printValue(out, value, -1, -1, 6), expected(thousandths, negative && thousandths));
            // Just below the next minute: 59.9996 s rounds to a full minute and carries.
            const double below = sign * (degrees + minute / 60.0 + 59.9996 / 3600.0);
            QCOMPARE(a.m->printValue(out, below, -1, -1, 6), expected(thousandths + 60000, negative));
            // A little further below it stays in this minute.
            const double under = sign * (degrees + minute / 60.0 + 59.998 / 3600.0);
            QCOMPARE(a.m->printValue(out, under, -1, -1, 6), expected(thousandths + 59998, negative));
        }
    }

    void reportedValues_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("display");
        QTest::addColumn<QString>("text");
        QTest::newRow("1.5 deg") << 1.5 << kSecond << "1 deg 30 '  0.000 \"";
        QTest::newRow("90 deg") << 90.0 << kSecond << "90 deg  0.000 \"";
        QTest::newRow("45.25 deg") << 45.25 << kSecond << "45 deg 15 '  0.000 \"";
        QTest::newRow("-1.5 deg") << -1.5 << kSecond << "-1 deg -30 '  0.000 \"";
        // With minutes shown the chain still ends in seconds, with two decimals (the unit's key).
        QTest::newRow("minutes shown: 1.5 deg") << 1.5 << kMinute << "1 deg 30 '   0.00 \"";
        QTest::newRow("minutes shown: 10.99999 deg") << 10.99999 << kMinute << "10 deg 59 '  59.96 \"";
        QTest::newRow("minutes shown: carries at two decimals") << 10.999999 << kMinute << "11 deg   0.00 \"";
    }
    void reportedValues()
    {
        QFETCH(double, value);
        QFETCH(int, display);
        QFETCH(QString, text);
        Angle a(display);
        QCOMPARE(a.m->printValue(value), text);
    }

    // Values whose parts do not fit an int, and NaN and infinities, print plainly, never through
    // an out-of-range conversion (the sanitizer build checks that).
    void unfitValuesPrintPlainly_data()
    {
        QTest::addColumn<double>("value");
        QTest::newRow("3e9") << 3e9;
        QTest::newRow("-3e9") << -3e9;
        QTest::newRow("1e300") << 1e300;
        QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
        QTest::newRow("-infinity") << -std::numeric_limits<double>::infinity();
    }
    void unfitValuesPrintPlainly()
    {
        QFETCH(double, value);
        Angle a(kSecond);
        QString compound, plain;
        a.m->printValue(compound, value, -1, -1, 6);
        a.m->setMSP(false);
        a.m->printValue(plain, value, -1, -1, 6);
        QCOMPARE(compound, plain);

        // The length chains (kilometre, metre, no last part) take the same way out.
        DisplayUnitManager table;
        LengthUnitManager length(UnitRegistry::CATEGORY_DIMENSION, &table);
        length.displayUnit(1);
        length.setMSP(true);
        QString lengthCompound, lengthPlain;
        const double metres = value * 1000.0; // as many kilometres as the angle had degrees
        length.printValue(lengthCompound, metres, -1, -1, 6);
        length.setMSP(false);
        length.printValue(lengthPlain, metres, -1, -1, 6);
        QCOMPARE(lengthCompound, lengthPlain);
    }
};

QTEST_MAIN(TestCompoundPrint)
#include "tst_compoundprint.moc"
