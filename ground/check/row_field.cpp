// Weighted least squares, again and again with weights that follow from what was left over.
#include "ground/check/row_field.hpp"

namespace nadir::ground {

namespace {

constexpr int n = RowField::terms;

// The first rounds take errors of a row, the later ones of a third of it, which is twice what good blocks scatter by.
constexpr int rounds = 8, wideRounds = 2;
constexpr double wide = 1, narrow = 0.3;

// Where blocks do not tell a term, as in pictures of which a strip alone can be matched, it stays small: as if so large
// a share of the blocks had said that it is 0.
constexpr double holdsPlane = 1e-4, holdsBend = 2e-3;

struct Equations {
  double a[n][n + 1] = {};

  explicit Equations(double blocks) {
    for (int i = 0; i < n; ++i) a[i][i] = blocks * (i < 3 ? holdsPlane : holdsBend);
  }

  void add(const double (&term)[n], double value, double weight) {
    for (int i = 0; i < n; ++i) {
      for (int j = 0; j < n; ++j) a[i][j] += weight * term[i] * term[j];
      a[i][n] += weight * term[i] * value;
    }
  }

  // The matrix is positive definite, so that no pivot is 0.
  void solve(double (&x)[n]) {
    for (int i = 0; i < n; ++i)
      for (int k = i + 1; k < n; ++k) {
        const double factor = a[k][i] / a[i][i];
        for (int j = i; j <= n; ++j) a[k][j] -= factor * a[i][j];
      }
    for (int i = n - 1; i >= 0; --i) {
      x[i] = a[i][n];
      for (int j = i + 1; j < n; ++j) x[i] -= a[i][j] * x[j];
      x[i] /= a[i][i];
    }
  }
};

}  // namespace

void correct(RowField& field, const RowError* errors, size_t count) {
  RowField change{};
  for (int round = 0; round < rounds; ++round) {
    Equations equations(static_cast<double>(count));
    for (size_t i = 0; i < count; ++i) {
      const Place p = errors[i].place;
      const double term[n] = {1, p.across, p.down, p.across * p.down, p.across * p.across, p.down * p.down};
      const double left = (errors[i].rows - change.at(p)) / (round < wideRounds ? wide : narrow);
      equations.add(term, errors[i].rows, 1 / (1 + left * left));
    }
    equations.solve(change.rows);
  }
  for (int i = 0; i < n; ++i) field.rows[i] += change.rows[i];
}

}  // namespace nadir::ground
