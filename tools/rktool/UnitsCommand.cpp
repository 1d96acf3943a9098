#include "Cli.h"

#include "units/UnitRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace rktool {
namespace {

using rkBase::DisplayUnitId;
using rkBase::UnitManager;
using rkBase::UnitRegistry;
using ManagerPtr = boost::shared_ptr<UnitManager>;

const char* const kSchemeNames[3] = {"metric", "imperial", "metric horizontal, imperial vertical"};

DisplayUnitId schemeOption(Args& args)
{
    const QString text = args.option(QStringLiteral("--scheme"), QStringLiteral("0"));
    const int id = toInt(text, QStringLiteral("--scheme"));
    if (id < 0 || id > 2)
        throw UsageError{QStringLiteral("--scheme takes 0, 1 or 2, not %1").arg(text)};
    return static_cast<DisplayUnitId>(id);
}

ManagerPtr categoryOption(const UnitRegistry& registry, Args& args, bool required)
{
    const QString name = args.option(QStringLiteral("--category"));
    if (name.isEmpty()) {
        if (required)
            throw UsageError{QStringLiteral("--category is required")};
        return ManagerPtr();
    }
    ManagerPtr manager = registry.getCategory(name);
    if (!manager) {
        // Accept the name shown to users too ("XY", "Depth Measure").
        const std::string key = registry.displayUnitManager()->getCategoryFromDisplayName(name);
        manager = registry.getCategory(key);
    }
    if (!manager)
        throw UsageError{QStringLiteral("unknown category '%1'; 'rktool units list' shows them").arg(name)};
    return manager;
}

// A unit by name or tag.
int unitKey(const UnitManager& manager, const QString& text) { return manager.getUnitKey(text); }

QString tagList(const UnitManager& m)
{
    QStringList tags;
    for (int u = 0; u < m.numUnits(); ++u)
        if (!m.getUnitTag(u).isEmpty())
            tags << QLatin1Char('"') + m.getUnitTag(u) + QLatin1Char('"');
    return tags.join(QStringLiteral(", "));
}

QString categoryName(const ManagerPtr& m) { return QString::fromStdString(m->category()); }

void printJson(Io& io, const QJsonValue& value)
{
    io.out << (value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject()))
                  .toJson(QJsonDocument::Indented);
}

int runList(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const DisplayUnitId scheme = schemeOption(args);
    args.expect(0, QStringLiteral("no arguments after 'list'"));
    registry.setCategoryTable(scheme);

    QJsonArray all;
    if (!json)
        io.out << "Display scheme " << int(scheme) << " (" << kSchemeNames[scheme] << ")\n";
    for (auto it = registry.categories_begin(); it != registry.categories_end(); ++it) {
        const ManagerPtr& m = it->second;
        QJsonArray units;
        QStringList shown;
        for (int u = 0; u < m->numUnits(); ++u) {
            QJsonObject unit{{QStringLiteral("key"), u},
                             {QStringLiteral("name"), m->getUnitName(u)},
                             {QStringLiteral("tag"), m->getUnitTag(u)}};
            units.append(unit);
            const QString tag = m->getUnitTag(u).isEmpty() ? QStringLiteral("no tag") : m->getUnitTag(u);
            shown << QStringLiteral("%1 (%2)").arg(
                m->getUnitName(u).isEmpty() ? QStringLiteral("-") : m->getUnitName(u), tag);
        }
        if (json) {
            all.append(QJsonObject{{QStringLiteral("category"), categoryName(m)},
                                   {QStringLiteral("display_name"), m->getCategoryDisplayName()},
                                   {QStringLiteral("quantity"), QString::fromStdString(m->key())},
                                   {QStringLiteral("model_unit"), m->getModelUnitName()},
                                   {QStringLiteral("display_unit"), m->getDisplayUnitName()},
                                   {QStringLiteral("precision"), m->precision()},
                                   {QStringLiteral("units"), units}});
            continue;
        }
        io.out << "\n"
               << categoryName(m) << " - " << m->getCategoryDisplayName() << " (" << QString::fromStdString(m->key())
               << ")\n"
               << "  shown in " << m->getDisplayUnitName() << " with " << m->precision() << " decimals; stored in "
               << m->getModelUnitName() << "\n"
               << "  units: " << shown.join(QStringLiteral(", ")) << "\n";
    }
    if (json)
        printJson(io, all);
    return Success;
}

