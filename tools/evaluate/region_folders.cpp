// Reads maps of regions and the lists that tell about them from the two folders.
#include "tools/evaluate/region_folders.hpp"

#include <cmath>
#include <nlohmann/json.hpp>

#include "tools/base/error.hpp"
#include "tools/base/json_value.hpp"
#include "tools/base/text.hpp"
#include "tools/files/files.hpp"
#include "tools/pictures/pictures.hpp"

namespace nadir::tool {

namespace {

constexpr double farthestThing = 1e9;  // mm

// A JSON file and what is to be made of it; whatever is missing or of another kind makes one sentence.
template <class Use>
auto useJson(const std::string& path, const char* writer, Use use) {
  const std::string text = readText(path);
  try {
    return use(parsedJson(text));
  } catch (const nlohmann::json::exception&) {
    throw UnusableFile(format("cannot use %s: it is not a list of regions as %s writes it", path.c_str(), writer));
  } catch (const UnusableFile& reason) {
    throw UnusableFile(format("cannot use %s: %s", path.c_str(), reason.what()));
  }
}

std::vector<Thing> things(const nlohmann::json& regions, const char* number) {
  std::vector<Thing> things;
  for (const nlohmann::json& region : regions)
    things.push_back({wholeNumberIn<uint16_t>(region.at(number), 1, 65535), region.value("kind", ""),
                      numberIn(region.at("centre_mm").at("x"), -farthestThing, farthestThing),
                      numberIn(region.at("centre_mm").at("y"), -farthestThing, farthestThing),
                      numberIn(region.at("highest_mm"), -farthestThing, farthestThing),
                      region.value("at_picture_edge", false)});
  return things;
}

std::vector<Thing> foundIn(const std::string& path) {
  return useJson(path, "nadir ground", [&path](const nlohmann::json& json) {
    if (json.at("regions").is_null()) throw Error(path + " holds no regions: nadir ground was told --no-regions");
    return things(json.at("regions"), "label");
  });
}

std::vector<Thing> objectsIn(const std::string& path) {
  return useJson(path, "nadir synth", [](const nlohmann::json& json) { return things(json.at("regions"), "region"); });
}

ThingMap readMap(const std::string& picturePath) {
  LabelPicture picture = readLabels(picturePath);
  return {std::move(picture.labels), picture.place, {}};
}

void checkSame(const ThingMap& found, const ThingMap& truth) {
  if (!sameSize(found.cells, truth.cells) || liesElsewhere(found.place, truth.place))
    throw Error("the two folders hold maps of different places; was the scene's camera file changed?");
}

Grid<uint8_t> knownCells(const std::string& path) {
  const Grid<float> heights = readHeights(path).heights;
  Grid<uint8_t> known(heights.width, heights.height);
  for (size_t i = 0; i < known.pixels.size(); ++i) known.pixels[i] = !std::isnan(heights.pixels[i]);
  return known;
}

}  // namespace

RegionEvaluation evaluateRegionFolders(const std::string& resultFolder, const std::string& sceneFolder) {
  ThingMap found = readMap(resultFolder + "/regions.png"), truth = readMap(sceneFolder + "/regions_gt.png");
  found.things = foundIn(resultFolder + "/summary.json");
  truth.things = objectsIn(sceneFolder + "/scene.json");
  checkSame(found, truth);
  const Grid<uint8_t> known = knownCells(sceneFolder + "/elevation_gt.png");
  if (!sameSize(known, truth.cells)) throw Error("the truths of " + sceneFolder + " differ in size");
  return evaluateRegions(found, truth, known);
}

}  // namespace nadir::tool
