#include "matrix/SymmetricEigen.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace rkBase {

namespace {

constexpr int kSize = 3;
constexpr int kMaxSweeps = 32;

// Householder reduction of the symmetric matrix `a` to tridiagonal form: `d` receives the
// diagonal, `e` the sub-diagonal (e[0] = 0), and `a` the orthogonal transformation.
void toTridiagonal(double a[kSize][kSize], double d[kSize], double e[kSize])
{
    for (int i = kSize - 1; i > 0; --i) {
        const int l = i - 1;
        double h = 0.0, scale = 0.0;
        if (l > 0) {
            for (int k = 0; k <= l; ++k)
                scale += std::fabs(a[i][k]);
            if (scale == 0.0) {
                e[i] = a[i][l];
            } else {
                for (int k = 0; k <= l; ++k) {
                    a[i][k] /= scale;
                    h += a[i][k] * a[i][k];
                }
                double f = a[i][l];
                const double g = f >= 0.0 ? -std::sqrt(h) : std::sqrt(h);
                e[i] = scale * g;
                h -= f * g;
                a[i][l] = f - g;
                f = 0.0;
                for (int j = 0; j <= l; ++j) {
                    a[j][i] = a[i][j] / h;
                    double gg = 0.0;
                    for (int k = 0; k <= j; ++k)
                        gg += a[j][k] * a[i][k];
                    for (int k = j + 1; k <= l; ++k)
                        gg += a[k][j] * a[i][k];
                    e[j] = gg / h;
                    f += e[j] * a[i][j];
                }
                const double hh = f / (h + h);
                for (int j = 0; j <= l; ++j) {
                    const double fj = a[i][j];
                    const double gj = e[j] - hh * fj;
                    e[j] = gj;
                    for (int k = 0; k <= j; ++k)
                        a[j][k] -= fj * e[k] + gj * a[i][k];
                }
            }
        } else {
            e[i] = a[i][l];
        }
        d[i] = h;
    }
    d[0] = 0.0;
    e[0] = 0.0;
    // Accumulate the transformations.
    for (int i = 0; i < kSize; ++i) {
        const int l = i - 1;
        if (d[i] != 0.0) {
            for (int j = 0; j <= l; ++j) {
                double g = 0.0;
                for (int k = 0; k <= l; ++k)
                    g += a[i][k] * a[k][j];
                for (int k = 0; k <= l; ++k)
                    a[k][j] -= g * a[k][i];
            }
        }
        d[i] = a[i][i];
        a[i][i] = 1.0;
        for (int j = 0; j <= l; ++j)
            a[j][i] = a[i][j] = 0.0;
    }
}

// QL with implicit shifts on the tridiagonal (d, e); `z` holds the transformation and receives
// the eigenvectors in its columns. False after too many sweeps.
bool tridiagonalQl(double d[kSize], double e[kSize], double z[kSize][kSize])
{
    for (int i = 1; i < kSize; ++i)
        e[i - 1] = e[i];
    e[kSize - 1] = 0.0;
    for (int l = 0; l < kSize; ++l) {
        int sweeps = 0;
        int m = l;
        do {
            // A sub-diagonal element is zero when it no longer changes the sum of its neighbours.
            for (m = l; m < kSize - 1; ++m) {
                const double dd = std::fabs(d[m]) + std::fabs(d[m + 1]);
                if (std::fabs(e[m]) + dd == dd)
                    break;
            }
            if (m != l) {
                if (sweeps++ == kMaxSweeps)
                    return false;
                double g = (d[l + 1] - d[l]) / (2.0 * e[l]);
                double r = std::hypot(g, 1.0);
                g = d[m] - d[l] + e[l] / (g + (g >= 0.0 ? std::fabs(r) : -std::fabs(r)));
                double s = 1.0, c = 1.0, p = 0.0;
                int i = m - 1;
                for (; i >= l; --i) {
                    double f = s * e[i];
                    const double b = c * e[i];
                    r = std::hypot(f, g);
                    e[i + 1] = r;
                    if (r == 0.0) {
                        d[i + 1] -= p;
                        e[m] = 0.0;
                        break;
                    }
                    s = f / r;
                    c = g / r;
                    g = d[i + 1] - p;
                    r = (d[i] - g) * s + 2.0 * c * b;
                    p = s * r;
                    d[i + 1] = g + p;
                    g = c * r - b;
                    for (int k = 0; k < kSize; ++k) {
                        f = z[k][i + 1];
                        z[k][i + 1] = s * z[k][i] + c * f;
                        z[k][i] = c * z[k][i] - s * f;
                    }
                }
                if (r == 0.0 && i >= l)
                    continue;
                d[l] -= p;
                e[l] = g;
                e[m] = 0.0;
            }
        } while (m != l);
    }
    return true;
}

} // namespace

bool symmetricEigen3(const double m[3][3], TripleDouble& values, TripleDouble vectors[3], bool ascending)
{
    double a[kSize][kSize];
    for (int i = 0; i < kSize; ++i)
        for (int j = 0; j < kSize; ++j) {
            a[i][j] = i <= j ? m[i][j] : m[j][i];
            if (!std::isfinite(a[i][j]))
                return false;
        }
    double d[kSize], e[kSize];
    toTridiagonal(a, d, e);
    if (!tridiagonalQl(d, e, a))
        return false;
    std::array<int, kSize> order{0, 1, 2};
    std::sort(order.begin(), order.end(), [&](int x, int y) { return ascending ? d[x] < d[y] : d[x] > d[y]; });
    for (int i = 0; i < kSize; ++i) {
        const int k = order[size_t(i)];
        values[i] = d[k];
        vectors[i] = TripleDouble(a[0][k], a[1][k], a[2][k]);
    }
    return true;
}

} // namespace rkBase
