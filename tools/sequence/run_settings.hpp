// The settings of a sequence, as run.json holds them: two runs with the same ones give the same results.
#pragma once

#include <optional>
#include <string>

#include "tools/report/products.hpp"
#include "tools/road/road.hpp"
#include "tools/sequence/frame_source.hpp"
#include "tools/sequence/frame_times.hpp"
#include "tools/sequence/run_parts.hpp"

namespace nadir::tool {

// The library's defaults with a window for the averaged maps.
NadirTrackSettings usualTracking();

struct SequenceRule {
  TimeRule times;
  NadirTrackSettings track = usualTracking();
  Products products;                // beside frames.jsonl
  std::optional<FrameRange> range;  // none: all frames
};

// Reads the mask, if there is one.
//
// times  the unit of the frames' times, which the rule may have left to a guess.
std::string settingsText(const Road& road, const SequenceRule& rule, const FrameSource& source, TimeUnit times);

// What the text of run.json says of the frames' times, if it is one that this program has written.
std::optional<TimeUnit> timesIn(const std::string& settings);

}  // namespace nadir::tool
