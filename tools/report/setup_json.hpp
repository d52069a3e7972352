// What a camera file holds and what the libraries are given, to the last bit, as JSON: for programs that call the
// libraries themselves and shall find what this one finds.
#pragma once

#include <string>

#include "tools/base/json_value.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

// Its numbers, null for a mount that is yet to be found; its areas; and its lenses and their pose, if it has them.
Json cameraFileJson(const std::string& path);

// Members by their names in the library's records, words as the library's numbers.
Json setupJson(const NadirSettings& settings);

Json setupJson(const NadirTrackSettings& settings);

// The camera, the settings, all areas, and what rectifiers are made of, null where pictures are rectified.
Json setupJson(const Road& road);

}  // namespace nadir::tool
