// Pixels at addresses that fit no pixel type.
#pragma once

#include <cstdint>
#include <cstring>
#include <vector>

#include "tests/support/images.hpp"

namespace nadir::test {

// An image whose pixels begin at an odd address, between guard pages.
template <class T>
class OddImage {
 public:
  OddImage(uint32_t width, uint32_t height, const std::vector<T>& pixels)
      : bytes_(pixels.size() * sizeof(T) + 1, Guard::before),
        img{static_cast<uint16_t>(width), static_cast<uint16_t>(height), sizeof(T), typeOf<T>, bytes_.data() + 1} {
    std::memcpy(img.data, pixels.data(), pixels.size() * sizeof(T));
  }

  operator Img*() { return &img; }
  operator const Img*() const { return &img; }
  std::vector<T> pixels() const {
    std::vector<T> out((bytes_.size() - 1) / sizeof(T));
    std::memcpy(out.data(), img.data, out.size() * sizeof(T));
    return out;
  }

 private:
  Guarded<uint8_t> bytes_;

 public:
  Img img;
};

}  // namespace nadir::test
