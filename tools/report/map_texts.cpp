// The texts of maps beyond those that every elevation map has.
#include "tools/report/map_texts.hpp"

#include "tools/base/text.hpp"
#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

MapPlace placeOf(const StereoCtx& context) {
  return {static_cast<double>(context.mapParams.cellSizeX), context.lowerLeft.x, context.lowerLeft.y};
}

TextChunks mapTexts(const StereoCtx& context, double percentile) {
  TextChunks texts = elevationTexts(placeOf(context));
  texts["nadir:percentile"] = format("%g", percentile);
  return texts;
}

TextChunks regionTexts(const StereoCtx& context, double percentile) {
  TextChunks texts = mapTexts(context, percentile);
  texts[chunks::units] = regionUnits;
  texts[chunks::description] =
      "The region that each cell of the elevation map belongs to: 0 none; summary.json tells the others.";
  return texts;
}

}  // namespace nadir::tool
