// The regions in a folder of nadir ground against the objects in one of nadir synth.
#pragma once

#include <string>

#include "tools/evaluate/region_evaluation.hpp"

namespace nadir::tool {

// Throws Error where the two folders do not belong together.
RegionEvaluation evaluateRegionFolders(const std::string& resultFolder, const std::string& sceneFolder);

}  // namespace nadir::tool
