#include "access/index/support/TestIndex.h"

#include <gtest/gtest.h>
#include <algorithm>

#include "access/file/PageAllocator.h"
#include "access/file/UsageMap.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/SmallDatabase.h"
#include "access/index/KeyEncoder.h"

namespace tavi::access::test {

TestIndex::TestIndex() {
  const auto files = std::make_shared<MemoryFileSystem>();
  const std::vector<Page> pages = MakeSmallDatabase(8);
  Pager::Create(*files, "test.mdb", pages);
  pager_ = Pager::Open(files, "test.mdb", {});
  pager_->BeginWrite();
  PageAllocator allocator(*pager_);
  owned_ = allocator.AddUsageMap(0);
  Page& root = allocator.Allocate();
  root_ = root.Number();
  BTree::FormatRoot(root, kTable);
  UsageMap(*pager_, owned_).Add(root_);
  tree_ = std::make_unique<BTree>(*pager_, kTable, root_, owned_);
}

TestIndex::~TestIndex() {
  pager_->Rollback();
}

BTreeReport TestIndex::Check() {
  return BTreeCheck(*pager_, kTable, root_, owned_).Run();
}

std::vector<IndexEntry> TestIndex::Entries() {
  std::vector<IndexEntry> entries;
  for (auto cursor = tree_->SeekFirst(std::nullopt); cursor->Current() != nullptr; cursor->Next())
    entries.push_back(*cursor->Current());
  return entries;
}

void TestIndex::ExpectHolds(const std::set<IndexEntry>& expected) {
  const BTreeReport report = Check();
  ASSERT_TRUE(report.findings.empty()) << report.Text();
  ASSERT_EQ(report.entries, expected.size());
  ASSERT_TRUE(std::ranges::equal(Entries(), expected));
  auto backwards = expected.rbegin();
  for (auto cursor = tree_->SeekLast(std::nullopt, false); cursor->Current() != nullptr; cursor->Previous()) {
    ASSERT_NE(backwards, expected.rend());
    ASSERT_EQ(*cursor->Current(), *backwards);
    ++backwards;
  }
  ASSERT_EQ(backwards, expected.rend());
  std::vector<PageNumber> pages = tree_->Pages();
  std::ranges::sort(pages);
  ASSERT_EQ(pages, UsageMap(*pager_, owned_).Pages());
}

IndexKey KeyOf(std::string_view text) {
  return {text.begin(), text.end()};
}

IndexKey LongKey(std::int32_t value) {
  IndexKey key;
  KeyBytes(key).AddInteger(value, sizeof(value), true);
  return key;
}

IndexEntry LongEntry(std::int32_t value) {
  return {LongKey(value), {static_cast<PageNumber>(value / 100 + 10), static_cast<std::uint8_t>(value % 100)}};
}

}  // namespace tavi::access::test
