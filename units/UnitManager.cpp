#include "units/UnitManager.h"

#include "units/UnitRegistry.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace rkBase {

const double UnitManager::m_metresPerFoot = 0.3048;
const double UnitManager::m_metresPerMile = 1609.344;

namespace {
bool isLiteralTag(const QString& tag);

// Round towards zero, taking the direction from the sign of the input rather than of the
// converted part, as compound printing has always done.
int wholePart(double v, double input) { return static_cast<int>(input > 0 ? std::floor(v) : std::ceil(v)); }
} // namespace

UnitManager::UnitManager(const std::string& key, const std::string& category, int unitCount, int modelUnit,
                         int defaultDisplayUnit, DisplayUnitManager* manager)
    : m_displayUnitManager(manager), m_category(category), m_modelUnit(modelUnit), m_unitCount(unitCount),
      m_defaultDisplayUnit(defaultDisplayUnit), m_key(key)
{
    if (m_displayUnitManager)
        connect(m_displayUnitManager, SIGNAL(destroyed()), this, SLOT(onDisplayUnitManagerNeedCleaning()));
    m_factors.reserve(static_cast<size_t>(qMax(unitCount, 0)));
}

UnitManager::~UnitManager() = default;

void UnitManager::setup(int precision)
{
    m_customPrecision = precision;
    initUnitTables();

    m_regexString = QStringLiteral("([+-]?[\\d.,]+(e[+-]?[.,\\d]+)?)\\s*(");
    m_regexString += m_unitTags.join(QLatin1Char('|'));
    m_regexString += QStringLiteral(")?");
    m_regex = QRegExp(m_regexString, Qt::CaseSensitive, QRegExp::RegExp);
    for (const QString& tag : m_unitTags)
        if (!tag.isEmpty() && isLiteralTag(tag))
            m_literalTags.append(tag);

    if (!m_category.empty() && m_displayUnitManager)
        m_displayUnitManager->registerUnit(m_category, m_defaultDisplayUnit, precision, m_unitNames);
}

void UnitManager::addUnit(double factor, const QString& name, const QString& tag)
{
    m_factors.push_back(factor);
    m_unitNames.append(name);
    m_unitTags.append(tag);
}

void UnitManager::onDisplayUnitManagerNeedCleaning() { m_displayUnitManager = nullptr; }

// --- reading ---------------------------------------------------------------

int UnitManager::displayUnit() const
{
    return m_displayUnitManager ? m_displayUnitManager->displayUnit(m_category) : 0;
}

int UnitManager::precision() const
{
    if (m_hasCustomPrecision)
        return m_customPrecision;
    if (m_displayUnitManager)
        return m_displayUnitManager->displayPrecision(m_category);
    return 2;
}

int UnitManager::numUnits() const { return m_unitCount; }

QString UnitManager::getUnitName(int unit) const
{
    return (unit >= 0 && unit < m_unitCount) ? m_unitNames.value(unit) : QString();
}

QString UnitManager::getUnitTag(int unit) const
{
    return (unit >= 0 && unit < m_unitCount) ? m_unitTags.value(unit) : QString();
}

int UnitManager::getUnitKey(const QString& text) const { return unitKey(QStringRef(&text)); }

QString UnitManager::getCategoryDisplayName(const std::string&)
{
    return m_displayUnitManager ? m_displayUnitManager->getCategoryDisplayName(m_category) : QString();
}

std::string UnitManager::getCategoryFromDisplayName(const QString& name)
{
    return m_displayUnitManager ? m_displayUnitManager->getCategoryFromDisplayName(name) : std::string();
}

// --- writing ---------------------------------------------------------------

void UnitManager::displayUnit(int unit)
{
    if (m_displayUnitManager && unit >= 0 && unit < m_unitCount && unit != displayUnit())
        m_displayUnitManager->setUnit(m_category, unit);
}

void UnitManager::displayUnit(const QString& name)
{
    const int unit = m_unitNames.indexOf(name);
    if (unit >= 0)
        displayUnit(unit);
}

