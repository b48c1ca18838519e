#include "access/index/BTreeEditor.h"

#include <algorithm>
#include <string>

#include "access/file/EngineError.h"
#include "access/index/BTreeCursor.h"

// One entry more, or one less. Both go down to the leaf where the entry belongs and remember the path; the leaf is
// changed in place where that is possible, which is all that most calls cost. What follows goes up the path, one level
// at a time, as a call of ReplaceChild: instead of this child there are none, one or several now, and the last entry
// below it is such and such. StoreNode then finds the node well, too full (it is cut), or left with one child (it joins
// a neighbour), and goes on above if that concerns the parent. The root ends it: it takes over its only child, or gives
// all it has to new pages below.
//
// Two rules keep the changes few. The last part of a page that is cut stays on the old page: what leads there, an entry
// or the tail of the node above, stays right, and new pages only ever come before it. And the entry of a node is the
// last entry below its child, so that an insertion changes it only at the very end of the tree (in files of other
// programs also where an entry of a node is greater than what lies below).
//
// Pages are not kept half full, as textbooks have it: a leaf goes when it is empty, a node when it has one child.
// Compacting makes an index that has become sparse anew. Any error leaves the tree as it happens to be; the statement
// is rolled back then.

namespace tavi::access {

namespace {

namespace layout = format::index;

/// The tail and one entry. Access' own nodes have at least one entry.
constexpr std::size_t kFewestChildren = 2;

EntryRange WholeOf(const EntryList& entries) {
  return {0, entries.Size()};
}

/// Cuts a stretch where half of its bytes are on either side, `fewest` items at least on each. By bytes, not by number:
/// keys of texts differ in length. The stretch must have 2 x `fewest` items.
std::size_t Middle(const std::vector<std::size_t>& sizes, EntryRange range, std::size_t fewest) {
  std::size_t total = 0;
  for (std::size_t i = 0; i < range.count; ++i) total += sizes[range.first + i];
  std::size_t before = 0;
  std::size_t count = 0;
  while (count < range.count && 2 * before < total) before += sizes[range.first + count++];
  return std::clamp(count, fewest, range.count - fewest);
}

/// Cuts stretches in the middle until all fit, keeping their order. One cut is the rule; more are needed where a long
/// key comes into a full page, or where the shorter prefix that it leaves makes all others longer.
template <typename Fits>
std::vector<EntryRange> CutUntilFit(std::vector<EntryRange> ranges, const std::vector<std::size_t>& sizes,
                                    std::size_t fewest, Fits fits) {
  for (std::size_t i = 0; i < ranges.size();) {
    const EntryRange range = ranges[i];
    if (fits(range)) {
      ++i;
      continue;
    }
    // Keys that we make are never so long (BTree::kMaximumKeySize); those in a file of another program may be.
    if (range.count < 2 * fewest) RaiseFailure("The keys of an index are too long to be parted among its pages.");
    const std::size_t middle = Middle(sizes, range, fewest);
    ranges[i] = {range.first, middle};
    ranges.insert(ranges.begin() + static_cast<std::ptrdiff_t>(i) + 1, {range.first + middle, range.count - middle});
  }
  return ranges;
}

/// What each child of a node takes of a page.
std::vector<std::size_t> ChildSizes(const NodeContent& content) {
  std::vector<std::size_t> sizes(content.children.size(), layout::kEntryChildSize);
  for (std::size_t i = 0; i < content.separators.Size(); ++i) sizes[i] += content.separators[i].size();
  return sizes;
}

}  // namespace

// From the path, not from what the pages state, which other programs may have wrong.
std::uint8_t BTreeEditor::LevelAt(std::size_t depth) const {
  return static_cast<std::uint8_t>(path_.size() - 1 - depth);
}

void BTreeEditor::Insert(std::span<const std::uint8_t> bytes) {
  const PageNumber leaf = FindLeaf(pages_, root_, bytes, &path_);
  const ReadIndexPage read(pages_, leaf);
  const std::size_t offset = read.view.LowerBound(bytes);
  const bool isLast = offset == read.view.End();
  // A twin is damage, or a row that was entered already; two equal entries would leave one behind when the row goes.
  if (!isLast && read.view.Compare(read.view.EntryAt(offset), bytes) == 0)
    RaiseDamage("index page " + std::to_string(leaf) + " already has the entry of the row that is to be added.");
  if (!InsertInPlace(pages_.Write(leaf), offset, bytes)) return InsertAnew(read.view, offset, bytes);
  // The leaf ends later now, which the entry that leads to it has to say, or that of the node of which it is the tail.
  if (isLast && !LeafIsRoot()) ReplaceChild(path_.size() - 2, {{leaf, EntryBytes(bytes.begin(), bytes.end())}});
}

// The leaf as it was read is taken apart: a better prefix can make room, else it is cut. Where the entry goes to the
// very end or start of the index, and so will the next ones (numbers that count up, a descending index of them), the
// cut leaves the old entries together on a full page.
void BTreeEditor::InsertAnew(const IndexPage& leaf, std::size_t offset, std::span<const std::uint8_t> bytes) {
  EntryList entries(leaf);
  const std::size_t index = entries.LowerBound(bytes);
  entries.Insert(index, bytes);
  if (offset == leaf.End() && leaf.Next() == 0) cut_ = Cut::NearEnd;
  if (offset == 0 && leaf.Previous() == 0) cut_ = Cut::NearStart;
  // Only leaves below a node are compressed.
  const std::size_t prefix = LeafIsRoot() ? 0 : SharedPrefix(entries, WholeOf(entries));
  if (StoredSize(entries, WholeOf(entries), prefix) > layout::kEntriesSize) return SplitLeaf(entries);
  WriteLeafEntries(pages_.Write(path_.back()), entries, WholeOf(entries), prefix);
  const bool isLast = index + 1 == entries.Size();
  if (isLast && !LeafIsRoot()) ReplaceChild(path_.size() - 2, {{path_.back(), entries.Copy(index)}});
}

// Near an end one entry alone gets a page: the new one, and those to come have the rest of the page to themselves.
std::vector<EntryRange> BTreeEditor::LeafRanges(const EntryList& entries) const {
  std::vector<std::size_t> sizes;
  for (std::size_t i = 0; i < entries.Size(); ++i) sizes.push_back(entries[i].size());
  std::vector<EntryRange> ranges;
  if (cut_ == Cut::Middle) {
    const std::size_t middle = Middle(sizes, WholeOf(entries), 1);
    ranges = {{0, middle}, {middle, entries.Size() - middle}};
  } else {
    const std::size_t left = cut_ == Cut::NearEnd ? entries.Size() - 1 : 1;
    ranges = {{0, left}, {left, entries.Size() - left}};
  }
  return CutUntilFit(std::move(ranges), sizes, 1, [&](EntryRange range) { return FitsOnLeaf(entries, range); });
}

// The last part stays on the old page (of a root: goes to a new one too), the others go before it. Each page is written
// and linked before the node above hears of it. The entries were copied out beforehand, so the old page may be
// overwritten at once.
void BTreeEditor::SplitLeaf(const EntryList& entries) {
  const std::vector<EntryRange> ranges = LeafRanges(entries);
  const PageNumber last = LeafIsRoot() ? pages_.Allocate(0).Number() : path_.back();
  std::vector<Branch> branches;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const bool isLastPart = i + 1 == ranges.size();
    Page& page = isLastPart ? pages_.Write(last) : pages_.Allocate(0);
    WriteLeafEntries(page, entries, ranges[i], SharedPrefix(entries, ranges[i]));
    if (!isLastPart) pages_.LinkBefore(page.Number(), last);
    branches.push_back({page.Number(), entries.Copy(ranges[i].first + ranges[i].count - 1)});
  }
  if (LeafIsRoot()) return RaiseTree(branches);
  ReplaceChild(path_.size() - 2, branches);
}

