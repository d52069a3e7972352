#include "frame_log.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

#include "error.hpp"
#include "text.hpp"

namespace nadir::tool {

namespace {

[[noreturn]] void fail(const std::string& path) { throw Error("cannot write " + path + ": " + std::strerror(errno)); }

nlohmann::json parsed(const std::string& line, const std::string& path) {
  nlohmann::json json = nlohmann::json::parse(line, nullptr, false);
  if (!json.is_object()) throw Error("cannot go on with " + path + ": it has lines that nadir ground did not write");
  return json;
}

}  // namespace

FrameLog::FrameLog(const std::string& path)
    : path_(path), file_(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666)) {
  if (file_ < 0) fail(path);
}

FrameLog::~FrameLog() { close(file_); }

void FrameLog::append(const std::string& line) {
  for (size_t done = 0; done < line.size();) {
    const ssize_t written = write(file_, line.data() + done, line.size() - done);
    if (written < 0 && errno != EINTR) fail(path_);
    if (written > 0) done += static_cast<size_t>(written);
  }
}

uintmax_t forEachLine(const std::string& path, const std::function<void(const nlohmann::json&)>& use) {
  std::ifstream file(path, std::ios::binary);
  uintmax_t whole = 0;
  for (std::string line; std::getline(file, line) && !file.eof(); whole += line.size() + 1) use(parsed(line, path));
  return whole;
}

}  // namespace nadir::tool
