// Prints the figures between which the thresholds of the warnings stand, as docs/trust.md has them:
//   nadir_trust_tests --gtest_also_run_disabled_tests --gtest_filter='*Figures*'
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

#include "ground/trust/ground_search.hpp"
#include "ground/trust/map_view.hpp"
#include "tests/trust/faults.hpp"
#include "tests/trust/real_pairs.hpp"

namespace nadir::ground::test {

namespace {

struct Range {
  double least = INFINITY, most = -INFINITY;
  size_t count = 0;

  void add(double value) {
    if (std::isnan(value)) return;
    least = std::min(least, value);
    most = std::max(most, value);
    ++count;
  }
};

// By the number's name and by what was done to the pair.
using Ranges = std::map<std::string, std::map<std::string, Range>>;

double scoreShare(const Pair& pair, const CameraNumbers& camera) {
  const lab::Grid<uint16_t> disparity = disparityOf(pair);
  std::vector<Block> blocks(largestBlockCount(disparity.width, disparity.height));
  blocks.resize(listBlocks(disparity.pixels.data(), disparity.width, disparity.height, blocks.data()));
  const DisparityPlane expected = expectedGround(contextOf(camera), 0);
  return agreementOf(expected, blocks.data(), blocks.size()).score() /
         searchedGround(blocks.data(), blocks.size()).agreement.score();
}

void addShares(Ranges& ranges, const std::string& kind, const Pair& pair, const CameraNumbers* camera) {
  const Judged j = trustOf(pair, camera);
  const NadirTrust& t = j.trust;
  ranges["dark"][kind].add(std::max(t.dark_left, t.dark_right));
  ranges["clipped"][kind].add(std::max(t.clipped_left, t.clipped_right));
  ranges["matched"][kind].add(t.matched);
  ranges["range end"][kind].add(t.range_end);
  ranges["cut off"][kind].add(t.cut_off);
  ranges["below the ground"][kind].add(t.below_ground);
  if (camera) {
    const MapView map = mapView(contextOf(*camera), 0, largestDisparityOf(0), pair.left.width, pair.left.height);
    ranges["map seen, of the best place's"][kind].add(map.seen / map.bestSeen);
  }
  for (const NadirWarning& w : j.warnings) {
    if (w.id == NADIR_WARNING_SAME_PICTURE) ranges["unmoved"][kind].add(w.numbers[0]);
    if (w.id == NADIR_WARNING_SWAPPED) ranges["matched when exchanged"][kind].add(w.numbers[1]);
  }
}

void addUnspoilt(Ranges& ranges, const Pair& pair, const CameraNumbers* camera) {
  addShares(ranges, "unspoilt", pair, camera);
  if (camera) ranges["score, of the best plane's"]["unspoilt"].add(scoreShare(pair, *camera));
}

void addSpoilt(Ranges& ranges, const Rendered& good, bool hasMount, const std::string& size) {
  for (const Fault& f : spoiltPictures(good)) addShares(ranges, f.name, f.pair, hasMount ? &f.camera : nullptr);
  if (!hasMount) return;
  for (const Fault& f : spoiltCameras(good, size != "real: "))
    if (f.warning == "ground-elsewhere")
      ranges["score, of the best plane's"][size + f.name].add(scoreShare(f.pair, f.camera));
    else
      addShares(ranges, f.name, f.pair, &f.camera);
}

}  // namespace

TEST(Figures, DISABLED_OfTheThresholds) {
  Ranges ranges;
  for (const char* scene : {"boxes", "people", "couples", "walkers", "steps", "slope", "crop-rows", "empty-floor"})
    for (const uint32_t width : {160u, 320u, 640u})
      for (uint64_t seed = 1; seed <= 5; ++seed) {
        const Rendered r = rendered(scene, width, width * 3 / 4, seed, 0);
        for (const double noise : {0.0, 5.0, 20.0}) addUnspoilt(ranges, noisy(r.pair, noise, seed), &r.camera);
        if (seed <= 2) addSpoilt(ranges, {noisy(r.pair, 5, seed), r.camera}, true, width == 160 ? "160 x 120: " : "");
      }
  for (const RealPair& r : realPairs()) {
    addUnspoilt(ranges, r.good.pair, r.hasMount ? &r.good.camera : nullptr);
    addSpoilt(ranges, r.good, r.hasMount, "real: ");
  }
  for (const char* scene : {"people", "walkers"})
    for (const double height : {2200.0, 2500.0})
      for (uint64_t seed = 1; seed <= 3; ++seed) {
        const Rendered r = rendered(scene, 640, 480, seed, 5, height);
        addShares(ranges, "people under a low camera", r.pair, &r.camera);
      }
  for (const uint32_t width : {160u, 320u, 640u})
    for (const double depth : {300.0, 1000.0})
      for (const double side : {1000.0, 2000.0}) {
        const Rendered r = pit(width, width * 3 / 4, depth, side, 1);
        addShares(ranges, "pit", r.pair, &r.camera);
      }
  for (const auto& [number, kinds] : ranges)
    for (const auto& [kind, range] : kinds)
      std::printf("%-30s | %-28s | %7.4f to %7.4f | %zu\n", number.c_str(), kind.c_str(), range.least, range.most,
                  range.count);
}

}  // namespace nadir::ground::test
