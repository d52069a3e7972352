// The height of what stands in an area, followed from frame to frame.
#pragma once

#include <nadir/nadir.h>

#include <optional>

namespace nadir::ground {

struct TrackRule {
  double noiseMm = 10;                // standard deviation of a measured height
  double accelerationMmPerS2 = 1500;  // standard deviation of what changes the rate: a walking head's
  double patienceS = 0.5;             // how long a track goes on without a measurement
};

struct TrackedHeight {
  double mm, mmPerS;
  double deviationMm;  // how uncertain the height is, standard deviation
};

class HeightTrack {
 public:
  explicit HeightTrack(const TrackRule& rule) : rule_(rule) {}

  // A frame, taken at `seconds`, in which the height was measured or nothing stood there. Frames come in their order.
  void step(double seconds, std::optional<double> measuredMm);

  // Nothing while there is nothing to follow.
  std::optional<TrackedHeight> now() const;

 private:
  void begin(double measuredMm);

  TrackRule rule_;
  Kalman1d filter_{};
  bool active_ = false;
  double time_ = 0, measuredAt_ = 0;
};

}  // namespace nadir::ground
