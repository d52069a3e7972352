// The words and the JSON in which nadir evaluate tells about regions.
#pragma once

#include <string>

#include "tools/evaluate/region_evaluation.hpp"

namespace nadir::tool {

std::string regionTable(const RegionEvaluation& evaluation);

// Lengths are in mm; what is unknown is null.
std::string regionJson(const RegionEvaluation& evaluation);

}  // namespace nadir::tool
