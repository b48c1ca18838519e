#include "access/index/BTree.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "access/file/EngineError.h"
#include "access/index/BTreeBuilder.h"
#include "access/index/BTreeCursor.h"
#include "access/index/BTreeEditor.h"

namespace tavi::access {

namespace {

constexpr std::uint32_t kGreatestPage = 0xFFFFFF;

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
  const auto twice = std::ranges::adjacent_find(sorted);
  if (twice != sorted.end()) {
    const RowPointer row = RowOfEntry(*twice);
    RaiseFailure("The row " + std::to_string(row.row) + " of page " + std::to_string(row.page) +
                 " cannot be entered in an index twice.");
  }
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

// Entries of longer keys that begin with this one can lie between.
std::optional<RowPointer> BTree::FindKey(const IndexKey& key) const {
  BTreeCursor cursor = BTreeCursor::AtOrAfter(pages_, root_, key);
  for (; cursor.Current() != nullptr && BeginsWith(cursor.Current()->key, key); cursor.Next())
    if (cursor.Current()->key.size() == key.size()) return cursor.Current()->row;
  return std::nullopt;
}

// Entries are found by key and row together: a shorter key can come so far only by its row.
std::unique_ptr<BTree::Cursor> BTree::SeekFirst(const std::optional<IndexKey>& from) const {
  const IndexKey target = from.value_or(IndexKey());
  auto cursor = std::make_unique<BTreeCursor>(BTreeCursor::AtOrAfter(pages_, root_, target));
  while (cursor->Current() != nullptr && cursor->Current()->key < target) cursor->Next();
  return cursor;
}

std::unique_ptr<BTree::Cursor> BTree::SeekLast(const std::optional<IndexKey>& before, bool orBeginsWith) const {
  const std::optional<IndexKey> end = before.has_value() && orBeginsWith ? Successor(*before) : before;
  auto cursor = std::make_unique<BTreeCursor>(end.has_value() ? BTreeCursor::AtOrAfter(pages_, root_, *end)
                                                              : BTreeCursor::BehindLast(pages_, root_));
  while (end.has_value() && cursor->Current() != nullptr && cursor->Current()->key < *end) cursor->Next();
  cursor->Previous();
  return cursor;
}

void BTree::Clear(bool keepRoot) {
  for (const PageNumber number : pages_.Owned())
    if (number != root_) pages_.Free(number);
  if (!keepRoot) return pages_.Free(root_);
  Page& root = pages_.Write(root_);
  root.Fill(0, kPageSize, 0);
  FormatRoot(root, pages_.Table());
}

std::vector<PageNumber> BTree::Pages() const {
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
