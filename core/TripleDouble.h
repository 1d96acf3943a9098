#pragma once

#include "rkbase_export.h"

namespace rkBase {

/// \brief A vector of three doubles, read by component.
class RKBASE_EXPORT TripleDouble {
public:
    TripleDouble() = default;
    TripleDouble(double p, double q, double r) : m_v{p, q, r} {}

    double getP() const { return m_v[0]; }
    double getQ() const { return m_v[1]; }
    double getR() const { return m_v[2]; }
    void setP(double v) { m_v[0] = v; }
    void setQ(double v) { m_v[1] = v; }
    void setR(double v) { m_v[2] = v; }

    double& operator[](int i) { return m_v[i]; }
    double operator[](int i) const { return m_v[i]; }

    bool operator==(const TripleDouble& o) const;
    bool operator!=(const TripleDouble& o) const { return !(*this == o); }

private:
    double m_v[3] = {0.0, 0.0, 0.0};
};

} // namespace rkBase
