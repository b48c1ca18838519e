#include "access/index/IndexPage.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

#include "access/file/EngineError.h"
#include "access/index/EntryWriter.h"

namespace tavi::access {

namespace {

namespace layout = format::index;

[[noreturn]] void RaiseBadPage(const Page& page, const std::string& what) {
  RaiseDamage("index page " + std::to_string(page.Number()) + " " + what);
}

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

std::size_t IndexPage::FindEnd() const {
  for (std::size_t word = kMaskWords; word > 0; --word) {
    const std::uint64_t bits = MaskWord(word - 1);
    if (bits != 0) return word * kBitsPerWord - 1 - static_cast<std::size_t>(std::countl_zero(bits));
  }
  return 0;
}

std::size_t IndexPage::BoundaryAtOrBefore(std::size_t offset) const {
  std::size_t word = offset / kBitsPerWord;
  std::uint64_t bits = MaskWord(word) & (~std::uint64_t{0} >> (kBitsPerWord - 1 - offset % kBitsPerWord));
  while (bits == 0 && word > 0) bits = MaskWord(--word);
  if (bits == 0) return 0;
  return word * kBitsPerWord + kBitsPerWord - 1 - static_cast<std::size_t>(std::countl_zero(bits));
}

// There is one: the end of the last entry.
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
  if (entry.start == 0 || prefix_ == 0) return CompareBytes(stored, target);
  const auto common = target.first(std::min(prefix_, target.size()));
  const std::strong_ordering order = CompareBytes(entries_.first(prefix_), common);
  return order != 0 ? order : CompareBytes(stored, target.subspan(prefix_));
}

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

PageNumber IndexPage::LastChild() const {
  if (Tail() != 0) return Tail();
  if (IsEmpty()) RaiseBadPage(*page_, "is a node without children.");
  return Child(EntryAt(end_ - 1));
}

RowPointer RowOfEntry(std::span<const std::uint8_t> bytes) {
  const auto row = bytes.last(layout::kEntryRowPointerSize);
  const PageNumber page = (PageNumber{row[0]} << 16U) | (PageNumber{row[1]} << 8U) | row[2];
  return {page, row[3]};
}

void FormatIndexPage(Page& page, PageNumber table, std::uint8_t level) {
  page.SetU8(format::kPageTypeOffset, level == 0 ? format::page_type::kIndexLeaf : format::page_type::kIndexNode);
  page.SetU8(format::kPageMarkOffset, format::kPageMark);
  page.SetU32(layout::kTableOffset, table);
  page.SetU32(layout::kTailOffset, 0);
  page.SetU16(layout::kPrefixLengthOffset, 0);
  page.SetU8(layout::kLevelOffset, level);
  SetEnd(page, 0);
}

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
  const std::size_t growth = bytes.size() - prefix;
  if (end + growth > layout::kEntriesSize) return false;
  MoveEntryBytes(page, offset, end, offset + growth);
  page.Put(layout::kEntriesOffset + offset, stored);
  EntryMask mask(page);
  mask.MoveUp(offset, growth);
  mask.Set(offset + stored.size());
  mask.Store(page);
  if (view.PrefixLength() != prefix) page.SetU16(layout::kPrefixLengthOffset, static_cast<std::uint16_t>(prefix));
  SetEnd(page, end + growth);
  return true;
}

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
  // A new first entry gets the prefix of the old one.
  const std::size_t start = entry.start == 0 ? view.PrefixLength() : entry.start;
  MoveEntryBytes(page, entry.end, end, start);
  mask.Clear(entry.end);
  mask.MoveDown(entry.end, entry.end - start);
  mask.Store(page);
  SetEnd(page, end - (entry.end - start));
}

}  // namespace tavi::access
