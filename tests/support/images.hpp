// Images for tests: pixels between guard pages, comparisons that name the pixel, and the proof that a call wrote
// nothing.
#pragma once

#include <gtest/gtest.h>
#include <nadir/image.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "lab/image.hpp"
#include "lab/random.hpp"
#include "tests/support/guarded.hpp"

namespace nadir::test {

// Numbered type parameters say little in a report; these names, U8 to F32, say what failed.
struct TypeName {
  template <class T>
  static std::string GetName(int) {
    const char* kind = std::is_floating_point_v<T> ? "F" : std::is_signed_v<T> ? "S" : "U";
    return kind + std::to_string(sizeof(T) * 8);
  }
};

inline uint16_t bytesOf(uint32_t type) {
  if (type == IMG_TYPE_U8 || type == IMG_TYPE_S8) return 1;
  if (type == IMG_TYPE_U16 || type == IMG_TYPE_S16) return 2;
  if (type == IMG_TYPE_U32 || type == IMG_TYPE_S32 || type == IMG_TYPE_F32) return 4;
  return 0;
}

// Codes that are no pixel type: no bit, a bit too high, several bits at once.
inline const std::vector<uint32_t>& unknownTypes() {
  static const std::vector<uint32_t> codes{0,  3,  5,  6,   9,   10,  12,  13,          15,         20,
                                           36, 68, 96, 127, 128, 256, 260, 0x80000004u, 0xFFFFFFFFu};
  return codes;
}

// Every type and every unknown code but those that an operation admits.
inline std::vector<uint32_t> typesOtherThan(std::initializer_list<uint32_t> admitted) {
  std::vector<uint32_t> codes = unknownTypes();
  for (uint32_t code = IMG_TYPE_U8; code <= IMG_TYPE_F32; code *= 2)
    if (std::find(admitted.begin(), admitted.end(), code) == admitted.end()) codes.push_back(code);
  return codes;
}

// An image that owns its pixels; they begin as 0. Call the library with it as if it were the descriptor's address.
template <class T>
class Image {
 public:
  Image(uint32_t width, uint32_t height, Guard side = Guard::behind)
      : img{static_cast<uint16_t>(width), static_cast<uint16_t>(height), sizeof(T), lab::typeOf<T>, nullptr},
        size_(size_t{width} * height),
        pages_(std::make_unique<Guarded<T>>(size_, side)),
        first_(pages_->data()) {
    img.data = first_;
  }
  Image(uint32_t width, uint32_t height, const std::vector<T>& pixels, Guard side = Guard::behind)
      : Image(width, height, side) {
    fill(pixels);
  }
  // One row.
  Image(std::initializer_list<T> row) : Image(static_cast<uint32_t>(row.size()), 1, std::vector<T>(row)) {}

  operator Img*() { return &img; }
  operator const Img*() const { return &img; }
  ImgC readOnly() const { return {img.width, img.height, img.bytesPerPixel, img.type, img.data}; }

  // The descriptor now says `type`; the memory keeps its size, that of T pixels.
  void retype(uint32_t type) {
    img.type = type;
    img.bytesPerPixel = bytesOf(type);
  }
  void fill(const std::vector<T>& pixels) { std::copy_n(pixels.begin(), size(), data()); }

  T* data() const { return first_; }
  size_t size() const { return size_; }
  std::vector<T> pixels() const { return std::vector<T>(first_, first_ + size_); }
  T& at(uint32_t x, uint32_t y) const { return first_[size_t{y} * img.width + x]; }

  Img img;

