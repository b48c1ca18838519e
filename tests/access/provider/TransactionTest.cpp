// Transactions of a connection, and what other connections, a full disk and an end of the process make of them.
#include <gtest/gtest.h>

#include <chrono>

#include "access/file/support/MemoryFileSystem.h"
#include "access/provider/ProviderFile.h"
#include "platform/ConnectionTo.h"

namespace tavi::access::test {
namespace {

class ProviderTransactionTest : public ::testing::Test {
 protected:
  ProviderTransactionTest() {
    connection_->Execute("Create Table Members (ID Counter Constraint K Primary Key, Name Text (50))");
    connection_->Execute("Insert Into Members (Name) Values ('Ann')");
  }
  static std::int32_t Count(ado::Connection& connection) {
    return std::get<std::int32_t>(Select(connection, "Select Count(*) As N From Members")->Get("N"));
  }
  static void Add(ado::Connection& connection, const std::string& name) {
    connection.Execute("Insert Into Members (Name) Values ('" + name + "')");
  }

  ProviderFile file_;
  std::unique_ptr<ado::Connection> connection_ = file_.Open();
};

TEST_F(ProviderTransactionTest, IsBegunAndEndedByCallsOrByStatements) {
  EXPECT_EQ(connection_->TransactionLevel(), 0);
  EXPECT_EQ(connection_->BeginTrans(), 1);
  EXPECT_EQ(connection_->BeginTrans(), 2);
  EXPECT_EQ(connection_->TransactionLevel(), 2);
  Add(*connection_, "Bob");
  connection_->Execute("Commit");
  EXPECT_EQ(connection_->TransactionLevel(), 1);
  connection_->RollbackTrans();
  EXPECT_EQ(Count(*connection_), 1);
  connection_->Execute("Begin Transaction");
  Add(*connection_, "Cid");
  connection_->CommitTrans();
  EXPECT_EQ(Count(*file_.Open()), 2);
  EXPECT_EQ(NumberRaisedBy([&] { connection_->CommitTrans(); }), 0x80004005U);
  EXPECT_EQ(NumberRaisedBy([&] { connection_->RollbackTrans(); }), 0x80004005U);
}

TEST_F(ProviderTransactionTest, RecordSetsBelongToIt) {
  connection_->BeginTrans();
  const auto rows = connection_->OpenRecordset("Members", ado::CursorType::Keyset, ado::LockType::Optimistic,
                                               ado::SourceKind::TableDirect);
  rows->AddNew();
  rows->Set("Name", std::string("Bob"));
  rows->Update();
  EXPECT_EQ(Count(*file_.Open()), 1);
  EXPECT_EQ(Count(*connection_), 2);
  connection_->RollbackTrans();
  EXPECT_EQ(Count(*connection_), 1);
  EXPECT_EQ(NumberRaisedBy([&] { static_cast<void>(rows->Get("Name")); }), 0x80040E23U);
}

TEST_F(ProviderTransactionTest, AConnectionThatGoesRollsBack) {
  const auto other = file_.Open();
  connection_->BeginTrans();
  Add(*connection_, "Bob");
  connection_->Close();
  EXPECT_EQ(connection_->TransactionLevel(), 0);
  EXPECT_EQ(NumberRaisedBy([&] { connection_->CommitTrans(); }), 0x80004005U);
  EXPECT_EQ(NumberRaisedBy([&] { connection_->BeginTrans(); }), 0x80004005U);
  Add(*other, "Cid");
  EXPECT_EQ(Count(*file_.Open()), 2);
}

TEST_F(ProviderTransactionTest, TwoConnectionsOfAThreadAreNotLeftWaitingForEachOther) {
  const auto other = file_.Open();
  connection_->BeginTrans();
  Add(*connection_, "Bob");
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(NumberRaisedBy([&] { other->BeginTrans(); }), 0x80004005U);
  EXPECT_EQ(NumberRaisedBy([&] { Add(*other, "Cid"); }), 0x80004005U);
  EXPECT_EQ(Count(*other), 1);
  other->Close();
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  connection_->CommitTrans();
  EXPECT_EQ(Count(*file_.Open()), 2);
}

TEST_F(ProviderTransactionTest, OnAFileThatIsOnlyReadStatementsAreRefusedAndNotTheTransaction) {
  const auto reader = file_.Open(";Mode=Read");
  EXPECT_EQ(reader->BeginTrans(), 1);
  EXPECT_EQ(Count(*reader), 1);
  EXPECT_EQ(NumberRaisedBy([&] { Add(*reader, "Bob"); }), 0x80040E09U);
  reader->CommitTrans();
  EXPECT_EQ(reader->TransactionLevel(), 0);
}

TEST(ProviderTransaction, AFullDiskAtTheCommitStoresNothing) {
  const auto memory = std::make_shared<MemoryFileSystem>();
  Database::CreateFile(*memory, "club.mdb", Date{45000});
  const auto provider = MakeAccessProvider(memory, std::make_shared<NoonClock>(), {});
  const auto open = [&] { return provider->Open(ConnectionTo("club.mdb")); };
  const auto connection = open();
  connection->Execute("Create Table T (A Long)");
  connection->BeginTrans();
  memory->SetCapacity(memory->BytesUsed() + 1000);
  for (int i = 0; i < 5; ++i) connection->Execute("Insert Into T (A) Values (" + std::to_string(i) + ")");
  connection->Execute("Create Table U (A Memo)");
  EXPECT_EQ(NumberRaisedBy([&] { connection->CommitTrans(); }), 0x80004005U);
  EXPECT_EQ(connection->TransactionLevel(), 1);
  connection->RollbackTrans();
  EXPECT_TRUE(Select(*connection, "Select * From T")->AtEnd());
  EXPECT_TRUE(Select(*open(), "Select * From T")->AtEnd());
  memory->SetCapacity(~std::uint64_t{0});
  connection->Execute("Create Table U (A Memo)");
  EXPECT_TRUE(Select(*open(), "Select * From U")->AtEnd());
}

}  // namespace
}  // namespace tavi::access::test
