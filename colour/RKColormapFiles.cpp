// Colour map files: the cpt form (intervals between breaks, as this library writes and has
// always read it), GMT's colour tables, the evenly spaced cmap form, and legend pictures.
#include "colour/QColormapWidget.h"
#include "colour/RKColormap.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRegExp>
#include <QTextStream>

#include <cmath>

namespace rkBase {

namespace {

// Numbers that fail to parse read as 0, as the format has always been read.
double num(const QString& s) { return s.toDouble(); }
int whole(const QString& s) { return int(s.toDouble()); }

} // namespace

// --- cpt, as stated --------------------------------------------------------------------------------

bool RKColormap::load(QString const& path, bool keepRange)
{
    QFile f(path);
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix != QLatin1String("cpt") && suffix != QLatin1String("cmap") && suffix != QLatin1String("clm"))
        return false;
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text))
        return false;
    return suffix == QLatin1String("cpt") ? load(f, keepRange) : loadCMapFile(f);
}

bool RKColormap::load(QIODevice& device, bool keepRange)
{
    const double oldMin = min_value(), oldMax = max_value();
    clear();
    m_interpolation = Blocked;
    m_scale = Linear;
    // QRegExp on purpose: its greedy alternation reads "RGBA" whole where the first alternative
    // "RGB" would win in a Perl-style engine.
    QRegExp modelLine(QStringLiteral("#\\s+COLOR_MODEL\\s+=\\s+(HSV|RGB|CMYK|RGBA)"));
    const QRegExp blanks(QStringLiteral("\\s+"));
    QString model = QStringLiteral("RGB");
    QTextStream in(&device);
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        if (line.isEmpty())
            continue;
        if (line.startsWith(QLatin1Char('#'))) {
            if (modelLine.indexIn(line) >= 0)
                model = modelLine.cap(1);
            continue;
        }
        if (line.startsWith(QLatin1Char('B')) || line.startsWith(QLatin1Char('N')) || line.startsWith(QLatin1Char('F')))
            continue;
        const QStringList f = line.split(blanks, Qt::SkipEmptyParts);
        if (f.size() < 8)
            continue;
        double lower = 0, upper = 0;
        QColor c1, c2;
        if (model == QLatin1String("RGB")) {
            lower = num(f[0]);
            c1 = QColor(qBound(0, whole(f[1]), 255), qBound(0, whole(f[2]), 255), qBound(0, whole(f[3]), 255), 255);
            upper = num(f[4]);
            c2 = QColor(qBound(0, whole(f[5]), 255), qBound(0, whole(f[6]), 255), qBound(0, whole(f[7]), 255), 255);
        } else if (model == QLatin1String("HSV")) {
            lower = num(f[0]);
            // Saturation and value as hundredths of QColor's 255: fully saturated colours come
            // out at 100 of 255, as tables written for this reader expect.
            c1.setHsv(qBound(-1, whole(f[1]), 359), qBound(0, int(num(f[2]) * 100.0), 255),
                      qBound(0, int(num(f[3]) * 100.0), 255), 255);
            upper = num(f[4]);
            c2.setHsv(qBound(-1, whole(f[5]), 359), qBound(0, int(num(f[6]) * 100.0), 255),
                      qBound(0, int(num(f[7]) * 100.0), 255), 255);
        } else { // RGBA, or CMYK read as hue, saturation, value and alpha as it always was
            if (f.size() < 10)
                continue;
            lower = num(f[0]);
            upper = num(f[5]);
            if (model == QLatin1String("RGBA")) {
                c1 = QColor(qBound(0, whole(f[1]), 255), qBound(0, whole(f[2]), 255), qBound(0, whole(f[3]), 255),
                            qBound(0, whole(f[4]), 255));
                c2 = QColor(qBound(0, whole(f[6]), 255), qBound(0, whole(f[7]), 255), qBound(0, whole(f[8]), 255),
                            qBound(0, whole(f[9]), 255));
            } else {
                c1.setHsv(qBound(-1, whole(f[1]), 359), qBound(0, whole(f[2]), 255), qBound(0, whole(f[3]), 255),
                          qBound(0, whole(f[4]), 255));
                c2.setHsv(qBound(-1, whole(f[6]), 359), qBound(0, whole(f[7]), 255), qBound(0, whole(f[8]), 255),
                          qBound(0, whole(f[9]), 255));
            }
        }
        if (!std::isfinite(lower) || !std::isfinite(upper))
            continue;
        auto at = find(lower);
        if (at == end())
            (*this)[lower] = {c1, c1};
        else
            at->second.second = c1;
        if (c1 != c2)
            m_interpolation = Interpolated;
        emplace(upper, std::make_pair(c2, c2)); // a break already standing is left alone
    }
    if (!empty()) {
        if (keepRange)
            fitToRange(oldMin, oldMax);
        if (m_interpolation == Blocked)
            for (auto& e : *this)
                e.second.first = e.second.second;
    }
    return true;
}

