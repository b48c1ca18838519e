// What a statement adds to the log beside the file: as much as it changes, not whole pages.
#include <gtest/gtest.h>

#include <algorithm>

#include "access/catalog/Database.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/Random.h"
#include "access/provider/ProviderFile.h"
#include "platform/ConnectionTo.h"

namespace tavi::access::test {
namespace {

constexpr char kGrownFile[] = "ClubMembers.mdb";
constexpr char kLog[] = "ClubMembers.mdb.redo";

class LogSizeTest : public ::testing::Test {
 protected:
  LogSizeTest() {
    Database::CreateFile(*memory_, kGrownFile, Date{45000});
    connection_ =
        MakeAccessProvider(memory_, std::make_shared<NoonClock>(), {})->Open(ConnectionTo(std::string(kGrownFile)));
    connection_->Execute(
        "Create Table Members (Id Counter Primary Key, LastName Text (30), Born DateTime, Points Long)");
    connection_->Execute("Create Index ByName On Members (LastName)");
    connection_->Execute("Create Unique Index ByPoints On Members (Points)");
  }

  // Bytes by which the log grows.
  std::size_t GrowthBy(const std::string& statement) {
    const std::size_t before = memory_->Contents(kLog).size();
    connection_->Execute(statement);
    return memory_->Contents(kLog).size() - before;
  }
  std::string Name() {
    std::string name;
    for (int letter = 0; letter < 8; ++letter) name += static_cast<char>('A' + random_.Below(26));
    return name;
  }
  std::string Insert(int points) {
    return "Insert Into Members (LastName, Born, Points) Values ('" + Name() + "', #5/17/1960#, " +
           std::to_string(points) + ")";
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
  std::unique_ptr<ado::Connection> connection_;
  Random random_{5};
};

TEST_F(LogSizeTest, ARowThatIsInsertedTakesLessThanAKilobyte) {
  std::vector<std::size_t> growths;
  for (int row = 0; row < 1500; ++row) growths.push_back(GrowthBy(Insert(row * 7919 % 100003)));
  std::sort(growths.begin(), growths.end());
  // Only where an index page splits it takes more.
  EXPECT_LT(growths[growths.size() * 98 / 100], 1024u);
}

TEST_F(LogSizeTest, ARowThatIsChangedOrDeletedTakesLessThanAKilobyte) {
  for (int row = 0; row < 100; ++row) connection_->Execute(Insert(row));
  for (int row = 0; row < 100; ++row) {
    EXPECT_LT(GrowthBy("Update Members Set Born = #6/1/1961# Where Points = " + std::to_string(row)), 1024u) << row;
  }
  for (int row = 0; row < 20; ++row) {
    EXPECT_LT(GrowthBy("Delete From Members Where Points = " + std::to_string(5 * row)), 1024u) << row;
  }
}

}  // namespace
}  // namespace tavi::access::test
