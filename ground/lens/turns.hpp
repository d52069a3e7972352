// Rotations by square roots alone, row by row.
#pragma once

namespace nadir::ground {

struct Vector3 {
  double x, y, z;
};

struct Turn {
  double m[9];

  Vector3 operator*(const Vector3& v) const;
  Turn operator*(const Turn& other) const;
  Turn transposed() const;
};

double determinant(const Turn& turn);

// True where the rows are perpendicular unit vectors to a thousandth, and nothing is mirrored.
bool isRotation(const Turn& turn);

// The inverse, which is the transposed one only where a file gave all of the digits.
Turn inverse(const Turn& turn);

// The rotation about the same axis by half of the angle. For half a turn itself the axis is not told: not-a-number.
Turn halfOf(const Turn& turn);

// The smallest rotation that takes one direction to another; for opposite ones not-a-number.
Turn turnBetween(const Vector3& from, const Vector3& to);

double dot(const Vector3& a, const Vector3& b);
double length(const Vector3& v);
Vector3 unit(const Vector3& v);

}  // namespace nadir::ground
