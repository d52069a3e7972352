// Checks for options that are numbers. Each tells a mistake in one short sentence; CLI11's own let "nan" pass.
#pragma once

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstdint>

#include "tools/base/text.hpp"

namespace nadir::tool {

inline CLI::Validator numberFrom(double low, double high) {
  const auto mistake = [low, high](const std::string& text) {
    double number = 0;
    const bool good = CLI::detail::lexical_cast(text, number) && number >= low && number <= high;
    return good ? std::string() : format("%s is not a number from %g to %g", text.c_str(), low, high);
  };
  return CLI::Validator(mistake, "");
}

// A scale, a unit or a tolerance. Within these limits nothing that a picture's values are multiplied with or divided by
// becomes infinite.
inline CLI::Validator positiveNumber() { return numberFrom(1e-6, 1e6); }

// Decimal digits alone: no fraction, no sign, which would be taken modulo 2^64, and no 0 in front, which would make it
// octal.
inline CLI::Validator wholeNumberFrom(uint64_t low, uint64_t high) {
  const auto mistake = [low, high](const std::string& text) {
    uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    const bool good = text == std::to_string(number) && number >= low && number <= high;
    return good ? std::string()
                : format("%s is not a whole number from %ju to %ju", text.c_str(), uintmax_t{low}, uintmax_t{high});
  };
  return CLI::Validator(mistake, "");
}

}  // namespace nadir::tool
