/* Images: a descriptor over pixel memory that the caller owns, and whole-image fill, copy and conversion. */
#ifndef NADIR_IMAGE_H
#define NADIR_IMAGE_H

#include <nadir/api.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Pixel types. Each is a single bit, so that a set of types is a mask; a sum of them is not a pixel type. */
enum ImgType {
  IMG_TYPE_U8 = 1,   /* unsigned, 1 byte */
  IMG_TYPE_S8 = 2,   /* signed, 1 byte */
  IMG_TYPE_U16 = 4,  /* unsigned, 2 bytes */
  IMG_TYPE_S16 = 8,  /* signed, 2 bytes */
  IMG_TYPE_U32 = 16, /* unsigned, 4 bytes */
  IMG_TYPE_S32 = 32, /* signed, 4 bytes */
  IMG_TYPE_F32 = 64  /* IEEE 754 single, 4 bytes */
};

/* A writable image. Pixels lie row after row without padding, top row first: pixel (x, y), x to the right and y
 * downwards from the top left (0, 0), lies at byte (y * width + x) * bytesPerPixel. The memory is the caller's. */
typedef struct {
  uint16_t width;         /* columns, pixels */
  uint16_t height;        /* rows, pixels */
  uint16_t bytesPerPixel; /* bytes of one pixel, as Img_Init derives it from the type; 0 for an unknown type */
  uint32_t type;          /* one code of ImgType */
  void* data;             /* the first pixel */
} Img;

/* The same for memory that is only read. */
typedef struct {
  uint16_t width;
  uint16_t height;
  uint16_t bytesPerPixel;
  uint32_t type;
  const void* data;
} ImgC;

/* Fills a descriptor over `data`; the pixels themselves are neither read nor written.
 *
 * img            receives the descriptor.
 * width, height  pixels; only the low 16 bits are kept.
 * type           a code of ImgType. An unknown code is stored as it is and gives bytesPerPixel 0.
 * data           the first pixel; may be null.
 *
 * Returns 1, or 0 for a null `img`. Nothing else is checked. */
NADIR_API uint32_t Img_Init(Img* img, uint32_t width, uint32_t height, uint32_t type, void* data);

/* Img_Init for an image that is only read. */
NADIR_API uint32_t ImgC_Init(ImgC* img, uint32_t width, uint32_t height, uint32_t type, const void* data);

/* Sets every pixel to one value.
 *
 * 8- and 16-bit pixels take the low bits of `value`, 32-bit integers all of them. Float pixels take `value` read as a
 * signed integer: 0xFFFFFFFF fills -1.0. The value 0 clears width * height * bytesPerPixel bytes whatever the type.
 *
 * Returns 1, or 0 for a null `img` or for an unknown type with a value other than 0; nothing is written then. */
NADIR_API uint32_t Img_FillBuffer(Img* img, uint32_t value);

/* Copies the pixels of `src` into `dst`, widening integers where the destination's type is wider.
 *
 * Types of equal size are copied as bytes with no conversion of values (U8 and S8; U16 and S16; U32, S32 and F32: an
 * S32 image copied into an F32 image keeps its bit patterns). 8-bit into 16- or 32-bit and 16-bit into 32-bit integer
 * types extend zeros or the sign by the SOURCE's signedness: S8 -1 becomes U16 65535. The number of bytes of an
 * unconverted copy is dst's width * height * bytesPerPixel. The two images must not overlap, except that they may be
 * the same memory with types of equal size.
 *
 * Returns 1. Returns 0 with `dst` untouched for a null pointer, sizes that differ, a narrowing pair, a widening into
 * F32, or when exactly one of the types is unknown. An unsupported pair gives 0 also where there are no rows. */
NADIR_API uint32_t Img_Copy(const ImgC* src, Img* dst);

/* Converts a signed 16-bit image to unsigned in place: negative pixels become 0, the others keep their value, and the
 * descriptor's type becomes IMG_TYPE_U16.
 *
 * img      an image of IMG_TYPE_S16; one without pixels still has its type changed.
 * newType  must be IMG_TYPE_U16, the one conversion there is.
 *
 * Returns 1, or 0 with nothing changed for a null `img` or any other pair of types. */
NADIR_API uint32_t Img_Convert_I(Img* img, uint32_t newType);

#ifdef __cplusplus
}
#endif

#endif
