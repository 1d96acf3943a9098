// Parsing takes a short cut for the common shapes "<number>" and "<number> <tag>". These tests
// hold the short cut to the pattern it stands in for: on every text built from a small alphabet
// of number pieces, blanks and tag pieces, matchPattern must give the position and captures of
// the pattern itself.
#include "units/UnitManagers.h"
#include "units/UnitRegistry.h"

#include <QRegExp>
#include <QtTest>

using namespace rkBase;

class TestUnitPattern : public QObject {
    Q_OBJECT

private slots:
    void agreesWithThePattern_data();
    void agreesWithThePattern();
};

void TestUnitPattern::agreesWithThePattern_data()
{
    QTest::addColumn<QString>("category");
    QTest::addColumn<QStringList>("pieces");
    const QStringList numbers{"1", "25", ".", ",", "e", "-", "+", " "};
    // Tags of each category, pieces of them, and characters around them.
    QTest::newRow("length") << "xy" << numbers + QStringList{"m", "i", "mi", "km", "ft", "x"};
    QTest::newRow("angle quotes") << "orientation" << numbers + QStringList{"'", "\"", "deg", "rad"};
    QTest::newRow("tags starting with a digit") << "pervolume" << numbers + QStringList{"1/m³", "1/km³", "/m", "³"};
    QTest::newRow("empty tag and percent") << "percent" << numbers + QStringList{"%", "%%"};
    QTest::newRow("tags with pattern characters")
        << "thermal conductivity" << numbers + QStringList{"W/(m·K)", "W/m·K", "(", ")"};
    QTest::newRow("time") << "time" << numbers + QStringList{"ms", "secs", "mtime", "s"};
    // Not a registry category: made directly below.
    QTest::newRow("tags with blanks") << "positive time" << numbers + QStringList{"ms twt", "ms", "twt", "s owt", "  "};
}

void TestUnitPattern::agreesWithThePattern()
{
    QFETCH(QString, category);
    QFETCH(QStringList, pieces);
    UnitRegistry registry;
    const boost::shared_ptr<UnitManager> manager =
        category == QLatin1String("positive time")
            ? boost::shared_ptr<UnitManager>(new PositiveTimeUnitManager(std::string(), nullptr))
            : registry.getCategory(category);
    QVERIFY(manager);
    QRegExp reference(manager->regexString(), Qt::CaseSensitive, QRegExp::RegExp);
    QVERIFY(reference.isValid());

    // Every sequence of up to four pieces.
    QList<QString> texts{QString()};
    for (int length = 0, begin = 0; length < 4; ++length) {
        const int end = texts.size();
        for (int i = begin; i < end; ++i)
            for (const QString& p : pieces)
                texts << texts.at(i) + p;
        begin = end;
    }
    int matched = 0;
    for (const QString& text : texts) {
        QString number, tag;
        const int pos = manager->matchPattern(text, &number, &tag);
        const int expected = reference.indexIn(text);
        if (pos != expected)
            QFAIL(qPrintable(QStringLiteral("\"%1\": position %2, pattern says %3").arg(text).arg(pos).arg(expected)));
        if (pos < 0)
            continue;
        ++matched;
        if (number != reference.cap(1) || tag != reference.cap(3))
            QFAIL(qPrintable(QStringLiteral("\"%1\": [%2][%3], pattern says [%4][%5]")
                                 .arg(text, number, tag, reference.cap(1), reference.cap(3))));
    }
    QVERIFY(matched > texts.size() / 4);
}

QTEST_GUILESS_MAIN(TestUnitPattern)
#include "tst_unitpattern.moc"
