#include "access/index/IndexPage.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "access/file/EngineError.h"
#include "access/index/EntryWriter.h"

// Entries are read where they lie. Nothing on the page says where the n-th entry is; the mask only says where entries
// end, so a search halves places, not numbers: it takes the byte in the middle, finds the entry around it by the
// nearest set bits, and goes on to the left or right of that entry. A search in a full page takes 12 comparisons at
// most, and decodes nothing.
//
// The stored bytes of every entry but the first lack the prefix of the page; Compare and Decode put it in front. On
// nodes the last 4 bytes are the child, which takes no part in any comparison.
//
// Changes in place (InsertInPlace, RemoveInPlace) move the bytes behind the entry and the bits that go with them, and
// write nothing else. They are for leaves, where nearly all changes are; nodes are laid out anew.

namespace tavi::access {

namespace {

namespace layout = format::index;

[[noreturn]] void RaiseBadPage(const Page& page, const std::string& what) {
  RaiseDamage("index page " + std::to_string(page.Number()) + " " + what);
}

/// As unsigned bytes, and of two texts of which one begins the other the shorter one first. memcmp may not be given the
/// null pointer of an empty span.
std::strong_ordering CompareBytes(std::span<const std::uint8_t> left, std::span<const std::uint8_t> right) {
  const std::size_t common = std::min(left.size(), right.size());
  const int order = common == 0 ? 0 : std::memcmp(left.data(), right.data(), common);
  if (order != 0) return order <=> 0;
  return left.size() <=> right.size();
}

/// Of a page that is changed: the end of its entries, from the free bytes that go with it.
void SetEnd(Page& page, std::size_t end) {
  page.SetU16(layout::kFreeBytesOffset, static_cast<std::uint16_t>(layout::kEntriesSize - end));
}

/// Moves the bytes of the entries from `from` to `end` to `to`.
void MoveEntryBytes(Page& page, std::size_t from, std::size_t end, std::size_t to) {
  page.Put(layout::kEntriesOffset + to, page.Slice(layout::kEntriesOffset + from, end - from));
}

}  // namespace

IndexPage::IndexPage(const Page& page)
    : page_(&page),
      entries_(page.Slice(layout::kEntriesOffset, layout::kEntriesSize)),
      isLeaf_(page.U8(format::kPageTypeOffset) == format::page_type::kIndexLeaf),
      prefix_(page.U16(layout::kPrefixLengthOffset)),
      end_(FindEnd()) {
  // Type first, as everything else is judged by it. What is checked here holds for all calls afterwards: entries end on
  // the page, and the prefix is there to be put in front.
  const std::uint8_t type = page.U8(format::kPageTypeOffset);
  if (!isLeaf_ && type != format::page_type::kIndexNode)
    RaiseBadPage(page, "is no index page: its type is " + std::to_string(type) + ".");
  if (end_ > layout::kEntriesSize)
    RaiseBadPage(page, "has an entry that ends at " + std::to_string(end_) + ", behind the end of the page.");
  if (prefix_ > 0 && end_ > 0 && EntryAt(0).end < prefix_)
    RaiseBadPage(page, "has a prefix of " + std::to_string(prefix_) + " bytes, longer than its first entry.");
}

std::uint64_t IndexPage::MaskWord(std::size_t word) const {
  return LoadMaskWord(*page_, word);
}

// The last bit that is set, from the end of the mask: where the last entry ends. The free bytes say it, too, but the
// mask is what decides, and a check compares the two. Bits behind the end of the page are possible in a damaged one;
// the constructor refuses them.
std::size_t IndexPage::FindEnd() const {
  for (std::size_t word = kMaskWords; word > 0; --word) {
    const std::uint64_t bits = MaskWord(word - 1);
    if (bits != 0) return word * kBitsPerWord - 1 - static_cast<std::size_t>(std::countl_zero(bits));
  }
  return 0;
}

// The nearest set bit that is not behind `offset`, or 0: the start of the first entry has no bit.
std::size_t IndexPage::BoundaryAtOrBefore(std::size_t offset) const {
  std::size_t word = offset / kBitsPerWord;
  std::uint64_t bits = MaskWord(word) & (~std::uint64_t{0} >> (kBitsPerWord - 1 - offset % kBitsPerWord));
  while (bits == 0 && word > 0) bits = MaskWord(--word);
  if (bits == 0) return 0;
  return word * kBitsPerWord + kBitsPerWord - 1 - static_cast<std::size_t>(std::countl_zero(bits));
}

// The nearest set bit behind `offset`. There is one: the end of the last entry.
std::size_t IndexPage::BoundaryAfter(std::size_t offset) const {
  std::size_t word = (offset + 1) / kBitsPerWord;
  std::uint64_t bits = MaskWord(word) & (~std::uint64_t{0} << ((offset + 1) % kBitsPerWord));
  while (bits == 0 && word + 1 < kMaskWords) bits = MaskWord(++word);
  return word * kBitsPerWord + static_cast<std::size_t>(std::countr_zero(bits));
}

EntryPlace IndexPage::EntryAt(std::size_t offset) const {
  const EntryPlace entry{BoundaryAtOrBefore(offset), BoundaryAfter(offset)};
  CheckLength(entry);
  return entry;
}

// Every entry ends with a row, and on nodes with a child. The row may come from the prefix (other programs let it reach
// so far); the child never does, as each entry has its own.
void IndexPage::CheckLength(EntryPlace entry) const {
  const std::size_t length = entry.end - entry.start + (entry.start == 0 ? 0 : prefix_);
  const std::size_t needed = layout::kEntryRowPointerSize + (isLeaf_ ? 0 : layout::kEntryChildSize);
  const bool childIsStored = isLeaf_ || entry.end - entry.start >= layout::kEntryChildSize;
  if (length >= needed && childIsStored) return;
  RaiseBadPage(*page_, "has an entry at " + std::to_string(entry.start) + " of only " + std::to_string(length) +
                           " bytes, too short for a row.");
}

std::strong_ordering IndexPage::Compare(EntryPlace entry, std::span<const std::uint8_t> target) const {
  const std::size_t child = isLeaf_ ? 0 : layout::kEntryChildSize;
  const auto stored = entries_.subspan(entry.start, entry.end - entry.start - child);
  // The first entry holds its own prefix. For the others prefix and rest are compared one after the other, as if they
  // stood together; a target that is no longer than the prefix ends in the first step or is less than the entry.
  if (entry.start == 0 || prefix_ == 0) return CompareBytes(stored, target);
  const auto common = target.first(std::min(prefix_, target.size()));
  const std::strong_ordering order = CompareBytes(entries_.first(prefix_), common);
  return order != 0 ? order : CompareBytes(stored, target.subspan(prefix_));
}

// `low` and `high` are always starts of entries, or the end: all before `low` are less, all from `high` on are not.
// Where entries are out of order, as on a damaged page, it ends all the same, somewhere.
std::size_t IndexPage::LowerBound(std::span<const std::uint8_t> target) const {
  std::size_t low = 0;
  std::size_t high = end_;
  while (low < high) {
    const EntryPlace entry = EntryAt(low + (high - low) / 2);
    if (Compare(entry, target) < 0) {
      low = entry.end;
    } else {
      high = entry.start;
    }
  }
  return low;
}

void IndexPage::Decode(EntryPlace entry, EntryBytes& bytes) const {
  bytes.clear();
  // Into the caller's buffer, which keeps its memory from entry to entry.
  if (entry.start != 0) bytes.assign(entries_.begin(), entries_.begin() + static_cast<std::ptrdiff_t>(prefix_));
  const std::size_t child = isLeaf_ ? 0 : layout::kEntryChildSize;
  const auto stored = entries_.subspan(entry.start, entry.end - entry.start - child);
  bytes.insert(bytes.end(), stored.begin(), stored.end());
}

PageNumber IndexPage::Child(EntryPlace entry) const {
  PageNumber child = 0;
  for (const std::uint8_t byte : entries_.subspan(entry.end - layout::kEntryChildSize, layout::kEntryChildSize))
    child = (child << 8U) | byte;
  return child;
}

PageNumber IndexPage::ChildFor(std::span<const std::uint8_t> target) const {
  const std::size_t offset = LowerBound(target);
  return offset < end_ ? Child(EntryAt(offset)) : LastChild();
}

// Other programs could leave a node without a tail; its last child is then the one of the last entry.
PageNumber IndexPage::LastChild() const {
  if (Tail() != 0) return Tail();
  if (IsEmpty()) RaiseBadPage(*page_, "is a node without children.");
  return Child(EntryAt(end_ - 1));
}

// The last 4 bytes of an entry without its child: page, big-endian like all in entries, and row.
RowPointer RowOfEntry(std::span<const std::uint8_t> bytes) {
  const auto row = bytes.last(layout::kEntryRowPointerSize);
  const PageNumber page = (PageNumber{row[0]} << 16U) | (PageNumber{row[1]} << 8U) | row[2];
  return {page, row[3]};
}

// The header but for the links. The mask is left alone: a new page has none yet, on others EntryWriter writes it, and
// nothing may be read of the page before.
void FormatIndexPage(Page& page, PageNumber table, std::uint8_t level) {
  page.SetU8(format::kPageTypeOffset, level == 0 ? format::page_type::kIndexLeaf : format::page_type::kIndexNode);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
  page.SetU32(layout::kTableOffset, table);
  page.SetU32(layout::kTailOffset, 0);
  page.SetU16(layout::kPrefixLengthOffset, 0);
  page.SetU8(layout::kLevelOffset, level);
  SetEnd(page, 0);
}

// Refuses what would need another layout (no room, a key outside the prefix), so that the caller takes the page apart
// only then. An empty page takes any entry: its old prefix belongs to nobody any more.
bool InsertInPlace(Page& page, std::size_t offset, std::span<const std::uint8_t> bytes) {
  const IndexPage view(page);
  const std::size_t prefix = view.IsEmpty() ? 0 : view.PrefixLength();
  const std::size_t end = view.End();
  if (prefix > 0) {
    if (bytes.size() < prefix + layout::kEntryRowPointerSize) return false;
    if (!std::ranges::equal(bytes.first(prefix), page.Slice(layout::kEntriesOffset, prefix))) return false;
  }
  // Behind a new first entry the old one loses the prefix (the new one is written over it); otherwise the new one is
  // stored without it.
  const auto stored = offset == 0 ? bytes : bytes.subspan(prefix);
  // In both cases the page grows by the entry without a prefix: the new first entry brings one, the old one gives its
  // own up.
  const std::size_t growth = bytes.size() - prefix;
  if (end + growth > layout::kEntriesSize) return false;
  MoveEntryBytes(page, offset, end, offset + growth);
  page.Put(layout::kEntriesOffset + offset, stored);
  EntryMask mask(page);
  // An end at `offset` is that of the entry before and stays; then the end of the new entry itself.
  mask.MoveUp(offset, growth);
  mask.Set(offset + stored.size());
  mask.Store(page);
  if (view.PrefixLength() != prefix) page.SetU16(layout::kPrefixLengthOffset, static_cast<std::uint16_t>(prefix));
  SetEnd(page, end + growth);
  return true;
}

// The prefix of the page stays, even where those that are left share more: it still holds for them, and entries that
// come fit as well as before.
void RemoveInPlace(Page& page, EntryPlace entry) {
  const IndexPage view(page);
  const std::size_t end = view.End();
  EntryMask mask(page);
  if (entry.start == 0 && entry.end == end) {
    EntryMask().Store(page);
    page.SetU16(layout::kPrefixLengthOffset, 0);
    SetEnd(page, 0);
    return;
  }
  // A new first entry gets the prefix of the old one, whose first bytes are left where they are.
  const std::size_t start = entry.start == 0 ? view.PrefixLength() : entry.start;
  MoveEntryBytes(page, entry.end, end, start);
  mask.Clear(entry.end);
  // First the end of the entry itself, which falls away; the ends behind it then come down over the gap.
  mask.MoveDown(entry.end, entry.end - start);
  mask.Store(page);
  SetEnd(page, end - (entry.end - start));
}

}  // namespace tavi::access
