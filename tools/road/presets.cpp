// The presets, and the options that they stand for.
#include "tools/road/presets.hpp"

#include <algorithm>

#include "tools/base/text.hpp"

namespace nadir::tool {

const std::vector<Preset>& presets() {
  // Shoulders are steep, and slope down to the next person's: all of a body joins, and a dip between two heads parts
  // them. Boxes are level: the middle of a cell's heights is theirs, and a cell that they cover less than half of is
  // none of theirs. Vehicles have panes and bonnets that a wide step has to cross, and are large.
  static const std::vector<Preset> all = {{"people", 300, 250, 30, {}, 90, 2200},
                                          {"boxes", {}, {}, {}, {}, 50, 1500},
                                          {"vehicles", 300, 400, {}, 1, 90, 4000}};
  return all;
}

const Preset& presetNamed(const std::string& name) {
  static const Preset none{};
  const auto found = std::find_if(presets().begin(), presets().end(), [&](const Preset& p) { return p.name == name; });
  return found == presets().end() ? none : *found;
}

std::string optionsOf(const Preset& preset) {
  std::string text;
  const auto add = [&text](const char* option, const std::optional<double>& value) {
    if (value) text += format("%s%s %g", text.empty() ? "" : " ", option, *value);
  };
  add("--min-height", preset.minHeightMm);
  add("--max-step", preset.maxStepMm);
  add("--dip", preset.dipMm);
  add("--min-area", preset.minAreaM2);
  add("--percentile", preset.percentile);
  add("--tallest", preset.tallestMm);
  return text;
}

}  // namespace nadir::tool
