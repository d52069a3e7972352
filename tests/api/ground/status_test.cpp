// Statuses in words, and the defaults of settings.
#include <set>

#include "tests/api/ground/roads.hpp"

namespace nadir::test {
namespace {

TEST(StatusText, EveryStatusHasWordsOfItsOwn) {
  std::set<std::string> texts;
  for (NadirStatus status = NADIR_OK; status <= NADIR_BAD_TIME; ++status) texts.insert(nadir_status_text(status));
  EXPECT_EQ(texts.size(), static_cast<size_t>(NADIR_BAD_TIME) + 1);
  EXPECT_EQ(texts.count("unknown status"), 0u);
  EXPECT_EQ(texts.count(""), 0u);
}

TEST(StatusText, OtherNumbersAreUnknown) {
  for (const NadirStatus status : {-1, 1000, std::numeric_limits<int32_t>::min(), std::numeric_limits<int32_t>::max()})
    EXPECT_STREQ(nadir_status_text(status), "unknown status") << status;
}

TEST(StatusText, IsAlwaysTheSameString) { EXPECT_EQ(nadir_status_text(NADIR_OK), nadir_status_text(NADIR_OK)); }

TEST(SettingsFill, GivesTheDefaults) {
  const NadirSettings s = defaultSettings(smallCamera());
  EXPECT_EQ(s.until, static_cast<uint32_t>(NADIR_UNTIL_ALL));
  EXPECT_EQ(s.grid, static_cast<uint32_t>(NADIR_GRID_LEFT));
  EXPECT_EQ(s.uniqueness, 48u);
  EXPECT_EQ(s.postprocess, 1u);
  EXPECT_EQ(s.min_points, 1u);
  EXPECT_EQ(s.percentile, 90);
  EXPECT_EQ(s.fill_holes_m2, 0);
}

TEST(SettingsFill, SetsTheSize) { EXPECT_EQ(defaultSettings(smallCamera()).size, sizeof(NadirSettings)); }

TEST(SettingsFill, HeightsAndAreasFollowTheCell) {
  NadirCamera camera = smallCamera();
  for (const uint32_t cell : {1u, 40u, 999u}) {
    camera.cell_mm = cell;
    const NadirSettings s = defaultSettings(camera);
    EXPECT_EQ(s.min_height_mm, 1.5 * cell);
    EXPECT_EQ(s.max_step_mm, cell);
    EXPECT_NEAR(s.min_area_m2, 30e-6 * cell * cell, 1e-12 * cell * cell);
  }
}

TEST(SettingsFill, ReadsOfTheCameraTheCellAlone) {
  NadirCamera camera{};
  camera.size = sizeof camera;
  camera.cell_mm = 40;
  NadirSettings settings{};
  ASSERT_EQ(nadir_settings_fill(&settings, &camera), NADIR_OK);
  EXPECT_EQ(settings.max_step_mm, 40);
}

TEST(SettingsFill, WithoutACameraTheLastThreeAreZero) {
  NadirSettings settings = marked<NadirSettings>();
  ASSERT_EQ(nadir_settings_fill(&settings, nullptr), NADIR_OK);
  EXPECT_EQ(settings.min_height_mm, 0);
  EXPECT_EQ(settings.max_step_mm, 0);
  EXPECT_EQ(settings.min_area_m2, 0);
}

TEST(SettingsFill, RefusesNowhereToWrite) {
  const NadirCamera camera = smallCamera();
  EXPECT_EQ(nadir_settings_fill(nullptr, &camera), NADIR_NULL_POINTER);
}

TEST(SettingsFill, RefusesACameraOfAnotherSizeUntouched) {
  for (const uint32_t size : badSizes(sizeof(NadirCamera))) {
    NadirCamera camera = smallCamera();
    camera.size = size;
    const NadirSettings before = marked<NadirSettings>();
    NadirSettings settings = before;
    EXPECT_EQ(nadir_settings_fill(&settings, &camera), NADIR_BAD_RECORD) << size;
    EXPECT_TRUE(sameBytes(before, settings)) << size;
  }
}

TEST(TrackSettingsFill, GivesTheDefaults) {
  NadirTrackSettings settings{};
  ASSERT_EQ(nadir_track_settings_fill(&settings), NADIR_OK);
  EXPECT_EQ(settings.size, sizeof settings);
  EXPECT_EQ(settings.average_frames, 0u);
  EXPECT_EQ(settings.noise_mm, 10);
  EXPECT_EQ(settings.acceleration_mm_per_s2, 1500);
  EXPECT_EQ(settings.patience_s, 0.5);
}

TEST(TrackSettingsFill, RefusesNowhereToWrite) { EXPECT_EQ(nadir_track_settings_fill(nullptr), NADIR_NULL_POINTER); }

}  // namespace
}  // namespace nadir::test
