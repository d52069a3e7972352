// Reading TOML files that people write: every mistake is told with its line.
#pragma once

#define TOML_ENABLE_FORMATTERS 0
#include <toml++/toml.h>

#include <string>
#include <utility>
#include <vector>

namespace nadir::tool {

// The mistakes in a file, collected so that one run tells all of them.
class Mistakes {
 public:
  explicit Mistakes(const std::string& path) : path_(path) {}

  void add(uint32_t line, const std::string& key, const std::string& reason);

  // Throws Error with a line "FILE:LINE: KEY: reason" for every mistake, in the file's order.
  void throwIfAny();

 private:
  std::string path_;
  std::vector<std::pair<uint32_t, std::string>> list_;
};

// `path` is for the messages alone. Refuses more than 1 MiB, and keys of more parts than the parser's stack has room
// for.
toml::table parseToml(const std::string& text, const std::string& path);

uint32_t lineOf(const toml::node& node);
uint32_t lineOf(const toml::key& key);

// The type in words, with its article.
const char* typeName(const toml::node& node);

}  // namespace nadir::tool
