#include <gtest/gtest.h>

#include "access/sql/plan/PreparedStatement.h"
#include "access/sql/support/Parsing.h"
#include "access/sql/support/SqlFile.h"

namespace tavi::access::test {
namespace {

std::shared_ptr<sql::PreparedStatement> Prepared() {
  return std::make_shared<sql::PreparedStatement>(sql::Parse("Select 1"));
}

TEST(StatementCache, ForgetsTheStatementThatWasNotUsedForLongest) {
  sql::StatementCache cache;
  cache.Put("first", Prepared());
  cache.Put("second", Prepared());
  for (std::size_t i = 2; i < sql::StatementCache::kMostStatements; ++i) cache.Put(std::to_string(i), Prepared());
  EXPECT_NE(cache.Find("first"), nullptr);
  cache.Put("one more", Prepared());
  EXPECT_NE(cache.Find("first"), nullptr);
  EXPECT_EQ(cache.Find("second"), nullptr);
}

TEST(StatementCache, LongTextsAreNotKept) {
  sql::StatementCache cache;
  const std::string text(sql::StatementCache::kLongestText + 1, ' ');
  cache.Put(text, Prepared());
  EXPECT_EQ(cache.Find(text), nullptr);
}

TEST(StatementCache, ARememberedStatementSeesAlteredTables) {
  SqlFile file;
  file.Run("Create Table T (A Long)");
  file.Run("Insert into T Values (1)");
  EXPECT_EQ(file.Rows("Select * From T"), (std::vector<std::string>{"1"}));
  file.Run("Alter Table T Add Column B Long");
  EXPECT_EQ(file.Rows("Select * From T"), (std::vector<std::string>{"1|null"}));
  file.Run("Drop Table T");
  EXPECT_EQ(NumberOf(file.Refused("Select * From T")), 0x80040E37U);
  file.Run("Create Table T (C Text (5))");
  EXPECT_EQ(file.Rows("Select * From T"), (std::vector<std::string>{}));
}

TEST(StatementCache, AStatementThatFailedWorksOnceItCan) {
  SqlFile file;
  file.Run("Create Table T (A Long)");
  EXPECT_EQ(NumberOf(file.Refused("Select A, B From T")), 0x80040E10U);
  EXPECT_EQ(NumberOf(file.Refused("Select A, B From T")), 0x80040E10U);
  file.Run("Alter Table T Add Column B Long");
  EXPECT_NO_THROW(file.Rows("Select A, B From T"));
}

TEST(StatementCache, AnotherSessionsChangesAreSeen) {
  SqlFile file;
  file.Run("Create Table T (A Long)");
  EXPECT_EQ(file.Rows("Select * From T"), (std::vector<std::string>{}));
  Database other(Pager::Open(NativeFileSystem(), file.File().Path(), {}));
  sql::Session session(other, std::make_shared<StillClock>());
  session.Run("Insert into T Values (5)");
  EXPECT_EQ(file.Rows("Select * From T"), (std::vector<std::string>{"5"}));
  session.Run("Alter Table T Add Column B Text (5)");
  EXPECT_EQ(file.Rows("Select * From T"), (std::vector<std::string>{"5|null"}));
}

}  // namespace
}  // namespace tavi::access::test
