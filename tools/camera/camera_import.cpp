// Reads calibrations in YAML and takes the camera out of their projection matrices.
#include "tools/camera/camera_import.hpp"

#include <yaml-cpp/yaml.h>

#include <cmath>
#include <initializer_list>
#include <optional>
#include <vector>

#include "tools/base/error.hpp"
#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

constexpr double metre = 1000;

// Rectified views share focal length and rows. Printed calibrations are rounded, so equality is not asked for.
constexpr double tolerancePx = 0.05;

[[noreturn]] void fail(const CalibrationFile& file, int line, const std::string& key, const std::string& reason) {
  throw Error(format("%s:%d: %s: %s", file.path.c_str(), line, key.c_str(), reason.c_str()));
}

// ---- YAML ----

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
  throw Error(file.path + ":1: it is not a calibration in YAML");
}

// A key of a file, with what stands behind it.
struct Entry {
  std::string key;
  int line = 0;
  YAML::Node value;
};

// The entry under the first of the names that is there.
std::optional<Entry> find(const YAML::Node& root, std::initializer_list<const char*> names) {
  for (const char* name : names)
    for (const auto& pair : root)
      if (pair.first.IsScalar() && pair.first.Scalar() == name)
        return Entry{name, pair.first.Mark().line + 1, pair.second};
  return {};
}

double number(const CalibrationFile& file, const YAML::Node& node, const std::string& key) {
  const double value = node.IsScalar() ? node.as<double>(std::nan("")) : std::nan("");
  if (!std::isfinite(value)) fail(file, node.Mark().line + 1, key, "holds something that is not a number");
  return value;
}

struct Matrix {
  std::string key;
  int line;
  size_t columns;
  std::vector<double> numbers;
  double at(size_t row, size_t column) const { return numbers[row * columns + column]; }
};

// Rows stand one after the other, as a list or under "data".
Matrix matrix(const CalibrationFile& file, const Entry& entry, size_t rows, size_t columns) {
  const YAML::Node data = entry.value.IsMap() ? entry.value["data"] : entry.value;
  if (!data || !data.IsSequence() || data.size() != rows * columns)
    fail(file, entry.line, entry.key, format("is no matrix of %zu x %zu numbers", rows, columns));
  Matrix m{entry.key, entry.line, columns, {}};
  for (const YAML::Node& element : data) m.numbers.push_back(number(file, element, entry.key));
  return m;
}

uint32_t pixels(const CalibrationFile& file, const YAML::Node& node, const std::string& key) {
  const double value = number(file, node, key);
  if (value < 1 || value > 65535 || value != std::floor(value))
    fail(file, node.Mark().line + 1, key, "is no number of pixels");
  return static_cast<uint32_t>(value);
}

// ---- projection matrices ----

void checkRectified(const CalibrationFile& file, const Matrix& p) {
  if (!(p.at(0, 0) > 0)) fail(file, p.line, p.key, "has a focal length that is not positive");
  if (std::abs(p.at(0, 0) - p.at(1, 1)) > tolerancePx)
    fail(file, p.line, p.key,
         format("has two focal lengths, %g and %g; it must be of rectified pictures", p.at(0, 0), p.at(1, 1)));
}

void checkPair(const CalibrationFile& leftFile, const Matrix& left, const CalibrationFile& rightFile,
               const Matrix& right) {
  if (left.at(0, 3) != 0) fail(leftFile, left.line, left.key, "is not the left camera's: its last column is not 0");
  if (right.at(1, 3) != 0) fail(rightFile, right.line, right.key, "is of a camera above or below the first one");
  if (!(right.at(0, 3) < 0))
    fail(rightFile, right.line, right.key, "is of a camera that is not right of the first one");
  if (std::abs(left.at(0, 0) - right.at(0, 0)) > tolerancePx || std::abs(left.at(1, 2) - right.at(1, 2)) > tolerancePx)
    fail(rightFile, right.line, right.key, "has another focal length or principal row than the left camera");
}

std::string nameOf(const Matrix& m, const char* element) { return m.key + element; }

// (f 0 cx 0; 0 f cy 0; 0 0 1 0) and (f 0 cx' -f*baseline; ...).
ImportedCamera fromProjections(const Matrix& left, const Matrix& right, double unitMm, const std::string& unit) {
  ImportedCamera result;
  Camera& camera = result.camera;
  camera.focalPx = left.at(0, 0);
  camera.principalXPx = left.at(0, 2);
  camera.principalYPx = left.at(1, 2);
  camera.columnShiftPx = right.at(0, 2) - left.at(0, 2);
  camera.baselineMm = -right.at(0, 3) / right.at(0, 0) * unitMm;
  result.origins = {{"focal_px", nameOf(left, "[0,0]")},
                    {"principal_x_px", nameOf(left, "[0,2]")},
                    {"principal_y_px", nameOf(left, "[1,2]")},
                    {"column_shift_px", nameOf(right, "[0,2] - ") + nameOf(left, "[0,2]")},
                    {"baseline_mm", "-" + nameOf(right, "[0,3] / ") + nameOf(right, "[0,0], ") + unit}};
  return result;
}

