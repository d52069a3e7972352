// Golden-section search.
#include <gtest/gtest.h>
#include <nadir/numeric.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include "lab/random.hpp"
#include "tests/models/golden_section.hpp"
#include "tests/support/guarded.hpp"

namespace nadir::test {
namespace {

using Function = std::function<double(double)>;
using Points = std::vector<double>;
constexpr double unwritten = -12345.75;
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// The context of the callback: the function, and where it was asked for.
struct Objective {
  Function f;
  Points asked;
};

double evaluate(void* context, double x) {
  auto* objective = static_cast<Objective*>(context);
  objective->asked.push_back(x);
  return objective->f(x);
}

struct Found {
  GsResult result;
  Points xs, fs;  // as long as the arrays
  Points asked;
};

// The arrays are as long as they must be and no longer.
Found search(const Function& f, uint32_t maxEval, double a, double b, double tol, Guard side = Guard::behind) {
  Objective objective{f, {}};
  const GsFunc func{evaluate, &objective};
  const size_t room = std::max(maxEval, 2u);
  const Guarded<double> xs(Points(room, unwritten), side), fs(Points(room, unwritten), side);
  Found found{{77, 77, unwritten, unwritten}, {}, {}, {}};
  IP_Optim_GsSearch(&func, maxEval, xs.data(), fs.data(), &found.result, a, b, tol);
  found.xs = xs.values();
  found.fs = fs.values();
  found.asked = objective.asked;
  return found;
}

// The same bits; every NaN equals every other.
bool identical(double a, double b) {
  if (a != a) return b != b;
  return std::memcmp(&a, &b, sizeof a) == 0;
}

bool identical(const Points& a, const Points& b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](double p, double q) { return identical(p, q); });
}

void expectAsTheModel(const Function& f, uint32_t maxEval, double a, double b, double tol, Guard side = Guard::behind) {
  SCOPED_TRACE(testing::Message() << "at most " << maxEval << " in [" << a << ", " << b << "], tolerance " << tol);
  model::Search wanted = model::goldenSection(f, maxEval, a, b, tol);
  const Found got = search(f, maxEval, a, b, tol, side);
  ASSERT_EQ(got.result.evaluations, wanted.evaluations);
  ASSERT_EQ(got.result.iterations, wanted.iterations);
  EXPECT_TRUE(identical(wanted.xs, got.asked));
  wanted.xs.resize(got.xs.size(), unwritten);
  wanted.fs.resize(got.fs.size(), unwritten);
  EXPECT_TRUE(identical(wanted.xs, got.xs));
  EXPECT_TRUE(identical(wanted.fs, got.fs));
  EXPECT_TRUE(identical(wanted.bestX, got.result.bestX)) << got.result.bestX;
  EXPECT_TRUE(identical(wanted.bestF, got.result.bestF)) << got.result.bestF;
}

double hill(double x) { return -(x - 1) * (x - 1); }

// A value from the bits of x alone: the search meets it in any shape.
double scatter(double x) {
  uint64_t bits;
  std::memcpy(&bits, &x, sizeof bits);
  return static_cast<double>(lab::Random(bits).below(8));
}

}  // namespace

// ---- what it finds ----

TEST(GsSearch, ConvergesToTheMaximum) {
  const Found found = search(hill, 100, 0, 3, 1e-6);
  EXPECT_NEAR(found.result.bestX, 1, 1e-6);
  EXPECT_NEAR(found.result.bestF, 0, 1e-11);
  EXPECT_EQ(found.result.iterations + 2, found.result.evaluations);
  EXPECT_LT(found.result.evaluations, 50u);
}

TEST(GsSearch, ConvergesToAMaximumAtEitherEnd) {
  EXPECT_NEAR(search([](double x) { return x; }, 100, -2, 5, 1e-6).result.bestX, 5, 1e-5);
  EXPECT_NEAR(search([](double x) { return -x; }, 100, -2, 5, 1e-6).result.bestX, -2, 1e-5);
}

