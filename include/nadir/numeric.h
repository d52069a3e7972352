/* Numbers: order statistics of 16-bit values, a tracking filter, a search for a maximum; a clock and large digits. */
#ifndef NADIR_NUMERIC_H
#define NADIR_NUMERIC_H

#include <nadir/api.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Finds the median of an array, in place. For an even count it is the lower of the two middle values.
 *
 * values  `count` values. The call partly sorts them; the order in which it leaves them is fixed by the method.
 * count   1 to 65536.
 * median  receives the element of rank (count - 1) / 2 in ascending order, counted from 0. It may point into `values`
 *         and is written last.
 *
 * Returns 1. Returns 0 with nothing written for a null pointer or a count outside the range.
 *
 * Method: quickselect with a median-of-three pivot and sentinels (C. A. R. Hoare, "Algorithm 65: Find", CACM 4(7),
 * 1961; R. Sedgewick, "Implementing quicksort programs", CACM 21(10), 1978). Expected time grows with `count`, the
 * worst case with its square. Nothing is allocated. */
NADIR_API uint32_t IP_Utl_Median_u16(uint16_t* values, uint32_t count, uint16_t* median);

/* How IP_Utl_RadixIdxSort reads a key. */
enum RadixMode {
  RADIX_UNSIGNED = 0, /* 0 to 65535 */
  RADIX_SIGNED = 1    /* two's complement, -32768 to 32767 */
};

/* Sorts indices by the keys that they point at and leaves the keys where they are: keys[indices[0]] is the smallest.
 * Equal keys stand in ascending order of their indices.
 *
 * keys     `count` keys.
 * indices  receives the `count` indices; must not overlap `keys`.
 * count    at most 65536.
 * mode     a RadixMode.
 *
 * Returns 1; a count of 0 writes nothing. Returns 0 with nothing written for a null pointer, another mode or a larger
 * count. The call allocates 2 * count bytes. Where that fails it STILL RETURNS 1 and writes nothing: a caller who must
 * know fills `indices` with something that is no permutation beforehand.
 *
 * Method: two stable counting passes, least significant byte first (D. E. Knuth, "The Art of Computer Programming",
 * vol. 3, 5.2.5). */
NADIR_API uint32_t IP_Utl_RadixIdxSort(const uint16_t* keys, uint16_t* indices, uint32_t count, uint32_t mode);

/* ---- tracking -------------------------------------------------------------------------------------------------- */

/* A Kalman filter for one value and its rate: the rate is constant but for accelerations, which are random. The units
 * are the caller's: those of the value, and of the time that passes between measurements. */
typedef struct {
  float x;      /* the value as estimated */
  float v;      /* its rate as estimated, value per time */
  float P[4];   /* covariance of (x, v), row after row: P00 P01 P10 P11 */
  float Q[4];   /* what the last prediction added to it; never read */
  float R;      /* variance of a measurement */
  float sigmaZ; /* standard deviation of a measurement */
  float sigmaV; /* that of the first rate */
  float sigmaA; /* that of the acceleration; every prediction reads it */
} Kalman1d;

/* Begins with the value xInit, as uncertain as a measurement, and the rate vInit. Q is not written. The pointer must
 * not be null, here and below. Everything is computed in single precision. */
NADIR_API void IP_Kalman1d_Create(Kalman1d* filter, float xInit, float vInit, float sigmaZ, float sigmaV, float sigmaA);

/* Lets the time `dt` pass, with F = [1 dt; 0 1]: x and v become F (x, v), P becomes F P F' + Q, where
 * Q = sigmaA^2 [dt^4/4 dt^3/2; dt^3/2 dt^2].
 *
 * Source: R. E. Kalman, "A new approach to linear filtering and prediction problems", J. Basic Eng. 82(1), 1960. */
NADIR_API void IP_Kalman1d_Predict(Kalman1d* filter, float dt);

/* Takes in the measurement `z` of the value. P is updated in the form that keeps it symmetric and positive in spite of
 * rounding, (I - K H) P (I - K H)' + K R K' with H = [1 0].
 *
 * Source: R. S. Bucy, P. D. Joseph, "Filtering for stochastic processes with applications to guidance", 1968. */
NADIR_API void IP_Kalman1d_Update(Kalman1d* filter, float z);

/* ---- search for a maximum -------------------------------------------------------------------------------------- */

/* A function of one variable. */
typedef struct {
  double (*evaluate)(void* context, double x);
  void* context; /* handed to every call */
} GsFunc;

typedef struct {
  uint32_t iterations;  /* steps after the first two evaluations */
  uint32_t evaluations; /* of the function */
  double bestX, bestF;  /* where the search ended, and the function's value there */
} GsResult;

/* Looks for the maximum of a function that first rises and then falls on an interval, by golden-section search in
 * double precision. To minimise, negate the function. Equal values move the interval to the right.
 *
 * func     the function.
 * maxEval  the most evaluations; two are made in any case.
 * xs, fs   receive every point and its value in the order of evaluation; room for max(maxEval, 2) each.
 * result   receives the better of the two points that the interval ended with; of equal ones the right one.
 * a, b     the interval.
 * tol      the search ends when the two inner points are no further apart.
 *
 * Nothing is checked: no pointer may be null.
 *
 * Source: J. Kiefer, "Sequential minimax search for a maximum", Proc. AMS 4(3), 1953. */
NADIR_API void IP_Optim_GsSearch(const GsFunc* func, uint32_t maxEval, double* xs, double* fs, GsResult* result,
                                 double a, double b, double tol);

/* ---- diagnosis ------------------------------------------------------------------------------------------------- */

/* The time of a clock that never goes back, in milliseconds or in seconds. Only differences mean something. */
NADIR_API double IP_Utils_GetTimeMS(void);
NADIR_API double IP_Utils_GetTimeS(void);

/* Prints a number of three digits on standard output as a picture of characters: three digits of 16 x 16 characters
 * side by side with two spaces between them, leading zeros included. It is the only function that prints.
 *
 * number  0 to 999; a larger one prints nothing and gives 0.
 *
 * 256 lines are printed: the 16 of the picture and 240 more, which a program that reads the output skips. Each of these
 * shows the next 16 characters, or fewer up to a zero byte, of the memory where the digits lie one behind the other.
 *
 * Returns what the last printf returned: the number of characters of the last line's third column and its line break,
 * or a negative number if it failed. */
NADIR_API int32_t IP_Utils_PrintNumAsAscii(uint32_t number);

#ifdef __cplusplus
}
#endif

#endif
