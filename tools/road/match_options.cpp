// Words become the library's numbers and back.
#include "tools/road/match_options.hpp"

#include <algorithm>

namespace nadir::tool {

NadirSettings usualSettings() {
  NadirSettings settings;
  nadir_settings_fill(&settings, nullptr);
  return settings;
}

MatchOptions matchOptionsOfMaps() {
  MatchOptions options;
  options.check = NADIR_CHECK_FLIP;
  options.range = automaticRange;
  return options;
}

const Words& checkWords() {
  static const Words words = {
      {"none", NADIR_CHECK_NONE}, {"flip", NADIR_CHECK_FLIP}, {"sides", NADIR_CHECK_SIDES}, {"both", NADIR_CHECK_BOTH}};
  return words;
}

const Words& refineWords() {
  static const Words words = {{"none", NADIR_REFINE_NONE}, {"surface", NADIR_REFINE_SURFACE}};
  return words;
}

const Words& rangeWordsOfPairs() {
  static const Words words = {{"61", NADIR_RANGE_61}, {"122", NADIR_RANGE_122}, {"244", NADIR_RANGE_244}};
  return words;
}

const Words& rangeWords() {
  static const Words words = [] {
    Words all = rangeWordsOfPairs();
    all.push_back({"auto", automaticRange});
    return all;
  }();
  return words;
}

std::string wordOf(const Words& words, uint32_t number) {
  return std::find_if(words.begin(), words.end(), [=](const Word& w) { return w.number == number; })->word;
}

uint32_t numberOf(const Words& words, const std::string& word) {
  return std::find_if(words.begin(), words.end(), [&](const Word& w) { return w.word == word; })->number;
}

uint32_t uniquenessOf(const MatchOptions& options) {
  return options.uniqueness.value_or(options.check == NADIR_CHECK_NONE ? usualSettings().uniqueness
                                                                       : uniquenessBesideChecks);
}

NadirSettings withOptions(NadirSettings settings, const MatchOptions& options) {
  settings.grid = options.view == View::left ? NADIR_GRID_LEFT : NADIR_GRID_RIGHT;
  settings.postprocess = !options.noPostprocessing;
  settings.uniqueness = uniquenessOf(options);
  settings.check = options.check;
  settings.support = options.support;
  settings.refine = options.refine;
  settings.range = options.range;
  return settings;
}

}  // namespace nadir::tool
