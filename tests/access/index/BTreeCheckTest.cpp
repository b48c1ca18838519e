// Every wound of an index is found by the check and named; reading a hurt index ends with an answer or a named error.
#include <gtest/gtest.h>
#include <functional>
#include <random>

#include "access/file/PageAllocator.h"
#include "access/index/BTreeCheck.h"
#include "access/index/EntryWriter.h"
#include "access/index/support/TestIndex.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

namespace layout = format::index;
using test::KeyOf;
using test::LongEntry;
using test::LongKey;
using test::TestIndex;

/// An index of three levels with long keys; its pages by role.
class BTreeCheckTest : public testing::Test {
 protected:
  BTreeCheckTest() {
    std::vector<IndexEntry> entries;
    for (int i = 0; i < 60; ++i) {
      IndexEntry entry = LongEntry(i);
      entry.key.resize(700, static_cast<std::uint8_t>(i));
      entries.push_back(entry);
    }
    index_.Tree().Build(entries);
    const std::vector<PageNumber> pages = index_.Tree().Pages();
    root_ = pages.front();
    node_ = pages.at(1);
    nextNode_ = pages.at(2);
    leaf_ = FirstLeaf();
    nextLeaf_ = View(leaf_).Next();
    EXPECT_TRUE(index_.Check().findings.empty()) << index_.Check().Text();
    EXPECT_GE(index_.Check().levels, 3U);
  }

  IndexPage View(PageNumber page) {
    handles_.push_back(index_.File().Read(page));
    return IndexPage(*handles_.back());
  }
  PageNumber FirstLeaf() {
    PageNumber page = root_;
    while (!View(page).IsLeaf()) page = View(page).Child(View(page).EntryAt(0));
    return page;
  }
  Page& Write(PageNumber page) { return index_.File().Write(page); }
  std::string Findings() {
    const BTreeReport report = index_.Check();
    EXPECT_FALSE(report.findings.empty());
    return report.Text();
  }
  std::string Name(PageNumber page) { return "Index page " + std::to_string(page) + " "; }
  void ExpectFinding(const std::string& text) {
    const std::string all = Findings();
    EXPECT_NE(all.find(text), std::string::npos) << "expected: " << text << "\nfound:\n" << all;
    EXPECT_FALSE(index_.Check().IsSound());
  }
  void ExpectWarning(const std::string& text) {
    const std::string all = Findings();
    EXPECT_NE(all.find(text), std::string::npos) << "expected: " << text << "\nfound:\n" << all;
    EXPECT_TRUE(index_.Check().IsSound());
  }
  TestIndex index_;
  PageNumber root_ = 0;
  PageNumber node_ = 0;
  PageNumber nextNode_ = 0;
  PageNumber leaf_ = 0;
  PageNumber nextLeaf_ = 0;
  std::vector<PageHandle> handles_;
};

TEST_F(BTreeCheckTest, CountsWhatItSees) {
  const BTreeReport report = index_.Check();
  EXPECT_EQ(report.entries, 60U);
  EXPECT_EQ(report.leafPages + report.nodePages, index_.Tree().Pages().size());
  EXPECT_TRUE(report.IsSound());
}

TEST_F(BTreeCheckTest, PageOfAnotherType) {
  Write(leaf_).SetU8(0, 1);
  ExpectFinding("index page " + std::to_string(leaf_) + " is no index page: its type is 1.");
}

TEST_F(BTreeCheckTest, PageOfAnotherTable) {
  Write(leaf_).SetU32(layout::kTableOffset, 99);
  ExpectFinding("index page " + std::to_string(leaf_) + " belongs to the table with definition page 99 instead of 7.");
}

TEST_F(BTreeCheckTest, WrongFreeBytes) {
  const std::size_t free = View(leaf_).FreeBytes();
  Write(leaf_).SetU16(layout::kFreeBytesOffset, 1);
  ExpectFinding(Name(leaf_) + "states 1 free bytes instead of " + std::to_string(free));
}

TEST_F(BTreeCheckTest, MaskBehindTheEnd) {
  Write(leaf_).SetU8(layout::kMaskOffset + layout::kMaskSize - 1, 0x80);
  ExpectFinding("index page " + std::to_string(leaf_) + " has an entry that ends at 3623, behind the end of the page.");
}

TEST_F(BTreeCheckTest, EntryTooShortForARow) {
  EntryMask mask(*index_.File().Read(leaf_));
  mask.Set(2);
  mask.Store(Write(leaf_));
  ExpectFinding("index page " + std::to_string(leaf_) + " has an entry at 0 of only 2 bytes, too short for a row.");
}

