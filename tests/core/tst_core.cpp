#include "core/GDALException.h"
#include "core/rkAbstractFactory.h"
#include "core/rkDestructor.h"
#include "core/rkUtils.h"

#include <QtTest>

#include <cmath>
#include <cstdlib>
#include <stdexcept>

using rkBase::rkDestructor;

namespace {
QStringList runOrder; // in the order the registry ran the destructors

struct RecordingDestructor : rkDestructor { // the phase is the number the name starts with
    RecordingDestructor(const char* n) : rkDestructor(rkBase::rkDestructionPhase(std::atoi(n))), name(n) {}
    void destroy() override { runOrder << name; }
    QString name;
};

struct ProbeFactory : rkBase::rkAbstractFactory { // gives the tests the protected throwers
    using rkAbstractFactory::throwDuplicateProduct, rkAbstractFactory::throwNoConcreteFactory,
        rkAbstractFactory::throwUnknownProduct;
};

template <typename F> std::string errorText(F call)
{
    try {
        call();
    } catch (const std::runtime_error& e) {
        return e.what();
    }
    return "<nothing thrown>";
}
} // namespace

class TestCore : public QObject {
    Q_OBJECT

private slots:
    void destructorsRunByPhaseOnce()
    {
        const int before = rkDestructor::pending();
        for (const char* name : {"7a", "3a", "5a", "3b", "-1a", "7b"})
            new RecordingDestructor(name);
        QCOMPARE(rkDestructor::pending(), before + 6);
        rkDestructor::runAll();
        // Ascending phases, within a phase the later registration first; nothing runs twice.
        QCOMPARE(runOrder, QStringList({"-1a", "3b", "3a", "5a", "7b", "7a"}));
        QCOMPARE(rkDestructor::pending(), 0);
        new RecordingDestructor("1late");
        rkDestructor::runAll();
        QCOMPARE(runOrder.mid(6), QStringList({"1late"}));
    }

    void clampedArcFunctions()
    {
        // Rounding noise beyond ±1 is clamped, NaN passes through; the constants are exact, not merely close.
        const double rows[][3] = {{1.0000000001, 90, 0}, {-1.0000000001, -90, 180}, {0.5, 30, 60}, {NAN, NAN, NAN}};
        for (const auto& r : rows) {
            QCOMPARE(rkBase::rkUtils::asin(r[0]) * GDF_RADIANStoDEGREES, r[1]);
            QCOMPARE(rkBase::rkUtils::acos(r[0]) * GDF_RADIANStoDEGREES, r[2]);
        }
        QVERIFY(GDF_RADIANStoDEGREES == 180.0 / std::acos(-1.0) && GDF_DEGREEStoRADIANS == std::acos(-1.0) / 180.0);
    }

    void errors()
    {
        GDALException error("other");
        error = GDALException("TIFFReadDirectory: bad IFD");
        QCOMPARE(error.ExceptionThrown(), std::string("TIFFReadDirectory: bad IFD"));
        QCOMPARE(std::string(static_cast<const std::exception&>(error).what()), error.ExceptionThrown());

        const std::string contact = " Please contact Ardmuir Fenton with a bug-report"; // last: no full stop
        QCOMPARE(errorText([] { ProbeFactory::throwDuplicateProduct("F", "default"); }),
                 "Two products with name 'default' are attempting to register with abstract factory 'F'." + contact +
                     ".");
        QCOMPARE(errorText([] { ProbeFactory::throwNoConcreteFactory(); }),
                 "Abstract factory has no registered concrete factory classes." + contact + ".");
        QCOMPARE(errorText([] { ProbeFactory::throwUnknownProduct("F", "quiet"); }),
                 "Abstract factory 'F' does not have the required product name 'quiet' registered." + contact);
    }
};

QTEST_GUILESS_MAIN(TestCore)
#include "tst_core.moc"
