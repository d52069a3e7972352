// Finds a free place for each sign, and draws it.
#include "tools/draw/signs.hpp"

#include <algorithm>

namespace nadir::tool {

namespace {

bool overlap(const Rect& a, const Rect& b) {
  return a.left < b.left + b.width && b.left < a.left + a.width && a.top < b.top + b.height && b.top < a.top + a.height;
}

std::string cutTo(uint32_t pixels, std::string text, uint32_t scale) {
  while (!text.empty() && scale * (textWidth(text) + 3) > pixels) text.pop_back();
  return text;
}

uint32_t movedInside(double wanted, uint32_t size, uint32_t begin, uint32_t room) {
  return begin + static_cast<uint32_t>(std::clamp<double>(wanted - size / 2.0 - begin, 0, room - std::min(size, room)));
}

}  // namespace

Rect Signs::boxAround(const Spot& middle, const std::string& text, uint32_t scale) const {
  const uint32_t width = scale * (textWidth(text) + 3), height = scale * (textHeight + 2);
  return {movedInside(middle.x, width, room_.left, room_.width), movedInside(middle.y, height, room_.top, room_.height),
          width, height};
}

bool Signs::isFree(const Rect& box) const {
  return std::none_of(taken_.begin(), taken_.end(), [&box](const Rect& other) { return overlap(box, other); });
}

void Signs::draw(const Rect& box, const std::string& text, uint32_t scale, Rgb colour) {
  fill(picture_, box, colour);
  drawText(picture_, box.left + 2 * scale, box.top + 2 * scale, text, scale);
  taken_.push_back(box);
}

void Signs::drawAt(const Spot& middle, const std::string& text, uint32_t scale, Rgb box) {
  const std::string fitting = cutTo(room_.width, text, scale);
  draw(boxAround(middle, fitting, scale), fitting, scale, box);
}

void Signs::drawNear(const Spot& middle, const std::string& text, uint32_t scale, Rgb box) {
  const std::string fitting = cutTo(room_.width, text, scale);
  for (double away = 0; away < room_.height; ++away)
    for (const double y : {middle.y + away, middle.y - away}) {
      const Rect place = boxAround({middle.x, y}, fitting, scale);
      if (isFree(place)) return draw(place, fitting, scale, box);
    }
}

}  // namespace nadir::tool
