#include "access/index/BTreeCursor.h"

#include <string>

#include "access/file/EngineError.h"

// A walk goes down the nodes only once, to its first leaf; from there on it follows the links between the leaves, which
// costs one page read for each leaf, whichever the direction. The cursor remembers the bytes of the entry that it comes
// from. Each new one has to be greater (going back: less), which is what makes an end of every walk: links that lead in
// a circle bring it to an entry that it has passed. Only leaves without entries give nothing to compare; going through
// these is counted.

namespace tavi::access {

namespace {

/// Goes down from the root, `choose` naming the child on each node page. The depth is bounded instead of the pages
/// remembered: a circle of nodes is noticed after 32 reads, and a sound tree of a file's 524,288 pages cannot be so
/// deep, as each of its nodes has two children or more.
template <typename Choose>
PageNumber Descend(const IndexPages& pages, PageNumber root, std::vector<PageNumber>* path, Choose choose) {
  PageNumber number = root;
  for (std::size_t level = 0; level < kMaximumIndexLevels; ++level) {
    const ReadIndexPage page(pages, number);
    if (path != nullptr) path->push_back(number);
    if (page.view.IsLeaf()) return number;
    number = choose(page.view);
  }
  RaiseDamage("the index with root page " + std::to_string(root) + " has more than " +
              std::to_string(kMaximumIndexLevels) + " levels, or its node pages lead in a circle.");
}

}  // namespace

PageNumber FindLeaf(const IndexPages& pages, PageNumber root, std::span<const std::uint8_t> target,
                    std::vector<PageNumber>* path) {
  return Descend(pages, root, path, [&](const IndexPage& node) { return node.ChildFor(target); });
}

PageNumber FindLastLeaf(const IndexPages& pages, PageNumber root) {
  return Descend(pages, root, nullptr, [](const IndexPage& node) { return node.LastChild(); });
}

BTreeCursor BTreeCursor::AtOrAfter(const IndexPages& pages, PageNumber root, std::span<const std::uint8_t> target) {
  BTreeCursor cursor(pages, FindLeaf(pages, root, target, nullptr));
  cursor.GoForwardFrom(cursor.leaf_.view.LowerBound(target));
  return cursor;
}

// The cursor stands behind the last entry without having read it; the first step back finds it.
BTreeCursor BTreeCursor::BehindLast(const IndexPages& pages, PageNumber root) {
  return {pages, FindLastLeaf(pages, root)};
}

void BTreeCursor::Next() {
  if (place_ == Place::BehindLast) return;
  // Before the first entry the cursor still stands on the first leaf of the chain, where the way back ended.
  GoForwardFrom(place_ == Place::BeforeFirst ? 0 : entry_.end);
}

void BTreeCursor::Previous() {
  if (place_ == Place::BeforeFirst) return;
  // Behind the last one, on the last leaf of the chain.
  GoBackFrom(place_ == Place::BehindLast ? leaf_.view.End() : entry_.start);
}

// To the entry that starts at `offset` of the leaf, or over the links to the next leaf that has one. Empty leaves,
// which only a damaged tree has, are passed over; more of them than the file has pages are a circle.
void BTreeCursor::GoForwardFrom(std::size_t offset) {
  for (PageNumber visited = 0; offset >= leaf_.view.End(); ++visited) {
    const PageNumber next = leaf_.view.Next();
    if (next == 0) {
      Leave(Place::BehindLast);
      return;
    }
    if (visited > pages_.PageCount())
      RaiseDamage("the leaves of an index lead in a circle at page " + std::to_string(next) + ".");
    Enter(next);
    offset = 0;
  }
  Take(leaf_.view.EntryAt(offset));
  // `before_` is empty after a turn at either end, where there is nothing to compare with.
  if (!before_.empty() && before_ >= bytes_)
    RaiseDamage("the entries of index page " + std::to_string(leaf_.view.Number()) + " do not follow those before it.");
}

void BTreeCursor::GoBackFrom(std::size_t offset) {
  for (PageNumber visited = 0; offset == 0; ++visited) {
    const PageNumber previous = leaf_.view.Previous();
    if (previous == 0) {
      Leave(Place::BeforeFirst);
      return;
    }
    if (visited > pages_.PageCount())
      RaiseDamage("the leaves of an index lead in a circle at page " + std::to_string(previous) + ".");
    Enter(previous);
    offset = leaf_.view.End();
  }
  Take(leaf_.view.EntryAt(offset - 1));
  if (!before_.empty() && before_ <= bytes_)
    RaiseDamage("the entries of index page " + std::to_string(leaf_.view.Number()) +
                " do not come before those behind it.");
}

// The page as it is in this statement, checked once more: only the path down has shown that it leads to leaves.
void BTreeCursor::Enter(PageNumber leaf) {
  leaf_ = ReadIndexPage(pages_, leaf);
  if (!leaf_.view.IsLeaf()) RaiseDamage("index page " + std::to_string(leaf) + " is linked as a leaf but is none.");
}

// With `bytes_` empty the first entry after the turn is compared with nothing: it may well be the one that was left.
void BTreeCursor::Leave(Place place) {
  place_ = place;
  bytes_.clear();
}

void BTreeCursor::Take(EntryPlace entry) {
  entry_ = entry;
  // Swapped, not copied: the two buffers are used in turn, and a walk allocates nothing once they have grown.
  before_.swap(bytes_);
  leaf_.view.Decode(entry, bytes_);
  const std::size_t keySize = bytes_.size() - format::index::kEntryRowPointerSize;
  current_.key.assign(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(keySize));
  current_.row = RowOfEntry(bytes_);
  place_ = Place::AtEntry;
}

}  // namespace tavi::access
