// Reads the calibration that stands in a camera file: the tables [left_lens], [right_lens] and [pose].
#include <sstream>

#include "tools/camera/calibration_items.hpp"
#include "tools/files/toml_file.hpp"

namespace nadir::tool {

namespace {

// What is no number becomes not-a-number, which is told where the value is used.
std::vector<double> numbersIn(const toml::node& node) {
  if (!node.is_array()) return {node.value<double>().value_or(std::nan(""))};
  std::vector<double> numbers;
  for (const toml::node& element : *node.as_array())
    if (numbers.size() <= mostNumbers) numbers.push_back(element.value<double>().value_or(std::nan("")));
  return numbers;
}

void addTable(const toml::table& table, const std::string& prefix, const std::string& path, CalibrationItems& items) {
  for (const auto& [name, node] : table) {
    const std::string key = prefix + std::string(name.str());
    if (node.is_table() && prefix.empty())
      addTable(*node.as_table(), key + ".", path, items);
    else
      items.add({path, key, static_cast<int>(lineOf(name)), numbersIn(node), node.value<std::string>().value_or("")});
  }
}

}  // namespace

// The first line that says something is a table's [name], or gives a key its value; in YAML it would be a list, or
// "key:".
bool isToml(const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    const size_t first = line.find_first_not_of(" \t\r");
    if (first == std::string::npos || line[first] == '#') continue;
    const size_t sign = line.find_first_of("=:", first);
    return line[first] == '[' || (sign != std::string::npos && line[sign] == '=');
  }
  return false;
}

CalibrationItems tomlItems(const CalibrationFile& file) {
  CalibrationItems items(file.path);
  addTable(parseToml(file.text, file.path), "", file.path, items);
  return items;
}

}  // namespace nadir::tool
