// A file is marked by its device and its number there.
#include "tools/files/file_marks.hpp"

#include <sys/stat.h>

namespace nadir::tool {

FileMarks::FileMarks(const std::vector<std::string>& paths) {
  struct stat status {};
  for (const std::string& path : paths)
    if (stat(path.c_str(), &status) == 0) marks_.emplace(status.st_dev, status.st_ino);
}

bool FileMarks::hold(const std::string& path) const {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && marks_.count({status.st_dev, status.st_ino}) > 0;
}

}  // namespace nadir::tool
