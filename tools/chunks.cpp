#include "chunks.hpp"

#include <nadir/nadir.h>

#include "text.hpp"

namespace nadir::tool {

std::string software() { return format("nadir %s", nadir_version()); }

TextChunks disparityTexts(unsigned scale, const std::string& grid) {
  return {{chunks::scale, std::to_string(scale)},
          {chunks::noValue, "0"},
          {chunks::units, format("1/%u pixel", scale)},
          {chunks::grid, grid},
          {"Description", format("Disparities of the %s picture: value / %u is the disparity in pixels, 0 means no "
                                 "value; right column = left column - disparity.",
                                 grid.c_str(), scale)},
          {"Software", software()}};
}

}  // namespace nadir::tool
