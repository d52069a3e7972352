// Tests of what nadir camera import takes from calibrations, checked against numbers worked out by hand.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

// 600 px, baseline 0.12 m, principal points (320.5, 240.25) and (310.5, 240.25).
const char* const openCv =
    "%YAML:1.0\n"
    "---\n"
    "P1: !!opencv-matrix\n"
    "   rows: 3\n"
    "   cols: 4\n"
    "   dt: d\n"
    "   data: [ 600., 0., 320.5, 0., 0., 600., 240.25, 0., 0., 0., 1., 0. ]\n"
    "P2: !!opencv-matrix\n"
    "   rows: 3\n"
    "   cols: 4\n"
    "   dt: d\n"
    "   data: [ 600., 0., 310.5, -72., 0., 600., 240.25, 0., 0., 0., 1., 0. ]\n";

// The same camera.
const char* const openCvQ =
    "%YAML:1.0\n"
    "Q: !!opencv-matrix\n"
    "   rows: 4\n"
    "   cols: 4\n"
    "   dt: d\n"
    "   data: [ 1., 0., 0., -320.5, 0., 1., 0., -240.25, 0., 0., 0., 600.,\n"
    "       0., 0., 8.3333333333333339, -83.333333333333339 ]\n";

std::string ros(const char* name, const std::string& projection) {
  return std::string("image_width: 640\nimage_height: 480\ncamera_name: ") + name +
         "\ncamera_matrix:\n  rows: 3\n  cols: 3\n  data: [1, 0, 0, 0, 1, 0, 0, 0, 1]\n"
         "projection_matrix:\n  rows: 3\n  cols: 4\n  data: [" +
         projection + "]\n";
}

const char* const rosLeft = "600, 0, 320.5, 0, 0, 600, 240.25, 0, 0, 0, 1, 0";
const char* const rosRight = "600, 0, 310.5, -72, 0, 600, 240.25, 0, 0, 0, 1, 0";

class CameraImport : public testing::Test {
 protected:
  Outcome import(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"camera", "import"});
    arguments.insert(arguments.end(), {"-o", "c.toml"});
    return folder.run(arguments);
  }

  double written(const std::string& key) {
    const std::string text = "\n" + readFile(folder.path("c.toml"));
    return numberAfter(text, "\n" + key + " =");
  }

  void expectTheCamera() {
    EXPECT_NEAR(written("focal_px"), 600, 1e-9);
    EXPECT_NEAR(written("baseline_mm"), 120, 1e-9);
    EXPECT_NEAR(written("principal_x_px"), 320.5, 1e-9);
    EXPECT_NEAR(written("principal_y_px"), 240.25, 1e-9);
    EXPECT_NEAR(written("column_shift_px"), -10, 1e-9) << "right principal column - left one";
  }

  void expectRefused(const std::vector<std::string>& arguments, const std::string& sentence) {
    const auto before = folder.names();
    const Outcome outcome = import(arguments);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "nadir: " + sentence + "\n");
    EXPECT_EQ(folder.names(), before);
  }

  void expectOpenCvRefused(const std::string& text, const std::string& sentence) {
    writeFile(folder.path("bad.yml"), text);
    expectRefused({"bad.yml", "--unit-mm", "1000"}, sentence);
  }

  void expectRosRefused(const std::string& left, const std::string& right, const std::string& sentence) {
    writeFile(folder.path("l.yaml"), left);
    writeFile(folder.path("r.yaml"), right);
    expectRefused({"l.yaml", "r.yaml"}, sentence);
  }

  Folder folder;
};

