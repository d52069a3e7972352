/* Order statistics of 16-bit values: median and index sort. */
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

#ifdef __cplusplus
}
#endif

#endif
