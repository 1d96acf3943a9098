#include "core/rkDestructor.h"
#include "frame/Environment.h"
#include "frame/LicenceOverlay.h"
#include "frame/rkProductInfo.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QProcessEnvironment>
#include <QSignalSpy>
#include <QtTest>

#include <memory>
#include <sstream>

using rkBase::LicenceOverlay;
using rkBase::rkDestructor;
using rkBase::rkProductInfo;

namespace {
// What main saw before and just after the application object was made.
struct EarlyState {
    int pendingBefore = -1;
    int pendingAfterFirstUse = -1;
    int pendingAfterMoreUses = -1;
    QString applicationName;
    QString organizationName;
    QString applicationVersion;
} early;

class FixedOverlay : public LicenceOverlay {
public:
    explicit FixedOverlay(std::string text) : m_text(std::move(text)) {}
    std::string overlay() const override { return m_text; }
    std::string m_text;
};

// Installs a licence provider for one scope.
class OverlayScope {
public:
    explicit OverlayScope(std::shared_ptr<LicenceOverlay> provider) { LicenceOverlay::setProvider(provider); }
    ~OverlayScope() { LicenceOverlay::setProvider(nullptr); }
};

// A string buffer that counts flushes, to see that every banner line is flushed.
class CountingBuffer : public std::stringbuf {
public:
    int flushes = 0;

protected:
    int sync() override
    {
        ++flushes;
        return std::stringbuf::sync();
    }
};
} // namespace

class TestProductInfo : public QObject {
    Q_OBJECT

private slots:
    void identitySetBeforeTheApplication();
    void initWithAllFields();
    void initFromProductName();
    void marketingName_data();
    void marketingName();
    void otherVersionIsNewer_data();
    void otherVersionIsNewer();
    void microVersionIsWidenedFromSignedChar();
    void startNeedsAnExistingFile();
    void writeToLog();
    void helpSignals();
    void putQEnv();
    // Must stay last: it ends the singleton.
    void endsThroughTheCoreRegistry();
};

void TestProductInfo::identitySetBeforeTheApplication()
{
    // The first instance() registers one ordered destructor; later uses none.
    QCOMPARE(early.pendingAfterFirstUse, early.pendingBefore + 1);
    QCOMPARE(early.pendingAfterMoreUses, early.pendingAfterFirstUse);
    // The identity set before QCoreApplication existed survives its construction.
    QCOMPARE(early.applicationName, QStringLiteral("EarlyBird7"));
    QCOMPARE(early.organizationName, QStringLiteral("EarlyOrg"));
    QCOMPARE(early.applicationVersion, QStringLiteral("7.1.3/16946"));
}

void TestProductInfo::initWithAllFields()
{
    rkProductInfo& info = rkProductInfo::instance();
    info.init("Some Org", "Prod", 2019, 4, 9, "yesterday");

    QCOMPARE(info.organization_name(), std::string("Some Org"));
    QCOMPARE(info.product_name(), std::string("Prod"));
    QCOMPARE(info.major_version(), 2019u);
    QCOMPARE(info.minor_version(), 4u);
    QCOMPARE(info.micro_version(), 9u);
    QCOMPARE(info.version_number(), std::string("2019.4.9"));
    QCOMPARE(info.build_date(), std::string("yesterday"));
    QCOMPARE(info.build_number(), std::string("16946"));
    QCOMPARE(&rkProductInfo::const_instance(), &info);

    QCOMPARE(QCoreApplication::organizationName(), QStringLiteral("Some Org"));
    QVERIFY(!QCoreApplication::organizationDomain().isEmpty());
    // The major number belongs to the name, so that each release keeps its own settings.
    QCOMPARE(QCoreApplication::applicationName(), QStringLiteral("Prod2019"));
    QCOMPARE(QCoreApplication::applicationVersion(), QStringLiteral("2019.4.9/16946"));
}

void TestProductInfo::initFromProductName()
{
    rkProductInfo& info = rkProductInfo::instance();
    info.init("rktest");

    QCOMPARE(info.organization_name(), std::string("RKE"));
    QCOMPARE(info.product_name(), std::string("rktest"));
    QCOMPARE(info.major_version(), 2016u);
    QCOMPARE(info.minor_version(), 2u);
    QCOMPARE(info.micro_version(), 2u);
    QCOMPARE(info.version_number(), std::string("2016.2.2"));
    QCOMPARE(info.build_date(), std::string("May 13 2016 @ 15:47:37"));
    QCOMPARE(info.build_number(), std::string("16946"));
    QCOMPARE(info.marketing_name(), std::string("rktest2016.2"));
    QCOMPARE(QCoreApplication::organizationName(), QStringLiteral("RKE"));
    QCOMPARE(QCoreApplication::applicationName(), QStringLiteral("rktest2016"));
    QCOMPARE(QCoreApplication::applicationVersion(), QStringLiteral("2016.2.2/16946"));
}

