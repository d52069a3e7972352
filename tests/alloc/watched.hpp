// While it lives, allocations are those of one function.
#pragma once

namespace nadir::test {

class Watched {
 public:
  explicit Watched(const char* function);
  ~Watched();
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;

 private:
  const char* function_;
};

}  // namespace nadir::test
