// Reads files at once.
#include "tools/files/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/files/file_error.hpp"

namespace nadir::tool {

namespace {

struct stat statusOf(const FileDescriptor& file, const std::string& path) {
  struct stat status {};
  if (fstat(file.number, &status) != 0) throw fileError("read", path, errno);
  return status;
}

[[noreturn]] void refuseSize(const std::string& path, size_t limit) {
  throw UnusableFile(format("cannot use %s: it is larger than %zu bytes", path.c_str(), limit));
}

}  // namespace

FileDescriptor openedToRead(const std::string& path) {
  FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
  if (file.number < 0) throw fileError("read", path, errno);
  const mode_t mode = statusOf(file, path).st_mode;
  if (S_ISDIR(mode)) throw fileError("read", path, EISDIR);
  if (S_ISCHR(mode) || S_ISBLK(mode)) throw Error("cannot read " + path + ": it is a device");
  return file;
}

// The file's size saves the growing, and one byte more tells its end. A pipe has none to tell, and grows.
Bytes readFile(const std::string& path, size_t limit) {
  const FileDescriptor file = openedToRead(path);
  const auto told = static_cast<uint64_t>(std::max<off_t>(statusOf(file, path).st_size, 0));
  if (told > limit) refuseSize(path, limit);
  Bytes bytes(static_cast<size_t>(told) + 1);
  size_t filled = 0;
  while (const ssize_t count = read(file.number, bytes.data() + filled, bytes.size() - filled)) {
    if (count < 0 && errno != EINTR) throw fileError("read", path, errno);
    if (count > 0) filled += static_cast<size_t>(count);
    if (filled > limit) refuseSize(path, limit);
    if (filled == bytes.size()) bytes.resize(std::min(limit + 1, filled + std::max<size_t>(filled, 1 << 16)));
  }
  bytes.resize(filled);
  return bytes;
}

std::string readText(const std::string& path, size_t limit) {
  const Bytes bytes = readFile(path, limit);
  return std::string(bytes.begin(), bytes.end());
}

}  // namespace nadir::tool
