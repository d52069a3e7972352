// What came of one frame of a sequence, and its line of frames.jsonl (docs/frames.schema.json).
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ground/road.hpp"
#include "ground/tracks.hpp"
#include "tools/base/warnings.hpp"

namespace nadir::tool {

// A damaged frame has an error and nothing else; its list of warnings is empty, because nothing of it is relied on.
struct FrameReport {
  uint64_t number = 0;
  std::string name;
  double seconds = 0;
  std::string error;
  Warnings warnings;
  size_t seenCells = 0;
  std::optional<ground::Findings> findings;
  std::vector<std::optional<ground::TrackedHeight>> tracks;  // of the areas
};

std::string frameLine(const FrameReport& report, const ground::Setup& setup);

}  // namespace nadir::tool
