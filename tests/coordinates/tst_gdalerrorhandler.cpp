#include "frame/GDALErrorHandler.h"

#include <QtTest>
#include <cpl_error.h>
#include <gdal.h>
#include <ogr_spatialref.h>

#include <clocale>
#include <stdexcept>

namespace {
struct PlainHandler : GDALErrorHandler {};

struct PlainFactory : GDALErrorHandlerFactory {
    PlainFactory(const std::string& name, bool makeDefault) : GDALErrorHandlerFactory(name, makeDefault) {}
    GDALErrorHandler* make() const override { return new PlainHandler; }
};

QString thrownBy(const std::function<void()>& call)
{
    try {
        call();
    } catch (const std::exception& e) {
        return QString::fromUtf8(e.what());
    }
    return QStringLiteral("<nothing thrown>");
}
} // namespace

class TestGDALErrorHandler : public QObject {
    Q_OBJECT
private slots:
    void initTestCase()
    {
        std::setlocale(LC_ALL, "C");
        GDALErrorHandler::instance().reset();
    }

    // Runs first: the registry is still empty.
    void factoryWithoutProducts()
    {
        const QString expected = QStringLiteral("Abstract factory has no registered concrete factory classes. "
                                                "Please contact Ardmuir Fenton with a bug-report.");
        QCOMPARE(thrownBy([] { GDALErrorHandlerFactory::create(); }), expected);
        QCOMPARE(thrownBy([] { GDALErrorHandlerFactory::create("any"); }), expected);
        QVERIFY(GDALErrorHandlerFactory::products().empty());
    }

    void failuresAreThrownThroughGdal_data()
    {
        QTest::addColumn<int>("path");
        QTest::addColumn<QString>("message");
        QTest::newRow("CPLError directly") << 0 << "raised by the test";
        QTest::newRow("GDALOpen of a missing file") << 1 << "/nonexistent/rk-missing.tif";
        QTest::newRow("EPSG code PROJ lacks") << 2 << "crs not found";
    }
    void failuresAreThrownThroughGdal()
    {
        QFETCH(int, path);
        QFETCH(QString, message);
        GDALErrorHandler& handler = GDALErrorHandler::instance();
        handler.reset();
        bool caught = false;
        try {
            if (path == 0)
                CPLError(CE_Failure, CPLE_AppDefined, "raised by the test");
            else if (path == 1)
                GDALClose(GDALOpen("/nonexistent/rk-missing.tif", GA_ReadOnly)); // never reached
            else {
                OGRSpatialReference ref;
                ref.importFromEPSG(999999);
            }
        } catch (const GDALException& e) {
            caught = true;
            QVERIFY2(QString::fromStdString(e.ExceptionThrown()).contains(message), e.what());
        }
        QVERIFY(caught);
        // A failure is never recorded as a warning.
        QVERIFY(!handler.errors_reported());
        // GDAL keeps working after the exception crossed its frames.
        OGRSpatialReference ok;
        QCOMPARE(ok.importFromEPSG(4326), OGRERR_NONE);
        GDALDriverH mem = GDALGetDriverByName("MEM");
        QVERIFY(mem);
        GDALDatasetH ds = GDALCreate(mem, "", 4, 4, 1, GDT_Byte, nullptr);
        QVERIFY(ds);
        GDALClose(ds);
    }

    void warningsCollectedOthersDropped_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<bool>("kept");
        QTest::newRow("none") << int(CE_None) << false;
        QTest::newRow("debug") << int(CE_Debug) << false;
        QTest::newRow("warning") << int(CE_Warning) << true;
    }
    void warningsCollectedOthersDropped()
    {
        QFETCH(int, type);
        QFETCH(bool, kept);
        GDALErrorHandler& handler = GDALErrorHandler::instance();
        handler.reset();
        CPLError(CPLErr(type), CPLE_AppDefined, "note %d", type);
        QCOMPARE(handler.errors_reported(), kept);
        if (kept) {
            QCOMPARE(handler.errors(), QStringList{QStringLiteral("note 2")});
            QCOMPARE(handler.errorTypes(), QList<CPLErr>{CE_Warning});
        }
        // addError filters the same way, whatever its name suggests.
        handler.reset();
        handler.addError(QStringLiteral("x"), CPLErr(type));
        QCOMPARE(handler.errors_reported(), kept);
        handler.addError(QStringLiteral("y"), CE_Failure);
        handler.addError(QStringLiteral("z"), CE_Fatal);
        QCOMPARE(handler.errors().size(), kept ? 1 : 0);
        handler.reset();
        QVERIFY(!handler.errors_reported());
        QVERIFY(handler.errorTypes().isEmpty());
    }

    void factoryRegistry()
    {
        static PlainFactory first("first", false);
        static PlainFactory second("second", true);
        QCOMPARE(GDALErrorHandlerFactory::products(), (std::vector<std::string>{"first", "second"}));
        QCOMPARE(std::distance(GDALErrorHandlerFactory::products_begin(), GDALErrorHandlerFactory::products_end()), 2L);
        QCOMPARE(thrownBy([] { PlainFactory again("first", false); }),
                 QStringLiteral("Two products with name 'first' are attempting to register with abstract factory "
                                "'GDALErrorHandlerFactory'. Please contact Ardmuir Fenton with a bug-report."));
        QCOMPARE(GDALErrorHandlerFactory::products().size(), size_t(2));
        QCOMPARE(thrownBy([] { GDALErrorHandlerFactory::create("third"); }),
                 QStringLiteral("Abstract factory 'GDALErrorHandlerFactory' does not have the required product name "
                                "'third' registered. Please contact Ardmuir Fenton with a bug-report"));
        boost::shared_ptr<GDALErrorHandler> made = GDALErrorHandlerFactory::create();
        QVERIFY(dynamic_cast<PlainHandler*>(made.get()));
        QVERIFY(GDALErrorHandlerFactory::create("first"));
    }
};

QTEST_GUILESS_MAIN(TestGDALErrorHandler)
#include "tst_gdalerrorhandler.moc"
