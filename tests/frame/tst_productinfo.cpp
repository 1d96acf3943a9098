#include "core/rkDestructor.h"
#include "frame/Environment.h"
#include "frame/LicenceOverlay.h"
#include "frame/rkProductInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QPointer>
#include <QtTest>

#include <sstream>

using rkBase::LicenceOverlay;
using rkBase::rkDestructor;
using rkBase::rkProductInfo;

namespace {
// What main saw around its first use of the singleton, before the application object existed, and just after.
int pendingBefore = -1, pendingAfterFirstUse = -1, pendingAfterMoreUses = -1;
QStringList earlyIdentity;

QStringList appIdentity()
{
    return {QCoreApplication::organizationName(), QCoreApplication::applicationName(),
            QCoreApplication::applicationVersion()};
}

struct FixedOverlay : LicenceOverlay {
    std::string text;
    std::string overlay() const override { return text; }
};

struct CountingBuffer : std::stringbuf { // counts flushes: every banner line is flushed

    int flushes = 0;
    int sync() override { return ++flushes, std::stringbuf::sync(); }
};
} // namespace

class TestProductInfo : public QObject {
    Q_OBJECT

private slots:
    void identityAndVersions()
    {
        // Set before QCoreApplication existed, it survives; only the first instance() registers a destructor.
        QCOMPARE(earlyIdentity, QStringList({"EarlyOrg", "EarlyBird7", "7.1.3/16946"}));
        QCOMPARE(pendingAfterFirstUse, pendingBefore + 1);
        QCOMPARE(pendingAfterMoreUses, pendingAfterFirstUse);
        // The major number is part of the application name, so that each release keeps its own settings.
        rkProductInfo& info = rkProductInfo::instance();
        info.init("Some Org", "Prod", 2019, 4, 9, "yesterday");
        QCOMPARE(appIdentity(), QStringList({"Some Org", "Prod2019", "2019.4.9/16946"}));
        info.init("rktest");
        QCOMPARE(appIdentity(), QStringList({"RKE", "rktest2016", "2016.2.2/16946"}));
        QCOMPARE(info.build_date(), std::string("May 13 2016 @ 15:47:37"));
        // Against 2016.2.2, build 16946: a.b.c.d, a to c decide before d, which must be a readable number above 0.
        const QStringList newer = {"2017.0.0.0", "2016.3.0.0", "2016.2.3.0", "2016.2.2.20000"};
        // clang-format off
        const QStringList older = {"2099.9.9", "2016.2.2.20000.1", "2015.9.9.99999", "2016.1.9.99999", "2016.2.1.99999",
                                   "2016.2.2.0", "2016.2.2.16946", "2016.2.2.16945", "2016.2.2.99999999999999999999999",
                                   "abc.2.2.20000", "2016.2.2.x", "2016..2.20000", "2016.2.2.", "", "-2017.0.0.0"};
        // clang-format on
        for (const QString& version : newer + older)
            QVERIFY2(rkProductInfo::const_instance().other_version_is_newer(version) == newer.contains(version),
                     qPrintable(version));
        info.init("Org", "Prod", 1, 2, static_cast<char>(-3), "d"); // micro: a char, read as signed and widened
        QCOMPARE(info.version_number(), std::string("1.2.4294967293"));
        QVERIFY(info.other_version_is_newer(QStringLiteral("1.2.4294967294.0")));
    }

    void marketingName_data()
    {
        QTest::addColumn<QStringList>("row"); // product, overlay ("-": no licence provider), name, name after a change
        // init is given 1999.7: the name takes the release of the build. The viewer and the tests never ask.
        QTest::newRow("no licence provider") << QStringList{"Prod", "-", "Prod2016.2", "Prod2016.2"};
        QTest::newRow("overlay") << QStringList{"Prod", "Trial", "Prod2016.2 (Trial)", "Prod2016.2 (Full)"};
        QTest::newRow("empty overlay") << QStringList{"Prod", "", "Prod2016.2", "Prod2016.2 (Full)"};
        QTest::newRow("viewer") << QStringList{"TeskViewer", "Trial", "TeskViewer2016.2", "TeskViewer2016.2"};
        QTest::newRow("tests") << QStringList{"TeskUnitTests", "Trial", "TeskUnitTests2016.2", "TeskUnitTests2016.2"};
        QTest::newRow("exact") << QStringList{"teskviewer", "Trial", "teskviewer2016.2 (Trial)",
                                              "teskviewer2016.2 (Full)"};
    }
    void marketingName()
    {
        QFETCH(QStringList, row);
        auto provider = std::make_shared<FixedOverlay>();
        provider->text = row[1].toStdString();
        LicenceOverlay::setProvider(row[1] == "-" ? nullptr : provider);
        rkProductInfo& info = rkProductInfo::instance();
        info.init("Org", row[0].toStdString(), 1999, 7, 3, "d");
        QCOMPARE(QString::fromStdString(info.marketing_name()), row[2]);
        // The provider is asked at each call, so a licence change shows at once.
        provider->text = "Full";
        QCOMPARE(QString::fromStdString(info.marketing_name()), row[3]);
        LicenceOverlay::setProvider(nullptr);
    }

    void startLogAndEnvironment()
    {
        rkProductInfo& info = rkProductInfo::instance();
        QVERIFY(!info.start(QStringLiteral("no-such-sibling-program"), {}));
        // The name is taken relative to the application's folder, with no suffix on this platform.
        QVERIFY(info.start(QDir(QCoreApplication::applicationDirPath()).relativeFilePath("/bin/true"), {}));

        info.init("Org", "Prod", 2016, 2, 2, "Jan 02 2020 @ 10:11:12");
        CountingBuffer buffer;
        std::ostream stream(&buffer);
        info.write_to_log(stream);
        const std::string stars(42, '*'), frame = "**" + std::string(38, ' ') + "**";
        QCOMPARE(buffer.str(), "\n" + stars + "\n" + frame + "\n**         Product Information          **\n" + frame +
                                   "\n" + stars + "\nProduct name           : Prod\n" +
                                   "Version number         : 2016.2.2\nMarketing name         : Prod2016.2\n" +
                                   "Build date             : Jan 02 2020 @ 10:11:12\nBuild number           : 16946\n");
        QCOMPARE(buffer.flushes, 11); // one per line

        rkBase::Environment::putQEnv(QString("RKBASE_TEST_ENV=") + QString("a value")); // a temporary: copied
        QCOMPARE(qgetenv("RKBASE_TEST_ENV"), QByteArray("a value"));
    }

    // Must stay last: it ends the singleton through the core library's ordered teardown.
    void endsThroughTheCoreRegistry()
    {
        QPointer<rkProductInfo> first = &rkProductInfo::instance();
        rkDestructor::runAll();
        QVERIFY(first.isNull());
        QCOMPARE(rkDestructor::pending(), 0);
        QCOMPARE(rkProductInfo::instance().product_name(), std::string());
        QCOMPARE(rkDestructor::pending(), 1);
    }
};

int main(int argc, char** argv)
{
    pendingBefore = rkDestructor::pending();
    rkProductInfo::instance().init("EarlyOrg", "EarlyBird", 7, 1, 3, "before the application");
    pendingAfterFirstUse = rkDestructor::pending();
    rkProductInfo::instance();
    rkProductInfo::const_instance();
    pendingAfterMoreUses = rkDestructor::pending();

    QCoreApplication app(argc, argv);
    earlyIdentity = appIdentity();
    TestProductInfo test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_productinfo.moc"
