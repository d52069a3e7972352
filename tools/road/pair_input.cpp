// Pictures that do not fit together are refused here, before anything is matched.
#include "tools/road/pair_input.hpp"

#include <algorithm>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/pictures/pictures.hpp"

namespace nadir::tool {

namespace {

// Half of a picture's columns, from `first` on.
Grid<uint16_t> halfOf(const Grid<uint16_t>& picture, uint32_t first) {
  Grid<uint16_t> half(picture.width / 2, picture.height);
  for (uint32_t y = 0; y < half.height; ++y) std::copy_n(picture.row(y) + first, half.width, half.row(y));
  return half;
}

void checkLeastSize(const Pair& pair) {
  if (pair.left.width < smallestSide || pair.left.height < smallestSide)
    throw UnusableFile(format("the pictures are too small: %s pixels, the least is %s",
                              sizeText(pair.left.width, pair.left.height).c_str(),
                              sizeText(smallestSide, smallestSide).c_str()));
}

}  // namespace

Pair halvesOf(const Grid<uint16_t>& both, const std::string& path) {
  if (both.width % 2 != 0)
    throw UnusableFile(format("%s does not hold two pictures side by side: it has %u columns, an odd number",
                              path.c_str(), both.width));
  Pair pair{halfOf(both, 0), halfOf(both, both.width / 2)};
  checkLeastSize(pair);
  return pair;
}

Pair readPair(const std::string& left, const std::string& right) {
  const Pair pair{readIntensity(left), readIntensity(right)};
  const std::string leftSize = sizeText(pair.left.width, pair.left.height);
  if (!sameSize(pair.left, pair.right))
    throw UnusableFile(format("the pictures differ in size: %s is %s pixels, %s is %s", left.c_str(), leftSize.c_str(),
                              right.c_str(), sizeText(pair.right.width, pair.right.height).c_str()));
  checkLeastSize(pair);
  return pair;
}

Pair readFrame(const std::string& left, const std::string& right) {
  return right.empty() ? halvesOf(readIntensity(left), left) : readPair(left, right);
}

Grid<uint8_t> readMaskFor(const PictureSize& size, const std::string& path) {
  if (path.empty()) return {};
  Grid<uint8_t> mask = readMask(path);
  if (mask.width != size.width || mask.height != size.height)
    throw Error(format("the mask %s is %s pixels, the disparity picture %s", path.c_str(),
                       sizeText(mask.width, mask.height).c_str(), sizeText(size.width, size.height).c_str()));
  return mask;
}

}  // namespace nadir::tool
