// Statements of one pager: rules 1 to 4 of Pager.h as far as no other user is there.
#include "access/file/Pager.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "access/file/support/ClubPaths.h"
#include "access/file/support/FailingFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/PagerFixture.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::FailingFileSystem;
using test::kLog;
using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;
using test::PageText;
using test::ReadText;
using test::SetPageText;
using test::WriteText;

class PagerTest : public test::PagerFixture {
 protected:
  std::unique_ptr<Pager> Open(PagerOptions options = {}) { return Pager::Open(memory_, kPath, options); }
  std::string StoredText(PageNumber number) {
    Page page(number);
    const auto bytes = memory_->Contents(kPath);
    page.Put(0, std::span(bytes).subspan(number * kPageSize, kPageSize));
    return PageText(page);
  }
};

TEST_F(PagerTest, ReadsThePagesOfTheFile) {
  const auto pager = Open();
  EXPECT_EQ(pager->PageCount(), 8u);
  EXPECT_EQ(pager->Path(), kPath);
  EXPECT_FALSE(pager->IsReadOnly());
  EXPECT_FALSE(pager->IsJet3());
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  EXPECT_EQ(ReadText(*pager, 7), "page 7");
}

TEST_F(PagerTest, PagesAreReadAndChangedOnlyInsideAStatement) {
  const auto pager = Open();
  EXPECT_THROW(static_cast<void>(pager->Read(3)), Error);
  EXPECT_THROW(static_cast<void>(pager->Write(3)), Error);
  EXPECT_THROW(static_cast<void>(pager->WriteNew(8)), Error);
  EXPECT_THROW(pager->Commit(), Error);
  pager->BeginRead();
  EXPECT_TRUE(pager->InStatement());
  EXPECT_FALSE(pager->InWrite());
  EXPECT_THROW(static_cast<void>(pager->Write(3)), Error);
  EXPECT_THROW(static_cast<void>(pager->WriteNew(8)), Error);
  EXPECT_THROW(pager->BeginWrite(), Error);
  EXPECT_THROW(pager->BeginRead(), Error);
  EXPECT_THROW(pager->Commit(), Error);
  pager->EndRead();
  EXPECT_FALSE(pager->InStatement());
  pager->Rollback();
}

TEST_F(PagerTest, GuardsJoinAnOpenStatement) {
  const auto pager = Open();
  {
    WriteStatement outer(*pager);
    const ReadStatement reading(*pager);
    {
      WriteStatement inner(*pager);
      SetPageText(pager->Write(3), "joined");
      inner.Commit();
    }
    EXPECT_TRUE(pager->InWrite());
    outer.Commit();
  }
  EXPECT_FALSE(pager->InStatement());
  EXPECT_EQ(ReadText(*pager, 3), "joined");
}

TEST_F(PagerTest, AGuardThatIsNotCommittedRollsBack) {
  const auto pager = Open();
  {
    const WriteStatement statement(*pager);
    SetPageText(pager->Write(3), "lost");
  }
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
}

TEST_F(PagerTest, AStatementSeesItsOwnChangesAndRollbackForgetsThem) {
  const auto pager = Open();
  pager->BeginWrite();
  SetPageText(pager->Write(3), "changed");
  EXPECT_EQ(PageText(*pager->Read(3)), "changed");
  SetPageText(pager->WriteNew(8), "new");
  EXPECT_EQ(pager->PageCount(), 9u);
  EXPECT_EQ(PageText(*pager->Read(8)), "new");
  pager->Rollback();
  EXPECT_EQ(pager->PageCount(), 8u);
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  EXPECT_THROW(ReadText(*pager, 8), Error);
  pager->Close();
  EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kPath});
}

TEST_F(PagerTest, AHandleKeepsItsContentWhileThePageIsChanged) {
  const auto pager = Open();
  const WriteStatement statement(*pager);
  const PageHandle before = pager->Read(3);
  Page& page = pager->Write(3);
  SetPageText(page, "first");
  const PageHandle first = pager->Read(3);
  SetPageText(page, "second");
  EXPECT_EQ(PageText(*before), "page 3");
  EXPECT_EQ(PageText(*first), "first");
  EXPECT_EQ(PageText(*pager->Read(3)), "second");
  EXPECT_EQ(&pager->Write(3), &page);
  EXPECT_EQ(pager->Read(3), pager->Read(3));
}

TEST_F(PagerTest, AHandleOutlivesItsStatement) {
  const auto pager = Open();
  pager->BeginRead();
  const PageHandle page = pager->Read(3);
  pager->EndRead();
  WriteText(*pager, 3, "later");
  EXPECT_EQ(PageText(*page), "page 3");
}

