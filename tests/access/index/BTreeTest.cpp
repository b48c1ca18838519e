#include <gtest/gtest.h>
#include <algorithm>
#include <numeric>
#include <random>

#include "access/index/BTree.h"
#include "access/index/IndexPage.h"
#include "access/index/support/Hex.h"
#include "access/index/support/TestIndex.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::KeyOf;
using test::LongEntry;
using test::LongKey;
using test::TestIndex;
using test::ToHex;

std::vector<std::int32_t> Numbers(std::int32_t count) {
  std::vector<std::int32_t> numbers(static_cast<std::size_t>(count));
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

std::set<IndexEntry> LongEntries(const std::vector<std::int32_t>& numbers) {
  std::set<IndexEntry> entries;
  for (const std::int32_t number : numbers) entries.insert(LongEntry(number));
  return entries;
}

void InsertAll(TestIndex& index, const std::vector<std::int32_t>& numbers) {
  for (const std::int32_t number : numbers) index.Tree().Insert(LongEntry(number));
}

std::string PageHex(Pager& pager, PageNumber page, std::size_t offset, std::size_t length) {
  const PageHandle handle = pager.Read(page);
  const auto bytes = handle->Slice(offset, length);
  return ToHex({bytes.begin(), bytes.end()});
}

TEST(BTree, ANewRootIsAnEmptyLeaf) {
  TestIndex index;
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0, 16), "04 01 20 0E 07 00 00 00 00 00 00 00 00 00 00 00");
  index.ExpectHolds({});
  EXPECT_FALSE(index.Tree().ContainsKey(LongKey(1)));
  EXPECT_EQ(index.Tree().SeekFirst(std::nullopt)->Current(), nullptr);
  EXPECT_EQ(index.Tree().SeekLast(std::nullopt, false)->Current(), nullptr);
}

// The leaf that the comment of IndexPage.h shows.
TEST(BTree, ALeafHasTheBytesThatAccessWrites) {
  TestIndex index;
  const IndexKey longer = {0x7F, 0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x01, 0x00};
  const IndexKey shorter = {0x7F, 0x4A, 0x01, 0x00};
  index.Tree().Insert({longer, {0x1B, 0}});
  index.Tree().Insert({shorter, {0x1B, 1}});
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0, 4), "04 01 0A 0E");
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0x18, 8), "00 00 00 00 01 40 00 00");
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0x1E0, 22),
            "7F 4A 01 00 00 00 1B 01 7F 4A 4C 4D 4F 51 53 55 01 00 00 00 1B 00");
}

TEST(BTree, ANodeHasTheBytesThatAccessWrites) {
  TestIndex index;
  std::vector<IndexEntry> entries;
  for (std::int32_t number = 0; number < 1000; ++number) entries.push_back(LongEntry(number));
  index.Tree().Build(entries);
  const PageHandle root = index.File().Read(index.Root());
  const IndexPage node(*root);
  const PageNumber child = node.Child(node.EntryAt(0));
  const PageHandle childHandle = index.File().Read(child);
  const IndexPage leaf(*childHandle);
  EntryBytes last;
  leaf.Decode(leaf.EntryAt(leaf.End() - 1), last);
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0, 2), "03 01");
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0x1A, 3), "01 00 20");  // level 1, an entry ends at 13
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0x1E0, 13),
            ToHex(last) + " 00 00 00 " + ToHex({static_cast<std::uint8_t>(child)}));
  EXPECT_EQ(node.Tail(), leaf.Next());
  EXPECT_EQ(leaf.PrefixLength(), 3U);
}

TEST(BTree, AscendingInsertsLeaveFullPages) {
  TestIndex index;
  InsertAll(index, Numbers(8000));
  index.ExpectHolds(LongEntries(Numbers(8000)));
  const BTreeReport report = index.Check();
  EXPECT_LE(report.leafPages, 8000U * 7U / 3616U + 3U);
  EXPECT_EQ(report.levels, 2U);
}

