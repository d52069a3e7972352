// The cases of the kernels that rectify rows, against a model that adds up the four weights pixel by pixel.
#include <cstring>
#include <limits>

#include "ground/kernels/kernels.hpp"
#include "tests/kernels/harness.hpp"

namespace nadir::test {
namespace {

using ground::beyondPicture;
using ground::RectifyRow;
using ground::roadKernels;
using ground::sourceParts;
using ground::Sources;

constexpr uint32_t pictureWidth = 23, pictureHeight = 9;

struct SourceRow {
  std::vector<uint32_t> corner;
  std::vector<uint8_t> across, down;
};

// All parts of a pixel come, whole ones more often, and one source in eight is nowhere.
uint8_t anyPart(lab::Random& random) {
  const uint32_t kind = random.below(4);
  if (kind < 2) return static_cast<uint8_t>(kind * sourceParts);
  return static_cast<uint8_t>(random.below(sourceParts + 1));
}

SourceRow anySources(lab::Random& random, size_t n) {
  SourceRow row{std::vector<uint32_t>(n), std::vector<uint8_t>(n, beyondPicture),
                std::vector<uint8_t>(n, beyondPicture)};
  for (size_t i = 0; i < n; ++i) {
    if (random.below(8) == 0) continue;
    row.corner[i] = random.below(pictureHeight - 1) << 16 | random.below(pictureWidth - 1);
    row.across[i] = anyPart(random);
    row.down[i] = anyPart(random);
  }
  return row;
}

template <class T>
T modelledPixel(const std::vector<T>& picture, uint32_t corner, uint32_t across, uint32_t down) {
  if (across == beyondPicture) return 0;
  const uint32_t weights[] = {(sourceParts - across) * (sourceParts - down), across * (sourceParts - down),
                              (sourceParts - across) * down, across * down};
  uint64_t sum = sourceParts * sourceParts / 2;
  for (uint32_t k = 0; k < 4; ++k) {
    const T source = picture[((corner >> 16) + k / 2) * pictureWidth + (corner & 0xFFFF) + k % 2];
    if (weights[k] != 0 && source == 0 && sizeof(T) == 2) return 0;
    sum += uint64_t{weights[k]} * source;
  }
  const auto mean = static_cast<T>(sum / (sourceParts * sourceParts));
  return mean == 0 ? T{1} : mean;
}

// The picture and the result begin at odd addresses where they stand behind the guard page.
template <class T>
void checkRectify(Check& check, RectifyRow, RectifyRow tested) {
  forEachInput(check, 0, 2 * widest + 40, [&](size_t n, Fill fill, Guard side) {
    constexpr size_t pixels = pictureWidth * pictureHeight;
    const size_t gap = side == Guard::before ? 1 : 0;
    auto picture = filled<T>(check.random, fill, pixels, 0, std::numeric_limits<T>::max());
    for (T& pixel : picture) pixel = check.random.below(9) ? pixel : T{0};
    const SourceRow row = anySources(check.random, n);
    const Guarded<uint8_t> in(pixels * sizeof(T) + gap, side), across(row.across, side), down(row.down, side);
    const Guarded<uint32_t> corner(row.corner, side);
    std::memcpy(in.data() + gap, picture.data(), pixels * sizeof(T));
    Output<uint8_t> want(n * sizeof(T), side), got(n * sizeof(T), side);
    for (size_t i = 0; i < n; ++i) {
      const T pixel = modelledPixel(picture, row.corner[i], row.across[i], row.down[i]);
      std::memcpy(want.data() + i * sizeof(T), &pixel, sizeof pixel);
    }
    const Sources sources{corner.data(), across.data(), down.data()};
    tested(in.data() + gap, pictureWidth * sizeof(T), sources, got.data(), n);
    check.equal("byte", want, got);
  });
}

// Rows of a lens: neighbours come from neighbours, a little apart and slowly down the picture.
template <class T>
void benchRectify(RectifyRow kernel) {
  constexpr uint32_t side = 640, rows = 480;
  static const std::vector<T> picture(size_t{side} * rows, T{100});
  static const SourceRow row = [] {
    SourceRow made;
    for (uint32_t x = 0; x < side - 64; ++x) {
      made.corner.push_back(x / 40 << 16 | (x + x / 16));
      made.across.push_back(static_cast<uint8_t>(x % 64));
      made.down.push_back(static_cast<uint8_t>(x * 64 / 40 % 64));
    }
    return made;
  }();
  static std::vector<T> out(side);
  const Sources sources{row.corner.data(), row.across.data(), row.down.data()};
  for (uint32_t y = 0; y < rows - 20; ++y)
    kernel(picture.data() + size_t{y} * side, side * sizeof(T), sources, out.data(), row.corner.size());
}

}  // namespace

void addRectifyCases(Registry& r) {
  add<RectifyRow>(
      r, "rectify16", [](unsigned c) { return roadKernels(c).rectify16; }, checkRectify<uint16_t>,
      benchRectify<uint16_t>, Law::model);
  add<RectifyRow>(
      r, "rectify8", [](unsigned c) { return roadKernels(c).rectify8; }, checkRectify<uint8_t>, benchRectify<uint8_t>,
      Law::model);
}

}  // namespace nadir::test
