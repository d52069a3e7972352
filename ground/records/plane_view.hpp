// Planes of the public interface over rows in memory.
#pragma once

#include <nadir/ground.h>
#include <nadir/image.h>

#include <cstddef>
#include <cstdint>

namespace nadir::ground {

template <class T>
NadirPlane planeOf(const T* data, uint32_t width, uint32_t height) {
  return {data, size_t{width} * sizeof(T), width, height};
}

// True where rows of so many bytes do not overlap and all of them lie in memory that there can be.
inline bool holdsRows(size_t stride, uint64_t rowBytes, uint32_t height) {
  return stride >= rowBytes && stride <= PTRDIFF_MAX / height;
}

// Rows without a gap for libnadir's calls, whose pictures are at most 65535 wide and high.
inline Img imageOf(uint16_t* data, uint32_t width, uint32_t height) {
  return {static_cast<uint16_t>(width), static_cast<uint16_t>(height), 2, IMG_TYPE_U16, data};
}

}  // namespace nadir::ground