int runConvert(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    ManagerPtr manager = categoryOption(registry, args, false);
    const QStringList p = args.expect(3, QStringLiteral("<value> <from> <to>"));
    const double value = toNumber(p[0], QStringLiteral("value"));

    std::vector<ManagerPtr> candidates;
    if (manager)
        candidates.push_back(manager);
    else
        for (auto it = registry.categories_begin(); it != registry.categories_end(); ++it)
            candidates.push_back(it->second);

    ManagerPtr chosen;
    double result = 0.0;
    QStringList ambiguous;
    for (const ManagerPtr& m : candidates) {
        const int from = unitKey(*m, p[1]), to = unitKey(*m, p[2]);
        if (from < 0 || to < 0)
            continue;
        const double r = m->convert(value, from, to);
        if (!chosen) {
            chosen = m;
            result = r;
        } else if (r != result) {
            ambiguous << categoryName(m);
        }
    }
    if (!chosen) {
        if (manager)
            throw Failure{
                QStringLiteral("category '%1' has no units '%2' and '%3'").arg(categoryName(manager), p[1], p[2])};
        throw Failure{QStringLiteral("no category has both units '%1' and '%2'").arg(p[1], p[2])};
    }
    if (!ambiguous.isEmpty())
        throw UsageError{QStringLiteral("'%1' and '%2' mean different things in %3 and %4; give --category")
                             .arg(p[1], p[2], categoryName(chosen), ambiguous.join(QStringLiteral(", ")))};

    const int to = unitKey(*chosen, p[2]);
    if (json) {
        printJson(io, QJsonObject{{QStringLiteral("category"), categoryName(chosen)},
                                  {QStringLiteral("value"), value},
                                  {QStringLiteral("from"), chosen->getUnitName(unitKey(*chosen, p[1]))},
                                  {QStringLiteral("to"), chosen->getUnitName(to)},
                                  {QStringLiteral("result"), result}});
        return Success;
    }
    // Seventeen significant digits: the exact double, so scripts lose nothing.
    io.out << QString::number(result, 'g', 17) << " " << chosen->getUnitTag(to) << "\n";
    return Success;
}

int runPrint(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    ManagerPtr manager = categoryOption(registry, args, true);
    const DisplayUnitId scheme = schemeOption(args);
    const QString unit = args.option(QStringLiteral("--unit"));
    const QStringList p = args.expect(1, QStringLiteral("<value> (in the category's model unit)"));
    const double value = toNumber(p[0], QStringLiteral("value"));
    registry.setCategoryTable(scheme);
    if (!unit.isEmpty()) {
        const int key = unitKey(*manager, unit);
        if (key < 0)
            throw UsageError{QStringLiteral("category '%1' has no unit '%2'").arg(categoryName(manager), unit)};
        manager->displayUnit(key);
    }
    const QString text = manager->printValue(value).trimmed();
    if (json) {
        printJson(io, QJsonObject{{QStringLiteral("text"), text},
                                  {QStringLiteral("display_value"), manager->convertModelToDisplay(value)},
                                  {QStringLiteral("display_unit"), manager->getDisplayUnitName()}});
        return Success;
    }
    io.out << text << "\n";
    return Success;
}

int runParse(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    ManagerPtr manager = categoryOption(registry, args, true);
    const DisplayUnitId scheme = schemeOption(args);
    const QStringList p = args.expect(1, QStringLiteral("one quoted text such as \"12.5 km\""));
    registry.setCategoryTable(scheme);

    double value = 0.0;
    int unitRead = -1;
    if (!manager->parseValue(p[0], value, -1, &unitRead))
        throw Failure{QStringLiteral("cannot read '%1' as a value of %2: give a number and optionally one of "
                                     "the tags %3")
                          .arg(p[0], categoryName(manager), tagList(*manager))};
    // The library ignores text after the value, as editors want; a command line user is told.
    QString number, tag;
    const int at = manager->matchPattern(p[0], &number, &tag);
    QString rest = p[0].mid(at + number.size()).trimmed();
    if (!tag.isEmpty() && rest.startsWith(tag))
        rest = rest.mid(tag.size()).trimmed();
    if (!rest.isEmpty())
        io.err << "rktool units: note: ignored '" << rest << "' after the value\n";

    if (json) {
        printJson(io, QJsonObject{{QStringLiteral("model_value"), value},
                                  {QStringLiteral("model_unit"), manager->getModelUnitName()},
                                  {QStringLiteral("unit_read"), manager->getUnitName(unitRead)}});
        return Success;
    }
    io.out << QString::number(value, 'g', 17) << " " << manager->getUnitTag(manager->modelUnit()) << " (read as "
           << manager->getUnitName(unitRead) << ", stored in " << manager->getModelUnitName() << ")\n";
    return Success;
}

