// A check for options that are numbers.
#pragma once

#include <CLI/CLI.hpp>

#include "text.hpp"

namespace nadir::tool {

// CLI::Range lets "nan" pass.
inline CLI::Validator numberFrom(double low, double high) {
  const auto mistake = [low, high](const std::string& text) {
    double number = 0;
    const bool good = CLI::detail::lexical_cast(text, number) && number >= low && number <= high;
    return good ? std::string() : format("%s is not a number from %g to %g", text.c_str(), low, high);
  };
  return CLI::Validator(mistake, "");
}

}  // namespace nadir::tool
