// Pictures that do not fit together are refused here, before anything is matched.
#include "tools/road/pair_input.hpp"

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/pictures/pictures.hpp"

namespace nadir::tool {

Pair readPair(const std::string& left, const std::string& right) {
  const Pair pair{readIntensity(left), readIntensity(right)};
  const std::string leftSize = sizeText(pair.left.width, pair.left.height);
  if (!sameSize(pair.left, pair.right))
    throw UnusableFile(format("the pictures differ in size: %s is %s pixels, %s is %s", left.c_str(), leftSize.c_str(),
                              right.c_str(), sizeText(pair.right.width, pair.right.height).c_str()));
  if (pair.left.width < smallestSide || pair.left.height < smallestSide)
    throw UnusableFile(format("the pictures are too small: %s pixels, the least is %s", leftSize.c_str(),
                              sizeText(smallestSide, smallestSide).c_str()));
  return pair;
}

Grid<uint8_t> readMaskFor(const Pair& pair, const std::string& path) {
  if (path.empty()) return {};
  Grid<uint8_t> mask = readMask(path);
  if (!sameSize(mask, pair.left))
    throw Error(format("the mask %s is %s pixels, the disparity picture %s", path.c_str(),
                       sizeText(mask.width, mask.height).c_str(), sizeText(pair.left.width, pair.left.height).c_str()));
  return mask;
}

}  // namespace nadir::tool
