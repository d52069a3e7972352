// Checks of numbers, each of which tells a mistake in one short sentence; CLI11's own let "nan", "0x10" and " 5" pass.
#include "tools/commands/number_range.hpp"

#include <charconv>

#include "tools/base/text.hpp"

namespace nadir::tool {

NumberRange numberFrom(double low, double high) {
  const std::string words = format("%.10g to %.10g", low, high);
  const auto mistake = [low, high, words](const std::string& text) {
    double number = 0;
    const bool decimal = text.find_first_not_of("0123456789+-.eE") == std::string::npos;
    const bool good = decimal && CLI::detail::lexical_cast(text, number) && number >= low && number <= high;
    return good ? std::string() : text + " is not a number from " + words;
  };
  return {words, CLI::Validator(mistake, "")};
}

NumberRange positiveNumber() { return numberFrom(1e-6, 1e6); }

// Only decimal digits pass: a fraction means nothing here, a sign would be taken modulo 2^64, and a 0 in front would
// make the number octal.
NumberRange wholeNumberFrom(uint64_t low, uint64_t high) {
  const std::string words = std::to_string(low) + " to " + std::to_string(high);
  const auto mistake = [low, high, words](const std::string& text) {
    uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    const bool good = text == std::to_string(number) && number >= low && number <= high;
    return good ? std::string() : text + " is not a whole number from " + words;
  };
  return {words, CLI::Validator(mistake, "")};
}

}  // namespace nadir::tool