// A removal never moves entries between leaves: it takes the entry out where it lies, or the whole leaf when it was the
// only one. Nothing is written where the entry is not found, as in an index that another program has kept badly.
bool BTreeEditor::Remove(std::span<const std::uint8_t> bytes) {
  const PageNumber leaf = FindLeaf(pages_, root_, bytes, &path_);
  const ReadIndexPage read(pages_, leaf);
  const std::size_t offset = read.view.LowerBound(bytes);
  if (offset == read.view.End()) return false;
  const EntryPlace entry = read.view.EntryAt(offset);
  if (read.view.Compare(entry, bytes) != 0) return false;
  const bool isOnly = entry.start == 0 && entry.end == read.view.End();
  if (isOnly && !LeafIsRoot()) {
    RemoveLeaf(leaf);
    return true;
  }
  Page& page = pages_.Write(leaf);
  RemoveInPlace(page, entry);
  // The last entry of the leaf has changed, and with it the entry of each node that ended with it. `read` still shows
  // the page as it was.
  if (entry.end == read.view.End() && !LeafIsRoot()) {
    // End() - 1 is a byte of the last entry, whatever its length. There is one: the only entry was dealt with above.
    const IndexPage changed(page);
    EntryBytes last;
    changed.Decode(changed.EntryAt(changed.End() - 1), last);
    ReplaceChild(path_.size() - 2, {{leaf, last}});
  }
  return true;
}

