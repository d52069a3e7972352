// What --json prints is one document and all of standard output, and its numbers tell their units by their names.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tool/json.hpp"

namespace nadir::test {
namespace {

// Numbers that have no unit: counts, shares of pixels, and what is told in pixels of disparity since the first version.
bool hasNoUnit(const std::string& name) {
  static const std::vector<std::string> names = {"schema",
                                                 "pairs",
                                                 "pairs_without_floor",
                                                 "skipped",
                                                 "objects",
                                                 "uniqueness",
                                                 "pixels",
                                                 "cells",
                                                 "truth_pixels",
                                                 "gain",
                                                 "compared_pixels",
                                                 "truth_cells",
                                                 "compared_cells",
                                                 "density",
                                                 "points_per_cell",
                                                 "halvings",
                                                 "mean",
                                                 "median",
                                                 "mean_absolute",
                                                 "rms",
                                                 "median_absolute",
                                                 "found",
                                                 "missed",
                                                 "split",
                                                 "merged",
                                                 "missed_cut_off",
                                                 "false_regions",
                                                 "area_mean",
                                                 "area_mean_absolute",
                                                 "area_error",
                                                 "region",
                                                 "labels",
                                                 "cells_per_person",
                                                 "noise",
                                                 "texture",
                                                 "percentile_95_absolute"};
  return std::find(names.begin(), names.end(), name) != names.end() || name.rfind("bad_", 0) == 0;
}

bool tellsItsUnit(const std::string& name) {
  static const std::vector<std::string> units = {"_mm", "_px",    "_deg",     "_m2",   "_s",
                                                 "_ms", "_share", "_percent", "_cells"};
  return std::any_of(units.begin(), units.end(), [&](const std::string& unit) {
    return name.size() > unit.size() && name.compare(name.size() - unit.size(), unit.size(), unit) == 0;
  });
}

// `name` is that of the member, or of the list, in which a value stands; those of shares are told by their object.
void expectUnits(const Json& json, const std::string& name) {
  if (json.is_number()) {
    EXPECT_TRUE(tellsItsUnit(name) || hasNoUnit(name)) << name;
  }
  if (json.is_array())
    for (const Json& item : json) expectUnits(item, name);
  if (!json.is_object() || name == "shares") return;
  for (const auto& item : json.items()) expectUnits(item.value(), item.key());
}

class JsonOutput : public testing::Test {
 protected:
  JsonOutput() {
    EXPECT_EQ(folder.run({"synth", "s", "--size", "160x120"}).status, 0);
    EXPECT_EQ(folder.run({"synth", "f", "--size", "160x120", "--scene", "empty-floor"}).status, 0);
    EXPECT_EQ(folder.run({"disparity", "s/left.png", "s/right.png", "-o", "d.png"}).status, 0);
    EXPECT_EQ(folder.run({"ground", "s/left.png", "s/right.png", "--camera", "s/camera.toml", "-o", "g"}).status, 0);
  }

  void expectOneDocument(std::vector<std::string> command) {
    command.emplace_back("--json");
    const Outcome outcome = folder.run(command);
    EXPECT_EQ(outcome.status, 0) << command[0] << ": " << outcome.err;
    const Json json = parseJson(outcome.out);
    EXPECT_TRUE(json.is_object()) << command[0];
    expectUnits(json, command[0]);
  }

  Folder folder;
};

TEST_F(JsonOutput, IsOneDocumentWithUnits) {
  const std::vector<std::vector<std::string>> commands = {
      {"synth", "t", "--size", "160x120"},
      {"level", "f/left.png", "f/right.png", "--camera", "f/camera.toml"},
      {"check", "s/left.png", "s/right.png"},
      {"disparity", "s/left.png", "s/right.png", "-o", "e.png"},
      {"plan", "--camera", "s/camera.toml"},
      {"evaluate", "d.png", "s/disparity_left_gt.png"},
      {"evaluate", "g/elevation.png", "s/elevation_gt.png"},
      {"evaluate", "g", "s"},
      {"tune", "s", "--trials", "2"},
      {"camera", "import", "--baseline-mm", "120", "--focal-px", "600", "--principal-x-px", "320", "--principal-y-px",
       "240", "-o", "i.toml"}};
  for (const auto& command : commands) expectOneDocument(command);
}

}  // namespace
}  // namespace nadir::test
