// The bar on a terminal and the lines elsewhere, with rate and remaining time.
#include "tools/base/progress.hpp"

#include <unistd.h>

#include <cstdio>

#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

constexpr int barWidth = 24;
constexpr auto quietTime = std::chrono::seconds(1);  // what is done sooner needs no bar
constexpr auto drawingTime = std::chrono::milliseconds(100);

std::string duration(double seconds) {
  const auto whole = static_cast<unsigned long>(seconds + 0.5);
  if (whole < 100) return format("%lu s", whole);
  return whole < 6000 ? format("%lu min", (whole + 30) / 60) : format("%.1f h", static_cast<double>(whole) / 3600);
}

}  // namespace

Progress::Progress(std::string what, std::string unit, uint64_t total, Elsewhere elsewhere, uint64_t done)
    : what_(std::move(what)),
      unit_(std::move(unit)),
      total_(total),
      done_(done),
      before_(done),
      terminal_(!isSilent() && isatty(STDERR_FILENO) != 0),
      lines_(!isSilent() && elsewhere == Elsewhere::lines) {}

Progress::~Progress() { wipeBar(); }

void Progress::advance() {
  ++done_;
  if (terminal_) return drawBar();
  if (lines_ && done_ * 10 / total_ != (done_ - 1) * 10 / total_)
    std::fprintf(stderr, "%s %s\n", what_.c_str(), state().c_str());
}

void Progress::say(const std::string& sentence) {
  wipeBar();
  nadir::tool::say(sentence);
}

std::string Progress::state() const {
  const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
  const double rate = static_cast<double>(done_ - before_) / seconds;
  return format("%llu of %llu %s, %.3g/s, %s left", static_cast<unsigned long long>(done_),
                static_cast<unsigned long long>(total_), unit_.c_str(), rate,
                duration(static_cast<double>(total_ - done_) / rate).c_str());
}

void Progress::drawBar() {
  const auto now = Clock::now();
  if (now - start_ < quietTime || now - drawn_ < drawingTime) return;
  drawn_ = now;
  shown_ = true;
  const auto full = static_cast<size_t>(done_ * barWidth / total_);
  const std::string bar = std::string(full, '#') + std::string(barWidth - full, '.');
  std::fprintf(stderr, "\r\033[K%s [%s] %s", what_.c_str(), bar.c_str(), state().c_str());
}

void Progress::wipeBar() {
  if (shown_) std::fputs("\r\033[K", stderr);
  shown_ = false;
}

}  // namespace nadir::tool
