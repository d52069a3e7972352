// The words and members of a checkup, and its colours.
#include "tools/report/check_report.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/statistics.hpp"
#include "tools/base/text.hpp"
#include "tools/draw/canvas.hpp"
#include "tools/draw/plot.hpp"
#include "tools/pictures/chunks.hpp"
#include "tools/report/json_parts.hpp"

namespace nadir::tool {

namespace {

double inPercent(double share) { return 100 * share; }

// ---- the sentence ----

std::string sizesInWords(const CheckedPair& p) {
  const bool agree = sameSize(p.left, p.right);
  const std::string left = sizeText(p.left.width, p.left.height);
  if (agree)
    return format("the pictures are %s, the camera file is for %s", left.c_str(),
                  sizeText(p.wantedWidth, p.wantedHeight).c_str());
  return format("the left picture is %s pixels, the right one %s", left.c_str(),
                sizeText(p.right.width, p.right.height).c_str());
}

std::string lightInWords(const NadirCheckup& c) {
  return format(
      "the right picture is %.2f times as bright as the left one; %.0f and %.0f %% of their pixels are dark, %.0f and "
      "%.0f %% overexposed",
      c.gain, inPercent(c.dark_left), inPercent(c.dark_right), inPercent(c.clipped_left), inPercent(c.clipped_right));
}

std::string rowsInWords(const NadirCheckup& c) {
  return format("the left picture shows everything %.1f rows further %s than the right one", std::fabs(c.row_offset_px),
                c.row_offset_px < 0 ? "up" : "down");
}

std::string turnInWords(const NadirCheckup& c) {
  return format("the left picture is turned by %.2f degrees %s against the right one", std::fabs(c.turn_deg),
                c.turn_deg < 0 ? "counterclockwise" : "clockwise");
}

std::string misfitInWords(const NadirCheckup& c) {
  if (std::isnan(c.turn_deg)) return "no shift, turn or scale of rows makes the pictures fit";
  return format(
      "rows fit with an offset of %.1f pixels, a turn of %.2f degrees, a scale of %.2f %% and %.2f pixels of bend; "
      "%.0f %% can then be matched",
      c.row_offset_px, c.turn_deg, c.scale_percent, c.bend_px, inPercent(c.matched_aligned));
}

std::string rangeInWords(const CheckedPair& p) {
  const NadirCheckup& c = p.checkup;
  return format("disparities go from %.0f to %.0f pixels: %.1f %% lie beyond %u and %.1f %% below 0",
                c.least_disparity_px, c.largest_disparity_px, inPercent(c.nearer), p.range, inPercent(c.behind));
}

std::string causeInWords(const CheckedPair& p) {
  const NadirCheckup& c = p.checkup;
  switch (c.verdict) {
    case NADIR_VERDICT_SIZE: return sizesInWords(p);
    case NADIR_VERDICT_SAME: return "both pictures show everything in the same place";
    case NADIR_VERDICT_EXPOSURE: return lightInWords(c);
    case NADIR_VERDICT_TEXTURELESS:
      return format("intensities vary by %.0f and %.0f over 16 pixels, with noise of %.0f and %.0f", c.texture_left,
                    c.texture_right, c.noise_left, c.noise_right);
    case NADIR_VERDICT_BLURRED:
      return format("edges are blurred by %.1f pixels in the left picture, %.1f in the right one", c.blur_left_px,
                    c.blur_right_px);
    case NADIR_VERDICT_SWAPPED: return format("%.0f %% of the disparities lie below 0", inPercent(c.behind));
    case NADIR_VERDICT_OFFSET: return rowsInWords(c);
    case NADIR_VERDICT_TURNED: return turnInWords(c);
    case NADIR_VERDICT_UNRECTIFIED: return misfitInWords(c);
    case NADIR_VERDICT_RANGE: return rangeInWords(p);
    default:
      return format("rows agree to %.2f pixels, and %.0f %% can be matched", std::fabs(c.row_offset_px),
                    inPercent(c.matched));
  }
}

// ---- the picture ----

// Blocks of the small pictures, as large as they are in the whole one.
constexpr uint32_t blockSide = 8;

Grid<float> rowsOf(const CheckedPair& p) {
  Grid<float> rows(p.right.width, p.right.height, NAN);
  const uint32_t side = blockSide << p.checkup.halvings;
  for (size_t i = 0; i < p.checkup.offset_count; ++i) {
    const NadirRowOffset& o = p.checkup.offsets[i];
    const auto left = static_cast<uint32_t>(std::max(0.0, o.column - (side - 1) / 2.0));
    const auto top = static_cast<uint32_t>(std::max(0.0, o.row - (side - 1) / 2.0));
    for (uint32_t y = top; y < std::min(top + side, rows.height); ++y)
      for (uint32_t x = left; x < std::min(left + side, rows.width); ++x) rows.at(x, y) = o.rows;
  }
  return rows;
}

// The ends of the colours: what all but a few blocks lie within, and never less than a row.
double farthest(const NadirCheckup& c) {
  std::vector<double> sizes;
  for (size_t i = 0; i < c.offset_count; ++i) sizes.push_back(std::fabs(double{c.offsets[i].rows}));
  return sizes.empty() ? 1 : std::max(1.0, std::ceil(percentileOf(sizes, 95)));
}

Grid<Rgb> shaded(Grid<Rgb> colours, const Grid<float>& rows, const Grid<uint16_t>& picture) {
  const double brightest = std::max<double>(1, *std::max_element(picture.pixels.begin(), picture.pixels.end()));
  for (uint32_t y = 0; y < picture.height; ++y)
    for (uint32_t x = 0; x < picture.width; ++x) {
      const auto grey = static_cast<uint8_t>(255 * picture.at(x, y) / brightest);
      const bool known = !std::isnan(rows.at(x, y));
      colours.at(x, y) = blended({grey, grey, grey}, colours.at(x, y), known ? 0.55 : 0);
    }
  return colours;
}

// ---- members ----

Json pictureJson(double mean, double dark, double clipped, double noise, double texture, double blurPx) {
  return {{"mean", measuredJson(mean)},   {"dark_share", measuredJson(dark)}, {"clipped_share", measuredJson(clipped)},
          {"noise", measuredJson(noise)}, {"texture", measuredJson(texture)}, {"blur_px", measuredJson(blurPx)}};
}

Json rowsJson(const NadirCheckup& c) {
  return {{"offset_px", measuredJson(c.row_offset_px)},
          {"offset_left_px", measuredJson(c.row_offset_left_px)},
          {"offset_middle_px", measuredJson(c.row_offset_middle_px)},
          {"offset_right_px", measuredJson(c.row_offset_right_px)},
          {"offset_top_px", measuredJson(c.row_offset_top_px)},
          {"offset_centre_px", measuredJson(c.row_offset_centre_px)},
          {"offset_bottom_px", measuredJson(c.row_offset_bottom_px)},
          {"turn_deg", measuredJson(c.turn_deg)},
          {"scale_percent", measuredJson(c.scale_percent)},
          {"bend_px", measuredJson(c.bend_px)}};
}

Json disparityJson(const CheckedPair& p) {
  const NadirCheckup& c = p.checkup;
  return {{"least_px", measuredJson(c.least_disparity_px)},
          {"largest_px", measuredJson(c.largest_disparity_px)},
          {"range_px", p.range},
          {"asked_range_px", c.range ? Json(c.range) : Json()},
          {"nearer_share", measuredJson(c.nearer)},
          {"behind_share", measuredJson(c.behind)}};
}

// ---- lines ----

// What could not be measured has no line.
void addLine(Table& table, const char* label, double value, const char* remark, int decimals) {
  if (!std::isnan(value)) table.line(label, value, remark, decimals);
}

void addLight(Table& table, const NadirCheckup& c) {
  addLine(table, "mean intensity, left", c.mean_left, "of 4095 in 12 bits", 0);
  addLine(table, "mean intensity, right", c.mean_right, "", 0);
  addLine(table, "gain, right to left", c.gain, "times; named from 1.8", 2);
  addLine(table, "dark, left", inPercent(c.dark_left), "% of the pixels; named from 60", 1);
  addLine(table, "dark, right", inPercent(c.dark_right), "%", 1);
  addLine(table, "overexposed, left", inPercent(c.clipped_left), "% of the pixels; named from 10", 1);
  addLine(table, "overexposed, right", inPercent(c.clipped_right), "%", 1);
  addLine(table, "noise, left", c.noise_left, "intensity", 1);
  addLine(table, "noise, right", c.noise_right, "", 1);
  addLine(table, "texture, left", c.texture_left, "intensity over 16 pixels; named below 1.7 % of the mean", 1);
  addLine(table, "texture, right", c.texture_right, "", 1);
  addLine(table, "blur, left", c.blur_left_px, "pixels; named from 1.35", 2);
  addLine(table, "blur, right", c.blur_right_px, "", 2);
}

void addRows(Table& table, const NadirCheckup& c) {
  addLine(table, "row offset", c.row_offset_px, "pixels, positive: left further down; named from 0.6", 2);
  addLine(table, "  left third", c.row_offset_left_px, "", 2);
  addLine(table, "  middle", c.row_offset_middle_px, "", 2);
  addLine(table, "  right third", c.row_offset_right_px, "", 2);
  addLine(table, "  upper third", c.row_offset_top_px, "", 2);
  addLine(table, "  centre", c.row_offset_centre_px, "", 2);
  addLine(table, "  lower third", c.row_offset_bottom_px, "", 2);
  addLine(table, "turn of the left picture", c.turn_deg, "degrees clockwise; named from 0.3", 2);
  addLine(table, "scale of the left picture", c.scale_percent, "% higher; named from 0.4", 2);
  addLine(table, "bend", c.bend_px, "pixels left over; named from 0.4", 2);
}

void addMatching(Table& table, const CheckedPair& p) {
  const NadirCheckup& c = p.checkup;
  addLine(table, "matched", inPercent(c.matched), "% of the pixels as the pictures are", 1);
  addLine(table, "  with rows aligned", inPercent(c.matched_aligned), "%", 1);
  addLine(table, "in the same place", inPercent(c.unmoved), "% of the blocks; named from 80", 1);
  addLine(table, "least disparity", c.least_disparity_px, "pixels; 2 % lie below", 1);
  addLine(table, "largest disparity", c.largest_disparity_px, "pixels; 2 % lie above", 1);
  addLine(table, "beyond the range", inPercent(c.nearer),
          format("%% of the blocks, beyond %u pixels; named from 1", p.range).c_str(), 1);
  addLine(table, "below 0", inPercent(c.behind), "% of the blocks; named from 4", 1);
}

}  // namespace

std::string verdictSentence(const CheckedPair& p) {
  return format("%s: %s.", nadir_verdict_name(p.checkup.verdict), causeInWords(p).c_str());
}

std::string checkTable(const CheckedPair& p) {
  const NadirCheckup& c = p.checkup;
  if (c.verdict == NADIR_VERDICT_SIZE) return "";
  Table table;
  table.heading("finding", "value");
  addLight(table, c);
  addRows(table, c);
  addMatching(table, p);
  const std::string size = sizeText(p.left.width >> c.halvings, p.left.height >> c.halvings);
  const std::string halved = c.halvings ? "Halved to " + size + " pixels to compare rows.\n" : "";
  return "\n" + table.text() + halved;
}

Json checkJson(const CheckedPair& p) {
  const NadirCheckup& c = p.checkup;
  return {{"verdict", nadir_verdict_name(c.verdict)},
          {"sentence", verdictSentence(p)},
          {"advice", nadir_verdict_advice(c.verdict)},
          {"width_px", p.left.width},
          {"height_px", p.left.height},
          {"halvings", c.halvings},
          {"gain", measuredJson(c.gain)},
          {"left", pictureJson(c.mean_left, c.dark_left, c.clipped_left, c.noise_left, c.texture_left, c.blur_left_px)},
          {"right",
           pictureJson(c.mean_right, c.dark_right, c.clipped_right, c.noise_right, c.texture_right, c.blur_right_px)},
          {"rows", rowsJson(c)},
          {"matched_share", measuredJson(c.matched)},
          {"aligned_share", measuredJson(c.matched_aligned)},
          {"unmoved_share", measuredJson(c.unmoved)},
          {"disparities", disparityJson(p)}};
}

Bytes encodeCheckPlot(const CheckedPair& p) {
  const Grid<float> rows = rowsOf(p);
  const double far = farthest(p.checkup);
  const Grid<Rgb> colours = plot(rows, {-far, far, blueRed, "rows"});
  return encodePng(shaded(colours, rows, p.right),
                   pictureTexts("Rows by which the left picture shows the same further down, over the right picture."));
}

}  // namespace nadir::tool
