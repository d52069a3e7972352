// How the truth comes about. Each surface has a disparity that is linear in the LEFT picture's coordinates, which is
// what a plane in space looks like, and a texture that is a function of them. A left pixel shows the covering surface
// with the largest disparity. A right pixel asks every surface at which left column it would be seen there, and shows
// the texture at that column. No picture is ever warped or resampled.
#include "scene.hpp"

namespace nadir::tool {

namespace {

// Columns and disparities in 1/65536 pixel.
using Fixed = int64_t;
constexpr Fixed one = 65536;

// A surface's disparity at left (x, y) is d + dx * x + dy * y, in 1/256 pixel.
struct Surface {
  int64_t d, dx, dy;
  int64_t left, top, right, bottom;  // the pixels that it covers in the left picture; right and bottom excluded
  uint32_t texture;
};

// ---- random numbers ----

// The finalizer of splitmix64 (G. Steele et al., "Fast splittable pseudorandom number generators", OOPSLA 2014).
uint64_t mixed(uint64_t v) {
  v = (v ^ v >> 30) * 0xBF58476D1CE4E5B9u;
  v = (v ^ v >> 27) * 0x94D049BB133111EBu;
  return v ^ v >> 31;
}

class Random {
 public:
  explicit Random(uint64_t seed) : state_(mixed(seed + 1)) {}
  int64_t between(int64_t low, int64_t high) {
    state_ += 0x9E3779B97F4A7C15u;
    return low + static_cast<int64_t>(mixed(state_) % static_cast<uint64_t>(high - low + 1));
  }

