// Rays of the view are bent by the lens, and the places are rounded to the parts of a pixel that kernels take.
#include "ground/lens/source_map.hpp"

#include <algorithm>
#include <cmath>

#include "ground/lens/turns.hpp"

namespace nadir::ground {

namespace {

// A place along one side of the picture: a pixel that has a next one, and how far it lies towards that.
struct Step {
  uint32_t first;
  uint8_t part;  // beyondPicture where there is none
};

// The last pixel has no next one: it is the next one of the pixel before it.
Step stepAt(double place, uint32_t side) {
  const double parts = std::floor(place * sourceParts + 0.5);
  if (!(parts >= 0 && parts <= (side - 1.0) * sourceParts)) return {0, beyondPicture};
  const auto whole = static_cast<uint32_t>(parts);
  const uint32_t first = std::min(whole / sourceParts, side - 2);
  return {first, static_cast<uint8_t>(whole - first * sourceParts)};
}

struct Source {
  uint32_t corner;
  uint8_t across, down;
};

constexpr Source nowhere = {0, beyondPicture, beyondPicture};

Source sourceAt(const LensModel& model, const NadirLens& lens, const Vector3& ray) {
  if (!(ray.z > 0)) return nowhere;
  const PlanePoint onPlane = {ray.x / ray.z, ray.y / ray.z};
  if (!model.shows(onPlane)) return nowhere;
  const PlanePoint place = model.source(onPlane);
  const Step x = stepAt(place.x, lens.width_px), y = stepAt(place.y, lens.height_px);
  if (x.part == beyondPicture || y.part == beyondPicture) return nowhere;
  return {y.first << 16 | x.first, x.part, y.part};
}

}  // namespace

SourceMap sourceMap(Arena& arena, const NadirRectifiedView& view) {
  const uint64_t pixels = uint64_t{view.width_px} * view.height_px;
  return {arena.take<uint32_t>(pixels), arena.take<uint8_t>(pixels), arena.take<uint8_t>(pixels)};
}

void fill(const SourceMap& map, const NadirLens& lens, const NadirRectifiedView& view) {
  const LensModel model(lens);
  Turn turn{};
  std::copy_n(view.rotation, 9, turn.m);
  const Turn back = inverse(turn);
  size_t i = 0;
  for (uint32_t v = 0; v < view.height_px; ++v)
    for (uint32_t u = 0; u < view.width_px; ++u, ++i) {
      const Vector3 ray = {(u - view.principal_x_px) / view.focal_px, (v - view.principal_y_px) / view.focal_px, 1};
      const Source source = sourceAt(model, lens, back * ray);
      map.corners[i] = source.corner;
      map.across[i] = source.across;
      map.down[i] = source.down;
    }
}

bool findSource(const Sources& sources, uint32_t i, PlanePoint& source) {
  if (sources.across[i] == beyondPicture) return false;
  const double across = sources.across[i], down = sources.down[i];
  source = {(sources.corner[i] & 0xFFFF) + across / sourceParts, (sources.corner[i] >> 16) + down / sourceParts};
  return true;
}

}  // namespace nadir::ground