 private:
  size_t size_;
  std::unique_ptr<Guarded<T>> pages_;
  T* first_;
};

// No byte of an integer mark is 0, and neighbours differ: whatever is written over them shows.
template <class T>
std::vector<T> marks(size_t count) {
  std::vector<T> out(count);
  for (size_t i = 0; i < count; ++i) out[i] = static_cast<T>(0x01010101u * (0x41 + i % 23));
  return out;
}

// Random pixels, a quarter of them extremes.
template <class T>
std::vector<T> anyPixels(lab::Random& random, size_t count) {
  static const T extremes[] = {0, 1, static_cast<T>(-1), std::numeric_limits<T>::min(), std::numeric_limits<T>::max()};
  std::vector<T> out(count);
  for (T& v : out) v = random.below(4) ? static_cast<T>(random.next()) : extremes[random.below(5)];
  return out;
}

template <class T>
::testing::AssertionResult samePixels(const std::vector<T>& wanted, const std::vector<T>& got, uint32_t width) {
  if (wanted.size() != got.size())
    return ::testing::AssertionFailure() << wanted.size() << " and " << got.size() << " pixels";
  const auto [w, g] = std::mismatch(wanted.begin(), wanted.end(), got.begin());
  if (w == wanted.end()) return ::testing::AssertionSuccess();
  const auto at = static_cast<size_t>(w - wanted.begin());
  return ::testing::AssertionFailure() << "pixel (" << at % width << ", " << at / width << "): wanted " << +*w
                                       << ", got " << +*g;
}

template <class T>
::testing::AssertionResult holds(const Image<T>& image, const std::vector<T>& wanted) {
  return samePixels(wanted, image.pixels(), image.img.width);
}

inline bool sameDescriptor(const Img& a, const Img& b) {
  return a.width == b.width && a.height == b.height && a.bytesPerPixel == b.bytesPerPixel && a.type == b.type &&
         a.data == b.data;
}

// The call answers `status` and leaves pixels and descriptor of `image` as they were.
template <class T, class Call>
::testing::AssertionResult answersUntouched(uint32_t status, const Image<T>& image, Call call) {
  const Img descriptor = image.img;
  const std::vector<T> before = image.pixels();
  const uint32_t answer = call();
  if (answer != status) return ::testing::AssertionFailure() << "answered " << answer << ", wanted " << status;
  if (!sameDescriptor(descriptor, image.img)) return ::testing::AssertionFailure() << "changed the descriptor";
  // Bytes are compared, since floats may hold patterns that do not equal themselves.
  if (image.size() != 0 && std::memcmp(before.data(), image.data(), image.size() * sizeof(T)) != 0)
    return ::testing::AssertionFailure() << "answered " << answer << " as wanted, but wrote pixels";
  return ::testing::AssertionSuccess();
}

template <class T, class Call>
::testing::AssertionResult refuses(const Image<T>& output, Call call) {
  return answersUntouched(0, output, call);
}

template <class T, class Call>
::testing::AssertionResult writesNothing(const Image<T>& output, Call call) {
  return answersUntouched(1, output, call);
}

struct Size {
  uint32_t width, height;
};

// Every width from none to two vectors of 32 pixels and a tail, each with a few heights, and some larger images.
inline std::vector<Size> smallSizes(uint32_t maxHeight) {
  std::vector<Size> sizes{{1, 70}, {5, 41}, {127, 4}, {128, 3}, {129, 3}, {257, 5}};
  for (uint32_t width = 0; width <= 70; ++width)
    for (uint32_t height = 0; height <= maxHeight; ++height) sizes.push_back({width, height});
  return sizes;
}

// check(size, guard, random) for every size and with the guard page on either side; ends at the first failure.
template <class Check>
void forEachSize(const std::vector<Size>& sizes, Check check) {
  for (const Guard side : {Guard::behind, Guard::before}) {
    for (const Size size : sizes) {
      const uint64_t seed = size.width * 1000u + size.height;
      SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + ", guard page " +
                   (side == Guard::behind ? "behind" : "before") + ", seed " + std::to_string(seed));
      lab::Random random(seed);
      check(size, side, random);
      if (::testing::Test::HasFailure()) return;
    }
  }
}

}  // namespace nadir::test
