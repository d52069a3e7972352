// A Kalman filter of height and rate, begun and ended by who comes and goes, and deaf to what cannot be.
#include "ground/tracks/height_track.hpp"

#include <cmath>
#include <cstring>
#include <initializer_list>

namespace nadir::ground {

namespace {

// A head that enters an area may be rising or bending down: mm per second.
constexpr float firstRateDeviation = 300;

// Who walks stays within three deviations of where the filter expects him but for one frame in some hundred; a wrong
// match, or the ground beside him, is seldom so near as five.
constexpr double mostDeviations = 5;

// So many frames that agree on what is doubted are believed: wrong matches change from frame to frame.
constexpr uint32_t framesToBelieve = 3;

Motion motionOf(const Kalman1d& filter) {
  Motion motion{filter.x, filter.v, {}};
  std::memcpy(motion.covariance, filter.P, sizeof motion.covariance);
  return motion;
}

// What a filter goes by beside what it knows.
struct Rule {
  float noise, lasting, acceleration;
};

Rule ruleOf(const NadirTrackSettings& settings, const Precision& precision) {
  return {static_cast<float>(precision.noise), static_cast<float>(precision.lasting),
          static_cast<float>(settings.acceleration_mm_per_s2)};
}

Kalman1d filterOf(const Motion& motion, const Rule& rule) {
  Kalman1d filter{};
  IP_Kalman1d_Create(&filter, motion.height, motion.rate, rule.noise, firstRateDeviation, rule.acceleration);
  std::memcpy(filter.P, motion.covariance, sizeof motion.covariance);
  return filter;
}

Motion begun(const Rule& rule, double measuredMm) {
  Kalman1d filter{};
  IP_Kalman1d_Create(&filter, static_cast<float>(measuredMm), 0, rule.noise, firstRateDeviation, rule.acceleration);
  return motionOf(filter);
}

void predict(Motion& motion, const Rule& rule, double sinceLast) {
  Kalman1d filter = filterOf(motion, rule);
  IP_Kalman1d_Predict(&filter, static_cast<float>(sinceLast));
  motion = motionOf(filter);
}

void update(Motion& motion, const Rule& rule, double measuredMm) {
  Kalman1d filter = filterOf(motion, rule);
  IP_Kalman1d_Update(&filter, static_cast<float>(measuredMm));
  motion = motionOf(filter);
}

// How far a measurement lies from the expected height, as a variance.
float expectedVariance(const Motion& motion, const Rule& rule) {
  return motion.covariance[0] + rule.noise * rule.noise + rule.lasting * rule.lasting;
}

bool isLikely(const Motion& motion, const Rule& rule, double measuredMm) {
  const double off = measuredMm - static_cast<double>(motion.height);
  return off * off <= mostDeviations * mostDeviations * static_cast<double>(expectedVariance(motion, rule));
}

bool isFinite(const Motion& motion) {
  bool finite = std::isfinite(motion.height) && std::isfinite(motion.rate);
  for (const float number : motion.covariance) finite &= std::isfinite(number);
  return finite;
}

// False for what a filter comes to when its uncertainties' squares leave single precision, at either end.
bool isUsable(const Motion& motion, const Rule& rule) {
  return isFinite(motion) && std::isfinite(1 / (motion.covariance[0] + rule.noise * rule.noise));
}

bool isZero(const Motion& motion) {
  bool zero = motion.height == 0 && motion.rate == 0;
  for (const float number : motion.covariance) zero &= number == 0;
  return zero;
}

bool isPossible(const Motion& motion) { return isFinite(motion) && motion.covariance[0] >= 0; }

void believe(HeightTrack& track, int64_t timeNs, const Motion& motion) { track = {1, timeNs, motion, 0, {}}; }

void expectNext(HeightTrack& track, const Rule& rule, double sinceLast) {
  predict(track.motion, rule, sinceLast);
  if (track.doubts > 0) predict(track.doubted, rule, sinceLast);
  if (!isUsable(track.motion, rule) || !isFinite(track.doubted)) track = {};
}

void doubt(HeightTrack& track, const Rule& rule, int64_t timeNs, double measuredMm) {
  const bool again = track.doubts > 0 && isUsable(track.doubted, rule) && isLikely(track.doubted, rule, measuredMm);
  if (again)
    update(track.doubted, rule, measuredMm);
  else
    track.doubted = begun(rule, measuredMm);
  track.doubts = again ? track.doubts + 1 : 1;
  if (track.doubts == framesToBelieve) believe(track, timeNs, track.doubted);
}

void goOn(HeightTrack& track, const Rule& rule, int64_t timeNs, const MeasuredHeight& measured) {
  for (const double height : {measured.piece, measured.region})
    if (isLikely(track.motion, rule, height)) {
      update(track.motion, rule, height);
      return believe(track, timeNs, track.motion);
    }
  if (!std::isnan(measured.region)) doubt(track, rule, timeNs, measured.piece);
}

}  // namespace

bool isPossible(const HeightTrack& track) {
  if (!track.active)
    return track.measuredAtNs == 0 && track.doubts == 0 && isZero(track.motion) && isZero(track.doubted);
  return isPossible(track.motion) && isPossible(track.doubted) && track.doubts < framesToBelieve &&
         (track.doubts > 0 || isZero(track.doubted));
}

void stepTrack(HeightTrack& track, const NadirTrackSettings& settings, const Precision& precision, int64_t timeNs,
               double sinceLast, const MeasuredHeight& measured) {
  const Rule rule = ruleOf(settings, precision);
  if (track.active && secondsBetween(track.measuredAtNs, timeNs) > settings.patience_s) track = {};
  if (track.active) expectNext(track, rule, sinceLast);
  if (track.active)
    goOn(track, rule, timeNs, measured);
  else if (!std::isnan(measured.region))
    believe(track, timeNs, begun(rule, measured.piece));
}

// Without what lasts, the numbers are the filter's own to the last bit.
NadirTrack described(const HeightTrack& track, double lasting) {
  if (!track.active) return {sizeof(NadirTrack), 0, 0, 0, 0};
  const Motion& m = track.motion;
  const double filtered = std::sqrt(m.covariance[0]);
  return {sizeof(NadirTrack), 1, m.height, m.rate,
          lasting > 0 ? std::sqrt(filtered * filtered + lasting * lasting) : filtered};
}

}  // namespace nadir::ground
