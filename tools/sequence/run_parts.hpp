// Runs over ranges of a sequence's frames, which together are a run over all of them.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace nadir::tool {

// Places in the order of the frames, the first one's being 0. `end` is not in it.
struct FrameRange {
  size_t begin, end;
};

struct RunPart {
  std::string folder;
  FrameRange range;
};

// The runs in the folders of `folder` in the order of their frames, from the first frame up to the first gap. Throws
// where two share frames, or where one has other settings than `settings`, the text of the whole run's run.json.
std::vector<RunPart> runParts(const std::string& folder, const std::string& settings);

}  // namespace nadir::tool
