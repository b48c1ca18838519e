#include "access/index/BTreeBuilder.h"

#include <algorithm>

namespace tavi::access {

namespace layout = format::index;

void BTreeBuilder::Add(std::span<const std::uint8_t> bytes) {
  std::size_t prefix = bytes.size() - layout::kEntryRowPointerSize;
  if (leaf_.Size() > 0) {
    const auto first = leaf_[0];
    prefix = std::min({prefix, first.size() - layout::kEntryRowPointerSize, leaf_.Size() > 1 ? prefix_ : prefix});
    prefix = static_cast<std::size_t>(std::ranges::mismatch(first.first(prefix), bytes).in1 - first.begin());
    if (bytes_ + bytes.size() - prefix * leaf_.Size() > layout::kEntriesSize) FlushLeaf();
  }
  leaf_.Append(bytes);
  bytes_ += bytes.size();
  prefix_ = leaf_.Size() > 1 ? prefix : 0;
}

void BTreeBuilder::FlushLeaf() {
  Page& page = pages_.Allocate(0);
  WriteLeafEntries(page, leaf_, {0, leaf_.Size()}, prefix_);
  if (!leaves_.children.empty()) LinkBehind(page, leaves_.children.back());
  leaves_.children.push_back(page.Number());
  leaves_.separators.Append(leaf_[leaf_.Size() - 1]);
  leaf_ = EntryList();
  bytes_ = 0;
  prefix_ = 0;
}

void BTreeBuilder::LinkBehind(Page& page, PageNumber previous) {
  page.SetU32(layout::kPreviousOffset, previous);
  pages_.Write(previous).SetU32(layout::kNextOffset, page.Number());
}

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
  while (!level.Fits()) level = BuildLevel(level, number++);
  WriteNode(pages_.Write(root_), pages_.Table(), number, level);
}

std::size_t BTreeBuilder::FullNode(const NodeContent& below, std::size_t first) {
  const std::size_t left = below.children.size() - first;
  std::size_t size = 0;
  std::size_t count = 1;
  while (count < left) {
    size += below.separators[first + count - 1].size() + layout::kEntryChildSize;
    if (size > layout::kEntriesSize) break;
    ++count;
  }
  // Not one child alone for the last node.
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
    if (first < below.children.size()) nodes.separators.Append(below.separators[first - 1]);
  }
  return nodes;
}

}  // namespace tavi::access
