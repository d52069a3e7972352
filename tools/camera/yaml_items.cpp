// Reads calibrations in YAML, as OpenCV, ROS and Kalibr write them, and in JSON, which is YAML too.
#include <yaml-cpp/yaml.h>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"
#include "tools/camera/calibration_items.hpp"

namespace nadir::tool {

namespace {

// OpenCV begins its files with "%YAML:1.0", which is not YAML. The line stays, empty, so that line numbers hold.
std::string withoutDirective(std::string text) {
  if (text.compare(0, 6, "%YAML:") == 0) text.erase(0, text.find('\n'));
  return text;
}

YAML::Node parse(const CalibrationFile& file) {
  try {
    const YAML::Node root = YAML::Load(withoutDirective(file.text));
    if (root.IsMap()) return root;
  } catch (const YAML::Exception& error) {
    throw Error(format("%s:%d: %s", file.path.c_str(), error.mark.line + 1, error.msg.c_str()));
  }
  throw Error(file.path + ":1: it is not a calibration: neither YAML or XML nor a calib.txt nor a camera file");
}

// YAML has words of its own for what is no number of a calibration.
double numberIn(const YAML::Node& node) { return node.as<double>(std::nan("")); }

// Lists in a list are its rows. What is no number becomes not-a-number, which is told where the list is used.
void addNumbers(const YAML::Node& list, int depth, std::vector<double>& numbers) {
  for (const YAML::Node& element : list) {
    if (numbers.size() > mostNumbers) return;
    if (element.IsSequence() && depth > 0)
      addNumbers(element, depth - 1, numbers);
    else
      numbers.push_back(element.IsScalar() ? numberIn(element) : std::nan(""));
  }
}

class Collector {
 public:
  explicit Collector(const CalibrationFile& file) : path_(file.path), items_(file.path) {}

  // Tables in a table are looked at to a depth that no calibration exceeds.
  void addTable(const YAML::Node& table, const std::string& prefix, int depth) {
    for (const auto& pair : table)
      if (pair.first.IsScalar()) addItem(pair.first, prefix, pair.second, depth);
  }

  CalibrationItems take() { return std::move(items_); }

 private:
  void addItem(const YAML::Node& name, const std::string& prefix, const YAML::Node& value, int depth) {
    CalibrationItem item{path_, prefix + name.Scalar(), name.Mark().line + 1, {}, ""};
    const YAML::Node data = value.IsMap() ? value["data"] : value;
    if (value.IsMap() && !data) {
      if (depth > 0) addTable(value, item.key + ".", depth - 1);
      return;
    }
    if (data.IsScalar()) item.word = data.Scalar(), item.numbers = {numberIn(data)};
    if (data.IsSequence()) addNumbers(data, 1, item.numbers);
    items_.add(std::move(item));
  }

  std::string path_;
  CalibrationItems items_;
};

}  // namespace

CalibrationItems yamlItems(const CalibrationFile& file) {
  Collector collector(file);
  constexpr int deepest = 2;
  collector.addTable(parse(file), "", deepest);
  return collector.take();
}

}  // namespace nadir::tool
