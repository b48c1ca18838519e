// Transactions of pagers: how they nest, what they undo, and what others see of them.
#include <gtest/gtest.h>
#include <algorithm>
#include <functional>

#include "access/file/Pager.h"
#include "access/file/StatementLock.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/PagerFixture.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::CrashKind;
using test::FailingFileSystem;
using test::kLog;
using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;
using test::PageText;
using test::ReadText;
using test::SetPageText;
using test::WriteText;

class PagerTransactionTest : public test::PagerFixture {
 protected:
  std::unique_ptr<Pager> Open(PagerOptions options = {}) {
    options.lockTimeout = std::chrono::milliseconds(100);
    return Pager::Open(memory_, kPath, options);
  }
  /// What a user who comes after a crash of all others finds.
  std::string FoundAfterCrash(PageNumber number) {
    return ReadText(*Pager::Open(memory_->AfterCrash(CrashKind::Kept, 0), kPath, {}), number);
  }
  static void AddPage(Pager& pager, const std::string& text) {
    WriteStatement statement(pager);
    SetPageText(pager.WriteNew(pager.PageCount()), text);
    statement.Commit();
  }
};

TEST_F(PagerTransactionTest, ItsStatementsAreOneForOthersAndForACrash) {
  const auto pager = Open();
  const auto other = Open();
  EXPECT_EQ(pager->BeginTransaction(), 1);
  WriteText(*pager, 3, "three");
  WriteText(*pager, 4, "four");
  AddPage(*pager, "eight");
  EXPECT_EQ(ReadText(*pager, 3), "three");
  EXPECT_EQ(ReadText(*pager, 8), "eight");
  EXPECT_EQ(ReadText(*other, 3), "page 3");
  EXPECT_EQ(other->PageCount(), 8u);
  EXPECT_EQ(FoundAfterCrash(3), "page 3");
  EXPECT_FALSE(memory_->Exists(kLog));
  pager->CommitTransaction();
  EXPECT_EQ(pager->TransactionLevel(), 0);
  EXPECT_EQ(ReadText(*other, 3), "three");
  EXPECT_EQ(ReadText(*other, 8), "eight");
  EXPECT_EQ(FoundAfterCrash(4), "four");
}

TEST_F(PagerTransactionTest, RollingBackLeavesTheFileAsItWas) {
  const auto pager = Open();
  WriteText(*pager, 3, "before");
  const auto log = memory_->Contents(kLog);
  pager->BeginTransaction();
  WriteText(*pager, 3, "within");
  AddPage(*pager, "new");
  pager->RollbackTransaction();
  EXPECT_EQ(ReadText(*pager, 3), "before");
  EXPECT_EQ(pager->PageCount(), 8u);
  EXPECT_EQ(memory_->Contents(kLog), log);
  WriteText(*pager, 4, "afterwards");
  EXPECT_EQ(ReadText(*Open(), 4), "afterwards");
}

TEST_F(PagerTransactionTest, AStatementThatFailsUndoesOnlyItself) {
  const auto pager = Open();
  pager->BeginTransaction();
  WriteText(*pager, 3, "kept");
  AddPage(*pager, "kept");
  {
    const WriteStatement statement(*pager);
    SetPageText(pager->Write(3), "undone");
    SetPageText(pager->Write(4), "undone");
    SetPageText(pager->WriteNew(8), "undone");
    SetPageText(pager->WriteNew(9), "undone");
  }
  EXPECT_EQ(ReadText(*pager, 3), "kept");
  EXPECT_EQ(ReadText(*pager, 4), "page 4");
  EXPECT_EQ(ReadText(*pager, 8), "kept");
  EXPECT_EQ(pager->PageCount(), 9u);
  pager->CommitTransaction();
  const auto other = Open();
  EXPECT_EQ(ReadText(*other, 3), "kept");
  EXPECT_EQ(ReadText(*other, 4), "page 4");
  EXPECT_EQ(other->PageCount(), 9u);
}

TEST_F(PagerTransactionTest, AnInnerTransactionIsUndoneWithTheOneAroundIt) {
  const auto pager = Open();
  EXPECT_EQ(pager->BeginTransaction(), 1);
  WriteText(*pager, 3, "outer");
  EXPECT_EQ(pager->BeginTransaction(), 2);
  WriteText(*pager, 3, "inner");
  WriteText(*pager, 4, "inner");
  EXPECT_EQ(pager->BeginTransaction(), 3);
  WriteText(*pager, 3, "innermost");
  AddPage(*pager, "innermost");
  pager->CommitTransaction();
  EXPECT_EQ(ReadText(*pager, 3), "innermost");
  pager->RollbackTransaction();
  EXPECT_EQ(pager->TransactionLevel(), 1);
  EXPECT_EQ(ReadText(*pager, 3), "outer");
  EXPECT_EQ(ReadText(*pager, 4), "page 4");
  EXPECT_EQ(pager->PageCount(), 8u);
  pager->CommitTransaction();
  EXPECT_EQ(FoundAfterCrash(3), "outer");
  EXPECT_EQ(FoundAfterCrash(4), "page 4");
}

