#include "access/index/BTreeBuilder.h"

#include <algorithm>

// One pass over sorted entries. A leaf is collected in memory, with the prefix that all of its entries share so far;
// the entry that would overflow it begins the next leaf. What parts the leaves (the last entry of each) is kept in
// memory, too, and is the content of the level above; that level is cut into full nodes, and so on until a level fits
// on the root. Each page is written once and once more for its link to the next one.
//
// Leaves are as full as they can be: an index is built from the rows that are there, and what is added later in the
// order of the key, as numbers mostly are, goes behind them. An entry that falls between costs one cut of a leaf.

namespace tavi::access {

namespace layout = format::index;

void BTreeBuilder::Add(std::span<const std::uint8_t> bytes) {
  // What this entry shares with the first one bounds the prefix: between the two, as everything is sorted, all others
  // share at least as much. It leaves out the row of either. One entry alone has no prefix yet.
  std::size_t prefix = bytes.size() - layout::kEntryRowPointerSize;
  if (leaf_.Size() > 0) {
    const auto first = leaf_[0];
    prefix = std::min({prefix, first.size() - layout::kEntryRowPointerSize, leaf_.Size() > 1 ? prefix_ : prefix});
    prefix = static_cast<std::size_t>(std::ranges::mismatch(first.first(prefix), bytes).in1 - first.begin());
    // The first entry is stored whole, all leaf_.Size() others, this one included, without the prefix. A shorter prefix
    // makes all of them longer at once, so that an entry that is short itself can overflow a leaf.
    if (bytes_ + bytes.size() - prefix * leaf_.Size() > layout::kEntriesSize) FlushLeaf();
  }
  leaf_.Append(bytes);
  bytes_ += bytes.size();
  prefix_ = leaf_.Size() > 1 ? prefix : 0;
}

void BTreeBuilder::FlushLeaf() {
  // Pages are handed out from the lowest free one upwards, so that the leaves of a new index mostly follow each other
  // in the file.
  Page& page = pages_.Allocate(0);
  WriteLeafEntries(page, leaf_, {0, leaf_.Size()}, prefix_);
  if (!leaves_.children.empty()) LinkBehind(page, leaves_.children.back());
  leaves_.children.push_back(page.Number());
  leaves_.separators.Append(leaf_[leaf_.Size() - 1]);
  leaf_ = EntryList();
  bytes_ = 0;
  prefix_ = 0;
}

// Only the two neighbours are concerned: pages of a level are made from left to right, so nothing stands behind `page`
// yet.
void BTreeBuilder::LinkBehind(Page& page, PageNumber previous) {
  page.SetU32(layout::kPreviousOffset, previous);
  pages_.Write(previous).SetU32(layout::kNextOffset, page.Number());
}

// The definition of the table names the root's page for ever, so the last level goes there and not to a page of its
// own. How many levels there are is known only when one fits.
void BTreeBuilder::Finish() {
  if (leaves_.children.empty() && bytes_ <= layout::kEntriesSize) {
    WriteLeafEntries(pages_.Write(root_), leaf_, {0, leaf_.Size()}, 0);
    return;
  }
  // A single leaf that fits only when compressed is parted, for a root leaf is not compressed.
  if (leaves_.children.empty()) {
    const EntryList all = leaf_;
    leaf_ = EntryList();
    bytes_ = prefix_ = 0;
    for (std::size_t i = 0; i < all.Size(); ++i) {
      if (i == all.Size() / 2) FlushLeaf();
      Add(all[i]);
    }
  }
  FlushLeaf();
  NodeContent level = std::move(leaves_);
  std::uint8_t number = 1;
  // The last page of a level has no separator in the level above.
  level.separators.Erase(level.separators.Size() - 1);
  // Each level has at most half as many pages as the one below it has (a node has two children at least), so this ends.
  while (!level.Fits()) level = BuildLevel(level, number++);
  WriteNode(pages_.Write(root_), pages_.Table(), number, level);
}

// How many children from `first` on a node takes. There is one separator fewer than children, as the last child of a
// node (the tail) has none: hence the count begins with 1.
std::size_t BTreeBuilder::FullNode(const NodeContent& below, std::size_t first) {
  const std::size_t left = below.children.size() - first;
  std::size_t size = 0;
  std::size_t count = 1;
  while (count < left) {
    size += below.separators[first + count - 1].size() + layout::kEntryChildSize;
    if (size > layout::kEntriesSize) break;
    ++count;
  }
  // A node with one child would be a level without use, and no change of the tree expects it; the last node gets two
  // then. There are always enough: four children fit on a page, because the length of keys is bounded.
  return left - count == 1 ? count - 1 : count;
}

NodeContent BTreeBuilder::BuildLevel(const NodeContent& below, std::uint8_t level) {
  NodeContent nodes;
  for (std::size_t first = 0; first < below.children.size();) {
    const std::size_t count = FullNode(below, first);
    Page& page = pages_.Allocate(level);
    WriteNode(page, pages_.Table(), level, below.Part({first, count}));
    if (!nodes.children.empty()) LinkBehind(page, nodes.children.back());
    nodes.children.push_back(page.Number());
    first += count;
    // The separator behind the last child of a node moves up: in this level it is nobody's, in the level above it is
    // what parts the node from the next one.
    if (first < below.children.size()) nodes.separators.Append(below.separators[first - 1]);
  }
  return nodes;
}

}  // namespace tavi::access
