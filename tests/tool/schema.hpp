// Whether JSON that the tool writes fits its schema, judged by a validator that the tests trust.
#pragma once

#include <string>
#include <vector>

#include "tests/tool/json.hpp"

namespace nadir::test {

// For each document what does not fit, "" where everything does. All go to the validator at once, because each start of
// it costs as much as a run of the tool.
std::vector<std::string> mistakes(const std::string& schemaFile, const std::vector<Json>& documents);

// The tests say what was done to a document that they expect to fit no more.
struct Spoilt {
  std::string how;
  Json document;
};

// In each of these one object of the document, however deep, has one member less or one of another kind. Members called
// `optional` are not left out.
std::vector<Spoilt> spoilt(const Json& good, const std::string& optional = "");

// The document with a member more in every object, however deep.
Json extended(const Json& good);

// The document with a warning of the tests' own.
Json warned(const Json& good);

// The test fails for each of them that fits the schema.
void expectMisfits(const std::string& schemaFile, const std::vector<Spoilt>& documents);

}  // namespace nadir::test