TEST(BTree, DescendingInsertsLeaveFullPages) {
  TestIndex index;
  std::vector<std::int32_t> numbers = Numbers(8000);
  std::ranges::reverse(numbers);
  InsertAll(index, numbers);
  index.ExpectHolds(LongEntries(numbers));
  EXPECT_LE(index.Check().leafPages, 8000U * 7U / 3616U + 3U);
}

TEST(BTree, RandomInsertsFillHalfOfThePagesAtLeast) {
  TestIndex index;
  std::vector<std::int32_t> numbers = Numbers(8000);
  std::ranges::shuffle(numbers, std::mt19937(7));
  InsertAll(index, numbers);
  index.ExpectHolds(LongEntries(numbers));
  EXPECT_LE(index.Check().leafPages, 2U * 8000U * 9U / 3616U);
}

TEST(BTree, BuildFillsLeavesFromLeftToRight) {
  for (const std::int32_t count : {0, 1, 2, 401, 402, 700, 5000, 30000}) {
    TestIndex index;
    std::vector<IndexEntry> entries;
    for (const std::int32_t number : Numbers(count)) entries.push_back(LongEntry(number));
    std::ranges::shuffle(entries, std::mt19937(3));
    index.Tree().Build(entries);
    index.ExpectHolds(LongEntries(Numbers(count)));
    const auto bytes = static_cast<std::size_t>(count) * 7U;
    EXPECT_LE(index.Check().leafPages, bytes / 3600U + 3U) << count;
  }
}

TEST(BTree, BuildReplacesWhatWasThere) {
  TestIndex index;
  InsertAll(index, Numbers(3000));
  index.Tree().Build({LongEntry(5), LongEntry(4)});
  index.ExpectHolds(LongEntries({4, 5}));
  EXPECT_EQ(index.Tree().Pages().size(), 1U);
}

TEST(BTree, BuildWithLongKeysMakesManyLevels) {
  TestIndex index;
  std::vector<IndexEntry> entries;
  for (int i = 0; i < 500; ++i) {
    IndexEntry entry = LongEntry(i * 7919 % 1000);
    entry.key.resize(BTree::kMaximumKeySize, static_cast<std::uint8_t>(i));
    entries.push_back(entry);
  }
  index.Tree().Build(entries);
  index.ExpectHolds({entries.begin(), entries.end()});
  EXPECT_GE(index.Check().levels, 5U);
}

TEST(BTree, ARootLeafIsNotCompressed) {
  TestIndex index;
  InsertAll(index, Numbers(401));
  EXPECT_EQ(index.Check().levels, 1U);
  EXPECT_EQ(IndexPage(*index.File().Read(index.Root())).PrefixLength(), 0U);
  index.Tree().Insert(LongEntry(401));
  EXPECT_EQ(index.Check().levels, 2U);
}

TEST(BTree, TheRootKeepsItsPageWhileTheTreeGrowsAndShrinks) {
  TestIndex index;
  InsertAll(index, Numbers(5000));
  EXPECT_EQ(index.Tree().Pages().front(), index.Root());
  for (const std::int32_t number : Numbers(5000)) ASSERT_TRUE(index.Tree().Remove(LongEntry(number)));
  index.ExpectHolds({});
  EXPECT_EQ(index.Tree().Pages(), std::vector<PageNumber>{index.Root()});
  EXPECT_EQ(PageHex(index.File(), index.Root(), 0, 4), "04 01 20 0E");
}

TEST(BTree, EmptyPagesGoBackToTheFile) {
  TestIndex index;
  InsertAll(index, Numbers(5000));
  const PageNumber pages = index.File().PageCount();
  for (int round = 0; round < 3; ++round) {
    for (const std::int32_t number : Numbers(5000)) ASSERT_TRUE(index.Tree().Remove(LongEntry(number)));
    InsertAll(index, Numbers(5000));
  }
  EXPECT_EQ(index.File().PageCount(), pages);
  index.ExpectHolds(LongEntries(Numbers(5000)));
}

