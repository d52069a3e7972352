// A number that stands for results: equal bits, equal number, on every processor.
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include "lab/grid.hpp"

namespace nadir::lab {

// FNV-1a over the values' bytes, the lowest first whatever the processor's order
// (G. Fowler, L. C. Noll, K.-P. Vo, http://www.isthe.com/chongo/tech/comp/fnv).
class Fingerprint {
 public:
  template <class T>
  Fingerprint& add(T value) {
    if constexpr (std::is_floating_point_v<T>) {
      std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t> bits;
      std::memcpy(&bits, &value, sizeof bits);
      return add(bits);
    } else {
      uint64_t rest = static_cast<uint64_t>(value);
      for (size_t i = 0; i < sizeof value; ++i, rest >>= 8) state_ = (state_ ^ (rest & 255)) * 0x100000001B3u;
      return *this;
    }
  }

  template <class T>
  Fingerprint& add(const T* values, size_t count) {
    for (size_t i = 0; i < count; ++i) add(values[i]);
    return *this;
  }

  template <class T>
  Fingerprint& add(const std::vector<T>& values) {
    return add(values.data(), values.size());
  }

  template <class T>
  Fingerprint& add(const Grid<T>& grid) {
    return add(grid.pixels);
  }

  // Takes the status of a call that must succeed: a refused one has no results to stand for.
  template <class Status>
  Fingerprint& done(Status status) {
    if (status != 1) throw std::runtime_error("the library refused a call that tested processors accept");
    return *this;
  }

  uint64_t value() const { return state_; }

 private:
  uint64_t state_ = 0xCBF29CE484222325u;
};

}  // namespace nadir::lab
