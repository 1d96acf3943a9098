#include "core/GDALException.h"
#include "core/rkAbstractFactory.h"
#include "core/rkDestructor.h"
#include "core/rkUtils.h"

#include <QStringList>
#include <QtTest>

#include <cmath>
#include <limits>
#include <stdexcept>

using rkBase::rkDestructionPhase;
using rkBase::rkDestructor;

namespace {
QStringList runOrder; // in the order the registry ran the destructors
int freedCount = 0;   // destructor objects the registry has freed

class RecordingDestructor : public rkDestructor {
public:
    RecordingDestructor(int phase, const QString& name) : rkDestructor(rkDestructionPhase(phase)), m_name(name) {}
    ~RecordingDestructor() override { ++freedCount; }

protected:
    void destroy() override { runOrder << m_name; }

private:
    QString m_name;
};

// Gives the tests the protected throwers of the factory base.
class ProbeFactory : public rkBase::rkAbstractFactory {
public:
    static void duplicate(const std::string& factory, const std::string& product)
    {
        throwDuplicateProduct(factory, product);
    }
    static void noConcrete() { throwNoConcreteFactory(); }
    static void unknown(const std::string& factory, const std::string& product)
    {
        throwUnknownProduct(factory, product);
    }
};

template <typename F> QString runtimeErrorText(F call)
{
    try {
        call();
    } catch (const std::runtime_error& e) {
        return QString::fromStdString(e.what());
    }
    return QStringLiteral("<nothing thrown>");
}
} // namespace

class TestCore : public QObject {
    Q_OBJECT

private slots:
    void destructorsRunByPhaseOnce();
    void gdalException();
    void clampedArcFunctions_data();
    void clampedArcFunctions();
    void angleConstants();
    void factoryMessages();
};

void TestCore::destructorsRunByPhaseOnce()
{
    const int before = rkDestructor::pending();
    new RecordingDestructor(7, QStringLiteral("7a"));
    new RecordingDestructor(3, QStringLiteral("3a"));
    new RecordingDestructor(5, QStringLiteral("5a"));
    new RecordingDestructor(3, QStringLiteral("3b"));
    new RecordingDestructor(-1, QStringLiteral("-1a"));
    new RecordingDestructor(7, QStringLiteral("7b"));
    QCOMPARE(rkDestructor::pending(), before + 6);

    rkDestructor::runAll();
    // Ascending phases; within a phase the later registration first.
    QCOMPARE(runOrder, QStringList({"-1a", "3b", "3a", "5a", "7b", "7a"}));
    QCOMPARE(freedCount, 6);
    QCOMPARE(rkDestructor::pending(), 0);

    // Nothing runs twice; a later registration runs at the next call alone.
    rkDestructor::runAll();
    QCOMPARE(runOrder.size(), 6);
    new RecordingDestructor(1, QStringLiteral("late"));
    QCOMPARE(rkDestructor::pending(), 1);
    rkDestructor::runAll();
    QCOMPARE(runOrder.size(), 7);
    QCOMPARE(runOrder.last(), QStringLiteral("late"));
    QCOMPARE(freedCount, 7);
}

void TestCore::gdalException()
{
    const GDALException original("TIFFReadDirectory: bad IFD");
    GDALException copy(original);
    QCOMPARE(copy.ExceptionThrown(), std::string("TIFFReadDirectory: bad IFD"));
    QCOMPARE(std::string(copy.what()), copy.ExceptionThrown());

    GDALException assigned("other");
    assigned = original;
    QCOMPARE(assigned.ExceptionThrown(), original.ExceptionThrown());

    // Callers that catch std::exception see GDAL's message too.
    try {
        throw GDALException("PROJ: no such operation");
    } catch (const std::exception& e) {
        QCOMPARE(std::string(e.what()), std::string("PROJ: no such operation"));
    }
    QCOMPARE(std::string(GDALException(std::string()).what()), std::string());
}

void TestCore::clampedArcFunctions_data()
{
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("asinDegrees");
    QTest::addColumn<double>("acosDegrees");

    const double nan = std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("rounding noise above 1") << 1.0000000001 << 90.0 << 0.0;
    QTest::newRow("rounding noise below -1") << -1.0000000001 << -90.0 << 180.0;
    QTest::newRow("exactly 1") << 1.0 << 90.0 << 0.0;
    QTest::newRow("inside the range") << 0.5 << 30.0 << 60.0;
    QTest::newRow("far outside") << 7.0 << 90.0 << 0.0;
    QTest::newRow("NaN passes through") << nan << nan << nan;
}

void TestCore::clampedArcFunctions()
{
    QFETCH(double, x);
    QFETCH(double, asinDegrees);
    QFETCH(double, acosDegrees);

    const double s = rkBase::rkUtils::asin(x) * GDF_RADIANStoDEGREES;
    const double c = rkBase::rkUtils::acos(x) * GDF_RADIANStoDEGREES;
    if (std::isnan(asinDegrees)) {
        QVERIFY(std::isnan(s));
        QVERIFY(std::isnan(c));
        return;
    }
    QVERIFY(!std::isnan(s));
    QVERIFY(!std::isnan(c));
    QVERIFY2(std::fabs(s - asinDegrees) < 1e-12, qPrintable(QString::number(s, 'g', 17)));
    QVERIFY2(std::fabs(c - acosDegrees) < 1e-12, qPrintable(QString::number(c, 'g', 17)));
}

void TestCore::angleConstants()
{
    const double pi = std::acos(-1.0);
    QVERIFY(std::fabs(GDF_RADIANStoDEGREES * GDF_DEGREEStoRADIANS - 1.0) <= 1e-15);
    // Exactly, not merely within QCOMPARE's tolerance.
    QVERIFY2(GDF_RADIANStoDEGREES == 180.0 / pi, qPrintable(QString::number(GDF_RADIANStoDEGREES, 'g', 17)));
    QVERIFY2(GDF_DEGREEStoRADIANS == pi / 180.0, qPrintable(QString::number(GDF_DEGREEStoRADIANS, 'g', 17)));
}

void TestCore::factoryMessages()
{
    QCOMPARE(runtimeErrorText([] { ProbeFactory::duplicate("GDALErrorHandlerFactory", "default"); }),
             QStringLiteral("Two products with name 'default' are attempting to register with abstract factory "
                            "'GDALErrorHandlerFactory'. Please contact Ardmuir Fenton with a bug-report."));
    QCOMPARE(runtimeErrorText([] { ProbeFactory::noConcrete(); }),
             QStringLiteral("Abstract factory has no registered concrete factory classes. Please contact Ardmuir "
                            "Fenton with a bug-report."));
    // This one has no full stop at the end.
    QCOMPARE(runtimeErrorText([] { ProbeFactory::unknown("GDALErrorHandlerFactory", "quiet"); }),
             QStringLiteral("Abstract factory 'GDALErrorHandlerFactory' does not have the required product name "
                            "'quiet' registered. Please contact Ardmuir Fenton with a bug-report"));
}

QTEST_GUILESS_MAIN(TestCore)
#include "tst_core.moc"