TEST_F(CameraImport, OpenCvProjections) {
  writeFile(folder.path("stereo.yml"), openCv);
  const Outcome outcome = import({"stereo.yml", "--unit-mm", "1000"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  expectTheCamera();
}

TEST_F(CameraImport, OpenCvReprojection) {
  writeFile(folder.path("stereo.yml"), openCvQ);
  const Outcome outcome = import({"stereo.yml", "--unit-mm", "1000"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  expectTheCamera();
}

TEST_F(CameraImport, OpenCvUnitIsNotGuessed) {
  writeFile(folder.path("stereo.yml"), openCv);
  expectRefused({"stereo.yml"},
                "stereo.yml does not say in which unit its lengths are; give --unit-mm (1 for mm, 1000 for m)");
  ASSERT_EQ(import({"stereo.yml", "--unit-mm", "25"}).status, 0);
  EXPECT_NEAR(written("baseline_mm"), 3, 1e-9) << "0.12 squares of 25 mm";
}

TEST_F(CameraImport, RosPairIsInMetres) {
  writeFile(folder.path("l.yaml"), ros("left", rosLeft));
  writeFile(folder.path("r.yaml"), ros("right", rosRight));
  const Outcome outcome = import({"l.yaml", "r.yaml"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  expectTheCamera();
  EXPECT_EQ(written("width_px"), 640);
  EXPECT_EQ(written("height_px"), 480);
}

TEST_F(CameraImport, RosMessagesWithAPlainList) {
  writeFile(folder.path("l.yaml"), "width: 640\nheight: 480\nP: [" + std::string(rosLeft) + "]\n");
  writeFile(folder.path("r.yaml"), "width: 640\nheight: 480\nP: [" + std::string(rosRight) + "]\n");
  ASSERT_EQ(import({"l.yaml", "r.yaml"}).status, 0);
  expectTheCamera();
}

TEST_F(CameraImport, SaysWhatItTookAndWhatItCannotKnow) {
  writeFile(folder.path("stereo.yml"), openCv);
  const Outcome outcome = import({"stereo.yml", "--unit-mm", "1000"});
  for (const char* text : {"P1[0,0]", "P2[0,2] - P1[0,2]", "-P2[0,3] / P2[0,0]", "a unit being 1000 mm",
                           "  height_mm: of the camera's centre", "  tilt_deg: ", "  width_px: ", "  height_px: ",
                           "A calibration tells nothing about the mount"})
    EXPECT_NE(outcome.out.find(text), std::string::npos) << text << " is not in\n" << outcome.out;
  const std::string file = readFile(folder.path("c.toml"));
  EXPECT_NE(file.find("\n# height_mm = "), std::string::npos) << file;
  EXPECT_NE(file.find("TO FILL IN"), std::string::npos) << file;
}

TEST_F(CameraImport, ANotYetCompleteFileIsRefusedWithWhatIsMissing) {
  writeFile(folder.path("stereo.yml"), openCv);
  ASSERT_EQ(import({"stereo.yml", "--unit-mm", "1000", "--width-px", "640", "--height-px", "480"}).status, 0);
  const Outcome outcome = folder.run({"ground", "l.png", "r.png", "--camera", "c.toml", "-o", "result"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.err.find("height_mm: is missing"), std::string::npos) << outcome.err;
  EXPECT_NE(outcome.err.find("tilt_deg: is missing"), std::string::npos) << outcome.err;
}

const std::vector<std::string> plainNumbers = {"--baseline-mm",    "193.001", "--focal-px",       "608.138125",
                                               "--principal-x-px", "190.009", "--principal-y-px", "155.588",
                                               "--width-px",       "433",     "--height-px",      "305",
                                               "--height-mm",      "1064.6",  "--tilt-deg",       "-75.44",
                                               "--offset-y-mm",    "800",     "--cell-mm",        "20"};

TEST_F(CameraImport, PlainNumbersComeBackExactlyAndAreComplete) {
  const Outcome outcome = import(plainNumbers);
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  for (size_t i = 0; i < plainNumbers.size(); i += 2) {
    std::string key = plainNumbers[i].substr(2);
    std::replace(key.begin(), key.end(), '-', '_');
    EXPECT_EQ(written(key), std::stod(plainNumbers[i + 1])) << key;
  }
  EXPECT_EQ(written("column_shift_px"), 0);
  EXPECT_EQ(folder.run({"ground", "l.png", "r.png", "--camera", "c.toml", "-o", "result"}).err,
            "nadir: cannot read l.png: No such file or directory\n");
}

TEST_F(CameraImport, OptionsGoBeforeTheCalibration) {
  writeFile(folder.path("stereo.yml"), openCv);
  ASSERT_EQ(import({"stereo.yml", "--unit-mm", "1000", "--baseline-mm", "119.5", "--column-shift-px", "0"}).status, 0);
  EXPECT_EQ(written("baseline_mm"), 119.5);
  EXPECT_EQ(written("column_shift_px"), 0);
}

TEST_F(CameraImport, TooLittleOrOutOfRange) {
  expectRefused({"--focal-px", "600"}, "baseline_mm is not known: give a calibration file or --baseline-mm");
  std::vector<std::string> numbers = plainNumbers;
  numbers[15] = "95";
  expectRefused(numbers, "--tilt-deg: is 95, must lie between -89.9 and 89.9");
  expectRefused({"--cell-mm", "0"}, "--cell-mm: is 0, must lie between 1 and 10000");
  expectRefused({"--height-mm", "1e308"}, "--height-mm: is 1e+308, must lie between 1 and 1000000");
  expectRefused({"--height-mm", "nan"}, "--height-mm: is nan, must lie between 1 and 1000000");
}

TEST_F(CameraImport, BadOpenCvFiles) {
  expectOpenCvRefused("%YAML:1.0\nR1: 3\n", "bad.yml:1: R2: is missing, beside R1");
  expectOpenCvRefused("just text\n",
                      "bad.yml:1: it is not a calibration: neither YAML or XML nor a calib.txt nor a camera file");
  expectOpenCvRefused("%YAML:1.0\nR1: 3\nP1: [\n", "bad.yml:4: end of sequence flow not found");
  expectOpenCvRefused(replaced(openCv, "[ 600., 0., 320.5, 0., ", "[ "),
                      "bad.yml:3: P1: is not a matrix of 3 x 4: 12 numbers");
  expectOpenCvRefused(replaced(openCv, "320.5", "wide"),
                      "bad.yml:3: P1: holds something that is not a number up to 1e9");
  expectOpenCvRefused(replaced(openCv, "600., 240.25", "610., 240.25"),
                      "bad.yml:3: P1: has two focal lengths, 600 and 610; it must be of rectified pictures");
  expectOpenCvRefused(replaced(openCv, "-72.", "72."),
                      "bad.yml:8: P2: is of a camera that is not right of the first one; exchange the two");
  expectOpenCvRefused(replaced(openCv, "-72., 0., 600., 240.25, 0.", "0., 0., 600., 240.25, -72."),
                      "bad.yml:8: P2: is of a camera above or below the first one");
  expectOpenCvRefused(replaced(openCvQ, "8.3333333333333339,", "-8.3,"),
                      "bad.yml:2: Q: is of a second camera that is not right of the first one; exchange the two");
  writeFile(folder.path("bad.yml"), replaced(openCv, "cols: 4\n", "cols: [4\n"));
  const Outcome outcome = import({"bad.yml", "--unit-mm", "1"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.err.rfind("nadir: bad.yml:", 0), 0u) << outcome.err;
}

TEST_F(CameraImport, BadRosPairs) {
  expectRosRefused(ros("left", rosRight), ros("right", rosLeft),
                   "l.yaml:8: projection_matrix: is not the left camera's: its last column is not 0");
  expectRosRefused(ros("left", rosLeft), ros("right", rosLeft),
                   "r.yaml:8: projection_matrix: is of a camera that is not right of the first one; exchange the two");
  expectRosRefused(ros("left", rosLeft), replaced(ros("right", rosRight), "640", "320"),
                   "the pictures differ in size: those of l.yaml are 640 x 480 pixels, those of r.yaml 320 x 480");
  expectRosRefused(ros("left", rosLeft), replaced(ros("right", rosRight), "240.25", "238"),
                   "r.yaml:8: projection_matrix: has another focal length or principal row than the left camera");
  expectRosRefused(ros("left", rosLeft), "image_width: 640\n", "r.yaml:1: projection_matrix: is missing");
  const auto wide = [](const char* width) { return replaced(ros("left", rosLeft), "640", width); };
  for (const char* width : {"0", "65536", "640.5"})
    expectRosRefused(wide(width), ros("right", rosRight), "l.yaml:1: image_width: is no number of pixels");
  for (const std::string width : {"1", "65535"})
    expectRosRefused(
        wide(width.c_str()), ros("right", rosRight),
        "the pictures differ in size: those of l.yaml are " + width + " x 480 pixels, those of r.yaml 640 x 480");
}

}  // namespace
}  // namespace nadir::test
