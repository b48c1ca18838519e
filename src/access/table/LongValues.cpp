#include "access/table/LongValues.h"

#include <algorithm>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/table/DataPage.h"
#include "access/table/TextEncoding.h"

namespace tavi::access {
namespace {

namespace v = format::long_value;

struct Descriptor {
  std::uint32_t length = 0;
  std::uint32_t form = 0;
  RowPointer first;
};

Descriptor ParseDescriptor(std::span<const std::uint8_t> bytes) {
  if (bytes.size() < v::kDescriptorSize) {
    RaiseDamage("A long value's descriptor has " + std::to_string(bytes.size()) + " bytes instead of 12");
  }
  const auto lengthAndForm = GetLittle<std::uint32_t>(bytes, v::kLengthOffset);
  return {lengthAndForm & v::kLengthMask, lengthAndForm & v::kFormMask,
          RowPointer::FromPacked(GetLittle<std::uint32_t>(bytes, v::kPointerOffset))};
}

std::vector<std::uint8_t> MakeDescriptor(std::size_t length, std::uint32_t form, RowPointer first) {
  std::vector<std::uint8_t> bytes(v::kDescriptorSize);
  PutLittle<std::uint32_t>(bytes, v::kLengthOffset, static_cast<std::uint32_t>(length) | form);
  PutLittle<std::uint32_t>(bytes, v::kPointerOffset, first.Packed());
  return bytes;
}

/// A row of a long-value page, copied.
std::vector<std::uint8_t> LongValueRow(Pager& pager, RowPointer row) {
  const PageHandle page = pager.Read(row.page);
  const DataPageView view(*page);
  const bool usable = view.Owner() == format::data::kOwnerLongValues && row.row < view.RowCount() &&
                      view.Flags(row.row) != format::data::kRowDeleted;
  if (!usable) {
    RaiseDamage("A long value leads to row " + std::to_string(row.row) + " of page " + std::to_string(row.page) +
                ", which holds none");
  }
  const auto bytes = view.RowBytes(row.row);
  return {bytes.begin(), bytes.end()};
}

}  // namespace

std::vector<std::uint8_t> EncodeMemo(const std::string& text, const ColumnDefinition& column) {
  const std::vector<std::uint8_t> plain = EncodePlainText(text);
  const bool compress =
      plain.size() <= v::kMaximumInlineSize || (column.IsCompressed() && plain.size() <= v::kMaximumSingleSize);
  return compress ? EncodeText(text, true) : plain;
}

std::vector<std::uint8_t> LongValueStore::Read(std::span<const std::uint8_t> bytes) const {
  const Descriptor descriptor = ParseDescriptor(bytes);
  if (descriptor.form == v::kFormInline) {
    const auto data = bytes.subspan(v::kDescriptorSize);
    if (descriptor.length > data.size()) RaiseDamage("A long value in a row is longer than the row");
    return {data.begin(), data.begin() + descriptor.length};
  }
  std::vector<std::uint8_t> data;
  if (descriptor.form == v::kFormSingle) {
    data = LongValueRow(pager_, descriptor.first);
    if (data.size() < descriptor.length) RaiseDamage("A long value is shorter than its descriptor says");
  } else {
    for (RowPointer next = descriptor.first; data.size() < descriptor.length;) {
      if (next.IsNone()) RaiseDamage("A long value's chain of pages ends too early");
      const std::vector<std::uint8_t> row = LongValueRow(pager_, next);
      if (row.size() <= v::kChainPointerSize)
        RaiseDamage("Page " + std::to_string(next.page) + " of a long value is empty");
      data.insert(data.end(), row.begin() + v::kChainPointerSize, row.end());
      next = RowPointer::FromPacked(GetLittle<std::uint32_t>(row, 0));
    }
  }
  data.resize(descriptor.length);
  return data;
}

std::vector<std::uint8_t> LongValueStore::Write(const ColumnDefinition& column, std::span<const std::uint8_t> data,
                                                std::size_t plainSize) {
  if (plainSize <= v::kMaximumInlineSize) {
    std::vector<std::uint8_t> bytes = MakeDescriptor(data.size(), v::kFormInline, {});
    bytes.insert(bytes.end(), data.begin(), data.end());
    return bytes;
  }
  if (data.size() > v::kLengthMask) RaiseFailure("The value for column " + column.name + " is longer than 1 GB.");
  const LongValueMaps maps = MapsOf(column);
  if (plainSize <= v::kMaximumSingleSize) return MakeDescriptor(data.size(), v::kFormSingle, WriteSingle(maps, data));
  return MakeDescriptor(data.size(), v::kFormChain, WriteChain(maps, data));
}

LongValueMaps LongValueStore::MapsOf(const ColumnDefinition& column) const {
  const auto found = std::find_if(definition_.longValueMaps.begin(), definition_.longValueMaps.end(),
                                  [&](const LongValueMaps& maps) { return maps.columnId == column.id; });
  if (found != definition_.longValueMaps.end() && !found->ownedPages.IsNone() && !found->freeSpacePages.IsNone()) {
    return *found;
  }
  // Some programs leave a column without maps until it needs a page. The stored definition may have them by now.
  TableDefinition stored = ReadTableDefinition(pager_, definition_.page);
  for (LongValueMaps& maps : stored.longValueMaps) {
    if (maps.columnId != column.id) continue;
    PageAllocator allocator(pager_);
    const PageNumber near = stored.ownedPages.page;
    const bool complete = !maps.ownedPages.IsNone() && !maps.freeSpacePages.IsNone();
    if (maps.ownedPages.IsNone()) maps.ownedPages = allocator.AddUsageMap(near);
    if (maps.freeSpacePages.IsNone()) maps.freeSpacePages = allocator.AddUsageMap(near);
    if (!complete) WriteTableDefinition(pager_, stored, true);
    return maps;
  }
  RaiseDamage("The definition at page " + std::to_string(definition_.page) + " has no map record for column " +
              column.name);
}

Page& LongValueStore::NewPage(const LongValueMaps& maps) {
  Page& page = PageAllocator(pager_).Allocate();
  DataPageEditor::Format(page, format::data::kOwnerLongValues);
  UsageMap(pager_, maps.ownedPages).Add(page.Number());
  return pager_.Write(page.Number());
}

RowPointer LongValueStore::WriteSingle(const LongValueMaps& maps, std::span<const std::uint8_t> data) {
  UsageMap freeSpace(pager_, maps.freeSpacePages);
  const std::vector<PageNumber> candidates = freeSpace.Pages();
  for (auto candidate = candidates.rbegin(); candidate != candidates.rend(); ++candidate) {
    Page& page = pager_.Write(*candidate);
    if (DataPageEditor(page).HasRoom(data.size()))
      return {*candidate, DataPageEditor(page).Add(data, format::data::kRowNormal)};
    freeSpace.Remove(*candidate);
  }
  Page& page = NewPage(maps);
  freeSpace.Add(page.Number());
  return {page.Number(), DataPageEditor(pager_.Write(page.Number())).Add(data, format::data::kRowNormal)};
}

RowPointer LongValueStore::WriteChain(const LongValueMaps& maps, std::span<const std::uint8_t> data) {
  std::vector<PageNumber> pages;
  for (std::size_t stored = 0; stored < data.size(); stored += v::kChainDataSize)
    pages.push_back(NewPage(maps).Number());
  for (std::size_t i = 0; i < pages.size(); ++i) {
    const auto chunk =
        data.subspan(i * v::kChainDataSize, std::min(v::kChainDataSize, data.size() - i * v::kChainDataSize));
    std::vector<std::uint8_t> row(v::kChainPointerSize);
    const RowPointer next = i + 1 < pages.size() ? RowPointer{pages[i + 1], 0} : RowPointer{};
    PutLittle<std::uint32_t>(row, 0, next.Packed());
    row.insert(row.end(), chunk.begin(), chunk.end());
    DataPageEditor(pager_.Write(pages[i])).Add(row, format::data::kRowNormal);
  }
  return {pages.front(), 0};
}

void LongValueStore::Free(const ColumnDefinition& column, std::span<const std::uint8_t> bytes) {
  const Descriptor descriptor = ParseDescriptor(bytes);
  if (descriptor.form == v::kFormInline || descriptor.first.IsNone()) return;
  const LongValueMaps maps = MapsOf(column);
  if (descriptor.form == v::kFormSingle) return FreeRow(maps, descriptor.first);
  std::size_t freed = 0;
  for (RowPointer next = descriptor.first; !next.IsNone() && freed < descriptor.length;) {
    const std::vector<std::uint8_t> row = LongValueRow(pager_, next);
    if (row.size() <= v::kChainPointerSize)
      RaiseDamage("Page " + std::to_string(next.page) + " of a long value is empty");
    FreeRow(maps, next);
    freed += row.size() - v::kChainPointerSize;
    next = RowPointer::FromPacked(GetLittle<std::uint32_t>(row, 0));
  }
}

void LongValueStore::FreeRow(const LongValueMaps& maps, RowPointer row) {
  Page& page = pager_.Write(row.page);
  DataPageEditor(page).Delete(row.row);
  const DataPageView view(page);
  bool empty = true;
  for (std::size_t i = 0; i < view.RowCount(); ++i) empty = empty && view.Flags(i) == format::data::kRowDeleted;
  UsageMap freeSpace(pager_, maps.freeSpacePages);
  if (!empty) return freeSpace.Add(row.page);
  freeSpace.Remove(row.page);
  UsageMap(pager_, maps.ownedPages).Remove(row.page);
  page.SetU8(format::kPageTypeOffset, format::page_type::kReleasedData);
  PageAllocator(pager_).Free(row.page);
}

}  // namespace tavi::access
