#include "access/index/EntryList.h"

#include <algorithm>

#include "access/index/EntryWriter.h"

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

void EntryList::Replace(std::size_t index, std::span<const std::uint8_t> bytes) {
  Erase(index);
  Insert(index, bytes);
}

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

bool FitsOnLeaf(const EntryList& entries, EntryRange range) {
  return StoredSize(entries, range, SharedPrefix(entries, range)) <= format::index::kEntriesSize;
}

void WriteLeafEntries(Page& page, const EntryList& entries, EntryRange range, std::size_t prefix) {
  EntryWriter writer(page, prefix);
  for (std::size_t i = range.first; i < range.first + range.count; ++i) writer.Add(entries[i]);
  writer.Finish();
}

}  // namespace tavi::access
