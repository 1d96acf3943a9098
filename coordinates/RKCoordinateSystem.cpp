#include "RKCoordinateSystem.h"

#include "core/GDALException.h"
#include "core/rkUtils.h"
#include "frame/GDALErrorHandler.h"

#include <QFile>
#include <QMutexLocker>
#include <QSet>
#include <QTextStream>
#include <cpl_conv.h>
#include <gdal_alg.h>
#include <ogr_api.h>

#include <cmath>
#include <memory>
#include <mutex>
#include <sstream>

namespace rkBase {

QMutex RKCoordinateSystem::m_mutex;
QMap<QString, QList<CoordinateSystemParameter>> RKCoordinateSystem::m_s_projection_parameters;
QMap<int, QString> RKCoordinateSystem::m_s_projection_names;
QMap<QString, int> RKCoordinateSystem::m_wellKnowProjectionToEpsg;
QStringList RKCoordinateSystem::m_states_nad83, RKCoordinateSystem::m_states_nad27;
QMap<QString, QStringList> RKCoordinateSystem::m_state_planes_nad83, RKCoordinateSystem::m_state_planes_nad27;
QMap<QPair<QString, QString>, int> RKCoordinateSystem::m_state_plane_code_maps_nad83,
    RKCoordinateSystem::m_state_plane_code_maps_nad27;
QMap<QPair<QString, QString>, OGRSpatialReference> RKCoordinateSystem::m_state_plane_nad83refs,
    RKCoordinateSystem::m_state_plane_nad27refs;

namespace {
const char* const undefinedText = "Undefined";

// GDALErrorHandler throws a GDALException out of its callback for every failure. That is sound
// through GDAL's own frames, but PROJ's pipeline construction is C code that allocates as it
// goes and frees on its error path: an exception crossing it leaks (seen under ASan with
// PROJ 9.1), and PROJ's C++ layers catch and swallow it in places. So this class puts a
// handler of its own on the thread's stack for each call: warnings still reach
// GDALErrorHandler's list, failures are only recorded, and the recorded state (which GDAL sets
// before calling any handler) is read after the call. No exception leaves this file.
void CPL_STDCALL recordingHandler(CPLErr type, CPLErrorNum, const char* message)
{
    if (type == CE_Warning)
        GDALErrorHandler::instance().addError(QString::fromUtf8(message ? message : ""), type);
}

struct RecordingScope {
    RecordingScope()
    {
        CPLPushErrorHandler(recordingHandler);
        CPLErrorReset();
    }
    ~RecordingScope()
    {
        CPLErrorReset();
        CPLPopErrorHandler();
    }
    RecordingScope(const RecordingScope&) = delete;
    RecordingScope& operator=(const RecordingScope&) = delete;
};

bool failureRecorded() { return CPLGetLastErrorType() == CE_Failure || CPLGetLastErrorType() == CE_Fatal; }

template <class F, class R> R guarded(F&& call, R failure)
{
    RecordingScope scope;
    try {
        R result = call();
        return failureRecorded() ? failure : result;
    } catch (const GDALException&) {
        return failure; // a handler pushed inside the call threw; nothing to add
    }
}

struct SrsDeleter {
    void operator()(OGRSpatialReference* ref) const { OGRSpatialReference::DestroySpatialReference(ref); }
};
struct TransformDeleter {
    void operator()(OGRCoordinateTransformation* t) const { OGRCoordinateTransformation::DestroyCT(t); }
};
using SrsPtr = std::unique_ptr<OGRSpatialReference, SrsDeleter>;
using TransformPtr = std::unique_ptr<OGRCoordinateTransformation, TransformDeleter>;

// A new empty reference in x = longitude/easting order, as every reference here must be.
SrsPtr newSrs()
{
    GDALErrorHandler::instance();
    SrsPtr ref(static_cast<OGRSpatialReference*>(OSRNewSpatialReference(nullptr)));
    ref->SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    return ref;
}

std::string exportWkt(const OGRSpatialReference& ref)
{
    char* text = nullptr;
    const OGRErr err = guarded([&] { return ref.exportToWkt(&text); }, OGRErr(OGRERR_FAILURE));
    std::string out = (err == OGRERR_NONE && text) ? text : undefinedText;
    CPLFree(text);
    return out;
}

OGRErr importWkt(OGRSpatialReference& ref, const std::string& text)
{
    // GDAL refuses WKT over 100,000 bytes unless told otherwise; the text is already held in
    // memory and parsing is linear, so any length is accepted. The option is set for this
    // thread and this call only.
    const bool large = text.size() >= 100000;
    if (large)
        CPLSetThreadLocalConfigOption("OSR_IMPORT_FROM_WKT_LIMIT", "NO");
    const OGRErr err = guarded([&] { return ref.importFromWkt(text.c_str()); }, OGRErr(OGRERR_CORRUPT_DATA));
    if (large)
        CPLSetThreadLocalConfigOption("OSR_IMPORT_FROM_WKT_LIMIT", nullptr);
    return err;
}

OGRErr importEpsg(OGRSpatialReference& ref, int code)
{
    return guarded([&] { return ref.importFromEPSG(code); }, OGRErr(OGRERR_FAILURE));
}

// ---- the catalogue's data ----------------------------------------------------------------------

enum Kind {
    Len = CoordinateSystemParameter::LengthParameter,
    Bool = CoordinateSystemParameter::BooleanParameter,
    Int = CoordinateSystemParameter::IntegerParameter,
    Ang = CoordinateSystemParameter::AngleParameter,
    Frac = CoordinateSystemParameter::FractionParameter
};

struct ParamRow {
    const char* label;
    int type;
    double max, min, def;
};

const ParamRow paramRows[] = {
    {"First Standard Parallel", Ang, 90, -90, 10},
    {"Second Standard Parallel", Ang, 90, -90, 5},
    {"Northern Standard Parallel", Ang, 90, -90, 20},
    {"Southern Standard Parallel", Ang, 90, -90, 10},
    {"Centre Latitude", Ang, 90, -90, 0},
    {"Latitude of Origin", Ang, 90, -90, 0},
    {"Latitude of Grid Origin", Ang, 90, -90, 0},
    {"Centre Lat", Ang, 90, -90, 0},
    {"Standard Parallel", Ang, 90, -90, 0},
    {"Standard Parallel 1", Ang, 90, -90, 0},
    {"Standard Parallel 2", Ang, 90, -90, 0},
    {"Pseudo Std Parallel", Ang, 90, -90, 0},
    {"Pseudo Std Parallel Lat", Ang, 90, -90, 0},
    {"Centre Longitude", Ang, 180, -180, 0},
    {"Central Meridian", Ang, 180, -180, 0},
    {"Azimuth", Ang, 180, -180, 0},
    {"Rectified Grid Angle", Ang, 180, -180, 0},
    {"Centre Meridian", Ang, 180, -180, 0},
    {"Scale Factor", Frac, 100, -100, 1},
    {"False Easting", Len, 100000000, -100000000, 50000},
    {"False Northing", Len, 100000000, -100000000, 20000},
    {"Satellite Height", Len, 180000000, 0, 0},
    {"Zone", Int, 60, 0, 30},
    {"Variation", Int, 6, 1, 1},
};

CoordinateSystemParameter parameter(const char* label)
{
    CoordinateSystemParameter p;
    p.name = QString::fromLatin1(label);
    if (p.name == QLatin1String("Hemisphere")) {
        p.type = Bool;
        p.true_text = QStringLiteral("North");
        p.false_text = QStringLiteral("South");
        p.default_bool = true;
        return p;
    }
    for (const ParamRow& row : paramRows) {
        if (p.name != QLatin1String(row.label))
            continue;
        p.type = row.type;
        if (row.type == Int) {
            p.max_int = int(row.max);
            p.min_int = int(row.min);
            p.default_int = int(row.def);
        } else {
            p.max_value = row.max;
            p.min_value = row.min;
            p.default_value = row.def;
        }
        return p;
    }
    Q_ASSERT_X(false, "parameter", label);
    return p;
}

CoordinateSystemParameter withRange(CoordinateSystemParameter p, double max, double min)
{
    p.max_value = max;
    p.min_value = min;
    return p;
}

// Catalogue name and its labels; every list but UTM's gets false easting and northing appended.
struct CatalogueRow {
    const char* name;
    std::initializer_list<const char*> labels;
};
const CatalogueRow catalogueRows[] = {
    {"Albers Conic Equal Area",
     {"First Standard Parallel", "Second Standard Parallel", "Centre Latitude", "Centre Longitude"}},
    {"Azimuthal Equidistant", {"Centre Latitude", "Centre Longitude"}},
    {"Mercator", {"Latitude of Origin", "Centre Longitude", "Scale Factor"}},
    {"Lambert Conformal Conic",
     {"Northern Standard Parallel", "Southern Standard Parallel", "Latitude of Grid Origin", "Central Meridian"}},
    {"Bonne", {"Standard Parallel", "Central Meridian"}},
    {"Cylindrical Equal Area", {"Standard Parallel", "Central Meridian"}},
    {"Cassini-Soldner", {"Centre Lat", "Centre Longitude"}},
    {"Equidistant Conic", {"Standard Parallel 1", "Standard Parallel 2", "Centre Latitude", "Centre Longitude"}},
    {"Eckert I-VI", {"Variation", "Central Meridian"}},
    {"Equirectangular", {"Centre Latitude", "Centre Longitude"}},
    {"Equirectangular generalized", {"Centre Latitude", "Centre Longitude", "Pseudo Std Parallel"}},
    {"Goode Homolosine", {"Centre Meridian"}},
    {"Gall Stereograpic", {"Centre Meridian"}},
    {"Gauss Schreiber Transverse Mercator", {"Centre Latitude", "Centre Longitude", "Scale Factor"}},
    {"Hotine Oblique Mercator",
     {"Centre Latitude", "Centre Longitude", "Azimuth", "Rectified Grid Angle", "Scale Factor"}},
    {"Hotine Oblique Mercator Azimuth Center",
     {"Centre Latitude", "Centre Longitude", "Azimuth", "Rectified Grid Angle", "Scale Factor"}},
    {"Krovak", {"Centre Latitude", "Centre Longitude", "Azimuth", "Pseudo Std Parallel Lat", "Scale Factor"}},
    {"Lambert Azimuthal Equal-Area", {"Centre Latitude", "Centre Longitude"}},
    {"Lambert Conformal Conic 1SP", {"Latitude of Origin", "Centre Longitude", "Scale Factor"}},
    {"Miller Cylindrical", {"Centre Latitude", "Centre Longitude"}},
    {"Mollweide", {"Centre Meridian"}},
    {"New Zealand Map Grid", {"Latitude of Origin", "Centre Longitude"}},
    {"Oblique Stereographic", {"Latitude of Origin", "Centre Longitude", "Scale Factor"}},
    {"Orthographic", {"Latitude of Origin", "Centre Longitude"}},
    {"Polyconic", {"Latitude of Origin", "Centre Longitude"}},
    {"Polar Stereographic", {"Latitude of Origin", "Centre Longitude", "Scale Factor"}},
    {"Robinson", {"Centre Longitude"}},
    {"Sinusoidal", {"Centre Longitude"}},
    {"Stereographic", {"Latitude of Origin", "Centre Longitude", "Scale Factor"}},
    {"Swiss Oblique Cylindrical", {"Centre Latitude", "Central Meridian"}},
    {"Tunisia Mining Grid", {"Centre Latitude", "Centre Longitude"}},
    {"Transverse Mercator", {"Centre Latitude", "Centre Longitude", "Scale Factor"}},
    {"Transverse Mercator (South Oriented)", {"Centre Latitude", "Centre Longitude", "Scale Factor"}},
    {"Two Point Equidistant", {"Centre Latitude", "Centre Longitude", "Centre Latitude", "Centre Longitude"}},
    {"VanDerGrinten", {"Centre Longitude"}},
};

// Display names by ProjectionType value; values without one read "Other".
const std::pair<int, const char*> displayNames[] = {
    {1, "UTM"},
    {2, "Albers Conic Equal Area"},
    {3, "Azimuthal Equidistant"},
    {4, "Bonne"},
    {5, "Cylindrical Equal Area"},
    {6, "Cassini-Soldner"},
    {7, "Equidistant Conic"},
    {8, "Eckert I-VI"},
    {9, "Equirectangular"},
    {10, "Equirectangular generalized"},
    {11, "Geostationary Satellite"},
    {12, "Goode Homolosine"},
    {13, "Gall Stereograpic"},
    {14, "Gauss Schreiber Transverse Mercator"},
    {16, "Hotine Oblique Mercator"},
    {17, "Hotine Oblique Mercator"},
    {20, "Krovak"},
    {21, "Lambert Azimuthal Equal-Area"},
    {22, "Lambert Conformal Conic"},
    {23, "Lambert Conformal Conic 1SP"},
    {24, "Lambert Conformal Conic (Belgium)"},
    {25, "Miller Cylindrical"},
    {26, "Mercator"},
    {27, "Mollweide"},
    {28, "New Zealand Map Grid"},
    {29, "Oblique Stereographic"},
    {30, "Orthographic"},
    {31, "Polyconic"},
    {32, "Polar Stereographic"},
    {33, "Robinson"},
    {34, "Sinusoidal"},
    {35, "Stereographic"},
    {36, "Swiss Oblique Cylindrical"},
    {37, "Transverse Mercator"},
    {39, "Tunisia Mining Grid"},
    {40, "Transverse Mercator (South Oriented)"},
    {41, "Two Point Equidistant"},
    {42, "VanDerGrinten"},
};

// PROJECTION attribute to class; Transverse Mercator, Equirectangular and the families are
// decided in projection_type() because they need more than the name.
const std::pair<const char*, int> projectionAttributes[] = {
    {"Albers_Conic_Equal_Area", 2},
    {"Azimuthal_Equidistant", 3},
    {"Bonne", 4},
    {"Cylindrical_Equal_Area", 5},
    {"Cassini_Soldner", 6},
    {"Equidistant_Conic", 7},
    {"Geostationary_Satellite", 11},
    {"Goode_Homolosine", 12},
    {"Gall_Stereographic", 13},
    {"Gauss_Schreiber_Transverse_Mercator", 14},
    {"Gnomonic", 15},
    {"Hotine_Oblique_Mercator_Azimuth_Center", 16},
    {"Hotine_Oblique_Mercator", 17},
    {"Hotine_Oblique_Mercator_Two_Point_Natural_Origin", 18},
    {"International_Map_of_the_World_Polyconic", 19},
    {"Krovak", 20},
    {"Lambert_Azimuthal_Equal_Area", 21},
    {"Lambert_Conformal_Conic_2SP", 22},
    {"Lambert_Conformal_Conic_1SP", 23},
    {"Lambert_Conformal_Conic_2SP_Belgium", 24},
    {"Miller_Cylindrical", 25},
    {"Mercator_1SP", 26},
    {"Mollweide", 27},
    {"New_Zealand_Map_Grid", 28},
    {"Oblique_Stereographic", 29},
    {"Orthographic", 30},
    {"Polyconic", 31},
    {"Polar_Stereographic", 32},
    {"Robinson", 33},
    {"Sinusoidal", 34},
    {"Stereographic", 35},
    {"Swiss_Oblique_Cylindrical", 36},
    {"Tunisia_Mining_Grid", 39},
    {"Transverse_Mercator_South_Orientated", 40},
    {"Two_Point_Equidistant", 41},
    {"VanDerGrinten", 42},
    {"?", 44},
};

const char* const eckertNames[] = {"Eckert_I", "Eckert_II", "Eckert_III", "Eckert_IV", "Eckert_V", "Eckert_VI"};
const char* const wagnerNames[] = {"Wagner_I", "Wagner_II", "Wagner_III", "Wagner_IV",
                                   "Wagner_V", "Wagner_VI", "Wagner_VII"};

template <size_t N> int variationOf(const std::string& attribute, const char* const (&names)[N])
{
    for (size_t i = 0; i < N; ++i)
        if (attribute == names[i])
            return int(i) + 1;
    return 0;
}

// What projection_parameters() reads for each class: keys with their kind (a = angle,
// l = length, s = as it stands). The last two keys are always lengths.
struct ValueRow {
    std::initializer_list<int> types;
    std::initializer_list<const char*> keys; // "a:key", "l:key", "s:key"
};
const ValueRow valueRows[] = {
    {{2}, {"a:standard_parallel_1", "a:standard_parallel_2", "a:latitude_of_center", "a:longitude_of_center"}},
    {{3, 15, 21, 25, 39}, {"a:latitude_of_center", "a:central_meridian"}},
    {{4, 5}, {"a:standard_parallel_1", "a:central_meridian"}},
    {{6, 9, 28, 30, 31, 36}, {"a:latitude_of_origin", "a:central_meridian"}},
    {{7}, {"a:standard_parallel_1", "a:standard_parallel_2", "a:latitude_of_center", "a:central_meridian"}},
    {{8}, {"a:central_meridian"}},
    {{10}, {"a:latitude_of_origin", "a:central_meridian", "a:standard_parallel_1"}},
    {{11}, {"a:central_meridian", "l:satellite_height"}},
    {{12, 13, 27, 33, 34, 42}, {"a:central_meridian"}},
    {{14, 23, 26, 29, 32, 35, 37}, {"a:latitude_of_origin", "a:central_meridian", "s:scale_factor"}},
    {{16, 17}, {"a:latitude_of_center", "a:central_meridian", "a:azimuth", "a:rectified_grid_angle", "s:scale_factor"}},
    {{18},
     {"a:latitude_of_center", "a:latitude_of_point_1", "a:longitude_of_point_1", "a:latitude_of_point_2",
      "a:longitude_of_point_2", "s:scale_factor"}},
    {{19}, {"a:latitude_of_point_1", "a:latitude_of_point_2", "a:central_meridian"}},
    {{20},
     {"a:latitude_of_center", "a:central_meridian", "a:azimuth", "a:pseudo_standard_parallel_1", "s:scale_factor"}},
    {{22, 24}, {"a:standard_parallel_1", "a:standard_parallel_2", "a:latitude_of_origin", "a:central_meridian"}},
    {{40}, {"a:latitude_of_center", "a:central_meridian", "s:scale_factor"}},
    {{43}, {"a:latitude_of_center"}},
};

// The state plane rows: (state, zone, USGS code). NAD83 first, then NAD27.
struct PlaneRow {
    const char* state;
    const char* zone;
    int code;
};
const PlaneRow nad83Rows[] = {
    {"ALABAMA", "EAST", 101},
    {"ALABAMA", "WEST", 102},
    {"ARIZONA", "EAST", 201},
    {"ARIZONA", "CENTRAL", 202},
    {"ARIZONA", "WEST", 203},
    {"ARKANSAS", "NORTH", 301},
    {"ARKANSAS", "SOUTH", 302},
    {"CALIFORNIA", "I", 401},
    {"CALIFORNIA", "II", 402},
    {"CALIFORNIA", "III", 403},
    {"CALIFORNIA", "IV", 404},
    {"CALIFORNIA", "V", 405},
    {"CALIFORNIA", "VI", 406},
    {"COLORADO", "NORTH", 501},
    {"COLORADO", "CENTRAL", 502},
    {"COLORADO", "SOUTH", 503},
    {"CONNECTICUT", "", 600},
    {"DELAWARE", "", 700},
    {"FLORIDA", "EAST", 901},
    {"FLORIDA", "WEST", 902},
    {"FLORIDA", "NORTH", 903},
    {"GEORGIA", "EAST", 1001},
    {"GEORGIA", "WEST", 1002},
    {"IDAHO", "EAST", 1101},
    {"IDAHO", "CENTRAL", 1102},
    {"IDAHO", "WEST", 1103},
    {"ILLINOIS", "EAST", 1201},
    {"ILLINOIS", "WEST", 1202},
    {"INDIANA", "EAST", 1301},
    {"INDIANA", "WEST", 1302},
    {"IOWA", "NORTH", 1401},
    {"IOWA", "SOUTH", 1402},
    {"KANSAS", "NORTH", 1501},
    {"KANSAS", "SOUTH", 1502},
    {"KENTUCKY", "NORTH", 1601},
    {"KENTUCKY", "SOUTH", 1602},
    {"LOUISIANA", "NORTH", 1701},
    {"LOUISIANA", "SOUTH", 1702},
    {"MAINE", "EAST", 1801},
    {"MAINE", "WEST", 1802},
    {"MARYLAND", "", 1900},
    {"MASSACHUSETTS", "MAINLAND", 2001},
    {"MASSACHUSETTS", "ISLAND", 2002},
    {"MICHIGAN", "NORTH", 2111},
    {"MICHIGAN", "CENTRAL", 2112},
    {"MICHIGAN", "SOUTH", 2113},
    {"MINNESOTA", "NORTH", 2201},
    {"MINNESOTA", "CENTRAL", 2202},
    {"MINNESOTA", "SOUTH", 2203},
    {"MISSISSIPPI", "EAST", 2301},
    {"MISSISSIPPI", "WEST", 2302},
    {"MISSOURI", "EAST", 2401},
    {"MISSOURI", "CENTRAL", 2402},
    {"MISSOURI", "WEST", 2403},
    {"MONTANA", "", 2500},
    {"NEBRASKA", "", 2600},
    {"NEVADA", "EAST", 2701},
    {"NEVADA", "CENTRAL", 2702},
    {"NEVADA", "WEST", 2703},
    {"NEW HAMPSHIRE", "", 2800},
    {"NEW JERSEY", "", 2900},
    {"NEW MEXICO", "EAST", 3001},
    {"NEW MEXICO", "CENTRAL", 3002},
    {"NEW MEXICO", "WEST", 3003},
    {"NEW YORK", "EAST", 3101},
    {"NEW YORK", "CENTRAL", 3102},
    {"NEW YORK", "WEST", 3103},
    {"NEW YORK", "LONG ISLAND", 3104},
    {"NORTH CAROLINA", "", 3200},
    {"NORTH DAKOTA", "NORTH", 3301},
    {"NORTH DAKOTA", "SOUTH", 3302},
    {"OHIO", "NORTH", 3401},
    {"OHIO", "SOUTH", 3402},
    {"OKLAHOMA", "NORTH", 3501},
    {"OKLAHOMA", "SOUTH", 3502},
    {"OREGON", "NORTH", 3601},
    {"OREGON", "SOUTH", 3602},
    {"PENNSYLVANIA", "NORTH", 3701},
    {"PENNSYLVANIA", "SOUTH", 3702},
    {"RHODE ISLAND", "", 3800},
    {"SOUTH CAROLINA", "", 3900},
    {"SOUTH DAKOTA", "NORTH", 4001},
    {"SOUTH DAKOTA", "SOUTH", 4002},
    {"TENNESSEE", "", 4100},
    {"TEXAS", "NORTH", 4201},
    {"TEXAS", "NORTH CENTRAL", 4202},
    {"TEXAS", "CENTRAL", 4203},
    {"TEXAS", "SOUTH CENTRAL", 4204},
    {"TEXAS", "SOUTH", 4205},
    {"UTAH", "NORTH", 4301},
    {"UTAH", "CENTRAL", 4302},
    {"UTAH", "SOUTH", 4303},
    {"VERMONT", "", 4400},
    {"VIRGINIA", "NORTH", 4501},
    {"VIRGINIA", "SOUTH", 4502},
    {"WASHINGTON", "NORTH", 4601},
    {"WASHINGTON", "SOUTH", 4602},
    {"WEST VIRGINIA", "NORTH", 4701},
    {"WEST VIRGINIA", "SOUTH", 4702},
    {"WISCONSIN", "NORTH", 4801},
    {"WISCONSIN", "CENTRAL", 4802},
    {"WISCONSIN", "SOUTH", 4803},
    {"WYOMING", "EAST", 4901},
    {"WYOMING", "EAST CENTRAL", 4902},
    {"WYOMING", "WEST CENTRAL", 4903},
    {"WYOMING", "WEST", 4904},
    {"ALASKA", "ZONE NO. 1", 5001},
    {"ALASKA", "ZONE NO. 2", 5002},
    {"ALASKA", "ZONE NO. 3", 5003},
    {"ALASKA", "ZONE NO. 4", 5004},
    {"ALASKA", "ZONE NO. 5", 5005},
    {"ALASKA", "ZONE NO. 6", 5006},
    {"ALASKA", "ZONE NO. 7", 5007},
    {"ALASKA", "ZONE NO. 8", 5008},
    {"ALASKA", "ZONE NO. 9", 5009},
    {"ALASKA", "ZONE NO. 10", 5010},
    {"HAWAII", "1", 5101},
    {"HAWAII", "2345", 5102},
    {"HAWAII", "3", 5103},
    {"HAWAII", "4", 5104},
    {"HAWAII", "5", 5105},
    {"PUERTO RICO AND VIRGIN ISLANDS", "", 5200},
};

// NAD27 differs from NAD83 in these states; their rows replace the NAD83 ones in place.
const PlaneRow nad27Changes[] = {
    {"CALIFORNIA", "I", 401},          {"CALIFORNIA", "II", 402},         {"CALIFORNIA", "III", 403},
    {"CALIFORNIA", "IV", 404},         {"CALIFORNIA", "V", 405},          {"CALIFORNIA", "VI", 406},
    {"CALIFORNIA", "VII", 407},        {"MICHIGAN", "EAST", 2101},        {"MICHIGAN", "CENTRAL/M", 2102},
    {"MICHIGAN", "WEST", 2103},        {"MICHIGAN", "NORTH", 2111},       {"MICHIGAN", "CENTRAL/L", 2112},
    {"MICHIGAN", "SOUTH", 2113},       {"MONTANA", "NORTH", 2501},        {"MONTANA", "CENTRAL", 2502},
    {"MONTANA", "SOUTH", 2503},        {"NEBRASKA", "NORTH", 2601},       {"NEBRASKA", "SOUTH", 2602},
    {"SOUTH CAROLINA", "NORTH", 3901}, {"SOUTH CAROLINA", "SOUTH", 3902}, {"PUERTO RICO AND VIRGIN ISLANDS", "", 5201},
};
const PlaneRow nad27Extra[] = {{"VIRGIN ISLANDS", "ST. CROIX", 5202}, {"AMERICAN SAMOA", "", 5300}};

const QMap<QString, int>& standardProjections()
{
    static const QMap<QString, int> table{{QStringLiteral("CH1903+ / LV95"), 2056},
                                          {QStringLiteral("UK National Grid"), 27700},
                                          {QStringLiteral("WGS84 Web Mercator"), 3857}};
    return table;
}

std::once_flag catalogueOnce, statePlaneOnce;
} // namespace

// ---- construction ------------------------------------------------------------------------------

RKCoordinateSystem::RKCoordinateSystem() : m_wkt(undefinedText) { inititalise_projection_parameters(); }

RKCoordinateSystem::RKCoordinateSystem(std::string const& text) : m_wkt(text)
{
    if (text.empty() || text == "unknown")
        m_wkt = undefinedText;
    if (!valid_wkt(text) && !validProj4(text, m_wkt))
        m_wkt = undefinedText;
    inititalise_projection_parameters();
}

RKCoordinateSystem::RKCoordinateSystem(RKCoordinateSystem const& other) : m_wkt(other.m_wkt)
{
    inititalise_projection_parameters();
}

RKCoordinateSystem& RKCoordinateSystem::operator=(RKCoordinateSystem const& other)
{
    if (this == &other)
        return *this;
    m_wkt = other.m_wkt;
    if (m_reference)
        OGRSpatialReference::DestroySpatialReference(m_reference);
    m_reference = nullptr;
    m_reference_valid = false;
    m_failedParse = false;
    m_type_cache = -1;
    return *this;
}

RKCoordinateSystem::~RKCoordinateSystem()
{
    // The empty reference of a failed parse is owned too: it must not outlive the object.
    if (m_reference)
        OGRSpatialReference::DestroySpatialReference(m_reference);
}

std::string RKCoordinateSystem::wkt() const { return m_wkt; }

void RKCoordinateSystem::wkt(std::string const& text)
{
    if (&text != &m_wkt)
        m_wkt = text;
    m_reference_valid = false;
    m_type_cache = -1;
}

OGRSpatialReference* RKCoordinateSystem::reference() const
{
    if (m_reference_valid)
        return m_reference;
    // A text that failed to parse keeps its empty reference until the text changes: read-outs
    // hold the pointer across several calls, and replacing it under them would leave them
    // pointing at freed memory.
    if (m_reference && m_failedParse && m_failedText == m_wkt)
        return m_reference;
    if (m_reference)
        OGRSpatialReference::DestroySpatialReference(m_reference);
    m_reference = newSrs().release();
    if (importWkt(*m_reference, m_wkt) == OGRERR_NONE) {
        m_reference_valid = true;
        m_failedParse = false;
    } else {
        m_failedParse = true;
        m_failedText = m_wkt;
    }
    return m_reference;
}

void RKCoordinateSystem::set_from_spatial_reference(OGRSpatialReference const* ref)
{
    if (!ref)
        return;
    wkt(exportWkt(*ref));
}

std::string RKCoordinateSystem::proj4() const
{
    OGRSpatialReference* ref = reference();
    char* text = nullptr;
    const OGRErr err = guarded([&] { return ref->exportToProj4(&text); }, OGRErr(OGRERR_FAILURE));
    std::string out = (err == OGRERR_NONE && text && *text) ? text : undefinedText;
    CPLFree(text);
    return out;
}

std::string RKCoordinateSystem::esri_wkt() const
{
    if (coord_system_type() == Undefined)
        return {};
    SrsPtr clone(reference()->Clone());
    guarded([&] { return clone->morphToESRI(); }, OGRErr(OGRERR_FAILURE));
    std::string text = exportWkt(*clone);
    clone.reset();

    if (reference()->IsProjected() && text.find("PROJECTION") == std::string::npos) {
        // The morph dropped the PROJECTION node: rebuild it from the first node behind PROJCS.
        const size_t found = text.find("],", 7);
        if (found == std::string::npos || found + 2 <= 7)
            return text;
        const size_t end = found + 2;
        std::string node = text.substr(7, end - 7);
        text.erase(7, end - 7);
        const size_t bracket = node.find('[');
        if (bracket != std::string::npos)
            node.replace(0, bracket, "PROJECTION");
        const size_t unit = text.find("UNIT", 7);
        const size_t close = unit == std::string::npos ? std::string::npos : text.find("]]", unit);
        if (close != std::string::npos && close + 3 <= text.size())
            text.insert(close + 3, node);
        const QString name = m_s_projection_names.value(projection_type());
        text.insert(7, "\"" + name.toStdString() + "\",");
    }
    return text;
}

bool RKCoordinateSystem::morphFromESRI()
{
    OGRSpatialReference* ref = reference();
    if (guarded([&] { return ref->morphFromESRI(); }, OGRErr(OGRERR_FAILURE)) != OGRERR_NONE)
        return false;
    wkt(exportWkt(*ref));
    return true;
}

// ---- classification ----------------------------------------------------------------------------

RKCoordinateSystem::CoordSysType RKCoordinateSystem::coord_system_type() const
{
    OGRSpatialReference* ref = reference();
    if (!ref)
        return Undefined;
    if (ref->IsProjected()) {
        // The transformation check costs a PROJ pipeline; its answer depends only on the text,
        // so it is kept until the text changes.
        if (m_type_cache < 0)
            m_type_cache = valid_wkt(m_wkt) ? 1 : 0;
        return m_type_cache ? Projected : InvalidProjection;
    }
    if (ref->IsGeographic())
        return Geographic;
    return Undefined;
}

bool RKCoordinateSystem::valid_wkt(std::string const& text) const
{
    SrsPtr ref = newSrs();
    return importWkt(*ref, text) == OGRERR_NONE && valid_transform_to_lat_long(ref.get());
}

bool RKCoordinateSystem::validProj4(std::string const& in, std::string& out) const
{
    out = undefinedText;
    SrsPtr ref = newSrs();
    if (guarded([&] { return ref->importFromProj4(in.c_str()); }, OGRErr(OGRERR_CORRUPT_DATA)) != OGRERR_NONE)
        return false;
    if (!valid_transform_to_lat_long(ref.get()))
        return false;
    out = exportWkt(*ref);
    return out != undefinedText;
}

std::string RKCoordinateSystem::geographic_system_name() const
{
    const char* value = reference()->GetAttrValue("DATUM", 0);
    return value ? value : "undefined";
}

std::string RKCoordinateSystem::projection_string() const
{
    const char* value = reference()->GetAttrValue("PROJECTION", 0);
    return (value && *value) ? value : undefinedText;
}

namespace {
double ellipsoidValue(OGRSpatialReference* ref, bool* ok, double (OGRSpatialReference::*get)(OGRErr*) const)
{
    if (!ref) {
        if (ok)
            *ok = false;
        return 0.0;
    }
    OGRErr err = OGRERR_NONE;
    const double value = guarded([&] { return (ref->*get)(&err); }, 0.0);
    if (ok)
        *ok = err != OGRERR_FAILURE;
    return value;
}
} // namespace

double RKCoordinateSystem::semi_major(bool* ok) const
{
    return ellipsoidValue(reference(), ok, &OGRSpatialReference::GetSemiMajor);
}
double RKCoordinateSystem::semi_minor(bool* ok) const
{
    return ellipsoidValue(reference(), ok, &OGRSpatialReference::GetSemiMinor);
}
double RKCoordinateSystem::inverse_flattening(bool* ok) const
{
    return ellipsoidValue(reference(), ok, &OGRSpatialReference::GetInvFlattening);
}
double RKCoordinateSystem::prime_meridian(bool*) const { return reference()->GetPrimeMeridian(); }
double RKCoordinateSystem::projection_central_meridian() const
{
    return reference()->GetProjParm("central_meridian", 0.0);
}
double RKCoordinateSystem::projection_false_easting() const { return reference()->GetProjParm("false_easting", 0.0); }
double RKCoordinateSystem::projection_false_northing() const { return reference()->GetProjParm("false_northing", 0.0); }
double RKCoordinateSystem::projection_lattitude_of_origin() const
{
    return reference()->GetProjParm("latitude_of_origin", 0.0);
}
double RKCoordinateSystem::projection_scale_factor() const { return reference()->GetProjParm("scale_factor", 0.0); }
int RKCoordinateSystem::utm_zone() const { return reference()->GetUTMZone(nullptr); }
bool RKCoordinateSystem::utm_zone_is_north() const
{
    int north = 0;
    reference()->GetUTMZone(&north);
    return north == 1;
}

std::string RKCoordinateSystem::projection_clause() const
{
    if (projection_type() == UTM) {
        int north = 0;
        const int zone = reference()->GetUTMZone(&north);
        return "UTM ( zone:" + std::to_string(zone) + (north == 1 ? "N )" : "S )");
    }
    return projection_string();
}

std::string RKCoordinateSystem::summary() const
{
    const CoordSysType kind = coord_system_type();
    if (kind == Undefined)
        return "Coordinate System: undefined";
    if (kind == InvalidProjection)
        return "Coordinate System: Invalid Projection Parameters";
    std::ostringstream out;
    const std::string name = geographic_system_name();
    out << "Coordinate System: " << (name.empty() ? std::string("Unknown") : name);
    if (kind == Projected)
        out << "   Projection:" << projection_clause();
    return out.str();
}

std::string RKCoordinateSystem::projection_summary() const
{
    return coord_system_type() == Projected ? projection_clause() : std::string();
}

// ---- geographic systems ------------------------------------------------------------------------

void RKCoordinateSystem::set_well_known_geographic_system(std::string const& name)
{
    OGRSpatialReference* ref = reference();
    if (!ref)
        return;
    guarded([&] { return ref->SetWellKnownGeogCS(name.c_str()); }, OGRErr(OGRERR_FAILURE));
    wkt(exportWkt(*ref));
}

bool RKCoordinateSystem::set_epsg_geographic_system(int code)
{
    SrsPtr ref = newSrs();
    if (importEpsg(*ref, code) != OGRERR_NONE) {
        wkt(undefinedText);
        return false;
    }
    wkt(exportWkt(*ref));
    return true;
}

void RKCoordinateSystem::copy_geographic_system(RKCoordinateSystem const& other)
{
    SrsPtr fresh = newSrs();
    if (OGRSpatialReference* source = other.reference())
        guarded([&] { return fresh->CopyGeogCSFrom(source); }, OGRErr(OGRERR_FAILURE));
    wkt(exportWkt(*fresh));
}

bool RKCoordinateSystem::has_same_geo_system_as_WKT(std::string const& text) const
{
    return *this == RKCoordinateSystem(text);
}

bool RKCoordinateSystem::has_same_geo_system_as_epsg(int code) const
{
    SrsPtr ref = newSrs();
    if (importEpsg(*ref, code) != OGRERR_NONE)
        return false;
    return guarded([&] { return ref->IsSameGeogCS(reference()); }, 0) != 0;
}

bool RKCoordinateSystem::has_same_geo_system_as_well_known(std::string const& name) const
{
    SrsPtr ref = newSrs();
    if (guarded([&] { return ref->SetWellKnownGeogCS(name.c_str()); }, OGRErr(OGRERR_FAILURE)) != OGRERR_NONE)
        return false;
    return guarded([&] { return ref->IsSameGeogCS(reference()); }, 0) != 0;
}

bool RKCoordinateSystem::operator==(RKCoordinateSystem const& other) const
{
    if (m_wkt == other.m_wkt)
        return true;
    OGRSpatialReference* mine = reference();
    OGRSpatialReference* theirs = other.reference();
    return guarded([&] { return mine->IsSame(theirs); }, 0) == 1;
}

// ---- the catalogue -----------------------------------------------------------------------------

void RKCoordinateSystem::inititalise_projection_parameters()
{
    // Filled once whatever thread constructs the first object. The state plane tables cost a
    // few hundred PROJ lookups, so they wait for the first state plane operation.
    std::call_once(catalogueOnce, [] {
        QList<CoordinateSystemParameter> utm{parameter("Zone"), parameter("Hemisphere")};
        m_s_projection_parameters.insert(QStringLiteral("UTM"), utm);
        for (const CatalogueRow& row : catalogueRows) {
            QList<CoordinateSystemParameter> list;
            for (const char* label : row.labels)
                list.append(parameter(label));
            list << parameter("False Easting") << parameter("False Northing");
            m_s_projection_parameters.insert(QString::fromLatin1(row.name), list);
        }
        // Rows whose labels need a range of their own.
        QList<CoordinateSystemParameter> geos{withRange(parameter("Centre Meridian"), 90, -90),
                                              parameter("Satellite Height"), parameter("False Easting"),
                                              parameter("False Northing")};
        m_s_projection_parameters.insert(QStringLiteral("Geostationary Satellite"), geos);
        QList<CoordinateSystemParameter> belgium{
            parameter("Standard Parallel 1"), withRange(parameter("Standard Parallel 1"), 180, -180),
            parameter("Centre Lat"),          parameter("Centre Longitude"),
            parameter("False Easting"),       parameter("False Northing")};
        m_s_projection_parameters.insert(QStringLiteral("Lambert Conformal Conic (Belgium)"), belgium);
        for (const auto& name : displayNames)
            m_s_projection_names.insert(name.first, QString::fromLatin1(name.second));
        m_wellKnowProjectionToEpsg = standardProjections();
    });
}

RKCoordinateSystem::ProjectionType RKCoordinateSystem::projection_type() const
{
    if (coord_system_type() != Projected)
        return NoProjection;
    OGRSpatialReference* ref = reference();
    const char* value = ref->GetAttrValue("PROJECTION", 0);
    if (!value)
        return OtherProjection;
    const std::string name(value);
    if (name == "Transverse_Mercator")
        return ref->GetUTMZone(nullptr) != 0 ? UTM : TransverseMercator;
    if (name == "Equirectangular") {
        OGRErr err = OGRERR_NONE;
        ref->GetProjParm("standard_parallel_1", 0.0, &err);
        return err == OGRERR_NONE ? Equirectangular2 : Equirectangular;
    }
    if (variationOf(name, eckertNames))
        return Eckert;
    if (variationOf(name, wagnerNames))
        return Wagner;
    if (name.rfind("Transverse_Mercator_MapInfo_2", 0) == 0 && name.size() == 30 && name[29] >= '1' && name[29] <= '5')
        return TransverseMercatorVariant;
    for (const auto& row : projectionAttributes)
        if (name == row.first)
            return ProjectionType(row.second);
    return OtherProjection;
}

QString RKCoordinateSystem::projection_name(ProjectionType type)
{
    inititalise_projection_parameters();
    return m_s_projection_names.value(type, QStringLiteral("Other"));
}

QStringList RKCoordinateSystem::projection_names()
{
    inititalise_projection_parameters();
    QStringList names = m_s_projection_parameters.keys();
    names.removeOne(QStringLiteral("UTM"));
    names.prepend(QStringLiteral("UTM"));
    return names;
}

QStringList RKCoordinateSystem::standardProjectionNames()
{
    inititalise_projection_parameters();
    return m_wellKnowProjectionToEpsg.keys();
}

QList<CoordinateSystemParameter> RKCoordinateSystem::projection_parameters(QString const& name)
{
    inititalise_projection_parameters();
    return m_s_projection_parameters.value(name);
}

QList<QVariant> RKCoordinateSystem::projection_parameters() const
{
    QList<QVariant> values;
    OGRSpatialReference* ref = reference();
    const double linear = ref->GetLinearUnits(nullptr);
    const double angular = ref->GetAngularUnits(nullptr) / 0.017453292519943295;
    const int type = projection_type();
    auto read = [&](const char* key, char kind) {
        const double raw = ref->GetProjParm(key, 0.0);
        values.append(kind == 'a' ? raw * angular : kind == 'l' ? raw * linear : raw);
    };
    auto lengths = [&] {
        read("false_easting", 'l');
        read("false_northing", 'l');
    };
    const char* attribute = ref->GetAttrValue("PROJECTION", 0);
    const std::string name = attribute ? attribute : "";
    switch (type) {
    case UTM: {
        int north = 0;
        const int zone = ref->GetUTMZone(&north);
        values << QVariant(zone) << QVariant(north == 1);
        return values;
    }
    case Eckert:
        values << QVariant(variationOf(name, eckertNames));
        read("central_meridian", 'a');
        lengths();
        return values;
    case Wagner:
        values << QVariant(variationOf(name, wagnerNames));
        read("latitude_of_center", 'a');
        lengths();
        return values;
    case TwoPointEquidistant: {
        // ESRI-form text names the two points differently.
        const char* keys[][2] = {{"latitude_of_point_1", "Latitude_Of_1st_Point"},
                                 {"longitude_of_point_1", "Longitude_Of_1st_Point"},
                                 {"latitude_of_point_2", "Latitude_Of_2nd_Point"},
                                 {"longitude_of_point_2", "Longitude_Of_2nd_Point"}};
        for (auto& key : keys) {
            OGRErr err = OGRERR_NONE;
            ref->GetProjParm(key[0], 0.0, &err);
            read(err == OGRERR_NONE ? key[0] : key[1], 'a');
        }
        lengths();
        return values;
    }
    default:
        break;
    }
    for (const ValueRow& row : valueRows) {
        if (std::find(row.types.begin(), row.types.end(), type) == row.types.end())
            continue;
        for (const char* key : row.keys)
            read(key + 2, key[0]);
        lengths();
        break;
    }
    return values;
}

void RKCoordinateSystem::setStandardProjection(QString const& name)
{
    inititalise_projection_parameters();
    const auto it = m_wellKnowProjectionToEpsg.constFind(name);
    if (it != m_wellKnowProjectionToEpsg.constEnd())
        set_epsg_geographic_system(it.value());
}

bool RKCoordinateSystem::isStandardProjection(QString& name, int& epsg) const
{
    epsg = 0;
    for (auto it = m_wellKnowProjectionToEpsg.constBegin(); it != m_wellKnowProjectionToEpsg.constEnd(); ++it) {
        RKCoordinateSystem candidate;
        candidate.set_epsg_geographic_system(it.value());
        if (candidate == *this) {
            name = it.key();
            return true;
        }
    }
    return false;
}

// ---- projection setters ------------------------------------------------------------------------

OGRSpatialReference RKCoordinateSystem::new_reference() const
{
    OGRSpatialReference* current = reference();
    OGRSpatialReference fresh;
    fresh.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    fresh.SetProjCS("projection");
    guarded([&] { return fresh.CopyGeogCSFrom(current); }, OGRErr(OGRERR_FAILURE));
    return fresh;
}

bool RKCoordinateSystem::apply(OGRSpatialReference& ref, OGRErr result)
{
    if (result != OGRERR_NONE)
        return false;
    wkt(exportWkt(ref));
    return true;
}

// Each setter: fresh projected reference on the current geographic system, OGR's setter with
// the arguments unchanged, the text replaced only when OGR accepts.
#define RK_SETTER(NAME, CALL, ...)                                                                                     \
    bool RKCoordinateSystem::NAME(__VA_ARGS__)                                                                         \
    {                                                                                                                  \
        OGRSpatialReference ref = new_reference();                                                                     \
        return apply(ref, guarded([&] { return ref.CALL; }, OGRErr(OGRERR_FAILURE)));                                  \
    }

#define D double
RK_SETTER(set_albers_projection, SetACEA(a, b, c, d, e, f), D a, D b, D c, D d, D e, D f)
RK_SETTER(set_azimuthal_equidistant_projection, SetAE(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_bonne_projection, SetBonne(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_cassini_soldner_projection, SetCS(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_cyclindrical_equal_area_projection, SetCEA(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_eckert_projection, SetEckert(v, b, c, d), int v, D b, D c, D d)
RK_SETTER(set_equidistant_conic_projection, SetEC(a, b, c, d, e, f), D a, D b, D c, D d, D e, D f)
RK_SETTER(set_equirectangular_projection, SetEquirectangular(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_equirectangular2, SetEquirectangular2(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_lambert_conformal_conic_projection, SetLCC(a, b, c, d, e, f), D a, D b, D c, D d, D e, D f)
RK_SETTER(set_LCC, SetLCC(a, b, c, d, e, f), D a, D b, D c, D d, D e, D f)
RK_SETTER(set_LCC1SP, SetLCC1SP(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_LCCB, SetLCCB(a, b, c, d, e, f), D a, D b, D c, D d, D e, D f)
RK_SETTER(set_mercator_projection, SetMercator(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_transverse_mercator_projection, SetTM(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_GEOS, SetGEOS(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_GH, SetGH(a, b, c), D a, D b, D c)
RK_SETTER(set_GS, SetGS(a, b, c), D a, D b, D c)
RK_SETTER(set_GaussSchreiberTMercator, SetGaussSchreiberTMercator(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_Gnomonic, SetGnomonic(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_HOM, SetHOM(a, b, c, d, e, f, g), D a, D b, D c, D d, D e, D f, D g)
RK_SETTER(set_HOMAC, SetHOMAC(a, b, c, d, e, f, g), D a, D b, D c, D d, D e, D f, D g)
RK_SETTER(set_HOM2PNO, SetHOM2PNO(a, b, c, d, e, f, g, h), D a, D b, D c, D d, D e, D f, D g, D h)
RK_SETTER(set_IWMPolyconic, SetIWMPolyconic(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_Krovak, SetKrovak(a, b, c, d, e, f, g), D a, D b, D c, D d, D e, D f, D g)
RK_SETTER(set_LAEA, SetLAEA(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_MC, SetMC(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_Mollweide, SetMollweide(a, b, c), D a, D b, D c)
RK_SETTER(set_NZMG, SetNZMG(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_OS, SetOS(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_Orthographic, SetOrthographic(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_PS, SetPS(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_Polyconic, SetPolyconic(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_Robinson, SetRobinson(a, b, c), D a, D b, D c)
RK_SETTER(set_SOC, SetSOC(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_Sinusoidal, SetSinusoidal(a, b, c), D a, D b, D c)
RK_SETTER(set_Stereographic, SetStereographic(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_TMG, SetTMG(a, b, c, d), D a, D b, D c, D d)
RK_SETTER(set_TMSO, SetTMSO(a, b, c, d, e), D a, D b, D c, D d, D e)
RK_SETTER(set_TMVariant, SetTMVariant(v, a, b, c, d, e), char const* v, D a, D b, D c, D d, D e)
RK_SETTER(set_TPED, SetTPED(a, b, c, d, e, f), D a, D b, D c, D d, D e, D f)
RK_SETTER(set_VDG, SetVDG(a, b, c), D a, D b, D c)
RK_SETTER(set_Wagner, SetWagner(v, b, c, d), int v, D b, D c, D d)
RK_SETTER(set_StatePlane, SetStatePlane(code, nad83, unit_name, unit), int code, bool nad83, char const* unit_name,
          D unit)
#undef D
#undef RK_SETTER

void RKCoordinateSystem::set_utm_projection(int zone, bool north)
{
    OGRSpatialReference ref = new_reference();
    guarded([&] { return ref.SetUTM(zone, north ? 1 : 0); }, OGRErr(OGRERR_FAILURE));
    wkt(exportWkt(ref));
}

// ---- state plane and EPSG areas ----------------------------------------------------------------

void RKCoordinateSystem::add_state_plane(QString const& state, QString const& zone, int code, bool nad83)
{
    OGRSpatialReference ref;
    ref.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
    if (guarded([&] { return ref.SetStatePlane(code, nad83, "Metre", 1.0); }, OGRErr(OGRERR_FAILURE)) != OGRERR_NONE)
        return; // GDAL refuses it (no data files): the row is left out
    QStringList& states = nad83 ? m_states_nad83 : m_states_nad27;
    QMap<QString, QStringList>& planes = nad83 ? m_state_planes_nad83 : m_state_planes_nad27;
    if (!planes.contains(state)) {
        planes.insert(state, {});
        states.append(state);
    }
    planes[state].append(zone);
    (nad83 ? m_state_plane_code_maps_nad83 : m_state_plane_code_maps_nad27).insert(qMakePair(state, zone), code);
    (nad83 ? m_state_plane_nad83refs : m_state_plane_nad27refs).insert(qMakePair(state, zone), ref);
}

void RKCoordinateSystem::build_state_planes()
{
    std::call_once(statePlaneOnce, [] {
        GDALErrorHandler::instance();
        auto add = [](const PlaneRow& row, bool nad83) {
            add_state_plane(QString::fromLatin1(row.state), QString::fromLatin1(row.zone), row.code, nad83);
        };
        for (const PlaneRow& row : nad83Rows)
            add(row, true);
        // NAD27: the NAD83 order, with the states that differ taking their own rows where the
        // state first appears.
        QSet<QString> differing, done;
        for (const PlaneRow& change : nad27Changes)
            differing.insert(QString::fromLatin1(change.state));
        for (const PlaneRow& row : nad83Rows) {
            const QString state = QString::fromLatin1(row.state);
            if (!differing.contains(state)) {
                add(row, false);
                continue;
            }
            if (done.contains(state))
                continue;
            done.insert(state);
            for (const PlaneRow& change : nad27Changes)
                if (state == QLatin1String(change.state))
                    add(change, false);
        }
        for (const PlaneRow& row : nad27Extra)
            add(row, false);
    });
}

QStringList const& RKCoordinateSystem::states(bool nad83)
{
    build_state_planes();
    return nad83 ? m_states_nad83 : m_states_nad27;
}

QStringList RKCoordinateSystem::state_plane_zones(QString const& state, bool nad83)
{
    build_state_planes();
    return (nad83 ? m_state_planes_nad83 : m_state_planes_nad27).value(state);
}

bool RKCoordinateSystem::setStatePlane(QString const& state, QString const& zone, bool nad83)
{
    build_state_planes();
    const auto& codes = nad83 ? m_state_plane_code_maps_nad83 : m_state_plane_code_maps_nad27;
    const auto it = codes.constFind(qMakePair(state, zone));
    if (it == codes.constEnd())
        return false;
    return set_StatePlane(it.value(), nad83, "Metre", 1.0);
}

bool RKCoordinateSystem::is_state_plane_projection(QString& state, QString& zone, bool& nad83) const
{
    build_state_planes();
    OGRSpatialReference* mine = reference();
    for (bool table : {false, true}) {
        const auto& refs = table ? m_state_plane_nad83refs : m_state_plane_nad27refs;
        for (auto it = refs.constBegin(); it != refs.constEnd(); ++it) {
            if (guarded([&] { return it.value().IsSame(mine); }, 0) == 1) {
                state = it.key().first;
                zone = it.key().second;
                nad83 = table;
                return true;
            }
        }
    }
    return false;
}

bool RKCoordinateSystem::area_of_use(int epsg, double& min_x, double& min_y, double& max_x, double& max_y)
{
    RKCoordinateSystem system;
    if (!system.set_epsg_geographic_system(epsg))
        return false;
    QFile file(QStringLiteral(":/rkBaseQt/Resources/epsg_bbox.csv"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    double box[4] = {0, 0, 0, 0};
    bool found = false;
    while (!file.atEnd()) {
        // Lines of the resource are short; a longer one cannot be a row and is cut off.
        const QList<QByteArray> fields = file.readLine(256).trimmed().split(',');
        if (fields.size() < 4)
            continue;
        bool isInt = false;
        const int code = fields[0].toInt(&isInt);
        if (!isInt || code != epsg)
            continue;
        if (fields.size() < 5)
            return false;
        for (int i = 0; i < 4; ++i) {
            bool ok = false;
            box[i] = fields[i + 1].toDouble(&ok);
            if (!ok)
                return false;
        }
        found = true;
        break;
    }
    if (!found)
        return false;
    switch (system.coord_system_type()) {
    case Projected: {
        const auto low = system.transform_lat_long_to_point(box[0], box[1]);
        const auto high = system.transform_lat_long_to_point(box[2], box[3]);
        min_x = low.first;
        min_y = low.second;
        max_x = high.first;
        max_y = high.second;
        return true;
    }
    case Geographic:
        // The maximum latitude is not used: callers rely on this box of zero height.
        min_x = box[1];
        min_y = box[0];
        max_x = box[3];
        max_y = box[0];
        return true;
    default:
        return false;
    }
}

bool RKCoordinateSystem::false_easting_and_northing(int epsg, double& false_easting, double& false_northing)
{
    RKCoordinateSystem system;
    if (!system.set_epsg_geographic_system(epsg))
        return false;
    false_easting = system.reference()->GetProjParm("false_easting", 0.0);
    false_northing = system.reference()->GetProjParm("false_northing", 0.0);
    return false_easting > 0 && false_northing > 0;
}

// ---- transformations ---------------------------------------------------------------------------

OGRCoordinateTransformation* RKCoordinateSystem::createCoordinateTransfThreadSafely(OGRSpatialReference* source,
                                                                                    OGRSpatialReference* target)
{
    OGRCoordinateTransformation* created = nullptr;
    {
        QMutexLocker lock(&m_mutex);
        RecordingScope scope;
        try {
            created = OGRCreateCoordinateTransformation(source, target);
        } catch (const GDALException&) {
            created = nullptr;
        }
        // GDAL hands out a transformation even when PROJ reported a failure while building
        // it; such a transformation cannot run, so it is not handed out.
        if (created && failureRecorded()) {
            OGRCoordinateTransformation::DestroyCT(created);
            created = nullptr;
        }
    }
    return created;
}

void* RKCoordinateSystem::gdalCreateGenImgProjTransformerThreadSafely(GDALDataset* source, char const* source_wkt,
                                                                      GDALDataset* target, char const* target_wkt,
                                                                      int use_gcps)
{
    void* created = nullptr;
    std::string message;
    {
        QMutexLocker lock(&m_mutex);
        // This builds PROJ pipelines too, so the failure is recorded rather than thrown
        // through them (see RecordingScope), and thrown here instead, after the lock is
        // released: the caller is preparing a warp and must know why it cannot.
        RecordingScope scope;
        try {
            created = GDALCreateGenImgProjTransformer(source, source_wkt, target, target_wkt, use_gcps, 0.0, 0);
        } catch (const GDALException& e) {
            created = nullptr;
            message = e.ExceptionThrown();
        }
        if (failureRecorded()) {
            message = CPLGetLastErrorMsg();
            if (created)
                GDALDestroyGenImgProjTransformer(created);
            created = nullptr;
        }
    }
    if (!created && !message.empty())
        throw GDALException(message);
    return created;
}

OGRCoordinateTransformation* RKCoordinateSystem::create_transform(RKCoordinateSystem const& target) const
{
    SrsPtr own = newSrs();
    SrsPtr other = newSrs();
    importWkt(*own, m_wkt);
    importWkt(*other, target.m_wkt);
    return createCoordinateTransfThreadSafely(own.get(), other.get());
}

bool RKCoordinateSystem::valid_transform_to_lat_long(OGRSpatialReference* ref) const
{
    SrsPtr geographic = newSrs();
    if (guarded([&] { return geographic->CopyGeogCSFrom(ref); }, OGRErr(OGRERR_FAILURE)) != OGRERR_NONE)
        return false;
    TransformPtr transform(createCoordinateTransfThreadSafely(ref, geographic.get()));
    if (!transform)
        return false;
    if (!ref->IsProjected())
        return true;
    // GDAL keeps the PROJ pipelines it built in a per-thread cache, and a pipeline PROJ
    // rejected once is handed out again without an error; and a pipeline without an inverse is
    // made without complaint. Either shows only when a point runs, so one runs: the projected
    // origin (false easting, false northing), which every projection maps back to lat/long.
    double x = ref->GetProjParm(SRS_PP_FALSE_EASTING, 0.0);
    double y = ref->GetProjParm(SRS_PP_FALSE_NORTHING, 0.0);
    return guarded([&] { return transform->Transform(1, &x, &y, nullptr); }, 0) != 0;
}

bool RKCoordinateSystem::valid_transform_to_lat_long() const { return valid_transform_to_lat_long(reference()); }

namespace {
// The geographic system a name stands for, or the system's own when the name is empty or unknown.
SrsPtr geographicTarget(OGRSpatialReference* own, QString const& name)
{
    SrsPtr target = newSrs();
    OGRErr err = OGRERR_FAILURE;
    if (!name.isEmpty()) {
        const QByteArray latin = name.toLatin1();
        err = guarded([&] { return target->SetWellKnownGeogCS(latin.constData()); }, OGRErr(OGRERR_FAILURE));
    }
    if (name.isEmpty() || err != OGRERR_NONE)
        guarded([&] { return target->CopyGeogCSFrom(own); }, OGRErr(OGRERR_FAILURE));
    return target;
}

bool runTransform(OGRCoordinateTransformation* transform, double& x, double& y)
{
    return guarded([&] { return transform->Transform(1, &x, &y, nullptr); }, 0) != 0;
}
} // namespace

std::pair<double, double> RKCoordinateSystem::transform_point_to_lat_long(double x, double y, double,
                                                                          QString const& well_known_name) const
{
    if (coord_system_type() != Projected)
        return {0.0, 0.0};
    SrsPtr target = geographicTarget(reference(), well_known_name);
    TransformPtr transform(createCoordinateTransfThreadSafely(reference(), target.get()));
    if (!transform || !runTransform(transform.get(), x, y))
        return {0.0, 0.0};
    return {y, x};
}

namespace {
// Runs one point between a geographic system built by `prepare` and the projected `own`.
template <class Prepare>
std::pair<double, double> geographicToOwn(OGRSpatialReference* own, Prepare prepare, bool reverse, double x, double y)
{
    SrsPtr geographic = newSrs();
    prepare(*geographic);
    TransformPtr transform(reverse ? RKCoordinateSystem::createCoordinateTransfThreadSafely(own, geographic.get())
                                   : RKCoordinateSystem::createCoordinateTransfThreadSafely(geographic.get(), own));
    if (!transform)
        return {0.0, 0.0};
    // A failed run leaves the values as they stand; callers check validity beforehand.
    runTransform(transform.get(), x, y);
    return {x, y};
}
} // namespace

std::pair<double, double> RKCoordinateSystem::transform_lat_long_to_point(double latitude, double longitude) const
{
    if (coord_system_type() != Projected)
        return {0.0, 0.0};
    OGRSpatialReference* own = reference();
    return geographicToOwn(
        own, [own](OGRSpatialReference& g) { guarded([&] { return g.CopyGeogCSFrom(own); }, OGRErr(OGRERR_FAILURE)); },
        false, longitude, latitude);
}

std::pair<double, double> RKCoordinateSystem::transform_lat_long_to_point_using_wgs84(double latitude,
                                                                                      double longitude) const
{
    if (coord_system_type() != Projected)
        return {0.0, 0.0};
    return geographicToOwn(
        reference(), [](OGRSpatialReference& g) { g.SetWellKnownGeogCS("WGS84"); }, false, longitude, latitude);
}

std::pair<double, double> RKCoordinateSystem::transform_lat_long_to_point_from_wgs84(double first, double second) const
{
    if (coord_system_type() != Projected)
        return {0.0, 0.0};
    return geographicToOwn(
        reference(), [](OGRSpatialReference& g) { g.SetWellKnownGeogCS("WGS84"); }, true, second, first);
}

RKCoordinateSystem::PointToLatLongTransform::PointToLatLongTransform(RKCoordinateSystem const& system,
                                                                     QString const& well_known_name)
{
    if (system.coord_system_type() != Projected)
        return;
    m_geographic = geographicTarget(system.reference(), well_known_name).release();
    m_transform = createCoordinateTransfThreadSafely(system.reference(), m_geographic);
    // A point that cannot be converted is answered by the return value alone: an exception out
    // of GDALErrorHandler would skip GDAL's own cleanup inside Transform and leak its buffer.
    if (m_transform)
        m_transform->SetEmitErrors(false);
}

RKCoordinateSystem::PointToLatLongTransform::~PointToLatLongTransform()
{
    if (m_transform)
        OGRCoordinateTransformation::DestroyCT(m_transform);
    if (m_geographic)
        OGRSpatialReference::DestroySpatialReference(m_geographic);
}

std::pair<double, double> RKCoordinateSystem::PointToLatLongTransform::transform(double x, double y, double) const
{
    if (!m_transform)
        return {0.0, 0.0};
    // The fast path for many points: no handler of our own is pushed here, as the
    // transformation was told at construction not to report failed points.
    try {
        m_transform->Transform(1, &x, &y, nullptr);
    } catch (const GDALException&) {
        // The values as they stand, as for any failed point.
    }
    return {y, x};
}

boost::shared_ptr<RKCoordinateSystem::PointToLatLongTransform>
RKCoordinateSystem::transform_point_to_lat_long(QString const& well_known_name) const
{
    return boost::shared_ptr<PointToLatLongTransform>(new PointToLatLongTransform(*this, well_known_name));
}

double RKCoordinateSystem::deviation_between_grid_north_and_true_north(double latitude, double longitude) const
{
    if (coord_system_type() != Projected)
        return 0.0;
    OGRSpatialReference* own = reference();
    SrsPtr geographic = newSrs();
    if (!own || !geographic)
        return 0.0;
    guarded([&] { return geographic->CopyGeogCSFrom(own); }, OGRErr(OGRERR_FAILURE));
    TransformPtr transform(createCoordinateTransfThreadSafely(geographic.get(), own));
    if (!transform)
        return 0.0;
    double x1 = longitude, y1 = latitude, x2 = longitude, y2 = latitude + 0.00001;
    const int first = guarded([&] { return transform->Transform(1, &x1, &y1, nullptr); }, 0);
    const int second = guarded([&] { return transform->Transform(1, &x2, &y2, nullptr); }, 0);
    if (first != 1 || second == 0)
        return 0.0;
    const double dy = y2 - y1;
    if (dy == 0.0)
        return 0.0;
    return std::atan((x2 - x1) / dy) * GDF_RADIANStoDEGREES;
}

} // namespace rkBase
