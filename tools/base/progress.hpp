// How far a long work is: on a terminal a bar with rate and remaining time, elsewhere plain lines.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace nadir::tool {

class Progress {
 public:
  enum class Elsewhere { silent, lines };

  // what       the work, "rendering"
  // unit       what is counted, "frames"
  // done       of `total`, what an earlier run has done: it does not count for the rate
  // elsewhere  what a file or a pipe gets: nothing, or a line after every tenth of the whole
  Progress(std::string what, std::string unit, uint64_t total, Elsewhere elsewhere, uint64_t done = 0);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  // One more is done.
  void advance();

  // A line of its own on standard error, above the bar.
  void say(const std::string& sentence);

 private:
  using Clock = std::chrono::steady_clock;

  std::string state() const;
  void drawBar();
  void wipeBar();

  std::string what_, unit_;
  uint64_t total_, done_, before_;
  bool terminal_, lines_, shown_ = false;
  Clock::time_point start_ = Clock::now(), drawn_ = start_;
};

}  // namespace nadir::tool
