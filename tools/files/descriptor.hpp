// An open file, which is closed with its object.
#pragma once

#include <unistd.h>

namespace nadir::tool {

struct FileDescriptor {
  explicit FileDescriptor(int opened) : number(opened) {}
  FileDescriptor(FileDescriptor&& other) noexcept : number(other.number) { other.number = -1; }
  FileDescriptor& operator=(FileDescriptor&&) = delete;
  ~FileDescriptor() {
    if (number >= 0) close(number);
  }
  int number;
};

}  // namespace nadir::tool
