// What nadir ground tells programs about a pair: summary.json, which docs/ground.schema.json describes.
#pragma once

#include <string>

#include "ground/road.hpp"
#include "tools/base/warnings.hpp"

namespace nadir::tool {

std::string groundJson(const ground::Setup& setup, const ground::Result& result, const Warnings& warnings);

}  // namespace nadir::tool