TEST(BTree, RemovingFromTheBackFreesPages) {
  TestIndex index;
  InsertAll(index, Numbers(3000));
  std::set<IndexEntry> left = LongEntries(Numbers(3000));
  for (std::int32_t number = 2999; number >= 0; --number) {
    ASSERT_TRUE(index.Tree().Remove(LongEntry(number)));
    left.erase(LongEntry(number));
    if (number % 100 == 0) index.ExpectHolds(left);
  }
}

TEST(BTree, RemovingTheLastEntryOfALeafChangesItsNode) {
  TestIndex index;
  InsertAll(index, Numbers(3000));
  std::set<IndexEntry> left = LongEntries(Numbers(3000));
  for (const PageNumber page : index.Tree().Pages()) {
    const PageHandle handle = index.File().Read(page);
    const IndexPage view(*handle);
    if (!view.IsLeaf()) continue;
    EntryBytes last;
    view.Decode(view.EntryAt(view.End() - 1), last);
    const IndexEntry entry{{last.begin(), last.end() - 4}, RowOfEntry(last)};
    ASSERT_TRUE(index.Tree().Remove(entry));
    left.erase(entry);
    index.ExpectHolds(left);
  }
  EXPECT_LT(left.size(), 2998U);
}

TEST(BTree, RemoveSaysWhetherTheEntryWasThere) {
  TestIndex index;
  InsertAll(index, Numbers(1000));
  EXPECT_FALSE(index.Tree().Remove(LongEntry(1000)));
  IndexEntry otherRow = LongEntry(5);
  otherRow.row.row = 77;
  EXPECT_FALSE(index.Tree().Remove(otherRow));
  EXPECT_TRUE(index.Tree().Remove(LongEntry(5)));
  EXPECT_FALSE(index.Tree().Remove(LongEntry(5)));
}

TEST(BTree, EqualKeysAreToldApartByTheirRows) {
  TestIndex index;
  std::set<IndexEntry> entries;
  for (std::uint32_t i = 0; i < 2000; ++i)
    entries.insert({KeyOf("same"), {10 + (i * 37) % 500, static_cast<std::uint8_t>(i / 500)}});
  for (const IndexEntry& entry : entries) index.Tree().Insert(entry);
  index.ExpectHolds(entries);
  EXPECT_EQ(index.Tree().FindKey(KeyOf("same")), (RowPointer{10, 0}));
  ASSERT_TRUE(index.Tree().Remove({KeyOf("same"), {10, 0}}));
  EXPECT_EQ(index.Tree().FindKey(KeyOf("same")), (RowPointer{10, 1}));
}

TEST(BTree, AKeyThatBeginsAnotherIsNotTheOther) {
  TestIndex index;
  // A short key's row can sort behind, between or before the longer keys that begin with it.
  index.Tree().Insert({KeyOf("a"), {0x6262, 1}});
  index.Tree().Insert({KeyOf("a\x01\x02"), {10, 1}});
  index.Tree().Insert({KeyOf("ab"), {10, 2}});
  index.Tree().Insert({KeyOf("az"), {10, 3}});
  EXPECT_EQ(index.Tree().FindKey(KeyOf("a")), (RowPointer{0x6262, 1}));
  EXPECT_EQ(index.Tree().FindKey(KeyOf("ab")), (RowPointer{10, 2}));
  EXPECT_TRUE(index.Tree().ContainsKey(KeyOf("az")));
  EXPECT_FALSE(index.Tree().ContainsKey(KeyOf("")));
  EXPECT_FALSE(index.Tree().ContainsKey(KeyOf("ay")));
}

TEST(BTree, AnEntryCannotBeAddedTwice) {
  TestIndex index;
  index.Tree().Insert(LongEntry(1));
  EXPECT_THROW(index.Tree().Insert(LongEntry(1)), Error);
  EXPECT_THROW(index.Tree().Build({LongEntry(2), LongEntry(2)}), Error);
}