// Out of the chain first: freeing looks at the page only to see whose it is, and nothing may lead to it any more.
void BTreeEditor::RemoveLeaf(PageNumber leaf) {
  pages_.Unlink(leaf);
  pages_.Free(leaf);
  ReplaceChild(path_.size() - 2, {});
}

// The step from a level to the one above; the header says what the branches mean. The last branch is the child itself,
// those before it are new pages. The content of the node is taken apart and laid out again even for one separator,
// because nodes change rarely: when a page is cut or goes, or the end of a leaf moves.
void BTreeEditor::ReplaceChild(std::size_t depth, const std::vector<Branch>& branches) {
  const PageNumber child = path_[depth + 1];
  const ReadIndexPage node(pages_, path_[depth]);
  if (branches.size() == 1 && node.view.Tail() == child) {
    // The node itself stays as it is.
    if (depth > 0) ReplaceChild(depth - 1, {{path_[depth], branches.front().last}});
    return;
  }
  NodeContent content(node.view);
  const std::size_t position = content.PositionOf(child, path_[depth]);
  const bool isTail = content.IsTail(position);
  if (branches.empty()) {
    // `last` has a value when the tail went: then the node ends earlier, which the nodes above have to know.
    const std::optional<EntryBytes> last = content.Remove(position);
    return StoreNode(depth, content, last);
  }
  const Branch& lastBranch = branches.back();
  for (std::size_t i = 0; i + 1 < branches.size(); ++i) {
    // Each new page comes before the child, which moves on and keeps the separator behind it.
    content.children.insert(content.children.begin() + static_cast<std::ptrdiff_t>(position + i), branches[i].page);
    content.separators.Insert(position + i, *branches[i].last);
  }
  // The tail has no separator here: what parts it from the next node stands one level up.
  if (!isTail && lastBranch.last.has_value())
    content.separators.Replace(position + branches.size() - 1, *lastBranch.last);
  StoreNode(depth, content, isTail ? lastBranch.last : std::nullopt);
}

// The node has its new content; whether it may stay so depends on the number of children and the room. What goes on
// above is only what changed there: a new last entry, pages that came or went.
void BTreeEditor::StoreNode(std::size_t depth, const NodeContent& content, std::optional<EntryBytes> last) {
  if (depth == 0) return StoreRoot(content);
  if (content.children.empty()) {  // it had a single child, as no sound tree has
    pages_.Unlink(path_[depth]);
    pages_.Free(path_[depth]);
    return ReplaceChild(depth - 1, {});
  }
  if (content.children.size() < kFewestChildren) return JoinSibling(depth, content, std::move(last));
  if (!content.Fits()) return SplitNode(depth, content, std::move(last));
  WriteNode(pages_.Write(path_[depth]), pages_.Table(), LevelAt(depth), content);
  if (last.has_value()) ReplaceChild(depth - 1, {{path_[depth], std::move(last)}});
}

