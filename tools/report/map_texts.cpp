// The texts of maps beyond those that every elevation map has.
#include "tools/report/map_texts.hpp"

#include "tools/base/text.hpp"
#include "tools/pictures/chunks.hpp"

namespace nadir::tool {

TextChunks mapTexts(const ground::MapFrame& frame, const ground::CellRule& rule) {
  TextChunks texts = elevationTexts(placeOf(frame));
  texts["nadir:percentile"] = format("%g", rule.percentile);
  return texts;
}

TextChunks regionTexts(const ground::MapFrame& frame, const ground::CellRule& rule) {
  TextChunks texts = mapTexts(frame, rule);
  texts[chunks::units] = regionUnits;
  texts[chunks::description] =
      "The region that each cell of the elevation map belongs to: 0 none; summary.json tells the others.";
  return texts;
}

}  // namespace nadir::tool
