// Shapes that are hard on whoever labels them: noise of every density, blobs, combs, spirals, mazes, checkerboards,
// stripes, nested bowls, mixed with noise and turned any way; and heights over them.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "lab/random.hpp"
#include "tests/models/image_ops.hpp"

namespace nadir::test {

using Shape = model::Picture<uint8_t>;  // 1 inside, 0 outside
using Terrain = model::Picture<uint16_t>;

template <class Inside>
Shape shapeOf(uint32_t width, uint32_t height, Inside inside) {
  Shape shape{width, height, {}};
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) shape.pixels.push_back(inside(x, y) ? 1 : 0);
  }
  return shape;
}

// `percent` of the pixels.
inline Shape noise(lab::Random& random, uint32_t width, uint32_t height, uint32_t percent) {
  return shapeOf(width, height, [&](uint32_t, uint32_t) { return random.below(100) < percent; });
}

inline Shape blobs(lab::Random& random, uint32_t width, uint32_t height) {
  Shape shape = shapeOf(width, height, [](uint32_t, uint32_t) { return false; });
  for (uint32_t n = 1 + random.below(12); n > 0; --n) {
    const uint32_t x0 = random.below(width), y0 = random.below(height);
    const uint32_t x1 = std::min(width, x0 + 1 + random.below(width / 3 + 1));
    const uint32_t y1 = std::min(height, y0 + 1 + random.below(height / 3 + 1));
    for (uint32_t y = y0; y < y1; ++y) {
      for (uint32_t x = x0; x < x1; ++x) shape.at(x, y) = 1;
    }
  }
  return shape;
}

// Teeth that only the last row connects.
inline Shape comb(uint32_t width, uint32_t height, uint32_t pitch) {
  return shapeOf(width, height, [=](uint32_t x, uint32_t y) { return x % pitch == 0 || y + 1 == height; });
}

// Two combs with their teeth between each other's, connected at the top and at the bottom.
inline Shape zip(uint32_t width, uint32_t height) {
  return shapeOf(width, height, [=](uint32_t x, uint32_t y) {
    return y + 1 == height || (x % 4 == 0 && y > 1) || y == 0 || (x % 4 == 2 && y + 2 < height);
  });
}

// One path, a pixel wide, that winds inwards and never touches itself, not even at a corner.
inline Shape spiral(uint32_t width, uint32_t height) {
  Shape shape = shapeOf(width, height, [](uint32_t, uint32_t) { return false; });
  const auto isFree = [&](int64_t x, int64_t y) {
    const bool inside = x >= 0 && y >= 0 && x < width && y < height;
    return inside && shape.at(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) == 0;
  };
  const auto isWall = [&](int64_t x, int64_t y) {
    return x >= 0 && y >= 0 && x < width && y < height && !isFree(x, y);
  };
  int64_t x = 0, y = 0, dx = 1, dy = 0;
  shape.at(0, 0) = 1;
  for (int turns = 0; turns < 2;) {
    if (isFree(x + dx, y + dy) && !isWall(x + 2 * dx, y + 2 * dy)) {
      x += dx;
      y += dy;
      shape.at(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) = 1;
      turns = 0;
    } else {
      dx = -std::exchange(dy, dx);
      ++turns;
    }
  }
  return shape;
}

// Rooms in every second row and column, some of the walls between them open.
inline Shape maze(lab::Random& random, uint32_t width, uint32_t height, uint32_t percentOpen) {
  return shapeOf(width, height, [&](uint32_t x, uint32_t y) {
    if (x % 2 == 0 && y % 2 == 0) return true;
    return x % 2 + y % 2 == 1 && random.below(100) < percentOpen;
  });
}

inline Shape checkerboard(uint32_t width, uint32_t height, uint32_t cell) {
  return shapeOf(width, height, [=](uint32_t x, uint32_t y) { return (x / cell + y / cell) % 2 == 0; });
}

// Across, down or diagonal; `on` of every `period` pixels.
inline Shape stripes(uint32_t width, uint32_t height, uint32_t period, uint32_t on, uint32_t direction) {
  return shapeOf(width, height, [=](uint32_t x, uint32_t y) {
    const uint32_t along[] = {x, y, x + y, x + (height - y)};
    return along[direction] % period < on;
  });
}

