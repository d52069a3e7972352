// Thresholds, each in the gap between what unspoilt pairs give and what the fault gives.
//
// The figures are those of the five real pairs and of the seven ready scenes at 160, 320, 640 and 1280 columns, with
// noise of 0 and 20; faults are of the least strength that must be named.
#include "ground/check/verdict.hpp"

#include "ground/trust/arc_tangent.hpp"

namespace nadir::ground {

namespace {

// Not-a-number is in none of these.
bool isSame(const NadirCheckup& c, bool identical) {
  constexpr double leastUnmoved = 0.8;
  const bool tells = c.texture_left > 0;  // a constant picture is the same everywhere
  return (identical && tells) || c.unmoved >= leastUnmoved;
}

// Unspoilt pairs have gains of 0.91 to 1.06; dark and clipped are as in warnings of a frame.
bool isBadlyExposed(const NadirCheckup& c) {
  constexpr double largestGain = 1.8, mostDark = 0.6, mostClipped = 0.1;
  return c.gain >= largestGain || c.gain <= 1 / largestGain || c.dark_left >= mostDark || c.dark_right >= mostDark ||
         c.clipped_left >= mostClipped || c.clipped_right >= mostClipped;
}

// Least of all is bull with 0.096 of its mean; blurred by six pixels, aloe has 0.024; a sixteenth of the contrast
// leaves 0.013 at most.
bool isFlat(double texture, double mean) {
  constexpr double leastTexture = 0.017;
  return texture < leastTexture * mean;
}

// What drowns in noise has texture and is not matched.
constexpr double leastMatched = 0.5;
bool drowns(double texture, double noise) { return texture < 2 * noise; }

bool isTextureless(const NadirCheckup& c) {
  if (isFlat(c.texture_left, c.mean_left) || isFlat(c.texture_right, c.mean_right)) return true;
  return c.matched_aligned < leastMatched &&
         (drowns(c.texture_left, c.noise_left) || drowns(c.texture_right, c.noise_right));
}

// Sharp pictures have 0.38 to 0.78 pixels, those blurred by 2.5 pixels 1.9 to 2.6, and 1.5 where noise lies over six.
bool isBlurred(const NadirCheckup& c) {
  constexpr double mostBlur = 1.35;
  return c.blur_left_px >= mostBlur || c.blur_right_px >= mostBlur;
}

// Nothing lies beyond infinity. A pair that was cut so that all of it seems to cannot be told from an exchanged one.
bool isSwapped(const NadirCheckup& c) {
  constexpr double mostBehind = 0.93;
  return c.behind >= mostBehind;
}

// A picture that is turned about its middle shifts what has a disparity, and scales it where disparities grow down the
// picture. That much is no fault of its own.
double beyond(double value, double explained) {
  const double low = explained < 0 ? explained : 0, high = explained < 0 ? 0 : explained;
  return value < low ? low - value : value > high ? value - high : 0;
}

double absolute(double value) { return value < 0 ? -value : value; }

bool isUnrectified(const NadirCheckup& c, const Depths& depths) {
  constexpr double mostScale = 0.4, mostBend = 0.4;  // percent, rows; unspoilt pairs have up to 0.1 each
  if (!(c.matched_aligned >= leastMatched)) return true;
  const double turn = c.turn_deg * degree;
  return beyond(c.scale_percent, 100 * turn * depths.perRow) >= mostScale ||
         c.bend_px >= mostBend + absolute(turn) * depths.spread / 2;
}

bool isTurned(const NadirCheckup& c) {
  constexpr double mostTurn = 0.3;  // degrees; unspoilt pairs have 0.03
  return absolute(c.turn_deg) >= mostTurn;
}

bool isOffset(const NadirCheckup& c) {
  constexpr double mostRows = 0.6;  // unspoilt, bull has 0.17
  return absolute(c.row_offset_px) >= mostRows;
}

bool isOutOfRange(const NadirCheckup& c) {
  constexpr double mostNearer = 0.01, mostBehind = 0.04;  // wrong matches come to 0.005 and 0.02
  return c.nearer >= mostNearer || c.behind >= mostBehind;
}

}  // namespace

uint32_t verdictOf(const NadirCheckup& c, const Depths& depths, bool identical) {
  if (isSame(c, identical)) return NADIR_VERDICT_SAME;
  if (isBadlyExposed(c)) return NADIR_VERDICT_EXPOSURE;
  if (isTextureless(c)) return NADIR_VERDICT_TEXTURELESS;
  if (isBlurred(c)) return NADIR_VERDICT_BLURRED;
  if (isSwapped(c)) return NADIR_VERDICT_SWAPPED;
  if (isUnrectified(c, depths)) return NADIR_VERDICT_UNRECTIFIED;
  if (isTurned(c)) return NADIR_VERDICT_TURNED;
  if (isOffset(c)) return NADIR_VERDICT_OFFSET;
  return isOutOfRange(c) ? NADIR_VERDICT_RANGE : NADIR_VERDICT_GOOD;
}

}  // namespace nadir::ground
