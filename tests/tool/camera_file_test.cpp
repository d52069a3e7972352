// Every mistake in a camera file is told with its line, its key and the reason.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

const char* const good =
    "baseline_mm = 120\n"      // 1
    "focal_px = 600.5\n"       // 2
    "principal_x_px = 39.5\n"  // 3
    "principal_y_px = 29.5\n"  // 4
    "width_px = 80\n"          // 5
    "height_px = 60\n"         // 6
    "height_mm = 1500\n"       // 7
    "tilt_deg = -30\n"         // 8
    "[map]\n"                  // 9
    "width_cells = 16\n"       // 10
    "height_cells = 16\n"      // 11
    "cell_mm = 50\n";          // 12

class CameraFile : public testing::Test {
 protected:
  // What `nadir ground` says about a camera file. There are no pictures, so it always fails; a good camera file is the
  // one that it does not complain about.
  std::string complaint(const std::string& text) {
    writeFile(folder.path("c.toml"), text);
    const auto before = folder.names();
    const Outcome outcome = folder.run({"ground", "left.png", "right.png", "--camera", "c.toml", "-o", "result"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(folder.names(), before);
    return outcome.err;
  }

  std::string complaintAfter(const std::string& from, const std::string& to) {
    std::string text = good;
    const size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return complaint(text.replace(place, from.size(), to));
  }

  Folder folder;
};

TEST_F(CameraFile, GoodOnesPass) {
  const std::string noPictures = "nadir: cannot read left.png: No such file or directory\n";
  EXPECT_EQ(complaint(good), noPictures);
  EXPECT_EQ(complaint(std::string("# a comment\ncolumn_shift_px = -2.5\npan_deg = 10\n") + good +
                      "offset_x_mm = -300\noffset_y_mm = 20.5\n"),
            noPictures);
}

TEST_F(CameraFile, MissingFile) {
  const Outcome outcome = folder.run({"ground", "l.png", "r.png", "--camera", "none.toml", "-o", "result"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err, "nadir: cannot read none.toml: No such file or directory\n");
}

TEST_F(CameraFile, MissingKey) {
  EXPECT_EQ(complaintAfter("height_mm = 1500\n", ""),
            "nadir: c.toml:1: height_mm: is missing (of the camera's centre above the ground)\n");
  EXPECT_EQ(complaintAfter("cell_mm = 50\n", ""),
            "nadir: c.toml:9: map.cell_mm: is missing (side of a cell, whole mm)\n");
  EXPECT_EQ(complaintAfter("[map]\nwidth_cells = 16\nheight_cells = 16\ncell_mm = 50\n", ""),
            "nadir: c.toml:1: map: is missing, a table that begins with the line [map]\n");
}

TEST_F(CameraFile, WrongType) {
  EXPECT_EQ(complaintAfter("600.5", "\"600.5\""), "nadir: c.toml:2: focal_px: is a text, must be a number\n");
  EXPECT_EQ(complaintAfter("-30", "true"), "nadir: c.toml:8: tilt_deg: is true or false, must be a number\n");
  EXPECT_EQ(complaintAfter("-30", "[-30]"), "nadir: c.toml:8: tilt_deg: is a list, must be a number\n");
  EXPECT_EQ(complaintAfter("= 80", "= 80.5"),
            "nadir: c.toml:5: width_px: is a number with a fraction, must be a whole number\n");
  EXPECT_EQ(complaint("map = 3\n" + std::string(good).substr(0, std::string(good).find("[map]"))),
            "nadir: c.toml:1: map: is a whole number, must be a table\n");
}

TEST_F(CameraFile, OutOfRange) {
  EXPECT_EQ(complaintAfter("= 120", "= 0"), "nadir: c.toml:1: baseline_mm: is 0, must lie between 0.01 and 100000\n");
  EXPECT_EQ(complaintAfter("-30", "-90"), "nadir: c.toml:8: tilt_deg: is -90, must lie between -89.9 and 89.9\n");
  EXPECT_EQ(complaintAfter("= 50", "= 0"), "nadir: c.toml:12: map.cell_mm: is 0, must lie between 1 and 10000\n");
  EXPECT_EQ(complaintAfter("= 80", "= -1"), "nadir: c.toml:5: width_px: is -1, must lie between 5 and 65535\n");
  EXPECT_EQ(complaintAfter("= 80", "= 4294967376"),
            "nadir: c.toml:5: width_px: is 4294967376, must lie between 5 and 65535\n");
}

TEST_F(CameraFile, EveryKeyHasItsRange) {
  const std::pair<std::string, std::string> ranges[] = {{"baseline_mm = 120", "between 0.01 and 100000"},
                                                        {"focal_px = 600.5", "between 1 and 100000"},
                                                        {"principal_x_px = 39.5", "between -65535 and 65535"},
                                                        {"principal_y_px = 29.5", "between -65535 and 65535"},
                                                        {"width_px = 80", "between 5 and 65535"},
                                                        {"height_px = 60", "between 5 and 65535"},
                                                        {"height_mm = 1500", "between 1 and 1000000"},
                                                        {"tilt_deg = -30", "between -89.9 and 89.9"},
                                                        {"width_cells = 16", "between 1 and 4096"},
                                                        {"height_cells = 16", "between 1 and 4096"},
                                                        {"cell_mm = 50", "between 1 and 10000"}};
  for (const auto& [line, range] : ranges) {
    const std::string key = line.substr(0, line.find(' '));
    for (const char* value : {"2000000000", "-2000000000"})
      EXPECT_NE(complaintAfter(line, key + " = " + value).find("must lie " + range + "\n"), std::string::npos) << line;
  }
  for (const char* key : {"column_shift_px", "pan_deg"})
    EXPECT_NE(complaintAfter("[map]", std::string(key) + " = 1e9\n[map]")
                  .find(key[0] == 'c' ? "between -65535 and 65535\n" : "between -89.9 and 89.9\n"),
              std::string::npos);
  for (const char* key : {"offset_x_mm", "offset_y_mm"})
    EXPECT_NE(complaintAfter("[map]", "[map]\n" + std::string(key) + " = -1e9").find("between -1000000 and 1000000\n"),
              std::string::npos);
}

TEST_F(CameraFile, NotANumberAndInfinity) {
  EXPECT_NE(complaintAfter("= 1500", "= nan").find("c.toml:7: height_mm: is nan, must lie between"), std::string::npos);
  EXPECT_NE(complaintAfter("= 1500", "= inf").find("c.toml:7: height_mm: is inf, must lie between"), std::string::npos);
}

TEST_F(CameraFile, UnknownKey) {
  EXPECT_EQ(complaintAfter("[map]", "baseline = 3\n[map]"), "nadir: c.toml:9: baseline: is no key of a camera file\n");
  EXPECT_EQ(complaintAfter("cell_mm = 50", "cell_mm = 50\ncell = 3"),
            "nadir: c.toml:13: map.cell: is no key of a camera file\n");
  EXPECT_EQ(complaintAfter("[map]", "[mount]\ntilt_deg = 3\n[map]"),
            "nadir: c.toml:9: mount: is no key of a camera file\n");
}

TEST_F(CameraFile, Syntax) {
  EXPECT_EQ(complaintAfter("focal_px = 600.5", "focal_px 600.5").rfind("nadir: c.toml:2: ", 0), 0u);
  EXPECT_EQ(complaintAfter("-30", "").rfind("nadir: c.toml:8: ", 0), 0u);
  const std::string twice = complaintAfter("focal_px = 600.5", "focal_px = 600.5\nfocal_px = 601");
  EXPECT_EQ(twice.rfind("nadir: c.toml:3: ", 0), 0u) << twice;
  EXPECT_NE(twice.find("focal_px"), std::string::npos) << twice;
}

TEST_F(CameraFile, AllMistakesAtOnceInTheirOrder) {
  std::string text = good;
  text.replace(text.find("cell_mm = 50"), 12, "cell_mm = 0");
  text.replace(text.find("600.5"), 5, "-1");
  text += "colour = 3\n";
  EXPECT_EQ(complaint(text),
            "nadir: c.toml:2: focal_px: is -1, must lie between 1 and 100000\n"
            "c.toml:12: map.cell_mm: is 0, must lie between 1 and 10000\n"
            "c.toml:13: map.colour: is no key of a camera file\n");
}

}  // namespace
}  // namespace nadir::test
