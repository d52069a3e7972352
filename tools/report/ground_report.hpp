// What nadir ground tells people about its work.
#pragma once

#include <string>

#include "ground/road.hpp"
#include "tools/base/stage_times.hpp"

namespace nadir::tool {

std::string groundTable(const ground::Setup& setup, const ground::Result& result, const StageTimes& times);

}  // namespace nadir::tool
