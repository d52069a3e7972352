// What somebody who mistyped a name may have meant.
#pragma once

#include <string>
#include <vector>

namespace nadir::tool {

// The one of the names that the fewest letters make of it; empty where none is near.
std::string nearest(const std::string& mistyped, const std::vector<std::string>& names);

}  // namespace nadir::tool
