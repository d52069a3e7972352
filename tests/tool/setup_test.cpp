// Tests of what the program tells other programs that call the libraries themselves: camera show and --dry-run.
#include <gtest/gtest.h>

#include "tests/tool/json.hpp"
#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

const char* const opticsLines =
    "baseline_mm = 120\nfocal_px = 600.1\nprincipal_x_px = 320\nprincipal_y_px = 240\nwidth_px = 640\nheight_px = "
    "480\n";
const char* const mount = "height_mm = 2500\ntilt_deg = -20\n";
const char* const mapLines = "[map]\nwidth_cells = 64\nheight_cells = 64\ncell_mm = 50\n";
const char* const areaLines =
    "[[area]]\nname = \"door\"\npixels = [[220, 200], [410, 200], [410, 300]]\nmin_height_mm = 300\n";
const char* const lensLines =
    "[left_lens]\nmodel = \"plumb-bob\"\nfocal_x_px = 600\nfocal_y_px = 600\nprincipal_x_px = 320\n"
    "principal_y_px = 240\nk1 = -0.2\n[right_lens]\nmodel = \"fisheye\"\nfocal_x_px = 610\nfocal_y_px = 610\n"
    "principal_x_px = 320\nprincipal_y_px = 240\nk1 = 0.01\n"
    "[pose]\nrotation = [1, 0, 0, 0, 1, 0, 0, 0, 1]\ntranslation_mm = [-120, 0, 0]\n";

class Setup : public testing::Test {
 protected:
  Json told(const std::vector<std::string>& arguments) {
    const Outcome outcome = folder.run(arguments);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return parseJson(outcome.out);
  }

  Json ofGround(const std::string& camera, std::vector<std::string> options = {}) {
    writeFile(folder.path("c.toml"), camera);
    options.insert(options.begin(), {"ground", "l.png", "r.png", "--camera", "c.toml", "-o", "out", "--dry-run"});
    return told(options);
  }

  Folder folder;
};

TEST_F(Setup, ShowTellsWhatACameraFileHolds) {
  writeFile(folder.path("c.toml"), std::string(opticsLines) + mapLines + areaLines + lensLines);
  const Json camera = told({"camera", "show", "c.toml", "--json"});
  EXPECT_EQ(camera["focal_px"], 600.1);
  EXPECT_TRUE(camera["height_mm"].is_null());
  EXPECT_EQ(camera["map"]["cell_mm"], 50);
  EXPECT_EQ(camera["areas"][0]["name"], "door");
  EXPECT_EQ(camera["areas"][0]["unit"], "pixels");
  EXPECT_EQ(camera["areas"][0]["corners"], parseJson("[[220, 200], [410, 200], [410, 300]]"));
  EXPECT_EQ(camera["areas"][0]["min_height_mm"], 300);
  EXPECT_EQ(camera["lenses"]["left_lens"]["model"], "plumb-bob");
  EXPECT_EQ(camera["lenses"]["right_lens"]["k1"], 0.01);
  EXPECT_EQ(camera["lenses"]["pose"]["translation_mm"], parseJson("[-120, 0, 0]"));
}

TEST_F(Setup, ShowWithoutJsonIsACameraFile) {
  writeFile(folder.path("c.toml"), std::string(opticsLines) + mount + mapLines);
  const Outcome shown = folder.run({"camera", "show", "c.toml"});
  writeFile(folder.path("d.toml"), shown.out);
  EXPECT_EQ(told({"camera", "show", "c.toml", "--json"}), told({"camera", "show", "d.toml", "--json"}));
}

TEST_F(Setup, ADryRunTellsTheSettingsInForceAndWritesNothing) {
  const Json setup = ofGround(std::string(opticsLines) + mount + mapLines + areaLines, {"--for", "people"});
  EXPECT_EQ(setup["settings"]["uniqueness"], 40);
  EXPECT_EQ(setup["settings"]["min_height_mm"], 300);
  EXPECT_EQ(setup["settings"]["min_area_m2"], 0.049999999999999996);  // two thirds of 30 cells, to the last bit
  EXPECT_EQ(setup["settings"]["check"], 1);
  EXPECT_EQ(setup["areas"][0]["name"], "door");
  EXPECT_EQ(setup["track"]["average_frames"], 10);
  EXPECT_EQ(setup["track"]["disparity_px"], 0.15);
  EXPECT_TRUE(setup["rectifier"].is_null());
  EXPECT_EQ(folder.names(), std::vector<std::string>{"c.toml"});
}

TEST_F(Setup, ADryRunTellsWhatRectifiersAreMadeOf) {
  const Json rectifier =
      ofGround(std::string(opticsLines) + mount + mapLines + lensLines, {"--check", "none"})["rectifier"];
  EXPECT_EQ(rectifier["left"]["lens"]["coefficients"][0], -0.2);
  EXPECT_EQ(rectifier["right"]["lens"]["model"], 2);
  EXPECT_EQ(rectifier["left"]["view"]["focal_px"], 600.1);
  EXPECT_EQ(rectifier["right"]["view"]["width_px"], 640);
}

TEST_F(Setup, ADryRunRefusesWhatTheRunWould) {
  writeFile(folder.path("c.toml"), std::string(opticsLines) + mapLines);
  const Outcome outcome = folder.run({"ground", "l.png", "r.png", "--camera", "c.toml", "-o", "out", "--dry-run"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("height_mm"), std::string::npos) << outcome.err;
}

TEST_F(Setup, ADryRunOfDisparityTellsTheMatchersSettings) {
  const Json settings = told({"disparity", "l.png", "r.png", "-o", "d.png", "--dry-run", "--check", "both", "--raw"});
  EXPECT_EQ(settings["until"], 0);
  EXPECT_EQ(settings["uniqueness"], 40);
  EXPECT_EQ(settings["check"], 3);
  EXPECT_EQ(settings["postprocess"], 0);
  EXPECT_TRUE(folder.names().empty());
}

}  // namespace
}  // namespace nadir::test
