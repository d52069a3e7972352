// The JSON that the tool writes, read by a library that the tests trust.
#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "tests/tool/tool.hpp"

namespace nadir::test {

using Json = nlohmann::json;

// A text that is no JSON fails the test and gives null.
inline Json parseJson(const std::string& text) {
  const Json json = Json::parse(text, nullptr, false);
  EXPECT_FALSE(json.is_discarded()) << text;
  return json.is_discarded() ? Json() : json;
}

inline Json readJson(const std::string& path) { return parseJson(readFile(path)); }

}  // namespace nadir::test
