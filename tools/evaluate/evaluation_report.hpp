// The words and the JSON in which nadir evaluate tells how far values are from the truth.
#pragma once

#include <string>

#include "tools/evaluate/evaluation.hpp"

namespace nadir::tool {

// `size` is that of the pictures, in words.
std::string disparityTable(const Evaluation& evaluation, const std::string& size);
std::string heightTable(const Evaluation& evaluation, const std::string& size);

// Shares are fractions of 1; what is unknown is null.
std::string disparityJson(const Evaluation& evaluation);
std::string heightJson(const Evaluation& evaluation);

}  // namespace nadir::tool