TEST_F(BTreeCheckTest, PrefixLongerThanTheFirstEntry) {
  Write(leaf_).SetU16(layout::kPrefixLengthOffset, 2000);
  ExpectFinding("index page " + std::to_string(leaf_) + " has a prefix of 2000 bytes, longer than its first entry.");
}

TEST_F(BTreeCheckTest, EntriesOutOfOrder) {
  const std::size_t second = View(leaf_).EntryAt(0).end;
  Write(leaf_).SetU8(layout::kEntriesOffset + View(leaf_).PrefixLength(), 0xFF);
  ExpectFinding(Name(leaf_) + "has an entry at " + std::to_string(second) + " out of order");
}

TEST_F(BTreeCheckTest, LeafThatDoesNotFollowTheOneBefore) {
  Write(nextLeaf_).SetU8(layout::kEntriesOffset, 0x00);
  ExpectFinding(Name(nextLeaf_) + "has an entry at 0 out of order");
}

TEST_F(BTreeCheckTest, NodeEntryBelowItsChildsLastEntry) {
  const IndexPage node = View(node_);
  const std::size_t rowByte = node.EntryAt(0).end - layout::kEntryChildSize - 1;
  Write(node_).SetU8(layout::kEntriesOffset + rowByte, 0);
  ExpectFinding(Name(leaf_) + "has entries greater than its entry in the node");
}

TEST_F(BTreeCheckTest, NodeEntryAboveItsChildsLastEntryIsAWarning) {
  const IndexPage node = View(node_);
  const std::size_t rowByte = node.EntryAt(0).end - layout::kEntryChildSize - 1;
  Write(node_).SetU8(layout::kEntriesOffset + rowByte, 0xFF);
  ExpectWarning(Name(leaf_) + "ends before the entry that it has in the node");
}

TEST_F(BTreeCheckTest, NodeWithoutATail) {
  Write(node_).SetU32(layout::kTailOffset, 0);
  ExpectFinding(Name(node_) + "is a node without a tail page");
}

TEST_F(BTreeCheckTest, LeafWithATail) {
  Write(leaf_).SetU32(layout::kTailOffset, 9);
  ExpectFinding(Name(leaf_) + "is a leaf with a tail page");
}

TEST_F(BTreeCheckTest, EmptyLeaf) {
  Page& page = Write(leaf_);
  EntryMask().Store(page);
  page.SetU16(layout::kFreeBytesOffset, static_cast<std::uint16_t>(layout::kEntriesSize));
  ExpectFinding(Name(leaf_) + "is a leaf without entries");
}

TEST_F(BTreeCheckTest, PageThatIsReachedTwice) {
  Write(root_).SetU32(layout::kTailOffset, leaf_);
  ExpectFinding(Name(leaf_) + "is reached twice");
}

TEST_F(BTreeCheckTest, LeafAboveTheLowestLevel) {
  const PageNumber last = View(root_).Tail();
  Page& page = Write(last);
  page.SetU8(0, format::page_type::kIndexLeaf);
  ExpectFinding(Name(last) + "is a leaf above the lowest level");
}

TEST_F(BTreeCheckTest, ChildPastTheEndOfTheFile) {
  Write(node_).SetU32(layout::kTailOffset, 500000);
  ExpectFinding("leads to page 500000, which is not in the file.");
}

TEST_F(BTreeCheckTest, CircleOfNodes) {
  Write(node_).SetU32(layout::kTailOffset, root_);
  ExpectFinding(Name(root_) + "is reached twice");
}

TEST_F(BTreeCheckTest, WrongLinksOfLeaves) {
  Write(leaf_).SetU32(layout::kNextOffset, leaf_);
  ExpectFinding(Name(leaf_) + "is linked to 0 and " + std::to_string(leaf_) + " instead of 0 and " +
                std::to_string(nextLeaf_));
}

TEST_F(BTreeCheckTest, UnlinkedNodesAreAWarning) {
  Write(node_).SetU32(layout::kNextOffset, 0);
  ExpectWarning(Name(node_) + "is linked to 0 and 0 instead of 0 and " + std::to_string(nextNode_));
}

TEST_F(BTreeCheckTest, WrongLevelIsAWarning) {
  Write(leaf_).SetU8(layout::kLevelOffset, 9);
  ExpectWarning(Name(leaf_) + "states level 9 instead of 0");
}

