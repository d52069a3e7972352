/* Small matrices and vectors of floats: 3x3 products for camera transforms, covariance and eigenvectors in the plane.
 *
 * A 3x3 matrix is nine floats, row after row: element (r, c) at index 3 * r + c. A 3-vector is three floats, x y z. A
 * 2x2 matrix is four floats a b c d, row after row. Everything is computed in single precision in the order written
 * here, so that results agree to the last bit everywhere. No pointer is checked; nothing is allocated. */
#ifndef NADIR_MATRIX_H
#define NADIR_MATRIX_H

#include <nadir/api.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- 3x3 matrices and 3-vectors -------------------------------------------------------------------------------- */

/* Copies nine floats bit for bit, whatever they hold. `src` and `dst` may be the same. */
NADIR_API void mCopy(const float* src, float* dst);

/* c = a * b, each element summed as (a[i][1] * b[1][j] + a[i][0] * b[0][j]) + a[i][2] * b[2][j]. `c` must overlap
 * neither `a` nor `b`. */
NADIR_API void mmMul(const float* a, const float* b, float* c);

/* w = m * v, each element summed as (m[i][1] * v[1] + m[i][0] * v[0]) + m[i][2] * v[2]. `w` must not overlap `m` or
 * `v`. */
NADIR_API void mvMul(const float* m, const float* v, float* w);

/* dst = the transpose of src. They must not overlap. */
NADIR_API void mTrans(const float* src, float* dst);

/* c = a + b, element by element. `c` may be `a` or `b`. */
NADIR_API void vvAdd(const float* a, const float* b, float* c);

/* c = a - b, element by element. `c` may be `a` or `b`. */
NADIR_API void vvSub(const float* a, const float* b, float* c);

/* ---- point sets and 2x2 matrices ------------------------------------------------------------------------------- */

/* Computes the sample covariance of points in the plane, in two passes: the means first, then the products of the
 * deviations from them. All sums run over the points in order, in single precision.
 *
 * points      2 * count coordinates: x and y of the first point, x and y of the second, ...
 * count       number of points, at least 2.
 * covariance  receives {var x, cov, cov, var y}, each a sum divided by count - 1.
 *
 * Returns 1, or 0 with `covariance` untouched for fewer than two points. */
NADIR_API uint32_t IP_Alg_Covar_2x2(const uint16_t* points, int32_t count, float* covariance);

/* Computes the real eigenvalues and the eigenvectors of a 2x2 matrix {a, b, c, d}, symmetric or not.
 *
 * With tr = a + d, det = a * d - b * c and s = sqrt(tr * tr * 0.25 - det) the eigenvalues are l1 = tr * 0.5 + s and
 * l2 = tr * 0.5 - s. The eigenvectors are not normalised. Off-diagonal elements up to 2^-23 count as zero:
 *
 *   |c| > 2^-23       (l1 - d, c) and (l2 - d, c)
 *   else |b| > 2^-23  (b, l1 - a) and (b, l2 - a)
 *   else              (1, 0) and (0, 1), also where a < d: l1 = d then stands with (1, 0)
 *
 * matrix        four floats.
 * eigenvalues   receives l1, l2; l1 >= l2.
 * eigenvectors  receives x and y of l1's vector, then of l2's.
 *
 * The outputs may overlap the matrix. Returns 1, or 0 with nothing written where the eigenvalues are complex. */
NADIR_API uint32_t IP_Alg_Eigen_2x2(const float* matrix, float* eigenvalues, float* eigenvectors);

#ifdef __cplusplus
}
#endif

#endif
