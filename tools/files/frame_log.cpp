// Appends whole lines to a log, and reads them back up to where a killed run has stopped.
#include "tools/files/frame_log.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/files/file_error.hpp"
#include "tools/files/files.hpp"
#include "tools/files/output_files.hpp"

namespace nadir::tool {

namespace {

constexpr size_t longestLine = size_t{1} << 24;

class Lines {
 public:
  explicit Lines(const std::string& path) : path_(path), file_(openedToRead(path)) {}

  // False where no further line has its end.
  bool next(std::string& line) {
    size_t end = 0;
    for (size_t from = 0; (end = text_.find('\n', begin_ + from)) == std::string::npos;) {
      from = text_.size() - begin_;
      if (from > longestLine) throw UnusableFile("it is too long");
      if (!readMore()) return false;
    }
    line = text_.substr(begin_, end - begin_);
    begin_ = end + 1;
    return true;
  }

 private:
  bool readMore() {
    char block[8192];
    ssize_t count = 0;
    while ((count = read(file_.number, block, sizeof block)) < 0)
      if (errno != EINTR) throw fileError("read", path_, errno);
    text_.erase(0, std::exchange(begin_, 0));
    text_.append(block, static_cast<size_t>(count));
    return count > 0;
  }

  std::string path_;
  FileDescriptor file_;
  std::string text_;
  size_t begin_ = 0;
};

}  // namespace

FrameLog::FrameLog(const std::string& path)
    : path_(path),
      file_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0666)) {
  if (file_.number < 0 && errno == ELOOP) throw Error("cannot write " + path + ": it is a link");
  struct stat status {};
  if (file_.number < 0 || fstat(file_.number, &status) != 0) throw fileError("write", path, errno);
  if (!S_ISREG(status.st_mode)) throw Error("cannot write " + path + ": it is not a plain file");
  syncFolder(std::filesystem::absolute(path).parent_path().string());
}

void FrameLog::sync() const {
  if (fdatasync(file_.number) != 0) throw fileError("write", path_, errno);
}

void FrameLog::cutOff(uintmax_t bytes) const {
  if (ftruncate(file_.number, static_cast<off_t>(bytes)) != 0) throw fileError("write", path_, errno);
}

void FrameLog::append(const std::string& lines) {
  for (size_t done = 0; done < lines.size();) {
    const ssize_t written = write(file_.number, lines.data() + done, lines.size() - done);
    if (written < 0 && errno != EINTR) throw fileError("write", path_, errno);
    if (written > 0) done += static_cast<size_t>(written);
  }
}

uintmax_t forEachLine(const std::string& path, const std::function<void(const Json&)>& use) {
  if (!std::filesystem::exists(path)) return 0;
  Lines lines(path);
  uintmax_t whole = 0;
  unsigned number = 1;
  try {
    for (std::string line; lines.next(line); whole += line.size() + 1, ++number) {
      checkNesting(line);
      use(Json::parse(line));
    }
  } catch (const nlohmann::json::exception&) {
    throw UnusableFile(format("cannot use %s: line %u is not what nadir writes there", path.c_str(), number));
  } catch (const UnusableFile& reason) {
    throw UnusableFile(format("cannot use %s: line %u: %s", path.c_str(), number, reason.what()));
  }
  return whole;
}

}  // namespace nadir::tool
