// The two colour maps: a polynomial, and a table whose classes are joined.
#include "tools/draw/colours.hpp"

#include <algorithm>
#include <cstddef>

namespace nadir::tool {

namespace {

using Polynomial = double[6];

double valueOf(const Polynomial& c, double t) {
  return c[0] + t * (c[1] + t * (c[2] + t * (c[3] + t * (c[4] + t * c[5]))));
}

uint8_t byte(double unit) { return static_cast<uint8_t>(std::clamp(unit, 0.0, 1.0) * 255 + 0.5); }

uint8_t mix(uint8_t a, uint8_t b, double share) { return byte((a + (b - a) * share) / 255); }

}  // namespace

Rgb turbo(double t) {
  static constexpr Polynomial red = {0.13572138, 4.61539260, -42.66032258, 132.13108234, -152.94239396, 59.28637943};
  static constexpr Polynomial green = {0.09140261, 2.19418839, 4.84296658, -14.18503333, 4.27729857, 2.82956604};
  static constexpr Polynomial blue = {0.10667330, 12.64194608, -60.58204836, 110.36276771, -89.90310912, 27.34824973};
  // Below this the fit falls to black.
  static constexpr double start = 0.04;
  t = start + std::clamp(t, 0.0, 1.0) * (1 - start);
  return {byte(valueOf(red, t)), byte(valueOf(green, t)), byte(valueOf(blue, t))};
}

Rgb blueRed(double t) {
  static constexpr Rgb classes[] = {{5, 48, 97},     {33, 102, 172},  {67, 147, 195},  {146, 197, 222},
                                    {209, 229, 240}, {247, 247, 247}, {253, 219, 199}, {244, 165, 130},
                                    {214, 96, 77},   {178, 24, 43},   {103, 0, 31}};
  const double place = std::clamp(t, 0.0, 1.0) * 10;
  const auto low = std::min(static_cast<size_t>(place), size_t{9});
  const double share = place - static_cast<double>(low);
  const Rgb a = classes[low], b = classes[low + 1];
  return {mix(a.r, b.r, share), mix(a.g, b.g, share), mix(a.b, b.b, share)};
}

}  // namespace nadir::tool
