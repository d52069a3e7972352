// The version of the loaded library.
#include <gtest/gtest.h>
#include <nadir/nadir.h>

#include <string>

TEST(Version, IsTheHeadersVersion) {
  EXPECT_EQ(nadir_version(), std::to_string(NADIR_VERSION_MAJOR) + "." + std::to_string(NADIR_VERSION_MINOR) + "." +
                                 std::to_string(NADIR_VERSION_PATCH) + NADIR_VERSION_STAGE);
}
