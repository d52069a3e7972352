// What a frame's caller hears of the road's stages, so that it can time them.
#pragma once

#include <nadir/ground.h>

namespace nadir::ground {

class Stages {
 public:
  explicit Stages(const NadirFrame& frame) : tell_(frame.on_stage), user_(frame.user) {}

  // The stage before ends here. The name is for people, and may come again on the same road.
  void begin(const char* name) const {
    if (tell_) tell_(user_, name);
  }
  void end() const { begin(nullptr); }

 private:
  void (*tell_)(void* user, const char* name);
  void* user_;
};

}  // namespace nadir::ground