// The root has no neighbour to join and no parent to tell. It shrinks by itself, a level at a time, so that an index
// whose rows were all deleted is an empty leaf again.
void BTreeEditor::StoreRoot(const NodeContent& content) {
  if (content.children.empty()) {
    Page& root = pages_.Write(root_);
    FormatIndexPage(root, pages_.Table(), 0);
    // Formatting leaves the mask alone; writing no entries clears it.
    WriteLeafEntries(root, EntryList(), {}, 0);
    return;
  }
  if (content.children.size() < kFewestChildren) return CollapseRoot(content.children.front());
  if (!content.Fits()) return SplitNode(0, content, std::nullopt);
  WriteNode(pages_.Write(root_), pages_.Table(), LevelAt(0), content);
}

// As LeafRanges, with the least that a node may have at the end where entries come in order.
std::vector<EntryRange> BTreeEditor::NodeRanges(const NodeContent& content) const {
  const std::size_t count = content.children.size();
  const std::vector<std::size_t> sizes = ChildSizes(content);
  std::size_t left = Middle(sizes, {0, count}, std::min(kFewestChildren, count / 2));
  if (cut_ == Cut::NearEnd) left = count - kFewestChildren;
  if (cut_ == Cut::NearStart) left = kFewestChildren;
  return CutUntilFit({{0, left}, {left, count - left}}, sizes, kFewestChildren,
                     [&](EntryRange range) { return content.Fits(range); });
}

// The separator behind the last child of the stretch is not written on the page: it goes up as the last entry of the
// new node. The last part of all has none; its last entry is known to whoever changed it.
BTreeEditor::Branch BTreeEditor::WriteNodePart(Page& page, std::size_t depth, const NodeContent& content,
                                               EntryRange range) {
  WriteNode(page, pages_.Table(), LevelAt(depth), content.Part(range));
  const std::size_t last = range.first + range.count - 1;
  if (last >= content.separators.Size()) return {page.Number(), std::nullopt};
  return {page.Number(), content.separators.Copy(last)};
}

// As with leaves: the last part stays, the others go before it, but a root gives all away. Only nodes are written and
// linked; their children stay where they are.
void BTreeEditor::SplitNode(std::size_t depth, const NodeContent& content, std::optional<EntryBytes> last) {
  const std::vector<EntryRange> ranges = NodeRanges(content);
  const PageNumber lastPage = depth == 0 ? pages_.Allocate(LevelAt(0)).Number() : path_[depth];
  std::vector<Branch> branches;
  for (std::size_t i = 0; i < ranges.size(); ++i) {
    const bool isLastPart = i + 1 == ranges.size();
    Page& page = isLastPart ? pages_.Write(lastPage) : pages_.Allocate(LevelAt(depth));
    branches.push_back(WriteNodePart(page, depth, content, ranges[i]));
    if (!isLastPart) pages_.LinkBefore(page.Number(), lastPage);
  }
  branches.back().last = std::move(last);
  if (depth == 0) return RaiseTree(branches);
  ReplaceChild(depth - 1, branches);
}

// The node above is read as it stands, so the new last entry of this node, which it does not know yet, is put in
// first: it parts this node from the next one, or (for the tail) goes further up. The neighbour is the one before;
// the first child takes the one behind it.
void BTreeEditor::JoinSibling(std::size_t depth, const NodeContent& content, std::optional<EntryBytes> last) {
  const PageNumber own = path_[depth];
  NodeContent parent(ReadIndexPage(pages_, path_[depth - 1]).view);
  const std::size_t position = parent.PositionOf(own, path_[depth - 1]);
  const std::size_t left = position > 0 ? position - 1 : 0;
  std::optional<EntryBytes> parentLast = last;
  if (!parent.IsTail(position)) {
    if (last.has_value()) parent.separators.Replace(position, *last);
    parentLast.reset();
  }
  if (parent.children.size() >= kFewestChildren) {
    const NodeContent sibling = ReadSibling(parent.children[position > 0 ? left : 1]);
    NodeContent joined = position > 0 ? sibling : content;
    joined.Append(parent.separators[left], position > 0 ? content : sibling);
    if (Distribute(joined, depth, parent, left)) return StoreNode(depth - 1, parent, std::move(parentLast));
  }
  // It stays alone. That is only so beside keys too long for three on a page, and below a node of one child.
  WriteNode(pages_.Write(own), pages_.Table(), LevelAt(depth), content);
  ReplaceChild(depth - 1, {{own, std::move(last)}});
}

