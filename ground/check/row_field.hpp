// How many rows further down one picture shows what the other one shows, as a function of the place.
#pragma once

#include <cstddef>
#include <cstdint>

namespace nadir::ground {

// A place in a picture, counted from its middle in halves of its width, so that both directions have one unit.
struct Place {
  double across, down;
};

struct PlaceOf {
  PlaceOf(uint32_t width, uint32_t height) : half(width / 2.0), x0((width - 1) / 2.0), y0((height - 1) / 2.0) {}
  Place operator()(double x, double y) const { return {(x - x0) / half, (y - y0) / half}; }

  double half, x0, y0;
};

struct RowField {
  static constexpr int terms = 6;
  double rows[terms];  // times 1, across, down, across * down, across squared, down squared

  double at(Place p) const {
    return rows[0] + rows[1] * p.across + rows[2] * p.down + rows[3] * p.across * p.down +
           rows[4] * p.across * p.across + rows[5] * p.down * p.down;
  }
};

// How many rows the field is off at a place, as the pictures show it; and the disparity there, pixels.
struct RowError {
  Place place;
  double rows, disparity;
};

constexpr size_t leastErrors = 24;

// Corrects the field by least squares over the errors, with outliers weighing little: Cauchy's weights (P. Holland, R.
// Welsch, "Robust regression using iteratively reweighted least-squares", Communications in Statistics A 6(9), 1977).
// There must be leastErrors of them.
void correct(RowField& field, const RowError* errors, size_t count);

}  // namespace nadir::ground
