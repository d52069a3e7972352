// The lines of an index become rows: fields first, and then those of the columns that are named.
#include "tools/sequence/frame_index.hpp"

#include <algorithm>
#include <filesystem>
#include <map>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/files/files.hpp"

namespace nadir::tool {

namespace fs = std::filesystem;

namespace {

using Fields = std::vector<std::string>;

// What stands between quotes may hold commas, and two quotes for one; it ends with its line.
std::string takeQuoted(const std::string& line, size_t& at) {
  std::string field;
  for (++at; at < line.size(); ++at) {
    if (line[at] == '"' && line.compare(at, 2, "\"\"") != 0) break;
    at += line[at] == '"';
    field += line[at];
  }
  if (at == line.size()) throw UnusableFile("a quote is missing");
  ++at;
  return field;
}

std::string takeField(const std::string& line, size_t& at) {
  if (at < line.size() && line[at] == '"') return takeQuoted(line, at);
  const size_t end = std::min(line.find(',', at), line.size()), begin = at;
  at = end;
  return line.substr(begin, end - begin);
}

Fields fieldsOf(const std::string& line) {
  Fields fields;
  size_t at = 0;
  for (bool more = true; more; ++at) {
    fields.push_back(takeField(line, at));
    more = at < line.size();
    if (more && line[at] != ',') throw UnusableFile("a comma is missing");
  }
  return fields;
}

// A column that is not there has no fields.
class Column {
 public:
  Column(const Fields& names, const char* name)
      : place_(static_cast<size_t>(std::find(names.begin(), names.end(), name) - names.begin())),
        isThere_(place_ < names.size()) {}

  bool isThere() const { return isThere_; }
  std::string of(const Fields& row) const { return isThere_ ? row[place_] : ""; }

 private:
  size_t place_;
  bool isThere_;
};

// Every row names its camera, and there are few: each name is looked for once.
class WantedCamera {
 public:
  WantedCamera(const std::string& index, const std::string& camera)
      : folder_(fs::path(index).parent_path()), camera_(fs::weakly_canonical(camera)) {}

  bool isNamed(const std::string& name) {
    const auto [known, isNew] = known_.try_emplace(name, name.empty());
    if (isNew && !name.empty()) known->second = fs::weakly_canonical(folder_ / name) == camera_;
    return known->second;
  }

 private:
  fs::path folder_, camera_;
  std::map<std::string, bool> known_;
};

class Index {
 public:
  Index(const std::string& path, const std::string& camera) : wanted_(path, camera) {
    const Bytes bytes = readFile(path);
    unsigned line = 1;
    try {
      for (auto at = bytes.begin(); at != bytes.end(); ++line) {
        const auto end = std::find(at, bytes.end(), '\n');
        take(std::string(at, end));
        at = end == bytes.end() ? end : end + 1;
      }
    } catch (const UnusableFile& reason) {
      throw UnusableFile(format("cannot use %s: line %u: %s", path.c_str(), line, reason.what()));
    }
    if (rows_.empty()) throw UnusableFile("cannot use " + path + ": it names no pair of the camera " + camera);
  }

  std::vector<IndexRow> rows() && { return std::move(rows_); }

 private:
  void take(std::string line) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    if (line.empty()) return;
    const Fields fields = fieldsOf(line);
    if (names_.empty())
      takeNames(fields);
    else
      takeRow(fields);
  }

  void takeNames(Fields names) {
    const std::string byteOrder = "\xEF\xBB\xBF";  // spreadsheets begin with it
    if (names[0].compare(0, byteOrder.size(), byteOrder) == 0) names[0].erase(0, byteOrder.size());
    names_ = std::move(names);
    for (const char* needed : {"left", "time"})
      if (!Column(names_, needed).isThere())
        throw UnusableFile(std::string("it has to name the columns, left and time among them: there is no ") + needed);
  }

  void takeRow(const Fields& fields) {
    if (fields.size() != names_.size())
      throw UnusableFile(format("it has %zu fields for %zu columns", fields.size(), names_.size()));
    if (!wanted_.isNamed(Column(names_, "camera").of(fields))) return;
    IndexRow row{Column(names_, "left").of(fields), Column(names_, "right").of(fields),
                 Column(names_, "time").of(fields)};
    if (row.left.empty()) throw UnusableFile("it names no left picture");
    if (row.time.empty() || row.time.find_first_not_of("0123456789") != std::string::npos)
      throw UnusableFile("the time \"" + row.time + "\" is no whole number: --times tells its unit");
    rows_.push_back(std::move(row));
  }

  WantedCamera wanted_;
  Fields names_;
  std::vector<IndexRow> rows_;
};

}  // namespace

bool isIndex(const std::string& path) { return fs::path(path).extension() == ".csv" && fs::exists(path); }

std::vector<IndexRow> indexRows(const std::string& path, const std::string& camera) {
  return Index(path, camera).rows();
}

}  // namespace nadir::tool
