// Numbers as the JSON that this program writes holds them.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>

namespace nadir::tool {

// Members stay in the order in which they were added, so that people can read what is written.
using Json = nlohmann::ordered_json;

[[noreturn]] void refuseNumber();

// Throws UnusableFile where a text nests objects and lists deeper than any file of this program does: JSON's own
// functions call themselves for each level, and the stack would end.
void checkNesting(const std::string& text);

// What the text of a whole file holds. Throws UnusableFile, with the line, where that is no JSON or nests too deeply.
nlohmann::json parsedJson(const std::string& text);

// The number that a foreign file holds, if it is one within the range; throws UnusableFile where it is not.
double numberIn(const nlohmann::json& value, double least, double most);

// The same for a whole number.
template <class Whole>
Whole wholeNumberIn(const nlohmann::json& value, Whole least, Whole most) {
  if (!value.is_number_integer()) numberIn(value, 1, 0);  // throws
  const bool tooLarge = value.is_number_unsigned() && value.get<uint64_t>() > static_cast<uint64_t>(most);
  const bool tooSmall =
      !value.is_number_unsigned() && (std::is_unsigned_v<Whole> || value.get<int64_t>() < static_cast<int64_t>(least));
  if (tooLarge || tooSmall || value.get<Whole>() < least) refuseNumber();
  return value.get<Whole>();
}

// The multiple of 1 / steps that is nearest to the value. An infinite or unknown value becomes null, because JSON has
// no word for it.
Json roundedNumber(double value, double steps);

// The value with nine significant digits, which is what a float can tell; a whole one is written without a fraction.
// Infinite and unknown values become null.
Json significantNumber(double value);

}  // namespace nadir::tool
