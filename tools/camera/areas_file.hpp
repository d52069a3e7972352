// The areas of interest that the camera file or a file of their own holds.
#pragma once

#include <string>
#include <vector>

#include "ground/areas.hpp"

namespace nadir::tool {

// The word that stands in the file: "pixels", "ground_mm".
const char* nameOf(ground::AreaUnit unit);

// Reads those of a camera file, whose other keys are not looked at. An area has a name of its own and 3 to 100 corners,
// and its edges do not cross each other. Throws Error with a line "FILE:LINE: KEY: reason" for every mistake.
std::vector<ground::Area> readAreasOfCamera(const std::string& path);

// Reads a file that holds areas and nothing else; none of them may have the name of one of `others`.
std::vector<ground::Area> readAreas(const std::string& path, const std::vector<ground::Area>& others);

}  // namespace nadir::tool
