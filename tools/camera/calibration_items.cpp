// Finds and checks what the syntaxes of calibration files have in common.
#include "tools/camera/calibration_items.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

constexpr size_t mostItems = 2000;
constexpr size_t largestCalibration = size_t{1} << 20;  // bytes; the largest that people have is a hundredth of it
constexpr double largestNumber = 1e9;

bool isBetweenNumbers(char c) { return c != 0 && std::string(" \t\r\n,;[]").find(c) != std::string::npos; }

}  // namespace

void fail(const CalibrationItem& item, const std::string& reason) {
  throw Error(format("%s:%d: %s: %s", item.path.c_str(), item.line, item.key.c_str(), reason.c_str()));
}

void CalibrationItems::add(CalibrationItem item) {
  if (items_.size() == mostItems) fail(item, format("is one key too many: at most %zu are read", mostItems));
  for (const CalibrationItem& other : items_)
    if (other.key == item.key && other.path == item.path)
      fail(item, format("is there twice, in line %d too; take one of them out", other.line));
  items_.push_back(std::move(item));
}

void CalibrationItems::add(const CalibrationItems& others) {
  for (const CalibrationItem& item : others) {
    const auto sameKey = [&](const CalibrationItem& other) { return other.key == item.key; };
    const auto here = std::find_if(begin(), end(), sameKey);
    if (here != end() && (here->numbers != item.numbers || here->word != item.word))
      fail(item,
           format("is not what %s says in line %d; take two files of one calibration", here->path.c_str(), here->line));
    if (here == end()) add(item);
  }
}

const CalibrationItem* CalibrationItems::find(std::initializer_list<std::string> names) const {
  for (const std::string& name : names)
    for (const CalibrationItem& item : items_)
      if (item.key == name) return item.used = true, &item;
  return nullptr;
}

const CalibrationItem& CalibrationItems::need(std::initializer_list<std::string> names,
                                              const std::string& reason) const {
  if (const CalibrationItem* item = find(names)) return *item;
  throw Error(format("%s:1: %s: is missing%s%s", path_.c_str(), names.begin()->c_str(), reason.empty() ? "" : ", ",
                     reason.c_str()));
}

bool CalibrationItems::hasTable(const std::string& name) const {
  return std::any_of(begin(), end(), [&](const CalibrationItem& i) { return i.key.rfind(name + ".", 0) == 0; });
}

std::vector<double> numbersOf(const CalibrationItem& item, size_t count, const char* what) {
  if (item.numbers.size() != count) fail(item, format("is not %s: %zu numbers", what, count));
  for (const double number : item.numbers)
    if (!(std::abs(number) <= largestNumber)) fail(item, "holds something that is not a number up to 1e9");
  return item.numbers;
}

double numberOf(const CalibrationItem& item, double low, double high) {
  const double number = numbersOf(item, 1, "a number")[0];
  if (!(number >= low && number <= high)) fail(item, format("is %g, must lie between %g and %g", number, low, high));
  return number;
}

double numberIn(const std::string& word) {
  char* end = nullptr;
  const double number = std::strtod(word.c_str(), &end);
  return word.empty() || *end != 0 ? std::nan("") : number;
}

std::vector<double> numbersIn(const std::string& text) {
  std::vector<double> numbers;
  size_t place = 0;
  while (place < text.size()) {
    while (place < text.size() && isBetweenNumbers(text[place])) ++place;
    const size_t first = place;
    while (place < text.size() && !isBetweenNumbers(text[place])) ++place;
    if (place == first) break;
    numbers.push_back(numberIn(text.substr(first, place - first)));
    if (std::isnan(numbers.back()) || numbers.size() > mostNumbers) return {};
  }
  return numbers;
}

CalibrationItems calibrationItems(const CalibrationFile& file) {
  if (file.text.size() > largestCalibration)
    throw UnusableFile(
        format("cannot use %s: a calibration has at most %zu bytes", file.path.c_str(), largestCalibration));
  if (isXml(file.text)) return xmlItems(file);
  if (isPlainCalibration(file.text)) return plainItems(file);
  return isToml(file.text) ? tomlItems(file) : yamlItems(file);
}

}  // namespace nadir::tool
