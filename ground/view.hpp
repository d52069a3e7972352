// The two views of a pair, and the words for them.
#pragma once

#include <string>

namespace nadir::ground {

enum class View { left, right };

// "left" or "right".
const char* nameOf(View view);

// The view of that name; every other word means the right one.
View viewNamed(const std::string& name);

}  // namespace nadir::ground
