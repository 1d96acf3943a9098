#include "Cli.h"

#include "colour/RKColormap.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLocale>
#include <QSize>
#include <QTemporaryDir>

#include <cmath>

namespace rktool {
namespace {

using rkBase::RKColormap;

QString hexa(const QColor& c)
{
    return QStringLiteral("#%1%2%3%4")
        .arg(c.red(), 2, 16, QLatin1Char('0'))
        .arg(c.green(), 2, 16, QLatin1Char('0'))
        .arg(c.blue(), 2, 16, QLatin1Char('0'))
        .arg(c.alpha(), 2, 16, QLatin1Char('0'))
        .toUpper()
        .replace(QLatin1Char('X'), QLatin1Char('x'));
}

QString number(double v) { return QString::number(v, 'g', QLocale::FloatingPointShortest); }

// Reads `file` by its suffix; with `gmt` a cpt file as GMT reads it.
RKColormap load(const QString& file, bool gmt, RKColormap::GmtColours* extra = nullptr)
{
    const QFileInfo info(file);
    if (!info.exists())
        throw Failure{QStringLiteral("no such file: %1").arg(file)};
    const QString suffix = info.suffix().toLower();
    if (suffix != QLatin1String("cpt") && suffix != QLatin1String("cmap") && suffix != QLatin1String("clm"))
        throw Failure{QStringLiteral("%1: not a colour map file (cpt, cmap or clm)").arg(file)};
    RKColormap map;
    if (gmt && suffix == QLatin1String("cpt")) {
        if (!map.loadGmt(file, extra))
            throw Failure{QStringLiteral("%1: no interval line read as a GMT colour table").arg(file)};
        return map;
    }
    if (suffix != QLatin1String("cpt")) // a cmap spreads its colours over the map's range: 0 to 1
        map.fill_spectrum_color_list(0.0, 1.0, 2, false);
    if (!map.load(file, false))
        throw Failure{QStringLiteral("cannot read %1").arg(file)};
    if (map.empty())
        throw Failure{QStringLiteral("%1: no colours read%2").arg(
            file, gmt ? QString() : QStringLiteral(" (a GMT table? try --gmt)"))};
    return map;
}

// The colour GMT gives a value: red, green, blue and alpha each linear between the interval's
// two colours (GMT blends in the table's model, and the tables read here are RGB ones; the
// library's own value_to_color blends through hue instead). Outside the table, the end colours.
QColor gmtSample(const RKColormap& map, double v, bool hsv)
{
    if (map.empty())
        return QColor(0, 0, 0);
    // A value belongs to the interval that starts at or below it (z0 <= v < z1); the top of
    // the last interval belongs to that interval.
    if (v >= map.rbegin()->first)
        return map.rbegin()->second.first.toRgb();
    if (v < map.begin()->first)
        return map.begin()->second.first.toRgb();
    auto upper = map.upper_bound(v);
    const auto lower = std::prev(upper);
    const QColor a = lower->second.second;
    if (map.interpolation() == RKColormap::Blocked)
        return a.toRgb();
    const QColor b = upper->second.first;
    const double t = (v - lower->first) / (upper->first - lower->first);
    if (hsv) {
        // An HSV table blends hue, saturation and value each on its own, hue 0 to 360 the long
        // way if the table says so.
        const auto mixF = [t](double x, double y) { return x + (y - x) * t; };
        const auto hue = [](const QColor& c) { return c.hsvHueF() < 0 ? 0.0 : c.hsvHueF(); };
        const double h = mixF(hue(a), hue(b));
        QColor c = QColor::fromHsvF(h >= 1.0 ? h - 1.0 : h, mixF(a.hsvSaturationF(), b.hsvSaturationF()),
                                    mixF(a.valueF(), b.valueF()), mixF(a.alphaF(), b.alphaF()));
        return c.toRgb();
    }
    const auto mix = [t](int x, int y) { return int(std::lround(x + (y - x) * t)); };
    return QColor(mix(a.red(), b.red()), mix(a.green(), b.green()), mix(a.blue(), b.blue()), mix(a.alpha(), b.alpha()));
}

void printJson(Io& io, const QJsonValue& v)
{
    io.out << (v.isArray() ? QJsonDocument(v.toArray()) : QJsonDocument(v.toObject())).toJson(QJsonDocument::Indented);
}

int runInfo(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const bool gmt = args.flag(QStringLiteral("--gmt"));
    const QStringList p = args.expect(1, QStringLiteral("<file>"));
    RKColormap::GmtColours extra;
    const RKColormap map = load(p[0], gmt, &extra);
    const QString mode = map.interpolation() == RKColormap::Blocked ? QStringLiteral("blocked") : QStringLiteral("interpolated");
    QJsonArray breaks;
    for (const auto& e : map)
        breaks.append(QJsonObject{{QStringLiteral("value"), e.first},
                                  {QStringLiteral("arriving"), hexa(e.second.first)},
                                  {QStringLiteral("leaving"), hexa(e.second.second)}});
    if (json) {
        QJsonObject o{{QStringLiteral("mode"), mode}, {QStringLiteral("breaks"), breaks}};
        if (gmt) {
            o.insert(QStringLiteral("categorical"), extra.categorical);
            o.insert(QStringLiteral("hsv_model"), extra.hsvModel);
        }
        if (gmt)
            for (const auto& [key, colour] : {std::make_pair("background", extra.background),
                                              std::make_pair("foreground", extra.foreground),
                                              std::make_pair("no_data", extra.noData)})
                if (colour.isValid())
                    o.insert(QLatin1String(key), hexa(colour));
        printJson(io, o);
        return Success;
    }
    io.out << map.size() << " breaks from " << number(map.min_value()) << " to " << number(map.max_value()) << ", "
           << mode << "\n";
    for (const auto& e : map)
        io.out << "  " << number(e.first) << "  " << hexa(e.second.first)
               << (e.second.first != e.second.second ? QStringLiteral(" | %1").arg(hexa(e.second.second)) : QString())
               << "\n";
    return Success;
}

int runSample(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const bool gmt = args.flag(QStringLiteral("--gmt"));
    const QStringList p = args.positionals();
    if (p.size() < 2)
        throw UsageError{QStringLiteral("give a file and at least one value")};
    for (const QString& s : p.mid(1))
        if (s.startsWith(QLatin1String("--")))
            throw UsageError{QStringLiteral("unknown option '%1'").arg(s)};
    RKColormap::GmtColours extra;
    const RKColormap map = load(p[0], gmt, &extra);
    QJsonArray samples;
    for (const QString& text : p.mid(1)) {
        const double v = toNumber(text, QStringLiteral("value"));
        if (!std::isfinite(v))
            throw UsageError{QStringLiteral("'%1' is not a finite value").arg(text)};
        QColor c = gmt ? gmtSample(map, v, extra.hsvModel) : map.value_to_color(v);
        // GMT's own colours outside the table, where the file gives them.
        if (gmt && v < map.min_value() && extra.background.isValid())
            c = extra.background;
        else if (gmt && v > map.max_value() && extra.foreground.isValid())
            c = extra.foreground;
        samples.append(QJsonObject{{QStringLiteral("value"), v}, {QStringLiteral("colour"), hexa(c)}});
        if (!json)
            io.out << number(v) << " " << hexa(c) << "\n";
    }
    if (json)
        printJson(io, samples);
    return Success;
}

int runConvert(Args& args, Io& io)
{
    const bool gmt = args.flag(QStringLiteral("--gmt"));
    const QStringList p = args.expect(2, QStringLiteral("<in> <out>"));
    const QString suffix = QFileInfo(p[1]).suffix().toLower();
    if (suffix != QLatin1String("cpt") && suffix != QLatin1String("cmap"))
        throw UsageError{QStringLiteral("the output must end in .cpt or .cmap")};
    const RKColormap map = load(p[0], gmt);
    if (!map.save(p[1]))
        throw Failure{QStringLiteral("cannot write %1").arg(p[1])};
    io.out << "wrote " << map.size() << " breaks to " << p[1] << "\n";
    return Success;
}

QSize sizeOption(Args& args)
{
    const QString text = args.option(QStringLiteral("--size"), QStringLiteral("400x60"));
    const QStringList parts = text.toLower().split(QLatin1Char('x'));
    bool okW = false, okH = false;
    const int w = parts.value(0).toInt(&okW), h = parts.value(1).toInt(&okH);
    if (parts.size() != 2 || !okW || !okH || w < 2 || h < 2 || w > 10000 || h > 10000)
        throw UsageError{QStringLiteral("--size takes WxH, each 2 to 10000, not '%1'").arg(text)};
    return QSize(w, h);
}

int runRender(Args& args, Io& io)
{
    const bool gmt = args.flag(QStringLiteral("--gmt"));
    const QSize size = sizeOption(args);
    const QStringList p = args.expect(2, QStringLiteral("<file> <out.png>"));
    const RKColormap map = load(p[0], gmt);
    if (!map.saveImage(p[1], size))
        throw Failure{QStringLiteral("cannot write %1 (the suffix names the image format)").arg(p[1])};
    io.out << "wrote a " << size.width() << "x" << size.height() << " legend to " << p[1] << "\n";
    return Success;
}

int runSpectrum(Args& args, Io& io)
{
    if (!args.has(QStringLiteral("--min")) || !args.has(QStringLiteral("--max")))
        throw UsageError{QStringLiteral("--min and --max are required")};
    const double min = toNumber(args.option(QStringLiteral("--min")), QStringLiteral("--min"));
    const double max = toNumber(args.option(QStringLiteral("--max")), QStringLiteral("--max"));
    const int count = toInt(args.option(QStringLiteral("--count"), QStringLiteral("8")), QStringLiteral("--count"));
    const bool reversed = args.flag(QStringLiteral("--reversed"));
    if (!std::isfinite(min) || !std::isfinite(max) || !(min < max))
        throw UsageError{QStringLiteral("--min must be below --max, both finite")};
    if (count < 2 || count > 100000)
        throw UsageError{QStringLiteral("--count takes 2 to 100000")};
    const QStringList p = args.expect(1, QStringLiteral("<out.cpt>"));
    RKColormap map;
    map.fill_spectrum_color_list(min, max, count, reversed);
    if (!map.save(p[0]))
        throw Failure{QStringLiteral("cannot write %1 (the output must end in .cpt or .cmap)").arg(p[0])};
    io.out << "wrote a spectrum of " << count << " breaks to " << p[0] << "\n";
    return Success;
}

int runColormap(Args& args, Io& io)
{
    const QString verb = args.takeVerb(QStringLiteral("info, sample, convert, render or spectrum"));
    if (verb == QLatin1String("info"))
        return runInfo(args, io);
    if (verb == QLatin1String("sample"))
        return runSample(args, io);
    if (verb == QLatin1String("convert"))
        return runConvert(args, io);
    if (verb == QLatin1String("render"))
        return runRender(args, io);
    if (verb == QLatin1String("spectrum"))
        return runSpectrum(args, io);
    throw UsageError{QStringLiteral("unknown verb '%1'").arg(verb)};
}

void tourColormap(Io& io)
{
    tourHeading(io, QStringLiteral("Colour maps"));
    RKColormap map;
    map.fill_spectrum_color_list(0.0, 100.0, 6, true);
    io.out << "A reversed spectrum of 6 breaks over 0..100 (blue to magenta):\n ";
    for (double v : {0.0, 10.0, 50.0, 90.0, 100.0})
        io.out << " " << number(v) << "=" << hexa(map.value_to_color(v));
    io.out << "\n";
    map.set_interpolation(RKColormap::Blocked);
    io.out << "Blocked, a value takes the colour of its interval: 10=" << hexa(map.value_to_color(10.0)) << "\n";
    QVector<unsigned int> table;
    map.getColorTable(table, 256);
    io.out << "A 256-entry table for images: " << table.size() - 1 << " colours and the transparent entry\n";
}

const AreaRegistration registration{
    Area{30, QStringLiteral("colormap"), QStringLiteral("read, sample, convert and draw colour maps (cpt, cmap)"),
         QStringLiteral(
             "Usage: rktool colormap info <file> [--gmt] [--json]\n"
             "       rktool colormap sample <file> <value>... [--gmt] [--json]\n"
             "       rktool colormap convert <in> <out.cpt|out.cmap> [--gmt]\n"
             "       rktool colormap render <file> <out.png> [--size WxH] [--gmt]\n"
             "       rktool colormap spectrum <out.cpt> --min A --max B [--count N] [--reversed]\n\n"
             "info      the breaks with their arriving (and, at a step, leaving) colours, and the mode\n"
             "sample    the colour of each value as #RRGGBBAA (with --gmt blended in RGB, as GMT does)\n"
             "convert   reads by the input's suffix and writes by the output's\n"
             "render    the legend picture (horizontal when wider than tall; 400x60 by default)\n"
             "spectrum  a spectrum of N breaks (8 by default) from magenta to blue (--reversed: blue first)\n\n"
             "Files: .cpt (intervals between breaks), .cmap and .clm (an evenly spaced table, read over\n"
             "0 to 1). Without --gmt a .cpt is read as this library writes it (\"z r g b z r g b\" lines);\n"
             "--gmt reads it as GMT does (r/g/b, h-s-v, c/m/y/k, grey levels, X11 names, B/F/N colours).\n"
             "Exit codes: 0 done, 1 a file that cannot be read or written, 2 bad usage.\n"),
         runColormap, tourColormap}};

} // namespace
} // namespace rktool
