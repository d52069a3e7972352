// Every sum of a rotation is formed in the order that stands here.
#include "ground/lens/turns.hpp"

#include <cmath>

namespace nadir::ground {

namespace {

constexpr double rotationTolerance = 1e-3;

Vector3 cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vector3 rowOf(const Turn& turn, int row) { return {turn.m[3 * row], turn.m[3 * row + 1], turn.m[3 * row + 2]}; }

// Twice the sine of the angle, along the axis.
Vector3 twiceSine(const Turn& t) { return {t.m[7] - t.m[5], t.m[2] - t.m[6], t.m[3] - t.m[1]}; }

// I + [v] + [v]^2 / (1 + cosine), where v is the axis times the angle's sine.
Turn turnBy(const Vector3& v, double cosine) {
  const double k = 1 / (1 + cosine);
  return {{cosine + k * v.x * v.x, k * v.x * v.y - v.z, k * v.x * v.z + v.y,  //
           k * v.x * v.y + v.z, cosine + k * v.y * v.y, k * v.y * v.z - v.x,  //
           k * v.x * v.z - v.y, k * v.y * v.z + v.x, cosine + k * v.z * v.z}};
}

}  // namespace

double dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

double length(const Vector3& v) { return std::sqrt(dot(v, v)); }

Vector3 unit(const Vector3& v) {
  const double l = length(v);
  return {v.x / l, v.y / l, v.z / l};
}

Vector3 Turn::operator*(const Vector3& v) const {
  return {dot(rowOf(*this, 0), v), dot(rowOf(*this, 1), v), dot(rowOf(*this, 2), v)};
}

Turn Turn::transposed() const { return {{m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}}; }

Turn Turn::operator*(const Turn& other) const {
  Turn product{};
  const Turn columns = other.transposed();
  for (int i = 0; i < 9; ++i) product.m[i] = dot(rowOf(*this, i / 3), rowOf(columns, i % 3));
  return product;
}

double determinant(const Turn& turn) { return dot(rowOf(turn, 0), cross(rowOf(turn, 1), rowOf(turn, 2))); }

bool isRotation(const Turn& turn) {
  const Turn square = turn * turn.transposed();
  for (int i = 0; i < 9; ++i)
    if (!(std::fabs(square.m[i] - (i % 4 == 0 ? 1 : 0)) <= rotationTolerance)) return false;
  return determinant(turn) > 0;
}

Turn inverse(const Turn& turn) {
  const Vector3 a = rowOf(turn, 0), b = rowOf(turn, 1), c = rowOf(turn, 2);
  const double whole = determinant(turn);
  const Vector3 x = cross(b, c), y = cross(c, a), z = cross(a, b);
  return {{x.x / whole, y.x / whole, z.x / whole, x.y / whole, y.y / whole, z.y / whole, x.z / whole, y.z / whole,
           z.z / whole}};
}

// cos(a / 2) = sqrt((1 + cos(a)) / 2), sin(a / 2) = sin(a) / (2 cos(a / 2)), and the trace is 1 + 2 cos(a).
Turn halfOf(const Turn& turn) {
  const double half = std::sqrt((1 + (turn.m[0] + turn.m[4] + turn.m[8])) / 4);
  const Vector3 v = twiceSine(turn);
  return turnBy({v.x / (4 * half), v.y / (4 * half), v.z / (4 * half)}, half);
}

Turn turnBetween(const Vector3& from, const Vector3& to) {
  const Vector3 a = unit(from), b = unit(to);
  return turnBy(cross(a, b), dot(a, b));
}

}  // namespace nadir::ground
