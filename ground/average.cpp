// The averages of the library, over a window of maps.
#include "ground/average.hpp"

#include "lab/image.hpp"
#include "tools/base/error.hpp"

namespace nadir::ground {

void MapWindow::add(Grid<uint16_t> heights) {
  maps_.push_back(std::move(heights));
  if (maps_.size() > frames_) maps_.pop_front();
}

Grid<uint16_t> MapWindow::mean() const {
  Grid<uint16_t> mean = maps_.back(), counts(mean.width, mean.height);
  Grid<int32_t> sums(mean.width, mean.height);
  Img out = imageOf(mean), count = imageOf(counts), sum;
  Img_Init(&sum, sums.width, sums.height, IMG_TYPE_S32, sums.pixels.data());
  ImgAvrgState state;
  bool good = IP_Utils_ImgAvrgInit(&out, &sum, &count, &state) != 0;
  for (const Grid<uint16_t>& map : maps_) {
    Grid<uint16_t> heights = map;
    const Img frame = imageOf(heights);
    good = good && IP_Utils_ImgAvrgAdd(&frame, &sum, &count, &state);
  }
  if (!good || !IP_Utils_ImgAvrgProcess(&out, &sum, &count, &state))
    throw tool::Error("the maps of the frames differ in size");
  return mean;
}

}  // namespace nadir::ground
