// Whether JSON that the tool writes fits its schema, judged by a validator that the tests trust.
#pragma once

#include <string>
#include <vector>

#include "tests/tool/json.hpp"

namespace nadir::test {

// For each document what does not fit, "" where everything does. All go to the validator at once, because each start of
// it costs as much as a run of the tool.
std::vector<std::string> mistakes(const std::string& schemaFile, const std::vector<Json>& documents);

}  // namespace nadir::test
