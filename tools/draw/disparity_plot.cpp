#include "tools/draw/disparity_plot.hpp"

#include <cmath>

#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

Grid<float> inPixels(const Grid<uint16_t>& disparity, uint32_t scale) {
  Grid<float> pixels(disparity.width, disparity.height, std::nanf(""));
  for (size_t i = 0; i < disparity.pixels.size(); ++i)
    if (disparity.pixels[i] != 0)
      pixels.pixels[i] = static_cast<float>(disparity.pixels[i]) / static_cast<float>(scale);
  return pixels;
}

Bytes encodeDisparityPlot(const Grid<float>& disparity, std::pair<double, double> range) {
  const Grid<Rgb> picture = plot(disparity, {range.first, range.second, turbo, "pixels"});
  return encodePng(picture,
                   {{"Description", "Disparities in pixels, coloured; grey: no value."}, {"Software", software()}});
}

}  // namespace nadir::tool
