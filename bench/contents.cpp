// The small pictures that are hard to segment: how each is drawn.
#include "bench/contents.hpp"

#include <algorithm>

#include "lab/random.hpp"

namespace nadir::bench {
namespace {

template <class F>
std::vector<uint16_t> draw(uint32_t side, F isForeground) {
  std::vector<uint16_t> pixels;
  pixels.reserve(side * side);
  for (uint32_t y = 0; y < side; ++y)
    for (uint32_t x = 0; x < side; ++x) pixels.push_back(isForeground(x, y) ? 700 : 0);
  return pixels;
}

std::vector<uint16_t> empty(uint32_t side) {
  return draw(side, [](uint32_t, uint32_t) { return false; });
}

std::vector<uint16_t> full(uint32_t side) {
  return draw(side, [](uint32_t, uint32_t) { return true; });
}

template <uint32_t Percent>
std::vector<uint16_t> noise(uint32_t side) {
  lab::Random random(17);
  return draw(side, [&](uint32_t, uint32_t) { return random.below(100) < Percent; });
}

// Discs and what is left of them where the next one cuts in.
std::vector<uint16_t> blobs(uint32_t side) {
  return draw(side, [](uint32_t x, uint32_t y) {
    const uint32_t row = y / 16, dx = (x + 5 * row) % 22, dy = y % 16;
    return (dx - 11) * (dx - 11) + (dy - 8) * (dy - 8) < 52;
  });
}

std::vector<uint16_t> checkerboard(uint32_t side) {
  return draw(side, [](uint32_t x, uint32_t y) { return (x + y) % 2 == 0; });
}

// Single pixels that do not touch: as many components as there can be.
std::vector<uint16_t> dots(uint32_t side) {
  return draw(side, [](uint32_t x, uint32_t y) { return x % 2 == 0 && y % 2 == 0; });
}

// Teeth that are joined only at the bottom: every label but one merges in the last row.
std::vector<uint16_t> comb(uint32_t side) {
  return draw(side, [=](uint32_t x, uint32_t y) { return x % 2 == 0 || y + 1 == side; });
}

// One thin line, wound up: the longest way from one end of a region to the other.
std::vector<uint16_t> spiral(uint32_t side) {
  return draw(side, [=](uint32_t x, uint32_t y) {
    const uint32_t ring = std::min(std::min(x, y), std::min(side - 1 - x, side - 1 - y));
    const bool gate = x == ring && y == ring + 1;  // where a ring opens into the next one
    return (ring % 2 == 0) != gate;
  });
}

}  // namespace

std::vector<Content> contents() {
  return {{"empty", empty},
          {"full", full},
          {"noise, 10 %", noise<10>},
          {"noise, 50 %", noise<50>},
          {"noise, 90 %", noise<90>},
          {"blobs", blobs},
          {"checkerboard", checkerboard},
          {"dots", dots},
          {"comb", comb},
          {"spiral", spiral}};
}

}  // namespace nadir::bench
