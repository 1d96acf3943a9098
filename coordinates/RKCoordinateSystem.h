#pragma once

#include "rkbase_export.h"

#include <QList>
#include <QMap>
#include <QMutex>
#include <QPair>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <boost/shared_ptr.hpp>
#include <ogr_spatialref.h>

#include <string>
#include <utility>

class GDALDataset;

namespace rkBase {

/// \brief One editable parameter of a projection, as the coordinate system selector shows it.
///
/// Lengths are in the XY unit, angles in the orientation unit, fractions in the fraction unit.
struct RKBASE_EXPORT CoordinateSystemParameter {
    /// Kinds of parameter, the values of `type`.
    enum Type {
        LengthParameter = 0,
        BooleanParameter = 1,
        IntegerParameter = 2,
        AngleParameter = 3,
        FractionParameter = 4
    };
    QString name;               ///< Label in the selector.
    int max_int = 0;            ///< Upper limit of an integer parameter.
    int min_int = 0;            ///< Lower limit of an integer parameter.
    int default_int = 0;        ///< Start value of an integer parameter.
    double max_value = 0;       ///< Upper limit of a length, angle or fraction.
    double min_value = 0;       ///< Lower limit of a length, angle or fraction.
    double default_value = 0;   ///< Start value of a length, angle or fraction.
    QString true_text;          ///< Label of the true choice of a boolean parameter.
    QString false_text;         ///< Label of the false choice of a boolean parameter.
    bool default_bool = false;  ///< Start value of a boolean parameter.
    int type = LengthParameter; ///< One of `Type`.
};

/// \brief A coordinate system held as WKT text, with a lazily built OGR reference.
///
/// The text is the truth; the reference is rebuilt from it on demand, so copies are cheap and
/// each copy owns its own reference. Failures are return values (false, 0.0, "Undefined", kind
/// `Undefined`); nothing here throws on bad text. One object must not be used from two threads
/// at once (the reference cache is mutable state); separate objects may. Creating a
/// transformation anywhere in the library goes through `m_mutex`.
class RKBASE_EXPORT RKCoordinateSystem {
public:
    /// Kind of a system. Values are stored by callers and must not change.
    enum CoordSysType { Undefined = 0, Geographic = 1, Projected = 2, InvalidProjection = 3 };

    /// Projection classes. Values are stored by callers and must not change.
    enum ProjectionType {
        NoProjection = 0,
        UTM,
        AlbersConicEqualArea,
        AzimuthalEquidistant,
        Bonne,
        CylindricalEqualArea,
        CassiniSoldner,
        EquidistantConic,
        Eckert,
        Equirectangular,
        Equirectangular2,
        GeostationarySatellite,
        GoodeHomolosine,
        GallStereographic,
        GaussSchreiberTMercator,
        Gnomonic,
        HotineObliqueMercatorAzimuthCenter,
        HotineObliqueMercator,
        HotineObliqueMercator2Point,
        IWMPolyconic,
        Krovak,
        LambertAzimuthalEqualArea,
        LambertConformalConic,
        LambertConformalConic1SP,
        LambertConformalConicBelgium,
        MillerCylindrical,
        Mercator,
        Mollweide,
        NewZealandMapGrid,
        ObliqueStereographic,
        Orthographic,
        Polyconic,
        PolarStereographic,
        Robinson,
        Sinusoidal,
        Stereographic,
        SwissObliqueCylindrical,
        TransverseMercator,
        TransverseMercatorVariant,
        TunisiaMiningGrid,
        TransverseMercatorSouthOriented,
        TwoPointEquidistant,
        VanDerGrinten,
        Wagner,
        UnknownMarker,
        OtherProjection
    };

    /// \brief A reusable transformation from a projected system to a geographic one.
    ///
    /// Shared: the transformation and its target live until the last copy goes. Running it takes
    /// no lock, so one instance per thread is the fast path for many points.
    class RKBASE_EXPORT PointToLatLongTransform {
    public:
        ~PointToLatLongTransform();
        /// (latitude, longitude) of the projected point (x, y); `z` is ignored. (0, 0) when the
        /// source system was not projected or no transformation could be made.
        std::pair<double, double> transform(double x, double y, double z = 0.0) const;
        /// True when a transformation exists.
        bool valid() const { return m_transform != nullptr; }

    private:
        PointToLatLongTransform(RKCoordinateSystem const& system, QString const& well_known_name);
        PointToLatLongTransform(PointToLatLongTransform const&) = delete;
        PointToLatLongTransform& operator=(PointToLatLongTransform const&) = delete;
        friend class RKCoordinateSystem;

        OGRCoordinateTransformation* m_transform = nullptr;
        OGRSpatialReference* m_geographic = nullptr;
    };