TEST_F(PagerTest, WriteNewGivesAZeroPage) {
  const auto pager = Open();
  WriteStatement statement(*pager);
  SetPageText(pager->Write(3), "changed");
  EXPECT_EQ(PageText(pager->WriteNew(3)), "");
  EXPECT_EQ(PageText(pager->WriteNew(4)), "");
  EXPECT_THROW(static_cast<void>(pager->WriteNew(9)), Error);
  statement.Commit();
  EXPECT_EQ(ReadText(*pager, 3), "");
  EXPECT_EQ(ReadText(*pager, 4), "");
}

TEST_F(PagerTest, CommitLeavesTheDatabaseFileAlone) {
  const auto pager = Open();
  const auto before = memory_->Contents(kPath);
  WriteText(*pager, 3, "committed");
  EXPECT_EQ(memory_->Contents(kPath), before);
  EXPECT_TRUE(memory_->Exists(kLog));
  EXPECT_EQ(ReadText(*pager, 3), "committed");
}

TEST_F(PagerTest, CloseBringsTheLogIntoTheFile) {
  const auto pager = Open();
  WriteText(*pager, 3, "one");
  WriteText(*pager, 3, "two");
  {
    WriteStatement statement(*pager);
    SetPageText(pager->WriteNew(8), "eight");
    SetPageText(pager->WriteNew(9), "nine");
    statement.Commit();
  }
  pager->Close();
  pager->Close();
  EXPECT_EQ(memory_->Paths(), std::vector<std::string>{kPath});
  EXPECT_EQ(memory_->Contents(kPath).size(), 10 * kPageSize);
  EXPECT_EQ(StoredText(3), "two");
  EXPECT_EQ(StoredText(8), "eight");
  EXPECT_EQ(StoredText(9), "nine");
}

TEST_F(PagerTest, TheDestructorCloses) {
  WriteText(*Open(), 3, "kept");
  EXPECT_EQ(StoredText(3), "kept");
  EXPECT_FALSE(memory_->Exists(kLog));
}

TEST_F(PagerTest, CloseRollsAnOpenStatementBack) {
  const auto pager = Open();
  WriteText(*pager, 3, "kept");
  pager->BeginWrite();
  SetPageText(pager->Write(3), "lost");
  pager->Close();
  EXPECT_EQ(StoredText(3), "kept");
}

TEST_F(PagerTest, NothingWorksAfterClose) {
  const auto pager = Open();
  pager->Close();
  EXPECT_THROW(pager->BeginRead(), Error);
  EXPECT_THROW(pager->BeginWrite(), Error);
  EXPECT_THROW(static_cast<void>(pager->Read(1)), Error);
}

TEST_F(PagerTest, ACommitWithoutChangesDoesNothing) {
  const auto pager = Open();
  pager->BeginWrite();
  pager->Commit();
  pager->BeginWrite();
  SetPageText(pager->Write(3), "page 3");
  pager->Commit();
  EXPECT_FALSE(memory_->Exists(kLog));
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
}

TEST_F(PagerTest, PagesThatAreAsTheyWereAreLeftOutOfTheLog) {
  const auto pager = Open();
  pager->BeginWrite();
  SetPageText(pager->Write(3), "changed");
  SetPageText(pager->Write(4), "page 4");
  SetPageText(pager->Write(5), "changed too");
  SetPageText(pager->Write(5), "page 5");
  pager->Commit();
  // Header 0x180, statement 40 bytes, one page with 20 bytes, its 32 of sector checksums, and "changed" in one piece.
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180u + 40 + 52 + 4 + 7);
}

TEST_F(PagerTest, AZeroedNewPageIsLoggedAlthoughItLooksLikeNothing) {
  const auto pager = Open();
  pager->BeginWrite();
  static_cast<void>(pager->WriteNew(8));
  pager->Commit();
  pager->Close();
  EXPECT_EQ(memory_->Contents(kPath).size(), 9 * kPageSize);
}

TEST_F(PagerTest, ALongLogIsBroughtIntoTheFileByCommit) {
  const auto pager = Open({.checkpointBytes = 0x180 + 250});
  WriteText(*pager, 3, "one");
  EXPECT_EQ(StoredText(3), "page 3");
  WriteText(*pager, 4, "two");
  WriteText(*pager, 3, "three");
  EXPECT_EQ(StoredText(3), "three");
  EXPECT_EQ(StoredText(4), "two");
  EXPECT_EQ(memory_->Contents(kLog).size(), 0x180u);
  WriteText(*pager, 5, "four");
  EXPECT_EQ(ReadText(*pager, 3), "three");
  EXPECT_EQ(ReadText(*pager, 5), "four");
  pager->Close();
  EXPECT_EQ(StoredText(5), "four");
  EXPECT_FALSE(memory_->Exists(kLog));
}

