// What nadir ground tells programs about a pair: summary.json, which docs/ground.schema.json describes.
#pragma once

#include <string>

#include "tools/base/warnings.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

std::string groundJson(const Road& road, const PairResult& result, const Warnings& warnings);

}  // namespace nadir::tool
