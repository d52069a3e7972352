// What a command throws when it cannot go on. main() prints it as one sentence and ends with status 1.
#pragma once

#include <stdexcept>

namespace nadir::tool {

struct Error : std::runtime_error {
  using std::runtime_error::runtime_error;
};

}  // namespace nadir::tool