    /// No system: the text "Undefined".
    RKCoordinateSystem();
    /// From WKT or a PROJ string; anything that is neither (or cannot be transformed to its own
    /// geographic system) gives "Undefined". Empty text and "unknown" give "Undefined".
    RKCoordinateSystem(std::string const& text);
    /// Copies the text only; the copy builds its own reference when first asked.
    RKCoordinateSystem(RKCoordinateSystem const& other);
    /// Copies the text and drops this object's reference.
    RKCoordinateSystem& operator=(RKCoordinateSystem const& other);
    ~RKCoordinateSystem();

    /// The WKT text, or "Undefined".
    std::string wkt() const;
    /// Replaces the text without validating it; unparsable text then classifies as `Undefined`.
    void wkt(std::string const& text);
    /// The reference built from the text. Never null; an unparsable text gives an empty
    /// reference. Owned by this object and valid until the text changes or the object goes.
    OGRSpatialReference* reference() const;
    /// Takes the system of `ref` (exported as WKT). A null `ref` does nothing.
    void set_from_spatial_reference(OGRSpatialReference const* ref);
    /// The PROJ string, or "Undefined".
    std::string proj4() const;
    /// The ESRI form of the WKT, empty for an `Undefined` system.
    std::string esri_wkt() const;
    /// Converts ESRI WKT held in the text to OGC WKT. False (text kept) when OGR refuses.
    bool morphFromESRI();

    /// Kind of the system. The transformation check of a projected system is cached per text.
    CoordSysType coord_system_type() const;
    /// The datum name, "undefined" when there is no DATUM node.
    std::string geographic_system_name() const;
    /// The PROJECTION name, "Undefined" when there is none.
    std::string projection_string() const;
    /// Semi-major axis in metres; `ok` (optional) tells success. 0 without a system.
    double semi_major(bool* ok = nullptr) const;
    /// Semi-minor axis in metres; `ok` (optional) tells success.
    double semi_minor(bool* ok = nullptr) const;
    /// Inverse flattening; `ok` (optional) tells success.
    double inverse_flattening(bool* ok = nullptr) const;
    /// Prime meridian in degrees. `ok` is accepted and never written.
    double prime_meridian(bool* ok = nullptr) const;
    /// Central meridian parameter as written in the WKT (degrees), 0 when absent.
    double projection_central_meridian() const;
    /// False easting parameter in the linear unit of the system, 0 when absent.
    double projection_false_easting() const;
    /// False northing parameter in the linear unit of the system, 0 when absent.
    double projection_false_northing() const;
    /// Latitude of origin parameter (degrees), 0 when absent.
    double projection_lattitude_of_origin() const;
    /// Scale factor parameter, 0 when absent.
    double projection_scale_factor() const;
    /// UTM zone number, 0 when the system is not UTM.
    int utm_zone() const;
    /// True only for a northern UTM zone.
    bool utm_zone_is_north() const;
    /// One line describing the system, e.g. "Coordinate System: WGS_1984   Projection:UTM ( zone:31N )".
    std::string summary() const;
    /// The projection clause of `summary()` for a projected system, otherwise empty.
    std::string projection_summary() const;

    /// Replaces the geographic system by a well-known one ("WGS84", "NAD27", ...), dropping
    /// any projection. An unknown name leaves an empty system.
    void set_well_known_geographic_system(std::string const& name);
    /// Replaces the whole system by the EPSG one; on failure the text becomes "Undefined".
    bool set_epsg_geographic_system(int code);
    /// Replaces the system by the geographic system of `other`, dropping any projection.
    void copy_geographic_system(RKCoordinateSystem const& other);
    /// True when the whole system equals the one in `wkt` (despite the name).
    bool has_same_geo_system_as_WKT(std::string const& wkt) const;
    /// True when the geographic system equals that of EPSG `code`.
    bool has_same_geo_system_as_epsg(int code) const;
    /// True when the geographic system equals the well-known one.
    bool has_same_geo_system_as_well_known(std::string const& name) const;

    /// Equal texts, or OGR finds the systems the same.
    bool operator==(RKCoordinateSystem const& other) const;
    /// Negation of `operator==`.
    bool operator!=(RKCoordinateSystem const& other) const { return !(*this == other); }

