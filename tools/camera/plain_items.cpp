// Reads lines of "key=value", where a matrix is "[a b c; d e f]", as in Middlebury's calib.txt.
#include <sstream>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/calibration_items.hpp"

namespace nadir::tool {

namespace {

std::string withoutBlanksBehind(std::string text) {
  text.erase(text.find_last_not_of(" \t\r") + 1);
  return text;
}

}  // namespace

// TOML, which has such lines too, has commas in its lists.
bool isPlainCalibration(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);)
    if (line.rfind("cam0=[", 0) == 0) return true;
  return false;
}

CalibrationItems plainItems(const CalibrationFile& file) {
  CalibrationItems items(file.path);
  std::istringstream lines(file.text);
  int number = 0;
  for (std::string line; std::getline(lines, line);) {
    ++number;
    line = withoutBlanksBehind(line);
    const size_t sign = line.find('=');
    if (line.empty()) continue;
    if (sign == std::string::npos)
      throw Error(format("%s:%d: it is no line \"key=value\" of a calib.txt", file.path.c_str(), number));
    const std::string value = line.substr(sign + 1);
    items.add({file.path, withoutBlanksBehind(line.substr(0, sign)), number, numbersIn(value), value});
  }
  return items;
}

}  // namespace nadir::tool
