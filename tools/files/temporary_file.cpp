// All temporary files form a chain, so that they can be removed without any memory.
#include "tools/files/temporary_file.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <utility>

#include "tools/base/text.hpp"
#include "tools/files/file_error.hpp"

namespace nadir::tool {

namespace {

constexpr size_t keptName = 200;  // bytes of a target's name that its temporary name begins with
const char mark[] = ".nadir-", ending[] = ".part";
constexpr size_t digits = 16;

std::mutex chain;
TemporaryFile* newest = nullptr;

}  // namespace

std::string temporaryName(const std::string& target) {
  uint64_t number = 0;
  if (getentropy(&number, sizeof number) != 0) throw fileError("write", target, errno);
  const std::filesystem::path path(target);
  const std::string name = path.filename().string().substr(0, keptName);
  return (path.parent_path() / name).string() +
         format("%s%016llx%s", mark, static_cast<unsigned long long>(number), ending);
}

bool isTemporaryName(const std::string& name) {
  constexpr size_t length = sizeof mark - 1 + digits + sizeof ending - 1;
  if (name.size() < length) return false;
  const std::string end = name.substr(name.size() - length), number = end.substr(sizeof mark - 1, digits);
  return end == mark + number + ending && number.find_first_not_of("0123456789abcdef") == std::string::npos;
}

TemporaryFile::TemporaryFile() {
  const std::lock_guard<std::mutex> lock(chain);
  before_ = std::exchange(newest, this);
  if (before_) before_->next_ = this;
}

TemporaryFile::~TemporaryFile() {
  const std::lock_guard<std::mutex> lock(chain);
  (next_ ? next_->before_ : newest) = before_;
  if (before_) before_->next_ = next_;
  remove();
}

// Nobody has the name: it holds 64 random bits.
FileDescriptor TemporaryFile::make(const std::string& target, const std::string& shownAs) {
  std::string candidate = temporaryName(target);
  const std::lock_guard<std::mutex> lock(chain);
  FileDescriptor file(open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (file.number < 0) throw fileError("write", shownAs, errno);
  name_ = std::move(candidate);
  return file;
}

void TemporaryFile::rename(const std::string& target) {
  if (std::rename(name_.c_str(), target.c_str()) != 0) throw fileError("write", target, errno);
  inPlace_ = true;
}

void TemporaryFile::remove() const {
  if (!name_.empty() && !inPlace_) std::remove(name_.c_str());
}

void removeTemporaryFiles() {
  const std::lock_guard<std::mutex> lock(chain);
  for (const TemporaryFile* file = newest; file; file = file->before_) file->remove();
}

}  // namespace nadir::tool
