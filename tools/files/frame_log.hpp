// The log of a sequence: a file with a JSON object per frame on a line of its own.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tools/base/json_value.hpp"
#include "tools/files/descriptor.hpp"

namespace nadir::tool {

class FrameLog {
 public:
  // Opens a plain file for appending and makes it unless it exists; a link is refused.
  explicit FrameLog(const std::string& path);
  // Writes in one go, so that whoever reads along sees the whole lines or nothing of them.
  void append(const std::string& lines);

  // Brings what was appended to the disk.
  void sync() const;

  // Leaves the first `bytes`.
  void cutOff(uintmax_t bytes) const;

 private:
  std::string path_;
  FileDescriptor file_;
};

// Calls use(object) for every line of a log, one after the other; a file that does not exist has none. A last line
// without its line break was being written when its run ended: it does not count. Throws where a line is no
// JSON, or lacks what use() asks of it. Returns the bytes of all lines that count.
uintmax_t forEachLine(const std::string& path, const std::function<void(const Json&)>& use);

}  // namespace nadir::tool