TEST(BTree, KeysTooLongAreRefused) {
  TestIndex index;
  index.Tree().Insert({IndexKey(BTree::kMaximumKeySize, 1), {1, 1}});
  const IndexEntry tooLong{IndexKey(BTree::kMaximumKeySize + 1, 1), {1, 1}};
  try {
    index.Tree().Insert(tooLong);
    FAIL() << "was taken";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    EXPECT_NE(error.Description().find("too long for its index: it has 1198 bytes"), std::string::npos);
  }
  EXPECT_THROW(index.Tree().Build({tooLong}), Error);
  index.ExpectHolds({{IndexKey(BTree::kMaximumKeySize, 1), {1, 1}}});
}

TEST(BTree, ClearKeepsOrFreesTheRoot) {
  TestIndex index;
  InsertAll(index, Numbers(3000));
  const std::vector<PageNumber> pages = index.Tree().Pages();
  index.Tree().Clear(true);
  index.ExpectHolds({});
  for (const PageNumber page : pages) EXPECT_EQ(PageAllocator(index.File()).IsFree(page), page != index.Root());
  index.Tree().Clear(false);
  EXPECT_TRUE(PageAllocator(index.File()).IsFree(index.Root()));
  EXPECT_TRUE(UsageMap(index.File(), index.Owned()).Pages().empty());
}

std::string KeyAt(const BTree::Cursor& cursor) {
  if (cursor.Current() == nullptr) return "(none)";
  return {cursor.Current()->key.begin(), cursor.Current()->key.end()};
}

TEST(BTreeCursor, SeekFirstFindsTheFirstKeyThatIsNotLess) {
  TestIndex index;
  for (const char* key : {"b", "ba", "bb", "d"}) index.Tree().Insert({KeyOf(key), {10, 1}});
  EXPECT_EQ(KeyAt(*index.Tree().SeekFirst(std::nullopt)), "b");
  EXPECT_EQ(KeyAt(*index.Tree().SeekFirst(KeyOf("a"))), "b");
  EXPECT_EQ(KeyAt(*index.Tree().SeekFirst(KeyOf("b"))), "b");
  EXPECT_EQ(KeyAt(*index.Tree().SeekFirst(KeyOf("b\x01"))), "ba");
  EXPECT_EQ(KeyAt(*index.Tree().SeekFirst(KeyOf("c"))), "d");
  EXPECT_EQ(KeyAt(*index.Tree().SeekFirst(KeyOf("e"))), "(none)");
}

TEST(BTreeCursor, SeekLastFindsTheLastKeyBefore) {
  TestIndex index;
  for (const char* key : {"b", "ba", "bb", "d"}) index.Tree().Insert({KeyOf(key), {10, 1}});
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(std::nullopt, false)), "d");
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(KeyOf("d"), false)), "bb");
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(KeyOf("d"), true)), "d");
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(KeyOf("b"), true)), "bb");
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(KeyOf("b"), false)), "(none)");
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(KeyOf("z"), false)), "d");
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(KeyOf("\xFF"), true)), "d");
  EXPECT_EQ(KeyAt(*index.Tree().SeekLast(KeyOf(""), true)), "d");
}

TEST(BTreeCursor, TurnsAroundAnywhere) {
  TestIndex index;
  InsertAll(index, Numbers(1000));
  auto cursor = index.Tree().SeekFirst(LongKey(500));
  for (std::int32_t number = 500; number < 600; ++number, cursor->Next())
    ASSERT_EQ(cursor->Current()->key, LongKey(number));
  for (std::int32_t number = 600; number > 0; --number, cursor->Previous())
    ASSERT_EQ(cursor->Current()->key, LongKey(number));
  ASSERT_EQ(cursor->Current()->key, LongKey(0));
  cursor->Previous();
  ASSERT_EQ(cursor->Current(), nullptr);
  cursor->Previous();
  ASSERT_EQ(cursor->Current(), nullptr);
  cursor->Next();
  ASSERT_EQ(cursor->Current()->key, LongKey(0));
  auto end = index.Tree().SeekLast(std::nullopt, false);
  end->Next();
  ASSERT_EQ(end->Current(), nullptr);
  end->Next();
  ASSERT_EQ(end->Current(), nullptr);
  end->Previous();
  ASSERT_EQ(end->Current()->key, LongKey(999));
}

