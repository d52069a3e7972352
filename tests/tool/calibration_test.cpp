// Tests of every kind of calibration: what is taken from it, and what is refused with file, line and key.
#include <gtest/gtest.h>

#include "tests/tool/tool.hpp"

namespace nadir::test {
namespace {

std::string matrix(const std::string& name, const std::string& shape, const std::string& numbers) {
  return name + ": !!opencv-matrix\n   rows: " + shape[0] + "\n   cols: " + shape[2] + "\n   dt: d\n   data: [ " +
         numbers + " ]\n";
}

std::string element(const std::string& name, const std::string& numbers) {
  return "<" + name + " type_id=\"opencv-matrix\">\n  <rows>1</rows><cols>1</cols><dt>d</dt>\n  <data>" + numbers +
         "</data></" + name + ">\n";
}

const std::string noRotation = "1, 0, 0, 0, 1, 0, 0, 0, 1";

// 600 px; the right camera's principal point is its own, and the views' are found.
const std::string lenses = "%YAML:1.0\n---\n" + matrix("M1", "3 3", "600, 0, 320, 0, 600, 240, 0, 0, 1") +
                           matrix("D1", "1 5", "-0.2, 0.06, 0.0008, -0.0005, -0.01") +
                           matrix("M2", "3 3", "610, 0, 320, 0, 610, 240, 0, 0, 1") +
                           matrix("D2", "1 4", "-0.1, 0, 0, 0");
const std::string pose = "%YAML:1.0\n---\n" + matrix("R", "3 3", noRotation) + matrix("T", "3 1", "-0.12, 0, 0");

std::string xml() {
  return "<?xml version=\"1.0\"?>\n<opencv_storage>\n" + element("M1", "600 0 320 0 600 240 0 0 1") +
         element("D1", "-0.2 0.06 0.0008 -0.0005 -0.01") + element("M2", "610 0 320 0 610 240 0 0 1") +
         element("D2", "-0.1 0. 0. 0.") + element("R", "1 0 0 0 1 0 0 0 1") + element("T", "-0.12 0 0") +
         "</opencv_storage>\n";
}

std::string kalibrCamera(const std::string& model, const std::string& coefficients, const std::string& focal) {
  return "  camera_model: pinhole\n  distortion_coeffs: [" + coefficients + "]\n  distortion_model: " + model +
         "\n  intrinsics: [" + focal + ", " + focal + ", 320, 240]\n  resolution: [640, 480]\n";
}

std::string chain(const std::string& translation) {
  return "cam0:\n" + kalibrCamera("radtan", "-0.2, 0.06, 0.0008, -0.0005", "600") +
         "cam1:\n  T_cn_cnm1:\n  - [1.0, 0.0, 0.0, " + translation +
         "]\n  - [0.0, 1.0, 0.0, 0.0]\n  - [0.0, 0.0, 1.0, 0.0]\n  - [0.0, 0.0, 0.0, 1.0]\n" +
         kalibrCamera("equi", "0.01, 0, 0, 0", "610");
}

const std::string plain =
    "cam0=[600 0 320; 0 600 240; 0 0 1]\ncam1=[600 0 330; 0 600 240; 0 0 1]\ndoffs=10\nbaseline=120\nwidth=640\n"
    "height=480\nndisp=64\n";

const std::string own =
    "[left_lens]\nmodel = \"plumb-bob\"\nfocal_x_px = 600\nfocal_y_px = 600\nprincipal_x_px = 320\n"
    "principal_y_px = 240\nk1 = -0.2\n\n[right_lens]\nmodel = \"fisheye\"\nfocal_x_px = 610\nfocal_y_px = 610\n"
    "principal_x_px = 320\nprincipal_y_px = 240\nk1 = 0.01\n\n[pose]\n"
    "rotation = [1, 0, 0, 0, 1, 0, 0, 0, 1]\ntranslation_mm = [-120, 0, 0]\n";

std::string ros(const std::string& model, const std::string& coefficients, const std::string& shift) {
  return "image_width: 640\nimage_height: 480\ncamera_matrix: {rows: 3, cols: 3, data: [600, 0, 320, 0, 600, 240, 0, "
         "0, "
         "1]}\ndistortion_model: " +
         model + "\ndistortion_coefficients: {data: [" + coefficients + "]}\nrectification_matrix: {data: [" +
         noRotation + "]}\nprojection_matrix: {data: [600, 0, 320, " + shift + ", 0, 600, 240, 0, 0, 0, 1, 0]}\n";
}

class Calibration : public testing::Test {
 protected:
  Outcome import(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"camera", "import"});
    arguments.insert(arguments.end(), {"-o", "c.toml", "--force"});
    return folder.run(arguments);
  }

