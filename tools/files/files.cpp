// Reads files at once, and writes the outputs of a command under temporary names first.
#include "tools/files/files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <regex>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/files/file_error.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FilePtr = std::unique_ptr<std::FILE, CloseFile>;

struct FileDescriptor {
  explicit FileDescriptor(int opened) : number(opened) {}
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  ~FileDescriptor() {
    if (number >= 0) close(number);
  }
  int number;
};

// A device or a folder must not be replaced by a picture. A link is followed, so that it stays a link.
std::string checkedTarget(const std::string& path) {
  if (path.empty()) throw Error("the name of an output is empty");
  std::error_code unknown;
  const fs::path target = fs::weakly_canonical(fs::absolute(path), unknown);
  if (unknown) throw fileError("write", path, unknown.value());
  const fs::file_status status = fs::status(target, unknown);
  if (fs::exists(status) && !fs::is_regular_file(status))
    throw Error("cannot write " + path + ": it is not a plain file");
  return target.string();
}

// The same file may be named by another path, or by a link.
bool isSameFile(const std::string& a, const std::string& b) {
  std::error_code missing;
  return fs::equivalent(a, b, missing) && !missing;
}

void writeNewFile(const std::string& path, const Bytes& bytes, const std::string& shownAs) {
  FilePtr file(std::fopen(path.c_str(), "wbx"));
  if (!file) throw fileError("write", shownAs, errno);
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  if (!written || std::fflush(file.get()) != 0) throw fileError("write", shownAs, errno);
}

}  // namespace

// The file's size saves the growing, and one byte more tells its end. A pipe has none to tell, and grows.
Bytes readFile(const std::string& path) {
  const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (file.number < 0 || fstat(file.number, &status) != 0) throw fileError("read", path, errno);
  Bytes bytes(static_cast<size_t>(std::max<off_t>(status.st_size, 0)) + 1);
  size_t filled = 0;
  while (const ssize_t count = read(file.number, bytes.data() + filled, bytes.size() - filled)) {
    if (count < 0 && errno != EINTR) throw fileError("read", path, errno);
    if (count > 0) filled += static_cast<size_t>(count);
    if (filled == bytes.size()) bytes.resize(filled + std::max<size_t>(filled, 1 << 16));
  }
  bytes.resize(filled);
  return bytes;
}

std::string readText(const std::string& path) {
  const Bytes bytes = readFile(path);
  return std::string(bytes.begin(), bytes.end());
}

void removeParts(const std::string& folder) {
  static const std::regex part(".*\\.[0-9]+\\.part");
  std::error_code missing;
  for (const auto& entry : fs::directory_iterator(folder, missing))
    if (std::regex_match(entry.path().filename().string(), part)) fs::remove(entry.path());
}

OutputFiles::~OutputFiles() {
  if (committed_) return;
  for (const File& file : files_) std::remove((file.inPlace ? file.target : file.temporary).c_str());
  if (!newFolder_.empty()) std::remove(newFolder_.c_str());
}

void OutputFiles::makeFolder(const std::string& path) {
  if (path.empty()) throw Error("the name of the output folder is empty");
  std::error_code error;
  if (fs::create_directory(path, error)) newFolder_ = path;
  if (error) throw fileError("make the folder", path, error.value());
}

void OutputFiles::write(const std::string& path, const Bytes& bytes) {
  const std::string target = checkedTarget(path);
  for (const std::string& input : inputs_)
    if (isSameFile(input, target)) throw Error("the output " + path + " is one of the inputs");
  for (const File& file : files_)
    if (file.target == target) throw Error("two outputs have the same name, " + path);
  files_.push_back({target, format("%s.%ld.part", target.c_str(), static_cast<long>(getpid())), false});
  writeNewFile(files_.back().temporary, bytes, path);
}

void OutputFiles::commit() {
  for (File& file : files_) {
    if (std::rename(file.temporary.c_str(), file.target.c_str()) != 0) throw fileError("write", file.target, errno);
    file.inPlace = true;
  }
  committed_ = true;
}

}  // namespace nadir::tool
