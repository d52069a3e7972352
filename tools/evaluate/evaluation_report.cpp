// The figures of an evaluation, as a table for people and as JSON for programs.
#include "tools/evaluate/evaluation_report.hpp"

#include "tools/base/json_value.hpp"
#include "tools/base/statistics.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

void addErrors(Table& table, const Evaluation& e, const char* unit, int decimals) {
  table.line("mean (bias)", e.mean, unit, decimals);
  table.line("median", e.median, unit, decimals);
  table.line("mean absolute", e.meanAbsolute, unit, decimals);
  table.line("median absolute", e.medianAbsolute, unit, decimals);
  table.line("95 % are within", e.percentile95, unit, decimals);
  table.line("root mean square", e.rms, unit, decimals);
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
  const Json json = {{"pixels", e.pixels},
                     {"truth_pixels", e.truth},
                     {"compared_pixels", e.compared},
                     {"density", significantNumber(e.density)},
                     {"bad_0.5", significantNumber(e.bad05)},
                     {"bad_1", significantNumber(e.bad1)},
                     {"bad_2", significantNumber(e.bad2)},
                     {"mean", significantNumber(e.mean)},
                     {"median", significantNumber(e.median)},
                     {"mean_absolute", significantNumber(e.meanAbsolute)},
                     {"median_absolute", significantNumber(e.medianAbsolute)},
                     {"percentile_95_absolute", significantNumber(e.percentile95)},
                     {"rms", significantNumber(e.rms)}};
  return json.dump(2) + "\n";
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
  const Json json = {{"cells", e.pixels},
                     {"truth_cells", e.truth},
                     {"compared_cells", e.compared},
                     {"seen_share", significantNumber(e.density)},
                     {"mean_mm", significantNumber(e.mean)},
                     {"median_mm", significantNumber(e.median)},
                     {"mean_absolute_mm", significantNumber(e.meanAbsolute)},
                     {"median_absolute_mm", significantNumber(e.medianAbsolute)},
                     {"percentile_95_absolute_mm", significantNumber(e.percentile95)},
                     {"rms_mm", significantNumber(e.rms)}};
  return json.dump(2) + "\n";
}

}  // namespace nadir::tool
