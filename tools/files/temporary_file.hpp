// A file that disappears again unless it gets the name for which it was made.
#pragma once

#include <string>

#include "tools/files/descriptor.hpp"

namespace nadir::tool {

// A name beside the target that nobody has, begun with its name. Throws where the system has no random number.
std::string temporaryName(const std::string& target);

// Whether a file's name is one that temporaryName() gives.
bool isTemporaryName(const std::string& name);

class TemporaryFile {
 public:
  TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile();

  // Makes the file and opens it for writing. Messages call its target `shownAs`.
  FileDescriptor make(const std::string& target, const std::string& shownAs);
  const std::string& name() const { return name_; }

  // Takes the place of the target.
  void rename(const std::string& target);
  bool inPlace() const { return inPlace_; }

 private:
  friend void removeTemporaryFiles();
  void remove() const;

  std::string name_;  // empty as long as there is no file
  bool inPlace_ = false;
  TemporaryFile *before_, *next_ = nullptr;
};

// Removes the files of all objects that there are, for a process that ends without their destructors.
void removeTemporaryFiles();

}  // namespace nadir::tool
