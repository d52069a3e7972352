// The table of a camera file's keys, and what reads and writes them.
#include "tools/camera/camera_file.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "tools/base/text.hpp"
#include "tools/files/toml_file.hpp"

namespace nadir::tool {

namespace {

constexpr bool required = false;
constexpr bool optional = true;

// The angles end short of 90 degrees: the map is centred where the optical axis meets the ground.
constexpr double steepest = 89.9;

// The fewest digits that give the same number again, without an exponent.
std::string shortest(double value) {
  char digits[400];
  const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed).ptr;
  return std::string(digits, end);
}

// ---- reading ----

void readValue(const toml::node& node, const CameraKey& key, Camera& camera, Mistakes& mistakes) {
  const bool wanted = isCount(key) ? node.is_integer() : node.is_number();
  if (!wanted)
    return mistakes.add(lineOf(node), fullName(key),
                        format("is %s, must be %s", typeName(node), isCount(key) ? "a whole number" : "a number"));
  const double value = *node.value<double>();
  const std::string mistake = mistakeIn(value, key);
  if (!mistake.empty()) return mistakes.add(lineOf(node), fullName(key), mistake);
  setValue(camera, key, value);
}

// What its other readers take.
bool isOtherTable(std::string_view name) {
  return name == areaKey || name == "left_lens" || name == "right_lens" || name == "pose";
}

bool isKnownName(std::string_view table, std::string_view name) {
  const auto& keys = cameraKeys();
  return std::any_of(keys.begin(), keys.end(), [&](const CameraKey& key) {
    return (key.table == table && key.name == name) || (table.empty() && (key.table == name || isOtherTable(name)));
  });
}

void reportUnknownKeys(const toml::table& table, const std::string& tableName, Mistakes& mistakes) {
  for (const auto& [name, node] : table)
    if (!isKnownName(tableName, name.str()))
      mistakes.add(lineOf(name), (tableName.empty() ? "" : tableName + ".") + std::string(name.str()),
                   "is no key of a camera file");
}

// What is missing is no mistake where it is optional, or where it is yet to be found.
enum class Mount { needed, mayLack };

bool isNeeded(const CameraKey& key, Mount mount) {
  const std::string_view name = key.name;
  const bool isOfMount = name == "height_mm" || name == "tilt_deg";
  return !key.optional && !(isOfMount && mount == Mount::mayLack);
}

void readTable(const toml::table& table, const std::string& name, Mount mount, Camera& camera, Mistakes& mistakes) {
  reportUnknownKeys(table, name, mistakes);
  for (const CameraKey& key : cameraKeys()) {
    if (key.table != name) continue;
    if (const toml::node* node = table.get(key.name))
      readValue(*node, key, camera, mistakes);
    else if (isNeeded(key, mount))
      mistakes.add(lineOf(table), fullName(key), format("is missing (%s)", key.meaning));
  }
}

void readMap(const toml::table& top, Camera& camera, Mistakes& mistakes) {
  const toml::node* node = top.get("map");
  if (!node) return mistakes.add(1, "map", "is missing, a table that begins with the line [map]");
  if (!node->is_table()) return mistakes.add(lineOf(*node), "map", format("is %s, must be a table", typeName(*node)));
  readTable(*node->as_table(), "map", Mount::needed, camera, mistakes);
}

Camera parsed(const std::string& text, const std::string& path, Mount mount) {
  const toml::table top = parseToml(text, path);
  Camera camera;
  Mistakes mistakes(path);
  readTable(top, "", mount, camera, mistakes);
  readMap(top, camera, mistakes);
  mistakes.throwIfAny();
  return camera;
}

// ---- writing ----

std::string lineFor(const Camera& camera, const CameraKey& key) {
  const bool known = isKnown(camera, key);
  const std::string assignment =
      known ? format("%s = %s", key.name, shortest(valueOf(camera, key)).c_str()) : format("# %s =", key.name);
  return format("%-26s  # %s%s\n", assignment.c_str(), known ? "" : "TO FILL IN: ", key.meaning);
}

}  // namespace