TEST_F(PagerTransactionTest, ClosingRollsBackAndLetsOthersWrite) {
  auto pager = Open();
  const auto other = Open();
  pager->BeginTransaction();
  pager->BeginTransaction();
  WriteText(*pager, 3, "never");
  pager->Close();
  EXPECT_EQ(ReadText(*other, 3), "page 3");
  WriteText(*other, 3, "other");
  EXPECT_EQ(ReadText(*Open(), 3), "other");
}

TEST_F(PagerTransactionTest, ATransactionThatChangesNothingLeavesNothing) {
  const auto pager = Open();
  pager->BeginTransaction();
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  WriteText(*pager, 3, "there");
  WriteText(*pager, 3, "page 3");
  pager->CommitTransaction();
  EXPECT_FALSE(memory_->Exists(kLog));
}

TEST_F(PagerTransactionTest, WithoutATransactionThereIsNothingToEnd) {
  const auto pager = Open();
  EXPECT_EQ(FailureOf([&] { pager->CommitTransaction(); }),
            "There is no transaction to commit: none was begun on 'club.mdb', or it has ended already.");
  EXPECT_EQ(FailureOf([&] { pager->RollbackTransaction(); }),
            "There is no transaction to roll back: none was begun on 'club.mdb', or it has ended already.");
  pager->BeginTransaction();
  pager->CommitTransaction();
  EXPECT_NE(FailureOf([&] { pager->RollbackTransaction(); }), "");
}

TEST_F(PagerTransactionTest, TransactionsBeginAndEndBetweenStatements) {
  const auto pager = Open();
  {
    const ReadStatement statement(*pager);
    EXPECT_NE(FailureOf([&] { pager->BeginTransaction(); }), "");
  }
  pager->BeginTransaction();
  {
    const WriteStatement statement(*pager);
    EXPECT_NE(FailureOf([&] { pager->BeginTransaction(); }), "");
    EXPECT_NE(FailureOf([&] { pager->CommitTransaction(); }), "");
    EXPECT_NE(FailureOf([&] { pager->RollbackTransaction(); }), "");
  }
  pager->Close();
  EXPECT_NE(FailureOf([&] { pager->BeginTransaction(); }), "");
}

TEST_F(PagerTransactionTest, GenerationTellsOfWhatWasRolledBack) {
  const auto pager = Open();
  pager->BeginTransaction();
  WriteText(*pager, 3, "outer");
  pager->BeginTransaction();
  WriteText(*pager, 3, "inner");
  const std::uint64_t before = pager->Generation();
  EXPECT_EQ(ReadText(*pager, 3), "inner");
  pager->RollbackTransaction();
  EXPECT_GT(pager->Generation(), before);
  const std::uint64_t between = pager->Generation();
  pager->CommitTransaction();
  EXPECT_EQ(pager->Generation(), between);
}

TEST_F(PagerTransactionTest, AnotherWriterWaitsUntilItsEnd) {
  const auto pager = Open();
  const auto other = Open();
  pager->BeginTransaction();
  EXPECT_NE(FailureOf([&] { other->BeginTransaction(); }), "");
  EXPECT_EQ(other->TransactionLevel(), 0);
  EXPECT_NE(FailureOf([&] { other->BeginWrite(); }), "");
  memory_->OnPause([&] {
    if (pager->TransactionLevel() > 0) pager->CommitTransaction();
  });
  WriteText(*pager, 3, "mine");
  EXPECT_EQ(other->BeginTransaction(), 1);
  EXPECT_EQ(ReadText(*other, 3), "mine");
}

