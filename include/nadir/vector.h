/* Typed vectors: an array of fixed capacity over memory that the caller owns. Elements are read and written through
 * `data` directly. */
#ifndef NADIR_VECTOR_H
#define NADIR_VECTOR_H

#include <nadir/api.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Element types. They are no image types (image.h). */
enum VectorType {
  VECTOR_TYPE_U8 = 0,
  VECTOR_TYPE_U16 = 1,
  VECTOR_TYPE_U32 = 2,
  VECTOR_TYPE_S8 = 3,
  VECTOR_TYPE_S16 = 4,
  VECTOR_TYPE_S32 = 5,
  VECTOR_TYPE_WORD = 6,   /* 4 bytes that Vector_Fill can only clear */
  VECTOR_TYPE_INVALID = 7 /* refused by Vector_Init */
};

/* The elements 0 .. count - 1 of `data` are in use. */
typedef struct {
  uint32_t count;       /* elements in use */
  uint32_t capacity;    /* elements that the memory holds */
  uint32_t elementType; /* a VectorType */
  void* data;           /* the first element, aligned for its type; the caller's */
} Vector;

/* Lays an empty vector over `buffer`; the buffer's bytes stay as they are.
 *
 * vec          receives the record; must not be null.
 * elementType  a VectorType other than VECTOR_TYPE_INVALID.
 * bufferBytes  bytes of `buffer`. The capacity is the number of whole elements in them.
 *
 * Returns 1, or 0 with `vec` untouched for any other type. */
NADIR_API uint32_t Vector_Init(Vector* vec, uint32_t elementType, void* buffer, uint32_t bufferBytes);

/* Empties the vector: its count becomes 0, the elements' bytes stay as they are. `vec` must not be null. Returns 1. */
NADIR_API uint32_t Vector_Clear(Vector* vec);

/* Makes the vector `count` elements of one value.
 *
 * vec    must not be null; its capacity must be that of its memory.
 * value  8- and 16-bit elements take its low bits. VECTOR_TYPE_WORD takes only 0.
 * count  the new count; a negative one keeps the count that the vector has.
 *
 * Returns 1. Returns 0 with nothing changed for a count beyond the capacity and for a value other than 0 in a vector
 * of VECTOR_TYPE_WORD or of an unknown type. */
NADIR_API uint32_t Vector_Fill(Vector* vec, uint32_t value, int32_t count);

#ifdef __cplusplus
}
#endif

#endif
