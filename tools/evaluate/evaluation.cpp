// Errors of grids of measurements, and which of the truth a matcher can know.
#include "tools/evaluate/evaluation.hpp"

#include <cmath>

#include "tools/base/statistics.hpp"

#include "tools/base/known_values.hpp"

namespace nadir::tool {

namespace {

using Values = std::vector<double>;

template <class Term>
double mean(const Values& values, Term term) {
  double sum = 0;
  for (const double v : values) sum += term(v);
  return values.empty() ? noNumber : sum / static_cast<double>(values.size());
}

double shareAbove(const Values& values, double limit) {
  return mean(values, [limit](double v) { return std::abs(v) > limit ? 1.0 : 0.0; });
}

Values knownValues(const Grid<float>& grid) {
  Values values;
  std::copy_if(grid.pixels.begin(), grid.pixels.end(), std::back_inserter(values),
               [](float v) { return !std::isnan(v); });
  return values;
}

double absolute(double v) { return std::abs(v); }

Values absolutes(Values values) {
  for (double& v : values) v = absolute(v);
  return values;
}

// The largest truth that meets each right column, rounded.
std::vector<float> nearestByRightColumn(const float* truth, uint32_t width) {
  std::vector<float> nearest(width, 0.0f);
  for (uint32_t x = 0; x < width; ++x) {
    const float right = static_cast<float>(x) - truth[x];
    if (!(right >= 0)) continue;
    float& best = nearest[static_cast<size_t>(std::lround(right))];
    best = std::max(best, truth[x]);
  }
  return nearest;
}

// A pixel between two right columns may be hidden at either, and rounding may have moved what hides it.
bool isVisible(float truth, uint32_t x, const std::vector<float>& nearest) {
  const float right = static_cast<float>(x) - truth;
  if (!(right >= 0)) return false;
  const auto column = static_cast<size_t>(std::lround(right));
  const auto from = nearest.begin() + static_cast<std::ptrdiff_t>(column > 0 ? column - 1 : 0);
  const auto to = nearest.begin() + static_cast<std::ptrdiff_t>(std::min(column + 2, nearest.size()));
  return *std::max_element(from, to) <= truth + 1;
}

}  // namespace

Grid<float> visibleInRight(const Grid<float>& truth) {
  Grid<float> visible = truth;
  for (uint32_t y = 0; y < truth.height; ++y) {
    const std::vector<float> nearest = nearestByRightColumn(truth.row(y), truth.width);
    for (uint32_t x = 0; x < truth.width; ++x)
      if (!isVisible(truth.at(x, y), x, nearest)) visible.at(x, y) = std::nanf("");
  }
  return visible;
}

Grid<float> errors(const Grid<float>& values, const Grid<float>& truth) {
  Grid<float> errors(values.width, values.height);
  for (size_t i = 0; i < errors.pixels.size(); ++i) errors.pixels[i] = values.pixels[i] - truth.pixels[i];
  return errors;
}

Evaluation evaluate(const Grid<float>& values, const Grid<float>& truth) {
  const Values error = knownValues(errors(values, truth));
  Evaluation e;
  e.pixels = truth.pixels.size();
  e.truth = countKnown(truth);
  e.compared = error.size();
  e.density = shareOf(e.compared, e.truth);
  e.bad05 = shareAbove(error, 0.5);
  e.bad1 = shareAbove(error, 1);
  e.bad2 = shareAbove(error, 2);
  e.mean = mean(error, [](double v) { return v; });
  e.median = medianOf(error);
  e.meanAbsolute = mean(error, absolute);
  e.medianAbsolute = medianOf(absolutes(error));
  e.percentile95 = percentileOf(absolutes(error), 95);
  e.rms = std::sqrt(mean(error, [](double v) { return v * v; }));
  return e;
}

}  // namespace nadir::tool