void UnitManager::precision(int value)
{
    if (m_displayUnitManager)
        m_displayUnitManager->setPrecision(m_category, value);
}

void UnitManager::setCustomPrecision(int value)
{
    m_customPrecision = value;
    m_hasCustomPrecision = true;
}

void UnitManager::rebaseFactors(int unit)
{
    // Each factor becomes the size of its unit measured in `unit`, through the virtual convert
    // and the old table.
    std::vector<double> rebased(m_factors.size());
    for (size_t i = 0; i < m_factors.size(); ++i)
        rebased[i] = convert(1.0, static_cast<int>(i), unit);
    m_factors.swap(rebased);
}

void UnitManager::modelUnit(int unit)
{
    if (unit < 0 || unit >= m_unitCount || unit == m_modelUnit)
        return;
    rebaseFactors(unit);
    m_modelUnit = unit;
    emit unitChanged(unit);
}

void UnitManager::modelUnit(const QString& name)
{
    const int unit = m_unitNames.indexOf(name);
    if (unit < 0)
        return;
    if (unit != m_modelUnit)
        rebaseFactors(unit);
    m_modelUnit = unit;
    emit unitChanged(unit);
}

void UnitManager::setCategory(const std::string& category)
{
    m_category = category;
    if (m_displayUnitManager)
        m_displayUnitManager->registerUnit(m_category, m_defaultDisplayUnit,
                                           m_category == UnitRegistry::CATEGORY_TIME ? 4 : 2, m_unitNames);
}

void UnitManager::setCategoryDisplayName(const QString& name)
{
    if (!m_category.empty() && m_displayUnitManager)
        m_displayUnitManager->setCategoryDisplayName(m_category, name);
}

void UnitManager::setDisplayUnit(const DisplayUnitId& id)
{
    if (m_category.empty() || !m_displayUnitManager)
        return;
    const int unit = m_displayUnitManager->getUnitDisplay(m_category, id);
    const int prec = m_displayUnitManager->getPrecisionDisplay(m_category, id);
    if (unit != -1 || prec != -1)
        m_displayUnitManager->update(m_category, unit, prec);
}

void UnitManager::setUnitList(const DisplayUnitId& id, int unit, int precision)
{
    if (!m_category.empty() && m_displayUnitManager)
        m_displayUnitManager->setUnitList(m_category, unit, precision, id);
}

// --- converting ------------------------------------------------------------

double UnitManager::convert(double value, int from, int to) const
{
    if (from == to || !validKey(from) || !validKey(to))
        return value;
    return value * m_factors[static_cast<size_t>(from)] / m_factors[static_cast<size_t>(to)];
}

double UnitManager::convertModelToDisplay(double value) const { return convert(value, m_modelUnit, displayUnit()); }

double UnitManager::convertModelToDisplay(double value, int unit) const { return convert(value, m_modelUnit, unit); }

double UnitManager::convertDisplayToModel(double value) const { return convert(value, displayUnit(), m_modelUnit); }

// --- printing --------------------------------------------------------------

QString UnitManager::formatNumber(double value, int fieldWidth, int decimals) const
{
    // The same text as QString("%1").arg(value, fieldWidth, 'f', decimals, ' '): both format in
    // the C locale through the same routine, and arg pads with blanks on the left for a positive
    // width and on the right for a negative one. Doing it directly saves the placeholder scan.
    QString text = QString::number(value, 'f', decimals);
    const int pad = qAbs(fieldWidth) - text.size();
    if (pad > 0) {
        if (fieldWidth > 0)
            text.prepend(QString(pad, QLatin1Char(' ')));
        else
            text.append(QString(pad, QLatin1Char(' ')));
    }
    return text;
}

QString UnitManager::printValue(double modelValue) const
{
    QString out;
    printValue(out, modelValue, -1, -1, precision());
    return out;
}

QString UnitManager::printPositiveValue(double modelValue) const
{
    QString out;
    printPositiveValue(out, modelValue, -1, -1, precision());
    return out;
}

