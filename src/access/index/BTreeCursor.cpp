#include "access/index/BTreeCursor.h"

#include <string>

#include "access/file/EngineError.h"

namespace tavi::access {

namespace {

/// Goes down from the root, `choose` naming the child on each node page.
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

BTreeCursor BTreeCursor::BehindLast(const IndexPages& pages, PageNumber root) {
  return {pages, FindLastLeaf(pages, root)};
}

void BTreeCursor::Next() {
  if (place_ == Place::BehindLast) return;
  GoForwardFrom(place_ == Place::BeforeFirst ? 0 : entry_.end);
}

void BTreeCursor::Previous() {
  if (place_ == Place::BeforeFirst) return;
  GoBackFrom(place_ == Place::BehindLast ? leaf_.view.End() : entry_.start);
}

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

void BTreeCursor::Enter(PageNumber leaf) {
  leaf_ = ReadIndexPage(pages_, leaf);
  if (!leaf_.view.IsLeaf()) RaiseDamage("index page " + std::to_string(leaf) + " is linked as a leaf but is none.");
}

void BTreeCursor::Leave(Place place) {
  place_ = place;
  bytes_.clear();
}

void BTreeCursor::Take(EntryPlace entry) {
  entry_ = entry;
  before_.swap(bytes_);
  leaf_.view.Decode(entry, bytes_);
  const std::size_t keySize = bytes_.size() - format::index::kEntryRowPointerSize;
  current_.key.assign(bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(keySize));
  current_.row = RowOfEntry(bytes_);
  place_ = Place::AtEntry;
}

}  // namespace tavi::access
