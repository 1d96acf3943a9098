#include "Cli.h"

#include "units/UnitManagers.h"
#include "units/UnitRegistry.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QRegularExpression>

#include <cmath>

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
    const QString lower = text.toLower();
    if (lower == QLatin1String("metric") || text == QLatin1String("0"))
        return rkBase::DISPLAY_METRIC;
    if (lower == QLatin1String("imperial") || text == QLatin1String("1"))
        return rkBase::DISPLAY_IMPERIAL;
    if (lower == QLatin1String("mixed") || text == QLatin1String("2"))
        return rkBase::DISPLAY_METRIC_XY;
    throw UsageError{QStringLiteral("--scheme takes metric, imperial or mixed (or 0, 1, 2), not '%1'").arg(text)};
}

// -1: the shortest text that reads back as the same double.
int precisionOption(Args& args)
{
    if (!args.has(QStringLiteral("--precision")))
        return -1;
    const QString text = args.option(QStringLiteral("--precision"));
    const int p = toInt(text, QStringLiteral("--precision"));
    if (p < 0 || p > 17)
        throw UsageError{QStringLiteral("--precision takes 0 to 17 decimals, not '%1'").arg(text)};
    return p;
}

QString number(double v, int precision)
{
    return precision < 0 ? QString::number(v, 'g', QLocale::FloatingPointShortest) : QString::number(v, 'f', precision);
}

ManagerPtr findCategory(const UnitRegistry& registry, const QString& name)
{
    ManagerPtr manager = registry.getCategory(name);
    if (!manager) // the name shown to users too ("XY", "Depth Measure")
        manager = registry.getCategory(registry.displayUnitManager()->getCategoryFromDisplayName(name));
    if (!manager)
        for (auto it = registry.categories_begin(); it != registry.categories_end() && !manager; ++it)
            if (QString::fromStdString(it->first).compare(name, Qt::CaseInsensitive) == 0 ||
                it->second->getCategoryDisplayName().compare(name, Qt::CaseInsensitive) == 0)
                manager = it->second;
    return manager;
}

ManagerPtr categoryOption(const UnitRegistry& registry, Args& args, bool required)
{
    const QString name = args.option(QStringLiteral("--category"));
    if (name.isEmpty()) {
        if (required)
            throw UsageError{QStringLiteral("--category is required")};
        return ManagerPtr();
    }
    ManagerPtr manager = findCategory(registry, name);
    if (!manager)
        throw UsageError{QStringLiteral("unknown category '%1'; 'rktool units list' shows them").arg(name)};
    return manager;
}

QString categoryName(const ManagerPtr& m) { return QString::fromStdString(m->category()); }

// Text from the command line as quoted in a message: long input is cut, so that one bad
// argument of a megabyte gives one readable line.
QString shown(const QString& text)
{
    const QString oneLine = QString(text).replace(QLatin1Char('\n'), QLatin1Char(' '));
    return oneLine.size() <= 60 ? oneLine : oneLine.left(40) + QStringLiteral("... (%1 characters)").arg(text.size());
}

QString unitList(const UnitManager& m)
{
    QStringList units;
    for (int u = 0; u < m.numUnits(); ++u) {
        const QString tag = m.getUnitTag(u), name = m.getUnitName(u);
        if (tag.isEmpty() && name.isEmpty())
            continue;
        units << (tag.isEmpty() || tag == name ? name : QStringLiteral("%1 (%2)").arg(tag, name));
    }
    return units.isEmpty() ? QStringLiteral("none: plain numbers only") : units.join(QStringLiteral(", "));
}

QString didYouMean(const QStringList& near)
{
    if (near.isEmpty())
        return QString();
    QStringList quoted;
    for (const QString& n : near)
        quoted << QLatin1Char('\'') + n + QLatin1Char('\'');
    return QStringLiteral("did you mean %1? ").arg(quoted.join(QStringLiteral(" or ")));
}

int unitOf(const ManagerPtr& m, const QString& text)
{
    const int key = m->findUnit(text);
    if (key < 0)
        throw Failure{QStringLiteral("%1 has no unit '%2'; %3its units: %4")
                          .arg(categoryName(m), shown(text), didYouMean(m->nearestUnits(text)), unitList(*m))};
    return key;
}

bool isNanOrInfinity(const QString& text)
{
    static const QRegularExpression word(QStringLiteral("^\\s*[-+\\x{2212}]?(nan|inf|infinity)\\b"),
                                         QRegularExpression::CaseInsensitiveOption);
    return word.match(text).hasMatch();
}