TEST_F(PagerTest, APageThatLeftTheCacheIsReadFromTheLog) {
  const auto pager = Open({.cacheBytes = 0});
  {
    WriteStatement statement(*pager);
    for (PageNumber number = 8; number < 200; ++number) SetPageText(pager->WriteNew(number), std::to_string(number));
    SetPageText(pager->Write(3), "three");
    statement.Commit();
  }
  const ReadStatement statement(*pager);
  for (PageNumber number = 8; number < 200; ++number) EXPECT_EQ(PageText(*pager->Read(number)), std::to_string(number));
  EXPECT_EQ(PageText(*pager->Read(3)), "three");
  EXPECT_EQ(PageText(*pager->Read(4)), "page 4");
}

TEST_F(PagerTest, AStatementOfManyPagesIsOneStatement) {
  const auto pager = Open();
  {
    WriteStatement statement(*pager);
    for (PageNumber number = 8; number < 1000; ++number) SetPageText(pager->WriteNew(number), std::to_string(number));
    statement.Commit();
  }
  pager->Close();
  EXPECT_EQ(memory_->Contents(kPath).size(), 1000 * kPageSize);
  for (PageNumber number = 8; number < 1000; ++number) ASSERT_EQ(StoredText(number), std::to_string(number));
}

TEST_F(PagerTest, APagePastTheEndIsAnErrorThatNamesIt) {
  const auto pager = Open();
  const ReadStatement statement(*pager);
  try {
    static_cast<void>(pager->Read(8));
    FAIL();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_EQ(error.Description().substr(0, 95),
              "The database is damaged: page 8 of 'club.mdb' is referred to, but the file has only 8 pages. Re");
  }
  EXPECT_THROW(static_cast<void>(pager->Read(0xFFFFFFFF)), Error);
}

TEST_F(PagerTest, TheFileNeverGrowsPastTwoGigabytes) {
  const auto pager = Open();
  const WriteStatement statement(*pager);
  EXPECT_THROW(static_cast<void>(pager->WriteNew(524288)), Error);
}

TEST_F(PagerTest, GenerationGrowsWithARollbackButNotWithOwnCommits) {
  const auto pager = Open();
  ReadText(*pager, 3);
  const std::uint64_t before = pager->Generation();
  WriteText(*pager, 3, "mine");
  ReadText(*pager, 3);
  EXPECT_EQ(pager->Generation(), before);
  pager->BeginWrite();
  pager->Rollback();
  EXPECT_EQ(pager->Generation(), before);
  pager->BeginWrite();
  SetPageText(pager->Write(3), "lost");
  pager->Rollback();
  EXPECT_GT(pager->Generation(), before);
}

TEST_F(PagerTest, GenerationDoesNotGrowWithAnOwnCheckpoint) {
  const auto pager = Open({.checkpointBytes = 1});
  ReadText(*pager, 3);
  const std::uint64_t before = pager->Generation();
  for (int i = 0; i < 5; ++i) WriteText(*pager, 3, std::to_string(i));
  EXPECT_EQ(ReadText(*pager, 3), "4");
  EXPECT_EQ(pager->Generation(), before);
}

TEST_F(PagerTest, ReadingAndClosingChangesNothingOnDisk) {
  const auto failing = std::make_shared<FailingFileSystem>(memory_);
  const auto pager = Pager::Open(failing, kPath, {});
  ReadText(*pager, 3);
  pager->BeginWrite();
  pager->Rollback();
  pager->Close();
  EXPECT_EQ(failing->ChangingCalls(), 0u);
}

TEST_F(PagerTest, CachedPagesAreNotReadAgain) {
  const auto failing = std::make_shared<FailingFileSystem>(memory_);
  const auto pager = Pager::Open(failing, kPath, {});
  ReadText(*pager, 3);
  const std::size_t reads = failing->Reads();
  for (int i = 0; i < 100; ++i) EXPECT_EQ(ReadText(*pager, 3), "page 3");
  EXPECT_EQ(failing->Reads(), reads);
}

TEST_F(PagerTest, TheSamePagesMayBeLoggedManyTimes) {
  const auto pager = Open();
  for (int i = 0; i < 300; ++i) WriteText(*pager, static_cast<PageNumber>(2 + i % 6), "round " + std::to_string(i));
  pager->Close();
  for (int i = 294; i < 300; ++i)
    EXPECT_EQ(StoredText(static_cast<PageNumber>(2 + i % 6)), "round " + std::to_string(i));
}

}  // namespace
}  // namespace tavi::access
