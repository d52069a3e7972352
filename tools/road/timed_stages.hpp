// The library's stages on the program's clock.
#pragma once

#include <nadir/ground.h>

#include <optional>

#include "tools/base/stage_times.hpp"

namespace nadir::tool {

// Times the stages that a frame tells of, one after the other. It and the times have to outlive the frame's work.
class StageClock {
 public:
  explicit StageClock(StageTimes& times) : times_(times) {}

  void listenTo(NadirFrame& frame) {
    frame.user = this;
    frame.on_stage = [](void* clock, const char* name) { static_cast<StageClock*>(clock)->change(name); };
  }

 private:
  void change(const char* name) {
    running_.reset();
    if (name) running_.emplace(times_, name);
  }

  StageTimes& times_;
  std::optional<StageTimes::Running> running_;
};

}  // namespace nadir::tool
