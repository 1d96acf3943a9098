// Numeric operations on attribute-table columns: statistics, directions, histograms,
// interpolation. Blank cells (null or invalid) are skipped everywhere; what cannot be computed
// is given as 99999.
#include "matrix/MatrixData.h"
#include "matrix/MatrixDataRestore.h"
#include "matrix/SymmetricEigen.h"

#include "core/rkUtils.h"

#include <QDebug>

#include <cmath>

namespace rkBase {

namespace {

bool blank(const QVariant& v) { return v.isNull() || !v.isValid(); }

bool chosen(const std::vector<int>& rows, int r)
{
    return rows.empty() || std::find(rows.begin(), rows.end(), r) != rows.end();
}

} // namespace

bool MatrixData::getMinMax(double& min, double& mean, double& max, boost::dynamic_bitset<> const& rows)
{
    min = mean = max = 0.0;
    const int columns = columnCount();
    if (columns <= 0)
        return false;
    double sum = 0.0;
    int count = 0;
    for (int c = 0; c < columns; ++c) {
        double cmin = 0, cmax = 0, csum = 0;
        int ccount = 0;
        getMinMaxForColumn(c, cmin, cmax, csum, ccount, rows);
        if (ccount == 0)
            continue;
        min = count == 0 ? cmin : std::min(min, cmin);
        max = count == 0 ? cmax : std::max(max, cmax);
        sum += csum;
        count += ccount;
    }
    if (count == 0)
        return false;
    mean = sum / count;
    return true;
}

double MatrixData::standardDeviation()
{
    const double m = toDouble(1, 0);
    double squares = 0.0;
    int n = 0;
    for (int r = 0; r < rowCount(); ++r) {
        const QVariant v = value(r, 0);
        if (blank(v))
            continue;
        const double d = v.toDouble() - m;
        squares += d * d;
        ++n;
    }
    return n == 0 ? 0.0 : std::sqrt(squares / n);
}

double MatrixData::resultantMeanDirection(double& length, std::vector<int> const& rows)
{
    double c = 0.0, s = 0.0;
    int n = 0;
    for (int r = 0; r < rowCount(); ++r) {
        if (!chosen(rows, r))
            continue;
        const QVariant v = value(r, 0);
        if (blank(v))
            continue;
        const double radians = v.toDouble() * GDF_DEGREEStoRADIANS;
        c += std::cos(radians);
        s += std::sin(radians);
        ++n;
    }
    if (std::fabs(c) < 5e-10)
        return 99999.0;
    length = std::sqrt(s * s + c * c) / n;
    const double a = std::atan(s / c) * GDF_RADIANStoDEGREES;
    if (c > 0 && s > 0)
        return a;
    if (c > 0 && s < 0)
        return a + 360.0;
    if (c < 0 && s != 0)
        return a + 180.0;
    return 0.0; // s exactly 0, as it always was (180 degrees included)
}

void MatrixData::calculateRegressionLine(double& slope, double& intercept, double& correlation)
{
    slope = intercept = correlation = 0.0;
    QVector<QPointF> points;
    for (int r = 0; r < validValueRowCount(); ++r) {
        const QVariant v = value(r, 0);
        if (!blank(v) && isValueValid(r, 0))
            points.append(v.toPointF());
    }
    const int n = points.size();
    if (n == 0)
        return;
    double mx = 0, my = 0;
    for (const QPointF& p : points) {
        mx += p.x();
        my += p.y();
    }
    mx /= n;
    my /= n;
    const double x0 = minValue().isNull() ? points.first().x() : minValue().toPointF().x();
    bool vertical = true;
    for (const QPointF& p : points)
        vertical = vertical && std::fabs(p.x() - x0) <= 5e-07;
    if (vertical) {
        slope = 99999.0;
        intercept = my;
        return;
    }
    double cov = 0, sxx = 0, syy = 0;
    for (const QPointF& p : points) {
        cov += (p.x() - mx) * (p.y() - my);
        sxx += (p.x() - mx) * (p.x() - mx);
        syy += (p.y() - my) * (p.y() - my);
    }
    const double denominator = n > 1 ? n - 1 : 1;
    cov /= denominator;
    const double sx = std::sqrt(sxx / denominator), sy = std::sqrt(syy / denominator);
    if (sx >= 5e-06) {
        slope = cov / (sx * sx);
        correlation = sy > 0 ? cov / (sy * sx) : 0.0;
    }
    intercept = my - mx * slope;
    if (std::fabs(slope) < 5e-06)
        slope = 0.0;
    if (std::fabs(intercept) < 5e-06)
        intercept = 0.0;
}

bool MatrixData::calculateMomentsOfInertia(double& largest, double& middle, double& smallest)
{
    largest = middle = smallest = 0.0;
    double aa = 0, bb = 0, cc = 0, ab = 0, ac = 0, bc = 0;
    int n = 0;
    for (int r = 0; r < validValueRowCount(); ++r) {
        const QVariant v = value(r, 0);
        if (blank(v) || !isValueValid(r, 0))
            continue;
        const QPointF p = v.toPointF();
        const double plunge = p.x() * GDF_DEGREEStoRADIANS, azimuth = p.y() * GDF_DEGREEStoRADIANS;
        const double a = std::cos(azimuth) * std::cos(plunge), b = std::sin(azimuth) * std::cos(plunge),
                     c = std::sin(plunge);
        aa += a * a;
        bb += b * b;
        cc += c * c;
        ab += a * b;
        ac += a * c;
        bc += b * c;
        ++n;
    }
    const double m[3][3] = {{n - aa, ab, ac}, {ab, n - bb, bc}, {ac, bc, n - cc}};
    // For diagnosis only: the matrix goes to Qt's debug channel, never to standard output, so
    // that a command-line user's output stays clean.
    qDebug().nospace() << "moments of inertia matrix: " << m[0][0] << ' ' << m[0][1] << ' ' << m[0][2] << " / "
                       << m[1][1] << ' ' << m[1][2] << " / " << m[2][2];
    TripleDouble values, vectors[3];
    if (!symmetricEigen3(m, values, vectors, false))
        return false;
    largest = values[0];
    middle = values[1];
    smallest = values[2];
    return true;
}

void MatrixData::plungeAndAzimuth(double& plunge, double& azimuth, double const& rake, double const& strike,
                                  double const& dip)
{
    azimuth = strike;
    const double s = std::sin(rake * GDF_DEGREEStoRADIANS) * std::sin(dip * GDF_DEGREEStoRADIANS);
    plunge = rkUtils::asin(s) * GDF_RADIANStoDEGREES;
    const double c = std::cos(dip * GDF_DEGREEStoRADIANS);
    const double cosPlunge = std::cos(plunge * GDF_DEGREEStoRADIANS);
    if (std::fabs(c) > 5e-06 && std::fabs(cosPlunge) < 5e-06)
        return;
    double r = std::cos(rake * GDF_DEGREEStoRADIANS) / cosPlunge;
    if (std::fabs(r - 1.0) < 1e-12)
        r = 1.0;
    else if (std::fabs(r + 1.0) < 1e-12)
        r = -1.0;
    const double t = rkUtils::acos(r) * GDF_RADIANStoDEGREES;
    double b = 90.0 - strike;
    b = b >= 0 ? 360.0 - b : -b;
    azimuth = b + t;
}

void MatrixData::plungeAndAzimuth(double& plunge, double& azimuth, double const& rake, double const& strike,
                                  double const& dip, QString const& quadrant)
{
    azimuth = strike;
    const double s = std::sin(rake * GDF_DEGREEStoRADIANS) * std::sin(dip * GDF_DEGREEStoRADIANS);
    plunge = rkUtils::asin(s) * GDF_RADIANStoDEGREES;
    const double c = std::cos(dip * GDF_DEGREEStoRADIANS);
    const double cosPlunge = std::cos(plunge * GDF_DEGREEStoRADIANS);
    if (std::fabs(c) > 5e-06 && std::fabs(cosPlunge) < 5e-06)
        return;
    double r = std::cos(rake * GDF_DEGREEStoRADIANS) / cosPlunge;
    r = std::fabs(r - 1.0) < 1e-12 ? 1.0 : std::fabs(r + 1.0) < 1e-12 ? -1.0 : r;
    const double t = rkUtils::acos(r) * GDF_RADIANStoDEGREES;
    double b = 90.0 - strike;
    b = b >= 0 ? 360.0 - b : -b;
    // The rake is measured from the end of the strike line that lies on the named side. For a
    // strike in the first or fourth quadrant that end is the strike direction itself when the
    // side is north or east; for the second and third quadrant when it is south or east. From
    // the other end the line lies at the supplementary angle.
    const QString q = quadrant.trimmed().left(1).toUpper();
    const double st = std::fmod(std::fmod(strike, 360.0) + 360.0, 360.0);
    const bool northOrEast = q == QLatin1String("N") || q == QLatin1String("E");
    const bool southOrEast = q == QLatin1String("S") || q == QLatin1String("E");
    const bool fromStrikeEnd = (st < 90.0 || st >= 270.0) ? northOrEast : southOrEast;
    azimuth = fromStrikeEnd ? b + t : (b + 180.0) - t;
}

MatrixData* MatrixData::createMeasuredDepth(MatrixData* x, MatrixData* y, MatrixData* z)
{
    if (!x || !y || !z)
        return nullptr;
    const int rows = x->rowCount();
    auto* md = new MatrixData(QStringLiteral("Measured Depth"), rows, 1, QVariant::Double, true);
    md->setUnitManager(x->unitManager());
    double total = 0.0;
    for (int r = 1; r < rows; ++r) {
        const double dx = x->toDouble(r, 0) - x->toDouble(r - 1, 0);
        const double dy = y->toDouble(r, 0) - y->toDouble(r - 1, 0);
        const double dz = z->toDouble(r, 0) - z->toDouble(r - 1, 0);
        total += std::sqrt(dx * dx + dy * dy + dz * dz);
        md->setValue(r, total);
    }
    return md;
}

MatrixData* MatrixData::createMeasuredDepth()
{
    MatrixData* first = getFirstChildWithData();
    if (!first)
        return nullptr;
    MatrixData* east = child(QStringLiteral("East"));
    MatrixData* north = child(QStringLiteral("North"));
    MatrixData* z = child(QStringLiteral("Z"));
    if (!east || !north || !z)
        return nullptr;
    MatrixData* group = getContainerFromName(QStringLiteral("Vertex Data"));
    if (!group) {
        group = new MatrixData(QStringLiteral("Vertex"), -1, -1, QVariant::String, true);
        appendChild(group, false);
    }
    MatrixData* md = group->getContainerFromName(QStringLiteral("Measured Depth"));
    if (!md) {
        md = new MatrixData(QStringLiteral("Measured Depth"), first->rowCount(), 1, QVariant::Double, true);
        md->setNodeComputed(true);
        group->appendChild(md, false);
    }
    md->setRegistry(z->registry());
    md->setUnitManager(z->unitManager());
    double total = 0.0;
    for (int r = 1; r < md->rowCount() && r < z->rowCount(); ++r) {
        const double dx = east->toDouble(r, 0) - east->toDouble(r - 1, 0);
        const double dy = north->toDouble(r, 0) - north->toDouble(r - 1, 0);
        const double dz = z->toDouble(r, 0) - z->toDouble(r - 1, 0);
        total += std::sqrt(dx * dx + dy * dy + dz * dz);
        md->setValue(r, total);
    }
    return md;
}

MatrixData* MatrixData::newFrequencyData(double& step, HistogramType type, std::vector<int> const& rows,
                                         MatrixData* owner, bool axial, bool startAtZero)
{
    if (m_cellType != QVariant::Int && m_cellType != QVariant::Double)
        return new MatrixData(QStringLiteral("No Scalar Value(s)"), -1, -1, QVariant::String, true);
    if (rowCount() <= 0 || columnCount() <= 0)
        return nullptr;
    if (rows.empty() && meanValue().isNull())
        setMinMax(0, rows);
    const double min = minValue().toDouble(), max = maxValue().toDouble();
    int bins = 0;
    if (step == 99999.0) {
        bins = 50;
        step = std::fabs(max - min) / 49.0;
    } else if (step == 0.0) {
        bins = int((max - min) / 1.0) + 2;
        step = 1.0;
    } else {
        bins = int((max - min) / step) + 2;
    }
    // A histogram is refused rather than built with an absurd number of bins.
    if (!std::isfinite(step) || step <= 0 || bins <= 0 || bins > 1000000)
        return nullptr;
    double start = min - step;
    if (!startAtZero && min >= 0.0 && min <= 0.0001)
        start = 0.0001;
    std::vector<std::vector<QVariant>> binValues;
    return newFrequencyData(step, bins, start, type, rows, nullptr, owner, binValues, axial);
}

MatrixData* MatrixData::newFrequencyData(double step, int bins, double start, HistogramType type,
                                         std::vector<int> const& rows, MatrixData* secondary, MatrixData* owner,
                                         std::vector<std::vector<QVariant>>& binValues, bool axial)
{
    if (bins <= 0 || bins > 1000000 || !(step > 0))
        return nullptr;
    auto* result = new MatrixData(m_name, bins, 4, QVariant::Double, true);
    result->setColor(m_color);
    std::vector<int> counts(static_cast<size_t>(bins), 0);
    if (secondary)
        binValues.assign(static_cast<size_t>(bins), {});
    MatrixData* scat = nullptr;
    if (owner && (m_name.contains(QLatin1String("dip")) || m_name.contains(QLatin1String("azimuth"))))
        scat = owner->child(QStringLiteral("SCAT"));
    const auto lower = [&](int i) { return i * step + start; };
    const auto upper = [&](int i) { return (i + 1) * step + start; };
    for (int r = 0; r < rowCount(); ++r) {
        if (!chosen(rows, r))
            continue;
        if (scat) {
            const QVariant flag = scat->value(r, 0);
            if (!blank(flag) && flag.toBool())
                continue;
        }
        const QVariant v = value(r, 0);
        if (blank(v))
            continue;
        const double d = v.toDouble();
        const double position = (d - start) / step;
        if (position >= 0 && position < bins) {
            const int bin = int(position);
            ++counts[size_t(bin)];
            if (secondary)
                binValues[size_t(bin)].push_back(secondary->value(r, 0));
        }
        if (!axial) {
            double opposite = d + 180.0;
            if (opposite > 360.0)
                opposite -= 360.0;
            for (int i = 0; i < bins; ++i)
                if (lower(i) <= opposite && (opposite < upper(i) || (i == bins - 1 && opposite <= upper(i)))) {
                    ++counts[size_t(i)];
                    break;
                }
        }
    }
    int total = 0;
    for (int c : counts)
        total += c;
    result->setValidValueRowCount(total);
    double running = 0.0;
    for (int i = 0; i < bins; ++i) {
        const int count = counts[size_t(i)];
        switch (type) {
        case HISTOGRAM_PERCENT:
            result->setValue(i, 0, total ? count * (100.0 / total) : 0.0);
            break;
        case HISTOGRAM_CUMULATIVE:
            running += total ? count * (100.0 / total) : 0.0;
            result->setValue(i, 0, running);
            result->setValue(i, 1, (i + 1) * step + (start));
            break;
        default:
            result->setValue(i, 0, count);
            break;
        }
        result->setValue(i, 2, lower(i));
        result->setValue(i, 3, upper(i));
    }
    result->setMinMax(0, boost::dynamic_bitset<>());
    return result;
}

MatrixData* MatrixData::reduceToAveraged(int keyColumn, int valueColumn)
{
    struct Run {
        double key, sum;
        int count;
        double previousValue;
    };
    std::vector<Run> runs;
    double previous = 0.0;
    for (int r = 0; r < rowCount(); ++r) {
        const double key = toDouble(r, keyColumn), v = toDouble(r, valueColumn);
        if (runs.empty() || std::fabs(key - runs.back().key) >= 0.0005)
            runs.push_back({key, 0.0, 0, previous});
        runs.back().sum += v;
        ++runs.back().count;
        previous = v;
    }
    auto* result = new MatrixData(m_name, int(runs.size()), columnCount(), QVariant::Double, true);
    for (size_t i = 0; i < runs.size(); ++i) {
        const bool last = i + 1 == runs.size();
        // The last run takes the value of the row before it, as this routine always did.
        const double mean = last ? toDouble(rowCount() - 2 >= 0 ? rowCount() - 2 : 0, valueColumn)
                                 : runs[i].sum / runs[i].count;
        result->setValue(int(i), valueColumn, mean);
        result->setValue(int(i), keyColumn, runs[i].key);
    }
    return result;
}

double MatrixData::getInterpolationValue(double x, int xColumn, int yColumn)
{
    const int n = rowCount();
    if (n < 2)
        return 99999.0;
    if (x < toDouble(0, xColumn))
        return toDouble(0, yColumn);
    if (x > toDouble(n - 1, xColumn))
        return toDouble(n - 1, yColumn);
    for (int i = 0; i + 1 < n; ++i) {
        const double x0 = toDouble(i, xColumn), x1 = toDouble(i + 1, xColumn);
        if (x0 <= x && x <= x1) {
            if (std::fabs(x1 - x0) <= 5e-05)
                return 99999.0;
            const double y0 = toDouble(i, yColumn), y1 = toDouble(i + 1, yColumn);
            return ((x - x1) / (x0 - x1)) * y0 + ((x - x0) / (x1 - x0)) * y1;
        }
    }
    return 99999.0;
}

void MatrixData::interpolate(int from, int to, int column, MatrixDataRestore* restore)
{
    if (from > to)
        std::swap(from, to);
    if (to - from < 2)
        return;
    const double a = toDouble(from, column), b = toDouble(to, column);
    for (int k = 1; from + k < to; ++k) {
        if (restore)
            restore->dataStore(from + k, value(from + k, 0));
        setDouble(from + k, column, a + k * (b - a) / (to - from));
    }
}

int MatrixData::defaultFilterStepSize(int rows)
{
    int n = maxNumbOfSelectedRows(1, rows) / 20;
    if (n == 0)
        n = 1;
    m_defaultFilterStepSize = n;
    return n;
}

void MatrixData::resetDefaultFilterStepSize()
{
    m_defaultFilterStepSize = -1;
    defaultFilterStepSize(0);
}

int MatrixData::findInterval(double v, int const& n, double const& start, double const& step, int* counts,
                             double* lower, double* upper)
{
    if (n < 1 || !counts || !lower || !upper)
        return -1;
    for (int i = 0; i < n; ++i) {
        lower[i] = i * step + start;
        upper[i] = (i + 1) * step + start;
        if (v >= lower[i] && (v < upper[i] || (i == n - 1 && v <= upper[i]))) {
            ++counts[i];
            return i;
        }
    }
    return -1;
}

bool MatrixData::pointInOrOut(QPointF const& p)
{
    if (m_cellType != QVariant::PointF)
        return false;
    const int n = rowCount();
    if (n < 1)
        return false;
    double total = 0.0;
    for (int i = 0; i < n; ++i) {
        const QPointF a = value(i, 0).toPointF(), b = value((i + 1) % n, 0).toPointF();
        if (std::fabs(a.x() - p.x()) + std::fabs(a.y() - p.y()) < 1e-12)
            return true;
        double d = std::atan2(b.y() - p.y(), b.x() - p.x()) - std::atan2(a.y() - p.y(), a.x() - p.x());
        if (d > M_PI)
            d -= 6.283185307179586;
        else if (d < -M_PI)
            d += 6.283185307179586;
        total += d;
    }
    return total > 6.0 || total < -6.0;
}

} // namespace rkBase
