// Patches are numbered by region growing and filled by pull and push.
#include "ground/holes.hpp"

#include <nadir/nadir.h>

#include <new>

#include "lab/image.hpp"
#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::ground {

namespace {

// Every patch of unseen cells gets a number of its own, all other cells 0.
Grid<uint16_t> patches(const Grid<uint16_t>& heights) {
  Grid<uint16_t> labels(heights.width, heights.height);
  for (size_t i = 0; i < labels.pixels.size(); ++i) labels.pixels[i] = heights.pixels[i] == 0;
  Img image = imageOf(labels);
  const int32_t aboveZeroWithoutStep[] = {0, 0};
  if (!IP_RGrow_Process(&image, aboveZeroWithoutStep, &image)) throw std::bad_alloc();
  return labels;
}

std::vector<size_t> sizesOf(const Grid<uint16_t>& labels) {
  std::vector<size_t> sizes(size_t{UINT16_MAX} + 1);
  for (const uint16_t label : labels.pixels) ++sizes[label];
  return sizes;
}

// No hole is left, unless the map shows nothing at all.
Grid<uint16_t> allFilled(Grid<uint16_t> heights) {
  Img image = imageOf(heights);
  if (!IP_PullPush(&image, &image))
    throw tool::Error(tool::format("holes can be filled in maps of 2 to 4095 cells a side, this one has %s",
                                   tool::sizeText(heights.width, heights.height).c_str()));
  return heights;
}

}  // namespace

size_t fillHoles(Grid<uint16_t>& heights, size_t largest) {
  const Grid<uint16_t> labels = patches(heights), filled = allFilled(heights);
  const std::vector<size_t> sizes = sizesOf(labels);
  size_t count = 0;
  for (size_t i = 0; i < labels.pixels.size(); ++i) {
    const uint16_t label = labels.pixels[i];
    if (label == 0 || sizes[label] > largest || filled.pixels[i] == 0) continue;
    heights.pixels[i] = filled.pixels[i];
    ++count;
  }
  return count;
}

}  // namespace nadir::ground
