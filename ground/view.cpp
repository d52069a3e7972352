// The words for the two views, in one place because options and files use the same ones.
#include "ground/view.hpp"

namespace nadir::ground {

const char* nameOf(View view) { return view == View::left ? "left" : "right"; }

View viewNamed(const std::string& name) { return name == nameOf(View::left) ? View::left : View::right; }

}  // namespace nadir::ground
