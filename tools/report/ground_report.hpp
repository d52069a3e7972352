// What nadir ground tells about its work: a table for people, JSON (docs/ground.schema.json) for programs.
#pragma once

#include <string>

#include "tools/road/road.hpp"
#include "tools/sequence/ground_sequence.hpp"

namespace nadir::tool {

// part / whole, 0 of nothing.
double share(size_t part, size_t whole);

std::string groundTable(const GroundResult& result, const StageTimes& times);
std::string groundJson(const GroundResult& result);

// A line of frames.jsonl (docs/frames.schema.json).
std::string frameLine(const FrameReport& report, const GroundSetup& setup);

// The settings of a sequence: two runs with the same ones give the same results.
std::string sequenceJson(const GroundSetup& setup, const SequenceRule& rule, const FrameSource& source);

}  // namespace nadir::tool