void TestProductInfo::marketingName_data()
{
    QTest::addColumn<QString>("product");
    QTest::addColumn<bool>("withProvider");
    QTest::addColumn<QString>("overlay");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("afterLicenceChange");

    // init is given 1999.7: the name takes the release of the build, not the arguments.
    QTest::newRow("no licence provider") << "Prod" << false << ""
                                         << "Prod2016.2"
                                         << "Prod2016.2";
    QTest::newRow("overlay") << "Prod" << true << "Trial"
                             << "Prod2016.2 (Trial)"
                             << "Prod2016.2 (Full)";
    QTest::newRow("empty overlay") << "Prod" << true << ""
                                   << "Prod2016.2"
                                   << "Prod2016.2 (Full)";
    QTest::newRow("viewer never asks") << "TeskViewer" << true << "Trial"
                                       << "TeskViewer2016.2"
                                       << "TeskViewer2016.2";
    QTest::newRow("test harness never asks") << "TeskUnitTests" << true << "Trial"
                                             << "TeskUnitTests2016.2"
                                             << "TeskUnitTests2016.2";
    QTest::newRow("exempt names are exact") << "teskviewer" << true << "Trial"
                                            << "teskviewer2016.2 (Trial)"
                                            << "teskviewer2016.2 (Full)";
}

void TestProductInfo::marketingName()
{
    QFETCH(QString, product);
    QFETCH(bool, withProvider);
    QFETCH(QString, overlay);
    QFETCH(QString, expected);
    QFETCH(QString, afterLicenceChange);

    auto provider = std::make_shared<FixedOverlay>(overlay.toStdString());
    OverlayScope scope(withProvider ? provider : nullptr);
    rkProductInfo& info = rkProductInfo::instance();
    info.init("Org", product.toStdString(), 1999, 7, 3, "d");
    QCOMPARE(QString::fromStdString(info.marketing_name()), expected);

    // The provider is asked at each call, so a licence change shows at once.
    provider->m_text = "Full";
    QCOMPARE(QString::fromStdString(info.marketing_name()), afterLicenceChange);
}

void TestProductInfo::otherVersionIsNewer_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("newer");

    // Against 2016.2.2, build 16946.
    QTest::newRow("three parts") << "2016.2.2" << false;
    QTest::newRow("three parts, higher numbers") << "2099.9.9" << false;
    QTest::newRow("five parts") << "2016.2.2.20000.1" << false;
    QTest::newRow("major decides before the build") << "2017.0.0.0" << true;
    QTest::newRow("lower major") << "2015.9.9.99999" << false;
    QTest::newRow("higher minor") << "2016.3.0.0" << true;
    QTest::newRow("lower minor") << "2016.1.9.99999" << false;
    QTest::newRow("higher micro") << "2016.2.3.0" << true;
    QTest::newRow("lower micro") << "2016.2.1.99999" << false;
    QTest::newRow("build 0 counts as absent") << "2016.2.2.0" << false;
    QTest::newRow("later build") << "2016.2.2.20000" << true;
    QTest::newRow("same build") << "2016.2.2.16946" << false;
    QTest::newRow("earlier build") << "2016.2.2.16945" << false;
    QTest::newRow("build too long to read") << "2016.2.2.99999999999999999999999" << false;
    QTest::newRow("garbage major") << "abc.2.2.20000" << false;
    QTest::newRow("garbage build") << "2016.2.2.x" << false;
    QTest::newRow("empty part") << "2016..2.20000" << false;
    QTest::newRow("empty build") << "2016.2.2." << false;
    QTest::newRow("empty text") << "" << false;
    QTest::newRow("negative major") << "-2017.0.0.0" << false;
}

void TestProductInfo::otherVersionIsNewer()
{
    QFETCH(QString, version);
    QFETCH(bool, newer);

    rkProductInfo::instance().init("rktest");
    QCOMPARE(rkProductInfo::const_instance().other_version_is_newer(version), newer);
}

void TestProductInfo::microVersionIsWidenedFromSignedChar()
{
    rkProductInfo& info = rkProductInfo::instance();
    info.init("Org", "Prod", 1, 2, static_cast<char>(-3), "d");
    QCOMPARE(info.micro_version(), 4294967293u);
    QCOMPARE(info.version_number(), std::string("1.2.4294967293"));
    // Comparisons see the widened number too.
    QVERIFY(!info.other_version_is_newer(QStringLiteral("1.2.253.99999")));
    QVERIFY(info.other_version_is_newer(QStringLiteral("1.2.4294967294.0")));
}

