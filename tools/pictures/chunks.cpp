// The texts of disparities and of elevation maps.
#include "tools/pictures/chunks.hpp"

#include <nadir/nadir.h>

#include "tools/base/text.hpp"

namespace nadir::tool {

std::string software() { return format("nadir %s", nadir_version()); }

TextChunks pictureTexts(const std::string& description, TextChunks more) {
  more[chunks::description] = description;
  more[chunks::software] = software();
  return more;
}

TextChunks disparityTexts(unsigned scale, View view) {
  const char* grid = nameOf(view);
  return pictureTexts(format("Disparities of the %s picture: value / %u is the disparity in pixels, 0 means no "
                             "value; right column = left column - disparity.",
                             grid, scale),
                      {{chunks::scale, std::to_string(scale)},
                       {chunks::noValue, "0"},
                       {chunks::units, format("1/%u pixel", scale)},
                       {chunks::grid, grid}});
}

TextChunks elevationTexts(const MapPlace& place) {
  return pictureTexts(
      "Heights above the ground in mm, seen from above: 0 means unseen, seen cells are 1 to 65535 (what is lower "
      "than 1 mm is 1). World x grows by nadir:cell-mm from column to column, world y from row to row.",
      {{chunks::units, elevationUnits},
       {chunks::noValue, "0"},
       {chunks::cell, format("%g", place.cellMm)},
       {chunks::left, format("%.3f", place.leftMm)},
       {chunks::top, format("%.3f", place.topMm)}});
}

}  // namespace nadir::tool
