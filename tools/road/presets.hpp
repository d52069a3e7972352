// What people look for, as the plain options that find it.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace nadir::tool {

// What is not there stays as it is without a preset.
struct Preset {
  std::string name;
  std::optional<double> minHeightMm, maxStepMm, dipMm, minAreaM2, percentile, tallestMm;
};

const std::vector<Preset>& presets();

// One of them, or of no name one that holds nothing.
const Preset& presetNamed(const std::string& name);

// The options that stand for it, "--min-height 300 --max-step 250".
std::string optionsOf(const Preset& preset);

}  // namespace nadir::tool
