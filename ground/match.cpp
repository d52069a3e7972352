// Census, semi-global matching and the clean-up, all on the right grid; the left one is its mirror image.
#include "ground/match.hpp"

#include <nadir/nadir.h>

#include <utility>

#include "tools/base/error.hpp"

namespace nadir::ground {

namespace {

Grid<uint32_t> census(const Grid<uint16_t>& picture) {
  Grid<uint32_t> codes(picture.width, picture.height);
  IP_Census_5x5(picture.pixels.data(), codes.pixels.data(), picture.width, picture.height);
  return codes;
}

// Both views of a point lie in a row, the right one further left. Mirrored and swapped, the left picture takes the
// right one's place as the reference.
void mirrorAndSwap(Pair& pair) {
  mirror(pair.left);
  mirror(pair.right);
  std::swap(pair.left, pair.right);
}

Grid<uint16_t> matchOnRightGrid(const Pair& pair, uint32_t uniqueness, const StageRunner& run) {
  const auto [first, reference] =
      stageResult(run, "census", [&] { return std::make_pair(census(pair.left), census(pair.right)); });
  Grid<uint16_t> disparity(pair.right.width, pair.right.height);
  const SgmParams params{64, uniqueness};
  run("matching", [&, &codes = first, &referenceCodes = reference] {
    IP_SgmFull(codes.pixels.data(), referenceCodes.pixels.data(), pair.right.pixels.data(), disparity.width,
               disparity.height, &params, disparity.pixels.data(), nullptr);
  });
  return disparity;
}

void discardMasked(Grid<uint16_t>& disparity, const Grid<uint8_t>& mask) {
  for (size_t i = 0; i < mask.pixels.size(); ++i)
    if (mask.pixels[i] != 0) disparity.pixels[i] = 0;
}

// The clean-up may fill a masked pixel from a neighbour; what the user discards stays discarded.
Grid<uint16_t> postprocessed(const Grid<uint16_t>& raw, const MatchOptions& options) {
  Grid<uint16_t> disparity = raw;
  if (options.postprocess && IP_SgmPostproc(raw.pixels.data(), options.mask.pixels.data(), disparity.pixels.data(),
                                            raw.width, raw.height) == 0)
    throw tool::Error("not enough memory");
  discardMasked(disparity, options.mask);
  return disparity;
}

// The border lies where it is on the matcher's own grid.
bool isBorder(uint32_t x, uint32_t y, const Grid<uint16_t>& disparity) {
  return x < 2 || x + 4 >= disparity.width || y < 2 || y + 2 >= disparity.height;
}

PixelCounts countPixels(const Grid<uint16_t>& raw, const Grid<uint16_t>& result, const Grid<uint8_t>& mask) {
  PixelCounts counts;
  for (uint32_t y = 0; y < raw.height; ++y)
    for (uint32_t x = 0; x < raw.width; ++x) {
      const bool matched = raw.at(x, y) != 0, value = result.at(x, y) != 0;
      if (value && !matched) ++counts.filled;
      if (value)
        ++counts.value;
      else if (mask.at(x, y) != 0)
        ++counts.masked;
      else if (matched)
        ++counts.removed;
      else if (isBorder(x, y, result))
        ++counts.border;
      else
        ++counts.ambiguous;
    }
  return counts;
}

}  // namespace

Match match(Pair pair, MatchOptions options, const StageRunner& run) {
  if (options.mask.pixels.empty()) options.mask = Grid<uint8_t>(pair.left.width, pair.left.height);
  const bool mirrored = options.grid == View::left;
  if (mirrored) run("mirroring", [&] { mirrorAndSwap(pair), mirror(options.mask); });

  const Grid<uint16_t> raw = matchOnRightGrid(pair, options.uniqueness, run);
  Match match;
  match.disparity = stageResult(run, "post-processing", [&] { return postprocessed(raw, options); });
  match.counts = countPixels(raw, match.disparity, options.mask);
  if (mirrored) run("mirroring", [&] { mirror(match.disparity); });
  return match;
}

}  // namespace nadir::ground
