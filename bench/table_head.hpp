// The head of a table of ratios.
#pragma once

#include "bench/work.hpp"

namespace nadir::bench {

// Columns with these names, then one of numbers for each level.
void printHead(const std::vector<const char*>& names, const std::vector<Level>& columns);

}  // namespace nadir::bench