 private:
  uint64_t state_;
};

// In [0, 65535], a function of a place.
int64_t hashAt(uint64_t key, int64_t x, int64_t y) {
  const uint64_t place =
      static_cast<uint64_t>(x) * 0x9E3779B97F4A7C15u + static_cast<uint64_t>(y) * 0xC2B2AE3D27D4EB4Fu;
  return static_cast<int64_t>(mixed(mixed(place) + key) >> 48);
}

// ---- texture ----

int64_t floorDivide(int64_t a, int64_t b) { return a / b - (a % b < 0); }

// 3 t^2 - 2 t^3
Fixed smooth(Fixed t) { return t * t / one * (3 * one - 2 * t) / one; }

Fixed blend(Fixed a, Fixed b, Fixed share) { return a + (b - a) * share / one; }

// Random values at the corners of square cells, joined smoothly.
Fixed cellNoise(uint64_t key, Fixed x, Fixed y, int64_t cell) {
  const int64_t column = floorDivide(x, cell * one), row = floorDivide(y, cell * one);
  const Fixed u = smooth(x / cell - column * one), v = smooth(y / cell - row * one);
  const Fixed top = blend(hashAt(key, column, row), hashAt(key, column + 1, row), u);
  const Fixed bottom = blend(hashAt(key, column, row + 1), hashAt(key, column + 1, row + 1), u);
  return blend(top, bottom, v);
}

// Cells of 3 pixels give every 5x5 window something to match; coarser ones make patches of light and dark.
int64_t intensity(const Surface& surface, const SceneOptions& options, Fixed x, int64_t y) {
  static constexpr struct { int64_t cell, weight; } octaves[] = {{3, 5}, {6, 4}, {15, 3}, {47, 4}};
  Fixed sum = 0;
  for (const auto& octave : octaves) {
    const uint64_t key =
        mixed(uint64_t{options.seed} << 32 | surface.texture << 8 | static_cast<uint64_t>(octave.cell));
    sum += octave.weight * cellNoise(key, x, y * one, octave.cell);
  }
  return 200 + sum / 16 * 3600 / one;
}

uint16_t withNoise(int64_t value, const SceneOptions& options, uint64_t camera, int64_t x, int64_t y) {
  const auto noise = static_cast<int64_t>(options.noise);
  const uint64_t key = mixed(uint64_t{options.seed} << 32 | camera << 16 | 0xFFFF);
  return static_cast<uint16_t>(std::clamp<int64_t>(value + hashAt(key, x, y) % (2 * noise + 1) - noise, 1, 4095));
}

// ---- geometry ----

Fixed disparity(const Surface& s, Fixed x, int64_t y) { return (s.d + s.dy * y) * 256 + s.dx * x / 256; }

bool covers(const Surface& s, Fixed x, int64_t y) {
  return y >= s.top && y < s.bottom && x >= s.left * one - one / 2 && x < s.right * one - one / 2;
}

// The left column that the surface shows at a right column: x - disparity(x) = right.
Fixed leftColumn(const Surface& s, Fixed right, int64_t y) {
  return (right + (s.d + s.dy * y) * 256) * 256 / (256 - s.dx);
}

struct Hit {
  const Surface* surface;
  Fixed x;  // left column
  Fixed disparity;
};

// The nearest of the surfaces that a ray meets; `column` tells at which left column it meets each.
template <class Column>
Hit nearest(const std::vector<Surface>& surfaces, int64_t y, Column column) {
  Hit hit{nullptr, 0, -1};
  for (const Surface& s : surfaces) {
    const Fixed x = column(s);
    if (covers(s, x, y) && disparity(s, x, y) > hit.disparity) hit = {&s, x, disparity(s, x, y)};
  }
  return hit;
}

Hit seenByLeft(const std::vector<Surface>& surfaces, int64_t x, int64_t y) {
  return nearest(surfaces, y, [&](const Surface&) { return x * one; });
}

Hit seenByRight(const std::vector<Surface>& surfaces, Fixed x, int64_t y) {
  return nearest(surfaces, y, [&](const Surface& s) { return leftColumn(s, x, y); });
}

uint16_t truthOf(const std::vector<Surface>& surfaces, const Hit& hit, int64_t y) {
  const Fixed right = hit.x - hit.disparity;
  const bool visible = right >= 0 && seenByRight(surfaces, right, y).surface == hit.surface;
  return static_cast<uint16_t>(visible ? hit.disparity / (one / truthScale) : 0);
}

// ---- the scene ----

constexpr int64_t beyond = 1 << 20;

Surface ground(const SceneOptions& options, Random& random) {
  return {
      6 * 256 + random.between(0, 255), 0, 40 * 256 / int64_t{options.height}, -beyond, 0, beyond, options.height, 0};
}

// Upright and facing the cameras: one disparity, that of the ground at its foot.
Surface box(const SceneOptions& options, const Surface& floor, Random& random, int64_t index, int64_t count) {
  const int64_t w = options.width, h = options.height;
  const int64_t foot = random.between(h * 2 / 5, h * 9 / 10);
  const int64_t left = w * index / count + random.between(w / 20, w / 10);
  return {floor.d + floor.dy * foot,
          0,
          0,
          left,
          foot - random.between(h / 6, h / 3),
          left + random.between(w / 10, w / 6),
          foot,
          static_cast<uint32_t>(index + 1)};
}

// A wall whose right side is nearer.
Surface slantedWall(const SceneOptions& options, const Surface& floor, Random& random) {
  const int64_t w = options.width, h = options.height;
  const int64_t left = w * 2 / 5 + random.between(0, w / 10);
  return {floor.d + floor.dy * h / 3 - 8 * left, 8, 0, left, h / 20, left + w / 4, h / 3, 20};
}

// Part of the ground that is a little higher.
Surface step(const SceneOptions& options, const Surface& floor, Random& random) {
  const int64_t w = options.width, h = options.height;
  return {floor.d + random.between(512, 1024),
          0,
          floor.dy,
          w / 2 + random.between(0, w / 8),
          h * 7 / 10,
          w * 15 / 16,
          h * 19 / 20,
          21};
}

std::vector<Surface> surfaces(const SceneOptions& options) {
  Random random(options.seed);
  const Surface floor = ground(options, random);
  std::vector<Surface> all = {floor, slantedWall(options, floor, random), step(options, floor, random)};
  for (int64_t i = 0; i < 3; ++i) all.push_back(box(options, floor, random, i, 3));
  return all;
}

}  // namespace

Scene renderScene(const SceneOptions& options) {
  const std::vector<Surface> all = surfaces(options);
  const Grid<uint16_t> empty(options.width, options.height);
  Scene scene{empty, empty, empty};
  for (uint32_t y = 0; y < options.height; ++y)
    for (uint32_t x = 0; x < options.width; ++x) {
      const Hit left = seenByLeft(all, x, y), right = seenByRight(all, x * one, y);
      scene.left.at(x, y) = withNoise(intensity(*left.surface, options, left.x, y), options, 0, x, y);
      scene.right.at(x, y) = withNoise(intensity(*right.surface, options, right.x, y), options, 1, x, y);
      scene.truth.at(x, y) = truthOf(all, left, y);
    }
  return scene;
}

}  // namespace nadir::tool
