// Signals that are remembered, or held back, for as long as an object lives.
#include "tools/base/interrupt.hpp"

namespace nadir::tool {

namespace {

constexpr int interrupts[] = {SIGINT, SIGTERM, SIGHUP};
volatile std::sig_atomic_t caught = 0;

void remember(int) { caught = 1; }

// A signal that the process was started without (nohup) stays ignored.
void watch(int signal, void (*handler)(int), int flags) {
  struct sigaction action {};
  if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) return;
  action = {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

}  // namespace

InterruptWatch::InterruptWatch() {
  caught = 0;
  for (const int signal : interrupts) watch(signal, remember, static_cast<int>(SA_RESETHAND | SA_RESTART));
}

InterruptWatch::~InterruptWatch() {
  for (const int signal : interrupts) watch(signal, SIG_DFL, 0);
}

bool InterruptWatch::requested() const { return caught != 0; }

InterruptDelay::InterruptDelay() {
  sigset_t delayed;
  sigemptyset(&delayed);
  for (const int signal : interrupts) sigaddset(&delayed, signal);
  pthread_sigmask(SIG_BLOCK, &delayed, &before_);
}

InterruptDelay::~InterruptDelay() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

}  // namespace nadir::tool
