#include "tools/evaluate/evaluation_report.hpp"

#include <cmath>
#include <utility>
#include <vector>

#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

double percentOf(size_t part, size_t whole) {
  return whole == 0 ? std::nan("") : 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

void addErrors(Table& table, const Evaluation& e, const char* unit, int decimals) {
  table.line("mean (bias)", e.mean, unit, decimals);
  table.line("median", e.median, unit, decimals);
  table.line("mean absolute", e.meanAbsolute, unit, decimals);
  table.line("median absolute", e.medianAbsolute, unit, decimals);
  table.line("95 % are within", e.percentile95, unit, decimals);
  table.line("root mean square", e.rms, unit, decimals);
}

// JSON has no NaN.
std::string jsonNumber(double value) { return std::isnan(value) ? "null" : format("%.9g", value); }

using Counts = std::vector<std::pair<const char*, size_t>>;
using Numbers = std::vector<std::pair<const char*, double>>;

std::string jsonObject(const Counts& counts, const Numbers& numbers) {
  std::string text;
  for (const auto& [name, count] : counts) text += format("%s\n  \"%s\": %zu", text.empty() ? "{" : ",", name, count);
  for (const auto& [name, value] : numbers) text += format(",\n  \"%s\": %s", name, jsonNumber(value).c_str());
  return text + "\n}\n";
}

}  // namespace

std::string disparityTable(const Evaluation& e, const std::string& size) {
  Table table;
  table.heading("pixels, " + size, "");
  table.line("truth known", percentOf(e.truth, e.pixels), "% of all pixels", 2);
  table.line("density", 100 * e.density, "% of the pixels with truth have a value", 2);
  table.line("bad-0.5", 100 * e.bad05, "% of the pixels with both are off by more than 0.5 pixel", 2);
  table.line("bad-1", 100 * e.bad1, "% ... by more than 1 pixel", 2);
  table.line("bad-2", 100 * e.bad2, "% ... by more than 2 pixels", 2);
  table.gap();
  table.heading("error, disparity - truth", "");
  addErrors(table, e, "pixels", 3);
  return table.text();
}

std::string disparityJson(const Evaluation& e) {
  return jsonObject({{"pixels", e.pixels}, {"truth_pixels", e.truth}, {"compared_pixels", e.compared}},
                    {{"density", e.density},
                     {"bad_0.5", e.bad05},
                     {"bad_1", e.bad1},
                     {"bad_2", e.bad2},
                     {"mean", e.mean},
                     {"median", e.median},
                     {"mean_absolute", e.meanAbsolute},
                     {"median_absolute", e.medianAbsolute},
                     {"percentile_95_absolute", e.percentile95},
                     {"rms", e.rms}});
}

std::string heightTable(const Evaluation& e, const std::string& size) {
  Table table;
  table.heading("cells, " + size, "");
  table.line("truth known", percentOf(e.truth, e.pixels), "% of all cells", 2);
  table.line("seen", 100 * e.density, "% of the cells with truth have a height", 2);
  table.gap();
  table.heading("error, height - truth", "");
  addErrors(table, e, "mm", 1);
  return table.text();
}

std::string heightJson(const Evaluation& e) {
  return jsonObject({{"cells", e.pixels}, {"truth_cells", e.truth}, {"compared_cells", e.compared}},
                    {{"seen_share", e.density},
                     {"mean_mm", e.mean},
                     {"median_mm", e.median},
                     {"mean_absolute_mm", e.meanAbsolute},
                     {"median_absolute_mm", e.medianAbsolute},
                     {"percentile_95_absolute_mm", e.percentile95},
                     {"rms_mm", e.rms}});
}

}  // namespace nadir::tool
