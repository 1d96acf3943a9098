// rktool crs: coordinate systems, projections, transformations, state plane zones and EPSG areas.
#include "Cli.h"

#include "coordinates/RKCoordinateSystem.h"
#include "frame/GDALErrorHandler.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gdal.h>
#include <ogr_spatialref.h>

#include <cmath>
#include <memory>

using namespace rktool;
using rkBase::RKCoordinateSystem;

namespace {
const char* const kindNames[] = {"undefined", "geographic", "projected", "invalid projection"};

QString number(double v) { return QString::number(v, 'f', 9).remove(QRegExp(QStringLiteral("\\.?0+$"))); }

double finiteNumber(const QString& text, const QString& what)
{
    const double v = toNumber(text, what);
    if (!std::isfinite(v))
        throw UsageError{QStringLiteral("%1 must be a finite number: %2").arg(what, text)};
    return v;
}

// A .prj file of more than this is not a coordinate system; reading stops there.
constexpr qint64 maxPrjBytes = 1 << 20;

// "EPSG:n", WKT, a PROJ string or a .prj file. Anything that is none of these is refused: a
// typo must never become some other system.
RKCoordinateSystem parseSystem(const QString& given)
{
    const QString text = given.trimmed();
    if (text.isEmpty())
        throw UsageError{QStringLiteral("empty coordinate system")};
    if (text.startsWith(QLatin1String("EPSG:"), Qt::CaseInsensitive)) {
        const int code = toInt(text.mid(5), QStringLiteral("EPSG code"));
        RKCoordinateSystem cs;
        if (code <= 0 || !cs.set_epsg_geographic_system(code))
            throw Failure{QStringLiteral("EPSG:%1 is not a coordinate system GDAL knows").arg(code)};
        return cs;
    }
    std::string content = text.toStdString();
    const QFileInfo info(text);
    if (!text.startsWith(QLatin1Char('+')) && !text.contains(QLatin1Char('[')) && info.isFile()) {
        QFile file(text);
        if (!file.open(QIODevice::ReadOnly))
            throw Failure{QStringLiteral("cannot open %1").arg(text)};
        if (file.size() > maxPrjBytes)
            throw Failure{QStringLiteral("%1 is larger than 1 MB, not a .prj file").arg(text)};
        content = file.readAll().trimmed().toStdString();
    }
    RKCoordinateSystem cs(content);
    if (cs.coord_system_type() == RKCoordinateSystem::Undefined) {
        // ESRI .prj files hold ESRI WKT; OGR converts it.
        RKCoordinateSystem esri;
        esri.wkt(content);
        if (esri.reference()->IsProjected() || esri.reference()->IsGeographic()) {
            esri.morphFromESRI();
            if (esri.coord_system_type() != RKCoordinateSystem::Undefined)
                return esri;
        }
        // A raster file: the coordinate system of its georeferencing.
        if (info.isFile()) {
            std::string raster;
            try {
                GDALDatasetH ds = GDALOpen(QFile::encodeName(text).constData(), GA_ReadOnly);
                if (ds) {
                    const char* wkt = GDALGetProjectionRef(ds);
                    raster = wkt ? wkt : "";
                    GDALClose(ds);
                }
            } catch (const GDALException&) {
                raster.clear();
            }
            if (raster.empty())
                throw Failure{QStringLiteral("%1 holds no coordinate system").arg(text)};
            RKCoordinateSystem fromRaster(raster);
            if (fromRaster.coord_system_type() != RKCoordinateSystem::Undefined)
                return fromRaster;
        }
        throw Failure{QStringLiteral("not a coordinate system: %1").arg(given.left(80))};
    }
    return cs;
}

RKCoordinateSystem projectedSystem(const QString& given)
{
    RKCoordinateSystem cs = parseSystem(given);
    if (cs.coord_system_type() != RKCoordinateSystem::Projected)
        throw Failure{QStringLiteral("%1 is not a projected system (%2)")
                          .arg(given.left(80), QLatin1String(kindNames[cs.coord_system_type()]))};
    return cs;
}

int runInfo(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const bool esri = args.flag(QStringLiteral("--esri"));
    const RKCoordinateSystem cs = parseSystem(args.expect(1, QStringLiteral("a coordinate system")).first());
    const auto kind = cs.coord_system_type();
    const auto type = cs.projection_type();
    const QString projName = RKCoordinateSystem::projection_name(type);
    const auto labels = RKCoordinateSystem::projection_parameters(projName);
    const auto values = cs.projection_parameters();
    bool ok = false;
    const double a = cs.semi_major(&ok);
    QJsonObject o;
    o[QStringLiteral("kind")] = QLatin1String(kindNames[kind]);
    o[QStringLiteral("summary")] = QString::fromStdString(cs.summary());
    o[QStringLiteral("datum")] = QString::fromStdString(cs.geographic_system_name());
    if (ok) {
        o[QStringLiteral("semi_major_m")] = a;
        o[QStringLiteral("inverse_flattening")] = cs.inverse_flattening();
    }
    QStringList paramLines;
    QJsonArray params;
    if (kind == RKCoordinateSystem::Projected) {
        o[QStringLiteral("projection_type")] = int(type);
        o[QStringLiteral("projection_name")] = projName;
        o[QStringLiteral("projection")] = QString::fromStdString(cs.projection_string());
        if (type == RKCoordinateSystem::UTM) {
            o[QStringLiteral("utm_zone")] = cs.utm_zone();
            o[QStringLiteral("utm_north")] = cs.utm_zone_is_north();
        }
        for (int i = 0; i < values.size(); ++i) {
            const QString label = i < labels.size() ? labels[i].name : QStringLiteral("Parameter %1").arg(i + 1);
            const QVariant& v = values[i];
            const QString shown = v.type() == QVariant::Double ? number(v.toDouble()) : v.toString();
            paramLines << QStringLiteral("  %1: %2").arg(label, shown);
            params.append(
                QJsonObject{{QStringLiteral("name"), label}, {QStringLiteral("value"), QJsonValue::fromVariant(v)}});
        }
        o[QStringLiteral("parameters")] = params;
    }
    if (esri)
        o[QStringLiteral("esri_wkt")] = QString::fromStdString(cs.esri_wkt());
    if (json) {
        io.out << QJsonDocument(o).toJson(QJsonDocument::Indented);
        return Success;
    }
    io.out << "Kind: " << kindNames[kind] << "\n" << QString::fromStdString(cs.summary()) << "\n";
    if (ok)
        io.out << "Ellipsoid: semi-major " << number(a) << " m, inverse flattening " << number(cs.inverse_flattening())
               << "\n";
    if (kind == RKCoordinateSystem::Projected) {
        io.out << "Projection: " << projName << " (type " << int(type) << ", "
               << QString::fromStdString(cs.projection_string()) << ")\n";
        if (type == RKCoordinateSystem::UTM)
            io.out << "UTM zone: " << cs.utm_zone() << (cs.utm_zone_is_north() ? " north" : " south") << "\n";
        if (!paramLines.isEmpty())
            io.out << "Parameters (angles in degrees, lengths in metres):\n"
                   << paramLines.join(QLatin1Char('\n')) << "\n";
    }
    if (esri)
        io.out << "ESRI WKT: " << QString::fromStdString(cs.esri_wkt()) << "\n";
    return Success;
}

struct TransformDeleter {
    void operator()(OGRCoordinateTransformation* t) const { OGRCoordinateTransformation::DestroyCT(t); }
};

int runTransform(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const QString from = args.option(QStringLiteral("--from"));
    const QString to = args.option(QStringLiteral("--to"));
    const QString file = args.option(QStringLiteral("--file"));
    if (from.isEmpty() || to.isEmpty())
        throw UsageError{QStringLiteral("transform needs --from and --to")};
    QList<QPair<double, double>> points;
    if (file.isEmpty()) {
        const QStringList xy = args.expect(2, QStringLiteral("x y"));
        points << qMakePair(finiteNumber(xy[0], QStringLiteral("x")), finiteNumber(xy[1], QStringLiteral("y")));
    } else {
        args.expect(0, QStringLiteral("no positionals with --file"));
        QFile in(file);
        if (!in.open(QIODevice::ReadOnly))
            throw Failure{QStringLiteral("cannot open %1").arg(file)};
        int line = 0;
        while (!in.atEnd()) {
            ++line;
            const QByteArray raw = in.readLine(4096);
            const QString text = QString::fromUtf8(raw).trimmed();
            if (text.isEmpty() || text.startsWith(QLatin1Char('#')))
                continue;
            const QStringList f = text.split(QLatin1Char(','));
            bool okX = false, okY = false;
            const double x = f.value(0).trimmed().toDouble(&okX);
            const double y = f.value(1).trimmed().toDouble(&okY);
            if (!okX || !okY || !std::isfinite(x) || !std::isfinite(y)) {
                if (line == 1)
                    continue; // a header line
                throw Failure{QStringLiteral("%1 line %2: not x,y numbers").arg(file).arg(line)};
            }
            points << qMakePair(x, y);
        }
    }
    const RKCoordinateSystem source = parseSystem(from);
    const RKCoordinateSystem target = parseSystem(to);
    std::unique_ptr<OGRCoordinateTransformation, TransformDeleter> t(source.create_transform(target));
    if (!t)
        throw Failure{QStringLiteral("no transformation from %1 to %2").arg(from.left(60), to.left(60))};
    // Failed points are told by the return value; no GDAL error is raised for them.
    t->SetEmitErrors(false);
    QJsonArray all;
    for (int i = 0; i < points.size(); ++i) {
        double x = points[i].first, y = points[i].second;
        bool ran = false;
        try {
            ran = t->Transform(1, &x, &y, nullptr) != 0;
        } catch (const GDALException&) {
            ran = false;
        }
        if (!ran || !std::isfinite(x) || !std::isfinite(y))
            throw Failure{QStringLiteral("point %1 (%2, %3) cannot be transformed")
                              .arg(i + 1)
                              .arg(number(points[i].first), number(points[i].second))};
        if (json)
            all.append(QJsonArray{x, y});
        else
            io.out << number(x) << "," << number(y) << "\n";
    }
    if (json)
        io.out << QJsonDocument(all).toJson(QJsonDocument::Compact) << "\n";
    return Success;
}

int runToLatLong(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const QString datum = args.option(QStringLiteral("--datum"));
    const QStringList p = args.expect(3, QStringLiteral("SYSTEM x y"));
    const RKCoordinateSystem cs = projectedSystem(p[0]);
    const double x = finiteNumber(p[1], QStringLiteral("x")), y = finiteNumber(p[2], QStringLiteral("y"));
    const auto t = cs.transform_point_to_lat_long(datum);
    double lat = 0, lon = 0;
    try {
        const auto r = t->transform(x, y);
        lat = r.first;
        lon = r.second;
    } catch (const GDALException&) {
        lat = lon = std::nan("");
    }
    // The library's (0, 0) failure value cannot be told from a real point; check the round trip.
    const auto back = cs.transform_lat_long_to_point(lat, lon);
    if (!t->valid() || !std::isfinite(lat) || std::abs(back.first - x) > 0.01 || std::abs(back.second - y) > 0.01)
        throw Failure{QStringLiteral("(%1, %2) cannot be converted to latitude and longitude").arg(p[1], p[2])};
    if (json)
        io.out << QJsonDocument(QJsonObject{{QStringLiteral("latitude"), lat}, {QStringLiteral("longitude"), lon}})
                      .toJson(QJsonDocument::Compact)
               << "\n";
    else
        io.out << "latitude " << number(lat) << ", longitude " << number(lon) << "\n";
    return Success;
}

int runFromLatLong(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    const QStringList p = args.expect(3, QStringLiteral("SYSTEM latitude longitude"));
    const RKCoordinateSystem cs = projectedSystem(p[0]);
    const double lat = finiteNumber(p[1], QStringLiteral("latitude"));
    const double lon = finiteNumber(p[2], QStringLiteral("longitude"));
    if (std::abs(lat) > 90 || std::abs(lon) > 360)
        throw UsageError{QStringLiteral("latitude must be within +-90 and longitude within +-360 degrees")};
    const auto xy = cs.transform_lat_long_to_point(lat, lon);
    if (!std::isfinite(xy.first) || !std::isfinite(xy.second) || (xy.first == lon && xy.second == lat))
        throw Failure{QStringLiteral("(%1, %2) cannot be projected").arg(p[1], p[2])};
    if (json)
        io.out << QJsonDocument(QJsonObject{{QStringLiteral("x"), xy.first}, {QStringLiteral("y"), xy.second}})
                      .toJson(QJsonDocument::Compact)
               << "\n";
    else
        io.out << "x " << number(xy.first) << ", y " << number(xy.second) << "\n";
    return Success;
}

int runArea(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    QString code = args.expect(1, QStringLiteral("an EPSG code")).first();
    if (code.startsWith(QLatin1String("EPSG:"), Qt::CaseInsensitive))
        code = code.mid(5);
    const int epsg = toInt(code, QStringLiteral("EPSG code"));
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    if (epsg <= 0 || !RKCoordinateSystem::area_of_use(epsg, x0, y0, x1, y1))
        throw Failure{QStringLiteral("no area of use known for EPSG:%1").arg(code)};
    if (json) {
        io.out << QJsonDocument(QJsonObject{{QStringLiteral("min_x"), x0},
                                            {QStringLiteral("min_y"), y0},
                                            {QStringLiteral("max_x"), x1},
                                            {QStringLiteral("max_y"), y1}})
                      .toJson(QJsonDocument::Compact)
               << "\n";
        return Success;
    }
    io.out << "min x " << number(x0) << ", min y " << number(y0) << ", max x " << number(x1) << ", max y " << number(y1)
           << "\n";
    return Success;
}

int runStatePlane(Args& args, Io& io)
{
    const QString verb = args.takeVerb(QStringLiteral("list, set"));
    if (verb != QLatin1String("list") && verb != QLatin1String("set"))
        throw UsageError{QStringLiteral("unknown stateplane verb %1").arg(verb)};
    const bool nad27 = args.flag(QStringLiteral("--nad27"));
    const bool json = args.flag(QStringLiteral("--json"));
    if (verb == QLatin1String("list")) {
        args.expect(0, QStringLiteral("no positionals"));
        QJsonObject o;
        for (const QString& state : RKCoordinateSystem::states(!nad27)) {
            const QStringList zones = RKCoordinateSystem::state_plane_zones(state, !nad27);
            if (json)
                o[state] = QJsonArray::fromStringList(zones);
            else
                io.out << state << ": "
                       << (zones == QStringList{QString()} ? QStringLiteral("(one zone)")
                                                           : zones.join(QStringLiteral(", ")))
                       << "\n";
        }
        if (json)
            io.out << QJsonDocument(o).toJson(QJsonDocument::Indented);
        return Success;
    }
    const QStringList p = args.positionals();
    if (p.isEmpty() || p.size() > 2)
        throw UsageError{QStringLiteral("give STATE and ZONE (ZONE may be left out for single-zone states)")};
    const QString state = p[0].toUpper();
    const QString zone = p.value(1).toUpper();
    if (!RKCoordinateSystem::states(!nad27).contains(state))
        throw Failure{
            QStringLiteral("unknown state %1 (see rktool crs stateplane list%2)").arg(p[0], nad27 ? " --nad27" : "")};
    RKCoordinateSystem cs;
    cs.set_well_known_geographic_system(nad27 ? "NAD27" : "NAD83");
    if (!cs.setStatePlane(state, zone, !nad27))
        throw Failure{
            QStringLiteral("%1 has no zone '%2'; zones: %3")
                .arg(state, zone, RKCoordinateSystem::state_plane_zones(state, !nad27).join(QStringLiteral(", ")))};
    io.out << QString::fromStdString(cs.wkt()) << "\n";
    return Success;
}

int runProjections(Args& args, Io& io)
{
    const bool json = args.flag(QStringLiteral("--json"));
    args.expect(0, QStringLiteral("no positionals"));
    static const char* const typeNames[] = {"length", "boolean", "integer", "angle", "fraction"};
    QJsonObject o;
    for (const QString& name : RKCoordinateSystem::projection_names()) {
        QJsonArray list;
        if (!json)
            io.out << name << "\n";
        for (const auto& p : RKCoordinateSystem::projection_parameters(name)) {
            const QString type = QLatin1String(typeNames[qBound(0, p.type, 4)]);
            QString range;
            if (p.type == rkBase::CoordinateSystemParameter::IntegerParameter)
                range = QStringLiteral("%1..%2, default %3").arg(p.min_int).arg(p.max_int).arg(p.default_int);
            else if (p.type == rkBase::CoordinateSystemParameter::BooleanParameter)
                range = QStringLiteral("%1/%2, default %3")
                            .arg(p.true_text, p.false_text, p.default_bool ? p.true_text : p.false_text);
            else
                range = QStringLiteral("%1..%2, default %3")
                            .arg(number(p.min_value), number(p.max_value), number(p.default_value));
            if (json)
                list.append(QJsonObject{{QStringLiteral("name"), p.name},
                                        {QStringLiteral("type"), type},
                                        {QStringLiteral("range"), range}});
            else
                io.out << "  " << p.name << " (" << type << ", " << range << ")\n";
        }
        o[name] = list;
    }
    if (json)
        io.out << QJsonDocument(o).toJson(QJsonDocument::Indented);
    return Success;
}

int runCrs(Args& args, Io& io)
{
    GDALErrorHandler::instance();
    const QString verb =
        args.takeVerb(QStringLiteral("info, transform, tolatlong, fromlatlong, area, stateplane, projections"));
    if (verb == QLatin1String("info"))
        return runInfo(args, io);
    if (verb == QLatin1String("transform"))
        return runTransform(args, io);
    if (verb == QLatin1String("tolatlong"))
        return runToLatLong(args, io);
    if (verb == QLatin1String("fromlatlong"))
        return runFromLatLong(args, io);
    if (verb == QLatin1String("area"))
        return runArea(args, io);
    if (verb == QLatin1String("stateplane"))
        return runStatePlane(args, io);
    if (verb == QLatin1String("projections"))
        return runProjections(args, io);
    throw UsageError{QStringLiteral("unknown verb %1").arg(verb)};
}

void tourCrs(Io& io)
{
    tourHeading(io, QStringLiteral("Coordinate systems"));
    GDALErrorHandler::instance();
    RKCoordinateSystem cs("+proj=longlat +datum=WGS84 +no_defs");
    io.out << "From a PROJ string: " << QString::fromStdString(cs.summary()) << "\n";
    cs.set_utm_projection(31, true);
    io.out << "UTM zone 31 north on it: " << QString::fromStdString(cs.summary()) << "\n";
    const auto ll = cs.transform_point_to_lat_long(QString())->transform(500000, 5000000);
    io.out << "Easting 500000, northing 5000000 is latitude " << number(ll.first) << ", longitude " << number(ll.second)
           << "\n";
    io.out << "Grid convergence at 45N 5E: " << number(cs.deviation_between_grid_north_and_true_north(45, 5))
           << " degrees\n";
    RKCoordinateSystem plane;
    plane.set_well_known_geographic_system("NAD83");
    plane.setStatePlane(QStringLiteral("TEXAS"), QStringLiteral("CENTRAL"), true);
    io.out << "State plane TEXAS CENTRAL (NAD83): " << QString::fromStdString(plane.projection_summary()) << "\n";
    io.out << RKCoordinateSystem::projection_names().size() << " projections in the catalogue, "
           << RKCoordinateSystem::states(true).size() << " states with NAD83 zones\n";
}

const AreaRegistration registration{Area{
    60, QStringLiteral("crs"), QStringLiteral("coordinate systems, projections and transformations"),
    QStringLiteral("Usage: rktool crs <verb> ...\n\n"
                   "A SYSTEM is EPSG:n, WKT, a PROJ string (+proj=...), a .prj file (OGC or ESRI WKT) or a\n"
                   "georeferenced raster file (its coordinate system).\n"
                   "Text that is none of these is refused, never guessed.\n\n"
                   "  info [--json] [--esri] SYSTEM       kind, summary, ellipsoid, projection and its parameters\n"
                   "                                      (angles in degrees, lengths in metres), UTM zone;\n"
                   "                                      --esri adds the ESRI form of the WKT\n"
                   "  transform --from A --to B [--json] x y\n"
                   "  transform --from A --to B [--json] --file points.csv\n"
                   "                                      x,y in the order of each system (longitude first for\n"
                   "                                      geographic ones); the file has one x,y per line, an\n"
                   "                                      optional header line and # comments\n"
                   "  tolatlong [--json] [--datum NAME] SYSTEM x y\n"
                   "                                      projected point to latitude and longitude (on NAME,\n"
                   "                                      e.g. WGS84, or the system's own datum)\n"
                   "  fromlatlong [--json] SYSTEM latitude longitude\n"
                   "                                      latitude and longitude on the system's datum to x, y\n"
                   "  area [--json] EPSG                  area of use: degrees for geographic systems (max y\n"
                   "                                      equals min y), the system's own units for projected\n"
                   "  stateplane list [--nad27] [--json]  US state plane zones (NAD83 unless --nad27)\n"
                   "  stateplane set [--nad27] STATE [ZONE]\n"
                   "                                      prints the WKT of the zone, in metres\n"
                   "  projections [--json]                the projection catalogue with parameter ranges\n\n"
                   "Exit code 1 when a system is unknown or a point cannot be converted, 2 on bad usage.\n"),
    runCrs, tourCrs}};
} // namespace
