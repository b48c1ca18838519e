// Files whose pages are encoded with a key: plain above the pager, encoded in the file and in the log.
#include <gtest/gtest.h>
#include <algorithm>

#include "access/file/DatabaseHeader.h"
#include "access/file/Pager.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/SmallDatabase.h"

namespace tavi::access {
namespace {

using test::CrashKind;
using test::MemoryFileSystem;
using test::ReadText;
using test::SetPageText;
using test::WriteText;

constexpr char kSecretPath[] = "secret.mdb";
constexpr std::uint32_t kKey = 0xA7B773E0;

class EncodedFileTest : public ::testing::Test {
 protected:
  void SetUp() override { Pager::Create(*memory_, kSecretPath, test::MakeSmallDatabase(8, {.databaseKey = kKey})); }

  static bool Contains(const std::vector<std::uint8_t>& bytes, const std::string& text) {
    return std::search(bytes.begin(), bytes.end(), text.begin(), text.end()) != bytes.end();
  }
  Page Stored(PageNumber number) {
    const auto bytes = memory_->Contents(kSecretPath);
    Page page(number);
    page.Put(0, std::span(bytes).subspan(number * kPageSize, kPageSize));
    return page;
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
};

TEST_F(EncodedFileTest, PagesAreEncodedWithTheKeyAndTheirNumber) {
  EXPECT_FALSE(Contains(memory_->Contents(kSecretPath), "page 3"));
  Page page = Stored(3);
  ApplyRc4(kKey ^ 3U, page.AllMutable());
  EXPECT_EQ(test::PageText(page), "page 3");
}

TEST_F(EncodedFileTest, AboveThePagerEverythingIsPlain) {
  const auto pager = Pager::Open(memory_, kSecretPath, {.cacheBytes = 0});
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  WriteText(*pager, 3, "changed text");
  {
    WriteStatement statement(*pager);
    for (PageNumber number = 8; number < 40; ++number) SetPageText(pager->WriteNew(number), "new text");
    statement.Commit();
  }
  EXPECT_EQ(ReadText(*pager, 3), "changed text");
  EXPECT_EQ(ReadText(*pager, 8), "new text");
}

TEST_F(EncodedFileTest, NeitherLogNorFileShowPlainText) {
  auto pager = Pager::Open(memory_, kSecretPath, {});
  WriteText(*pager, 3, "changed text");
  EXPECT_FALSE(Contains(memory_->Contents("secret.mdb.redo"), "changed text"));
  pager->Close();
  EXPECT_FALSE(Contains(memory_->Contents(kSecretPath), "changed text"));
  EXPECT_EQ(ReadText(*Pager::Open(memory_, kSecretPath, {}), 3), "changed text");
}

TEST_F(EncodedFileTest, ALogIsRecovered) {
  const auto pager = Pager::Open(memory_, kSecretPath, {});
  WriteText(*pager, 3, "one");
  {
    // A page that is written from scratch has another way to its old content.
    WriteStatement statement(*pager);
    SetPageText(pager->WriteNew(4), "two");
    statement.Commit();
  }
  const auto after = memory_->AfterCrash(CrashKind::Kept, 0);
  const auto recovered = Pager::Open(after, kSecretPath, {});
  EXPECT_EQ(ReadText(*recovered, 3), "one");
  EXPECT_EQ(ReadText(*recovered, 4), "two");
  EXPECT_FALSE(after->Exists("secret.mdb.redo-setaside-1"));
}

}  // namespace
}  // namespace tavi::access
