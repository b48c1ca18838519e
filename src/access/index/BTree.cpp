#include "access/index/BTree.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "access/file/EngineError.h"
#include "access/index/BTreeBuilder.h"
#include "access/index/BTreeCursor.h"
#include "access/index/BTreeEditor.h"

// What callers see of an index, made of four parts: BTreeEditor changes it by one entry, BTreeBuilder lays it out anew,
// BTreeCursor walks it, IndexPages gives the pages. Here entries become the bytes by which they are sorted, and what is
// asked about keys becomes a question about those bytes.
//
// Key and row are sorted together: an entry is the bytes of its key, the page (3 bytes) and the row (1 byte),
// big-endian, compared as one run. So equal keys stand in the order of their rows, and an entry can be found exactly.
// The price shows where a key is the beginning of another one: as 7F 4A is of 7F 4A 00, the entries of both mix by
// their rows, and whoever asks for a key has to look at the length of what he meets.

namespace tavi::access {

namespace {

/// An entry has three bytes for the page. A file of 2 GB has only 524,288 pages, so that no row that can be read is
/// refused.
constexpr std::uint32_t kGreatestPage = 0xFFFFFF;

/// The bytes of an entry as leaves hold them. The length is refused here, before any page is touched: with longer keys
/// a node might overflow at three children, and could not be parted into two nodes of two.
EntryBytes Encode(const IndexEntry& entry) {
  if (entry.key.size() > BTree::kMaximumKeySize) {
    RaiseFailure("The key of a row is too long for its index: it has " + std::to_string(entry.key.size()) +
                 " bytes, an index takes " + std::to_string(BTree::kMaximumKeySize) +
                 ". Shorten the texts in the indexed columns, or drop the index.");
  }
  if (entry.row.page > kGreatestPage)
    RaiseFailure("Page " + std::to_string(entry.row.page) + " is too far in the file for an index.");
  EntryBytes bytes = entry.key;
  bytes.push_back(static_cast<std::uint8_t>(entry.row.page >> 16U));
  bytes.push_back(static_cast<std::uint8_t>((entry.row.page >> 8U) & 0xFFU));
  bytes.push_back(static_cast<std::uint8_t>(entry.row.page & 0xFFU));
  bytes.push_back(entry.row.row);
  return bytes;
}

bool BeginsWith(const IndexKey& key, const IndexKey& prefix) {
  return key.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), key.begin());
}

/// The first bytes that sort behind everything that begins with `prefix`; nothing when there are none.
std::optional<IndexKey> Successor(IndexKey prefix) {
  while (!prefix.empty() && prefix.back() == 0xFF) prefix.pop_back();
  if (prefix.empty()) return std::nullopt;
  ++prefix.back();
  return prefix;
}

}  // namespace

void BTree::FormatRoot(Page& page, PageNumber tablePage) {
  FormatIndexPage(page, tablePage, 0);
}

void BTree::Build(std::vector<IndexEntry> entries) {
  std::vector<EntryBytes> sorted;
  sorted.reserve(entries.size());
  for (const IndexEntry& entry : entries) sorted.push_back(Encode(entry));
  entries.clear();
  std::ranges::sort(sorted);
  // Rows of a table are met once each, so this is a caller's mistake or damage. In the tree no later change could tell
  // the twins apart.
  const auto twice = std::ranges::adjacent_find(sorted);
  if (twice != sorted.end()) {
    const RowPointer row = RowOfEntry(*twice);
    RaiseFailure("The row " + std::to_string(row.row) + " of page " + std::to_string(row.page) +
                 " cannot be entered in an index twice.");
  }
  // The old pages go first, so that the new tree can take them again: a file does not grow by an index that is made
  // anew.
  Clear(true);
  BTreeBuilder builder(pages_, root_);
  for (const EntryBytes& bytes : sorted) builder.Add(bytes);
  builder.Finish();
}

void BTree::Insert(const IndexEntry& entry) {
  BTreeEditor(pages_, root_).Insert(Encode(entry));
}

bool BTree::Remove(const IndexEntry& entry) {
  return BTreeEditor(pages_, root_).Remove(Encode(entry));
}

bool BTree::ContainsKey(const IndexKey& key) const {
  return FindKey(key).has_value();
}

