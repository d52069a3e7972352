// A Kalman filter of height and rate, begun and ended by who comes and goes.
#include "ground/tracks/height_track.hpp"

#include <cmath>
#include <cstring>

namespace nadir::ground {

namespace {

// A head that enters an area may be rising or bending down: mm per second.
constexpr float firstRateDeviation = 300;

Kalman1d filterOf(const HeightTrack& track, const NadirTrackSettings& s) {
  Kalman1d filter{};
  IP_Kalman1d_Create(&filter, track.height, track.rate, static_cast<float>(s.noise_mm), firstRateDeviation,
                     static_cast<float>(s.acceleration_mm_per_s2));
  return filter;
}

void keep(HeightTrack& track, const Kalman1d& filter) {
  track.height = filter.x;
  track.rate = filter.v;
  std::memcpy(track.covariance, filter.P, sizeof track.covariance);
}

void begin(HeightTrack& track, const NadirTrackSettings& settings, double measuredMm) {
  track.active = 1;
  track.height = static_cast<float>(measuredMm);
  track.rate = 0;
  keep(track, filterOf(track, settings));
}

void goOn(HeightTrack& track, const NadirTrackSettings& settings, double sinceLast, double measuredMm) {
  Kalman1d filter = filterOf(track, settings);
  std::memcpy(filter.P, track.covariance, sizeof track.covariance);
  IP_Kalman1d_Predict(&filter, static_cast<float>(sinceLast));
  if (!std::isnan(measuredMm)) IP_Kalman1d_Update(&filter, static_cast<float>(measuredMm));
  keep(track, filter);
}

}  // namespace

bool isFinite(const HeightTrack& track) {
  bool finite = std::isfinite(track.height) && std::isfinite(track.rate);
  for (const float number : track.covariance) finite &= std::isfinite(number);
  return finite;
}

void stepTrack(HeightTrack& track, const NadirTrackSettings& settings, int64_t timeNs, double sinceLast,
               double measuredMm) {
  const bool measured = !std::isnan(measuredMm);
  if (track.active && secondsBetween(track.measuredAtNs, timeNs) > settings.patience_s) track = {};
  if (track.active) goOn(track, settings, sinceLast, measuredMm);
  if (!isFinite(track)) track = {};
  if (measured && !track.active) begin(track, settings, measuredMm);
  if (measured) track.measuredAtNs = timeNs;
}

NadirTrack described(const HeightTrack& track) {
  if (!track.active) return {sizeof(NadirTrack), 0, 0, 0, 0};
  return {sizeof(NadirTrack), 1, track.height, track.rate, std::sqrt(track.covariance[0])};
}

}  // namespace nadir::ground
