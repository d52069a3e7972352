// A vector lays elements of one type over a buffer of the caller's.
#include <nadir/vector.h>

#include <algorithm>

#include "core/memory.hpp"

namespace nadir {
namespace {

// 0 for a type that no vector can have.
uint32_t elementBytes(uint32_t elementType) {
  switch (elementType) {
    case VECTOR_TYPE_U8:
    case VECTOR_TYPE_S8: return 1;
    case VECTOR_TYPE_U16:
    case VECTOR_TYPE_S16: return 2;
    case VECTOR_TYPE_U32:
    case VECTOR_TYPE_S32:
    case VECTOR_TYPE_WORD: return 4;
    default: return 0;
  }
}

template <class T>
bool fill(const Vector& vec, uint32_t value, uint32_t count) {
  std::fill_n(static_cast<T*>(vec.data), count, static_cast<T>(value));
  return true;
}

bool fillElements(const Vector& vec, uint32_t value, uint32_t count) {
  if (value == 0) {
    clear(vec.data, size_t{count} * elementBytes(vec.elementType));
    return true;
  }
  if (vec.elementType == VECTOR_TYPE_WORD) return false;
  switch (elementBytes(vec.elementType)) {
    case 1: return fill<uint8_t>(vec, value, count);
    case 2: return fill<uint16_t>(vec, value, count);
    case 4: return fill<uint32_t>(vec, value, count);
    default: return false;
  }
}

}  // namespace
}  // namespace nadir

uint32_t Vector_Init(Vector* vec, uint32_t elementType, void* buffer, uint32_t bufferBytes) {
  if (nadir::elementBytes(elementType) == 0) return 0;
  *vec = {0, bufferBytes / nadir::elementBytes(elementType), elementType, buffer};
  return 1;
}

uint32_t Vector_Clear(Vector* vec) {
  vec->count = 0;
  return 1;
}

uint32_t Vector_Fill(Vector* vec, uint32_t value, int32_t count) {
  const uint32_t wanted = count < 0 ? vec->count : static_cast<uint32_t>(count);
  if (count >= 0 && wanted > vec->capacity) return 0;
  if (!nadir::fillElements(*vec, value, wanted)) return 0;
  vec->count = wanted;
  return 1;
}