TEST(GsSearch, ReportsAValueThatItEvaluated) {
  for (uint32_t maxEval = 2; maxEval < 30; ++maxEval) {
    const Found found = search(hill, maxEval, 0, 3, 0);
    const auto at = std::find(found.xs.begin(), found.xs.end(), found.result.bestX);
    ASSERT_NE(at, found.xs.end());
    EXPECT_EQ(found.fs[static_cast<size_t>(at - found.xs.begin())], found.result.bestF);
    EXPECT_EQ(found.result.bestF, *std::max_element(found.fs.begin(), found.fs.end()));
  }
}

// ---- where it stops ----

TEST(GsSearch, EvaluatesTwoPointsHoweverFewItMay) {
  for (uint32_t maxEval : {0u, 1u, 2u}) {
    const Found found = search(hill, maxEval, 0, 3, 1e-6);
    EXPECT_EQ(found.result.iterations, 0u);
    EXPECT_EQ(found.result.evaluations, 2u);
    EXPECT_EQ(found.asked, found.xs);
    EXPECT_EQ(found.fs, (Points{hill(found.xs[0]), hill(found.xs[1])}));
    EXPECT_NEAR(found.xs[0], 3 - 3 / 1.618033988749895, 1e-15);
    EXPECT_NEAR(found.xs[1], 3 / 1.618033988749895, 1e-15);
  }
}

TEST(GsSearch, TakesOneStepForEachFurtherEvaluation) {
  for (uint32_t maxEval = 3; maxEval < 20; ++maxEval) {
    const Found found = search(hill, maxEval, 0, 3, 0);
    EXPECT_EQ(found.result.evaluations, maxEval);
    EXPECT_EQ(found.result.iterations, maxEval - 2);
    EXPECT_EQ(found.asked, found.xs);
  }
}

TEST(GsSearch, TakesNoStepWithinTheTolerance) {
  const Found found = search(hill, 10, 0, 3, 3);
  EXPECT_EQ(found.result.iterations, 0u);
  EXPECT_EQ(found.result.evaluations, 2u);
  EXPECT_EQ(Points(found.xs.begin() + 2, found.xs.end()), Points(8, unwritten));
  EXPECT_EQ(Points(found.fs.begin() + 2, found.fs.end()), Points(8, unwritten));
}

TEST(GsSearch, TakesAStepOnlyAboveTheTolerance) {
  const Found first = search(hill, 2, 0, 3, 0);
  const double apart = std::abs(first.xs[0] - first.xs[1]);
  EXPECT_EQ(search(hill, 3, 0, 3, apart).result.evaluations, 2u);
  EXPECT_EQ(search(hill, 3, 0, 3, std::nextafter(apart, 0)).result.evaluations, 3u);
}

TEST(GsSearch, TakesNoStepWhereTheToleranceIsNoNumber) {
  EXPECT_EQ(search(hill, 10, 0, 3, notANumber).result.evaluations, 2u);
}

TEST(GsSearch, StopsOnAnEmptyIntervalUnlessTheToleranceIsNegative) {
  EXPECT_EQ(search(hill, 10, 2, 2, 0).result.evaluations, 2u);
  EXPECT_EQ(search(hill, 10, 2, 2, -1).result.evaluations, 10u);
}

// ---- which way it goes ----

TEST(GsSearch, GoesRightOnEveryTieAndReportsTheRightPoint) {
  const Found found = search([](double) { return 4.0; }, 12, 0, 3, 0);
  for (size_t i = 1; i < found.xs.size(); ++i) EXPECT_GT(found.xs[i], found.xs[i - 1]) << i;
  EXPECT_EQ(found.result.bestX, found.xs.back());
  EXPECT_EQ(found.result.bestF, 4);
}

TEST(GsSearch, GoesLeftWhereTheLeftValueIsLarger) {
  const Found found = search([](double x) { return -x; }, 12, 0, 3, 0);
  EXPECT_GT(found.xs[1], found.xs[0]);
  EXPECT_LT(found.xs[2], found.xs[0]);
  for (size_t i = 3; i < found.xs.size(); ++i) EXPECT_LT(found.xs[i], found.xs[i - 1]) << i;
  EXPECT_EQ(found.result.bestX, found.xs.back());
}

