// 16-bit pixels where a caller's memory is at its worst: up against a page that must not be touched, or at an odd
// address.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "tests/support/guarded.hpp"
#include "tests/support/random.hpp"

namespace nadir::test {

enum class Place { beforeGuard, behindGuard, oddAddress };

inline Place anyPlace(Random& random) { return static_cast<Place>(random.below(3)); }

class TightWords {
 public:
  TightWords(size_t count, Place place)
      : count_(count),
        bytes_(2 * count + (place == Place::oddAddress ? 1 : 0),
               place == Place::behindGuard ? Guard::before : Guard::behind) {}
  template <class T>
  TightWords(const std::vector<T>& values, Place place) : TightWords(values.size(), place) {
    store(values);
  }

  void* data() const { return bytes_.data(); }
  size_t size() const { return count_; }
  uint32_t bytes() const { return static_cast<uint32_t>(2 * count_); }

  template <class T>
  void store(const std::vector<T>& values) {
    static_assert(sizeof(T) == 2);
    if (!values.empty()) std::memcpy(bytes_.data(), values.data(), 2 * values.size());
  }
  template <class T = uint16_t>
  std::vector<T> values() const {
    static_assert(sizeof(T) == 2);
    std::vector<T> out(count_);
    if (count_ != 0) std::memcpy(out.data(), bytes_.data(), 2 * count_);
    return out;
  }

 private:
  size_t count_;
  Guarded<uint8_t> bytes_;
};

}  // namespace nadir::test
