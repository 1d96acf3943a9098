#include "colour/HSVInterpolator.h"

#include <cmath>

namespace rkBase {

namespace {

bool hasHue(float h, float s, float v) { return v != 0.0f && s != 0.0f && h >= 0.0f && h < 360.0f; }

float wrap360(float h)
{
    while (h < 0.0f)
        h += 360.0f;
    while (h >= 360.0f)
        h -= 360.0f;
    return h;
}

} // namespace

HSVInterpolator::HSVInterpolator(float h1, float s1, float v1, float h2, float s2, float v2, bool expand)
    : m_h1(h1), m_s1(s1), m_v1(v1), m_h2(h2), m_s2(s2), m_v2(v2), m_expand(expand)
{
}

void HSVInterpolator::first_color(float h, float s, float v)
{
    m_h1 = h;
    m_s1 = s;
    m_v1 = v;
    m_dirty = true;
}

void HSVInterpolator::second_color(float h, float s, float v)
{
    m_h2 = h;
    m_s2 = s;
    m_v2 = v;
    m_dirty = true;
}

void HSVInterpolator::expand(bool on)
{
    m_expand = on;
    m_dirty = true;
}

void HSVInterpolator::interpolation_coefficients()
{
    m_effectiveExpand = m_expand;
    const bool first = hasHue(m_h1, m_s1, m_v1), second = hasHue(m_h2, m_s2, m_v2);
    if (first && !second)
        m_h2 = m_h1;
    else if (second && !first)
        m_h1 = m_h2;
    else if (!first && !second)
        m_h1 = m_h2 = 0.0f;
    if (!(first && second))
        m_effectiveExpand = false;
    if (m_v1 != 0.0f && m_v2 == 0.0f)
        m_s2 = m_s1;
    else if (m_v1 == 0.0f && m_v2 != 0.0f)
        m_s1 = m_s2;
    else if (m_v1 == 0.0f && m_v2 == 0.0f)
        m_s1 = m_s2 = 0.0f;
    m_span = m_h2 - m_h1;
    while (m_span < 0.0f)
        m_span += 360.0f;
    while (m_span >= 360.0f)
        m_span -= 360.0f;
    m_dirty = false;
    if ((m_effectiveExpand && m_span < 180.0f) || (!m_effectiveExpand && m_span > 180.0f)) {
        m_direction = -1;
        m_span = 360.0f - m_span;
    } else {
        m_direction = 1;
    }
}

void HSVInterpolator::interpolate(float t, float& h, float& s, float& v)
{
    if (m_dirty)
        interpolation_coefficients();
    h = wrap360(t * m_span * float(m_direction) + m_h1);
    s = m_s1 + t * (m_s2 - m_s1);
    v = m_v1 + t * (m_v2 - m_v1);
}

QColorHSVInterpolator::QColorHSVInterpolator(QColor const& c1, QColor const& c2, bool expand)
{
    first_color(c1);
    second_color(c2);
    HSVInterpolator::expand(expand);
}

void QColorHSVInterpolator::first_color(QColor const& c)
{
    int h = 0, s = 0, v = 0;
    c.getHsv(&h, &s, &v);
    HSVInterpolator::first_color(h < 0 ? 0.0f : float(h), float(s / 255.0), float(v / 255.0));
    m_a1 = float(c.alphaF());
}

void QColorHSVInterpolator::second_color(QColor const& c)
{
    int h = 0, s = 0, v = 0;
    c.getHsv(&h, &s, &v);
    HSVInterpolator::second_color(h < 0 ? 0.0f : float(h), float(s / 255.0), float(v / 255.0));
    m_a2 = float(c.alphaF());
}

QColor QColorHSVInterpolator::interpolate(float t)
{
    float h = 0, s = 0, v = 0;
    HSVInterpolator::interpolate(t, h, s, v);
    // Components are held to their ranges: a t outside 0..1 may carry them past the ends.
    QColor c = QColor::fromHsv(qBound(0, int(h), 359), qBound(0, int(s * 255.0), 255), qBound(0, int(v * 255.0), 255), 255);
    const float u = qBound(0.0f, t, 1.0f);
    c.setAlphaF(qBound(0.0, double((1.0f - u) * m_a1 + u * m_a2), 1.0));
    return c;
}

} // namespace rkBase