double valueArgument(const QString& text)
{
    double v = 0.0;
    if (UnitManager::readNumber(text, v))
        return v;
    if (isNanOrInfinity(text))
        throw UsageError{QStringLiteral("'%1' is not a value: NaN and infinities are refused").arg(shown(text))};
    throw UsageError{QStringLiteral("value is not a number: '%1'").arg(shown(text))};
}

// Degrees, minutes and seconds as people write them: 45°30'15", 45 30 15, 45d30m15s, -12°5'.
bool readDms(const UnitManager& m, const QString& text, double& value, int to)
{
    static const QRegularExpression dms(QStringLiteral(
        "^\\s*([-+\\x{2212}]?)\\s*(\\d+(?:\\.\\d+)?)\\s*(?:\\x{00B0}|deg|d)?\\s*(\\d+(?:\\.\\d+)?)\\s*"
        "(?:'|\\x{2032}|min|m)?\\s*(?:(\\d+(?:\\.\\d+)?)\\s*(?:\"|\\x{2033}|''|sec|s)?)?\\s*$"));
    const QRegularExpressionMatch match = dms.match(text);
    if (!match.hasMatch())
        return false;
    const double degrees = match.captured(2).toDouble(), minutes = match.captured(3).toDouble();
    const double seconds = match.captured(4).isEmpty() ? 0.0 : match.captured(4).toDouble();
    if (minutes >= 60 || seconds >= 60)
        throw Failure{QStringLiteral("cannot read '%1': minutes and seconds must be below 60").arg(shown(text))};
    const double sign = match.captured(1).isEmpty() || match.captured(1) == QLatin1String("+") ? 1.0 : -1.0;
    const int degree = m.findUnit(QStringLiteral("degree"));
    value = m.convert(sign * (degrees + minutes / 60.0 + seconds / 3600.0), degree, to < 0 ? m.modelUnit() : to);
    return true;
}

struct Reading {
    double value = 0.0;
    int unit = -1;
    QString ignored; // lenient reading only: text after the value that was not read
};

// Reads a typed value into the model unit. Strict: the whole text must be a number and at most
// one unit of the category. Lenient: the library's forgiving reading of editors.
Reading readValue(const ManagerPtr& m, const QString& text, bool lenient)
{
    Reading r;
    if (lenient) {
        if (!m->parseValue(text, r.value, -1, &r.unit))
            throw Failure{QStringLiteral("cannot read '%1' as a value of %2; its units: %3")
                              .arg(shown(text), categoryName(m), unitList(*m))};
        QString numberText, tag;
        const int at = m->matchPattern(text, &numberText, &tag);
        QString rest = text.mid(at + numberText.size()).trimmed();
        if (!tag.isEmpty() && rest.startsWith(tag))
            rest = rest.mid(tag.size()).trimmed();
        const QString before = text.left(at).trimmed();
        r.ignored = (before.isEmpty() || rest.isEmpty()) ? before + rest : before + QStringLiteral(" ... ") + rest;
        return r;
    }
    if (dynamic_cast<const rkBase::AngleUnitManager*>(m.get()) && readDms(*m, text, r.value, -1)) {
        r.unit = m->findUnit(QStringLiteral("degree"));
        return r;
    }
    int used = 0;
    if (m->parseValueStrict(text, r.value, -1, &r.unit, &used))
        return r;
    if (isNanOrInfinity(text))
        throw Failure{QStringLiteral("cannot read '%1': NaN and infinities are not values").arg(shown(text))};
    const QString rest = text.mid(used).trimmed();
    if (used == 0 || text.left(used).trimmed().isEmpty())
        throw Failure{QStringLiteral("cannot read '%1' as a value of %2: it must start with a number; its units: %3")
                          .arg(shown(text), categoryName(m), unitList(*m))};
    double plain = 0.0;
    if (!UnitManager::readNumber(text.left(used), plain))
        throw Failure{QStringLiteral("cannot read '%1': the number is too large").arg(shown(text))};
    throw Failure{QStringLiteral("cannot read '%1' as a value of %2: unknown unit '%3'; %4its units: %5")
                      .arg(shown(text), categoryName(m), shown(rest), didYouMean(m->nearestUnits(rest)), unitList(*m))};
}

void printJson(Io& io, const QJsonValue& value)
{
    io.out << (value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject()))
                  .toJson(QJsonDocument::Indented);
}

double finiteResult(double v, const QString& what)
{
    if (!std::isfinite(v))
        throw Failure{QStringLiteral("%1 is too large for a double").arg(what)};
    return v;
}

