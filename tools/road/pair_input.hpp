// The pictures that the matching commands take.
#pragma once

#include <string>

#include "ground/match.hpp"

namespace nadir::tool {

using lab::Grid;

// Two pictures of one size that the matcher can work on.
ground::Pair readPair(const std::string& left, const std::string& right);

// An empty path means no mask.
Grid<uint8_t> readMaskFor(const ground::Pair& pair, const std::string& path);

}  // namespace nadir::tool
