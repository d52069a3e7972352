// Working memory that the caller of a function gives it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace nadir {

// The bytes of `count` of T; 0 where no size_t holds their number, and no memory can hold them either.
template <class T>
size_t bytesFor(uint64_t count) {
  return count > std::numeric_limits<size_t>::max() / 2 / sizeof(T) ? 0 : static_cast<size_t>(count) * sizeof(T);
}

// Memory as `count` of T, which it must hold from an address that suits them; else null.
template <class T>
T* asArray(void* memory, size_t bytes, uint64_t count) {
  const bool suits = reinterpret_cast<uintptr_t>(memory) % alignof(T) == 0;
  const bool holds = bytes >= bytesFor<T>(count) && (count == 0 || bytesFor<T>(count) > 0);
  return suits && holds ? static_cast<T*>(memory) : nullptr;
}

}  // namespace nadir
