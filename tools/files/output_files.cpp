// A file gets its name when its bytes are on the disk; a name is safe when its folder is there, too.
#include "tools/files/output_files.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/files/file_error.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

// Links are followed to their end, which need not exist, so that they stay links. The system tells of loops.
fs::path endOfLinks(const fs::path& path, std::error_code& error) {
  fs::path target = fs::weakly_canonical(fs::absolute(path), error);
  std::error_code missing;
  while (!error && fs::is_symlink(fs::symlink_status(target, missing))) {
    const fs::path next = fs::read_symlink(target, error);
    if (!error) target = fs::weakly_canonical(target.parent_path() / next, error);
  }
  return target;
}

// The mode of the file that is there already. A device or a folder must not be replaced by a picture, and what its
// owner has protected from writing must not be replaced at all.
std::optional<mode_t> modeToKeep(const std::string& target, const std::string& shownAs) {
  struct stat status {};
  if (stat(target.c_str(), &status) != 0) return {};
  if (!S_ISREG(status.st_mode)) throw Error("cannot write " + shownAs + ": it is not a plain file");
  if ((status.st_mode & 0222) == 0) throw Error("cannot write " + shownAs + ": it is read-only");
  if (access(target.c_str(), W_OK) != 0) throw fileError("write", shownAs, errno);
  return status.st_mode & 0777;
}

// A file system that knows one mode for all its files refuses to change it.
void giveMode(const FileDescriptor& file, mode_t mode, const std::string& shownAs) {
  struct stat status {};
  if (fstat(file.number, &status) == 0 && (status.st_mode & 0777) == mode) return;
  if (fchmod(file.number, mode) != 0) throw fileError("write", shownAs, errno);
}

// The disk begins to work at once; commit() waits for it.
void fill(FileDescriptor file, const Bytes& bytes, const std::string& shownAs) {
  for (size_t done = 0; done < bytes.size();) {
    const ssize_t written = ::write(file.number, bytes.data() + done, bytes.size() - done);
    if (written < 0 && errno != EINTR) throw fileError("write", shownAs, errno);
    if (written > 0) done += static_cast<size_t>(written);
  }
  sync_file_range(file.number, 0, 0, SYNC_FILE_RANGE_WRITE);
  const int number = std::exchange(file.number, -1);
  if (close(number) != 0) throw fileError("write", shownAs, errno);
}

void sync(const std::string& path, int flags, const std::string& shownAs) {
  const FileDescriptor file(open(path.c_str(), O_CLOEXEC | flags));
  if (file.number < 0) throw fileError("write", shownAs, errno);
  if (fsync(file.number) != 0 && errno != EINVAL) throw fileError("write", shownAs, errno);
}

// A file system without links moves the predecessor away.
std::string keptPredecessor(const std::string& target) {
  struct stat status {};
  if (lstat(target.c_str(), &status) != 0) return "";
  std::string name = temporaryName(target);
  if (link(target.c_str(), name.c_str()) == 0 || std::rename(target.c_str(), name.c_str()) == 0) return name;
  throw fileError("write", target, errno);
}

}  // namespace

// File systems that cannot do it for folders say EINVAL.
void syncFolder(const std::string& folder) { sync(folder, O_RDONLY | O_DIRECTORY, folder); }

void removeParts(const std::string& folder) {
  std::error_code missing;
  for (const auto& entry : fs::directory_iterator(folder, missing))
    if (fs::is_regular_file(entry.symlink_status(missing)) && isTemporaryName(entry.path().filename().string()))
      fs::remove(entry.path(), missing);
}

// Where the predecessor has its name still, only its second one has to go. A predecessor that cannot come back stays
// under its second name, because nothing else holds its bytes.
void OutputFiles::putBack(const File& file) {
  const char *target = file.target.c_str(), *predecessor = file.predecessor.c_str();
  const bool replaced = file.temporary.inPlace();
  if (file.predecessor.empty()) {
    if (replaced) std::remove(target);
  } else if (!replaced && access(target, F_OK) == 0) {
    std::remove(predecessor);
  } else if (std::rename(predecessor, target) != 0) {
    std::remove(target);
    if (link(predecessor, target) == 0) std::remove(predecessor);
  }
}

OutputFiles::~OutputFiles() {
  for (auto file = files_.rbegin(); file != files_.rend(); ++file)
    if (!committed_)
      putBack(*file);
    else if (!file->predecessor.empty())
      std::remove(file->predecessor.c_str());
  files_.clear();  // the folders are empty now
  if (committed_) return;
  for (auto folder = newFolders_.rbegin(); folder != newFolders_.rend(); ++folder) std::remove(folder->c_str());
}

void OutputFiles::makeFolder(const std::string& path) {
  if (path.empty()) throw Error("the name of the output folder is empty");
  std::error_code error;
  newFolders_.emplace_back();
  if (fs::create_directory(path, error))
    newFolders_.back() = fs::canonical(path).string();
  else
    newFolders_.pop_back();
  if (error) throw fileError("make the folder", path, error.value());
}

void OutputFiles::write(const std::string& path, const Bytes& bytes) {
  if (path == standardStream) {
    giveUpStandardOutput();
    standardOutput_.insert(standardOutput_.end(), bytes.begin(), bytes.end());
    return;
  }
  if (path.empty()) throw Error("the name of an output is empty");
  std::error_code unknown;
  const std::string target = endOfLinks(path, unknown).string();
  if (unknown) throw fileError("write", path, unknown.value());
  const std::optional<mode_t> mode = modeToKeep(target, path);
  if (inputs_->hold(target)) throw Error("the output " + path + " is one of the inputs");
  for (const File& file : files_)
    if (file.target == target) throw Error("two outputs have the same name, " + path);
  files_.emplace_back(target);
  FileDescriptor file = files_.back().temporary.make(target, path);
  if (mode) giveMode(file, *mode, path);
  fill(std::move(file), bytes, path);
}

void OutputFiles::fillStandardOutput() const {
  if (standardOutput_.empty()) return;
  const size_t written = std::fwrite(standardOutput_.data(), 1, standardOutput_.size(), stdout);
  if (written != standardOutput_.size() || std::fflush(stdout) != 0) throw Error("cannot write to standard output");
}

// A reader who has left is noticed before a file has its name.
void OutputFiles::commit() {
  fillStandardOutput();
  for (const File& file : files_) sync(file.temporary.name(), O_WRONLY, file.target);
  for (File& file : files_) file.predecessor = keptPredecessor(file.target);
  for (File& file : files_) file.temporary.rename(file.target);
  syncFolders();
  committed_ = true;
}

void OutputFiles::syncFolders() const {
  std::set<std::string> folders;
  for (const File& file : files_) folders.insert(fs::path(file.target).parent_path().string());
  for (const std::string& folder : newFolders_) folders.insert(fs::path(folder).parent_path().string());
  for (const std::string& folder : folders) syncFolder(folder);
}

}  // namespace nadir::tool
