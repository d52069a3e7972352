// What a road is made of: the limits of every number, on both sides, and what is refused.
#include <gtest/gtest.h>

#include <ostream>

#include "tests/api/ground/roads.hpp"

namespace nadir::test {
namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double beyondAll = std::numeric_limits<double>::infinity();

NadirFault freshFault() {
  NadirFault fault{};
  fault.size = sizeof fault;
  return fault;
}

struct Answer {
  NadirStatus status;
  NadirFault fault;
  bool made;
};

Answer answerTo(const NadirCamera& camera, const NadirSettings& settings, const std::vector<NadirArea>& areas = {}) {
  // Not null, so that a road that is left as it was shows.
  NadirRoad* road = reinterpret_cast<NadirRoad*>(&road);
  Answer answer{NADIR_OK, freshFault(), false};
  answer.status = nadir_road_create(&camera, &settings, areas.empty() ? nullptr : areas.data(),
                                    static_cast<uint32_t>(areas.size()), &road, &answer.fault);
  answer.made = road != nullptr;
  nadir_road_destroy(road);
  return answer;
}

void expectRefused(const Answer& answer, NadirStatus status, const char* field) {
  EXPECT_EQ(answer.status, status);
  EXPECT_FALSE(answer.made);
  EXPECT_STREQ(answer.fault.field, field);
}

// ---- limits ----

// A member of a record with numbers that it may and may not be.
template <class Record>
struct Limit {
  const char* name;
  void (*set)(Record&, double);
  std::vector<double> good, bad;
};

template <class Record>
std::ostream& operator<<(std::ostream& out, const Limit<Record>& limit) {
  return out << limit.name;
}

#define MEMBER(Record, member) #member, [](Record & r, double v) { r.member = static_cast<decltype(r.member)>(v); }

std::vector<Limit<NadirCamera>> cameraLimits() {
  const std::vector<double> notPositive{0, -1, 1e6 + 1, notANumber, beyondAll, -beyondAll};
  const std::vector<double> tooFar{-1e6 - 1, 1e6 + 1, notANumber, beyondAll, -beyondAll};
  const std::vector<double> tooTurned{-90.001, 90.001, notANumber, beyondAll, -beyondAll};
  return {{MEMBER(NadirCamera, width_px), {5, 65535}, {0, 4, 65536, 4294967295.0}},
          {MEMBER(NadirCamera, height_px), {5, 65535}, {0, 4, 65536, 4294967295.0}},
          {MEMBER(NadirCamera, cell_mm), {1, 65535}, {0, 65536, 4294967295.0}},
          {MEMBER(NadirCamera, map_width_cells), {1, 65535}, {0, 65536, 4294967295.0}},
          {MEMBER(NadirCamera, map_height_cells), {1, 65535}, {0, 65536, 4294967295.0}},
          {MEMBER(NadirCamera, baseline_mm), {1e-3, 1e6}, notPositive},
          {MEMBER(NadirCamera, focal_px), {1e-3, 1e6}, notPositive},
          {MEMBER(NadirCamera, principal_x_px), {-1e6, 0, 1e6}, tooFar},
          {MEMBER(NadirCamera, principal_y_px), {-1e6, 0, 1e6}, tooFar},
          {MEMBER(NadirCamera, column_shift_px), {-1e6, 0, 1e6}, tooFar},
          {MEMBER(NadirCamera, height_mm), {1e-3, 1e6}, notPositive},
          {MEMBER(NadirCamera, tilt_deg), {-90, 0, 90}, tooTurned},
          {MEMBER(NadirCamera, pan_deg), {-90, 0, 90}, tooTurned},
          {MEMBER(NadirCamera, map_offset_x_mm), {-1e6, 0, 1e6}, tooFar},
          {MEMBER(NadirCamera, map_offset_y_mm), {-1e6, 0, 1e6}, tooFar}};
}

std::vector<Limit<NadirSettings>> settingsLimits() {
  const std::vector<double> tooMuch{-1e-9, 1e6 + 1, notANumber, beyondAll};
  return {{MEMBER(NadirSettings, until), {0, 1, 2}, {3, 4294967295.0}},
          {MEMBER(NadirSettings, grid), {0, 1}, {2, 4294967295.0}},
          {MEMBER(NadirSettings, uniqueness), {0, 128, 4294967295.0}, {}},
          {MEMBER(NadirSettings, postprocess), {0, 1}, {2, 4294967295.0}},
          {MEMBER(NadirSettings, min_points), {1, 1000000}, {0, 1000001, 4294967295.0}},
          {MEMBER(NadirSettings, percentile), {1e-9, 100}, {0, -1, 100.001, notANumber, beyondAll}},
          {MEMBER(NadirSettings, fill_holes_m2), {0, 1e6}, tooMuch},
          {MEMBER(NadirSettings, min_height_mm), {0, 65534}, {-1e-9, 65534.5, notANumber, beyondAll}},
          {MEMBER(NadirSettings, max_step_mm), {0, 65535}, {-1e-9, 65535.5, notANumber, beyondAll}},
          {MEMBER(NadirSettings, min_area_m2), {0, 1e6}, tooMuch},
          {MEMBER(NadirSettings, dip_mm), {0, 65535}, tooMuch},
          {MEMBER(NadirSettings, check), {0, 1, 2, 3}, {4, 4294967295.0}},
          {MEMBER(NadirSettings, refine), {0, 1}, {2, 4294967295.0}},
          {MEMBER(NadirSettings, support), {0, 1, 48}, {49, 4294967295.0}},
          {MEMBER(NadirSettings, range), {61, 122, 244}, {0, 60, 62, 121, 123, 183, 243, 245, 488, 4294967295.0}}};
}

class CameraLimits : public ::testing::TestWithParam<Limit<NadirCamera>> {};
class SettingsLimits : public ::testing::TestWithParam<Limit<NadirSettings>> {};

// The bytes say what would be accepted without taking them.
TEST_P(CameraLimits, NumbersAtTheLimitAreAccepted) {
  const NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  for (const double value : GetParam().good) {
    NadirCamera camera = smallCamera();
    GetParam().set(camera, value);
    EXPECT_GT(nadir_road_bytes(&camera, &settings, 0), 0u) << value;
    EXPECT_GT(nadir_result_bytes(&camera, &settings, 0), 0u) << value;
  }
}

TEST_P(CameraLimits, NumbersBeyondItAreRefusedByName) {
  const NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  for (const double value : GetParam().bad) {
    SCOPED_TRACE(value);
    NadirCamera camera = smallCamera();
    GetParam().set(camera, value);
    expectRefused(answerTo(camera, settings), NADIR_BAD_CAMERA, GetParam().name);
  }
}

TEST_P(CameraLimits, NumbersBeyondItTakeNoBytes) {
  const NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  for (const double value : GetParam().bad) {
    NadirCamera camera = smallCamera();
    GetParam().set(camera, value);
    EXPECT_EQ(nadir_road_bytes(&camera, &settings, 0), 0u) << value;
    EXPECT_EQ(nadir_result_bytes(&camera, &settings, 0), 0u) << value;
  }
}

TEST_P(SettingsLimits, NumbersAtTheLimitAreAccepted) {
  for (const double value : GetParam().good) {
    NadirSettings settings = defaultSettings(smallCamera());
    GetParam().set(settings, value);
    EXPECT_EQ(answerTo(smallCamera(), settings).status, NADIR_OK) << value;
  }
}

TEST_P(SettingsLimits, NumbersBeyondItAreRefusedByName) {
  for (const double value : GetParam().bad) {
    SCOPED_TRACE(value);
    NadirSettings settings = defaultSettings(smallCamera());
    GetParam().set(settings, value);
    expectRefused(answerTo(smallCamera(), settings), NADIR_BAD_SETTING, GetParam().name);
  }
}

TEST_P(SettingsLimits, NumbersBeyondItTakeNoBytes) {
  const NadirCamera camera = smallCamera();
  for (const double value : GetParam().bad) {
    NadirSettings settings = defaultSettings(camera);
    GetParam().set(settings, value);
    EXPECT_EQ(nadir_road_bytes(&camera, &settings, 0), 0u) << value;
    EXPECT_EQ(nadir_result_bytes(&camera, &settings, 0), 0u) << value;
  }
}

template <class Limits>
std::string nameOf(const ::testing::TestParamInfo<Limits>& info) {
  return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Members, CameraLimits, ::testing::ValuesIn(cameraLimits()), nameOf<Limit<NadirCamera>>);
INSTANTIATE_TEST_SUITE_P(Members, SettingsLimits, ::testing::ValuesIn(settingsLimits()), nameOf<Limit<NadirSettings>>);

TEST(RoadCreate, PicturesHaveNoMoreThanSoManyPixels) {
  const NadirSettings settings = settingsUntil(NADIR_UNTIL_MATCH);
  NadirCamera camera = smallCamera();
  camera.width_px = 8192;
  camera.height_px = 4096;
  EXPECT_GT(nadir_road_bytes(&camera, &settings, 0), 0u);
  camera.height_px = 4097;
  EXPECT_EQ(nadir_road_bytes(&camera, &settings, 0), 0u);
  EXPECT_EQ(answerTo(camera, settings).status, NADIR_BAD_CAMERA);
}

TEST(RoadCreate, RegionsTakeMapsUpToTheirLargest) {
  NadirCamera camera = smallCamera();
  camera.map_width_cells = camera.map_height_cells = NADIR_LARGEST_REGION_MAP;
  EXPECT_EQ(answerTo(camera, defaultSettings(camera)).status, NADIR_OK);
}

TEST(RoadCreate, RegionsRefuseWiderMaps) {
  NadirCamera camera = smallCamera();
  camera.map_width_cells = NADIR_LARGEST_REGION_MAP + 1;
  expectRefused(answerTo(camera, defaultSettings(camera)), NADIR_BAD_CAMERA, "map_width_cells");
}

TEST(RoadCreate, RegionsRefuseHigherMaps) {
  NadirCamera camera = smallCamera();
  camera.map_height_cells = NADIR_LARGEST_REGION_MAP + 1;
  expectRefused(answerTo(camera, defaultSettings(camera)), NADIR_BAD_CAMERA, "map_height_cells");
}

TEST(RoadCreate, HolesAreFilledInMapsWithinTheirLimits) {
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  settings.fill_holes_m2 = 0.1;
  for (const uint32_t side : {2u, 4095u}) {
    NadirCamera camera = smallCamera();
    camera.map_width_cells = side;
    EXPECT_EQ(answerTo(camera, settings).status, NADIR_OK) << side;
    std::swap(camera.map_width_cells, camera.map_height_cells);
    EXPECT_EQ(answerTo(camera, settings).status, NADIR_OK) << side;
  }
}

TEST(RoadCreate, HolesAreNotFilledInOtherMaps) {
  NadirSettings settings = settingsUntil(NADIR_UNTIL_MAP);
  settings.fill_holes_m2 = 0.1;
  for (const uint32_t side : {1u, 4096u}) {
    NadirCamera camera = smallCamera();
    camera.map_width_cells = side;
    expectRefused(answerTo(camera, settings), NADIR_BAD_CAMERA, "map_width_cells");
    std::swap(camera.map_width_cells, camera.map_height_cells);
    expectRefused(answerTo(camera, settings), NADIR_BAD_CAMERA, "map_height_cells");
  }
}

TEST(RoadCreate, MapsOfEverySizeGoWithoutFilling) {
  for (const uint32_t side : {1u, 4096u}) {
    NadirCamera camera = smallCamera();
    camera.map_width_cells = side;
    EXPECT_EQ(answerTo(camera, settingsUntil(NADIR_UNTIL_MAP)).status, NADIR_OK) << side;
  }
}

TEST(RoadCreate, UpToTheMatchOnlyThePicturesSizeIsRead) {
  NadirCamera camera{};
  camera.size = sizeof camera;
  camera.width_px = camera.height_px = 5;
  camera.cell_mm = camera.map_width_cells = 0xFFFFFFFF;
  camera.baseline_mm = camera.focal_px = camera.height_mm = camera.tilt_deg = notANumber;
  NadirSettings settings{};
  ASSERT_EQ(nadir_settings_fill(&settings, nullptr), NADIR_OK);
  settings.until = NADIR_UNTIL_MATCH;
  EXPECT_EQ(answerTo(camera, settings).status, NADIR_OK);
}

// ---- pointers and records ----

TEST(RoadCreate, RefusesNullPointers) {
  const NadirCamera camera = smallCamera();
  const NadirSettings settings = defaultSettings(camera);
  NadirRoad* road = nullptr;
  EXPECT_EQ(nadir_road_create(nullptr, &settings, nullptr, 0, &road, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_create(&camera, nullptr, nullptr, 0, &road, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_create(&camera, &settings, nullptr, 1, &road, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_create(&camera, &settings, nullptr, 0, nullptr, nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(road, nullptr);
}

TEST(RoadCreate, NeedsNoFault) {
  NadirCamera camera = smallCamera();
  const NadirSettings settings = defaultSettings(camera);
  camera.tilt_deg = 100;
  NadirRoad* road = nullptr;
  EXPECT_EQ(nadir_road_create(&camera, &settings, nullptr, 0, &road, nullptr), NADIR_BAD_CAMERA);
}

TEST(RoadCreate, RefusesACameraOfAnotherSize) {
  for (const uint32_t size : badSizes(sizeof(NadirCamera))) {
    NadirCamera camera = smallCamera();
    camera.size = size;
    const Answer answer = answerTo(camera, defaultSettings(smallCamera()));
    EXPECT_EQ(answer.status, NADIR_BAD_RECORD) << size;
    EXPECT_FALSE(answer.made) << size;
  }
}

TEST(RoadCreate, RefusesSettingsOfAnotherSize) {
  for (const uint32_t size : badSizes(sizeof(NadirSettings))) {
    NadirSettings settings = defaultSettings(smallCamera());
    settings.size = size;
    const Answer answer = answerTo(smallCamera(), settings);
    EXPECT_EQ(answer.status, NADIR_BAD_RECORD) << size;
    EXPECT_FALSE(answer.made) << size;
  }
}

TEST(RoadCreate, RefusesAFaultOfAnotherSizeUntouched) {
  NadirCamera camera = smallCamera();
  const NadirSettings settings = defaultSettings(camera);
  camera.tilt_deg = 100;
  for (const uint32_t size : badSizes(sizeof(NadirFault))) {
    NadirFault fault = marked<NadirFault>();
    fault.size = size;
    const NadirFault before = fault;
    NadirRoad* road = nullptr;
    EXPECT_EQ(nadir_road_create(&camera, &settings, nullptr, 0, &road, &fault), NADIR_BAD_RECORD) << size;
    EXPECT_TRUE(sameBytes(before, fault)) << size;
  }
}

TEST(RoadCreate, AFaultOfTheCameraHasNoArea) {
  NadirCamera camera = smallCamera();
  camera.tilt_deg = 100;
  NadirFault fault = marked<NadirFault>();
  const NadirSettings settings = defaultSettings(camera);
  NadirRoad* road = nullptr;
  ASSERT_EQ(nadir_road_create(&camera, &settings, nullptr, 0, &road, &fault), NADIR_BAD_CAMERA);
  EXPECT_EQ(fault.area, 0u);
  EXPECT_EQ(fault.corner, 0u);
  EXPECT_EQ(fault.reserved, 0u);
}

TEST(RoadBytes, NullPointersAndOtherSizesGiveNone) {
  NadirCamera camera = smallCamera();
  NadirSettings settings = defaultSettings(camera);
  EXPECT_EQ(nadir_road_bytes(nullptr, &settings, 0), 0u);
  EXPECT_EQ(nadir_road_bytes(&camera, nullptr, 0), 0u);
  EXPECT_EQ(nadir_result_bytes(nullptr, &settings, 0), 0u);
  EXPECT_EQ(nadir_result_bytes(&camera, nullptr, 0), 0u);
  camera.size += 1;
  EXPECT_EQ(nadir_road_bytes(&camera, &settings, 0), 0u);
  EXPECT_EQ(nadir_result_bytes(&camera, &settings, 0), 0u);
  camera.size -= 1;
  settings.size += 1;
  EXPECT_EQ(nadir_road_bytes(&camera, &settings, 0), 0u);
  EXPECT_EQ(nadir_result_bytes(&camera, &settings, 0), 0u);
}

TEST(RoadBytes, GrowWithTheAreas) {
  const NadirCamera camera = smallCamera();
  const NadirSettings settings = defaultSettings(camera);
  EXPECT_GT(nadir_road_bytes(&camera, &settings, 3), nadir_road_bytes(&camera, &settings, 2));
  EXPECT_GT(nadir_result_bytes(&camera, &settings, 3), nadir_result_bytes(&camera, &settings, 2));
}

TEST(RoadBytes, AMatchIsTheLeast) {
  const NadirCamera camera = smallCamera();
  const NadirSettings match = settingsUntil(NADIR_UNTIL_MATCH), map = settingsUntil(NADIR_UNTIL_MAP),
                      all = settingsUntil(NADIR_UNTIL_ALL);
  EXPECT_LT(nadir_result_bytes(&camera, &match, 0), nadir_result_bytes(&camera, &map, 0));
  EXPECT_LT(nadir_result_bytes(&camera, &map, 0), nadir_result_bytes(&camera, &all, 0));
}

TEST(RoadBytes, NeverWrap) {
  const NadirCamera camera = smallCamera();
  const NadirSettings settings = defaultSettings(camera);
  const uint64_t areas = 0xFFFFFFFF;
  const size_t bytes = nadir_road_bytes(&camera, &settings, static_cast<uint32_t>(areas));
  EXPECT_TRUE(bytes == 0 || bytes > areas) << bytes;
}

TEST(RoadDestroy, AcceptsNull) { nadir_road_destroy(nullptr); }

TEST(ResultDestroy, AcceptsNull) { nadir_result_destroy(nullptr); }

TEST(ResultCreate, RefusesNullPointers) {
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  NadirResult* result = nullptr;
  EXPECT_EQ(nadir_result_create(nullptr, &result), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_result_create(road.get(), nullptr), NADIR_NULL_POINTER);
  EXPECT_EQ(result, nullptr);
}

// ---- the context ----

TEST(RoadContext, HoldsTheCamera) {
  const NadirCamera camera = crookedCamera();
  const StereoCtx context = contextOf(makeRoad(camera, defaultSettings(camera)));
  EXPECT_FLOAT_EQ(context.intCalib.baseline, 160);
  EXPECT_FLOAT_EQ(context.intCalib.focalLength, 100);
  EXPECT_FLOAT_EQ(context.intCalib.principalX, 47.5);
  EXPECT_FLOAT_EQ(context.intCalib.principalY, 29.5);
  EXPECT_EQ(context.orientation.height, 2000);
  EXPECT_EQ(context.orientation.tilt, -20);
  EXPECT_EQ(context.orientation.pan, 9);
}

TEST(RoadContext, HoldsTheMapsSize) {
  const ElevMapParams map = contextOf(makeRoad(smallCamera(), defaultSettings(smallCamera()))).mapParams;
  EXPECT_EQ(map.width, 16);
  EXPECT_EQ(map.height, 14);
  EXPECT_EQ(map.cellSizeX, 40);
  EXPECT_EQ(map.cellSizeY, 40);
}

TEST(RoadContext, TurnsAsTheMountDoes) {
  const NadirCamera camera = crookedCamera();
  const StereoCtx context = contextOf(makeRoad(camera, defaultSettings(camera)));
  ExtCalib external{};
  ip_orientation2externalCalib(&context.orientation, &external);
  for (int i = 0; i < 9; ++i) EXPECT_EQ(context.extCalib.R[i], external.R[i]) << i;
  for (int i = 0; i < 3; ++i) EXPECT_EQ(context.extCalib.T[i], 0) << i;
}

TEST(RoadContext, ItsCornerIncludesTheOffsets) {
  NadirCamera camera = crookedCamera();
  for (const uint32_t width : {15u, 16u}) {
    camera.map_width_cells = width;
    const StereoCtx context = contextOf(makeRoad(camera, defaultSettings(camera)));
    Point_f32 corner{};
    ip_calcMapRectLowerLeft(&context.extCalib, &context.intCalib, &context.mapParams, &corner, 2000);
    EXPECT_NEAR(context.lowerLeft.x, corner.x + 50.0, 1e-3);
    EXPECT_NEAR(context.lowerLeft.y, corner.y - 30.5, 1e-3);
  }
}

TEST(RoadContext, UpToTheMatchThereIsNone) {
  const Road road = makeRoad(smallCamera(), settingsUntil(NADIR_UNTIL_MATCH));
  StereoCtx before, context;
  std::memset(&before, 0x5A, sizeof before);
  std::memcpy(&context, &before, sizeof before);
  EXPECT_EQ(nadir_road_context(road.get(), &context), NADIR_NOTHING_FOUND);
  EXPECT_TRUE(sameBytes(before, context));
}

TEST(RoadContext, RefusesNullPointers) {
  const Road road = makeRoad(smallCamera(), defaultSettings(smallCamera()));
  StereoCtx context{};
  EXPECT_EQ(nadir_road_context(nullptr, &context), NADIR_NULL_POINTER);
  EXPECT_EQ(nadir_road_context(road.get(), nullptr), NADIR_NULL_POINTER);
}

}  // namespace
}  // namespace nadir::test