/// Compares the tree with a set through random histories. Keys have up to `longest` bytes of a small alphabet, so that
/// they share prefixes.
class BTreeModel {
 public:
  BTreeModel(std::uint32_t seed, std::size_t longest) : random_(seed), longest_(longest) {}

  void Run(int operations, int removePercent) {
    for (int i = 0; i < operations; ++i) {
      if (Percent() < removePercent && !model_.empty()) {
        Remove();
      } else {
        Add();
      }
      if (i % 250 == 0) {
        index_.ExpectHolds(model_);
        if (testing::Test::HasFatalFailure()) return;
      }
      Seek();
      if (testing::Test::HasFatalFailure()) return;
    }
    index_.ExpectHolds(model_);
  }
  [[nodiscard]] std::size_t Size() const { return model_.size(); }
  [[nodiscard]] std::size_t Levels() { return index_.Check().levels; }

 private:
  int Percent() { return static_cast<int>(random_() % 100); }

  // Ends in a byte that is nowhere else, so that no key begins another one, as with real keys.
  IndexKey MakeKey() {
    IndexKey key(1 + random_() % longest_, 'a');
    const std::size_t varied = std::min<std::size_t>(key.size(), 8);
    for (std::size_t i = 0; i < varied; ++i)
      key[random_() % 2 == 0 ? i : key.size() - 1 - i] = static_cast<std::uint8_t>('a' + random_() % 6);
    key.back() = 0;
    return key;
  }

  void Add() {
    IndexEntry entry{MakeKey(), {10 + static_cast<PageNumber>(random_() % 50), static_cast<std::uint8_t>(random_())}};
    if (model_.insert(entry).second) index_.Tree().Insert(entry);
  }

  void Remove() {
    auto victim = model_.lower_bound({MakeKey(), {}});
    if (victim == model_.end()) victim = model_.begin();
    ASSERT_TRUE(index_.Tree().Remove(*victim));
    model_.erase(victim);
  }

  void Seek() {
    const IndexKey key = MakeKey();
    const auto expected = model_.lower_bound({key, {}});
    const auto cursor = index_.Tree().SeekFirst(key);
    ASSERT_EQ(cursor->Current() == nullptr, expected == model_.end());
    if (expected != model_.end()) {
      ASSERT_EQ(*cursor->Current(), *expected);
    }
    const auto before = index_.Tree().SeekLast(key, false);
    ASSERT_EQ(before->Current() == nullptr, expected == model_.begin());
    if (expected != model_.begin()) {
      ASSERT_EQ(*before->Current(), *std::prev(expected));
    }
    ASSERT_EQ(index_.Tree().ContainsKey(key), expected != model_.end() && expected->key == key);
  }

  std::mt19937 random_;
  std::size_t longest_;
  std::set<IndexEntry> model_;
  TestIndex index_;
};

TEST(BTreeModelTest, ShortKeys) {
  BTreeModel model(1, 12);
  model.Run(6000, 20);
  model.Run(6000, 70);
}

TEST(BTreeModelTest, LongKeysSplitPagesEarly) {
  BTreeModel model(2, BTree::kMaximumKeySize);
  model.Run(3000, 20);
  EXPECT_GE(model.Levels(), 5U);
  model.Run(6000, 80);
}

TEST(BTreeModelTest, KeysOfMiddleLength) {
  BTreeModel model(3, 300);
  model.Run(4000, 30);
  model.Run(4000, 60);
}

TEST(BTreeModelTest, ManySeeds) {
  for (std::uint32_t seed = 100; seed < 115; ++seed) {
    SCOPED_TRACE(seed);
    BTreeModel model(seed, seed % 3 == 0 ? 40 : BTree::kMaximumKeySize);
    model.Run(400, 20);
    model.Run(600, 80);
    model.Run(300, 30);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace tavi::access
