// Makes numbers of a calibration's items what they stand for.
#include "tools/camera/lens_items.hpp"

#include <algorithm>
#include <cmath>

#include "tools/base/text.hpp"

namespace nadir::tool {

namespace {

// Rounded to four digits, a rotation is still one; another matrix hardly is.
constexpr double rotationTolerance = 1e-3;

constexpr double largestCoefficient = 1e6;
constexpr size_t tiltCoefficients = 2;

void setCoefficients(const CalibrationItem& item, size_t count, uint32_t model, NadirLens& lens) {
  for (size_t i = 0; i < count; ++i) {
    const double c = item.numbers[i];
    if (!(std::abs(c) <= largestCoefficient)) fail(item, "holds something that is not a number up to 1e6");
    lens.coefficients[i] = c;
  }
  lens.model = model;
}

double product(const Rotation& a, size_t row, const Rotation& b, size_t otherRow) {
  return a[3 * row] * b[3 * otherRow] + a[3 * row + 1] * b[3 * otherRow + 1] + a[3 * row + 2] * b[3 * otherRow + 2];
}

double determinant(const Rotation& m) {
  return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

std::string keyOf(const std::string& matrix, const char* element) { return matrix + element; }

}  // namespace

NadirLens lensOf(const CalibrationItem& matrix) {
  const std::vector<double> m = numbersOf(matrix, 9, "a matrix of 3 x 3");
  if (m[1] != 0) fail(matrix, format("has a skew of %g, which is not supported; only 0 is", m[1]));
  if (m[3] != 0 || m[6] != 0 || m[7] != 0 || m[8] != 1) fail(matrix, "is no camera matrix (fx 0 cx; 0 fy cy; 0 0 1)");
  NadirLens lens = {};
  lens.size = sizeof lens;
  lens.focal_x_px = m[0];
  lens.focal_y_px = m[4];
  lens.principal_x_px = m[2];
  lens.principal_y_px = m[5];
  for (const double focal : {m[0], m[4]})
    if (!(focal >= 1 && focal <= 100000)) fail(matrix, format("has a focal length of %g, not 1 to 100000", focal));
  for (const double principal : {m[2], m[5]})
    if (!(std::abs(principal) <= 65535)) fail(matrix, format("has a principal point at %g, beyond 65535", principal));
  return lens;
}

void setPlumbBob(const CalibrationItem& item, NadirLens& lens) {
  size_t count = item.numbers.size();
  if (item.numbers == std::vector<double>{0}) count = 0;
  if (count == 14) {
    if (item.numbers[12] != 0 || item.numbers[13] != 0)
      fail(item, "has 14 coefficients with a tilted sensor, which is not supported; calibrate without it");
    count -= tiltCoefficients;
  }
  if (count == 0) return;
  if (count != 4 && count != 5 && count != 8 && count != 12)
    fail(item, format("has %zu lens coefficients, and 4, 5, 8 or 12 are supported", count));
  setCoefficients(item, count, NADIR_LENS_BROWN, lens);
}

void setFisheye(const CalibrationItem& item, NadirLens& lens) {
  if (item.numbers.size() != 4)
    fail(item, format("has %zu lens coefficients, and an equidistant fisheye 4", item.numbers.size()));
  setCoefficients(item, 4, NADIR_LENS_FISHEYE, lens);
}

void setByCount(const CalibrationItem& item, const std::string& word, NadirLens& lens) {
  if (word == "fisheye") return setFisheye(item, lens);
  setPlumbBob(item, lens);
}

void checkModel(const CalibrationItem& model, const NadirLens& lens, const std::string& word) {
  const bool isFisheye = lens.model == NADIR_LENS_FISHEYE;
  if (!word.empty() && isFisheye != (word == "fisheye"))
    fail(model, format("is %s, and --lens says %s; leave --lens out", model.word.c_str(), word.c_str()));
}

uint32_t pixelsOf(const CalibrationItem& item, double number) {
  if (!(number >= 1 && number <= 65535) || number != std::floor(number)) fail(item, "is no number of pixels");
  return static_cast<uint32_t>(number);
}

void setSize(const CalibrationItem* width, const CalibrationItem* height, uint32_t& widthPx, uint32_t& heightPx) {
  if (!width || !height) return;
  widthPx = pixelsOf(*width, numbersOf(*width, 1, "a number")[0]);
  heightPx = pixelsOf(*height, numbersOf(*height, 1, "a number")[0]);
}

Rotation rotationOf(const CalibrationItem& item) {
  const std::vector<double> numbers = numbersOf(item, 9, "a matrix of 3 x 3");
  Rotation rotation;
  std::copy(numbers.begin(), numbers.end(), rotation.begin());
  for (size_t i = 0; i < 3; ++i)
    for (size_t j = 0; j <= i; ++j)
      if (!(std::abs(product(rotation, i, rotation, j) - (i == j)) <= rotationTolerance)) fail(item, "is no rotation");
  if (determinant(rotation) < 0) fail(item, "is no rotation: it mirrors");
  return rotation;
}

Rotation identity() { return {1, 0, 0, 0, 1, 0, 0, 0, 1}; }

Vector translationOf(const CalibrationItem& item) {
  const std::vector<double> t = numbersOf(item, 3, "a vector");
  if (t[0] == 0 && t[1] == 0 && t[2] == 0) fail(item, "is 0: two cameras at one place see no depth");
  return {t[0], t[1], t[2]};
}

Projection projectionOf(const CalibrationItem& item) {
  Projection p{item, numbersOf(item, 12, "a matrix of 3 x 4")};
  if (!(p.at(0, 0) > 0)) fail(item, "has a focal length that is not positive");
  if (std::abs(p.at(0, 0) - p.at(1, 1)) > tolerancePx)
    fail(item, format("has two focal lengths, %g and %g; it must be of rectified pictures", p.at(0, 0), p.at(1, 1)));
  if (p.at(0, 1) != 0) fail(item, format("has a skew of %g, which is not supported; only 0 is", p.at(0, 1)));
  return p;
}

void setOptics(const Projection& left, const Projection& right, const std::string& leftName,
               const std::string& rightName, Calibration& calibration) {
  if (left.at(0, 3) != 0) fail(left.item, "is not the left camera's: its last column is not 0");
  if (right.at(1, 3) != 0) fail(right.item, "is of a camera above or below the first one");
  if (!(right.at(0, 3) < 0)) fail(right.item, "is of a camera that is not right of the first one; exchange the two");
  if (std::abs(left.at(0, 0) - right.at(0, 0)) > tolerancePx || std::abs(left.at(1, 2) - right.at(1, 2)) > tolerancePx)
    fail(right.item, "has another focal length or principal row than the left camera");
  calibration.optics = Optics{left.at(0, 0), left.at(0, 2), left.at(1, 2), right.at(0, 2) - left.at(0, 2),
                              -right.at(0, 3) / right.at(0, 0)};
  calibration.origins = {{"focal_px", keyOf(leftName, "[0,0]")},
                         {"principal_x_px", keyOf(leftName, "[0,2]")},
                         {"principal_y_px", keyOf(leftName, "[1,2]")},
                         {"column_shift_px", keyOf(rightName, "[0,2] - ") + keyOf(leftName, "[0,2]")},
                         {"baseline_mm", "-" + keyOf(rightName, "[0,3] / ") + keyOf(rightName, "[0,0]")}};
}

void setUnit(double unitMm, const std::string& words, Calibration& calibration) {
  calibration.unitMm = unitMm;
  calibration.unit = words;
}

void addUnused(const CalibrationItems& items, Calibration& calibration) {
  std::string names;
  for (const CalibrationItem& item : items)
    if (!item.used) names += (names.empty() ? "" : ", ") + item.key;
  if (!names.empty()) calibration.unused.push_back(items.path() + ": not used: " + names);
}

}  // namespace nadir::tool
