// The error that a command throws when it cannot go on: main() prints its sentence and ends with its status.
#pragma once

#include <stdexcept>
#include <string>

namespace nadir::tool {

struct Error : std::runtime_error {
  explicit Error(const std::string& sentence, int exitStatus = 1) : std::runtime_error(sentence), status(exitStatus) {}
  int status;
};

// The status of a run over many frames, or of a comparison of many results, that has done what it could.
constexpr int someFramesSkipped = 3;
constexpr int someNotCompared = 3;
constexpr int interrupted = 130;  // as a shell says of a program that Ctrl-C ended

}  // namespace nadir::tool