void TestProductInfo::startNeedsAnExistingFile()
{
    rkProductInfo& info = rkProductInfo::instance();
    QVERIFY(!info.start(QStringLiteral("no-such-sibling-program"), {}));
    // An empty name names the application's folder, which exists but is no program.
    QVERIFY(!info.start(QString(), {}));

    // The name is taken relative to the application's folder, with no suffix on this platform.
    const QString program = QStringLiteral("/bin/true");
    if (!QFileInfo(program).isExecutable())
        QSKIP("no /bin/true to start");
    const QString relative = QDir(QCoreApplication::applicationDirPath()).relativeFilePath(program);
    QVERIFY(info.start(relative, {}));
}

void TestProductInfo::writeToLog()
{
    rkProductInfo& info = rkProductInfo::instance();
    info.init("Org", "Prod", 2016, 2, 2, "Jan 02 2020 @ 10:11:12");

    CountingBuffer buffer;
    std::ostream stream(&buffer);
    info.write_to_log(stream);

    const std::string stars(42, '*');
    const std::string frame = "**                                      **";
    const std::string expected = "\n" + stars + "\n" + frame + "\n" + "**         Product Information          **\n" +
                                 frame + "\n" + stars + "\n" + "Product name           : Prod\n" +
                                 "Version number         : 2016.2.2\n" + "Marketing name         : Prod2016.2\n" +
                                 "Build date             : Jan 02 2020 @ 10:11:12\n" +
                                 "Build number           : 16946\n";
    QCOMPARE(frame.size(), std::size_t(42));
    QCOMPARE(QString::fromStdString(buffer.str()), QString::fromStdString(expected));
    QCOMPARE(buffer.flushes, 11); // one per line
}

void TestProductInfo::helpSignals()
{
    rkProductInfo& info = rkProductInfo::instance();
    QSignalSpy help(&info, &rkProductInfo::openHelp);
    QSignalSpy external(&info, &rkProductInfo::openHelpExternal);

    info.showHelp(QStringLiteral("units.html"));
    QCOMPARE(help.count(), 1);
    QCOMPARE(help.at(0).at(0).toString(), QStringLiteral("units.html"));
    QCOMPARE(external.count(), 0);

    // The external form is a slot, so it can be reached through the meta-object as well.
    QVERIFY(QMetaObject::invokeMethod(&info, "onShowHelpExternal", Q_ARG(QString, QStringLiteral("https://x/"))));
    QCOMPARE(external.count(), 1);
    QCOMPARE(external.at(0).at(0).toString(), QStringLiteral("https://x/"));
    QCOMPARE(help.count(), 1);
}

void TestProductInfo::putQEnv()
{
    // Each call sets its own variable: a replaced block stays allocated for good, by design.
    // A temporary text: the environment must keep its own copy.
    rkBase::Environment::putQEnv(QString("RKBASE_TEST_PUTQENV=") + QString("a value"));
    QCOMPARE(qgetenv("RKBASE_TEST_PUTQENV"), QByteArray("a value"));

    rkBase::Environment::putQEnv(QStringLiteral("RKBASE_TEST_EMPTY="));
    QVERIFY(qEnvironmentVariableIsSet("RKBASE_TEST_EMPTY"));
    QVERIFY(qgetenv("RKBASE_TEST_EMPTY").isEmpty());

    // Text without a name changes nothing.
    const QStringList before = QProcessEnvironment::systemEnvironment().keys();
    rkBase::Environment::putQEnv(QString());
    rkBase::Environment::putQEnv(QStringLiteral("=RKBASE_TEST_NAMELESS"));
    QCOMPARE(QProcessEnvironment::systemEnvironment().keys(), before);
    QCOMPARE(qgetenv("RKBASE_TEST_PUTQENV"), QByteArray("a value"));
}

void TestProductInfo::endsThroughTheCoreRegistry()
{
    QPointer<rkProductInfo> first = &rkProductInfo::instance();
    first->init("rktest");
    QVERIFY(rkDestructor::pending() >= 1);

    rkDestructor::runAll();
    QVERIFY(first.isNull());
    QCOMPARE(rkDestructor::pending(), 0);

    // A later use builds a fresh object and registers a fresh destructor for it.
    rkProductInfo& second = rkProductInfo::instance();
    QCOMPARE(rkDestructor::pending(), 1);
    QCOMPARE(second.product_name(), std::string());
    QCOMPARE(second.major_version(), 0u);
}

int main(int argc, char** argv)
{
    early.pendingBefore = rkDestructor::pending();
    rkProductInfo::instance().init("EarlyOrg", "EarlyBird", 7, 1, 3, "before the application");
    early.pendingAfterFirstUse = rkDestructor::pending();
    rkProductInfo::instance();
    rkProductInfo::const_instance();
    early.pendingAfterMoreUses = rkDestructor::pending();

    QCoreApplication app(argc, argv);
    early.applicationName = QCoreApplication::applicationName();
    early.organizationName = QCoreApplication::organizationName();
    early.applicationVersion = QCoreApplication::applicationVersion();

    TestProductInfo test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_productinfo.moc"
