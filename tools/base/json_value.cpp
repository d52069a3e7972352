// JSON of files is taken apart with care, and numbers are rounded for it.
#include "tools/base/json_value.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

void refuseNumber() { throw UnusableFile("a number is out of its range"); }

// Brackets in texts do not count.
void checkNesting(const std::string& text) {
  constexpr int deepest = 64;
  bool quoted = false;
  int depth = 0;
  for (size_t i = 0; i < text.size() && depth <= deepest; ++i) {
    const char c = text[i];
    if (c == '"') quoted = !quoted;
    if (quoted && c == '\\') ++i;
    if (!quoted) depth += (c == '[' || c == '{') - (c == ']' || c == '}');
  }
  if (depth > deepest) throw UnusableFile("it is nested too deeply");
}

nlohmann::json parsedJson(const std::string& text) {
  checkNesting(text);
  try {
    return nlohmann::json::parse(text);
  } catch (const nlohmann::json::parse_error& error) {
    const auto place = text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
    throw UnusableFile(format("line %zu is no JSON", 1 + static_cast<size_t>(std::count(text.begin(), place, '\n'))));
  }
}

double numberIn(const nlohmann::json& value, double least, double most) {
  const double number = value.get<double>();
  if (!(number >= least && number <= most)) refuseNumber();
  return number;
}

Json roundedNumber(double value, double steps) {
  return std::isfinite(value) ? Json(std::round(value * steps) / steps) : Json();
}

Json significantNumber(double value) {
  if (!std::isfinite(value)) return Json();
  const double kept = std::strtod(format("%.9g", value).c_str(), nullptr);
  const bool isWhole = kept == std::floor(kept) && std::abs(kept) < 1e9;
  return isWhole ? Json(static_cast<int64_t>(kept)) : Json(kept);
}

}  // namespace nadir::tool