std::string fullName(const CameraKey& key) { return (*key.table ? std::string(key.table) + "." : "") + key.name; }

const std::vector<CameraKey>& cameraKeys() {
  static const std::vector<CameraKey> keys = {
      {"", "baseline_mm", &Camera::baselineMm, 0.01, 100000, required, "distance of the two cameras"},
      {"", "focal_px", &Camera::focalPx, 1, 100000, required, "focal length of both pictures"},
      {"", "principal_x_px", &Camera::principalXPx, -65535, 65535, required,
       "column of the left principal point, 0 = centre of the first pixel"},
      {"", "principal_y_px", &Camera::principalYPx, -65535, 65535, required, "row of both principal points, likewise"},
      {"", "column_shift_px", &Camera::columnShiftPx, -65535, 65535, optional,
       "right principal column - left one; added to matched disparities"},
      {"", "width_px", &Camera::widthPx, 5, 65535, required, "size of a picture"},
      {"", "height_px", &Camera::heightPx, 5, 65535, required, "size of a picture"},
      {"", "height_mm", &Camera::heightMm, 1, 1000000, required, "of the camera's centre above the ground"},
      {"", "tilt_deg", &Camera::tiltDeg, -steepest, steepest, required,
       "0 looks straight down; negative raises the view to the picture's upper side"},
      {"", "pan_deg", &Camera::panDeg, -steepest, steepest, optional, "positive turns the view to the picture's left"},
      {"map", "width_cells", &Camera::mapWidthCells, 1, 4096, required, "cells along world x, the picture's right"},
      {"map", "height_cells", &Camera::mapHeightCells, 1, 4096, required,
       "cells along world y, towards the picture's lower edge"},
      {"map", "cell_mm", &Camera::cellMm, 1, 10000, required, "side of a cell, whole mm"},
      {"map", "offset_x_mm", &Camera::mapOffsetXMm, -1e6, 1e6, optional,
       "moves the map along world x from its place below the optical axis"},
      {"map", "offset_y_mm", &Camera::mapOffsetYMm, -1e6, 1e6, optional, "the same along world y"},
  };
  return keys;
}

bool isCount(const CameraKey& key) { return std::holds_alternative<uint32_t Camera::*>(key.member); }

bool isKnown(const Camera& camera, const CameraKey& key) {
  const double value = valueOf(camera, key);
  return isCount(key) ? value != unknownCount : !std::isnan(value);
}

double valueOf(const Camera& camera, const CameraKey& key) {
  return std::visit([&](auto member) { return static_cast<double>(camera.*member); }, key.member);
}

void setValue(Camera& camera, const CameraKey& key, double value) {
  std::visit([&](auto member) { camera.*member = static_cast<std::decay_t<decltype(camera.*member)>>(value); },
             key.member);
}

std::string mistakeIn(double value, const CameraKey& key) {
  if (value >= key.low && value <= key.high) return "";
  const std::string shown = std::abs(value) < 1e15 ? shortest(value) : format("%g", value);
  return format("is %s, must lie between %s and %s", shown.c_str(), shortest(key.low).c_str(),
                shortest(key.high).c_str());
}

Camera parseCamera(const std::string& text, const std::string& path) { return parsed(text, path, Mount::needed); }

Camera readCamera(const std::string& path) { return parseCamera(readTypedText(path), path); }

Camera readCameraBeforeMount(const std::string& path) { return parsed(readTypedText(path), path, Mount::mayLack); }

std::string cameraText(const Camera& camera) {
  std::string text =
      "# A stereo camera that looks at the ground. Lengths in mm, angles in degrees, pictures in pixels.\n";
  std::string table;
  for (const CameraKey& key : cameraKeys()) {
    if (key.table != table) text += format("\n[%s]\n", (table = key.table).c_str());
    text += lineFor(camera, key);
  }
  return text;
}

Bytes cameraBytes(const Camera& camera) { return bytesOf(cameraText(camera)); }

}  // namespace nadir::tool
