// Real pairs, spoilt in every way that a checker names, two strengths and both signs of each.
#include <nadir/check.h>

#include <functional>

#include "lab/checker.hpp"
#include "lab/spoilt.hpp"
#include "tests/trust/real_pairs.hpp"

namespace nadir::ground::test {
namespace {

using lab::Intensities;
using lab::PicturePair;

std::string verdictOf(const PicturePair& pair) {
  lab::Checker checker(pair.left.width, pair.left.height);
  return nadir_verdict_name(checker.checkup(lab::pairOf(pair.left, pair.right)).verdict);
}

struct Table {
  std::string name;
  PicturePair good;

  void expect(const std::string& verdict, const std::string& how, const PicturePair& pair) const {
    EXPECT_EQ(verdictOf(pair), verdict) << name << ": " << how;
  }

  // One picture spoilt with each of these strengths, the left one with those above 0.
  void expectEach(const char* verdict, const std::vector<double>& strengths,
                  const std::function<Intensities(const Intensities&, double)>& spoil) const {
    for (const double s : strengths) {
      const std::string how = std::to_string(s);
      if (s > 0) expect(verdict, "left " + how, {spoil(good.left, s), good.right});
      if (s < 0) expect(verdict, "right " + how, {good.left, spoil(good.right, s)});
    }
  }
  // The right picture moved so that a share of the disparities lies below 0, were they even.
  PicturePair movedBehind(double share) const {
    lab::Checker checker(good.left.width, good.left.height);
    const NadirCheckup c = checker.checkup(lab::pairOf(good.left, good.right));
    const double columns = c.least_disparity_px + share * (c.largest_disparity_px - c.least_disparity_px);
    return {good.left, lab::moved(good.right, columns, 0)};
  }

  void expectOfBoth(const char* verdict, const std::vector<double>& strengths,
                    const std::function<Intensities(const Intensities&, double)>& spoil) const {
    for (const double s : strengths)
      expect(verdict, "both " + std::to_string(s), {spoil(good.left, s), spoil(good.right, s)});
  }
};

std::vector<Table> tables() {
  std::vector<Table> all;
  for (const RealPair& real : realPairs()) all.push_back({real.name, {real.good.pair.left, real.good.pair.right}});
  return all;
}

double magnitude(double signedOne) { return signedOne < 0 ? -signedOne : signedOne; }

TEST(CheckerTable, UnspoiltPairsAreGood) {
  for (const Table& t : tables()) t.expect("good", "as it is", t.good);
}

TEST(CheckerTable, SizeAndTheSamePictureTwice) {
  for (const Table& t : tables()) {
    t.expect("size", "a row less", {t.good.left, Intensities(t.good.left.width, t.good.left.height - 1, 9)});
    t.expect("size", "half as wide", {t.good.left, Intensities(t.good.left.width / 2, t.good.left.height, 9)});
    t.expect("same", "left", {t.good.left, t.good.left});
    t.expect("same", "right, with other noise", {t.good.right, lab::noisy(t.good.right, 10, 1)});
  }
}

TEST(CheckerTable, Exposure) {
  const auto gain = [](const Intensities& p, double s) { return lab::amplified(p, magnitude(s)); };
  for (const Table& t : tables()) {
    t.expectEach("exposure", {3, 1 / 3.0, -3, -0.2}, gain);
    t.expectOfBoth("exposure", {4, 1 / 12.0}, gain);
  }
}

TEST(CheckerTable, Textureless) {
  for (const Table& t : tables())
    t.expectOfBoth("textureless", {1 / 16.0, 1 / 64.0},
                   [](const auto& p, double s) { return lab::noisy(lab::faded(p, s), 10, p.pixels[0]); });
}

TEST(CheckerTable, Blurred) {
  const auto blur = [](const Intensities& p, double s) { return lab::blurred(p, magnitude(s)); };
  for (const Table& t : tables()) {
    t.expectEach("blurred", {2.5, -2.5, 4}, blur);
    t.expectOfBoth("blurred", {2.5},
                   [](const auto& p, double s) { return lab::noisy(lab::blurred(p, s), 20, p.pixels[0]); });
  }
}

TEST(CheckerTable, SwappedAndMovedSideways) {
  for (const Table& t : tables()) {
    t.expect("swapped", "exchanged", {t.good.right, t.good.left});
    t.expectEach("range", {60, 100}, [](const auto& p, double s) { return lab::moved(p, s, 0); });
    for (const double share : {0.5, 0.7}) t.expect("range", "half of it beyond infinity", t.movedBehind(share));
  }
}

TEST(CheckerTable, OffsetAndTurned) {
  for (const Table& t : tables()) {
    t.expectEach("offset", {1, -1, 2, -2, 12}, [](const auto& p, double s) { return lab::moved(p, 0, s); });
    t.expectEach("offset", {1}, [](const auto& p, double s) { return lab::moved(p, 0, -s); });
    t.expectEach("turned", {0.5, -0.5, 1, -1}, [](const auto& p, double s) { return lab::turned(p, s); });
    t.expectEach("turned", {3}, [](const auto& p, double s) { return lab::turned(p, -s); });
  }
}

TEST(CheckerTable, Unrectified) {
  for (const Table& t : tables()) {
    t.expectEach("unrectified", {1, -1, 2, -2}, [](const auto& p, double s) { return lab::scaled(p, 1 + s / 100); });
    t.expectEach("unrectified", {1}, [](const auto& p, double s) { return lab::scaled(p, 1 - s / 100); });
    t.expectEach("unrectified", {2, -2, 4}, [](const auto& p, double s) { return lab::keystoned(p, s); });
  }
}

}  // namespace
}  // namespace nadir::ground::test
