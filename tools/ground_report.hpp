// What nadir ground tells about its work: a table for people, JSON (docs/ground.schema.json) for programs.
#pragma once

#include <string>

#include "ground.hpp"

namespace nadir::tool {

const char* nameOf(View view);

// part / whole, 0 of nothing.
double share(size_t part, size_t whole);

std::string groundTable(const GroundResult& result, const StageTimes& times);
std::string groundJson(const GroundResult& result);

}  // namespace nadir::tool
