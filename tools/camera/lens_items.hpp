// Lenses, rotations and projections out of a calibration's items, each checked for what cannot be used.
#pragma once

#include "tools/camera/calibration.hpp"

namespace nadir::tool {

// Rectified views share focal length and rows. Printed calibrations are rounded, so equality is not asked for.
constexpr double tolerancePx = 0.05;

constexpr double metre = 1000;  // mm

// (fx 0 cx; 0 fy cy; 0 0 1), without a skew.
NadirLens lensOf(const CalibrationItem& matrix);

// Lenses with a model and its coefficients, in the order k1 k2 p1 p2 k3 k4 k5 k6 s1 s2 s3 s4 or of a fisheye k1 k2 k3
// k4.
void setPlumbBob(const CalibrationItem& coefficients, NadirLens& lens);
void setFisheye(const CalibrationItem& coefficients, NadirLens& lens);

// The same where the file does not say which model it is; what `word` says goes before plumb bob.
void setByCount(const CalibrationItem& coefficients, const std::string& word, NadirLens& lens);

// Throws where a file says one model and the user another.
void checkModel(const CalibrationItem& model, const NadirLens& lens, const std::string& word);

void setSize(const CalibrationItem* width, const CalibrationItem* height, uint32_t& widthPx, uint32_t& heightPx);
uint32_t pixelsOf(const CalibrationItem& item, double number);

Rotation rotationOf(const CalibrationItem& item);
Rotation identity();
Vector translationOf(const CalibrationItem& item);

// A projection of 3 x 4 numbers, of a rectified picture.
struct Projection {
  const CalibrationItem& item;
  std::vector<double> numbers;
  double at(size_t row, size_t column) const { return numbers[row * 4 + column]; }
};
Projection projectionOf(const CalibrationItem& item);

// Sets the optics that (f 0 cx 0; 0 f cy 0; 0 0 1 0) and (f 0 cx' -f*baseline; ...) have in common.
//
// leftName  of the matrices, for the origins
void setOptics(const Projection& left, const Projection& right, const std::string& leftName,
               const std::string& rightName, Calibration& calibration);

void setUnit(double unitMm, const std::string& words, Calibration& calibration);

// Adds the sentence that names the items that nobody has asked for.
void addUnused(const CalibrationItems& items, Calibration& calibration);

}  // namespace nadir::tool
