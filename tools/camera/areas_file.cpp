// Every mistake in a list of areas is found in one reading.
#include "tools/camera/areas_file.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <string_view>

#include "tools/base/text.hpp"
#include "tools/camera/camera_file.hpp"
#include "tools/files/files.hpp"
#include "tools/files/toml_file.hpp"

namespace nadir::tool {

namespace {

constexpr size_t fewestCorners = 3;
constexpr size_t mostCorners = 100;  // the library's limit
constexpr std::string_view areaKeys[] = {"name", "pixels", "ground_mm", "min_height_mm", "max_height_mm"};
constexpr double highest = 65535;   // mm: what a map can hold
constexpr size_t longestName = 40;  // what the pictures have room for

// Reads the areas of one file; a mistake in one does not keep the next from being read.
class Reader {
 public:
  Reader(const std::string& path, const std::vector<Area>& others) : path_(path), mistakes_(path), areas_(others) {}

  void readAll(const toml::table& top) {
    const toml::node* node = top.get(areaKey);
    if (!node) return;
    const toml::array* list = node->as_array();
    if (!list || !std::all_of(list->begin(), list->end(), [](const toml::node& n) { return n.is_table(); }))
      return mistakes_.add(lineOf(*node), areaKey, "must be tables that begin with the line [[area]]");
    for (const toml::node& entry : *list) read(*entry.as_table());
  }

  void reportOtherKeys(const toml::table& top) {
    for (const auto& [key, node] : top)
      if (key.str() != areaKey) mistakes_.add(lineOf(key), std::string(key.str()), "is no key of a file of areas");
  }

  // All that were read, behind the others.
  std::vector<Area> take() {
    mistakes_.throwIfAny();
    return std::move(areas_);
  }

 private:
  void read(const toml::table& table) {
    Area area{readName(table), AreaUnit::pixels, {}, format("%s:%u", path_.c_str(), lineOf(table))};
    reportUnknownKeys(table, area.name);
    const toml::node *pixels = table.get("pixels"), *ground = table.get("ground_mm");
    if (!pixels == !ground)
      return mistakes_.add(lineOf(table), label(area.name), "needs its corners, either as pixels or as ground_mm");
    area.unit = pixels ? AreaUnit::pixels : AreaUnit::groundMm;
    readHeights(table, area);
    if (readCorners(pixels ? *pixels : *ground, area) && !area.name.empty()) areas_.push_back(area);
  }

  void readHeights(const toml::table& table, Area& area) {
    readHeight(table, "min_height_mm", 0, area.name, area.minHeightMm);
    readHeight(table, "max_height_mm", area.minHeightMm, area.name, area.maxHeightMm);
  }

  // A height that is not there keeps its value. Whole millimetres are compared, as of the other rules of regions.
  void readHeight(const toml::table& table, const char* key, uint32_t above, const std::string& name,
                  uint32_t& height) {
    const toml::node* node = table.get(key);
    if (!node) return;
    const double value = node->is_number() ? std::floor(*node->value<double>()) : 0;
    if (value >= 1 && value > above && value <= highest)
      height = static_cast<uint32_t>(value);
    else
      mistakes_.add(lineOf(*node), label(name),
                    format("%s must be a number of millimetres from 1 to 65535%s", key,
                           above > 0 ? ", above min_height_mm" : ""));
  }

  static std::string label(const std::string& name) {
    return name.empty() ? std::string(areaKey) : format("area \"%s\"", name.c_str());
  }

  // Empty where there is none, which is reported.
  std::string readName(const toml::table& table) {
    const toml::node* node = table.get("name");
    const std::string name = node ? node->value_or(std::string()) : "";
    const uint32_t line = node ? lineOf(*node) : lineOf(table);
    if (name.empty() || name.size() > longestName)
      mistakes_.add(line, "area.name", format("must be a text of 1 to %zu bytes", longestName));
    if (std::any_of(areas_.begin(), areas_.end(), [&name](const Area& other) { return other.name == name; }))
      mistakes_.add(line, label(name), "is the name of two areas");
    return name;
  }

  void reportUnknownKeys(const toml::table& table, const std::string& name) {
    for (const auto& [key, node] : table)
      if (std::find(std::begin(areaKeys), std::end(areaKeys), key.str()) == std::end(areaKeys))
        mistakes_.add(lineOf(key), label(name), format("%s is no key of an area", std::string(key.str()).c_str()));
  }

  bool readCorners(const toml::node& node, Area& area) {
    const std::string mistake = mistakeInCorners(node, area);
    if (!mistake.empty()) mistakes_.add(lineOf(node), label(area.name), mistake);
    return mistake.empty();
  }

  static std::string mistakeInCorners(const toml::node& node, Area& area) {
    if (!node.is_array()) return format("%s is %s, must be a list of corners", nameOf(area.unit), typeName(node));
    for (const toml::node& entry : *node.as_array()) {
      Point_s32 corner;
      if (!readCorner(entry, area.unit, corner))
        return format("corner %zu must be two %s from -%d to %d, [x, y]", area.corners.size() + 1,
                      area.unit == AreaUnit::pixels ? "whole numbers" : "numbers", NADIR_AREA_REACH, NADIR_AREA_REACH);
      area.corners.push_back(corner);
    }
    return mistakeInShape(area);
  }

  static bool readCorner(const toml::node& node, AreaUnit unit, Point_s32& corner) {
    const toml::array* pair = node.as_array();
    return pair && pair->size() == 2 && readNumber((*pair)[0], unit, corner.x) &&
           readNumber((*pair)[1], unit, corner.y);
  }

  // Millimetres are rounded.
  static bool readNumber(const toml::node& node, AreaUnit unit, int32_t& number) {
    if (unit == AreaUnit::pixels ? !node.is_integer() : !node.is_number()) return false;
    const double value = *node.value<double>();
    if (!(std::abs(value) <= NADIR_AREA_REACH)) return false;
    number = static_cast<int32_t>(std::lround(value));
    return true;
  }

  static std::string mistakeInShape(const Area& area) {
    const size_t count = area.corners.size();
    if (count < fewestCorners) return format("has %zu corners, needs at least %zu", count, fewestCorners);
    if (count > mostCorners) return format("has %zu corners, may have at most %zu", count, mostCorners);
    if (!IP_Polygon_IsSimple(PolygonRecord(area.corners).get())) return "its edges cross each other";
    return "";
  }

  std::string path_;
  Mistakes mistakes_;
  std::vector<Area> areas_;
};

toml::table parseFile(const std::string& path) { return parseToml(readTypedText(path), path); }

}  // namespace

PolygonRecord::PolygonRecord(const std::vector<Point_s32>& corners) : words_(1 + 2 * corners.size()) {
  words_[0] = static_cast<int32_t>(corners.size());
  std::memcpy(words_.data() + 1, corners.data(), corners.size() * sizeof(Point_s32));
}

const Polygon_s32* PolygonRecord::get() const { return reinterpret_cast<const Polygon_s32*>(words_.data()); }

const char* nameOf(AreaUnit unit) { return unit == AreaUnit::pixels ? "pixels" : "ground_mm"; }

std::vector<Area> readAreasOfCamera(const std::string& path) {
  Reader reader(path, {});
  reader.readAll(parseFile(path));
  return reader.take();
}

std::vector<Area> readAreas(const std::string& path, const std::vector<Area>& others) {
  Reader reader(path, others);
  const toml::table top = parseFile(path);
  reader.reportOtherKeys(top);
  reader.readAll(top);
  return reader.take();
}

}  // namespace nadir::tool
