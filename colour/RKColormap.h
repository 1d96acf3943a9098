#pragma once

#include "rkbaseqt_export.h"

#include <QColor>
#include <QVector>

#include <map>
#include <utility>

class QIODevice;
class QImage;
class QSize;

namespace rkBase {

/// \brief Turns numbers into colours: a sorted table of breaks, each with two colours.
///
/// A break's `first` colour is the one arriving at it from below, `second` the one leaving it
/// upwards, so a map can be smooth, blocked, or step hard at any break. Between breaks colours
/// blend through hue, saturation and value (QColorHSVInterpolator). Tables of 256 colours keep
/// their last place for the transparent entry, QColor(0x7f, 0x7f, 0x7f, 0). Not thread-safe for
/// writing; reading from several threads is fine.
class RKBASEQT_EXPORT RKColormap : public std::map<double, std::pair<QColor, QColor>> {
public:
    /// How colours run between breaks.
    enum Interpolation {
        Interpolated = 0, ///< blend between breaks
        Blocked = 1       ///< one colour per interval
    };
    /// The scale of the values; stored and compared only.
    enum Scale {
        Linear = 0,     ///< values as they are
        Logarithmic = 1 ///< values meant on a logarithmic scale (not applied here)
    };

    /// An empty, interpolated map.
    RKColormap();
    /// A copy.
    RKColormap(RKColormap const& other);
    /// Copies everything.
    RKColormap& operator=(RKColormap const& other);
    /// Owns nothing beyond its entries.
    virtual ~RKColormap();
    /// A new copy, owned by the caller.
    virtual RKColormap* clone() const;

    /// Same scale, interpolation and entries.
    bool operator==(RKColormap const& other) const;
    /// Negation of operator==.
    bool operator!=(RKColormap const& other) const { return !(*this == other); }

    /// The first break; 0 for an empty map.
    double min_value() const;
    /// The last break; 0 for an empty map.
    double max_value() const;
    /// Cuts the map below `v` (keeping the colour there) or extends it with a white break.
    void set_min_value(double v);
    /// Cuts the map above `v` (keeping the colour there) or extends it with a white break.
    void set_max_value(double v);
    /// See Interpolation.
    Interpolation interpolation() const { return m_interpolation; }
    /// See Interpolation.
    void set_interpolation(Interpolation i) { m_interpolation = i; }
    /// See Scale.
    Scale scale() const { return m_scale; }
    /// See Scale.
    void set_scale(Scale s) { m_scale = s; }
    /// Whether cells without a value are drawn transparent (for callers).
    bool transparentNullAttributes() const { return m_transparentNullAttributes; }
    /// See transparentNullAttributes().
    void setTransparentNullAttributes(bool on) { m_transparentNullAttributes = on; }
    /// True when the map has an entry.
    bool is_valid() const { return !empty(); }
    /// True when some break's arriving colour is not opaque.
    bool hasTransparency() const;

    /// The colour of `value`; black for an empty map.
    QColor value_to_color(double value) const;
    /// The same, giving the break found at or above `value` (end() above the last).
    QColor value_to_color(double value, const_iterator& found) const;
    /// Sets `colour` to the colour of `value` and returns the number of breaks below the break
    /// found (0 above the last).
    int getColorMapID(double value, QColor& colour) const;

    /// Replaces the map by `count` breaks of the spectrum (magenta, red, yellow, green, cyan,
    /// blue; reversed: blue first) from `min` to `max`.
    void fill_spectrum_color_list(double min, double max, int count, bool reversed);
    /// The same with breaks `step` apart.
    void fill_spectrum_color_list(double min, double max, double step, bool reversed);
    /// The reversed spectrum of `count` breaks.
    void reset(double min, double max, int count);
    /// Moves the breaks into `min`..`max`, keeping their relative places (a spectrum of 8 for an
    /// empty map).
    void fitToRange(double min, double max);
    /// Spaces the breaks evenly between the first and the last.
    void equalize();
    /// Reverses the order of the colours over the breaks; false with fewer than two breaks.
    bool reverse();
    /// Moves every break's colours one break down (`up` false) or up; false with fewer than two.
    bool rotate(bool up);
    /// Makes the middle break transparent; false with two breaks or fewer.
    bool setTransparentCenter();
    /// Like operator== with `other` fitted to this range first (which changes `other`), and
    /// breaks compared within a hundredth of the range.
    bool sameColourRange(RKColormap& other) const;

