// A Kalman filter of height and rate, begun and ended by who comes and goes.
#include "ground/tracks.hpp"

#include <cmath>

namespace nadir::ground {

namespace {

// A head that enters an area may be rising or bending down: mm per second.
constexpr float firstRateDeviation = 300;

}  // namespace

void HeightTrack::begin(double measuredMm) {
  IP_Kalman1d_Create(&filter_, static_cast<float>(measuredMm), 0, static_cast<float>(rule_.noiseMm), firstRateDeviation,
                     static_cast<float>(rule_.accelerationMmPerS2));
  active_ = true;
}

void HeightTrack::step(double seconds, std::optional<double> measuredMm) {
  if (active_ && seconds - measuredAt_ > rule_.patienceS) active_ = false;
  if (active_) IP_Kalman1d_Predict(&filter_, static_cast<float>(seconds - time_));
  if (measuredMm) {
    if (active_)
      IP_Kalman1d_Update(&filter_, static_cast<float>(*measuredMm));
    else
      begin(*measuredMm);
    measuredAt_ = seconds;
  }
  time_ = seconds;
}

std::optional<TrackedHeight> HeightTrack::now() const {
  if (!active_) return {};
  return TrackedHeight{filter_.x, filter_.v, std::sqrt(filter_.P[0])};
}

}  // namespace nadir::ground
