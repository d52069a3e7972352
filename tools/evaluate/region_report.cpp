// The verdicts on objects and regions, as a table for people and as JSON for programs.
#include "tools/evaluate/region_report.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/json_value.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

// How far the objects that were found are off; NaN where none was found.
struct Errors {
  double positionMean = std::nan(""), positionLargest = std::nan("");
  double heightMean = std::nan(""), heightMeanAbsolute = std::nan(""), heightLargest = std::nan("");
};

// The same of the areas of those that are whole: a part says nothing of its size.
struct AreaErrors {
  double mean = std::nan(""), meanAbsolute = std::nan("");
};

AreaErrors areaErrorsOf(const RegionEvaluation& evaluation) {
  double n = 0, sum = 0, absolute = 0;
  for (const Judged& j : evaluation.objects) {
    if (j.verdict != Verdict::found || j.cutOff) continue;
    n += 1;
    sum += j.area;
    absolute += std::abs(j.area);
  }
  return {sum / n, absolute / n};
}

Errors errorsOf(const RegionEvaluation& evaluation) {
  const auto n = static_cast<double>(evaluation.count(Verdict::found));
  if (n == 0) return {};
  Errors e{0, 0, 0, 0, 0};
  for (const Judged& j : evaluation.objects) {
    if (j.verdict != Verdict::found) continue;
    e.positionMean += j.positionMm / n;
    e.positionLargest = std::max(e.positionLargest, j.positionMm);
    e.heightMean += j.heightMm / n;
    e.heightMeanAbsolute += std::abs(j.heightMm) / n;
    e.heightLargest = std::max(e.heightLargest, std::abs(j.heightMm));
  }
  return e;
}

std::string remark(const Judged& j) {
  std::string text = nameOf(j.verdict);
  for (const uint16_t region : j.regions)
    text += format(" %s %u", region == j.regions.front() ? "as region" : "and", region);
  if (j.verdict == Verdict::found)
    text += format("; centre off by %.0f mm, height by %+.0f mm", j.positionMm, j.heightMm);
  if (j.cutOff) return text + "; cut off by the picture's edge";
  return j.verdict == Verdict::found ? text + format(", area by %+.0f %%", 100 * j.area) : text;
  return text;
}

// Tenths of a millimetre are far below what is measured.
Json rounded(double value) { return roundedNumber(value, 10); }
Json roundedShare(double value) { return roundedNumber(value, 1000); }

Json objectJson(const Judged& j) {
  const bool found = j.verdict == Verdict::found;
  return {{"region", j.object.number},
          {"kind", j.object.kind},
          {"verdict", nameOf(j.verdict)},
          {"labels", j.regions},
          {"position_error_mm", found ? rounded(j.positionMm) : Json()},
          {"height_error_mm", found ? rounded(j.heightMm) : Json()},
          {"cut_off", j.cutOff},
          {"area_error", found && !j.cutOff ? roundedShare(j.area) : Json()}};
}

}  // namespace

std::string regionTable(const RegionEvaluation& evaluation) {
  const Errors e = errorsOf(evaluation);
  const AreaErrors areas = areaErrorsOf(evaluation);
  Table table;
  table.line("objects", static_cast<double>(evaluation.objects.size()), "", 0);
  for (const Verdict verdict : {Verdict::found, Verdict::missed, Verdict::split, Verdict::merged})
    table.line(nameOf(verdict), static_cast<double>(evaluation.count(verdict)), "", 0);
  table.line("missed, but cut off", static_cast<double>(evaluation.missedCutOff()), "by the picture's edge", 0);
  table.line("false regions", static_cast<double>(evaluation.falseRegions.size()), "", 0);
  table.gap();
  table.line("position, mean error", e.positionMean, "mm", 0);
  table.line("position, largest error", e.positionLargest, "mm", 0);
  table.line("height, mean error (bias)", e.heightMean, "mm", 0);
  table.line("height, mean absolute error", e.heightMeanAbsolute, "mm", 0);
  table.line("height, largest error", e.heightLargest, "mm", 0);
  table.line("area, mean error (bias)", 100 * areas.mean, "%", 0);
  table.line("area, mean absolute error", 100 * areas.meanAbsolute, "%", 0);
  table.gap();
  for (const Judged& j : evaluation.objects)
    table.line(format("object %u, %s", j.object.number, j.object.kind.c_str()), j.object.highestMm,
               "mm high: " + remark(j), 0);
  return table.text();
}

std::string regionJson(const RegionEvaluation& evaluation) {
  const Errors e = errorsOf(evaluation);
  const AreaErrors areas = areaErrorsOf(evaluation);
  Json json = {{"objects", evaluation.objects.size()}};
  for (const Verdict verdict : {Verdict::found, Verdict::missed, Verdict::split, Verdict::merged})
    json[nameOf(verdict)] = evaluation.count(verdict);
  json["missed_cut_off"] = evaluation.missedCutOff();
  json["false_regions"] = evaluation.falseRegions.size();
  json["position_mean_mm"] = rounded(e.positionMean);
  json["position_largest_mm"] = rounded(e.positionLargest);
  json["height_mean_mm"] = rounded(e.heightMean);
  json["height_mean_absolute_mm"] = rounded(e.heightMeanAbsolute);
  json["height_largest_mm"] = rounded(e.heightLargest);
  json["area_mean"] = roundedShare(areas.mean);
  json["area_mean_absolute"] = roundedShare(areas.meanAbsolute);
  json["verdicts"] = Json::array();
  for (const Judged& j : evaluation.objects) json["verdicts"].push_back(objectJson(j));
  return json.dump(2) + "\n";
}

}  // namespace nadir::tool