int runUnits(Args& args, Io& io)
{
    const QString verb = args.takeVerb(QStringLiteral("list, convert, print or parse"));
    UnitRegistry registry;
    if (verb == QLatin1String("list"))
        return runList(registry, args, io);
    if (verb == QLatin1String("convert"))
        return runConvert(registry, args, io);
    if (verb == QLatin1String("print"))
        return runPrint(registry, args, io);
    if (verb == QLatin1String("parse"))
        return runParse(registry, args, io);
    throw UsageError{QStringLiteral("unknown verb '%1'").arg(verb)};
}

void tourUnits(Io& io)
{
    tourHeading(io, QStringLiteral("Units"));
    UnitRegistry registry;
    io.out << registry.categories_size() << " categories, each with its units, e.g.:\n";
    struct Sample {
        std::string category;
        double value;
        const char* from;
        const char* to;
    } samples[] = {{UnitRegistry::CATEGORY_XY, 5, "km", "mi"},
                   {UnitRegistry::CATEGORY_TEMPERATURE, 20, "degree Celsius", "degree Fahrenheit"},
                   {UnitRegistry::CATEGORY_PRESSURE, 100, "MPa", "psi"},
                   {UnitRegistry::CATEGORY_ORIENTATION, 90, "deg", "rad"},
                   {UnitRegistry::CATEGORY_PERMEABILITY, 250, "mD", "D"}};
    for (const Sample& s : samples) {
        const ManagerPtr m = registry.getCategory(s.category);
        const int from = m->getUnitKey(QString::fromLatin1(s.from)), to = m->getUnitKey(QString::fromLatin1(s.to));
        io.out << "  " << s.value << " " << m->getUnitTag(from) << " = "
               << QString::number(m->convert(s.value, from, to), 'g', 10) << " " << m->getUnitTag(to) << "  ("
               << m->getCategoryDisplayName() << ")\n";
    }
    io.out << "The same stored values under the three display schemes:\n";
    const struct {
        std::string category;
        double value;
    } stored[] = {{UnitRegistry::CATEGORY_XY, 1234.5},
                  {UnitRegistry::CATEGORY_ELEVATION, -350.25},
                  {UnitRegistry::CATEGORY_TEMPERATURE, 85.0},
                  {UnitRegistry::CATEGORY_PRESSURE, 42.0}};
    for (int id = 0; id < 3; ++id) {
        registry.setCategoryTable(static_cast<DisplayUnitId>(id));
        QStringList row;
        for (const auto& s : stored)
            row << registry.getCategory(s.category)->printValue(s.value).trimmed();
        io.out << "  scheme " << id << " (" << kSchemeNames[id] << "): " << row.join(QStringLiteral(" | ")) << "\n";
    }
    registry.setCategoryTable(rkBase::DISPLAY_METRIC);
    double depth = 0;
    int unit = -1;
    const ManagerPtr z = registry.getZDimensionUnitManager();
    z->parseValue(QStringLiteral("1200 ft"), depth, -1, &unit);
    io.out << "Parsing \"1200 ft\" as a depth measure stores " << depth << " " << z->getUnitTag(z->modelUnit())
           << ".\n";
}

const AreaRegistration registration{
    Area{10, QStringLiteral("units"), QStringLiteral("list, convert, print and parse values in the unit catalogue"),
         QStringLiteral("Usage: rktool units list [--scheme 0|1|2] [--json]\n"
                        "       rktool units convert <value> <from> <to> [--category C] [--json]\n"
                        "       rktool units print <value> --category C [--scheme 0|1|2] [--unit U] [--json]\n"
                        "       rktool units parse \"<text>\" --category C [--scheme 0|1|2] [--json]\n\n"
                        "list     every category: its display name, quantity, units with tags, and how it is\n"
                        "         shown under the chosen display scheme (0 metric, 1 imperial, 2 metric\n"
                        "         horizontal with imperial vertical; 0 by default)\n"
                        "convert  converts a value between two units given by name or tag (\"km\", \"mile\");\n"
                        "         without --category the first category that knows both units is used, and\n"
                        "         a usage error asks for --category when categories disagree\n"
                        "print    prints a stored value (in the category's model unit) as users see it\n"
                        "         under a scheme, or in --unit\n"
                        "parse    reads a typed value such as \"12.5 km\" (no tag: the display unit) and\n"
                        "         shows the stored value and the unit read\n\n"
                        "A category is given by its key (\"xy\", \"zdimension\") or display name (\"XY\").\n"),
         runUnits, tourUnits}};

} // namespace
} // namespace rktool
