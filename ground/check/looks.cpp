// A moved picture is a moved pointer to its census codes.
#include "ground/check/looks.hpp"

#include <nadir/stereo.h>

#include <cstring>

namespace nadir::ground {

namespace {

constexpr uint32_t frame = 2;  // where there are no codes
constexpr SgmParams usual{64, 48};

void fill(uint32_t* codes, size_t count) {
  for (size_t i = 0; i < count; ++i) codes[i] = CENSUS_INVALID;
}

// What the census does not write matches nothing.
void takeCodesOf(const uint16_t* picture, uint32_t* codes, uint32_t width, uint32_t height) {
  const size_t w = width;
  fill(codes - w, (1 + frame) * w);
  for (size_t y = frame; y < height; ++y) fill(codes + y * w, frame), fill(codes + (y + 1) * w - frame, frame);
  fill(codes + (height - frame) * w, (frame + 1) * w);
  IP_Census_5x5(picture, codes, width, height);
}

// A moved pointer reads the ends of neighbouring rows there.
void dropBeyondEdges(const LookPair& p, int32_t columns) {
  for (size_t y = 0; y < p.height; ++y)
    for (size_t x = 0; x < p.width; ++x) {
      uint16_t& disparity = p.disparity[y * p.width + x];
      const size_t column = x + (disparity >> 4) - static_cast<size_t>(columns);  // wraps below the left edge
      if (column >= p.width) disparity = 0;
    }
}

}  // namespace

LookPair lookPair(Arena& arena, uint32_t width, uint32_t height) {
  const uint64_t pixels = uint64_t{width} * height;
  LookPair p{};
  p.width = width;
  p.height = height;
  uint32_t* first = arena.take<uint32_t>(pixels + 2 * uint64_t{width});
  uint32_t* reference = arena.take<uint32_t>(pixels + 2 * uint64_t{width});
  p.firstCodes = first ? first + width : nullptr;
  p.referenceCodes = reference ? reference + width : nullptr;
  p.disparity = arena.take<uint16_t>(pixels);
  p.mask = arena.take<uint8_t>(pixels);
  p.walk = arena.take<uint8_t>(p.walkBytes = nadir_sgm_bytes(width));
  p.cleanUpBytes = nadir_sgm_postproc_bytes(static_cast<uint16_t>(width), static_cast<uint16_t>(height));
  p.cleanUp = arena.take<uint8_t>(p.cleanUpBytes);
  return p;
}

void takeCodes(const LookPair& p) {
  takeCodesOf(p.first, p.firstCodes, p.width, p.height);
  takeCodesOf(p.reference, p.referenceCodes, p.width, p.height);
}

void look(const LookPair& p, int32_t rows, int32_t columns) {
  const auto away = static_cast<uint32_t>(rows < 0 ? -rows : rows);
  const size_t referenceBegin = rows < 0 ? size_t{away} * p.width : 0,
               firstBegin = size_t{away} * p.width - referenceBegin;
  const uint32_t* first = p.firstCodes + static_cast<ptrdiff_t>(firstBegin) - columns;
  std::memset(p.disparity, 0, p.pixels() * sizeof *p.disparity);
  std::memset(p.mask, 0, p.pixels());
  nadir_sgm_full(first, p.referenceCodes + referenceBegin, p.reference + referenceBegin, p.width, p.height - away,
                 &usual, p.disparity + referenceBegin, nullptr, p.walk, p.walkBytes);
  dropBeyondEdges(p, columns);
  nadir_sgm_postproc(p.disparity, p.mask, p.disparity, static_cast<uint16_t>(p.width), static_cast<uint16_t>(p.height),
                     p.cleanUp, p.cleanUpBytes);
}

double matchedShare(const LookPair& p) {
  size_t count = 0;
  for (size_t i = 0; i < p.pixels(); ++i) count += p.disparity[i] != 0;
  return static_cast<double>(count) / static_cast<double>(p.pixels());
}

}  // namespace nadir::ground