TEST_F(BTreeCheckTest, PrefixIntoTheRowIsAWarning) {
  TestIndex index;
  for (std::uint8_t row = 0; row < 3; ++row) index.Tree().Insert({KeyOf("same"), {10, row}});
  // The first entry whole, the others without what is the same, the page number of the row included.
  Page& page = index.File().Write(index.Root());
  const std::vector<std::uint8_t> bytes = {'s', 'a', 'm', 'e', 0, 0, 10, 0, 1, 2};
  page.Put(layout::kEntriesOffset, bytes);
  EntryMask mask;
  for (const std::size_t end : {8U, 9U, 10U}) mask.Set(end);
  mask.Store(page);
  page.SetU16(layout::kPrefixLengthOffset, 7);
  page.SetU16(layout::kFreeBytesOffset, static_cast<std::uint16_t>(layout::kEntriesSize - 10));
  const BTreeReport report = index.Check();
  EXPECT_EQ(report.Text(),
            "Index page " + std::to_string(index.Root()) + " has a prefix that reaches into the row of an entry.\n");
  EXPECT_TRUE(report.IsSound());
  // It is read and changed all the same.
  EXPECT_EQ(index.Entries().size(), 3U);
  ASSERT_TRUE(index.Tree().Remove({KeyOf("same"), {10, 0}}));
  index.Tree().Insert({KeyOf("same"), {11, 0}});
  EXPECT_EQ(index.Entries().size(), 3U);
  EXPECT_EQ(index.Entries().back().row, (RowPointer{11, 0}));
}

TEST_F(BTreeCheckTest, PageMissingInTheMap) {
  UsageMap(index_.File(), index_.Owned()).Remove(leaf_);
  ExpectFinding(Name(leaf_) + "is not in the map of the index's pages");
}

TEST_F(BTreeCheckTest, PageOfTheMapThatIsNotInTheTree) {
  UsageMap(index_.File(), index_.Owned()).Add(5);
  ExpectFinding(Name(5) + "is in the map of the index's pages but not in the tree");
}

TEST_F(BTreeCheckTest, PageThatIsMarkedFree) {
  PageAllocator(index_.File()).Free(leaf_);
  ExpectFinding(Name(leaf_) + "is marked free");
}

TEST_F(BTreeCheckTest, TheListOfFindingsEnds) {
  for (PageNumber page = 0; page < 400; ++page) UsageMap(index_.File(), index_.Owned()).Add(page);
  for (int i = 0; i < 400; ++i) (void)PageAllocator(index_.File()).Allocate();
  EXPECT_LE(index_.Check().findings.size(), BTreeCheck::kMaximumFindings);
}

std::string ErrorOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    return error.Description();
  }
  return "(no error)";
}

TEST_F(BTreeCheckTest, CirclesOfNodesEndWithAnError) {
  Write(node_).SetU32(layout::kTailOffset, root_);
  const PageHandle root = index_.File().Read(root_);
  EntryBytes last;
  IndexPage(*root).Decode(IndexPage(*root).EntryAt(0), last);
  const IndexKey key(last.begin(), last.end() - 4);
  EXPECT_NE(ErrorOf([&] { (void)index_.Tree().FindKey(key); }).find("lead in a circle"), std::string::npos);
  EXPECT_NE(ErrorOf([&] { (void)index_.Tree().Pages(); }).find("two ways in an index lead to page"), std::string::npos);
}

TEST_F(BTreeCheckTest, CirclesOfLeavesEndWithAnError) {
  Write(nextLeaf_).SetU32(layout::kNextOffset, leaf_);
  EXPECT_NE(ErrorOf([&] {
              (void)index_.Entries();
            }).find("the entries of index page " + std::to_string(leaf_) + " do not follow those before it"),
            std::string::npos);
  Write(leaf_).SetU32(layout::kPreviousOffset, nextLeaf_);
  const auto backwards = [&] {
    auto cursor = index_.Tree().SeekLast(std::nullopt, false);
    while (cursor->Current() != nullptr) cursor->Previous();
  };
  EXPECT_NE(ErrorOf(backwards).find("do not come before those behind it"), std::string::npos);
}

TEST_F(BTreeCheckTest, ACircleWhoseLastEntryIsOutOfOrderEndsWithAnError) {
  const auto spoil = [&](std::size_t entry) {
    const EntryPlace place = View(leaf_).EntryAt(entry);
    Write(leaf_).SetU8(layout::kEntriesOffset + place.start, entry == 0 ? 0xFF : 0x00);
  };
  spoil(View(leaf_).End() - 1);
  Write(leaf_).SetU32(layout::kNextOffset, leaf_);
  EXPECT_NE(ErrorOf([&] { (void)index_.Entries(); }).find("do not follow those before it"), std::string::npos);
  spoil(0);
  Write(leaf_).SetU32(layout::kPreviousOffset, leaf_);
  const auto backwards = [&] {
    auto cursor = index_.Tree().SeekFirst(LongEntry(1).key);
    while (cursor->Current() != nullptr) cursor->Previous();
  };
  EXPECT_NE(ErrorOf(backwards).find("do not come before those behind it"), std::string::npos);
}