QString& UnitManager::printValue(QString& out, double value, int from, int to, int fieldWidth) const
{
    // The compound form has its own field width on purpose.
    if (m_msp && m_showTag)
        return printValueMSP(out, value, from, to, 6);
    return printPlain(out, value, from, to, fieldWidth, false);
}

QString& UnitManager::printPositiveValue(QString& out, double value, int from, int to, int fieldWidth) const
{
    if (m_msp && m_showTag)
        return printValueMSP(out, value, from, to, 6);
    return printPlain(out, value, from, to, fieldWidth, true);
}

QString& UnitManager::printPlain(QString& out, double value, int from, int to, int fieldWidth, bool positive) const
{
    if (from == -1)
        from = m_modelUnit;
    if (to == -1 && m_displayUnitManager)
        to = displayUnit();
    double shown = convert(value, from, to);
    if (positive)
        shown = std::fabs(shown);
    out = formatNumber(shown, fieldWidth, precision());
    // A signed print checks the key against the tags; the positive one appends whatever
    // getUnitTag gives, an empty tag for a bad key.
    if (m_showTag && (positive || (to >= 0 && to < m_unitTags.size()))) {
        out += QLatin1Char(' ');
        out += getUnitTag(to);
    }
    return out;
}

QString& UnitManager::printWithoutMSP(QString& out, double value, int from, int to, int fieldWidth) const
{
    // Clearing the flag for the call routes the virtual printValue to its plain branch, so that a
    // compound print that falls back to a plain one cannot come back here.
    const bool saved = m_msp;
    m_msp = false;
    printValue(out, value, from, to, fieldWidth);
    m_msp = saved;
    return out;
}

QString& UnitManager::printValueMSP(QString& out, double value, int from, int to, int fieldWidth) const
{
    if (!m_msp || (m_displayUnitManager && m_displayUnitManager->displayUnit(m_category) == 0))
        return printWithoutMSP(out, value, from, to, 6);

    if (from == -1)
        from = m_modelUnit;
    if (to == -1 && m_displayUnitManager)
        to = displayUnit();

    int major = -1, second = -1, last = -1;
    getMSPSystem(to, major, second, last);
    if (major == -1 && second == -1 && last == -1)
        return printWithoutMSP(out, value, from, to, fieldWidth);

    // The decimals of the last part are the display unit's key, not the precision: with seconds
    // (key 3) shown, the seconds carry three decimals.
    const int decimals = m_displayUnitManager ? m_displayUnitManager->displayUnit(m_category) : 0;
    if (validKey(major) && validKey(second) && validKey(last) && wholeRatio(major, second) && wholeRatio(second, last))
        return printChainCarrying(out, value, from, to, major, second, last, fieldWidth, decimals);

    // A chain without a last unit (the length chains) prints its major and second parts only.
    // Parts that do not fit an int (huge values, NaN, infinities) make the whole print plain.
    const auto fits = [](double v) { return std::isfinite(v) && std::fabs(v) < 2147483647.0; };
    double majorPart = 0.0, secondPart = 0.0;
    if (validKey(major))
        majorPart = convert(value, from, major);
    if (validKey(second)) {
        secondPart = convert(value, from, second);
        // Without a major unit there is nothing to take the remainder of.
        if (validKey(major))
            secondPart = std::fmod(secondPart, m_factors[static_cast<size_t>(major)] / m_factors[static_cast<size_t>(second)]);
    }
    if (!fits(majorPart) || !fits(secondPart) || !std::isfinite(value))
        return printWithoutMSP(out, value, from, to, fieldWidth);
    out.clear();
    if (validKey(major)) {
        const int whole = wholePart(majorPart, value);
        if (whole != 0)
            out += QStringLiteral("%1 %2").arg(QString::number(whole), getUnitTag(major));
    }
    if (validKey(second)) {
        const int whole = wholePart(secondPart, value);
        if (whole != 0)
            out += QStringLiteral(" %1 %2").arg(QString::number(whole), getUnitTag(second));
    }
    if (validKey(last)) {
        double rest = convert(value, from, last);
        if (validKey(second))
            rest = std::fmod(rest, m_factors[static_cast<size_t>(second)] / m_factors[static_cast<size_t>(last)]);
        if (std::fabs(rest) < 1e-10)
            rest = 0.0;
        out += QStringLiteral(" %5 %6").arg(formatNumber(rest, fieldWidth, decimals), getUnitTag(last));
    }
    return out;
}

