// The system's own words for what went wrong with a file.
#include "tools/files/file_error.hpp"

#include <cstring>

namespace nadir::tool {

Error fileError(const char* what, const std::string& path, int number) {
  return Error(std::string("cannot ") + what + " " + path + ": " + std::strerror(number));
}

}  // namespace nadir::tool