TEST_F(PagerTransactionTest, AWaitForAConnectionOfTheSameThreadIsRefusedAtOnce) {
  const auto threads = std::make_shared<WritingThreads>();
  const auto pager = Open({.writingThreads = threads});
  auto other = Open({.writingThreads = threads});
  const std::string refused =
      "Could not use 'club.mdb'; file already in use by a connection whose changes are not committed and that cannot "
      "go on before this one does: waiting would never end. Commit or roll back one of the two first.";
  pager->BeginTransaction();
  WriteText(*pager, 3, "mine");
  EXPECT_EQ(FailureOf([&] { other->BeginTransaction(); }), refused);
  EXPECT_EQ(FailureOf([&] { WriteText(*other, 3, "other"); }), refused);
  EXPECT_EQ(ReadText(*other, 3), "page 3");
  // Nor does its close wait; what it has committed is in the log for the others.
  other->Close();
  EXPECT_EQ(memory_->Paused().count(), 0);
  pager->CommitTransaction();
  other = Open({.writingThreads = threads});
  WriteText(*other, 4, "other");
  EXPECT_EQ(ReadText(*pager, 4), "other");
}

TEST_F(PagerTransactionTest, OnAReadOnlyFileItCanBeBegunButNotWrittenIn) {
  const auto reader = Open({.readOnly = true});
  const auto writer = Open();
  EXPECT_EQ(reader->BeginTransaction(), 1);
  EXPECT_EQ(reader->BeginTransaction(), 2);
  EXPECT_EQ(ReadText(*reader, 3), "page 3");
  EXPECT_THROW(reader->BeginWrite(), Error);
  WriteText(*writer, 3, "written");
  EXPECT_EQ(ReadText(*reader, 3), "written");
  reader->RollbackTransaction();
  reader->CommitTransaction();
  EXPECT_EQ(ReadText(*reader, 3), "written");
}

TEST_F(PagerTransactionTest, AFullDiskLeavesItOpen) {
  const auto pager = Open();
  WriteText(*pager, 3, "before");
  const auto log = memory_->Contents(kLog);
  pager->BeginTransaction();
  WriteText(*pager, 3, "within");
  AddPage(*pager, "new");
  memory_->SetCapacity(memory_->BytesUsed() + 80);
  for (int attempt = 0; attempt < 2; ++attempt) {
    EXPECT_NE(FailureOf([&] { pager->CommitTransaction(); }), "");
    EXPECT_EQ(pager->TransactionLevel(), 1);
    EXPECT_EQ(memory_->Contents(kLog), log);
    EXPECT_EQ(ReadText(*Open(), 3), "before");
    EXPECT_EQ(ReadText(*pager, 3), "within");
  }
  memory_->SetCapacity(memory_->BytesUsed() + 50000);
  pager->CommitTransaction();
  EXPECT_EQ(ReadText(*Open(), 3), "within");
  EXPECT_EQ(ReadText(*Open(), 8), "new");
}

TEST_F(PagerTransactionTest, AFullDiskCanBeAnsweredByRollingBack) {
  const auto pager = Open();
  pager->BeginTransaction();
  WriteText(*pager, 3, "within");
  memory_->SetCapacity(memory_->BytesUsed());
  EXPECT_NE(FailureOf([&] { pager->CommitTransaction(); }), "");
  pager->RollbackTransaction();
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  memory_->SetCapacity(memory_->BytesUsed() + 50000);
  WriteText(*pager, 3, "again");
  EXPECT_EQ(FoundAfterCrash(3), "again");
}

TEST_F(PagerTransactionTest, AFileThatAnotherProgramHasWrittenMeanwhileTakesNoCommit) {
  const auto pager = Open();
  pager->BeginTransaction();
  WriteText(*pager, 3, "within");
  auto bytes = memory_->Contents(kPath);
  bytes[4 * kPageSize + 17] = '!';
  memory_->SetContents(kPath, bytes);
  EXPECT_EQ(FailureOf([&] { pager->CommitTransaction(); }),
            "'club.mdb' has been changed by another program since the transaction was begun. Roll the transaction back "
            "and begin it again.");
  pager->RollbackTransaction();
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  EXPECT_EQ(ReadText(*pager, 4), "p!ge 4");
}

TEST_F(PagerTransactionTest, AnotherDatabaseProgramThatHasComeMeanwhileRefusesTheCommit) {
  const auto pager = Open();
  pager->BeginTransaction();
  WriteText(*pager, 3, "within");
  memory_->SetContents("club.ldb", {1});
  {
    const auto foreign = memory_->Open("club.ldb", FileSystem::OpenMode::ReadWrite);
    ASSERT_TRUE(foreign->TryLock(0, 1, File::LockKind::Exclusive));
    EXPECT_NE(FailureOf([&] { pager->CommitTransaction(); }), "");
  }
  pager->CommitTransaction();
  EXPECT_EQ(FoundAfterCrash(3), "within");
}

