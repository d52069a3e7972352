// The error that a command throws when it cannot go on: main() prints its sentence and ends with its status.
#pragma once

#include <stdexcept>
#include <string>

namespace nadir::tool {

struct Error : std::runtime_error {
  explicit Error(const std::string& sentence, int exitStatus = 1) : std::runtime_error(sentence), status(exitStatus) {}
  int status;
};

// The bytes of a file prove that it cannot be used. Every other error may be a passing one of the system's, after which
// the same file can be read.
struct UnusableFile : Error {
  using Error::Error;
};

// The status of work that is done, but not all of it can be relied on: frames were skipped, results not compared, or
// there are warnings and the user asked for none.
constexpr int notAllReliable = 3;
constexpr int someNotCompared = 3;
constexpr int interrupted = 130;  // as a shell says of a program that Ctrl-C ended

}  // namespace nadir::tool
