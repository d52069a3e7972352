// Ctrl-C, and the polite signal of a service manager, as a question that a long work asks between its steps.
#pragma once

namespace nadir::tool {

// While it lives, the first SIGINT or SIGTERM is only remembered; a second one ends the program at once.
class InterruptWatch {
 public:
  InterruptWatch();
  InterruptWatch(const InterruptWatch&) = delete;
  InterruptWatch& operator=(const InterruptWatch&) = delete;
  ~InterruptWatch();

  bool requested() const;
};

}  // namespace nadir::tool