// A neighbour that is on our own path would be written twice with different contents.
NodeContent BTreeEditor::ReadSibling(PageNumber number) const {
  if (std::ranges::find(path_, number) != path_.end())
    RaiseDamage("the node pages of an index lead in a circle at page " + std::to_string(number) + ".");
  return NodeContent(ReadIndexPage(pages_, number).view);
}

// The left page goes when the right one can hold all: the separator behind the right one, or its place as the tail,
// then stays true. Otherwise each gets a half, and only the separator between the two changes. With fewer than two
// children for either, nothing can be moved, which happens only with keys longer than ours.
bool BTreeEditor::Distribute(const NodeContent& joined, std::size_t depth, NodeContent& parent, std::size_t left) {
  const PageNumber leftPage = parent.children[left];
  const PageNumber rightPage = parent.children[left + 1];
  if (joined.Fits()) {
    WriteNode(pages_.Write(rightPage), pages_.Table(), LevelAt(depth), joined);
    pages_.Unlink(leftPage);
    pages_.Free(leftPage);
    parent.Remove(left);
    return true;
  }
  const std::size_t count = joined.children.size();
  if (count < 2 * kFewestChildren) return false;
  const std::size_t half = Middle(ChildSizes(joined), {0, count}, kFewestChildren);
  if (!joined.Fits({0, half}) || !joined.Fits({half, count - half})) return false;
  const Branch first = WriteNodePart(pages_.Write(leftPage), depth, joined, {0, half});
  (void)WriteNodePart(pages_.Write(rightPage), depth, joined, {half, count - half});
  parent.separators.Replace(left, *first.last);
  return true;
}

// The content moves, not the page: the definition of the table names the root's page, and other programs keep that for
// the life of an index. The child was alone on its level, so it has no neighbours to be unlinked from. A leaf becomes a
// root leaf, which is written without a prefix wherever it fits so, as Access has them.
void BTreeEditor::CollapseRoot(PageNumber child) {
  if (child == root_) RaiseDamage("the root page " + std::to_string(root_) + " of an index leads to itself.");
  Page& root = pages_.Write(root_);
  {
    const ReadIndexPage read(pages_, child);
    if (read.view.IsLeaf()) {
      const EntryList entries(read.view);
      const EntryRange all = WholeOf(entries);
      const bool fitsPlain = StoredSize(entries, all, 0) <= layout::kEntriesSize;
      FormatIndexPage(root, pages_.Table(), 0);
      WriteLeafEntries(root, entries, all, fitsPlain ? 0 : SharedPrefix(entries, all));
    } else {
      WriteNode(root, pages_.Table(), static_cast<std::uint8_t>(LevelAt(0) - 1), NodeContent(read.view));
    }
  }
  pages_.Free(child);
}

// The other way round: the content is on the pages of the branches by now, and the root becomes the node above them.
// The last branch is its tail, whose last entry nobody asks for.
void BTreeEditor::RaiseTree(const std::vector<Branch>& branches) {
  NodeContent content;
  for (const Branch& branch : branches) {
    content.children.push_back(branch.page);
    if (content.children.size() < branches.size()) content.separators.Append(*branch.last);
  }
  WriteNode(pages_.Write(root_), pages_.Table(), static_cast<std::uint8_t>(LevelAt(0) + 1), content);
}

}  // namespace tavi::access