// Bowls in bowls: their sides meet only at the bottom.
inline Shape bowls(uint32_t width, uint32_t height) {
  return shapeOf(width, height, [=](uint32_t x, uint32_t y) {
    return std::min({x, width - 1 - x, height - 1 - y}) % 2 == 0;
  });
}

inline Shape turned(const Shape& shape, uint32_t turns) {
  const bool mirrored = turns & 1, upsideDown = turns & 2;
  return shapeOf(shape.width, shape.height, [&](uint32_t x, uint32_t y) {
    return shape.at(mirrored ? shape.width - 1 - x : x, upsideDown ? shape.height - 1 - y : y) != 0;
  });
}

// Numbers are drawn one after the other, never as two arguments of a call, whose order is the compiler's.
inline Shape anyPlainShape(lab::Random& random, uint32_t width, uint32_t height) {
  const uint32_t few = random.below(4), fewer = random.below(3), direction = random.below(4);
  switch (random.below(10)) {
    case 0: return blobs(random, width, height);
    case 1: return comb(width, height, 2 + fewer);
    case 2: return spiral(width, height);
    case 3: return maze(random, width, height, random.below(101));
    case 4: return checkerboard(width, height, 1 + fewer);
    case 5: return stripes(width, height, 2 + few, 1 + fewer, direction);
    case 6: return bowls(width, height);
    case 7: return zip(width, height);
    default: return noise(random, width, height, 1 + random.below(99));
  }
}

// Any of them, every second one as it is, the others with some pixels changed or the last column set.
inline Shape anyShape(lab::Random& random, uint32_t width, uint32_t height) {
  const uint32_t turns = random.below(4), change = random.below(6);
  Shape shape = turned(anyPlainShape(random, width, height), turns);
  if (change == 0) {
    for (uint32_t y = 0; y < height; ++y) shape.at(width - 1, y) = static_cast<uint8_t>(random.below(2));
  }
  const uint32_t changed = change == 1 ? 1 : change == 2 ? 8 : 0;
  for (uint8_t& pixel : shape.pixels) pixel = static_cast<uint8_t>(random.below(100) < changed ? 1 - pixel : pixel);
  return shape;
}

struct Extent {
  uint32_t width, height;
};

// Mostly small, where the special cases are; single rows and columns; now and then up to `largest`.
inline Extent anyExtent(lab::Random& random, uint32_t largest) {
  const auto upTo = [&](uint32_t n) { return 1 + random.below(n); };
  switch (random.below(32)) {
    case 0: return {upTo(largest), upTo(largest)};
    case 1: return {1, upTo(largest)};
    case 2: return {upTo(largest), 1};
    case 3: return {largest, upTo(8)};
    case 4: return {upTo(8), largest};
    case 5:
    case 6:
    case 7:
    case 8: return {upTo(40), upTo(40)};
    default: return {upTo(12), upTo(12)};
  }
}

// Heights that climb, stand in blocks, or vary a little from pixel to pixel.
inline Terrain anyHeights(lab::Random& random, uint32_t width, uint32_t height) {
  const uint32_t kind = random.below(4), base = 1 + random.below(60000), range = 1 + random.below(6);
  const uint32_t perColumn = random.below(5), perRow = random.below(5), block = 1 + random.below(6);
  const std::vector<uint32_t> steps = random.values<uint32_t>(64, 20);
  Terrain terrain{width, height, {}};
  for (uint32_t y = 0; y < height; ++y) {
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t relief[] = {x * perColumn + y * perRow, steps[(x / block + y / block * 7) % 64],
                                 random.below(range), x * perColumn + random.below(range)};
      terrain.pixels.push_back(static_cast<uint16_t>(base + relief[kind]));
    }
  }
  return terrain;
}

// Heights inside a shape; outside it holes or one level, so that flat land goes on there.
inline Terrain anyTerrain(lab::Random& random, uint32_t width, uint32_t height) {
  Terrain terrain = anyHeights(random, width, height);
  const Shape shape = anyShape(random, width, height);
  if (random.below(4) == 0) return terrain;
  const uint16_t outside = static_cast<uint16_t>(random.below(2) ? 0 : random.below(65536));
  for (size_t i = 0; i < terrain.pixels.size(); ++i) {
    if (shape.pixels[i] == 0) terrain.pixels[i] = outside;
  }
  return terrain;
}

}  // namespace nadir::test