bool RKColormap::save(QString const& path) const
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix != QLatin1String("cpt") && suffix != QLatin1String("cmap"))
        return false;
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    const bool ok = suffix == QLatin1String("cpt") ? save(f) : saveCMapFile(f);
    return ok && f.error() == QFileDevice::NoError;
}

bool RKColormap::save(QIODevice& device) const
{
    QTextStream out(&device);
    out << "# RKE COLORMAP\n# COLOR_MODEL = RGBA\n";
    if (size() >= 2) {
        for (auto lower = begin(), upper = std::next(begin()); upper != end(); ++lower, ++upper) {
            const QColor a = lower->second.second;
            const QColor b = m_interpolation == Blocked ? a : upper->second.first;
            out << lower->first << ' ' << a.red() << ' ' << a.green() << ' ' << a.blue() << ' ' << a.alpha() << ' '
                << upper->first << ' ' << b.red() << ' ' << b.green() << ' ' << b.blue() << ' ' << b.alpha() << '\n';
        }
    }
    out.flush();
    return true;
}

// --- cmap --------------------------------------------------------------------------------------------

bool RKColormap::loadCMapFile(QIODevice& device)
{
    const qint64 start = device.pos();
    QTextStream in(&device);
    // First pass: do the colours run to 255, or are they fractions?
    bool integers = false;
    while (!in.atEnd() && !integers) {
        const QStringList f = in.readLine().trimmed().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (f.size() >= 5)
            integers = whole(f[1]) + whole(f[2]) + whole(f[3]) + whole(f[4]) > 5.0;
        else if (f.size() == 4)
            integers = whole(f[1]) + whole(f[2]) + whole(f[3]) > 4.0;
        else if (f.size() == 3)
            integers = whole(f[0]) + whole(f[1]) + whole(f[2]) > 4.0;
    }
    if (!device.seek(start))
        return false;
    QTextStream second(&device);
    const double scale = integers ? 1.0 : 255.0;
    const auto component = [&](const QString& s) { return qBound(0, int(whole(s) * scale), 255); };
    QMap<int, QColor> colours;
    int index = -1, highest = 0;
    // A table names its own indices; one that names absurd ones is not followed into the
    // millions of breaks it would take.
    constexpr int kMaxIndex = 1 << 16;
    while (!second.atEnd()) {
        const QStringList f = second.readLine().trimmed().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        if (f.size() < 3)
            continue;
        QColor c;
        if (f.size() == 3) {
            ++index;
            c = QColor(component(f[0]), component(f[1]), component(f[2]), 255);
            highest = std::max(highest, index + 1);
        } else {
            index = whole(f[0]);
            c = QColor(component(f[1]), component(f[2]), component(f[3]), f.size() >= 5 ? component(f[4]) : 255);
            highest = std::max(highest, f.size() == 4 ? index + 1 : index);
        }
        if (index < 0 || index > kMaxIndex)
            continue;
        colours[index] = c;
    }
    if (colours.isEmpty() || highest <= 0)
        return true;
    const double min = min_value(), max = max_value();
    clear();
    m_interpolation = Interpolated;
    m_scale = Linear;
    const double step = max > min ? (max - min) / highest : double(highest);
    for (auto it = colours.constBegin(); it != colours.constEnd(); ++it)
        (*this)[it.key() * step + min] = {it.value(), it.value()};
    return true;
}

bool RKColormap::saveCMapFile(QIODevice& device) const
{
    QTextStream out(&device);
    const double min = min_value(), max = max_value();
    for (const auto& e : *this) {
        const QColor c = e.second.second;
        const int index = max > min ? int((e.first - min) / ((max - min) / 255.0)) : 0;
        out << index << ' ' << c.red() << ' ' << c.green() << ' ' << c.blue() << ' ' << c.alpha() << '\n';
    }
    out.flush();
    return true;
}

// --- legend pictures ---------------------------------------------------------------------------------

bool RKColormap::saveImage(QString const& path, QSize const& size) const
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    const QByteArray format = QFileInfo(path).suffix().toLatin1();
    return saveImage(f, format.constData(), size);
}