// Bytes without a row sort before all entries of this very key, so the search starts in front of them. Entries of
// longer keys that begin with this one can lie between: they are passed over, and the first entry that no longer begins
// with the key ends the search.
std::optional<RowPointer> BTree::FindKey(const IndexKey& key) const {
  BTreeCursor cursor = BTreeCursor::AtOrAfter(pages_, root_, key);
  for (; cursor.Current() != nullptr && BeginsWith(cursor.Current()->key, key); cursor.Next())
    if (cursor.Current()->key.size() == key.size()) return cursor.Current()->row;
  return std::nullopt;
}

// Where entries before the key and behind it are on the leaf, the key is there or nowhere. What goes on behind the
// leaf, or has longer keys that begin with this one, is left to a cursor.
std::optional<RowPointer> BTree::Finder::FindKey(const IndexKey& key) {
  const auto isWithin = [&](const IndexPage& leaf) {
    return !leaf.IsEmpty() && leaf.Compare(leaf.EntryAt(0), key) < 0 &&
           leaf.Compare(leaf.EntryAt(leaf.End() - 1), key) >= 0;
  };
  if (!leaf_ || !isWithin(leaf_->view))
    leaf_.emplace(tree_->pages_, FindLeaf(tree_->pages_, tree_->root_, key, nullptr));
  const std::size_t offset = leaf_->view.LowerBound(key);
  if (offset >= leaf_->view.End()) return tree_->FindKey(key);
  EntryBytes bytes;
  leaf_->view.Decode(leaf_->view.EntryAt(offset), bytes);
  const RowPointer row = RowOfEntry(bytes);
  bytes.resize(bytes.size() - format::index::kEntryRowPointerSize);
  if (bytes == key) return row;
  return BeginsWith(bytes, key) ? tree_->FindKey(key) : std::nullopt;
}

// Entries are found by key and row together: a shorter key can come so far only by its row. Such an entry is smaller as
// a key than what was asked for, although its bytes are not, and is stepped over.
std::unique_ptr<BTree::Cursor> BTree::SeekFirst(const std::optional<IndexKey>& from) const {
  const IndexKey target = from.value_or(IndexKey());
  auto cursor = std::make_unique<BTreeCursor>(BTreeCursor::AtOrAfter(pages_, root_, target));
  while (cursor->Current() != nullptr && cursor->Current()->key < target) cursor->Next();
  return cursor;
}

// Goes to the first entry that is too great and one step back from there. "Begins with" is turned into "less than the
// successor of the prefix", so that both bounds are one case; a prefix of nothing but FF has no successor, and all
// entries to the end are within the bound.
std::unique_ptr<BTree::Cursor> BTree::SeekLast(const std::optional<IndexKey>& before, bool orBeginsWith) const {
  const std::optional<IndexKey> end = before.has_value() && orBeginsWith ? Successor(*before) : before;
  auto cursor = std::make_unique<BTreeCursor>(end.has_value() ? BTreeCursor::AtOrAfter(pages_, root_, *end)
                                                              : BTreeCursor::BehindLast(pages_, root_));
  while (end.has_value() && cursor->Current() != nullptr && cursor->Current()->key < *end) cursor->Next();
  cursor->Previous();
  return cursor;
}

void BTree::Clear(bool keepRoot) {
  // The map of owned pages is believed, not the tree: of a damaged tree some pages could not be reached, or those of
  // others.
  for (const PageNumber number : pages_.Owned())
    if (number != root_) pages_.Free(number);
  if (!keepRoot) return pages_.Free(root_);
  Page& root = pages_.Write(root_);
  // The whole page, so that neither mask nor links of the old root are left.
  root.Fill(0, kPageSize, 0);
  FormatRoot(root, pages_.Table());
}

std::vector<PageNumber> BTree::Pages() const {
  // The list is the queue of the walk as well: children are added behind the page that names them, which gives level
  // after level. A page that is met twice means a circle, or a page with two parents, and ends the walk.
  std::vector<PageNumber> found = {root_};
  std::unordered_set<PageNumber> seen = {root_};
  for (std::size_t i = 0; i < found.size(); ++i) {
    const ReadIndexPage page(pages_, found[i]);
    if (page.view.IsLeaf()) continue;
    for (const PageNumber child : NodeContent(page.view).children) {
      if (!seen.insert(child).second) RaiseDamage("two ways in an index lead to page " + std::to_string(child) + ".");
      found.push_back(child);
    }
  }
  return found;
}

}  // namespace tavi::access
