// A camera file with another mount: what people wrote around it stays as it is.
#pragma once

#include <optional>
#include <string>

namespace nadir::tool {

// What is absent stays as the file has it.
struct MountNumbers {
  std::optional<double> heightMm, tiltDeg, panDeg;
};

// The text of a camera file with these numbers in it: in the place of those that are there, or of the comments that ask
// for them, else above the first table. All else, comments too, is kept to the byte.
//
// path  for the messages alone
std::string textWithMount(const std::string& text, const std::string& path, const MountNumbers& mount);

}  // namespace nadir::tool