int runList(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const DisplayUnitId scheme = schemeOption(args);
    const ManagerPtr only = categoryOption(registry, args, false);
    args.expect(0, QStringLiteral("no arguments after 'list'"));
    registry.setCategoryTable(scheme);

    QJsonArray all;
    if (!json)
        io.out << "Display scheme " << int(scheme) << " (" << kSchemeNames[scheme] << ")\n";
    for (auto it = registry.categories_begin(); it != registry.categories_end(); ++it) {
        const ManagerPtr& m = it->second;
        if (only && m != only)
            continue;
        QJsonArray units;
        for (int u = 0; u < m->numUnits(); ++u)
            units.append(QJsonObject{{QStringLiteral("key"), u},
                                     {QStringLiteral("name"), m->getUnitName(u)},
                                     {QStringLiteral("tag"), m->getUnitTag(u)}});
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
        const int decimals = m->precision();
        const QString shown = m->getDisplayUnitName().isEmpty() ? QStringLiteral("a plain number")
                                                                 : m->getDisplayUnitName();
        const QString stored = m->getModelUnitName().isEmpty() ? QStringLiteral("a plain number")
                                                                : m->getModelUnitName();
        io.out << "\n"
               << categoryName(m) << " - " << m->getCategoryDisplayName() << " (" << QString::fromStdString(m->key())
               << ")\n"
               << "  shown as " << shown << " with " << decimals << (decimals == 1 ? " decimal" : " decimals")
               << "; stored as " << stored << "\n"
               << "  units: " << unitList(*m) << "\n";
    }
    if (json)
        printJson(io, all);
    return Success;
}

int runConvert(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const int precision = precisionOption(args);
    ManagerPtr manager = categoryOption(registry, args, false);
    const QStringList p = args.expect(3, QStringLiteral("<value> <from> <to>"));
    const double value = valueArgument(p[0]);

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
        const int from = m->findUnit(p[1]), to = m->findUnit(p[2]);
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
        if (manager) {
            unitOf(manager, p[1]);
            unitOf(manager, p[2]);
        }
        // Name the unit that no category knows, with the nearest names anywhere.
        for (const QString& unit : {p[1], p[2]}) {
            bool known = false;
            QStringList near;
            for (const ManagerPtr& m : candidates) {
                known = known || m->findUnit(unit) >= 0;
                for (const QString& n : m->nearestUnits(unit, 2))
                    if (!near.contains(n) && near.size() < 3)
                        near << n;
            }
            if (!known)
                throw Failure{QStringLiteral("unknown unit '%1'; %2'rktool units list' shows every unit")
                                  .arg(shown(unit), didYouMean(near))};
        }
        throw Failure{QStringLiteral("no category has both units '%1' and '%2'").arg(shown(p[1]), shown(p[2]))};
    }
    if (!ambiguous.isEmpty())
        throw UsageError{QStringLiteral("'%1' and '%2' mean different things in %3 and %4; give --category")
                             .arg(p[1], p[2], categoryName(chosen), ambiguous.join(QStringLiteral(", ")))};
    finiteResult(result, QStringLiteral("the result"));

    const int to = chosen->findUnit(p[2]);
    if (json) {
        printJson(io, QJsonObject{{QStringLiteral("category"), categoryName(chosen)},
                                  {QStringLiteral("value"), value},
                                  {QStringLiteral("from"), chosen->getUnitName(chosen->findUnit(p[1]))},
                                  {QStringLiteral("to"), chosen->getUnitName(to)},
                                  {QStringLiteral("result"), result}});
        return Success;
    }
    io.out << number(result, precision) << " " << chosen->getUnitTag(to) << "\n";
    return Success;
}

int runPrint(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const bool lenient = args.flag(QStringLiteral("--lenient"));
    const int precision = precisionOption(args);
    ManagerPtr manager = categoryOption(registry, args, true);
    const DisplayUnitId scheme = schemeOption(args);
    const QString unit = args.option(QStringLiteral("--unit"));
    const QStringList p = args.expect(1, QStringLiteral("<value> (in the category's model unit, or with a unit)"));
    registry.setCategoryTable(scheme);

    // A bare number is in the model unit; a number with a unit is read as typed.
    double value = 0.0;
    if (!UnitManager::readNumber(p[0], value)) {
        if (lenient) {
            if (!manager->parseNumber(p[0], value))
                throw Failure{QStringLiteral("cannot read '%1' as a number").arg(shown(p[0]))};
        } else {
            const int display = manager->displayUnit();
            manager->displayUnit(manager->modelUnit());
            value = readValue(manager, p[0], false).value;
            manager->displayUnit(display);
        }
    }
    if (!unit.isEmpty())
        manager->displayUnit(unitOf(manager, unit));
    if (precision >= 0)
        manager->setCustomPrecision(precision);
    const double shown = finiteResult(manager->convertModelToDisplay(value), QStringLiteral("the value shown"));
    const QString text = manager->printValue(value).trimmed();
    if (json) {
        printJson(io, QJsonObject{{QStringLiteral("text"), text},
                                  {QStringLiteral("display_value"), shown},
                                  {QStringLiteral("display_unit"), manager->getDisplayUnitName()}});
        return Success;
    }
    io.out << text << "\n";
    return Success;
}