bool RKColormap::saveImage(QIODevice& device, char const* format, QSize const& size) const
{
    // Labels need fonts, and fonts a GUI application; a plain core application gets false
    // rather than an abort.
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()) || size.width() < 1 || size.height() < 1 ||
        qint64(size.width()) * size.height() > (qint64(1) << 28))
        return false;
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        QColormapWidget::paintLegend(painter, *this, size.width() > size.height() ? Qt::Horizontal : Qt::Vertical,
                                     QRect(QPoint(0, 0), size));
    }
    return image.save(&device, format);
}

// --- GMT colour tables ---------------------------------------------------------------------------------

namespace {

// Where X11 and the SVG names (QColor's) differ, GMT follows X11.
const QHash<QString, QColor>& x11Overrides()
{
    static const QHash<QString, QColor> table{
        {QStringLiteral("gray"), QColor(190, 190, 190)},   {QStringLiteral("grey"), QColor(190, 190, 190)},
        {QStringLiteral("green"), QColor(0, 255, 0)},      {QStringLiteral("maroon"), QColor(176, 48, 96)},
        {QStringLiteral("purple"), QColor(160, 32, 240)},  {QStringLiteral("lightgray"), QColor(211, 211, 211)},
        {QStringLiteral("darkgray"), QColor(169, 169, 169)}};
    return table;
}

QColor namedColour(QString name)
{
    name = name.toLower().remove(QLatin1Char(' ')).remove(QLatin1Char('_'));
    auto it = x11Overrides().constFind(name);
    if (it != x11Overrides().constEnd())
        return it.value();
    // gray0 .. gray100: levels in percent.
    QRegExp level(QStringLiteral("gr[ae]y(\\d{1,3})"));
    if (level.exactMatch(name)) {
        const int p = level.cap(1).toInt();
        if (p <= 100) {
            const int v = int(std::lround(p * 255.0 / 100.0));
            return QColor(v, v, v);
        }
    }
    if (QColor::isValidColor(name) && !name.startsWith(QLatin1Char('#')))
        return QColor(name);
    return QColor();
}

// In an HSV-model table the colour stays in HSV, hue 360 included (QColor keeps it), so that a
// blend from 0 to 360 runs round the whole circle as GMT's does; elsewhere it becomes RGB.
QColor hsvColour(double h, double s, double v, bool keepHsv)
{
    if (!std::isfinite(h) || !std::isfinite(s) || !std::isfinite(v))
        return QColor();
    if (keepHsv && h == 360.0)
        return QColor::fromHsvF(1.0, qBound(0.0, s, 1.0), qBound(0.0, v, 1.0));
    h = std::fmod(std::fmod(h, 360.0) + 360.0, 360.0);
    const QColor c = QColor::fromHsvF(h / 360.0, qBound(0.0, s, 1.0), qBound(0.0, v, 1.0));
    return keepHsv ? c : c.toRgb();
}

QColor cmykColour(double c, double m, double y, double k)
{
    const auto part = [&](double x) { return qBound(0, int(std::lround(255.0 * (1 - x / 100.0) * (1 - k / 100.0))), 255); };
    return QColor(part(c), part(m), part(y));
}

bool numeric(const QString& s)
{
    bool ok = false;
    s.toDouble(&ok);
    return ok;
}

// One colour as GMT writes it in one field; `model` decides bare numbers with dashes or slashes.
QColor gmtColour(QString field, const QString& model)
{
    int alpha = 255;
    const int at = field.indexOf(QLatin1Char('@'));
    if (at >= 0) {
        const double transparency = field.mid(at + 1).toDouble();
        alpha = qBound(0, int(std::lround(255.0 * (1.0 - transparency / 100.0))), 255);
        field = field.left(at);
    }
    QColor c;
    if (field.startsWith(QLatin1Char('#'))) {
        c = QColor(field);
    } else if (field.contains(QLatin1Char('/'))) {
        const QStringList p = field.split(QLatin1Char('/'));
        if (p.size() == 3)
            c = model == QLatin1String("HSV") ? hsvColour(num(p[0]), num(p[1]), num(p[2]), true)
                                               : QColor(qBound(0, int(std::lround(num(p[0]))), 255),
                                                        qBound(0, int(std::lround(num(p[1]))), 255),
                                                        qBound(0, int(std::lround(num(p[2]))), 255));
        else if (p.size() == 4)
            c = cmykColour(num(p[0]), num(p[1]), num(p[2]), num(p[3]));
    } else if (field.indexOf(QLatin1Char('-'), 1) > 0 && !numeric(field)) {
        const QStringList p = field.split(QLatin1Char('-'));
        if (p.size() == 3)
            c = hsvColour(num(p[0]), num(p[1]), num(p[2]), model == QLatin1String("HSV"));
    } else if (numeric(field)) {
        const int v = qBound(0, int(std::lround(num(field))), 255);
        c = QColor(v, v, v);
    } else {
        c = namedColour(field);
    }
    if (c.isValid())
        c.setAlpha(alpha);
    return c;
}

QColor gmtTriple(const QStringList& t, int from, const QString& model)
{
    if (model == QLatin1String("HSV"))
        return hsvColour(num(t[from]), num(t[from + 1]), num(t[from + 2]), true);
    return QColor(qBound(0, int(std::lround(num(t[from]))), 255), qBound(0, int(std::lround(num(t[from + 1]))), 255),
                  qBound(0, int(std::lround(num(t[from + 2]))), 255));
}

} // namespace

