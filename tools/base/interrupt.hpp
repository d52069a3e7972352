// Ctrl-C, the polite signal of a service manager and the end of the terminal: what a work does that must not end in the
// middle of a step.
#pragma once

#include <csignal>

namespace nadir::tool {

// While it lives, the first SIGINT, SIGTERM or SIGHUP is only remembered; a second one ends the program at once.
class InterruptWatch {
 public:
  InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;
  ~InterruptWatch();

  bool requested() const;
};

// While it lives, these signals wait: they end the program when it is gone. Only threads
// that are started meanwhile are covered too.
class InterruptDelay {
 public:
  InterruptDelay();
  InterruptDelay(const InterruptDelay&) = delete;
  InterruptDelay& operator=(const InterruptDelay&) = delete;
  ~InterruptDelay();

 private:
  sigset_t before_;
};

}  // namespace nadir::tool
