// Files as a whole: read in one go, with a limit to their size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/files/descriptor.hpp"

namespace nadir::tool {

using Bytes = std::vector<uint8_t>;

inline Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

constexpr size_t largestFile = size_t{1} << 28;  // bytes: the largest picture, 16-bit colours, has three quarters of it
constexpr size_t largestText = size_t{1} << 24;

// The name of standard input and output, where one file is meant.
inline const std::string standardStream = "-";

// Opens a plain file or a pipe. Folders have no bytes, and devices may have no end: both are refused.
FileDescriptor openedToRead(const std::string& path);

// A pipe is read once and gives the same again. Throws UnusableFile where there are more than `limit` bytes, which a
// pipe shows only when they have come.
Bytes readFile(const std::string& path, size_t limit = largestFile);
std::string readText(const std::string& path, size_t limit = largestText);

// The same of what somebody typed, or a program for people; throws where there are bytes that no such text has.
std::string readTypedText(const std::string& path);

}  // namespace nadir::tool
