// Small texts on boxes, placed so that none hides another.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/canvas.hpp"

namespace nadir::tool {

// All signs of one picture. They stay within `room`, where a longer text is cut.
class Signs {
 public:
  Signs(Grid<Rgb>& picture, const Rect& room) : picture_(picture), room_(room) {}

  // Draws a sign around the spot, whatever is there.
  void drawAt(const Spot& middle, const std::string& text, uint32_t scale, Rgb box);

  // Draws it as near above or below the spot as the signs that are there leave room, and nowhere if they leave none.
  void drawNear(const Spot& middle, const std::string& text, uint32_t scale, Rgb box);

 private:
  Rect boxAround(const Spot& middle, const std::string& text, uint32_t scale) const;
  bool isFree(const Rect& box) const;
  void draw(const Rect& box, const std::string& text, uint32_t scale, Rgb colour);

  Grid<Rgb>& picture_;
  Rect room_;
  std::vector<Rect> taken_;
};

}  // namespace nadir::tool