bool RKColormap::loadGmt(QString const& path, GmtColours* extra)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly | QIODevice::Text)) {
        clear();
        return false;
    }
    return loadGmt(f, extra);
}

bool RKColormap::loadGmt(QIODevice& device, GmtColours* extra)
{
    clear();
    m_interpolation = Blocked;
    m_scale = Linear;
    if (extra)
        *extra = GmtColours();
    QString model = QStringLiteral("RGB");
    QRegExp modelLine(QStringLiteral("#\\s*COLOR_MODEL\\s*=\\s*\\+?(\\w+)"));
    const QRegExp blanks(QStringLiteral("\\s+"));
    bool anyInterval = false, varies = false;
    QTextStream in(&device);
    while (!in.atEnd()) {
        QString line = in.readLine();
        const int semicolon = line.indexOf(QLatin1Char(';'));
        if (semicolon >= 0)
            line.truncate(semicolon); // a label of a categorical table
        line = line.trimmed();
        if (line.isEmpty())
            continue;
        if (line.startsWith(QLatin1Char('#'))) {
            if (modelLine.indexIn(line) >= 0)
                model = modelLine.cap(1).toUpper();
            continue;
        }
        QStringList t = line.split(blanks, Qt::SkipEmptyParts);
        const QString head = t.first();
        if (head == QLatin1String("B") || head == QLatin1String("F") || head == QLatin1String("N")) {
            QColor c;
            if (t.size() == 2)
                c = gmtColour(t[1], model);
            else if (t.size() >= 4 && numeric(t[1]) && numeric(t[2]) && numeric(t[3]))
                c = gmtTriple(t, 1, model);
            if (extra)
                (head == QLatin1String("B") ? extra->background : head == QLatin1String("F") ? extra->foreground
                                                                                              : extra->noData) = c;
            continue;
        }
        // An annotation flag (L, U or B) may close an interval line.
        if (t.size() > 2 && (t.last() == QLatin1String("L") || t.last() == QLatin1String("U") || t.last() == QLatin1String("B")))
            t.removeLast();
        if (!numeric(t[0]))
            continue;
        const double z0 = num(t[0]);
        double z1 = z0;
        QColor c0, c1;
        if (t.size() == 2) { // categorical: one value, one colour
            c0 = c1 = gmtColour(t[1], model);
            if (extra)
                extra->categorical = true;
        } else if (t.size() == 4 && !numeric(t[1]) == !numeric(t[3]) && numeric(t[2])) {
            c0 = gmtColour(t[1], model);
            z1 = num(t[2]);
            c1 = gmtColour(t[3], model);
        } else if (t.size() == 8) {
            c0 = gmtTriple(t, 1, model);
            z1 = num(t[4]);
            c1 = gmtTriple(t, 5, model);
        } else if (t.size() == 10 && model == QLatin1String("CMYK")) {
            c0 = cmykColour(num(t[1]), num(t[2]), num(t[3]), num(t[4]));
            z1 = num(t[5]);
            c1 = cmykColour(num(t[6]), num(t[7]), num(t[8]), num(t[9]));
        } else {
            continue;
        }
        if (!c0.isValid() || !c1.isValid() || !std::isfinite(z0) || !std::isfinite(z1))
            continue;
        anyInterval = true;
        auto at = find(z0);
        if (at == end())
            (*this)[z0] = {c0, c0};
        else
            at->second.second = c0;
        // QColor counts hue 360 equal to hue 0; a table that runs from one to the other varies.
        if (c0 != c1 || c0.hsvHue() != c1.hsvHue())
            varies = true;
        if (z1 != z0)
            emplace(z1, std::make_pair(c1, c1));
    }
    if (varies)
        m_interpolation = Interpolated;
    else
        for (auto& e : *this)
            e.second.first = e.second.second;
    if (extra)
        extra->hsvModel = model == QLatin1String("HSV");
    return anyInterval;
}

} // namespace rkBase
