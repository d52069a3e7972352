// A plan as a table and as JSON.
#pragma once

#include <string>

#include "tools/plan/plan.hpp"

namespace nadir::tool {

std::string planTable(const Plan& plan);
std::string planJson(const Plan& plan);

}  // namespace nadir::tool
