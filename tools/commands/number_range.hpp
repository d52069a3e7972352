// The numbers that an option takes: what its check lets pass and what its help says come from one range.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>

namespace nadir::tool {

struct NumberRange {
  std::string words;  // "0 to 128"
  CLI::Validator check;
};

NumberRange numberFrom(double low, double high);

// A scale, a unit or a tolerance. Within these limits nothing that a picture's values are multiplied with or divided by
// becomes infinite.
NumberRange positiveNumber();

NumberRange wholeNumberFrom(uint64_t low, uint64_t high);

}  // namespace nadir::tool
