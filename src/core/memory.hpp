// Heap blocks that free themselves, on malloc and free alone.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace nadir {

// malloc of a size computed in 64 bits: null for what no size_t holds, a block of one byte for nothing at all, so that
// null always means failure.
inline void* allocate(uint64_t bytes) {
  if (bytes > std::numeric_limits<size_t>::max() / 2) return nullptr;
  return std::malloc(bytes ? static_cast<size_t>(bytes) : 1);
}

// Makes bytes 0; memset takes no null pointer, not even for none.
inline void clear(void* data, size_t bytes) {
  if (bytes) std::memset(data, 0, bytes);
}

// Memory for the duration of a call.
template <class T>
class Scratch {
 public:
  explicit Scratch(uint64_t count) : data_(static_cast<T*>(allocate(count * sizeof(T)))) {}
  ~Scratch() { std::free(data_); }
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  explicit operator bool() const { return data_ != nullptr; }
  T* get() const { return data_; }

 private:
  T* data_;
};

}  // namespace nadir
