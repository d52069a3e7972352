// Mistakes in TOML files, told by line and key.
#include "tools/files/toml_file.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

void Mistakes::add(uint32_t line, const std::string& key, const std::string& reason) {
  list_.push_back({line, format("%s:%u: %s: %s", path_.c_str(), line, key.c_str(), reason.c_str())});
}

void Mistakes::throwIfAny() {
  if (list_.empty()) return;
  std::stable_sort(list_.begin(), list_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::string text;
  for (const auto& [line, sentence] : list_) text += (text.empty() ? "" : "\n") + sentence;
  throw Error(text);
}

namespace {

constexpr size_t largestToml = size_t{1} << 20;  // bytes; a camera with a thousand areas has a tenth of it

// The parser calls itself for every part of a key, a.b.c. A number has one dot: each further one before the next sign
// that ends a key or a value may be one more level.
void checkDots(const std::string& text, const std::string& path) {
  constexpr unsigned mostDots = 4096;
  unsigned further = 0, line = 1;
  bool oneDot = false;
  for (const char c : text) {
    line += c == '\n';
    if (std::strchr(",=[]{}\n", c)) oneDot = false;
    if (c == '.') further += std::exchange(oneDot, true);
    if (further > mostDots)
      throw UnusableFile(format("%s:%u: too many dots: its keys nest too deeply", path.c_str(), line));
  }
}

}  // namespace

toml::table parseToml(const std::string& text, const std::string& path) {
  if (text.size() > largestToml)
    throw UnusableFile(format("cannot use %s: it is larger than %zu bytes", path.c_str(), largestToml));
  checkDots(text, path);
  try {
    return toml::parse(text, path);
  } catch (const toml::parse_error& error) {
    const std::string reason(error.description());
    throw Error(format("%s:%u: %s", path.c_str(), error.source().begin.line, reason.c_str()));
  }
}

uint32_t lineOf(const toml::node& node) { return std::max<uint32_t>(1, node.source().begin.line); }

uint32_t lineOf(const toml::key& key) { return std::max<uint32_t>(1, key.source().begin.line); }

const char* typeName(const toml::node& node) {
  switch (node.type()) {
    case toml::node_type::string: return "a text";
    case toml::node_type::boolean: return "true or false";
    case toml::node_type::array: return "a list";
    case toml::node_type::table: return "a table";
    case toml::node_type::floating_point: return "a number with a fraction";
    case toml::node_type::integer: return "a whole number";
    default: return "a date or time";
  }
}

}  // namespace nadir::tool