  double written(const std::string& key) {
    return numberAfter("\n" + readFile(folder.path("c.toml")), "\n" + key + " =");
  }

  // What is found for two such cameras beside each other: the smaller focal length, and no shift.
  void expectFound(const Outcome& outcome) {
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_NEAR(written("baseline_mm"), 120, 1e-9);
    EXPECT_EQ(written("focal_px"), 600);
    EXPECT_EQ(written("column_shift_px"), 0);
    EXPECT_EQ(written("width_px"), 640);
    EXPECT_EQ(written("height_px"), 480);
  }

  void expectRefused(const std::vector<std::string>& texts, const std::string& sentence,
                     std::vector<std::string> options = {}) {
    std::vector<std::string> files;
    for (const std::string& text : texts) {
      files.push_back(std::string(files.empty() ? "a" : "b") + ".yml");
      writeFile(folder.path(files.back()), text);
    }
    files.insert(files.end(), {"--unit-mm", "1000", "--width-px", "640", "--height-px", "480"});
    files.insert(files.end(), options.begin(), options.end());
    const Outcome outcome = import(files);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "nadir: " + sentence + "\n");
  }

  Folder folder;
};

const std::vector<std::string> inMetres = {"--unit-mm", "1000", "--width-px", "640", "--height-px", "480"};

TEST_F(Calibration, OpenCvInTwoFilesInEitherOrder) {
  writeFile(folder.path("in.yml"), lenses);
  writeFile(folder.path("ex.yml"), pose);
  expectFound(import(with({"in.yml", "ex.yml"}, inMetres)));
  expectFound(import(with({"ex.yml", "in.yml"}, inMetres)));
}

TEST_F(Calibration, OpenCvXmlIsTheSame) {
  writeFile(folder.path("in.yml"), lenses);
  writeFile(folder.path("ex.yml"), pose);
  expectFound(import(with({"in.yml", "ex.yml"}, inMetres)));
  const std::string camera = readFile(folder.path("c.toml"));
  writeFile(folder.path("both.xml"), xml());
  expectFound(import(with({"both.xml"}, inMetres)));
  EXPECT_EQ(readFile(folder.path("c.toml")), camera);
}

TEST_F(Calibration, KalibrsChainKnowsSizeAndUnit) {
  writeFile(folder.path("chain.yaml"), chain("-0.12"));
  expectFound(import({"chain.yaml"}));
}

TEST_F(Calibration, KalibrsRightCameraMayComeFirst) {
  writeFile(folder.path("chain.yaml"), chain("0.12"));
  const Outcome outcome = import({"chain.yaml"});
  expectFound(outcome);
  EXPECT_NE(outcome.out.find("cam1 is the left camera, as its T_cn_cnm1 says"), std::string::npos) << outcome.out;
}

TEST_F(Calibration, CalibTxtIsRectifiedAlready) {
  writeFile(folder.path("calib.txt"), plain);
  const Outcome outcome = import({"calib.txt"});
  ASSERT_EQ(outcome.status, 0) << outcome.err;
  EXPECT_EQ(written("baseline_mm"), 120);
  EXPECT_EQ(written("focal_px"), 600);
  EXPECT_EQ(written("principal_x_px"), 320);
  EXPECT_EQ(written("column_shift_px"), 10);
  EXPECT_EQ(written("width_px"), 640);
  EXPECT_NE(outcome.out.find("calib.txt: not used: ndisp"), std::string::npos) << outcome.out;
}

TEST_F(Calibration, LensesOfACameraFile) {
  writeFile(folder.path("own.toml"), own);
  expectFound(import({"own.toml", "--width-px", "640", "--height-px", "480"}));
}

