// The two views of a pair, and the words for them: options and files use the same ones.
#pragma once

#include <string>

namespace nadir::tool {

enum class View { left, right };

// "left" or "right".
inline const char* nameOf(View view) { return view == View::left ? "left" : "right"; }

// The view of that name; every other word means the right one.
inline View viewNamed(const std::string& name) { return name == nameOf(View::left) ? View::left : View::right; }

}  // namespace nadir::tool