bool UnitManager::wholeRatio(int larger, int smaller) const
{
    const double ratio = m_factors[static_cast<size_t>(larger)] / m_factors[static_cast<size_t>(smaller)];
    return std::isfinite(ratio) && ratio >= 1.5 && std::fabs(ratio - std::round(ratio)) < 1e-6 * ratio;
}

QString& UnitManager::printChainCarrying(QString& out, double value, int from, int to, int major, int second,
                                         int last, int fieldWidth, int decimals) const
{
    // The catalogue's minute and second factors hold ten significant digits, so the ratios along
    // the chain are 59.99999988 and 60.0000001 rather than 60, and splitting each part by its own
    // conversion leaves 59.9999... in a part that should be 0, which then prints as "60.000" or
    // "59.999" (at 359 degrees the second factor alone is off by a millisecond). Instead the
    // quantity is taken in the major unit, counted in last units through the chain's whole
    // ratios, rounded to the printed decimals and split again: a last part that rounds to a full
    // unit carries into the part before it, and that one into the major part.
    const auto factor = [this](int unit) { return m_factors[static_cast<size_t>(unit)]; };
    const double majorRatio = std::round(factor(major) / factor(second));
    const double lastRatio = std::round(factor(second) / factor(last));
    const int shown = qBound(0, decimals, 9);
    const double scale = std::pow(10.0, shown);
    const double total = convert(value, from, major) * majorRatio * lastRatio;
    const double scaled = std::round(std::fabs(total) * scale);
    // Past 2^53 the scaled count is no longer whole, and the major part must fit an int.
    if (!std::isfinite(total) || scaled >= 9007199254740992.0 || scaled / scale / lastRatio / majorRatio >= 2147483647.0)
        return printWithoutMSP(out, value, from, to, fieldWidth);

    const double perSecond = lastRatio * scale;
    const double seconds = std::floor(scaled / perSecond);
    const double rest = (scaled - seconds * perSecond) / scale;
    const double majors = std::floor(seconds / majorRatio);
    const double secondsLeft = seconds - majors * majorRatio;
    // The sign of the input decides, as for the plain split: every non-zero part carries it.
    const double sign = value > 0 ? 1.0 : -1.0;

    out.clear();
    if (majors != 0)
        out += QStringLiteral("%1 %2").arg(QString::number(static_cast<int>(sign * majors)), getUnitTag(major));
    if (secondsLeft != 0)
        out += QStringLiteral(" %1 %2").arg(QString::number(static_cast<int>(sign * secondsLeft)), getUnitTag(second));
    out += QStringLiteral(" %5 %6").arg(formatNumber(rest == 0 ? 0.0 : sign * rest, fieldWidth, shown),
                                        getUnitTag(last));
    return out;
}

QString& UnitManager::printNumber(QString& out, double value) const
{
    out = formatNumber(value, 0, precision());
    return out;
}

// --- parsing ---------------------------------------------------------------

namespace {
bool isNumberChar(QChar c)
{
    return (c >= QLatin1Char('0') && c <= QLatin1Char('9')) || c == QLatin1Char('.') || c == QLatin1Char(',');
}

// Characters that would make a tag mean something else inside the pattern.
bool isLiteralTag(const QString& tag)
{
    static const QString special = QStringLiteral("\\^$.|?*+()[]{}");
    for (QChar c : tag)
        if (special.contains(c))
            return false;
    return true;
}
} // namespace