// (1 0 0 -cx; 0 1 0 -cy; 0 0 0 f; 0 0 1/baseline (cx' - cx)/baseline): what gives Z = f / (d / baseline + last).
ImportedCamera fromReprojection(const CalibrationFile& file, const Matrix& q, double unitMm, const std::string& unit) {
  if (!(q.at(2, 3) > 0)) fail(file, q.line, q.key, "has a focal length that is not positive");
  if (!(q.at(3, 2) > 0)) fail(file, q.line, q.key, "is of a second camera that is not right of the first one");
  ImportedCamera result;
  Camera& camera = result.camera;
  camera.focalPx = q.at(2, 3);
  camera.principalXPx = -q.at(0, 3);
  camera.principalYPx = -q.at(1, 3);
  camera.columnShiftPx = q.at(3, 3) / q.at(3, 2);
  camera.baselineMm = unitMm / q.at(3, 2);
  result.origins = {{"focal_px", "Q[2,3]"},
                    {"principal_x_px", "-Q[0,3]"},
                    {"principal_y_px", "-Q[1,3]"},
                    {"column_shift_px", "Q[3,3] / Q[3,2]"},
                    {"baseline_mm", "1 / Q[3,2], " + unit}};
  return result;
}

// ---- picture sizes ----

void takeSize(const CalibrationFile& file, const std::optional<Entry>& width, const std::optional<Entry>& height,
              ImportedCamera& result) {
  if (!width || !height) return;
  result.camera.widthPx = pixels(file, width->value, width->key);
  result.camera.heightPx = pixels(file, height->value, height->key);
  result.origins["width_px"] = width->key;
  result.origins["height_px"] = height->key;
}

// OpenCV's own programs write the size under different names, and often not at all.
void takeOpenCvSize(const CalibrationFile& file, const YAML::Node& root, ImportedCamera& result) {
  const std::optional<Entry> both = find(root, {"image_size", "imageSize", "size"});
  if (both && both->value.IsSequence() && both->value.size() == 2)
    return takeSize(file, Entry{both->key, both->line, both->value[0]}, Entry{both->key, both->line, both->value[1]},
                    result);
  takeSize(file, find(root, {"image_width", "imageWidth", "width"}),
           find(root, {"image_height", "imageHeight", "height"}), result);
}

// ---- ROS ----

Matrix rosProjection(const CalibrationFile& file, const YAML::Node& root) {
  const std::optional<Entry> entry = find(root, {"projection_matrix", "P"});
  if (!entry) fail(file, 1, "projection_matrix", "is missing");
  const Matrix p = matrix(file, *entry, 3, 4);
  checkRectified(file, p);
  return p;
}

void checkSameSize(const CalibrationFile& leftFile, const CalibrationFile& rightFile, const Camera& left,
                   const Camera& right) {
  if (left.widthPx == right.widthPx && left.heightPx == right.heightPx) return;
  throw Error(format("the pictures differ in size: those of %s are %s pixels, those of %s %s", leftFile.path.c_str(),
                     sizeText(left.widthPx, left.heightPx).c_str(), rightFile.path.c_str(),
                     sizeText(right.widthPx, right.heightPx).c_str()));
}

}  // namespace

CalibrationFile readCalibration(const std::string& path) { return {path, readText(path)}; }

ImportedCamera importOpenCv(const CalibrationFile& file, double unitMm) {
  const YAML::Node root = parse(file);
  const std::optional<Entry> p1 = find(root, {"P1"}), p2 = find(root, {"P2"}), q = find(root, {"Q"});
  if (!(p1 && p2) && !q) throw Error(file.path + ":1: it holds neither P1 and P2 nor Q, of a rectified stereo pair");
  if (unitMm <= 0)
    throw Error(file.path + " does not say in which unit its lengths are; give --unit-mm (1 for mm, 1000 for m)");
  const std::string unit = format("a unit being %g mm", unitMm);
  ImportedCamera result;
  if (p1 && p2) {
    const Matrix left = matrix(file, *p1, 3, 4), right = matrix(file, *p2, 3, 4);
    checkRectified(file, left);
    checkPair(file, left, file, right);
    result = fromProjections(left, right, unitMm, unit);
  } else {
    result = fromReprojection(file, matrix(file, *q, 4, 4), unitMm, unit);
  }
  takeOpenCvSize(file, root, result);
  return result;
}

ImportedCamera importRos(const CalibrationFile& leftFile, const CalibrationFile& rightFile, double unitMm) {
  const YAML::Node leftRoot = parse(leftFile), rightRoot = parse(rightFile);
  Matrix left = rosProjection(leftFile, leftRoot), right = rosProjection(rightFile, rightRoot);
  checkPair(leftFile, left, rightFile, right);
  left.key = "left P", right.key = "right P";
  ImportedCamera result = unitMm > 0 ? fromProjections(left, right, unitMm, format("a unit being %g mm", unitMm))
                                     : fromProjections(left, right, metre, "in metres");
  ImportedCamera other;
  takeSize(rightFile, find(rightRoot, {"image_width", "width"}), find(rightRoot, {"image_height", "height"}), other);
  takeSize(leftFile, find(leftRoot, {"image_width", "width"}), find(leftRoot, {"image_height", "height"}), result);
  checkSameSize(leftFile, rightFile, result.camera, other.camera);
  return result;
}

}  // namespace nadir::tool
