#include "Cli.h"
#include "TerminalProgress.h"

#include "matrix/MatrixData.h"
#include "units/UnitManager.h"
#include "units/UnitRegistry.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QTemporaryDir>

#include <cmath>
#include <memory>

namespace rktool {
namespace {

using rkBase::MatrixData;
using rkBase::UnitRegistry;

QString number(double v)
{
    return std::isfinite(v) ? QString::number(v, 'g', QLocale::FloatingPointShortest) : QStringLiteral("-");
}

struct Loaded {
    UnitRegistry registry;
    std::unique_ptr<MatrixData> root{new MatrixData(QStringLiteral("table"), 0, 1, QVariant::Double, false)};
};

void load(Loaded& t, const QString& file, int table)
{
    const QFileInfo info(file);
    if (!info.exists())
        throw Failure{QStringLiteral("no such file: %1").arg(file)};
    if (!info.isFile() || !info.isReadable())
        throw Failure{QStringLiteral("cannot read %1").arg(file)};
    t.root->setRegistry(&t.registry);
    TerminalProgress progress;
    progress.set_caption(QStringLiteral("reading"));
    if (!t.root->readCSV(file, table, &progress) || t.root->leafs().isEmpty())
        throw Failure{QStringLiteral("%1 holds no table%2").arg(file, table > 0 ? QStringLiteral(" %1").arg(table) : QString())};
}

MatrixData* column(Loaded& t, const QString& name)
{
    MatrixData* c = t.root->child(name);
    if (!c) {
        QStringList names;
        for (MatrixData* leaf : t.root->leafs())
            names << leaf->name();
        throw Failure{QStringLiteral("no column '%1'; the columns: %2").arg(name, names.join(QStringLiteral(", ")))};
    }
    return c;
}

int tableOption(Args& args)
{
    const int table = toInt(args.option(QStringLiteral("--table"), QStringLiteral("0")), QStringLiteral("--table"));
    if (table < 0)
        throw UsageError{QStringLiteral("--table takes 0 or more")};
    return table;
}

void printJson(Io& io, const QJsonValue& v)
{
    io.out << (v.isArray() ? QJsonDocument(v.toArray()) : QJsonDocument(v.toObject())).toJson(QJsonDocument::Indented);
}

int runInfo(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const int table = tableOption(args);
    const QStringList p = args.expect(1, QStringLiteral("<file.csv>"));
    Loaded t;
    load(t, p[0], table);
    QJsonArray groups;
    for (MatrixData* group : t.root->children()) {
        QJsonArray columns;
        if (!json)
            io.out << group->name() << "\n";
        for (MatrixData* c : group->children()) {
            const QString unit = c->unitManager() ? c->unitManager()->getUnitName(c->nodeUnitKey()) : QString();
            columns.append(QJsonObject{{QStringLiteral("name"), c->name()},
                                       {QStringLiteral("type"), c->systemType()},
                                       {QStringLiteral("category"), QString::fromStdString(c->unitCategory())},
                                       {QStringLiteral("unit_in_file"), unit},
                                       {QStringLiteral("rows"), c->rowCount()},
                                       {QStringLiteral("rows_with_values"), c->validValueRowCount()}});
            if (!json)
                io.out << "  " << c->name() << ": " << c->systemType()
                       << (c->unitCategory().empty() ? QString()
                                                     : QStringLiteral(", %1 in %2").arg(
                                                           QString::fromStdString(c->unitCategory()), unit))
                       << ", " << c->rowCount() << " rows, " << c->validValueRowCount() << " with values\n";
        }
        groups.append(QJsonObject{{QStringLiteral("group"), group->name()}, {QStringLiteral("columns"), columns}});
    }
    if (json)
        printJson(io, groups);
    return Success;
}

QJsonObject statsOf(MatrixData* c)
{
    QJsonObject o{{QStringLiteral("column"), c->name()}, {QStringLiteral("type"), c->systemType()}};
    if (c->cellType() != QVariant::Double && c->cellType() != QVariant::Int)
        return o;
    double min = 0, mean = 0, max = 0;
    if (!c->getMinMax(min, mean, max, boost::dynamic_bitset<>()))
        return o;
    // Statistics about the mean: the spread is taken about the computed mean, not about a
    // statistics table's row 1.
    double squares = 0;
    int n = 0;
    for (int r = 0; r < c->rowCount(); ++r)
        if (!c->isNullObject(r, 0)) {
            const double d = c->toDouble(r, 0) - mean;
            squares += d * d;
            ++n;
        }
    o.insert(QStringLiteral("count"), n);
    o.insert(QStringLiteral("min"), min);
    o.insert(QStringLiteral("mean"), mean);
    o.insert(QStringLiteral("max"), max);
    o.insert(QStringLiteral("standard_deviation"), n ? std::sqrt(squares / n) : 0.0);
    if (c->unitCategory() == UnitRegistry::CATEGORY_ORIENTATION) {
        double length = 0;
        const double direction = c->resultantMeanDirection(length, {});
        if (direction != 99999.0) {
            o.insert(QStringLiteral("mean_direction"), direction);
            o.insert(QStringLiteral("resultant_length"), length);
        }
    }
    return o;
}

int runStats(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const int table = tableOption(args);
    const QString only = args.option(QStringLiteral("--column"));
    const QStringList p = args.expect(1, QStringLiteral("<file.csv>"));
    Loaded t;
    load(t, p[0], table);
    QList<MatrixData*> columns = only.isEmpty() ? t.root->leafs() : QList<MatrixData*>{column(t, only)};
    QJsonArray all;
    for (MatrixData* c : columns) {
        const QJsonObject o = statsOf(c);
        all.append(o);
        if (json)
            continue;
        io.out << c->name() << ": ";
        if (!o.contains(QStringLiteral("count"))) {
            io.out << (o.value(QStringLiteral("type")).toString() == QLatin1String("Real") ||
                               o.value(QStringLiteral("type")).toString() == QLatin1String("Integer")
                           ? "no values\n"
                           : "not numeric\n");
            continue;
        }
        io.out << o.value(QStringLiteral("count")).toInt() << " values, min " << number(o.value("min").toDouble())
               << ", mean " << number(o.value("mean").toDouble()) << ", max " << number(o.value("max").toDouble())
               << ", standard deviation " << number(o.value("standard_deviation").toDouble());
        if (o.contains(QStringLiteral("mean_direction")))
            io.out << ", mean direction " << number(o.value("mean_direction").toDouble()) << " (resultant length "
                   << number(o.value("resultant_length").toDouble()) << ")";
        io.out << "\n";
    }
    if (json)
        printJson(io, all);
    return Success;
}

int runHistogram(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const int table = tableOption(args);
    const QString name = args.option(QStringLiteral("--column"));
    if (name.isEmpty())
        throw UsageError{QStringLiteral("--column is required")};
    double step = 99999.0;
    if (args.has(QStringLiteral("--step"))) {
        step = toNumber(args.option(QStringLiteral("--step")), QStringLiteral("--step"));
        if (!(step > 0) || !std::isfinite(step))
            throw UsageError{QStringLiteral("--step takes a positive number")};
    }
    const QString typeText = args.option(QStringLiteral("--type"), QStringLiteral("count"));
    MatrixData::HistogramType type = MatrixData::HISTOGRAM_COUNT;
    if (typeText == QLatin1String("percent"))
        type = MatrixData::HISTOGRAM_PERCENT;
    else if (typeText == QLatin1String("cumulative"))
        type = MatrixData::HISTOGRAM_CUMULATIVE;
    else if (typeText != QLatin1String("count"))
        throw UsageError{QStringLiteral("--type takes count, percent or cumulative, not '%1'").arg(typeText)};
    const QStringList p = args.expect(1, QStringLiteral("<file.csv>"));
    Loaded t;
    load(t, p[0], table);
    MatrixData* c = column(t, name);
    if (c->cellType() != QVariant::Double && c->cellType() != QVariant::Int)
        throw Failure{QStringLiteral("column '%1' is not numeric").arg(name)};
    c->setMinMax(0, std::vector<int>());
    if (c->minValue().isNull())
        throw Failure{QStringLiteral("column '%1' has no values").arg(name)};
    std::unique_ptr<MatrixData> h;
    if (step == 99999.0) {
        // The library's 50 bins from min - step end exactly at the maximum, which then falls out
        // of the last bin; one more bin keeps every value counted.
        const double min = c->minValue().toDouble(), max = c->maxValue().toDouble();
        step = max > min ? (max - min) / 49.0 : 1.0;
        std::vector<std::vector<QVariant>> none;
        h.reset(c->newFrequencyData(step, int((max - min) / step) + 2, min - step, type, {}, nullptr, nullptr, none, true));
    } else {
        h.reset(c->newFrequencyData(step, type, {}, nullptr, true, true));
    }
    if (!h)
        throw Failure{QStringLiteral("cannot make a histogram of '%1' with step %2 (too many bins?)").arg(name, number(step))};
    QJsonArray bins;
    for (int i = 0; i < h->rowCount(); ++i) {
        const double value = h->toDouble(i, 0);
        bins.append(QJsonObject{{QStringLiteral("from"), h->toDouble(i, 2)},
                                {QStringLiteral("to"), h->toDouble(i, 3)},
                                {QStringLiteral("value"), value}});
        if (!json)
            io.out << "[" << number(h->toDouble(i, 2)) << ", " << number(h->toDouble(i, 3)) << ")  " << number(value)
                   << "\n";
    }
    if (json)
        printJson(io, QJsonObject{{QStringLiteral("column"), name},
                                  {QStringLiteral("step"), step},
                                  {QStringLiteral("type"), typeText},
                                  {QStringLiteral("counted"), h->validValueRowCount()},
                                  {QStringLiteral("bins"), bins}});
    return Success;
}

int runConvert(Args& args, Io& io)
{
    const bool raw = args.flag(QStringLiteral("--raw"));
    const bool statistics = args.flag(QStringLiteral("--statistics"));
    const int table = tableOption(args);
    const QStringList p = args.expect(2, QStringLiteral("<in.csv> <out.csv>"));
    if (QFileInfo(p[0]).canonicalFilePath() == QFileInfo(p[1]).canonicalFilePath() && QFileInfo::exists(p[1]))
        throw Failure{QStringLiteral("the output would replace the input; give another file")};
    Loaded t;
    load(t, p[0], table);
    // Written beside the target and moved into place, so that a failed write loses no file.
    const QString temporary = p[1] + QStringLiteral(".part");
    TerminalProgress progress;
    progress.set_caption(QStringLiteral("writing"));
    QString error;
    if (!t.root->writeCSV(temporary, nullptr, raw, false, statistics, false, nullptr, &progress, &error)) {
        QFile::remove(temporary);
        throw Failure{QStringLiteral("cannot write %1: %2").arg(p[1], error)};
    }
    QFile::remove(p[1]);
    if (!QFile::rename(temporary, p[1])) {
        QFile::remove(temporary);
        throw Failure{QStringLiteral("cannot write %1").arg(p[1])};
    }
    io.out << "wrote " << t.root->leafs().size() << " columns to " << p[1] << "\n";
    return Success;
}

int runTable(Args& args, Io& io)
{
    const QString verb = args.takeVerb(QStringLiteral("info, stats, histogram or convert"));
    if (verb == QLatin1String("info"))
        return runInfo(args, io);
    if (verb == QLatin1String("stats"))
        return runStats(args, io);
    if (verb == QLatin1String("histogram"))
        return runHistogram(args, io);
    if (verb == QLatin1String("convert"))
        return runConvert(args, io);
    throw UsageError{QStringLiteral("unknown verb '%1'").arg(verb)};
}

void tourTable(Io& io)
{
    tourHeading(io, QStringLiteral("Attribute tables"));
    QTemporaryDir dir;
    Loaded t;
    t.root->setRegistry(&t.registry);
    auto* group = new MatrixData(QStringLiteral("Outcrop"), 0, 1, QVariant::Double, false);
    t.root->appendChild(group, false);
    auto* dip = new MatrixData(QStringLiteral("dip direction"), 0, 1, QVariant::Double, true);
    dip->setUnitManager(t.registry.getCategory(UnitRegistry::CATEGORY_ORIENTATION));
    auto* rock = new MatrixData(QStringLiteral("rock"), 0, 1, QVariant::String, true);
    const double dips[] = {112, 118, 125, 109, 121};
    const char* rocks[] = {"gneiss", "gneiss", "schist", "gneiss", "schist, mica"};
    for (int r = 0; r < 5; ++r) {
        dip->setDouble(r, 0, dips[r]);
        rock->setValue(r, 0, QString::fromLatin1(rocks[r]));
    }
    group->appendChild(dip, false);
    group->appendChild(rock, false);
    dip->setMinMax(0, std::vector<int>());
    const QString file = dir.filePath(QStringLiteral("outcrop.csv"));
    t.root->writeCSV(file, nullptr, false, false, false, true, nullptr);
    double length = 0;
    const double mean = dip->resultantMeanDirection(length, {});
    io.out << "A table of 5 measured dip directions and rock names written as a table file and read back:\n";
    Loaded back;
    back.root->setRegistry(&back.registry);
    back.root->readCSV(file, 0);
    io.out << "  " << back.root->leafs().size() << " columns; dip direction min "
           << number(back.root->child(QStringLiteral("dip direction"))->minValue().toDouble()) << ", max "
           << number(back.root->child(QStringLiteral("dip direction"))->maxValue().toDouble())
           << "; mean direction " << number(std::round(mean * 100) / 100) << " deg\n";
    io.out << "  \"schist, mica\" reads back as \"" << back.root->child(QStringLiteral("rock"))->value(4, 0).toString()
           << "\" (a comma cannot stand in a field)\n";
    back.root->insertRowAtPos(2);
    back.root->lastUndo(false);
    io.out << "  a row inserted and undone leaves " << back.root->child(QStringLiteral("rock"))->rowCount()
           << " rows\n";
}

const AreaRegistration registration{
    Area{20, QStringLiteral("table"), QStringLiteral("read attribute-table files: columns, statistics, histograms"),
         QStringLiteral(
             "Usage: rktool table info <file.csv> [--table N] [--json]\n"
             "       rktool table stats <file.csv> [--column NAME] [--table N] [--json]\n"
             "       rktool table histogram <file.csv> --column NAME [--step S] [--type count|percent|cumulative]\n"
             "                              [--table N] [--json]\n"
             "       rktool table convert <in.csv> <out.csv> [--raw] [--statistics] [--table N]\n\n"
             "info       the groups and columns: type, unit category and unit in the file, rows\n"
             "stats      count, min, mean, max and standard deviation of numeric columns (stored units),\n"
             "           and the resultant mean direction of orientation columns\n"
             "histogram  bins of a numeric column (about 50 without --step), each [from, to)\n"
             "convert    reads a table and writes it again in the current layout; --raw writes stored\n"
             "           values instead of display units, --statistics adds the min/mean/max rows\n\n"
             "A file may hold several tables: --table N reads the N-th after the first (0 is the first).\n"
             "A plain comma-separated file with a header row of names is read too.\n"
             "Exit codes: 0 done, 1 a file that cannot be read or written, 2 bad usage.\n"),
         runTable, tourTable}};

} // namespace
} // namespace rktool
