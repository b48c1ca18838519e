#include <gtest/gtest.h>

#include <cstdlib>

#include "facade/MembershipDatabase.h"
#include "facade/ThreadStore.h"
#include "platform/TemporaryFolder.h"

namespace tavi {
namespace {

TEST(DefaultPlatformTest, AnObjectStartsWithThisMachinesOwnFolders) {
  const testing::TemporaryFolder home;
  setenv("HOME", home.Path().c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");
  {
    const MembershipDatabase database;
    EXPECT_EQ(database.DatabaseFolder(), home.Path("Documents") + "\\Bridge\\Database");
    EXPECT_FALSE(database.DatabaseExists());
  }
  SetThreadStore(nullptr);
}

}  // namespace
}  // namespace tavi
