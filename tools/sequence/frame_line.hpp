// What came of one frame of a sequence, and its line of frames.jsonl (docs/frames.schema.json).
#pragma once

#include <nadir/ground.h>

#include <string>
#include <vector>

#include "tools/base/json_value.hpp"
#include "tools/base/warnings.hpp"
#include "tools/road/road.hpp"

namespace nadir::tool {

// A damaged frame has an error and nothing else; its list of warnings is empty, because nothing of it is relied on.
struct FrameReport {
  uint64_t number = 0;
  std::string name;
  double seconds = 0;
  std::string error;
  Warnings warnings;
  NadirFindings findings{};
  std::vector<NadirTrack> tracks;  // of the areas
};

// Puts what is tracked into an area of a line.
void addTrack(Json& area, const NadirTrack& track);

Json frameLine(const FrameReport& report, const Road& road);

// As it stands in the file, with its line break.
std::string lineText(const Json& line);

}  // namespace nadir::tool
