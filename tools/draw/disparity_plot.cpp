// The colours and the texts of a picture of disparities.
#include "tools/draw/disparity_plot.hpp"

#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

Bytes encodeDisparityPlot(const Grid<float>& disparity, std::pair<double, double> range) {
  const Grid<Rgb> picture = plot(disparity, {range.first, range.second, turbo, "pixels"});
  return encodePng(picture, pictureTexts("Disparities in pixels, coloured; grey: no value."));
}

}  // namespace nadir::tool
