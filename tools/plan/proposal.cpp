// Tries tilts and distances, and takes the least tilt that measures finely: who is seen from above hides nobody.
#include "tools/plan/proposal.hpp"

#include <nadir/ground.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/plan/plan.hpp"

namespace nadir::tool {

namespace {

constexpr double roomAtEdges = 0.97;  // of the half picture: mounts are never so exact
constexpr double roomInRange = 0.95;  // of the disparities
constexpr double finePixelMm = 20;    // that a pixel sees at the far corners, unless the wish is wide
constexpr double longestBaseline =
    1.0 / 8;                       // of the height: longer bars bend, and both cameras see the same thing less
constexpr double fineStepMm = 10;  // of height for 1/16 pixel; a longer range is proposed where a step is coarser
constexpr double steepestTilt = 75;
constexpr double leastClearanceMm = 100;

struct Candidate {
  double tiltDeg, nearMm, focalPx, baselineMm;
  double stepMm;      // at the far corners, 1/16 pixel
  double coarseness;  // the less, the better
};

// What the camera sees of the wish: how wide and how deep it lies in the picture, for a focal length of 1.
struct Spread {
  double columns = 0, rows = 0, nearest = std::numeric_limits<double>::infinity(), farthest = 0;
};

// The rectangle lies around the middle between both cameras, and begins `nearMm` before the left one.
std::optional<Spread> spreadOf(const Wish& wish, double tiltDeg, double nearMm, double baselineMm) {
  const double c = std::cos(tiltDeg * degree), s = std::sin(tiltDeg * degree);
  Spread spread;
  for (const double forward : {nearMm, nearMm + wish.depthMm})
    for (const double tall : {0.0, wish.tallestMm}) {
      const double down = wish.heightMm - tall, depth = forward * s + down * c;
      if (depth < leastClearanceMm) return {};
      spread.rows = std::max(spread.rows, std::abs(down * s - forward * c) / depth);
      spread.columns = std::max(spread.columns, (wish.widthMm + baselineMm) / 2 / depth);
      spread.nearest = std::min(spread.nearest, depth);
      spread.farthest = std::max(spread.farthest, depth);
    }
  return spread;
}

// A baseline needs wider pictures, and those a longer one for the same disparities: both settle soon.
std::optional<Candidate> candidateFor(const Wish& wish, double tiltDeg, double nearMm, uint32_t rangePx) {
  Candidate candidate{tiltDeg, nearMm, 0, 0, 0, 0};
  for (int turn = 0; turn < 20; ++turn) {
    const std::optional<Spread> spread = spreadOf(wish, tiltDeg, nearMm, candidate.baselineMm);
    if (!spread) return {};
    candidate.focalPx =
        roomAtEdges * std::min(wish.widthPx / 2.0 / spread->columns, wish.heightPx / 2.0 / spread->rows);
    candidate.baselineMm =
        std::min(roomInRange * rangePx * spread->nearest / candidate.focalPx, wish.heightMm * longestBaseline);
    candidate.stepMm = wish.heightMm * spread->farthest / (16 * candidate.focalPx * candidate.baselineMm);
    candidate.coarseness = candidate.stepMm * spread->farthest / candidate.focalPx;
  }
  const bool isReal = candidate.focalPx >= 10 && candidate.baselineMm >= 5;
  return isReal ? std::optional(candidate) : std::nullopt;
}

bool isFine(const Candidate& c, const Wish& wish) {
  const double even = std::max(wish.widthMm / wish.widthPx, wish.depthMm / wish.heightPx);
  return c.stepMm <= fineStepMm && c.coarseness <= c.stepMm * std::max(finePixelMm, 3 * even);
}

// The distance where heights and places come out finest.
std::optional<Candidate> bestFor(const Wish& wish, double tiltDeg, uint32_t rangePx) {
  constexpr int places = 40;  // from below the camera to twice its height before it
  std::optional<Candidate> best;
  for (int i = 0; i <= places; ++i) {
    const double nearMm = -wish.depthMm / 2 + (wish.depthMm / 2 + 2 * wish.heightMm) * i / places;
    const std::optional<Candidate> candidate = candidateFor(wish, tiltDeg, nearMm, rangePx);
    if (candidate && (!best || candidate->coarseness < best->coarseness)) best = candidate;
  }
  return best;
}

// The shortest range, and then the least tilt, that is fine; else what comes nearest.
Candidate chosenFor(const Wish& wish) {
  if (wish.tallestMm >= wish.heightMm)
    throw Error(
        format("--tallest %g is not below the camera, --height %g; hang it higher", wish.tallestMm, wish.heightMm));
  std::optional<Candidate> nearest;
  for (const uint32_t range : {0u + NADIR_RANGE_61, 0u + NADIR_RANGE_122, 0u + NADIR_RANGE_244})
    for (double tilt = 0; tilt <= steepestTilt; ++tilt) {
      const std::optional<Candidate> candidate = bestFor(wish, tilt, range);
      if (candidate && isFine(*candidate, wish)) return *candidate;
      if (candidate && (!nearest || candidate->coarseness < nearest->coarseness)) nearest = candidate;
    }
  if (!nearest)
    throw Error(format("no camera at %g mm sees things of %g mm on %.0f x %.0f mm; hang it higher, or see less",
                       wish.heightMm, wish.tallestMm, wish.widthMm, wish.depthMm));
  return *nearest;
}

}  // namespace

Camera proposedCamera(const Wish& wish) {
  const Candidate chosen = chosenFor(wish);
  Camera camera;
  camera.focalPx = std::floor(chosen.focalPx);
  camera.baselineMm = std::floor(chosen.baselineMm);
  camera.widthPx = wish.widthPx, camera.heightPx = wish.heightPx;
  camera.principalXPx = (wish.widthPx - 1) / 2.0, camera.principalYPx = (wish.heightPx - 1) / 2.0;
  camera.heightMm = wish.heightMm;
  camera.tiltDeg = 0 - chosen.tiltDeg;
  const CameraView view(camera);
  const GroundPoint farthest{camera.baselineMm / 2, -(chosen.nearMm + wish.depthMm)};
  camera.cellMm = usefulCellMm(view.groundOfPixel(view.seen(farthest, 0)->left), std::max(wish.widthMm, wish.depthMm));
  const auto cells = [&](double mm) { return static_cast<uint32_t>(std::ceil(mm / camera.cellMm)); };
  camera.mapWidthCells = cells(wish.widthMm), camera.mapHeightCells = cells(wish.depthMm);
  const double half = std::floor(camera.mapWidthCells / 2.0) * camera.cellMm;
  const double axisY = -wish.heightMm * std::tan(chosen.tiltDeg * degree);
  camera.mapOffsetXMm = std::round((camera.baselineMm - wish.widthMm) / 2 + half);
  camera.mapOffsetYMm = std::round(-(chosen.nearMm + wish.depthMm) - axisY + half);
  return camera;
}

}  // namespace nadir::tool
