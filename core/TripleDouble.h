#pragma once

#include "rkbase_export.h"

namespace rkBase {

/// \brief A vector of three doubles, read by component.
class RKBASE_EXPORT TripleDouble {
public:
    TripleDouble() = default;
    /// The vector (p, q, r); a default one is (0, 0, 0).
    TripleDouble(double p, double q, double r) : m_v{p, q, r} {}

    /// First component.
    double getP() const { return m_v[0]; }
    /// Second component.
    double getQ() const { return m_v[1]; }
    /// Third component.
    double getR() const { return m_v[2]; }
    /// Sets the first component.
    void setP(double v) { m_v[0] = v; }
    /// Sets the second component.
    void setQ(double v) { m_v[1] = v; }
    /// Sets the third component.
    void setR(double v) { m_v[2] = v; }

    /// Component `i` (0, 1 or 2; other indices are not checked).
    double& operator[](int i) { return m_v[i]; }
    /// Component `i` (0, 1 or 2; other indices are not checked).
    double operator[](int i) const { return m_v[i]; }

    /// Exact comparison of the three components.
    bool operator==(const TripleDouble& o) const;
    /// Negation of operator==.
    bool operator!=(const TripleDouble& o) const { return !(*this == o); }

private:
    double m_v[3] = {0.0, 0.0, 0.0};
};

} // namespace rkBase
