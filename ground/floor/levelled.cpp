// Covariances of planes become deviations of mounts by small changes of each number.
#include "ground/floor/levelled.hpp"

#include <cmath>

#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

namespace {

// A normal distribution's share outside of so many standard deviations is a tenth.
constexpr double ninetyPercent = 1.645;

constexpr double alongFloorDeg = 89, straightDownDeg = 89;

void invert(const double (&m)[9], double (&inverse)[9]) {
  const double a = m[4] * m[8] - m[5] * m[7], b = m[5] * m[6] - m[3] * m[8], c = m[3] * m[7] - m[4] * m[6];
  const double whole = m[0] * a + m[1] * b + m[2] * c;
  const double adjugate[9] = {a, m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],  //
                              b, m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],  //
                              c, m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]};
  for (int i = 0; i < 9; ++i) inverse[i] = adjugate[i] / whole;
}

// What is alike in all parts of all pairs does not show in their differences: cubics read sharp edges a little off, as
// they lie between the pixels. On rendered floors with one disparity all over it is 0.003 to 0.006 pixel,
// and may be the other way at the other end of the picture.
constexpr double commonError = 0.003;

void addCommonError(uint32_t width, uint32_t height, double (&covariance)[9]) {
  const double acrossPicture[] = {2 * commonError / width, 2 * commonError / height, commonError};
  for (int i = 0; i < 3; ++i) covariance[4 * i] += acrossPicture[i] * acrossPicture[i];
}

// ---- the numbers of a mount ----

constexpr int heightAt = 0, tiltAt = 1, panAt = 2, axisAt = 3, rollAt = 4, numbers = 5;

struct Numbers {
  double of[numbers];
};

// The arc sine by its right-angled triangle.
double inclineDeg(double sine) { return directionDeg(sine, std::sqrt(aboveZero((1 - sine) * (1 + sine)))); }

Numbers numbersOf(const DisparityPlane& plane, const StereoCtx& context, double columnShift) {
  const Mount mount = mountOf(plane, context, columnShift);
  const IntCalib& c = context.intCalib;
  const double x = plane.perColumn * mount.heightMm / c.baseline, y = plane.perRow * mount.heightMm / c.baseline;
  const double z =
      (plane.at(c.principalX, c.principalY) + columnShift) * mount.heightMm / (double{c.focalLength} * c.baseline);
  return {{mount.heightMm, mount.tiltDeg, mount.panDeg, inclineDeg(z), directionDeg(x, y)}};
}

DisparityPlane moved(const DisparityPlane& plane, int which, double by) {
  DisparityPlane other = plane;
  (which == 0 ? other.perColumn : which == 1 ? other.perRow : other.atOrigin) += by;
  return other;
}

double variance(const double (&slopes)[3], const double (&covariance)[9]) {
  double sum = 0;
  for (int i = 0; i < 9; ++i) sum += slopes[i / 3] * covariance[i] * slopes[i % 3];
  return aboveZero(sum);
}

Numbers deviationsOf(const UncertainPlane& p, const StereoCtx& context, double columnShift) {
  double slopes[numbers][3];
  for (int i = 0; i < 3; ++i) {
    const double change = i == 2 ? 1e-4 : 1e-7;  // pixels: less than any deviation
    const Numbers more = numbersOf(moved(p.plane, i, change), context, columnShift);
    const Numbers less = numbersOf(moved(p.plane, i, -change), context, columnShift);
    for (int k = 0; k < numbers; ++k) slopes[k][i] = (more.of[k] - less.of[k]) / (2 * change);
  }
  Numbers deviations{};
  for (int k = 0; k < numbers; ++k) deviations.of[k] = ninetyPercent * std::sqrt(variance(slopes[k], p.covariance));
  return deviations;
}

double numberAt(const DisparityPlane& plane, int i) {
  return i == 0 ? plane.perColumn : i == 1 ? plane.perRow : plane.atOrigin;
}

}  // namespace

void add(PlaneSums& sums, const UncertainPlane& plane) {
  double certainty[9];
  invert(plane.covariance, certainty);
  ++sums.pairs;
  for (int i = 0; i < 9; ++i) {
    const double weighted = certainty[i] * numberAt(plane.plane, i % 3);
    sums.certainty[i] += certainty[i];
    sums.weighted[i / 3] += weighted;
    sums.squares += weighted * numberAt(plane.plane, i / 3);
  }
}

// Where planes differ by more than chance makes them, their squares about the mean say by how much: 3 (n - 1) are
// expected, with a variance of twice that.
UncertainPlane meanOf(const PlaneSums& sums, uint32_t width, uint32_t height) {
  UncertainPlane mean{};
  invert(sums.certainty, mean.covariance);
  double at[3] = {}, squares = sums.squares;
  for (int i = 0; i < 9; ++i) at[i / 3] += mean.covariance[i] * sums.weighted[i % 3];
  for (int i = 0; i < 3; ++i) squares -= at[i] * sums.weighted[i];
  mean.plane = {at[0], at[1], at[2]};
  const double expected = 3 * (sums.pairs - 1.0);
  if (squares > expected + 3 * std::sqrt(2 * expected) && expected > 0)
    for (double& value : mean.covariance) value *= squares / expected;
  addCommonError(width, height, mean.covariance);
  return mean;
}

void describe(const UncertainPlane& plane, uint32_t pairs, const StereoCtx& context, double columnShift,
              NadirLevelled& levelled) {
  const Numbers is = numbersOf(plane.plane, context, columnShift), off = deviationsOf(plane, context, columnShift);
  const bool knowsPan = std::fabs(is.of[tiltAt]) < alongFloorDeg, knowsRoll = is.of[axisAt] < straightDownDeg;
  levelled.pairs = pairs;
  levelled.height_mm = is.of[heightAt];
  levelled.tilt_deg = is.of[tiltAt];
  levelled.pan_deg = knowsPan ? is.of[panAt] : double{NAN};
  levelled.height_deviation_mm = off.of[heightAt];
  levelled.tilt_deviation_deg = off.of[tiltAt];
  levelled.pan_deviation_deg = knowsPan ? off.of[panAt] : double{NAN};
  levelled.axis_below_horizon_deg = is.of[axisAt];
  levelled.roll_deg = knowsRoll ? is.of[rollAt] : double{NAN};
  levelled.axis_deviation_deg = off.of[axisAt];
  levelled.roll_deviation_deg = knowsRoll ? off.of[rollAt] : double{NAN};
  for (int i = 0; i < 3; ++i) levelled.plane[i] = numberAt(plane.plane, i);
}

}  // namespace nadir::ground