TEST_F(PagerTransactionTest, WithTheFileForOneselfItWorksToo) {
  auto pager = Open({.alone = true});
  pager->BeginTransaction();
  WriteText(*pager, 3, "within");
  pager->CommitTransaction();
  pager->Close();
  EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kPath});
  EXPECT_EQ(ReadText(*Open(), 3), "within");
}

// A pager with transactions beside a model of it: the texts of the pages at each level.
class ModelledUser {
 public:
  explicit ModelledUser(std::unique_ptr<Pager> pager) : pager_(std::move(pager)) {}

  using Texts = std::vector<std::string>;
  [[nodiscard]] Pager& GetPager() { return *pager_; }
  [[nodiscard]] bool IsOpen() const { return !levels_.empty(); }
  [[nodiscard]] std::size_t Depth() const { return levels_.size(); }
  /// What the user must see.
  [[nodiscard]] Texts& Seen(Texts& committed) { return levels_.empty() ? committed : levels_.back(); }

  void Begin(Texts& committed) {
    pager_->BeginTransaction();
    levels_.push_back(Seen(committed));
  }
  void Commit(Texts& committed) {
    pager_->CommitTransaction();
    const Texts last = levels_.back();
    levels_.pop_back();
    Seen(committed) = last;
  }
  void Rollback() {
    pager_->RollbackTransaction();
    levels_.pop_back();
  }
  void Replace(std::unique_ptr<Pager> pager) {
    pager_->Close();
    pager_ = std::move(pager);
    levels_.clear();
  }

 private:
  std::unique_ptr<Pager> pager_;
  std::vector<Texts> levels_;
};

ModelledUser::Texts TextsOf(Pager& pager) {
  const ReadStatement statement(pager);
  ModelledUser::Texts texts;
  for (PageNumber number = 2; number < pager.PageCount(); ++number) texts.push_back(PageText(*pager.Read(number)));
  return texts;
}

// One write statement with several changes; one that is not kept is undone.
void Write(ModelledUser& user, ModelledUser::Texts& committed, const std::function<unsigned(unsigned)>& random,
           const std::string& text, bool isKept) {
  ModelledUser::Texts texts = user.Seen(committed);
  {
    Pager& pager = user.GetPager();
    WriteStatement statement(pager);
    for (unsigned change = 0; change < 1 + random(4); ++change) {
      const PageNumber number = random(static_cast<unsigned>(texts.size()));
      if (random(5) == 0) {
        texts.push_back(text);
        SetPageText(pager.WriteNew(pager.PageCount()), text);
      } else {
        texts[number] = text + " " + std::to_string(change);
        Page& page = random(6) == 0 ? pager.WriteNew(number + 2) : pager.Write(number + 2);
        SetPageText(page, texts[number]);
      }
    }
    if (isKept) statement.Commit();
  }
  if (isKept) user.Seen(committed) = texts;
}

TEST_F(PagerTransactionTest, WhateverUsersDoEachSeesWhatAModelSays) {
  for (unsigned seed = 1; seed <= 12; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    memory_ = std::make_shared<MemoryFileSystem>();
    Pager::Create(*memory_, kPath, MakeSmallDatabase(8));
    unsigned state = seed;
    const auto random = [&state](unsigned count) { return (state = state * 1103515245 + 12345) / 65536 % count; };
    const PagerOptions options = {.checkpointBytes = 4000};
    std::vector<ModelledUser> users;
    for (int i = 0; i < 3; ++i) users.emplace_back(Open(options));
    ModelledUser::Texts committed = TextsOf(users[0].GetPager());
    for (int step = 0; step < 600; ++step) {
      ModelledUser& user = users[random(3)];
      const bool othersWrite = std::any_of(
          users.begin(), users.end(), [&](const ModelledUser& other) { return &other != &user && other.IsOpen(); });
      const unsigned action = random(10);
      if (othersWrite && action != 9) {
        if (action == 0) {
          EXPECT_THROW(user.GetPager().BeginTransaction(), Error);
        }
      } else if (action <= 1 && user.Depth() < 5) {
        user.Begin(committed);
      } else if (action == 2 && user.IsOpen()) {
        user.Commit(committed);
      } else if (action == 3 && user.IsOpen()) {
        user.Rollback();
      } else if (action == 9) {
        if (random(6) == 0) user.Replace(Open(options));
      } else {
        Write(user, committed, random, "step " + std::to_string(step), random(4) != 0);
      }
      ModelledUser& looking = users[random(3)];
      ASSERT_EQ(TextsOf(looking.GetPager()), looking.Seen(committed)) << "step " << step;
    }
    users.clear();
    EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kPath});
    EXPECT_EQ(TextsOf(*Open()), committed);
  }
}

}  // namespace
}  // namespace tavi::access
