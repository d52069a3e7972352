// What nadir ground tells people about its work.
#pragma once

#include <string>

#include "tools/base/stage_times.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

std::string groundTable(const Road& road, const PairResult& result, const StageTimes& times);

}  // namespace nadir::tool