TEST_F(BTreeCheckTest, CirclesOfEmptyLeavesEndWithAnError) {
  Page& page = Write(nextLeaf_);
  EntryMask().Store(page);
  page.SetU32(layout::kNextOffset, nextLeaf_);
  EXPECT_NE(ErrorOf([&] { (void)index_.Entries(); }).find("lead in a circle"), std::string::npos);
}

TEST_F(BTreeCheckTest, ALinkToANodeIsNoLeaf) {
  Write(leaf_).SetU32(layout::kNextOffset, root_);
  EXPECT_NE(ErrorOf([&] {
              (void)index_.Entries();
            }).find("index page " + std::to_string(root_) + " is linked as a leaf but is none"),
            std::string::npos);
}

TEST_F(BTreeCheckTest, ANodeWithoutATailIsReadAndChanged) {
  Write(node_).SetU32(layout::kTailOffset, 0);
  Write(nextNode_).SetU32(layout::kTailOffset, 0);
  EXPECT_EQ(index_.Entries().size(), 60U);
  IndexEntry entry = LongEntry(3);
  entry.key.resize(700, 7);
  for (std::uint8_t row = 200; row < 250; ++row) {
    entry.row.row = row;
    index_.Tree().Insert(entry);
  }
  EXPECT_EQ(index_.Entries().size(), 110U);
}

TEST_F(BTreeCheckTest, AHurtIndexIsClearedByItsMap) {
  Write(root_).SetU32(layout::kTailOffset, 500000);
  // A page that belongs to somebody else stays.
  UsageMap(index_.File(), index_.Owned()).Add(5);
  index_.Tree().Clear(true);
  index_.ExpectHolds({});
  EXPECT_FALSE(PageAllocator(index_.File()).IsFree(5));
  EXPECT_TRUE(PageAllocator(index_.File()).IsFree(leaf_));
}

/// Works with an index whose bytes are not to be trusted: each call gives an answer or a named error, and ends.
void TryEverything(TestIndex& index, std::uint32_t seed) {
  std::mt19937 random(seed);
  const auto attempt = [](const std::function<void()>& action) {
    try {
      action();
    } catch (const Error& error) {
      EXPECT_FALSE(error.Description().empty());
    }
  };
  attempt([&] { (void)index.Check(); });
  attempt([&] { (void)index.Entries(); });
  attempt([&] { (void)index.Tree().Pages(); });
  attempt([&] {
    auto cursor = index.Tree().SeekLast(std::nullopt, false);
    while (cursor->Current() != nullptr) cursor->Previous();
  });
  for (int i = 0; i < 20; ++i) {
    IndexEntry entry = LongEntry(static_cast<std::int32_t>(random() % 60));
    entry.key.resize(700, static_cast<std::uint8_t>(entry.key.back()));
    attempt([&] { (void)index.Tree().Remove(entry); });
    entry.row.row = static_cast<std::uint8_t>(random());
    attempt([&] { index.Tree().Insert(entry); });
    attempt([&] { (void)index.Tree().ContainsKey(entry.key); });
  }
  attempt([&] { (void)index.Check(); });
  attempt([&] { index.Tree().Clear(true); });
}

TEST(HostileIndex, EveryHeaderByteOfEveryPageMayBeWrong) {
  for (std::uint32_t seed = 0; seed < 150; ++seed) {
    SCOPED_TRACE(seed);
    TestIndex index;
    std::vector<IndexEntry> entries;
    for (int i = 0; i < 60; ++i) {
      IndexEntry entry = LongEntry(i);
      entry.key.resize(700, entry.key.back());
      entries.push_back(entry);
    }
    index.Tree().Build(entries);
    std::mt19937 random(seed);
    const std::vector<PageNumber> pages = index.Tree().Pages();
    Page& page = index.File().Write(pages[random() % pages.size()]);
    // Headers and the start of mask and entries are hit most; links get numbers of real pages.
    if (seed % 3 == 0) {
      const std::size_t field = layout::kPreviousOffset + 4 * (random() % 3);
      page.SetU32(field, static_cast<std::uint32_t>(random() % index.File().PageCount()));
    } else {
      for (int i = 0; i < 4; ++i) {
        const std::size_t offset = random() % 2 == 0 ? random() % 0x40 : random() % kPageSize;
        page.SetU8(offset, static_cast<std::uint8_t>(random()));
      }
    }
    TryEverything(index, seed);
  }
}

}  // namespace
}  // namespace tavi::access
