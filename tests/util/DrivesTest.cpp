// Where drive letters lead on systems that have none.
#include <gtest/gtest.h>

#include <cstdlib>

#include "util/Paths.h"

namespace tavi {
namespace {

TEST(NativePath, TakesTheRootOfDrivesFromTheEnvironment) {
  setenv("TAVI_DRIVES", "/club", 1);
  EXPECT_EQ(NativePath("C:\\My Documents"), "/club/c/My Documents");
  unsetenv("TAVI_DRIVES");
}

TEST(NativePath, DrivesAreInTheUsersDataFolderByDefault) {
  setenv("HOME", "/home/ann", 1);
  EXPECT_EQ(NativePath("C:\\x"), "/home/ann/.local/share/tavimembership/c/x");
}

}  // namespace
}  // namespace tavi
