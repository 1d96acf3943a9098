#pragma once

#include "rkbaseqt_export.h"

#include <QColor>

namespace rkBase {

/// \brief Blends two colours through hue, saturation and value.
///
/// Hue in degrees (0 up to 360), saturation and value from 0 to 1. The blend takes the short way
/// round the hue circle, or the long way with `expand`. A colour without a hue (no saturation or
/// no value) takes the other's hue, so that blending towards grey or black does not swing
/// through the spectrum.
class RKBASEQT_EXPORT HSVInterpolator {
public:
    /// Black to a value of 1, no hue.
    HSVInterpolator() = default;
    /// From (h1, s1, v1) to (h2, s2, v2).
    HSVInterpolator(float h1, float s1, float v1, float h2, float s2, float v2, bool expand);
    /// Sets the first colour.
    void first_color(float h, float s, float v);
    /// Sets the second colour.
    void second_color(float h, float s, float v);
    /// Takes the long way round the hue circle when true.
    void expand(bool on);
    /// The colour at `t` (0: first, 1: second); hue brought into 0 up to 360.
    void interpolate(float t, float& h, float& s, float& v);

private:
    void interpolation_coefficients();

    float m_h1 = 0, m_s1 = 0, m_v1 = 0;
    float m_h2 = 0, m_s2 = 0, m_v2 = 1.0f;
    bool m_expand = false;
    bool m_effectiveExpand = false;
    float m_span = 0;
    int m_direction = 0;
    bool m_dirty = true;
};

/// \brief HSVInterpolator for QColor, with alpha blended linearly.
class RKBASEQT_EXPORT QColorHSVInterpolator : public HSVInterpolator {
public:
    /// Black to a value of 1, both opaque.
    QColorHSVInterpolator() = default;
    /// From `c1` to `c2`.
    QColorHSVInterpolator(QColor const& c1, QColor const& c2, bool expand);
    /// Sets the first colour.
    void first_color(QColor const& c);
    /// Sets the second colour.
    void second_color(QColor const& c);
    /// The blend at `t`; alpha uses `t` held to 0..1, hue, saturation and value `t` as it is.
    QColor interpolate(float t);

private:
    float m_a1 = 1.0f, m_a2 = 1.0f;
};

} // namespace rkBase
