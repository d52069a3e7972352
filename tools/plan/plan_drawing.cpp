// Draws both views to one scale, one above the other.
#include "tools/plan/plan_drawing.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

constexpr double width = 720, margin = 60, gapBetween = 100;  // pixels
constexpr double roomAround = 0.4;                            // of the map's longer side, which is drawn around it
constexpr double textRow = 14;                                // of text

struct Box {
  double left, right, low, high;  // mm
};

// Millimetres to pixels, `up` growing upwards.
struct Scale {
  double perMm, left, bottom, x0, up0;
  double x(double mm) const { return left + (mm - x0) * perMm; }
  double y(double up) const { return bottom - (up - up0) * perMm; }
};

std::string line(const Scale& s, double x1, double up1, double x2, double up2, const char* style) {
  return format("<path d=\"M%.1f %.1fL%.1f %.1f\" fill=\"none\" %s/>\n", s.x(x1), s.y(up1), s.x(x2), s.y(up2), style);
}

std::string label(double x, double y, const char* anchor, const std::string& text) {
  return format("<text x=\"%.1f\" y=\"%.1f\" text-anchor=\"%s\">%s</text>\n", x, y, anchor, text.c_str());
}

// World x, and how far before the camera: the map, both cameras and some room around them.
Box groundBox(const Plan& plan) {
  const Camera& camera = plan.camera;
  const GroundPoint corner = mapCorner(camera);
  const double w = 1.0 * camera.cellMm * camera.mapWidthCells, h = 1.0 * camera.cellMm * camera.mapHeightCells;
  const double room = roomAround * std::max(w, h);
  return {std::min(0.0, corner.xMm) - room, std::max(camera.baselineMm, corner.xMm + w) + room,
          std::min(0.0, -corner.yMm - h) - room, std::max(0.0, -corner.yMm) + room};
}

// ---- from the side: forward to the right, heights upwards ----

Box sideBox(const Plan& plan) {
  const Box ground = groundBox(plan);
  return {ground.low, ground.high, 0, std::max(plan.camera.heightMm, plan.tallestMm)};
}

std::string sideView(const Plan& plan, const Box& box, const Scale& s) {
  const double height = plan.camera.heightMm;
  std::string text = line(s, box.left, 0, box.right, 0, "stroke=\"#000\" stroke-width=\"2\"");
  text += line(s, box.left, plan.tallestMm, box.right, plan.tallestMm, "stroke=\"#d62728\" stroke-dasharray=\"6 4\"");
  text += label(s.x(box.right), s.y(plan.tallestMm) - 4, "end", format("tallest %.0f mm", plan.tallestMm));
  double under = s.y(0) + textRow;
  for (const PlannedPlace& place : plan.places) {
    const double forward = place.forwardMm;
    text += line(s, 0, height, forward, 0, "stroke=\"#1f77b4\"");
    text +=
        line(s, forward, 0, forward, place.greatestHeightMm, "stroke=\"#2ca02c\" stroke-width=\"4\" opacity=\"0.6\"");
    text += label(s.x(forward), under, "middle", format("%s %.0f mm: %.1f mm", place.name, forward, place.stepMm));
    under += textRow;
  }
  text += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"5\"/>\n", s.x(0), s.y(height));
  return text + label(s.x(0) + 8, s.y(height) - 6, "start", format("%.0f mm, tilt %g", height, plan.camera.tiltDeg));
}

// ---- from above: world x to the right, forward upwards ----

std::string topView(const Plan& plan, const Box& box, const Scale& s) {
  std::string path;
  for (const GroundPoint& p : plan.outline)
    path += format("%c%.1f %.1f", path.empty() ? 'M' : 'L', s.x(p.xMm), s.y(-p.yMm));
  std::string text =
      format("<clipPath id=\"view\"><rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"/></clipPath>\n",
             s.x(box.left), s.y(box.high), (box.right - box.left) * s.perMm, (box.high - box.low) * s.perMm);
  text +=
      format("<path d=\"%sZ\" clip-path=\"url(#view)\" fill=\"#1f77b4\" fill-opacity=\"0.15\" stroke=\"#1f77b4\"/>\n",
             path.c_str());
  const Camera& camera = plan.camera;
  const GroundPoint corner = mapCorner(camera);
  const double w = 1.0 * camera.cellMm * camera.mapWidthCells, h = 1.0 * camera.cellMm * camera.mapHeightCells;
  text += format("<rect x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\" fill=\"none\" stroke=\"#ff7f0e\"/>\n",
                 s.x(corner.xMm), s.y(-corner.yMm), w * s.perMm, h * s.perMm);
  text += label(s.x(corner.xMm), s.y(-corner.yMm) - 4, "start",
                format("map of %.0f x %.0f mm, cells of %u mm", w, h, camera.cellMm));
  for (const double x : {0.0, camera.baselineMm})
    text += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"4\"/>\n", s.x(x), s.y(0));
  for (const PlannedPlace& place : plan.places)
    text += format("<circle cx=\"%.1f\" cy=\"%.1f\" r=\"3\" fill=\"#2ca02c\"/>\n", s.x(place.ground.xMm),
                   s.y(place.forwardMm));
  return text;
}

double heightIn(const Box& box, double perMm) { return (box.high - box.low) * perMm; }

}  // namespace

Bytes encodePlanDrawing(const Plan& plan) {
  const Box side = sideBox(plan), top = groundBox(plan);
  const double widest = std::max({side.right - side.left, top.right - top.left, 1.0});
  const double perMm = (width - 2 * margin) / widest;
  const double sideBottom = margin + heightIn(side, perMm), topBottom = sideBottom + gapBetween + heightIn(top, perMm);
  const double height = topBottom + margin;
  std::string text = format(
      "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 %g %.0f\" font-family=\"sans-serif\" font-size=\"12\">\n"
      "<rect width=\"100%%\" height=\"100%%\" fill=\"#fff\"/>\n",
      width, height);
  text += label(8, 18, "start",
                "From the side: mm before the camera, height for 1/16 pixel; green: the greatest height measured");
  text += sideView(plan, side, {perMm, margin, sideBottom, side.left, side.low});
  text += label(8, sideBottom + gapBetween - 20, "start", "From above: ground that both pictures show, and the map");
  text += topView(plan, top, {perMm, margin, topBottom, top.left, top.low});
  return bytesOf(text + "</svg>\n");
}

}  // namespace nadir::tool
