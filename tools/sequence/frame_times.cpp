// The unit is guessed by where the numbers begin and by how far apart they are.
#include "tools/sequence/frame_times.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>

#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

constexpr int64_t lastNanosecond = std::numeric_limits<int64_t>::max();

struct UnitRow {
  TimeUnit unit;
  const char* name;
  const char* words;
  uint64_t nanoseconds, perSecond;  // of counted frames the rate tells
};

constexpr UnitRow units[] = {
    {TimeUnit::frames, "frames", "counted frames", 0, 0},
    {TimeUnit::nanoseconds, "ns", "nanoseconds", 1, 1000000000},
    {TimeUnit::microseconds, "us", "microseconds", 1000, 1000000},
    {TimeUnit::milliseconds, "ms", "milliseconds", 1000000, 1000},
    {TimeUnit::seconds, "s", "seconds", 1000000000, 1},
};

const UnitRow& rowOf(TimeUnit unit) { return units[static_cast<size_t>(unit)]; }

// ---- the guess ----

struct Guess {
  TimeUnit unit;
  bool doubtful;
};

// The numbers of the first frames: where they begin, and the steps between them.
struct Numbers {
  uint64_t first, step, least;  // the median step, and the smallest one
  bool multiples;               // all steps are multiples of the smallest one, as those of a count with gaps are
};

constexpr size_t framesLookedAt = 33;

std::vector<uint64_t> firstSteps(const FrameSource& source) {
  std::vector<uint64_t> steps;
  for (size_t frame = 1; frame < std::min(source.size(), framesLookedAt); ++frame)
    steps.push_back(source.number(frame) - source.number(frame - 1));
  return steps;
}

// A single frame has no step; 1 makes a count of it.
Numbers numbersOf(const FrameSource& source) {
  std::vector<uint64_t> steps = firstSteps(source);
  if (steps.empty()) steps = {1};
  std::sort(steps.begin(), steps.end());
  const uint64_t common = std::accumulate(steps.begin(), steps.end(), uint64_t{0}, std::gcd<uint64_t, uint64_t>);
  return {source.number(0), steps[steps.size() / 2], steps.front(), common == steps.front()};
}

// Clocks that count from 1970 stand between these seconds from 2001 to 2096. The windows of two units do not overlap.
bool isDate(uint64_t number, const UnitRow& unit) {
  return unit.perSecond > 0 && number / unit.perSecond >= 1000000000 && number / unit.perSecond < 4000000000;
}

// A clock that runs since the machine was started passes through the dates of coarser units, too: after 12 days its
// nanoseconds look like microseconds of today. Then they are far apart for those, so more than 10 s between two frames
// are doubtful and more than an hour rules the unit out.
std::optional<Guess> guessFromDate(const Numbers& numbers) {
  for (const UnitRow& unit : units) {
    if (!isDate(numbers.first, unit)) continue;
    const double seconds = static_cast<double>(numbers.step) / static_cast<double>(unit.perSecond);
    if (seconds >= 1e-4 && seconds <= 3600) return Guess{unit.unit, seconds > 10};
  }
  return {};
}

// Cameras take from 1 to 200 pictures a second, so that steps tell the unit of a clock: 5 to 999 ms, 5000 to 999999 us,
// and so on. What lies between could be a slow camera or a fast one.
Guess guessFromStep(const Numbers& numbers) {
  const uint64_t step = numbers.step;
  if (step < 5) return {TimeUnit::frames, numbers.first >= 1000000000};
  if (step < 1000) {
    // Every tenth frame kept looks like ten milliseconds sharp; 33, 34, 33 is a clock's rounding, not a choice of
    // frames.
    if (numbers.multiples) return {TimeUnit::frames, step >= 10};
    return numbers.least >= step / 2 ? Guess{TimeUnit::milliseconds, false} : Guess{TimeUnit::frames, true};
  }
  if (step < 5000) return {TimeUnit::milliseconds, true};
  if (step < 5000000) return {TimeUnit::microseconds, step >= 1000000};
  return {TimeUnit::nanoseconds, step >= 1000000000};
}

Guess guessFrom(const Numbers& numbers) {
  const std::optional<Guess> dated = guessFromDate(numbers);
  return dated ? *dated : guessFromStep(numbers);
}

std::string taken(TimeUnit unit, double framesPerSecond) {
  const std::string words = rowOf(unit).words;
  return words + (unit == TimeUnit::frames ? format(", %g a second", framesPerSecond) : "");
}

Warning doubt(const Numbers& numbers, const std::string& sentence) {
  return {"times-doubtful", sentence, {{"step", static_cast<double>(numbers.step)}}};
}

int64_t rounded(double nanoseconds) {
  return nanoseconds < static_cast<double>(lastNanosecond) ? std::llround(nanoseconds) : lastNanosecond;
}

}  // namespace

const char* nameOf(TimeUnit unit) { return rowOf(unit).name; }

std::optional<TimeUnit> timeUnitNamed(const std::string& name) {
  for (const UnitRow& unit : units)
    if (name == unit.name) return unit.unit;
  return {};
}

std::vector<std::string> timeUnitNames() {
  std::vector<std::string> names;
  for (const UnitRow& unit : units) names.push_back(unit.name);
  return names;
}

FrameTimes::FrameTimes(const TimeRule& rule, std::optional<TimeUnit> begun, const FrameSource& source)
    : framesPerSecond_(rule.framesPerSecond), first_(source.number(0)) {
  const Numbers numbers = numbersOf(source);
  const Guess guess = guessFrom(numbers);
  const auto step = static_cast<unsigned long long>(numbers.step);
  if (rule.rateGiven) {
    unit_ = TimeUnit::frames;
    if (guess.unit != TimeUnit::frames && !guess.doubtful)
      warnings_ = {doubt(numbers, format("the numbers in the frames' names, %llu apart, look like %s, but --fps takes "
                                         "them as counted frames: --times says what they are",
                                         step, rowOf(guess.unit).words))};
    return;
  }
  unit_ = rule.unit ? *rule.unit : begun.value_or(guess.unit);
  if (rule.unit) return;
  const std::string words = taken(unit_, framesPerSecond_);
  if (guess.doubtful && unit_ == guess.unit)
    warnings_ = {doubt(numbers, format("the numbers in the frames' names, %llu apart, are taken as %s, which is "
                                       "doubtful: --times says what they are",
                                       step, words.c_str()))};
  else if (!begun)
    sentence_ = "the numbers in the frames' names are taken as " + words;
}

int64_t FrameTimes::nanoseconds(uint64_t number) const {
  const uint64_t since = number - first_;
  if (unit_ == TimeUnit::frames) return rounded(static_cast<double>(since) / framesPerSecond_ * 1e9);
  const uint64_t each = rowOf(unit_).nanoseconds;
  return since <= static_cast<uint64_t>(lastNanosecond) / each ? static_cast<int64_t>(since * each) : lastNanosecond;
}

double FrameTimes::seconds(uint64_t number) const {
  if (unit_ == TimeUnit::frames) return static_cast<double>(number - first_) / framesPerSecond_;
  return static_cast<double>(nanoseconds(number)) / 1e9;
}

}  // namespace nadir::tool
