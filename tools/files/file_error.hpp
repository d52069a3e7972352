// The sentence for a file that the system refuses.
#pragma once

#include <string>

#include "tools/base/error.hpp"

namespace nadir::tool {

// Makes "cannot write PATH: REASON" of "write"; `number` is what errno, or the value of an error code, says.
Error fileError(const char* what, const std::string& path, int number);

}  // namespace nadir::tool