    /// Projection class of a projected system; `NoProjection` for any other kind.
    ProjectionType projection_type() const;
    /// Display name of a class, "Other" when it has none.
    static QString projection_name(ProjectionType type);
    /// Catalogue names, "UTM" first then ascending.
    static QStringList projection_names();
    /// Names of the standard projections, ascending.
    static QStringList standardProjectionNames();
    /// Editable parameters of a catalogue name; empty for an unknown name.
    static QList<CoordinateSystemParameter> projection_parameters(QString const& name);
    /// Current parameter values in catalogue order: angles in degrees, lengths in metres.
    QList<QVariant> projection_parameters() const;
    /// Takes the standard projection of that name; an unknown name does nothing.
    void setStandardProjection(QString const& name);
    /// True when this system is one of the standard projections; `name` receives its name.
    /// `epsg` is set to 0 and not written otherwise.
    bool isStandardProjection(QString& name, int& epsg) const;
    /// UTM zone on the current geographic system; failure cannot be seen.
    void set_utm_projection(int zone, bool north);

    /// \name Projection setters
    /// Each applies a projection on top of the current geographic system (angles in degrees,
    /// lengths in the linear unit) with OGR's argument order. False when OGR refuses; the
    /// system is then unchanged.
    ///@{
    bool set_albers_projection(double, double, double, double, double, double);            ///< Albers conic equal area.
    bool set_azimuthal_equidistant_projection(double, double, double, double);             ///< Azimuthal equidistant.
    bool set_bonne_projection(double, double, double, double);                             ///< Bonne.
    bool set_cassini_soldner_projection(double, double, double, double);                   ///< Cassini-Soldner.
    bool set_cyclindrical_equal_area_projection(double, double, double, double);           ///< Cylindrical equal area.
    bool set_eckert_projection(int, double, double, double);                               ///< Eckert I to VI.
    bool set_equidistant_conic_projection(double, double, double, double, double, double); ///< Equidistant conic.
    bool set_equirectangular_projection(double, double, double, double);                   ///< Equirectangular.
    bool set_equirectangular2(double, double, double, double, double); ///< Generalised equirectangular.
    bool set_lambert_conformal_conic_projection(double, double, double, double, double, double); ///< LCC 2SP.
    bool set_LCC(double, double, double, double, double, double);                                ///< LCC 2SP.
    bool set_LCC1SP(double, double, double, double, double);                                     ///< LCC 1SP.
    bool set_LCCB(double, double, double, double, double, double);                               ///< LCC Belgium.
    bool set_mercator_projection(double, double, double, double, double);                        ///< Mercator.
    bool set_transverse_mercator_projection(double, double, double, double, double);  ///< Transverse Mercator.
    bool set_GEOS(double, double, double, double);                                    ///< Geostationary satellite.
    bool set_GH(double, double, double);                                              ///< Goode homolosine.
    bool set_GS(double, double, double);                                              ///< Gall stereographic.
    bool set_GaussSchreiberTMercator(double, double, double, double, double);         ///< Gauss-Schreiber TM.
    bool set_Gnomonic(double, double, double, double);                                ///< Gnomonic.
    bool set_HOM(double, double, double, double, double, double, double);             ///< Hotine oblique Mercator.
    bool set_HOMAC(double, double, double, double, double, double, double);           ///< Hotine, azimuth centre.
    bool set_HOM2PNO(double, double, double, double, double, double, double, double); ///< Hotine two point.
    bool set_IWMPolyconic(double, double, double, double, double);                    ///< World map polyconic.
    bool set_Krovak(double, double, double, double, double, double, double);          ///< Krovak.
    bool set_LAEA(double, double, double, double);                                    ///< Lambert azimuthal equal area.
    bool set_MC(double, double, double, double);                                      ///< Miller cylindrical.
    bool set_Mollweide(double, double, double);                                       ///< Mollweide.
    bool set_NZMG(double, double, double, double);                                    ///< New Zealand map grid.
    bool set_OS(double, double, double, double, double);                              ///< Oblique stereographic.
    bool set_Orthographic(double, double, double, double);                            ///< Orthographic.
    bool set_PS(double, double, double, double, double);                              ///< Polar stereographic.
    bool set_Polyconic(double, double, double, double);                               ///< Polyconic.
    bool set_Robinson(double, double, double);                                        ///< Robinson.
    bool set_SOC(double, double, double, double);                                     ///< Swiss oblique cylindrical.
    bool set_Sinusoidal(double, double, double);                                      ///< Sinusoidal.
    bool set_Stereographic(double, double, double, double, double);                   ///< Stereographic.
    bool set_TMG(double, double, double, double);                                     ///< Tunisia mining grid.
    bool set_TMSO(double, double, double, double, double);                   ///< Transverse Mercator, south oriented.
    bool set_TMVariant(char const*, double, double, double, double, double); ///< Transverse Mercator variant.
    bool set_TPED(double, double, double, double, double, double);           ///< Two point equidistant.
    bool set_VDG(double, double, double);                                    ///< Van der Grinten.
    bool set_Wagner(int, double, double, double);                            ///< Wagner I to VII.
    bool set_StatePlane(int code, bool nad83, char const* unit_name, double unit); ///< US state plane zone.
    ///@}

