// The pairs' pixels, drawn from random numbers.
#include "lab/textured_pair.hpp"

#include <algorithm>
#include <cmath>

namespace nadir::lab {
namespace {

// Random values on a grid with linear interpolation in between, at three scales: gravel, stones and stains.
class Texture {
 public:
  explicit Texture(Random& random) : values_(random.values<uint16_t>(side * side, 1024)) {}

  double at(double x, double y) const { return 600 + at(x, y, 1.7) + at(x, y, 6.1) + at(x, y, 41.0); }

 private:
  static constexpr size_t side = 512;

  double grid(size_t x, size_t y) const { return values_[y % side * side + x % side]; }

  double at(double x, double y, double scale) const {
    const double u = x / scale, v = y / scale;
    const auto i = static_cast<size_t>(u), j = static_cast<size_t>(v);
    const double a = u - std::floor(u), b = v - std::floor(v);
    const double above = grid(i, j) * (1 - a) + grid(i + 1, j) * a;
    const double below = grid(i, j + 1) * (1 - a) + grid(i + 1, j + 1) * a;
    return above * (1 - b) + below * b;
  }

  std::vector<uint16_t> values_;
};

// The disparity of the reference picture's pixel, whose place is given in units of the picture's sides. It is below 55
// at any size.
double disparityAt(double x, double y) {
  const double ground = 6 + 34 * y;
  const bool onBox = (x > 0.2 && x < 0.4 && y > 0.3 && y < 0.55) || (x > 0.6 && x < 0.75 && y > 0.5 && y < 0.9);
  return onBox ? ground + 11 : ground;
}

uint16_t seen(double intensity, Random& random) {
  if (random.below(200) == 0) return 0;
  return static_cast<uint16_t>(std::clamp(intensity + random.between(-6, 6), 1.0, 4095.0));
}

}  // namespace

TexturedPair texturedPair(uint32_t width, uint32_t height) {
  Random random(width);
  const Texture texture(random);
  TexturedPair pair{width, height, {}, {}, {}};
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const double u = double(x) / width, v = double(y) / height;
      pair.first.push_back(seen(texture.at(x, y), random));
      pair.reference.push_back(seen(texture.at(x + disparityAt(u, v), y), random));
      pair.mask.push_back(std::abs(u - 0.5) + 0.3 * v > 0.75 ? 255 : 0);
    }
  }
  return pair;
}

TexturedPair shiftedRows(uint32_t width, uint32_t height, uint32_t reach,
                         const std::function<uint32_t(uint32_t y)>& shiftOf, Random& random) {
  TexturedPair pair{width, height, {}, {}, {}};
  for (uint32_t y = 0; y < height; ++y) {
    const auto texture = random.values<uint16_t>(width + reach, 5000);
    const auto seenAt = [&](uint32_t x) {
      return static_cast<uint16_t>(texture[x] % 97 ? texture[x] + random.below(90) : 0);
    };
    for (uint32_t x = 0; x < width; ++x) {
      pair.first.push_back(seenAt(x));
      pair.reference.push_back(seenAt(x + shiftOf(y)));
    }
  }
  return pair;
}

}  // namespace nadir::lab
