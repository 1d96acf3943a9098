#pragma once

#include "rkbaseqt_export.h"

#include "core/TripleDouble.h"

namespace rkBase {

/// \brief Eigenvalues and eigenvectors of a symmetric 3x3 matrix.
///
/// Householder reduction to tridiagonal form, then QL iteration with implicit shifts, the
/// rotations accumulated into the eigenvectors. Only the upper triangle of `m` is read (the
/// matrix is taken as symmetric). The values come out sorted, ascending or descending, and
/// `vectors[i]` is the unit eigenvector of `values[i]` (components p, q, r = x, y, z). False,
/// with the outputs unspecified, when the iteration does not settle within 32 sweeps per value
/// or the matrix holds NaN or infinities.
RKBASEQT_EXPORT bool symmetricEigen3(const double m[3][3], TripleDouble& values, TripleDouble vectors[3],
                                     bool ascending = true);

} // namespace rkBase