TEST_F(Calibration, WhatIsTakenForZeroIsSaid) {
  writeFile(folder.path("one.yml"), replaced(lenses, "D2:", "F:") + pose.substr(pose.find("R:")));
  const Outcome outcome = import(with({"one.yml"}, inMetres));
  expectFound(outcome);
  EXPECT_NE(outcome.out.find("one.yml: D2 is missing: taken as 0, no distortion"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("one.yml: not used: F"), std::string::npos) << outcome.out;
}

TEST_F(Calibration, WhatNoLensHereHasIsRefused) {
  const auto d1 = [](const std::string& numbers) {
    return replaced(lenses, "-0.2, 0.06, 0.0008, -0.0005, -0.01", numbers);
  };
  expectRefused({replaced(lenses, "600, 0, 320", "600, 0.5, 320"), pose},
                "a.yml:3: M1: has a skew of 0.5, which is not supported; only 0 is");
  expectRefused({d1("1, 2, 3"), pose}, "a.yml:8: D1: has 3 lens coefficients, and 4, 5, 8 or 12 are supported");
  expectRefused({d1("1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 0.1"), pose},
                "a.yml:8: D1: has 14 coefficients with a tilted sensor, which is not supported; calibrate without it");
  expectRefused({d1("1, 2, 3, .inf"), pose}, "a.yml:8: D1: holds something that is not a number up to 1e6");
  expectRefused(
      {lenses + "xi1: 1.2\n", pose},
      "a.yml:23: xi1: is of an omnidirectional camera, which is not supported; pinhole and fisheye lenses are");
  expectRefused({lenses, pose}, "a.yml:8: D1: has 5 lens coefficients, and an equidistant fisheye 4",
                {"--lens", "fisheye"});
  expectRefused({replaced(chain("-0.12"), "pinhole", "omni")},
                "a.yml:2: cam0.camera_model: is omni, and only pinhole is supported; calibrate with pinhole-equi");
  expectRefused(
      {replaced(chain("-0.12"), "radtan", "fov")},
      "a.yml:4: cam0.distortion_model: is fov, and radtan, equi and none are supported; calibrate with one of "
      "them");
  expectRefused({chain("-0.12")},
                "a.yml:15: cam1.distortion_model: is equi, and --lens says plumb-bob; leave --lens out",
                {"--lens", "plumb-bob"});
  expectRefused({chain("-0.12") + "cam2:\n  camera_model: pinhole\n"},
                "a.yml:19: cam2.camera_model: is of a third camera, and two are used; take a chain of two");
}

TEST_F(Calibration, EveryModelIsTaken) {
  const auto taken = [this](const std::string& numbers, const std::vector<std::string>& options) {
    writeFile(folder.path("in.yml"), replaced(lenses, "-0.2, 0.06, 0.0008, -0.0005, -0.01", numbers));
    writeFile(folder.path("ex.yml"), pose);
    expectFound(import(with(with({"in.yml", "ex.yml"}, inMetres), options)));
  };
  taken("0.01, 0, 0, 0", {"--lens", "fisheye"});
  for (const char* numbers : {"0", "0.01, 0, 0, 0", "0.01, 0, 0, 0, 0", "0.01, 0, 0, 0, 0, 0, 0, 0",
                              "0.01, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0", "0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0"})
    taken(numbers, {});
}

TEST_F(Calibration, WhatIsMissingOrNoneIsNamed) {
  expectRefused({lenses}, "a.yml: it does not say how the cameras stand to each other (R, T), which rectifying needs");
  expectRefused({pose}, "a.yml: it holds no lenses (M1, M2), which rectifying needs; are the pictures rectified?");
  expectRefused({replaced(lenses, "M2:", "X2:"), pose}, "a.yml:1: M2: is missing, beside the other lens's");
  expectRefused({lenses, replaced(pose, "R:", "X:")}, "a.yml:1: R: is missing, beside T");
  expectRefused({lenses, pose + matrix("R1", "3 3", noRotation)}, "a.yml:1: R2: is missing, beside R1");
  expectRefused({"hello: 1\n"},
                "a.yml:1: it holds no calibration that is known: neither OpenCV's (M1, P1, Q), a ROS camera_info "
                "(camera_matrix, projection_matrix), a Kalibr camchain (cam0, cam1), a calib.txt (cam0=[...]) nor the "
                "tables [left_lens], [right_lens] and [pose] of a camera file");
  expectRefused({"<opencv_storage>\n<M1>\n"}, "a.yml:2: it is not XML: XML_ERROR_PARSING");
  expectRefused({"<html></html>\n"},
                "a.yml:1: opencv_storage: is missing, the element that OpenCV's calibrations stand in");
  expectRefused({plain + "what\n"}, "a.yml:8: it is no line \"key=value\" of a calib.txt");
  expectRefused({replaced(plain, "baseline=120\n", "")}, "a.yml:1: baseline: is missing, in mm");
  expectRefused({replaced(own, "focal_y_px = 600\n", "")}, "a.yml:1: left_lens.focal_y_px: is missing, in pixels");
  expectRefused({ros("plumb_bob", "0, 0, 0, 0, 0", "0")},
                "a.yml is a ROS camera_info of one camera; give the right camera's file too");
}

TEST_F(Calibration, WhatContradictsIsNamed) {
  expectRefused({lenses, replaced(pose, "1, 0, 0, 0, 1", "1, 0, 0, 0, 2")}, "b.yml:3: R: is no rotation");
  expectRefused({lenses, replaced(pose, "1, 0, 0, 0, 1, 0, 0, 0, 1", "1, 0, 0, 0, 1, 0, 0, 0, -1")},
                "b.yml:3: R: is no rotation: it mirrors");
  expectRefused({lenses, replaced(pose, "-0.12", "0")}, "b.yml:8: T: is 0: two cameras at one place see no depth");
  expectRefused({lenses, replaced(pose, "-0.12", "0.12")},
                "b.yml:8: T: is of a camera that is not right of the first one; exchange the two");
  expectRefused(
      {
          lenses,
          lenses + "M3: 0\n",
      },
      "a.yml: it does not say how the cameras stand to each other (R, T), which "
      "rectifying needs");
  expectRefused({lenses, replaced(lenses, "600, 0, 320", "601, 0, 320")},
                "b.yml:3: M1: is not what a.yml says in line 3; take two files of one calibration");
  expectRefused({lenses + "M1: 3\n", pose}, "a.yml:23: M1: is there twice, in line 3 too; take one of them out");
  const std::string views = matrix("P1", "3 4", "600, 0, 320, 0, 0, 600, 240, 0, 0, 0, 1, 0") +
                            matrix("P2", "3 4", "600, 0, 320, -90, 0, 600, 240, 0, 0, 0, 1, 0");
  expectRefused(
      {lenses, pose + views},
      "b.yml:8: T: is 0.12 long, but the baseline is 0.15 (-P2[0,3] / P2[0,0]); take files of one calibration");
  expectRefused({lenses, pose + matrix("R1", "3 3", "0, 1, 0, -1, 0, 0, 0, 0, 1") + matrix("R2", "3 3", noRotation)},
                "b.yml:8: T: does not fit the rotations of the views, R1 and R2; take files of one calibration");
  expectRefused({lenses, chain("-0.12")},
                "a.yml is OpenCV's and b.yml is a Kalibr camchain; take two files of one calibration");
  expectRefused({plain, plain}, "a.yml is a calib.txt, which says all by itself; leave b.yml out");
  expectRefused({replaced(plain, "doffs=10", "doffs=12")},
                "a.yml:3: doffs: is 12, and the principal columns of cam1 and cam0 differ by 10");
  expectRefused({replaced(own, "k1 = 0.01", "k7 = 0.01")},
                "a.yml:15: right_lens.k7: is no key of a camera file's calibration, or none of this lens model");
  expectRefused({replaced(own, "\"fisheye\"", "\"mirror\"")},
                "a.yml:10: right_lens.model: is mirror, and none, plumb-bob and fisheye are supported");
}

TEST_F(Calibration, RosModels) {
  const auto pair = [](const std::string& model, const std::string& numbers) {
    return std::vector<std::string>{ros(model, numbers, "0"), ros(model, numbers, "-72")};
  };
  for (const auto& [model, numbers] :
       {std::pair("plumb_bob", "0.1, 0, 0, 0, 0"), std::pair("equidistant", "0.1, 0, 0, 0"),
        std::pair("rational_polynomial", "0.1, 0, 0, 0, 0, 0, 0, 0")}) {
    writeFile(folder.path("l.yaml"), pair(model, numbers)[0]);
    writeFile(folder.path("r.yaml"), pair(model, numbers)[1]);
    expectFound(import({"l.yaml", "r.yaml"}));
  }
  expectRefused(pair("mei", "1, 2, 3, 4"),
                "a.yml:4: distortion_model: is mei, and plumb_bob, rational_polynomial, thin_prism and equidistant are "
                "supported");
  expectRefused({pair("plumb_bob", "0")[0] + "binning_x: 2\n", pair("plumb_bob", "0")[1]},
                "a.yml:8: binning_x: is 2, must lie between 0 and 1");
}

TEST_F(Calibration, AFileThatWasEditedIsKept) {
  writeFile(folder.path("calib.txt"), plain);
  const auto again = [this] { return folder.run({"camera", "import", "calib.txt", "-o", "c.toml"}); };
  ASSERT_EQ(again().status, 0);
  ASSERT_EQ(again().status, 0) << "nobody has edited it";
  const std::string edited = replaced(readFile(folder.path("c.toml")), "# height_mm =", "height_mm = 1200");
  writeFile(folder.path("c.toml"), edited);
  EXPECT_EQ(again().err,
            "nadir: c.toml is there and was edited, or made by somebody else: name another file, or replace it with "
            "--force\n");
  EXPECT_EQ(readFile(folder.path("c.toml")), edited);
  EXPECT_EQ(import({"calib.txt"}).status, 0) << "--force";
  EXPECT_NE(readFile(folder.path("c.toml")), edited);
}

}  // namespace
}  // namespace nadir::test
