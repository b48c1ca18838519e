// The guard by which operations store several things or none.
#include "store/Transaction.h"

#include <gtest/gtest.h>

#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::FakePlatform;
using Texts = std::vector<std::string>;

class StoreTransactionTest : public ::testing::Test {
 protected:
  StoreTransactionTest() { store_.SetDatabaseFolder("C:\\Bridge\\Database"); }
  [[nodiscard]] const Texts& Told() const { return fake_.file->transactions; }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
};

TEST_F(StoreTransactionTest, KeepsWithCommitAndCountsItsUseDown) {
  {
    Transaction transaction(store_);
    EXPECT_EQ(store_.OpenCount(), 1);
    store_.Execute("Delete From Members");
    EXPECT_EQ(store_.OpenCount(), 1);
    transaction.Commit();
    EXPECT_EQ(store_.OpenCount(), 0);
  }
  EXPECT_EQ(Told(), (Texts{"begin 1", "commit 1"}));
  EXPECT_EQ(fake_.file->closes, 1);
}

TEST_F(StoreTransactionTest, UndoesWithoutCommit) {
  store_.OpenDB();
  {
    const Transaction transaction(store_);
    EXPECT_EQ(store_.OpenCount(), 2);
  }
  EXPECT_EQ(store_.OpenCount(), 1);
  EXPECT_EQ(Told(), (Texts{"begin 1", "rollback 1"}));
}

TEST_F(StoreTransactionTest, Nests) {
  {
    Transaction outer(store_);
    InTransaction(store_, [] {});
    { const Transaction inner(store_); }
    outer.Commit();
  }
  EXPECT_EQ(Told(), (Texts{"begin 1", "begin 2", "commit 2", "begin 2", "rollback 2", "commit 1"}));
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(StoreTransactionTest, AnErrorPassesAndUndoes) {
  EXPECT_THROW(InTransaction(store_, [&]() -> int { throw Error(7, "test", "stops"); }), Error);
  EXPECT_EQ(Told(), (Texts{"begin 1", "rollback 1"}));
  EXPECT_EQ(store_.OpenCount(), 0);
  EXPECT_EQ(InTransaction(store_, [] { return 5; }), 5);
}

TEST_F(StoreTransactionTest, ACommitThatFailsIsRaisedAndUndone) {
  fake_.file->failures.emplace_back("commit", Error(ErrorNumber::ProviderFailure, "Fake provider", "the disk is full"));
  try {
    InTransaction(store_, [] {});
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_EQ(error.Description(), "the disk is full");
  }
  EXPECT_EQ(Told(), (Texts{"begin 1", "rollback 1"}));
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(StoreTransactionTest, WhoClosesTheFileInItClosesItAtItsEnd) {
  store_.OpenDB();
  store_.OpenDB();
  {
    Transaction outer(store_);
    {
      Transaction inner(store_);
      store_.CloseDB(true);
      store_.CloseDB(true);
      EXPECT_EQ(store_.OpenCount(), 2);
      store_.CloseDB(false);
      EXPECT_EQ(store_.OpenCount(), 2);
      inner.Commit();
    }
    EXPECT_EQ(store_.OpenCount(), 1);
    EXPECT_EQ(fake_.file->closes, 0);
    outer.Commit();
  }
  EXPECT_EQ(Told(), (Texts{"begin 1", "begin 2", "commit 2", "commit 1"}));
  EXPECT_EQ(store_.OpenCount(), 0);
  EXPECT_EQ(fake_.file->closes, 1);
}

TEST_F(StoreTransactionTest, WhatIsOpenedInItIsCountedAsEver) {
  {
    Transaction transaction(store_);
    store_.OpenDB();
    store_.OpenDB();
    store_.CloseDB(false);
    EXPECT_EQ(store_.OpenCount(), 2);
    transaction.Commit();
  }
  EXPECT_EQ(store_.OpenCount(), 1);
}

TEST_F(StoreTransactionTest, AStoreThatGoesRollsBack) {
  auto store = std::make_unique<cDatabase>(fake_.platform, std::vector<FirstOpenStep>());
  store->SetDatabaseFolder("C:\\Other");
  store->OpenDB();
  store->BeginTransaction();
  store.reset();
  EXPECT_EQ(Told(), (Texts{"begin 1", "rollback 1"}));
}

TEST_F(StoreTransactionTest, OnAFileThatCannotBeOpenedItDoesNotBegin) {
  fake_.file->openFailures = 1;
  EXPECT_THROW(const Transaction transaction(store_), Error);
  EXPECT_EQ(store_.OpenCount(), 0);
  EXPECT_EQ(Told(), Texts());
}

}  // namespace
}  // namespace tavi
