#include "colour/RKColormap.h"

#include "colour/HSVInterpolator.h"

#include <QImage>

#include <algorithm>
#include <cmath>
#include <vector>

namespace rkBase {

bool RKColormap::m_bSupportTransparancy = true;

unsigned int RKColormap::transparentEntry() { return QColor(0x7f, 0x7f, 0x7f, 0).rgba(); }

RKColormap::RKColormap() = default;
RKColormap::RKColormap(RKColormap const& other) = default;
RKColormap& RKColormap::operator=(RKColormap const& other) = default;
RKColormap::~RKColormap() = default;

RKColormap* RKColormap::clone() const { return new RKColormap(*this); }

bool RKColormap::operator==(RKColormap const& other) const
{
    return m_scale == other.m_scale && m_interpolation == other.m_interpolation && size() == other.size() &&
           std::equal(begin(), end(), other.begin());
}

double RKColormap::min_value() const { return empty() ? 0.0 : begin()->first; }
double RKColormap::max_value() const { return empty() ? 0.0 : rbegin()->first; }

bool RKColormap::hasTransparency() const
{
    for (const auto& e : *this)
        if (e.second.first.alphaF() < 1.0)
            return true;
    return false;
}

// --- colours of values ---------------------------------------------------------------------

QColor RKColormap::value_to_color(double value) const
{
    const_iterator found;
    return value_to_color(value, found);
}

QColor RKColormap::value_to_color(double value, const_iterator& found) const
{
    if (empty())
        return QColor(0, 0, 0, 255);
    found = lower_bound(value);
    if (found == end())
        return rbegin()->second.first;
    if (m_interpolation == Blocked) {
        if (found == begin())
            return found->second.first;
        return std::prev(found)->second.second;
    }
    if (found->first == value || found == begin())
        return found->second.first;
    const auto below = std::prev(found);
    const float t = float((value - below->first) / (found->first - below->first));
    QColorHSVInterpolator blend(below->second.second, found->second.first, false);
    return blend.interpolate(t);
}

int RKColormap::getColorMapID(double value, QColor& colour) const
{
    const_iterator found = end();
    colour = value_to_color(value, found);
    if (empty() || found == end())
        return 0;
    return int(std::distance(begin(), found));
}

// --- spectra -------------------------------------------------------------------------------

QColor RKColormap::spectrumColor(int t) const
{
    if (t < 256)
        return QColor(255, 0, 255 - t, 255);
    if (t < 512)
        return QColor(255, t - 256, 0, 255);
    if (t < 768)
        return QColor(767 - t, 255, 0, 255);
    if (t < 1024)
        return QColor(0, 255, t - 768, 255);
    if (t < 1279)
        return QColor(0, 1279 - t, 255, 255);
    return QColor(0, 0, 255, 255);
}

void RKColormap::fill_spectrum_color_list(double min, double max, int count, bool reversed)
{
    clear();
    if (count < 2 || min == max) {
        const QColor c = spectrumColor(reversed ? 1280 : 0);
        (*this)[min] = {c, c};
        return;
    }
    // A spectrum of millions of breaks serves no one and would take the memory of a process.
    count = std::min(count, 1 << 20);
    const double step = (max - min) / (count - 1);
    double key = min;
    for (int i = 0; i < count; ++i, key += step) {
        const int position = int(float(i) * (1280.0 / float(count - 1)) + 0.5);
        const QColor c = spectrumColor(reversed ? 1280 - position : position);
        (*this)[key] = {c, c};
    }
}

void RKColormap::fill_spectrum_color_list(double min, double max, double step, bool reversed)
{
    if (!(step > 0) || !std::isfinite(step) || !std::isfinite(min) || !std::isfinite(max)) {
        fill_spectrum_color_list(min, max, 1, reversed);
        return;
    }
    const double range = (max - min) / step;
    const double whole = std::floor(range);
    const double rounded = range - whole >= 0.5 ? whole + 1.0 : whole;
    const int count = int(std::min(rounded + 1.0, double(1 << 20)));
    clear();
    if (count < 2) {
        fill_spectrum_color_list(min, max, 1, reversed);
        return;
    }
    double key = min;
    for (int i = 0; i < count; ++i, key += step) {
        const int position = int(float(i) * (1280.0 / float(count - 1)) + 0.5);
        const QColor c = spectrumColor(reversed ? 1280 - position : position);
        (*this)[key] = {c, c};
    }
}

void RKColormap::reset(double min, double max, int count) { fill_spectrum_color_list(min, max, count, true); }

// --- reshaping -------------------------------------------------------------------------------

void RKColormap::fitToRange(double min, double max)
{
    if (empty()) {
        fill_spectrum_color_list(min, max, 8, true);
        return;
    }
    const double oldMin = min_value(), span = max_value() - oldMin;
    RKColormap moved;
    moved.m_interpolation = m_interpolation;
    moved.m_scale = m_scale;
    moved.m_transparentNullAttributes = m_transparentNullAttributes;
    for (const auto& e : *this) {
        const double fraction = span != 0 ? (e.first - oldMin) / span : e.first - oldMin;
        moved[(max - min) * fraction + min] = e.second;
    }
    std::map<double, std::pair<QColor, QColor>>::swap(moved);
}

void RKColormap::equalize()
{
    if (size() <= 2)
        return;
    const double min = min_value(), max = max_value();
    const double step = (max - min) / double(size() - 1);
    std::vector<std::pair<QColor, QColor>> colours;
    for (const auto& e : *this)
        colours.push_back(e.second);
    clear();
    double key = min;
    for (size_t i = 0; i < colours.size(); ++i) {
        (*this)[i + 1 == colours.size() ? max : key] = colours[i];
        key += step;
    }
}

bool RKColormap::reverse()
{
    if (size() < 2)
        return false;
    std::vector<QColor> firsts, seconds;
    for (const auto& e : *this) {
        firsts.push_back(e.second.first);
        seconds.push_back(e.second.second);
    }
    size_t i = size();
    for (auto& e : *this) {
        --i;
        e.second.first = firsts[i];
        e.second.second = seconds[i];
    }
    return true;
}

bool RKColormap::rotate(bool up)
{
    if (size() < 2)
        return false;
    std::vector<std::pair<QColor, QColor>> colours;
    for (const auto& e : *this)
        colours.push_back(e.second);
    if (up)
        std::rotate(colours.rbegin(), colours.rbegin() + 1, colours.rend());
    else
        std::rotate(colours.begin(), colours.begin() + 1, colours.end());
    size_t i = 0;
    for (auto& e : *this)
        e.second = colours[i++];
    return true;
}

void RKColormap::set_max_value(double v)
{
    if (empty() || v > max_value()) {
        (*this)[v] = {QColor(Qt::white), QColor(Qt::white)};
        return;
    }
    auto at = find(v);
    if (at != end()) {
        erase(std::next(at), end());
        return;
    }
    auto above = upper_bound(v);
    const auto colours = above->second;
    erase(above, end());
    (*this)[v] = colours;
}

void RKColormap::set_min_value(double v)
{
    if (empty() || v < min_value()) {
        (*this)[v] = {QColor(Qt::white), QColor(Qt::white)};
        return;
    }
    auto at = find(v);
    if (at != end()) {
        erase(begin(), at);
        return;
    }
    auto below = std::prev(lower_bound(v));
    const auto colours = below->second;
    erase(begin(), std::next(below));
    (*this)[v] = colours;
}

bool RKColormap::setTransparentCenter()
{
    if (size() <= 2)
        return false;
    auto middle = std::next(begin(), long(size() / 2));
    middle->second.first.setAlpha(0);
    middle->second.second.setAlpha(0);
    return true;
}

bool RKColormap::sameColourRange(RKColormap& other) const
{
    if (m_scale != other.m_scale || m_interpolation != other.m_interpolation || size() != other.size())
        return false;
    other.fitToRange(min_value(), max_value());
    const double tolerance = (max_value() - min_value()) / 100.0;
    auto b = other.begin();
    for (auto a = begin(); a != end(); ++a, ++b)
        if (a->second != b->second || std::fabs(a->first - b->first) > tolerance)
            return false;
    return true;
}

// --- tables --------------------------------------------------------------------------------------

namespace {
// A colour table is read by indexed images and lookups; millions of entries are a caller's
// mistake and would take the memory of the process.
constexpr int kMaxTableSize = 1 << 20;
} // namespace

bool RKColormap::getColorTable(QVector<unsigned int>& table, int size) const
{
    size = std::min(size, kMaxTableSize);
    if (m_bSupportTransparancy && size == 256)
        size = 255;
    table.clear();
    if (size > 0) {
        table.reserve(size + 1);
        const double min = min_value(), step = size > 1 ? (max_value() - min) / (size - 1) : 0.0;
        for (int i = 0; i < size; ++i)
            table.append(value_to_color(min + i * step).rgba());
    }
    if (m_bSupportTransparancy)
        table.append(transparentEntry());
    return true;
}

bool RKColormap::getClippedColorTable(QVector<unsigned int>& table, int size, double from, double to) const
{
    size = std::min(size, kMaxTableSize);
    const int n = m_bSupportTransparancy && size > 255 ? size * 255 / 256 : size;
    table.clear();
    bool whiteCentre = false;
    double centre = 0.0;
    if (this->size() >= 3) {
        auto middle = std::next(begin(), long(this->size() / 2));
        if (middle->second.first == QColor(255, 255, 255, 255)) {
            whiteCentre = true;
            centre = middle->first;
        }
    }
    const double lower = std::max(min_value(), from), upper = std::min(max_value(), to);
    const double step = n > 1 ? (to - from) / (n - 1) : 0.0;
    int lastBelow = -1, exact = -1;
    for (int i = 0; i < n; ++i) {
        const double v = from + i * step;
        const double clamped = v < lower ? lower : v > upper ? upper : v;
        table.append(value_to_color(clamped).rgba());
        if (whiteCentre) {
            if (v <= centre)
                lastBelow = i;
            if (v == centre)
                exact = i;
        }
    }
    const unsigned int white = QColor(255, 255, 255, 255).rgba();
    if (whiteCentre && lastBelow >= 0) {
        if (exact >= 1 && exact <= n - 2) {
            for (int i = exact - 1; i <= exact + 1; ++i)
                table[i] = white;
        } else if (lastBelow >= 2 && lastBelow <= n - 3) {
            for (int i = lastBelow - 1; i <= lastBelow + 2; ++i)
                table[i] = white;
        }
    }
    while (table.size() < size)
        table.append(transparentEntry());
    return true;
}

bool RKColormap::getClippedBlockedColorTable(QVector<unsigned int>& table, int steps, int repeat, double from,
                                             double to) const
{
    table.clear();
    if (steps <= 0 || repeat <= 0)
        return true;
    if (steps * repeat > 256)
        repeat = std::max(1, 256 / steps);
    if (m_bSupportTransparancy && steps == 256)
        steps = 255;
    const double lower = std::max(min_value(), from), upper = std::min(max_value(), to);
    const double step = steps > 1 ? (to - from) / (steps - 1) : 0.0;
    for (int i = 0; i < steps; ++i) {
        const double v = from + i * step;
        const unsigned int colour = value_to_color(v < lower ? lower : v > upper ? upper : v).rgba();
        for (int k = 0; k < repeat; ++k)
            table.append(colour);
    }
    if (m_bSupportTransparancy) {
        if (steps * repeat < 256)
            table.append(transparentEntry());
        else if (table.size() > 255)
            table[255] = transparentEntry();
    }
    return true;
}

void RKColormap::setFromColorTable(QVector<unsigned int>& table) { setFromColorTable(table, min_value(), max_value()); }

void RKColormap::setFromColorTable(QVector<unsigned int>& table, double min, double max)
{
    set_min_value(min);
    set_max_value(max);
    int n = table.size();
    if (m_bSupportTransparancy && n == 256)
        --n;
    const double step = n > 1 ? (max - min) / (n - 1) : 0.0;
    for (int i = 0; i < n; ++i) {
        const QColor c = QColor(QRgb(table[i]) | 0xff000000u);
        emplace(min + i * step, std::make_pair(c, c)); // a key already standing is kept
    }
}

void RKColormap::colorTable(int size, QColor const& c1, QColor const& c2, QColor const& c3, QVector<unsigned int>& table,
                            bool reserveTransparent)
{
    colorTable(size, c1.red(), c1.green(), c1.blue(), c2.red(), c2.green(), c2.blue(), c3.red(), c3.green(), c3.blue(),
               table, reserveTransparent);
}

void RKColormap::colorTable(int size, int r1, int g1, int b1, int r2, int g2, int b2, int r3, int g3, int b3,
                            QVector<unsigned int>& table, bool reserveTransparent)
{
    table.clear();
    const QColor c1(r1, g1, b1), c2(r2, g2, b2), c3(r3, g3, b3);
    if (size == 2) {
        table << c1.rgb() << c3.rgb();
        return;
    }
    if (size == 3) {
        table << c1.rgb() << c2.rgb() << c3.rgb();
        return;
    }
    if (size < 2)
        return;
    const bool reserved = reserveTransparent && size == 256;
    const int count = reserved ? size - 2 : size - 1;
    const int half = count / 2;
    table.append(c1.rgb());
    if (half > 0) {
        for (int d = 1; d < half; ++d)
            table.append(QColor(int((r2 - r1) * d / half + r1), int((g2 - g1) * d / half + g1), int((b2 - b1) * d / half + b1)).rgb());
        for (int d = half; d < count; ++d)
            table.append(QColor(int((r3 - r2) * (d - half) / half + r2), int((g3 - g2) * (d - half) / half + g2),
                                int((b3 - b2) * (d - half) / half + b2))
                             .rgb());
    }
    table.append(c3.rgb());
    if (reserved)
        table.append(transparentEntry());
}

void RKColormap::setColourRange(QImage* image, int size, RKColormap& map)
{
    if (!image || image->format() != QImage::Format_Indexed8)
        return;
    if (m_bSupportTransparancy && size == 256)
        size = 255;
    QVector<QRgb> table;
    for (int i = 0; i < size; ++i)
        table.append(map.value_to_color(double(i)).rgba());
    table.append(transparentEntry());
    image->setColorTable(table);
}

void RKColormap::setColourRange(QImage* image, int size, QColor const& c1, QColor const& c2, QColor const& c3,
                                bool reserveTransparent)
{
    setColourRange(image, size, c1.red(), c1.green(), c1.blue(), c2.red(), c2.green(), c2.blue(), c3.red(), c3.green(),
                   c3.blue(), reserveTransparent);
}

void RKColormap::setColourRange(QImage* image, int size, int r1, int g1, int b1, int r2, int g2, int b2, int r3, int g3,
                                int b3, bool reserveTransparent)
{
    if (!image || (r1 == r2 && g1 == g2 && b1 == b2 && r2 == r3 && g2 == g3 && b2 == b3))
        return;
    if (image->format() != QImage::Format_Indexed8)
        return;
    Q_UNUSED(b2);
    QVector<unsigned int> table;
    // The middle colour's blue is given its red, as images made so far have it.
    colorTable(size, r1, g1, b1, r2, g2, r2, r3, g3, b3, table, reserveTransparent);
    image->setColorTable(QVector<QRgb>(table.begin(), table.end()));
}

} // namespace rkBase
