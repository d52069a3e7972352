// An index: a table of pairs, as comma-separated values (RFC 4180), each row with its time and its camera.
#pragma once

#include <string>
#include <vector>

namespace nadir::tool {

struct IndexRow {
  std::string left, right, time;  // a time has digits alone
};

// Files whose names end with .csv are indexes.
bool isIndex(const std::string& path);

// The rows of a camera. The first line names the columns, in any order: left and time have to be there, right and
// camera may, others are passed over. Rows that name another camera file are left out; those that name none are not.
// Files are named from the index's folder on. Throws UnusableFile, with the line, where a row cannot be used.
std::vector<IndexRow> indexRows(const std::string& path, const std::string& camera);

}  // namespace nadir::tool