    /// `size` colours (255 when 256 is asked; at most 2^20) from the minimum to the maximum,
    /// then the transparent entry.
    bool getColorTable(QVector<unsigned int>& table, int size) const;
    /// `size` entries covering `from`..`to`, clamped to the map's range, a white centre kept
    /// visible, padded with transparent entries.
    bool getClippedColorTable(QVector<unsigned int>& table, int size, double from, double to) const;
    /// `steps` colours over `from`..`to`, each repeated `repeat` times, then the transparent entry.
    bool getClippedBlockedColorTable(QVector<unsigned int>& table, int steps, int repeat, double from, double to) const;
    /// Adds a break for each table colour (alpha dropped) over the map's present range.
    void setFromColorTable(QVector<unsigned int>& table);
    /// Adds a break for each table colour over `min`..`max`.
    void setFromColorTable(QVector<unsigned int>& table, double min, double max);

    /// A ramp of `size` colours through c1, c2 and c3 (opaque); with `reserveTransparent` and a
    /// size of 256 the last place is the transparent entry.
    static void colorTable(int size, QColor const& c1, QColor const& c2, QColor const& c3, QVector<unsigned int>& table,
                           bool reserveTransparent);
    /// The same with the nine components.
    static void colorTable(int size, int r1, int g1, int b1, int r2, int g2, int b2, int r3, int g3, int b3,
                           QVector<unsigned int>& table, bool reserveTransparent);
    /// Gives an 8-bit indexed image the map's colours of the values 0, 1, 2, ...
    static void setColourRange(QImage* image, int size, RKColormap& map);
    /// Gives an 8-bit indexed image a ramp through three colours.
    static void setColourRange(QImage* image, int size, QColor const& c1, QColor const& c2, QColor const& c3,
                               bool reserveTransparent);
    /// The same with nine components; the middle colour's blue is taken from its red, as it
    /// always was.
    static void setColourRange(QImage* image, int size, int r1, int g1, int b1, int r2, int g2, int b2, int r3,
                               int g3, int b3, bool reserveTransparent);

    // --- files ------------------------------------------------------------------------------

    /// Reads a "cpt" file, or a "cmap"/"clm" file, by the suffix (any case); false for another
    /// suffix or a file that cannot be opened, the map then as it was. With `keepRange` a cpt
    /// table is stretched over the range the map had.
    bool load(QString const& path, bool keepRange);
    /// Reads the cpt lines of `device` (RGB, RGBA, HSV and CMYK lines as this library writes
    /// and has always read them; GMT's other colour forms are read by loadGmt()).
    bool load(QIODevice& device, bool keepRange);
    /// Reads an evenly spaced colour table ("cmap") over the map's present range.
    bool loadCMapFile(QIODevice& device);
    /// Writes a "cpt" or "cmap" file by the suffix; false for another suffix ("clm" included) or
    /// a file that cannot be written.
    bool save(QString const& path) const;
    /// Writes the cpt form with alpha.
    bool save(QIODevice& device) const;
    /// Writes the cmap form.
    bool saveCMapFile(QIODevice& device) const;
    /// Writes the legend picture (horizontal when wider than tall) in the format of the suffix.
    bool saveImage(QString const& path, QSize const& size) const;
    /// Writes the legend picture in `format` ("png", ...). False without a QGuiApplication
    /// (the labels need fonts) or for an empty or absurd size.
    bool saveImage(QIODevice& device, char const* format, QSize const& size) const;

    /// The extra colours of a GMT table: below the range, above it, and for no data.
    struct GmtColours {
        QColor background; ///< "B": below the first break; invalid when the file has none
        QColor foreground; ///< "F": above the last break; invalid when the file has none
        QColor noData;     ///< "N": for cells without a value; invalid when the file has none
        bool categorical = false; ///< lines of one value and one colour: keys, not intervals
        bool hsvModel = false;    ///< the table blends in HSV (GMT's COLOR_MODEL = HSV)
    };
    /// Reads a GMT colour table as GMT does: colours as r/g/b, r g b, h-s-v, c/m/y/k, a grey
    /// level, X11 colour names (GMT's, so "gray" is 190/190/190) or `#rrggbb`, HSV and CMYK as
    /// GMT defines them, and an optional annotation field. False when no interval line was read
    /// (the map is then empty). `extra` (optional) receives the B/F/N colours.
    bool loadGmt(QIODevice& device, GmtColours* extra = nullptr);
    /// The same from a file.
    bool loadGmt(QString const& path, GmtColours* extra = nullptr);

    /// The transparent entry of tables, as rgba.
    static unsigned int transparentEntry();

protected:
    /// Whether 256-colour tables keep their last place for the transparent entry.
    static bool m_bSupportTransparancy;

private:
    QColor spectrumColor(int t) const;

    Interpolation m_interpolation = Interpolated;
    Scale m_scale = Linear;
    bool m_transparentNullAttributes = false;
};

} // namespace rkBase
