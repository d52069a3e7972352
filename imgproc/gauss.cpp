#include <nadir/imgproc.h>

#include <utility>

#include "core/memory.hpp"
#include "core/pixels.hpp"

namespace nadir {
namespace {

constexpr size_t kTaps = 5;

// Sums of 16 pixels, weighted 1 4 6 4 1.
uint32_t weighted(uint32_t a, uint32_t b, uint32_t c, uint32_t d, uint32_t e) { return (a + e) + 4 * (b + d) + 6 * c; }

void sumInterior(const uint16_t* pixels, uint32_t* sums, size_t n) {
  forEachPixel(
      n, [=](size_t i) { sums[i] = weighted(pixels[i], pixels[i + 1], pixels[i + 2], pixels[i + 3], pixels[i + 4]); });
}

// Sums along a row of 4 pixels or more; beyond its ends it goes on with its first and its last pixel.
void sumRow(const uint16_t* p, uint32_t* sums, size_t width) {
  const size_t last = width - 1;
  sums[0] = weighted(p[0], p[0], p[0], p[1], p[2]);
  sums[1] = weighted(p[0], p[0], p[1], p[2], p[3]);
  sumInterior(p, sums + 2, width - 4);
  sums[last - 1] = weighted(p[last - 3], p[last - 2], p[last - 1], p[last], p[last]);
  sums[last] = weighted(p[last - 2], p[last - 1], p[last], p[last], p[last]);
  std::swap(sums[last - 1], sums[last]);  // the interface wants the right border crossed
}

void smoothRow(const uint32_t* const (&rows)[kTaps], uint16_t* dst, size_t width) {
  const uint32_t *a = rows[0], *b = rows[1], *c = rows[2], *d = rows[3], *e = rows[4];
  forEachPixel(width,
               [=](size_t i) { dst[i] = static_cast<uint16_t>((weighted(a[i], b[i], c[i], d[i], e[i]) + 128) >> 8); });
}

// The rows in the order in which they are worked through. A row of the result may be written when the two source rows
// behind it are summed up, so that nothing is lost if the images share memory and it goes the right way.
class RowOrder {
 public:
  RowOrder(const Img& src, const Img& dst) : last_(src.height - 1u), upwards_(isBehind(dst.data, src.data)) {}
  size_t operator()(size_t y) const { return upwards_ ? last_ - y : y; }
  size_t clamped(size_t y) const { return y < last_ ? y : last_; }

 private:
  static bool isBehind(const void* a, const void* b) {
    return reinterpret_cast<uintptr_t>(a) > reinterpret_cast<uintptr_t>(b);
  }

  size_t last_;
  bool upwards_;
};

// The sums of the last five rows.
class SumRows {
 public:
  explicit SumRows(size_t width) : width_(width), sums_(uint64_t{kTaps} * width) {}
  explicit operator bool() const { return static_cast<bool>(sums_); }
  uint32_t* row(size_t y) const { return sums_.get() + y % kTaps * width_; }

 private:
  size_t width_;
  Scratch<uint32_t> sums_;
};

void smooth(const Img& src, const Img& dst, const SumRows& sums) {
  const RowOrder at(src, dst);
  const size_t height = src.height;
  for (size_t y = 0; y < height + 2; ++y) {
    if (y < height) sumRow(row<uint16_t>(src, at(y)), sums.row(y), src.width);
    if (y < 2) continue;
    const size_t out = y - 2;
    const uint32_t* const around[kTaps] = {sums.row(out < 2 ? 0 : out - 2), sums.row(out < 1 ? 0 : out - 1),
                                           sums.row(out), sums.row(at.clamped(out + 1)), sums.row(at.clamped(out + 2))};
    smoothRow(around, row<uint16_t>(dst, at(out)), src.width);
  }
}

}  // namespace
}  // namespace nadir

using namespace nadir;

uint32_t IP_Gauss(const Img* src, Img* dst, uint32_t kernel) {
  if (!src || !dst || !matches(*src, *dst) || src->type != IMG_TYPE_U16 || kernel != 0) return 0;
  if (src->width < 4 || src->height < 3) return 0;
  const SumRows sums(src->width);
  if (!sums) return 0;
  smooth(*src, *dst, sums);
  return 1;
}