bool UnitManager::quickMatch(const QString& text, QStringRef& number, QStringRef& tag) const
{
    // The common shapes "<number>" and "<number> <tag>", with the number at the start and an
    // exact tag up to the end of the text, have only one possible match of the pattern: the
    // whole text, split at the blanks. Anything else goes to the pattern itself.
    const int n = text.size();
    int i = 0;
    if (i < n && (text[i] == QLatin1Char('+') || text[i] == QLatin1Char('-')))
        ++i;
    int end = i;
    while (end < n && isNumberChar(text[end]))
        ++end;
    if (end == i)
        return false;
    if (end < n && text[end] == QLatin1Char('e')) {
        int k = end + 1;
        if (k < n && (text[k] == QLatin1Char('+') || text[k] == QLatin1Char('-')))
            ++k;
        int m = k;
        while (m < n && isNumberChar(text[m]))
            ++m;
        if (m == k)
            return false;
        end = m;
    }
    int rest = end;
    while (rest < n && text[rest].isSpace())
        ++rest;
    const QStringRef unit = text.midRef(rest);
    if (!unit.isEmpty() && (rest == end || !m_literalTags.contains(unit)))
        return false;
    number = text.leftRef(end);
    tag = unit;
    return true;
}

int UnitManager::matchPattern(const QString& text, QStringRef& number, QStringRef& tag) const
{
    if (quickMatch(text, number, tag))
        return 0;
    const int pos = m_regex.indexIn(text, 0);
    if (pos >= 0) {
        number = text.midRef(m_regex.pos(1), m_regex.cap(1).size());
        tag = m_regex.pos(3) < 0 ? QStringRef() : text.midRef(m_regex.pos(3), m_regex.cap(3).size());
    }
    return pos;
}

int UnitManager::matchPattern(const QString& text, QString* number, QString* tag) const
{
    QStringRef numberText, tagText;
    const int pos = matchPattern(text, numberText, tagText);
    if (pos >= 0) {
        if (number)
            *number = numberText.toString();
        if (tag)
            *tag = tagText.toString();
    }
    return pos;
}

int UnitManager::unitKey(const QStringRef& text) const
{
    const int rows = qMin(m_unitCount, m_unitNames.size());
    for (int i = 0; i < rows; ++i)
        if (m_unitNames.at(i) == text || m_unitTags.at(i) == text)
            return i;
    return -1;
}

bool UnitManager::parseValue(const QString& text, double& value, int to, int* unitOut) const
{
    if (!m_displayUnitManager)
        return false;
    if (to == -1)
        to = m_modelUnit;

    QStringRef number, tag;
    if (matchPattern(text, number, tag) < 0)
        return false;
    bool ok = false;
    value = number.toDouble(&ok);
    if (!ok)
        return false;

    int source = displayUnit();
    if (!tag.isEmpty()) {
        source = unitKey(tag);
        if (source == -1)
            return false;
    }
    value = convert(value, source, to);
    if (unitOut)
        *unitOut = source;
    return true;
}

bool UnitManager::parseNumber(const QString& text, double& value, int* unitOut) const
{
    if (!m_displayUnitManager)
        return false;
    QStringRef number, tag;
    const int pos = matchPattern(text, number, tag);
    if (pos < 0)
        return false;
    bool ok = false;
    value = number.toDouble(&ok);
    if (!ok)
        return false;
    int unit = displayUnit();
    // Kept as it has always behaved: a number that starts late is looked up as a unit name,
    // which nearly always fails, so only text whose number starts early is accepted.
    if (pos >= 2) {
        unit = unitKey(number);
        if (unit == -1)
            return false;
    }
    if (unitOut)
        *unitOut = unit;
    return true;
}

void UnitManager::getMSPSystem(int, int& major, int& second, int& last) const { major = second = last = -1; }

// --- glyphs ----------------------------------------------------------------

