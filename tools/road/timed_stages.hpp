// The road's stages on the program's clock.
#pragma once

#include "ground/records/stages.hpp"
#include "tools/base/stage_times.hpp"

namespace nadir::tool {

// `times` has to outlive the runner.
inline ground::StageRunner timedBy(StageTimes& times) {
  return [&times](const char* name, const std::function<void()>& stage) { times.measure(name, stage); };
}

}  // namespace nadir::tool
