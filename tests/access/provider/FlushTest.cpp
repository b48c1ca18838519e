// The flush that a program asks for, by the connection string or by a call, as the provider gives it.
#include <gtest/gtest.h>

#include "access/catalog/Database.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/provider/ProviderFile.h"
#include "platform/ConnectionTo.h"

namespace tavi::access::test {
namespace {

constexpr char kPath[] = "ClubMembers.mdb";

class FlushTest : public ::testing::Test {
 protected:
  FlushTest() {
    Database::CreateFile(*memory_, kPath, Date{45000});
    Open()->Execute("Create Table T (A Long)");
  }

  std::unique_ptr<ado::Connection> Open(const std::string& more = "") { return Open(memory_, more); }
  static std::unique_ptr<ado::Connection> Open(const std::shared_ptr<FileSystem>& fileSystem, const std::string& more) {
    return MakeAccessProvider(fileSystem, std::make_shared<NoonClock>(), {})
        ->Open(ConnectionTo(std::string(kPath) + more));
  }
  [[nodiscard]] std::size_t RowsAfterPowerFailure() const {
    const auto connection = Open(memory_->AfterCrash(CrashKind::Dropped, 0), "");
    std::size_t rows = 0;
    for (const auto found = Select(*connection, "Select A From T"); !found->AtEnd(); found->MoveNext()) ++rows;
    return rows;
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
};

TEST_F(FlushTest, FlushReturnsWhenAllIsDurable) {
  const auto connection = Open();
  connection->Execute("Insert Into T (A) Values (1)");
  EXPECT_EQ(RowsAfterPowerFailure(), 0u);
  connection->Flush();
  EXPECT_EQ(RowsAfterPowerFailure(), 1u);
}

TEST_F(FlushTest, FlushEachMakesEachStatementDurableBeforeItReturns) {
  const auto connection = Open(";Flush=Each");
  for (std::size_t i = 1; i <= 3; ++i) {
    connection->Execute("Insert Into T (A) Values (1)");
    EXPECT_EQ(RowsAfterPowerFailure(), i);
  }
}

}  // namespace
}  // namespace tavi::access::test
