// Reads files at once.
#include "tools/files/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <mutex>

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

int openedNumber(const std::string& path) {
  if (path == standardStream) return fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  return open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
}

// A pipe gives its bytes once, but a camera file is asked for its camera, its areas and its lenses: what came through a
// pipe stays.
class Piped {
 public:
  const Bytes* find(const std::string& path) {
    const std::lock_guard<std::mutex> guard(lock_);
    const auto found = bytes_.find(path);
    return found == bytes_.end() ? nullptr : &found->second;
  }

  void keep(const std::string& path, const Bytes& bytes) {
    const std::lock_guard<std::mutex> guard(lock_);
    bytes_.emplace(path, bytes);
  }

 private:
  std::mutex lock_;
  std::map<std::string, Bytes> bytes_;
};

Piped& piped() {
  static Piped all;
  return all;
}

}  // namespace

FileDescriptor openedToRead(const std::string& path) {
  FileDescriptor file(openedNumber(path));
  if (file.number < 0) throw fileError("read", path, errno);
  const mode_t mode = statusOf(file, path).st_mode;
  if (S_ISDIR(mode)) throw fileError("read", path, EISDIR);
  if (S_ISCHR(mode) || S_ISBLK(mode)) throw Error("cannot read " + path + ": it is a device");
  return file;
}

// The file's size saves the growing, and one byte more tells its end. A pipe has none to tell, and grows.
Bytes readFile(const std::string& path, size_t limit) {
  if (const Bytes* before = piped().find(path)) return *before;
  const FileDescriptor file = openedToRead(path);
  const struct stat status = statusOf(file, path);
  const auto told = static_cast<uint64_t>(std::max<off_t>(status.st_size, 0));
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
  if (!S_ISREG(status.st_mode) || path == standardStream) piped().keep(path, bytes);
  return bytes;
}

std::string readText(const std::string& path, size_t limit) {
  const Bytes bytes = readFile(path, limit);
  return std::string(bytes.begin(), bytes.end());
}

std::string readTypedText(const std::string& path) {
  std::string text = readText(path);
  const size_t zero = text.find('\0');
  if (zero == std::string::npos) return text;
  const auto line = 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(zero), '\n');
  throw UnusableFile(path + ":" + std::to_string(line) + ": a byte is 0: this is no text file");
}

}  // namespace nadir::tool
