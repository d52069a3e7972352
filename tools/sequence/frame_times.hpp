// When the frames were taken, told by the numbers in their names: counted frames, or times of a clock.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tools/base/warnings.hpp"
#include "tools/sequence/frame_source.hpp"

namespace nadir::tool {

enum class TimeUnit { frames, nanoseconds, microseconds, milliseconds, seconds };

// As the user writes them: frames, ns, us, ms, s.
const char* nameOf(TimeUnit unit);
std::optional<TimeUnit> timeUnitNamed(const std::string& name);
std::vector<std::string> timeUnitNames();

struct TimeRule {
  std::optional<TimeUnit> unit;  // none: guessed from the first frames
  double framesPerSecond = 10;   // of counted frames
  bool rateGiven = false;        // then they are counted
};

class FrameTimes {
 public:
  // begun  the unit that the run had before it was interrupted; one that the rule names goes before it.
  FrameTimes(const TimeRule& rule, std::optional<TimeUnit> begun, const FrameSource& source);

  TimeUnit unit() const { return unit_; }

  // What a guess has to say for itself; empty where nothing was guessed, or where a warning says it.
  const std::string& sentence() const { return sentence_; }
  const Warnings& warnings() const { return warnings_; }

  // Since the first frame. A number that lies centuries behind the first one's gets the last time there is.
  int64_t nanoseconds(uint64_t number) const;

  // The same in seconds. Counted frames come without the rounding to nanoseconds, in which a third of a second has
  // none.
  double seconds(uint64_t number) const;

 private:
  TimeUnit unit_;
  double framesPerSecond_;
  uint64_t first_;
  std::string sentence_;
  Warnings warnings_;
};

}  // namespace nadir::tool
