// Files that Access and its engine have written. They are not part of this system; without them the tests are skipped.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "SourceDirectory.h"
#include "access/file/Format.h"
#include "access/file/Pager.h"
#include "access/file/UsageMap.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

namespace fs = std::filesystem;

std::vector<fs::path> RealFiles() {
  std::vector<fs::path> files;
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(fs::path(TAVI_SAMPLE_FILES) / "access-files", error)) {
    if (entry.path().extension() == ".mdb") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

class RealFilesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    files_ = RealFiles();
    if (files_.empty()) GTEST_SKIP() << "the sample files are not beside this checkout";
  }
  std::vector<fs::path> files_;
};

TEST_F(RealFilesTest, AllPagesAreReadAndTheGlobalMapIsUnderstood) {
  for (const fs::path& file : files_) {
    SCOPED_TRACE(file.filename());
    const auto pager = Pager::Open(NativeFileSystem(), file.string(), {.readOnly = true});
    const ReadStatement statement(*pager);
    EXPECT_EQ(pager->PageCount() * (pager->IsJet3() ? 2048 : kPageSize), fs::file_size(file));
    for (PageNumber page = 1; page < pager->PageCount(); ++page) ASSERT_LE(pager->Read(page)->U8(0), 9) << page;
    EXPECT_EQ(pager->Read(2)->U8(0), format::page_type::kTableDefinition);
    for (const PageNumber page : UsageMap(*pager, {1, 0}).Pages()) EXPECT_GT(page, 5u);
  }
}

TEST_F(RealFilesTest, PagesAllocatedInACopyAreNeitherOwnedNorLost) {
  const test::TemporaryFolder folder;
  for (const fs::path& file : files_) {
    SCOPED_TRACE(file.filename());
    const fs::path copy = folder.Path() / file.filename();
    fs::copy_file(file, copy);
    fs::permissions(copy, fs::perms::owner_write, fs::perm_options::add);
    PageNumber count = 0;
    std::vector<PageNumber> free;
    {
      const auto pager = Pager::Open(NativeFileSystem(), copy.string(), {});
      if (pager->IsJet3()) continue;
      WriteStatement statement(*pager);
      PageAllocator allocator(*pager);
      free = UsageMap(*pager, {1, 0}).Pages();
      count = pager->PageCount();
      for (std::size_t i = 0; i < free.size() + 20; ++i) {
        const PageNumber page = allocator.Allocate().Number();
        if (i < free.size()) {
          EXPECT_EQ(page, free[i]);
        } else {
          EXPECT_GE(page, count);
        }
      }
      statement.Commit();
    }
    const auto pager = Pager::Open(NativeFileSystem(), copy.string(), {});
    const ReadStatement statement(*pager);
    EXPECT_GE(pager->PageCount(), count + 20);
    EXPECT_TRUE(UsageMap(*pager, {1, 0}).Pages().empty());
    EXPECT_EQ(fs::file_size(copy), pager->PageCount() * kPageSize);
  }
}

}  // namespace
}  // namespace tavi::access