TEST(GsSearch, ReportsTheRightPointOfATie) {
  const Found found = search([](double) { return 4.0; }, 0, 0, 3, 0);
  EXPECT_EQ(found.result.bestX, found.xs[1]);
}

TEST(GsSearch, AsksWithTheContextAndFromTheLeft) {
  const Found found = search(hill, 2, 0, 3, 0);
  ASSERT_EQ(found.asked.size(), 2u);
  EXPECT_LT(found.asked[0], found.asked[1]);
}

TEST(GsSearch, LeavesTheFunctionRecordAlone) {
  Objective objective{hill, {}};
  GsFunc func{evaluate, &objective};
  double xs[5], fs[5];
  GsResult result;
  IP_Optim_GsSearch(&func, 5, xs, fs, &result, 0, 3, 0);
  EXPECT_EQ(func.evaluate, evaluate);
  EXPECT_EQ(func.context, &objective);
}

// ---- every number of it ----

TEST(GsSearch, RecordsExactlyTheSameSearchForAnyHill) {
  lab::Random random(80);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(testing::Message() << "round " << round << ", seed 80");
    const double a = random.between(-1000, 1000) / 7.0, b = a + random.between(1, 5000) / 11.0;
    const double peak = a + (b - a) * random.below(1000) / 999.0, slope = 1 + random.below(100) / 3.0;
    const auto f = [=](double x) { return x < peak ? slope * (x - peak) : peak - x; };
    const double tol = random.below(3) ? (b - a) / random.between(2, 100000) : 0;
    expectAsTheModel(f, random.below(60), a, b, tol, round % 2 ? Guard::before : Guard::behind);
    if (HasFailure()) return;
  }
}

TEST(GsSearch, RecordsExactlyTheSameSearchForAnyFunction) {
  lab::Random random(81);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(testing::Message() << "round " << round << ", seed 81");
    const double a = random.between(-1000, 1000) / 7.0, b = random.between(-1000, 1000) / 13.0;
    expectAsTheModel(scatter, random.below(80), a, b, random.below(2) ? 0 : -1);
    if (HasFailure()) return;
  }
}

TEST(GsSearch, RecordsExactlyTheSameSearchUntilTheIntervalIsUsedUp) {
  for (double tol : {1e-6, 1e-12, 1e-15, 0.0}) expectAsTheModel(hill, 300, 0, 3, tol);
  for (double tol : {1e-6, 1e-12, 0.0}) expectAsTheModel(scatter, 300, -1e6, 1e-3, tol);
}

TEST(GsSearch, RecordsExactlyTheSameSearchWithEndsExchanged) {
  expectAsTheModel(hill, 40, 3, 0, 1e-6);
  expectAsTheModel(scatter, 40, 3, 0, 1e-6);
}

TEST(GsSearch, RecordsExactlyTheSameSearchForEndsThatAreNoNumbers) {
  for (double end : {infinity, -infinity, notANumber, std::numeric_limits<double>::max()}) {
    expectAsTheModel(hill, 10, 0, end, 1e-6);
    expectAsTheModel(hill, 10, end, 0, 1e-6);
    expectAsTheModel(hill, 10, end, 0, -1);
    expectAsTheModel(hill, 10, -end, end, -1);
  }
}

// Neither value is larger than the other, so it goes right.
TEST(GsSearch, RecordsExactlyTheSameSearchForValuesThatAreNoNumbers) {
  expectAsTheModel([](double) { return notANumber; }, 10, 0, 3, 0);
  expectAsTheModel([](double x) { return x < 1.5 ? notANumber : x; }, 20, 0, 3, 0);
  expectAsTheModel([](double x) { return x < 1.5 ? x : notANumber; }, 20, 0, 3, 0);
  expectAsTheModel([](double x) { return x < 1.5 ? infinity : -infinity; }, 20, 0, 3, 0);
}

}  // namespace nadir::test
