// Appends whole lines to a log, and reads them back up to where a killed run has stopped.
#include "tools/files/frame_log.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/files/file_error.hpp"

namespace nadir::tool {

FrameLog::FrameLog(const std::string& path)
    : path_(path), file_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666)) {
  if (file_ < 0) throw fileError("write", path, errno);
}

FrameLog::~FrameLog() { close(file_); }

void FrameLog::append(const std::string& line) {
  for (size_t done = 0; done < line.size();) {
    const ssize_t written = write(file_, line.data() + done, line.size() - done);
    if (written < 0 && errno != EINTR) throw fileError("write", path_, errno);
    if (written > 0) done += static_cast<size_t>(written);
  }
}

uintmax_t forEachLine(const std::string& path, const std::function<void(const nlohmann::json&)>& use) {
  std::ifstream file(path, std::ios::binary);
  uintmax_t whole = 0;
  unsigned number = 1;
  try {
    for (std::string line; std::getline(file, line) && !file.eof(); whole += line.size() + 1, ++number)
      use(nlohmann::json::parse(line));
  } catch (const nlohmann::json::exception&) {
    throw Error(format("cannot use %s: line %u is not what nadir writes there", path.c_str(), number));
  }
  return whole;
}

}  // namespace nadir::tool
