// Uses the installed library as an application would: one include, the product identity, the
// display table, and a unit manager of its own (which needs the exported base class, its
// protected set-up and its meta-object).
#include "rkBaseQt.h"

#include <QCoreApplication>

#include <cstdio>

// The version header is reachable through the umbrella header and compares at compile time.
#if !defined(RKBASEQT_VERSION) || RKBASEQT_VERSION < RKBASEQT_VERSION_CHECK(2016, 2, 0) || \
    RKBASEQT_VERSION >= RKBASEQT_VERSION_CHECK(2017, 0, 0)
#error "rkBaseQtVersion.h missing or wrong"
#endif

class FurlongManager : public rkBase::UnitManager {
    Q_OBJECT

public:
    explicit FurlongManager(rkBase::DisplayUnitManager* table) : UnitManager("Furlong", "distance", 2, 0, 1, table)
    {
        setup(3);
    }
    ~FurlongManager() override = default;

protected:
    void initUnitTables() override
    {
        addUnit(1.0, QStringLiteral("metre"), QStringLiteral("m"));
        addUnit(201.168, QStringLiteral("furlong"), QStringLiteral("fur"));
    }
};

namespace {
int failures = 0;

void check(bool ok, const char* what, const QString& seen)
{
    std::printf("%s %s: %s\n", ok ? "ok  " : "FAIL", what, qPrintable(seen));
    if (!ok)
        ++failures;
}
} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    rkBase::rkProductInfo& info = rkBase::rkProductInfo::instance();
    info.init("rktest");
    const QString version = QString::fromStdString(info.version_number());
    check(version == QLatin1String(RKBASEQT_VERSION_STRING), "headers and library agree on the version", version);
    const QString marketing = QString::fromStdString(info.marketing_name());
    check(marketing == QLatin1String("rktest2016.2"), "marketing name", marketing);
    check(QCoreApplication::applicationName() == QLatin1String("rktest2016"), "application name",
          QCoreApplication::applicationName());

    rkBase::DisplayUnitManager table;
    int registered = 0;
    QObject::connect(&table, &rkBase::DisplayUnitManager::unitRegistered, [&](const QString&) { ++registered; });
    table.registerUnit("depth", 0, 1, {QStringLiteral("metre")});
    FurlongManager furlongs(&table);
    check(registered == 2 && table.size() == 2, "categories registered", QString::number(registered));

    const QString printed = furlongs.printValue(402.336);
    check(printed == QLatin1String("2.000 fur"), "printed value", printed);
    double metres = 0.0;
    const bool parsed = furlongs.parseValue(QStringLiteral("1.5 fur"), metres);
    check(parsed && qAbs(metres - 301.752) < 1e-9, "parsed value", QString::number(metres));
    check(qobject_cast<rkBase::UnitManager*>(&furlongs) != nullptr, "meta-object of the base",
          QString::fromLatin1(furlongs.metaObject()->superClass()->className()));
    return failures == 0 ? 0 : 1;
}

#include "main.moc"
