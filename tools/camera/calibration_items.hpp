// The values that a calibration file names, whatever its syntax is, each with the place where it stands.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <vector>

namespace nadir::tool {

// The name and the text of a file.
struct CalibrationFile {
  std::string path, text;
};

struct CalibrationItem {
  std::string path, key;  // what stands in a table is called by both names, "cam0.intrinsics"
  int line = 0;
  std::vector<double> numbers;  // by rows; empty where it is no number and no list of numbers
  std::string word;             // of what stands alone, number or not
  mutable bool used = false;    // somebody has looked at it
};

// Throws Error with "FILE:LINE: KEY: reason".
[[noreturn]] void fail(const CalibrationItem& item, const std::string& reason);

// The items of one file, or of two that tell of the same thing.
class CalibrationItems {
 public:
  CalibrationItems() = default;
  explicit CalibrationItems(std::string path) : path_(std::move(path)) {}

  // Throws where there are too many, or one of the same key in the same file.
  void add(CalibrationItem item);

  // Takes what another file holds. Throws where both hold a key, with different numbers.
  void add(const CalibrationItems& others);

  // The first one of these names, or none. It then counts as used.
  const CalibrationItem* find(std::initializer_list<std::string> names) const;

  // The same, where there must be one; `reason` says why.
  const CalibrationItem& need(std::initializer_list<std::string> names, const std::string& reason) const;

  bool hasTable(const std::string& name) const;
  const std::string& path() const { return path_; }
  auto begin() const { return items_.begin(); }
  auto end() const { return items_.end(); }

 private:
  std::string path_;
  std::vector<CalibrationItem> items_;
};

// The item's numbers, which must be so many and none of them beyond 1e9.
std::vector<double> numbersOf(const CalibrationItem& item, size_t count, const char* what);
double numberOf(const CalibrationItem& item, double low, double high);

// Reads the syntax that the text is written in: YAML or JSON, XML as OpenCV has it, "key=value" as in a calib.txt, or
// TOML. Throws Error where it is none of them.
CalibrationItems calibrationItems(const CalibrationFile& file);

// The readers of each.
bool isXml(const std::string& text);
bool isPlainCalibration(const std::string& text);
bool isToml(const std::string& text);
CalibrationItems yamlItems(const CalibrationFile& file);
CalibrationItems xmlItems(const CalibrationFile& file);
CalibrationItems plainItems(const CalibrationFile& file);
CalibrationItems tomlItems(const CalibrationFile& file);

// The number that a word is, or not-a-number.
double numberIn(const std::string& word);

// The numbers in a text with blanks, commas, semicolons and brackets between them; none where something else is in it.
std::vector<double> numbersIn(const std::string& text);

// The most that a list may have to be looked at; longer ones are no matrix of a calibration.
constexpr size_t mostNumbers = 64;

}  // namespace nadir::tool
