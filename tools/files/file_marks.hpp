// Files known by what they are, not by their names.
#pragma once

#include <sys/types.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace nadir::tool {

// A file may be named by another path or by a link: it is the same one. Paths without a file are passed over.
class FileMarks {
 public:
  explicit FileMarks(const std::vector<std::string>& paths);
  bool hold(const std::string& path) const;

 private:
  std::set<std::pair<dev_t, ino_t>> marks_;
};

}  // namespace nadir::tool
