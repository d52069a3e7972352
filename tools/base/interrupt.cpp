// Signals that are remembered, or held back, for as long as an object lives.
#include "tools/base/interrupt.hpp"

#include <initializer_list>

namespace nadir::tool {

namespace {

volatile std::sig_atomic_t caught = 0;

void remember(int) { caught = 1; }

void watch(int signal, void (*handler)(int), int flags) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = flags;
  sigaction(signal, &action, nullptr);
}

}  // namespace

InterruptWatch::InterruptWatch() {
  caught = 0;
  for (const int signal : {SIGINT, SIGTERM}) watch(signal, remember, static_cast<int>(SA_RESETHAND | SA_RESTART));
}

InterruptWatch::~InterruptWatch() {
  for (const int signal : {SIGINT, SIGTERM}) watch(signal, SIG_DFL, 0);
}

bool InterruptWatch::requested() const { return caught != 0; }

InterruptDelay::InterruptDelay() {
  sigset_t delayed;
  sigemptyset(&delayed);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) sigaddset(&delayed, signal);
  pthread_sigmask(SIG_BLOCK, &delayed, &before_);
}

InterruptDelay::~InterruptDelay() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

}  // namespace nadir::tool