QString UnitManager::degreeString() { return QString(QChar(0x00B0)); }
QString UnitManager::squaredString() { return QString(QChar(0x00B2)); }
QString UnitManager::cubedString() { return QString(QChar(0x00B3)); }
QString UnitManager::middleDotString() { return QString(QChar(0x00B7)); }
QString UnitManager::invertedString() { return QString(QChar(0x207B)) + QChar(0x00B9); }
QString UnitManager::invertedSquaredString() { return QString(QChar(0x207B)) + QChar(0x00B2); }

// --- strict reading -------------------------------------------------------

namespace {

// Length of the number at `from` in the strict form, 0 if there is none.
int scanNumber(const QString& t, int from)
{
    const int n = t.size();
    int i = from;
    if (i < n && (t[i] == QLatin1Char('+') || t[i] == QLatin1Char('-') || t[i] == QChar(0x2212)))
        ++i;
    const int digitsFrom = i;
    while (i < n && t[i].isDigit() && t[i].unicode() < 128)
        ++i;
    int digits = i - digitsFrom;
    if (i < n && t[i] == QLatin1Char('.')) {
        ++i;
        const int fractionFrom = i;
        while (i < n && t[i].isDigit() && t[i].unicode() < 128)
            ++i;
        digits += i - fractionFrom;
    }
    if (digits == 0)
        return 0;
    if (i < n && (t[i] == QLatin1Char('e') || t[i] == QLatin1Char('E'))) {
        int j = i + 1;
        if (j < n && (t[j] == QLatin1Char('+') || t[j] == QLatin1Char('-') || t[j] == QChar(0x2212)))
            ++j;
        const int expFrom = j;
        while (j < n && t[j].isDigit() && t[j].unicode() < 128)
            ++j;
        if (j > expFrom) // "5e" or "5 m" with an e-word after it: the e belongs to what follows
            i = j;
    }
    return i - from;
}

bool toFinite(const QString& number, double& value)
{
    QString ascii = number;
    ascii.replace(QChar(0x2212), QLatin1Char('-'));
    bool ok = false;
    const double v = ascii.toLatin1().toDouble(&ok);
    if (!ok || !std::isfinite(v))
        return false;
    value = v;
    return true;
}

// The ASCII spellings people type for the glyphs of the catalogue's tags.
QString normalisedUnitText(QString t)
{
    t.replace(QChar(0x03BC), QChar(0x00B5)); // Greek mu: the micro sign
    t.replace(QLatin1String("^2"), QString(QChar(0x00B2)));
    t.replace(QLatin1String("^3"), QString(QChar(0x00B3)));
    t.replace(QLatin1String("**2"), QString(QChar(0x00B2)));
    t.replace(QLatin1String("**3"), QString(QChar(0x00B3)));
    static const QRegularExpression power(QStringLiteral("(?<=[A-Za-z])([23])(?=$|[/\\s*.])"));
    QRegularExpressionMatchIterator it = power.globalMatch(t);
    QString out;
    int last = 0;
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        out += t.midRef(last, m.capturedStart() - last);
        out += m.captured(1) == QLatin1String("2") ? QChar(0x00B2) : QChar(0x00B3);
        last = m.capturedEnd();
    }
    out += t.midRef(last);
    t = out;
    if (t.startsWith(QLatin1String("deg")) && t.size() == 4 && t[3].isLetter())
        t = QString(QChar(0x00B0)) + t.mid(3); // degC, degF
    if (t.size() >= 2 && t[0] == QLatin1Char('u') && t[1].isLetter())
        t[0] = QChar(0x00B5); // um, us
    return t;
}

QString singular(const QString& t)
{
    static const QList<QPair<QString, QString>> irregular{{QStringLiteral("feet"), QStringLiteral("foot")},
                                                          {QStringLiteral("inches"), QStringLiteral("inch")}};
    for (const auto& pair : irregular)
        if (t.compare(pair.first, Qt::CaseInsensitive) == 0)
            return pair.second;
    if (t.size() > 3 && t.endsWith(QLatin1Char('s'), Qt::CaseInsensitive))
        return t.left(t.size() - 1);
    return QString();
}

