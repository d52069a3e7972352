// One block of memory that is cut into arrays.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir::ground {

// Without a block it hands out null pointers and only counts, so that the bytes of a block and its cutting come from
// the same lines.
class Arena {
 public:
  explicit Arena(void* block) : block_(static_cast<uint8_t*>(block)) {}

  template <class T>
  T* take(uint64_t count = 1) {
    const uint64_t begin = used_;
    used_ += (count * sizeof(T) + alignment - 1) / alignment * alignment;
    static_assert(alignof(T) <= alignment);
    return block_ ? static_cast<T*>(static_cast<void*>(block_ + begin)) : nullptr;
  }

  // 0 where no memory can hold that much.
  size_t bytes() const { return used_ > SIZE_MAX / 2 ? 0 : static_cast<size_t>(used_); }

 private:
  static constexpr uint64_t alignment = 16;  // malloc's, on every system that matters here: all types fit
  uint8_t* block_;
  uint64_t used_ = 0;
};

}  // namespace nadir::ground
