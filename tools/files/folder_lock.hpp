// One process at a time may write into a folder.
#pragma once

#include <string>

namespace nadir::tool {

// Held while it lives; a process that is killed lets go too. Throws where another one holds the folder. On a file
// system without locks it holds nothing.
class FolderLock {
 public:
  explicit FolderLock(const std::string& folder);
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;
  ~FolderLock();

 private:
  int folder_;
};

}  // namespace nadir::tool
