// How pairs are matched: what the user may say, and the words for it.
#pragma once

#include <nadir/ground.h>

#include <optional>
#include <string>
#include <vector>

#include "tools/base/view.hpp"

namespace nadir::tool {

// The library's defaults; those that follow from the camera are left at 0.
NadirSettings usualSettings();

struct MatchOptions {
  View view = View::left;
  bool noPostprocessing = false;
  std::optional<uint32_t> uniqueness;      // else what suits the check
  uint32_t check = usualSettings().check;  // NADIR_CHECK_...
  uint32_t support = usualSettings().support;
  uint32_t refine = NADIR_REFINE_SURFACE;  // NADIR_REFINE_...; it costs little and mends more than it empties
  uint32_t range = usualSettings().range;  // NADIR_RANGE_..., or automaticRange
};

// Where a second pass looks for wrong matches, the peak check can be milder, and takes fewer right ones.
constexpr uint32_t uniquenessBesideChecks = 40;

uint32_t uniquenessOf(const MatchOptions& options);

// The least range that measures the tallest things over the map.
constexpr uint32_t automaticRange = 0;

// What maps are made with: a wrong height costs more than a hole.
MatchOptions matchOptionsOfMaps();

// A word that a user says, and the library's number for it.
struct Word {
  const char* word;
  uint32_t number;
};
using Words = std::vector<Word>;

const Words& checkWords();
const Words& refineWords();
const Words& rangeWords();         // all of them
const Words& rangeWordsOfPairs();  // those that need no camera

// The word of a number, and the number of a word, which must be among them.
std::string wordOf(const Words& words, uint32_t number);
uint32_t numberOf(const Words& words, const std::string& word);

// Settings of the library with these options in them.
NadirSettings withOptions(NadirSettings settings, const MatchOptions& options);

}  // namespace nadir::tool