    /// States with state plane zones, in table order.
    static QStringList const& states(bool nad83);
    /// Zones of a state (a single zone is the empty string); empty for an unknown state.
    static QStringList state_plane_zones(QString const& state, bool nad83);
    /// Takes the state plane zone in metres. False for an unknown state or zone.
    bool setStatePlane(QString const& state, QString const& zone, bool nad83);
    /// True when this system is a state plane zone; NAD27 is searched first.
    bool is_state_plane_projection(QString& state, QString& zone, bool& nad83) const;
    /// Area of use of an EPSG system, in its own coordinates (projected) or degrees
    /// (geographic: `max_y` equals `min_y`). False for unknown codes.
    static bool area_of_use(int epsg, double& min_x, double& min_y, double& max_x, double& max_y);
    /// False easting and northing of an EPSG system; true only when both are positive.
    static bool false_easting_and_northing(int epsg, double& false_easting, double& false_northing);

    /// Creates a transformation under `m_mutex`; null on failure; the caller owns it.
    static OGRCoordinateTransformation* createCoordinateTransfThreadSafely(OGRSpatialReference* source,
                                                                           OGRSpatialReference* target);
    /// Creates a GDAL image transformer under `m_mutex`; the caller owns it
    /// (GDALDestroyGenImgProjTransformer). A failure GDAL reports is thrown as GDALException
    /// with GDAL's message, once the lock is released.
    static void* gdalCreateGenImgProjTransformerThreadSafely(GDALDataset* source, char const* source_wkt,
                                                             GDALDataset* target, char const* target_wkt, int use_gcps);
    /// Transformation from this text to the target's text; null on failure; the caller owns it.
    OGRCoordinateTransformation* create_transform(RKCoordinateSystem const& target) const;
    /// Reusable transformation to the named geographic system (empty or unknown: this system's own).
    boost::shared_ptr<PointToLatLongTransform> transform_point_to_lat_long(QString const& well_known_name) const;
    /// (latitude, longitude) of projected (x, y) in the named geographic system; (0, 0) on failure.
    std::pair<double, double> transform_point_to_lat_long(double x, double y, double z,
                                                          QString const& well_known_name) const;
    /// (x, y) of a point in this system's own geographic system; (0, 0) when not projected.
    std::pair<double, double> transform_lat_long_to_point(double latitude, double longitude) const;
    /// (x, y) of a WGS84 point; (0, 0) when not projected.
    std::pair<double, double> transform_lat_long_to_point_using_wgs84(double latitude, double longitude) const;
    /// Runs from this system to WGS84: `first` is y (northing), `second` x; gives (longitude, latitude).
    std::pair<double, double> transform_lat_long_to_point_from_wgs84(double first, double second) const;
    /// True when this system can be transformed to its own geographic system.
    bool valid_transform_to_lat_long() const;
    /// Angle in degrees from true north to grid north at the point; 0 when not projected.
    double deviation_between_grid_north_and_true_north(double latitude, double longitude) const;

private:
    static void inititalise_projection_parameters();
    static void build_state_planes();
    static void add_state_plane(QString const& state, QString const& zone, int code, bool nad83);
    bool valid_wkt(std::string const& text) const;
    bool validProj4(std::string const& in, std::string& out) const;
    bool valid_transform_to_lat_long(OGRSpatialReference* ref) const;
    OGRSpatialReference new_reference() const;
    bool apply(OGRSpatialReference& ref, OGRErr result);
    std::string projection_clause() const;

    std::string m_wkt;
    mutable OGRSpatialReference* m_reference = nullptr;
    mutable bool m_reference_valid = false;
    mutable bool m_failedParse = false; // m_reference is the empty result of parsing m_failedText
    mutable std::string m_failedText;
    // Cache of the transformation check of the current text; -1 unknown. Reset with the text.
    mutable int m_type_cache = -1;

    static QMutex m_mutex;
    static QMap<QString, QList<CoordinateSystemParameter>> m_s_projection_parameters;
    static QMap<int, QString> m_s_projection_names;
    static QMap<QString, int> m_wellKnowProjectionToEpsg;
    static QStringList m_states_nad83, m_states_nad27;
    static QMap<QString, QStringList> m_state_planes_nad83, m_state_planes_nad27;
    static QMap<QPair<QString, QString>, int> m_state_plane_code_maps_nad83, m_state_plane_code_maps_nad27;
    static QMap<QPair<QString, QString>, OGRSpatialReference> m_state_plane_nad83refs, m_state_plane_nad27refs;
};

} // namespace rkBase