int editDistance(const QString& a, const QString& b)
{
    std::vector<int> row(static_cast<size_t>(b.size()) + 1);
    for (int j = 0; j <= b.size(); ++j)
        row[static_cast<size_t>(j)] = j;
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int above = row[static_cast<size_t>(j)];
            const bool same = a[i - 1].toCaseFolded() == b[j - 1].toCaseFolded();
            row[static_cast<size_t>(j)] = std::min({above + 1, row[static_cast<size_t>(j - 1)] + 1, diagonal + (same ? 0 : 1)});
            diagonal = above;
        }
    }
    return row[static_cast<size_t>(b.size())];
}

} // namespace

bool UnitManager::readNumber(const QString& text, double& value)
{
    const QString t = text.trimmed();
    return !t.isEmpty() && scanNumber(t, 0) == t.size() && toFinite(t, value);
}

int UnitManager::findUnit(const QString& text) const
{
    const QString t = text.trimmed();
    if (t.isEmpty())
        return -1;
    const int rows = qMin(m_unitCount, m_unitNames.size());
    // One unit that answers `matches`, or -1 when none or several do.
    const auto single = [&](auto matches) {
        int found = -1;
        for (int i = 0; i < rows; ++i) {
            if (!matches(m_unitNames.at(i)) && !matches(m_unitTags.at(i)))
                continue;
            if (found >= 0 && found != i)
                return -2;
            found = i;
        }
        return found;
    };
    // The spellings are built only when the text as typed is no unit: most texts are.
    for (int step = 0; step < 3; ++step) {
        const QString candidate = step == 0 ? t : step == 1 ? normalisedUnitText(t) : singular(t);
        if (candidate.isEmpty() || (step > 0 && candidate == t))
            continue;
        const int exact = single([&](const QString& s) { return !s.isEmpty() && s == candidate; });
        if (exact >= 0)
            return exact;
        const int folded = single([&](const QString& s) { return !s.isEmpty() && s.compare(candidate, Qt::CaseInsensitive) == 0; });
        if (folded >= 0)
            return folded;
        if (folded == -2)
            return -1; // two units differ by case alone: guessing would pick one at random
    }
    return -1;
}

QStringList UnitManager::nearestUnits(const QString& text, int count) const
{
    const QString t = text.trimmed();
    QList<QPair<int, QString>> scored;
    const int rows = qMin(m_unitCount, m_unitNames.size());
    for (int i = 0; i < rows; ++i)
        for (const QString& s : {m_unitNames.at(i), m_unitTags.at(i)}) {
            if (s.isEmpty())
                continue;
            const int d = editDistance(t, s);
            if (d <= qMax(1, qMin(s.size(), t.size()) / 2) && d < s.size())
                scored.append({d, s});
        }
    std::stable_sort(scored.begin(), scored.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    QStringList out;
    for (const auto& p : scored)
        if (!out.contains(p.second) && out.size() < count)
            out << p.second;
    return out;
}

bool UnitManager::parseValueStrict(const QString& text, double& value, int to, int* unitOut, int* used) const
{
    const int n = text.size();
    int start = 0;
    while (start < n && text[start].isSpace())
        ++start;
    const int length = scanNumber(text, start);
    double number = 0.0;
    if (length == 0 || !toFinite(text.mid(start, length), number)) {
        // A number too large for a double was still read as a number: `used` says so by pointing
        // after it.
        if (used)
            *used = start + length;
        return false;
    }
    const int afterNumber = start + length;
    const QString rest = text.mid(afterNumber).trimmed();
    int source = displayUnit();
    if (!rest.isEmpty()) {
        source = findUnit(rest);
        if (source < 0) {
            if (used)
                *used = afterNumber;
            return false;
        }
    }
    if (to == -1)
        to = m_modelUnit;
    const double converted = convert(number, source, to);
    if (!std::isfinite(converted)) {
        if (used)
            *used = afterNumber;
        return false;
    }
    value = converted;
    if (unitOut)
        *unitOut = source;
    if (used)
        *used = n;
    return true;
}

} // namespace rkBase
