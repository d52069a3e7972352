// Whether JSON that the tool writes fits its schema, judged by a validator that the tests trust.
#pragma once

#include <string>
#include <vector>

#include "tests/tool/json.hpp"

namespace nadir::test {

// For each document what does not fit, "" where everything does. All go to the validator at once, because each start of
// it costs as much as a run of the tool.
std::vector<std::string> mistakes(const std::string& schemaFile, const std::vector<Json>& documents);

// A document, and what was done to it.
struct Spoilt {
  std::string how;
  Json document;
};

// Every object in a document, however deep, with a member more, and without or with another kind of each of its
// members. Members called `optional` are not left out.
std::vector<Spoilt> spoilt(const Json& good, const std::string& optional = "");

// The schema says of each of them that it does not fit.
void expectMisfits(const std::string& schemaFile, const std::vector<Spoilt>& documents);

}  // namespace nadir::test
