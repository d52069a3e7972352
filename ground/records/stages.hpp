// How the stages of the road are run, so that a caller can time them.
#pragma once

#include <functional>
#include <optional>
#include <utility>

namespace nadir::ground {

// Runs a stage once. The name is for people, and may come again on the same road.
using StageRunner = std::function<void(const char* name, const std::function<void()>& stage)>;

// Serves callers who do not ask how long a stage takes.
inline void runStage(const char*, const std::function<void()>& stage) { stage(); }

// What the stage returns.
template <class Stage>
auto stageResult(const StageRunner& run, const char* name, Stage stage) {
  std::optional<decltype(stage())> result;
  run(name, [&] { result.emplace(stage()); });
  return std::move(*result);
}

}  // namespace nadir::ground