int runParse(UnitRegistry& registry, Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const bool lenient = args.flag(QStringLiteral("--lenient"));
    const int precision = precisionOption(args);
    ManagerPtr manager = categoryOption(registry, args, true);
    const DisplayUnitId scheme = schemeOption(args);
    const QStringList p = args.expect(1, QStringLiteral("one quoted text such as \"12.5 km\""));
    registry.setCategoryTable(scheme);

    const Reading r = readValue(manager, p[0], lenient);
    finiteResult(r.value, QStringLiteral("the value"));
    if (!r.ignored.isEmpty())
        io.err << "rktool units: note: ignored '" << r.ignored << "' (lenient reading)\n";

    if (json) {
        QJsonObject o{{QStringLiteral("model_value"), r.value},
                      {QStringLiteral("model_unit"), manager->getModelUnitName()},
                      {QStringLiteral("unit_read"), manager->getUnitName(r.unit)},
                      {QStringLiteral("reading"), lenient ? QStringLiteral("lenient") : QStringLiteral("strict")}};
        if (lenient)
            o.insert(QStringLiteral("ignored"), r.ignored);
        printJson(io, o);
        return Success;
    }
    io.out << number(r.value, precision) << " " << manager->getUnitTag(manager->modelUnit()) << " (read as "
           << manager->getUnitName(r.unit) << ", stored in " << manager->getModelUnitName() << ")\n";
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
    z->parseValueStrict(QStringLiteral("1200 feet"), depth, -1, &unit);
    io.out << "Reading \"1200 feet\" as a depth measure stores " << depth << " " << z->getUnitTag(z->modelUnit())
           << "; \"1200 furlongs\" is refused, not guessed.\n";
    const ManagerPtr angle = registry.getOrientationUnitManager();
    angle->displayUnit(angle->findUnit(QStringLiteral("second")));
    angle->setMSP(true);
    io.out << "An orientation of 45.25 degrees in degrees, minutes and seconds: " << angle->printValue(45.25).trimmed()
           << "\n";
    angle->setMSP(false);
}

const AreaRegistration registration{
    Area{10, QStringLiteral("units"), QStringLiteral("list, convert, print and parse values in the unit catalogue"),
         QStringLiteral(
             "Usage: rktool units list [--category C] [--scheme S] [--json]\n"
             "       rktool units convert <value> <from> <to> [--category C] [--precision N] [--json]\n"
             "       rktool units print <value> --category C [--scheme S] [--unit U] [--precision N]\n"
             "                          [--lenient] [--json]\n"
             "       rktool units parse \"<text>\" --category C [--scheme S] [--precision N] [--lenient] [--json]\n\n"
             "list     categories (all, or one with --category): display name, quantity, units, and how\n"
             "         values are shown under the display scheme S\n"
             "convert  converts a value between two units; without --category the category that knows\n"
             "         both units is used, and a usage error asks for --category when categories disagree\n"
             "print    prints a stored value as users see it under a scheme, or in --unit; a bare number\n"
             "         is in the category's model unit, a number with a unit (\"5 ft\") is converted first\n"
             "parse    reads a typed value such as \"12.5 km\" (no unit: the scheme's display unit) and\n"
             "         shows the stored value and the unit read\n\n"
             "Reading is strict: the text must be a number (sign, digits, point, exponent with e or E;\n"
             "the minus sign U+2212 too) followed by nothing or one unit of the category, else the\n"
             "command fails and lists the category's units. Units match by name or tag, ignoring case\n"
             "where that picks one unit, with plural names (\"feet\") and ASCII spellings (\"um\",\n"
             "\"m2\", \"m^2\", \"degC\"). Angles also read degrees, minutes and seconds: 45°30'15\",\n"
             "\"45 30 15\", 45d30m15s. NaN and infinities are refused.\n"
             "--lenient reads as the library's editors do: text before the number and after the unit\n"
             "is ignored (and reported), and tags are case-sensitive; \"5 feet\" then reads 5 in the\n"
             "display unit.\n\n"
             "S is metric, imperial or mixed (metric horizontal, imperial vertical), or 0, 1, 2.\n"
             "Numbers print in their shortest exact form; --precision N prints N decimals.\n"
             "A category is given by its key (\"xy\", \"zdimension\") or display name (\"XY\").\n"
             "Exit codes: 0 done, 1 a value or unit that cannot be read, 2 bad usage.\n"),
         runUnits, tourUnits}};

} // namespace
} // namespace rktool
