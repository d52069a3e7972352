// Walking over the pixels of images, and the checks that every image operation makes first.
#pragma once

#include <nadir/image.h>

#include <cstddef>
#include <cstdint>
#include <tuple>

namespace nadir {

// How many bytes a pixel of this type has; 0 for anything that is no single type.
inline uint32_t pixelBytes(uint32_t type) {
  switch (type) {
    case IMG_TYPE_U8:
    case IMG_TYPE_S8: return 1;
    case IMG_TYPE_U16:
    case IMG_TYPE_S16: return 2;
    case IMG_TYPE_U32:
    case IMG_TYPE_S32:
    case IMG_TYPE_F32: return 4;
    default: return 0;
  }
}

inline bool isType(uint32_t type, uint32_t admitted) { return pixelBytes(type) != 0 && (type & admitted) != 0; }

template <class A, class B>
bool sameSize(const A& a, const B& b) {
  return a.width == b.width && a.height == b.height;
}

inline bool matches(const Img& a, const Img& b) { return sameSize(a, b) && a.type == b.type; }

inline size_t pixelCount(const Img& img) { return size_t{img.width} * img.height; }

inline size_t rowBytes(const Img& img) { return size_t{img.width} * img.bytesPerPixel; }

// A row is found by its number; each image has its own stride.
template <class T>
T* row(const Img& img, size_t y) {
  return static_cast<T*>(static_cast<void*>(static_cast<unsigned char*>(img.data) + y * rowBytes(img)));
}

// Calls f(n, rows...) for the rows of images of one size, n pixels each: one pointer for each image, in their order.
// Rows that follow each other without gaps in all of them go as one long row.
template <class T, class F, class... Images>
void forEachRow(F f, const Images&... images) {
  const Img& first = std::get<0>(std::tie(images...));
  const bool gapless = ((rowBytes(images) == size_t{images.width} * sizeof(T)) && ...);
  if (gapless) return f(pixelCount(first), row<T>(images, 0)...);
  for (size_t y = 0; y < first.height; ++y) f(size_t{first.width}, row<T>(images, y)...);
}

// Calls f(i) for i = 0 .. n - 1 in a form that compilers turn into vector code. f may write one element i of an output
// and read elements of inputs; an input may be that same output, but then f reads its element i only.
template <class F>
inline void forEachPixel(size_t n, F f) {
#if defined(__clang__)
#pragma clang loop vectorize(assume_safety)
#else
#pragma GCC ivdep
#endif
  for (size_t i = 0; i < n; ++i) f(i);
}

}  // namespace nadir
