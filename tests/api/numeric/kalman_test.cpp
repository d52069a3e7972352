// The Kalman filter of one dimension.
#include <gtest/gtest.h>
#include <nadir/numeric.h>

#include <cmath>
#include <cstring>

#include "lab/random.hpp"
#include "tests/models/kalman.hpp"
#include "tests/support/floats.hpp"

namespace nadir::test {
namespace {

// A filter holds this before it is created: no number that a call would write.
Kalman1d garbage() {
  Kalman1d filter;
  float values[sizeof filter / sizeof(float)];
  for (size_t i = 0; i < sizeof filter / sizeof(float); ++i) values[i] = -1000.5f - static_cast<float>(i);
  std::memcpy(&filter, values, sizeof filter);
  return filter;
}

Kalman1d created(float x, float v, float sigmaZ, float sigmaV, float sigmaA) {
  Kalman1d filter = garbage();
  IP_Kalman1d_Create(&filter, x, v, sigmaZ, sigmaV, sigmaA);
  return filter;
}

Kalman1d predicted(Kalman1d filter, float dt) {
  IP_Kalman1d_Predict(&filter, dt);
  return filter;
}

Kalman1d updated(Kalman1d filter, float z) {
  IP_Kalman1d_Update(&filter, z);
  return filter;
}

Floats covariance(const Kalman1d& f) { return Floats(f.P, 4); }
Floats noise(const Kalman1d& f) { return Floats(f.Q, 4); }

// A state in which P need not be symmetric, so that every product has factors of its own.
Kalman1d anyFilter(lab::Random& random, float range) {
  Kalman1d filter;
  float values[sizeof filter / sizeof(float)];
  for (float& v : values) v = anyWithin(random, range);
  std::memcpy(&filter, values, sizeof filter);
  return filter;
}

Kalman1d wildFilter(lab::Random& random) {
  Kalman1d filter;
  float values[sizeof filter / sizeof(float)];
  for (float& v : values) v = anyNumber(random);
  std::memcpy(&filter, values, sizeof filter);
  return filter;
}

}  // namespace

TEST(Kalman1d, IsFourteenFloats) { EXPECT_EQ(sizeof(Kalman1d), 14 * sizeof(float)); }

// ---- create ----

TEST(Kalman1d, CreateSetsEverythingButQ) {
  const Kalman1d filter = created(10, -2, 3, 4, 5), before = garbage();
  EXPECT_EQ(floats(filter),
            (Floats{10, -2, 9, 0, 0, 16, before.Q[0], before.Q[1], before.Q[2], before.Q[3], 9, 3, 4, 5}));
}

TEST(Kalman1d, CreateWritesZerosWithoutASign) {
  EXPECT_EQ(covariance(created(1, 1, -2, -3, 1)), (Floats{4, 0, 0, 9}));
  EXPECT_EQ(covariance(created(1, 1, -0.0f, -0.0f, 1)), (Floats{0, 0, 0, 0}));
}

TEST(Kalman1d, CreateIsExactForAnyNumbers) {
  lab::Random random(70);
  for (int round = 0; round < 500; ++round) {
    float a[5];
    for (float& v : a) v = round % 2 ? anyNumber(random) : anyWithin(random, 100);
    const Kalman1d wanted = model::created(garbage(), a[0], a[1], a[2], a[3], a[4]);
    ASSERT_EQ(floats(created(a[0], a[1], a[2], a[3], a[4])), floats(wanted)) << "round " << round << ", seed 70";
  }
}

// ---- predict ----

TEST(Kalman1d, PredictCarriesTheVarianceOfTheRateIntoTheValue) {
  const Kalman1d filter = predicted(created(10, 0, 2, 1, 0), 1);
  EXPECT_EQ(filter.x, 10);
  EXPECT_EQ(filter.v, 0);
  EXPECT_EQ(covariance(filter), (Floats{5, 1, 1, 1}));
  EXPECT_EQ(noise(filter), (Floats{0, 0, 0, 0}));
}

TEST(Kalman1d, PredictMovesTheValueAtItsRate) {
  const Kalman1d filter = predicted(created(10, -3, 2, 1, 1), 2);
  EXPECT_EQ(filter.x, 4);
  EXPECT_EQ(filter.v, -3);
}

TEST(Kalman1d, PredictAddsTheNoiseOfTheAcceleration) {
  const Kalman1d filter = predicted(created(0, 0, 0, 0, 3), 2);
  EXPECT_EQ(noise(filter), (Floats{36, 36, 36, 36}));  // 9 * 16 / 4, 9 * 8 / 2, 9 * 4
  EXPECT_EQ(covariance(filter), (Floats{36, 36, 36, 36}));
  EXPECT_EQ(noise(predicted(filter, 4)), (Floats{576, 288, 288, 144}));
}

TEST(Kalman1d, PredictOverNoTimeChangesNothingAndWritesNoNoise) {
  Kalman1d filter = predicted(created(10, 3, 2, 1, 5), 0.5f);
  const Kalman1d after = predicted(filter, 0);
  EXPECT_EQ(noise(after), (Floats{0, 0, 0, 0}));
  for (float& q : filter.Q) q = 0;
  EXPECT_EQ(floats(after), floats(filter));
}

TEST(Kalman1d, PredictTakesNothingFromTheNoiseOfTheLastPrediction) {
  Kalman1d a = created(10, 3, 2, 1, 5), b = a;
  for (float& q : b.Q) q = 12345;
  EXPECT_EQ(floats(predicted(a, 0.1f)), floats(predicted(b, 0.1f)));
}

TEST(Kalman1d, PredictIsExactForAnyState) {
  lab::Random random(71);
  for (int round = 0; round < 3000; ++round) {
    const Kalman1d filter = anyFilter(random, round % 2 ? 10.0f : 3000.0f);
    const float dt = anyWithin(random, 3);
    ASSERT_EQ(floats(predicted(filter, dt)), floats(model::predicted(filter, dt))) << "round " << round << ", seed 71";
  }
}

TEST(Kalman1d, PredictIsExactForNumbersOfEveryMagnitude) {
  lab::Random random(72);
  for (int round = 0; round < 3000; ++round) {
    const Kalman1d filter = wildFilter(random);
    const float dt = anyNumber(random);
    ASSERT_EQ(floats(predicted(filter, dt)), floats(model::predicted(filter, dt))) << "round " << round << ", seed 72";
  }
}

// ---- update ----

TEST(Kalman1d, UpdateMeetsHalfWayWhereBothAreEquallySure) {
  const Kalman1d filter = updated(created(10, 1, 2, 1, 0), 20);
  EXPECT_EQ(filter.x, 15);
  EXPECT_EQ(filter.v, 1);  // value and rate do not hang together yet
  EXPECT_EQ(covariance(filter), (Floats{2, 0, 0, 1}));
}

TEST(Kalman1d, UpdateMovesTheRateByItsCovarianceWithTheValue) {
  Kalman1d filter = created(0, 0, 2, 0, 0);  // R = 4
  const float p[] = {4, 2, 2, 3};
  std::memcpy(filter.P, p, sizeof p);
  const Kalman1d after = updated(filter, 8);  // gains 1/2 and 1/4
  EXPECT_EQ(after.x, 4);
  EXPECT_EQ(after.v, 2);
  EXPECT_EQ(covariance(after), (Floats{2, 1, 1, 2.5f}));
}

TEST(Kalman1d, UpdateWithoutNoiseTakesTheMeasurement) {
  Kalman1d filter = created(10, 0, 0, 1, 0);
  filter.P[0] = 4;
  const Kalman1d after = updated(filter, 17);
  EXPECT_EQ(after.x, 17);
  EXPECT_EQ(after.P[0], 0);
}

TEST(Kalman1d, UpdateWithTheValueItselfOnlyShrinksTheCovariance) {
  const Kalman1d filter = predicted(created(10, 3, 2, 1, 1), 0.5f);
  const Kalman1d after = updated(filter, filter.x);
  EXPECT_EQ(after.x, filter.x);
  EXPECT_EQ(after.v, filter.v);
  EXPECT_LT(after.P[0], filter.P[0]);
  EXPECT_LT(after.P[1], filter.P[1]);
  EXPECT_LT(after.P[2], filter.P[2]);
  EXPECT_LT(after.P[3], filter.P[3]);
}

TEST(Kalman1d, UpdateChangesTheStateAndItsCovarianceAlone) {
  lab::Random random(73);
  const Kalman1d before = anyFilter(random, 10), after = updated(before, 3);
  EXPECT_EQ(noise(after), noise(before));
  EXPECT_EQ((Floats{after.R, after.sigmaZ, after.sigmaV, after.sigmaA}),
            (Floats{before.R, before.sigmaZ, before.sigmaV, before.sigmaA}));
}

TEST(Kalman1d, UpdateIsExactForAnyState) {
  lab::Random random(74);
  for (int round = 0; round < 3000; ++round) {
    const Kalman1d filter = anyFilter(random, round % 2 ? 10.0f : 3000.0f);
    const float z = anyWithin(random, 100);
    ASSERT_EQ(floats(updated(filter, z)), floats(model::updated(filter, z))) << "round " << round << ", seed 74";
  }
}

TEST(Kalman1d, UpdateIsExactForNumbersOfEveryMagnitude) {
  lab::Random random(75);
  for (int round = 0; round < 3000; ++round) {
    const Kalman1d filter = wildFilter(random);
    const float z = anyNumber(random);
    ASSERT_EQ(floats(updated(filter, z)), floats(model::updated(filter, z))) << "round " << round << ", seed 75";
  }
}

// ---- tracking ----

TEST(Kalman1d, TracksAnySeriesOfMeasurementsExactly) {
  lab::Random random(76);
  for (int series = 0; series < 20; ++series) {
    Kalman1d got = created(anyWithin(random, 100), anyWithin(random, 5), 2.3f, 1.7f, 0.9f), wanted = got;
    for (int step = 0; step < 100; ++step) {
      const float dt = 0.04f + anyWithin(random, 0.01f), z = anyWithin(random, 100);
      got = predicted(got, dt);
      wanted = model::predicted(wanted, dt);
      if (random.below(4)) {
        got = updated(got, z);
        wanted = model::updated(wanted, z);
      }
      ASSERT_EQ(floats(got), floats(wanted)) << "series " << series << ", step " << step << ", seed 76";
    }
  }
}

TEST(Kalman1d, ConvergesToAValueThatMovesAtAConstantRate) {
  Kalman1d filter = created(5, 0, 1, 10, 0.01f);
  for (int step = 1; step <= 200; ++step) {
    IP_Kalman1d_Predict(&filter, 0.1f);
    IP_Kalman1d_Update(&filter, 5 + 0.3f * static_cast<float>(step));
  }
  EXPECT_NEAR(filter.x, 65, 0.01);
  EXPECT_NEAR(filter.v, 3, 0.01);
}

TEST(Kalman1d, KeepsTheCovarianceNearlySymmetricAndPositive) {
  Kalman1d filter = created(0, 0, 2.3f, 1.7f, 0.9f);
  for (int step = 0; step < 1000; ++step) {
    IP_Kalman1d_Predict(&filter, 0.04f);
    IP_Kalman1d_Update(&filter, static_cast<float>(step % 7));
    ASSERT_GT(filter.P[0], 0) << step;
    ASSERT_GT(filter.P[3], 0) << step;
    ASSERT_NEAR(filter.P[1], filter.P[2], 1e-5f * std::abs(filter.P[1])) << step;
    ASSERT_GT(filter.P[0] * filter.P[3], filter.P[1] * filter.P[2]) << step;
  }
}

}  // namespace nadir::test
