#include "access/index/EntryList.h"

#include <algorithm>
#include <string>

#include "access/file/EngineError.h"
#include "access/index/EntryWriter.h"

// Entries taken out of a page, to be changed and laid out on one page or several. All bytes lie in one buffer, with the
// end of each entry beside it: a page has up to some hundred entries, and a vector for each would cost more than moving
// the bytes behind an insertion. Entries are complete here; the prefix is taken off again when they are written, as
// long as it can be by then.

namespace tavi::access {

EntryList::EntryList(const IndexPage& page) {
  EntryBytes bytes;
  for (std::size_t offset = 0; offset < page.End();) {
    const EntryPlace place = page.EntryAt(offset);
    page.Decode(place, bytes);
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    ends_.push_back(bytes_.size());
    offset = place.end;
  }
}

std::span<const std::uint8_t> EntryList::operator[](std::size_t index) const {
  return std::span(bytes_).subspan(Start(index), ends_[index] - Start(index));
}

EntryBytes EntryList::Copy(std::size_t index) const {
  const auto bytes = (*this)[index];
  return {bytes.begin(), bytes.end()};
}

// Entries have no common length, but their ends are at hand, so the list is halved by numbers of entries.
std::size_t EntryList::LowerBound(std::span<const std::uint8_t> target) const {
  std::size_t low = 0;
  std::size_t high = Size();
  while (low < high) {
    const std::size_t middle = low + (high - low) / 2;
    if (std::ranges::lexicographical_compare((*this)[middle], target)) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low;
}

void EntryList::Insert(std::size_t index, std::span<const std::uint8_t> bytes) {
  const std::size_t start = Start(index);
  bytes_.insert(bytes_.begin() + static_cast<std::ptrdiff_t>(start), bytes.begin(), bytes.end());
  // The new entry begins where the old one did; then its end and all behind it move on by its length.
  ends_.insert(ends_.begin() + static_cast<std::ptrdiff_t>(index), start);
  for (std::size_t i = index; i < ends_.size(); ++i) ends_[i] += bytes.size();
}

void EntryList::Erase(std::size_t index) {
  const std::size_t start = Start(index);
  const std::size_t length = ends_[index] - start;
  const auto from = bytes_.begin() + static_cast<std::ptrdiff_t>(start);
  bytes_.erase(from, from + static_cast<std::ptrdiff_t>(length));
  ends_.erase(ends_.begin() + static_cast<std::ptrdiff_t>(index));
  for (std::size_t i = index; i < ends_.size(); ++i) ends_[i] -= length;
}

// The new bytes may be longer or shorter: separators of texts differ in length.
void EntryList::Replace(std::size_t index, std::span<const std::uint8_t> bytes) {
  Erase(index);
  Insert(index, bytes);
}

// Of one entry nothing is saved, as the first one is always stored whole. Where entries ascend, the first and the last
// would do; looking at all keeps a page whole whose entries are out of order. A row is never part of the prefix; a
// check remarks on pages where it is.
std::size_t SharedPrefix(const EntryList& entries, EntryRange range) {
  if (range.count < 2) return 0;
  const auto first = entries[range.first];
  std::size_t shared = first.size() - format::index::kEntryRowPointerSize;
  for (std::size_t i = range.first + 1; i < range.first + range.count; ++i) {
    const auto entry = entries[i];
    shared = std::min(shared, entry.size() - format::index::kEntryRowPointerSize);
    shared = static_cast<std::size_t>(std::ranges::mismatch(first.first(shared), entry).in1 - first.begin());
  }
  return shared;
}

std::size_t StoredSize(const EntryList& entries, EntryRange range, std::size_t prefix) {
  std::size_t size = 0;
  for (std::size_t i = range.first; i < range.first + range.count; ++i) size += entries[i].size();
  return range.count < 2 ? size : size - prefix * (range.count - 1);
}

// Whether a stretch fits depends on its own prefix, which gets longer as a stretch gets shorter: parts of a page can
// have more room than the whole.
bool FitsOnLeaf(const EntryList& entries, EntryRange range) {
  return StoredSize(entries, range, SharedPrefix(entries, range)) <= format::index::kEntriesSize;
}

void WriteLeafEntries(Page& page, const EntryList& entries, EntryRange range, std::size_t prefix) {
  EntryWriter writer(page, prefix);
  for (std::size_t i = range.first; i < range.first + range.count; ++i) writer.Add(entries[i]);
  writer.Finish();
}

namespace layout = format::index;

// A leaf here means that a link of a node is wrong: taken for a node its entries would be read as children.
NodeContent::NodeContent(const IndexPage& page) : separators(page) {
  if (page.IsLeaf())
    RaiseDamage("index page " + std::to_string(page.Number()) + " is a leaf where a node page is expected.");
  for (std::size_t offset = 0; offset < page.End();) {
    const EntryPlace place = page.EntryAt(offset);
    children.push_back(page.Child(place));
    offset = place.end;
  }
  if (page.Tail() != 0) {
    children.push_back(page.Tail());
  } else if (separators.Size() > 0) {
    // No tail, as in a damaged file: the last child is the one of the last entry, and has no separator from here on,
    // like every tail. What is written from this content is a sound node.
    separators.Erase(separators.Size() - 1);
  }
}

std::size_t NodeContent::PositionOf(PageNumber child, PageNumber page) const {
  const auto found = std::ranges::find(children, child);
  if (found == children.end())
    RaiseDamage("index page " + std::to_string(page) + " does not lead to page " + std::to_string(child) + ".");
  return static_cast<std::size_t>(found - children.begin());
}

// The separator of a child goes with it. Of the tail, which has none, the one before it goes: it parted the tail from
// the child that takes its place.
std::optional<EntryBytes> NodeContent::Remove(std::size_t position) {
  std::optional<EntryBytes> last;
  children.erase(children.begin() + static_cast<std::ptrdiff_t>(position));
  if (position < separators.Size()) {
    separators.Erase(position);
  } else if (separators.Size() > 0) {
    last = separators.Copy(separators.Size() - 1);
    separators.Erase(separators.Size() - 1);
  }
  return last;
}

void NodeContent::Append(std::span<const std::uint8_t> separator, const NodeContent& other) {
  separators.Append(separator);
  for (std::size_t i = 0; i < other.separators.Size(); ++i) separators.Append(other.separators[i]);
  children.insert(children.end(), other.children.begin(), other.children.end());
}

NodeContent NodeContent::Part(EntryRange range) const {
  NodeContent part;
  const auto first = children.begin() + static_cast<std::ptrdiff_t>(range.first);
  // One separator fewer than children: the one behind the last child is the caller's to keep.
  part.children.assign(first, first + static_cast<std::ptrdiff_t>(range.count));
  for (std::size_t i = 0; i + 1 < range.count; ++i) part.separators.Append(separators[range.first + i]);
  return part;
}

// Nodes are written without a prefix, as Access has them, so that the sizes simply add up. A node of one child takes no
// room at all; whether it may be is another question.
bool NodeContent::Fits(EntryRange range) const {
  if (range.count < 2) return true;
  const std::size_t count = range.count - 1;
  return StoredSize(separators, {range.first, count}, 0) + count * layout::kEntryChildSize <= layout::kEntriesSize;
}

// Mask, prefix and free bytes come from the writer; the links to the neighbours are left as they are, so that a node
// can be rewritten where it stands.
void WriteNode(Page& page, PageNumber table, std::uint8_t level, const NodeContent& content) {
  FormatIndexPage(page, table, level);
  page.SetU32(layout::kTailOffset, content.children.back());
  EntryWriter writer(page, 0);
  for (std::size_t i = 0; i < content.separators.Size(); ++i) writer.Add(content.separators[i], content.children[i]);
  writer.Finish();
}

}  // namespace tavi::access
