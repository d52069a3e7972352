// Files as a whole: read in one go, written so that either every output of a command is there or none.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tools/base/interrupt.hpp"

namespace nadir::tool {

using Bytes = std::vector<uint8_t>;

inline Bytes bytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

Bytes readFile(const std::string& path);
std::string readText(const std::string& path);

// Removes the temporary files of a killed process from a folder; no other process may be writing there.
void removeParts(const std::string& folder);

// The outputs of one command. write() fills a temporary file beside the target; commit() gives every one its name. What
// is not committed disappears with the object. It lives for the writing alone, because interrupts wait for its end.
class OutputFiles {
 public:
  // write() refuses to replace one of the inputs; an empty name is none.
  explicit OutputFiles(std::vector<std::string> inputs = {}) : inputs_(std::move(inputs)) {}
  OutputFiles(const OutputFiles&) = delete;
  OutputFiles& operator=(const OutputFiles&) = delete;
  ~OutputFiles();

  // Makes a folder unless it exists; its parent must exist.
  void makeFolder(const std::string& path);
  void write(const std::string& target, const Bytes& bytes);
  void commit();

 private:
  struct File {
    std::string target, temporary;
    bool inPlace;
  };
  std::vector<std::string> inputs_;
  InterruptDelay untilAllIsDone_;
  std::vector<File> files_;
  std::string newFolder_;
  bool committed_ = false;
};

}  // namespace nadir::tool
