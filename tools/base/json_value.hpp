// Numbers as the JSON that this program writes holds them.
#pragma once

#include <nlohmann/json.hpp>

namespace nadir::tool {

// Members stay in the order in which they were added, so that people can read what is written.
using Json = nlohmann::ordered_json;

// The multiple of 1 / steps that is nearest to the value. An infinite or unknown value becomes null, because JSON has
// no word for it.
Json roundedNumber(double value, double steps);

// The value with nine significant digits, which is what a float can tell; a whole one is written without a fraction.
// Infinite and unknown values become null.
Json significantNumber(double value);

}  // namespace nadir::tool
