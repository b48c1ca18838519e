#include "access/table/TableRows.h"

#include <algorithm>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/UsageMap.h"
#include "access/table/DataPage.h"
#include "access/table/LongValues.h"
#include "access/table/RowBytes.h"
#include "access/table/TextEncoding.h"
#include "access/table/ValueCodec.h"

namespace tavi::access {
namespace {

namespace d = format::data;

/// A page with less room than this takes no typical row and leaves the free-space map.
constexpr std::size_t kLeastUsefulRoom = 60;

/// Where a row's bytes are: its own place, or the one that it was moved to.
struct Place {
  RowPointer row;
  std::vector<std::uint8_t> bytes;
};

bool IsRowOfItsOwn(std::uint16_t flags) {
  return flags == d::kRowNormal || flags == d::kRowMoved;
}

std::string Describe(RowPointer row) {
  return "row " + std::to_string(row.row) + " of page " + std::to_string(row.page);
}

std::optional<Place> FindRow(Pager& pager, const TableDefinition& definition, RowPointer row) {
  if (row.page == 0 || row.page >= pager.PageCount()) return std::nullopt;
  const PageHandle page = pager.Read(row.page);
  if (page->U8(format::kPageTypeOffset) != format::page_type::kData) return std::nullopt;
  const DataPageView view(*page);
  if (view.Owner() != definition.page || row.row >= view.RowCount() || !IsRowOfItsOwn(view.Flags(row.row)))
    return std::nullopt;
  const auto bytes = view.RowBytes(row.row);
  if (view.Flags(row.row) == d::kRowNormal) return Place{row, {bytes.begin(), bytes.end()}};
  if (bytes.size() < format::row::kRowPointerSize) RaiseDamage("The moved " + Describe(row) + " does not say where to");
  const RowPointer target = RowPointer::FromPacked(GetLittle<std::uint32_t>(bytes, 0));
  const PageHandle targetPage = pager.Read(target.page);
  const DataPageView targetView(*targetPage);
  if (target.row >= targetView.RowCount() || targetView.Flags(target.row) != d::kRowMovedTarget ||
      targetView.Owner() != definition.page) {
    RaiseDamage("The moved " + Describe(row) + " leads to " + Describe(target) + ", which is no moved row");
  }
  const auto moved = targetView.RowBytes(target.row);
  return Place{target, {moved.begin(), moved.end()}};
}

Place RequireRow(Pager& pager, const TableDefinition& definition, RowPointer row) {
  std::optional<Place> place = FindRow(pager, definition, row);
  if (!place) RaiseFailure("Record is deleted: there is no " + Describe(row) + " any more.");
  return std::move(*place);
}

/// Chooses a page with room and adds the bytes there.
RowPointer AddToSomePage(Pager& pager, const TableDefinition& definition, std::span<const std::uint8_t> bytes,
                         std::uint16_t flags) {
  UsageMap freeSpace(pager, definition.freeSpacePages);
  const std::vector<PageNumber> candidates = freeSpace.Pages();
  for (auto candidate = candidates.rbegin(); candidate != candidates.rend(); ++candidate) {
    const PageHandle handle = pager.Read(*candidate);
    if (handle->U8(format::kPageTypeOffset) != format::page_type::kData ||
        handle->U32(d::kOwnerOffset) != definition.page) {
      RaiseDamage("Page " + std::to_string(*candidate) +
                  " is listed as free space of a table that it does not belong to");
    }
    Page& page = pager.Write(*candidate);
    if (DataPageEditor(page).HasRoom(bytes.size())) return {*candidate, DataPageEditor(page).Add(bytes, flags)};
    const DataPageView view(page);
    if (view.FreeBytes() < kLeastUsefulRoom || view.RowCount() >= d::kMaximumRowCount) freeSpace.Remove(*candidate);
  }
  Page& page = PageAllocator(pager).Allocate();
  const PageNumber number = page.Number();
  DataPageEditor::Format(page, definition.page);
  UsageMap(pager, definition.ownedPages).Add(number);
  freeSpace.Add(number);
  return {number, DataPageEditor(pager.Write(number)).Add(bytes, flags)};
}

void DeletePlace(Pager& pager, const TableDefinition& definition, RowPointer row) {
  DataPageEditor(pager.Write(row.page)).Delete(row.row);
  UsageMap freeSpace(pager, definition.freeSpacePages);
  if (!freeSpace.Contains(row.page)) freeSpace.Add(row.page);
}

Value DecodeLongValue(const LongValueStore& store, std::span<const std::uint8_t> descriptor,
                      const ColumnDefinition& column) {
  const std::vector<std::uint8_t> data = store.Read(descriptor);
  if (column.type == ColumnType::Memo) return DecodeText(data);
  return Bytes(data);
}

Value DecodeColumn(const RowView& row, const LongValueStore& store, const ColumnDefinition& column) {
  if (column.type == ColumnType::Boolean) return row.HasBit(column.id);
  const auto bytes = row.ValueBytes(column);
  if (!bytes) return Null{};
  if (!column.IsLongValue()) return DecodeValue(*bytes, column);
  if (bytes->empty()) return column.type == ColumnType::Memo ? Value(std::string()) : Value(Bytes());
  return DecodeLongValue(store, *bytes, column);
}

/// Stores a row's values as column bytes; long values that equal those of the old row keep their place, others are
/// freed.
class RowEncoder {
 public:
  RowEncoder(Pager& pager, const TableDefinition& definition) : definition_(definition), store_(pager, definition) {}

  std::vector<ColumnBytes> Encode(const RowValues& values, const RowView* old) {
    std::vector<ColumnBytes> columns;
    for (std::size_t i = 0; i < values.size(); ++i)
      columns.push_back(EncodeColumn(values[i], definition_.columns[i], old));
    return columns;
  }

 private:
  ColumnBytes EncodeColumn(const Value& value, const ColumnDefinition& column, const RowView* old) {
    if (column.IsLongValue()) return EncodeLongValue(value, column, old);
    if (IsNull(value)) return {};
    if (column.type == ColumnType::Boolean) return {std::get<bool>(value), {}};
    return {true, EncodeValue(value, column)};
  }

  ColumnBytes EncodeLongValue(const Value& value, const ColumnDefinition& column, const RowView* old) {
    const auto oldDescriptor = old == nullptr ? std::nullopt : old->ValueBytes(column);
    const bool stored = oldDescriptor && !oldDescriptor->empty();
    if (stored && !IsNull(value) && DecodeLongValue(store_, *oldDescriptor, column) == value) {
      return {true, {oldDescriptor->begin(), oldDescriptor->end()}};
    }
    if (stored) store_.Free(column, *oldDescriptor);
    if (IsNull(value)) return {};
    if (column.type == ColumnType::Memo) {
      const auto& text = std::get<std::string>(value);
      return {true, store_.Write(column, EncodeMemo(text, column), 2 * StoredLength(text))};
    }
    const Bytes& bytes = std::get<Bytes>(value);
    return {true, store_.Write(column, bytes, bytes.size())};
  }

  const TableDefinition& definition_;
  LongValueStore store_;
};

}  // namespace

RowPointer TableRows::Insert(const RowValues& values) {
  const std::vector<std::uint8_t> bytes =
      AssembleRow(*definition_, RowEncoder(*pager_, *definition_).Encode(values, nullptr));
  const RowPointer row = AddToSomePage(*pager_, *definition_, bytes, d::kRowNormal);
  SetRowCount(*pager_, *definition_, RowCount(*pager_, *definition_) + 1);
  return row;
}

void TableRows::Update(RowPointer row, const RowValues& values) {
  const Place place = RequireRow(*pager_, *definition_, row);
  const RowView old(place.bytes, definition_->variableColumnCounter > 0);
  const std::vector<std::uint8_t> bytes =
      AssembleRow(*definition_, RowEncoder(*pager_, *definition_).Encode(values, &old));
  if (bytes == place.bytes) return;
  const bool isMoved = place.row != row;
  if (DataPageEditor(pager_->Write(place.row.page)).CanResize(place.row.row, bytes.size())) {
    DataPageEditor(pager_->Write(place.row.page))
        .Replace(place.row.row, bytes, isMoved ? d::kRowMovedTarget : d::kRowNormal);
    return;
  }
  if (isMoved) DeletePlace(*pager_, *definition_, place.row);
  // The stub must not be chosen as the target's page before it has become small.
  std::vector<std::uint8_t> stub(format::row::kRowPointerSize);
  DataPageEditor(pager_->Write(row.page)).Replace(row.row, stub, d::kRowMoved);
  const RowPointer target = AddToSomePage(*pager_, *definition_, bytes, d::kRowMovedTarget);
  PutLittle<std::uint32_t>(stub, 0, target.Packed());
  DataPageEditor(pager_->Write(row.page)).Replace(row.row, stub, d::kRowMoved);
}

void TableRows::Delete(RowPointer row) {
  const Place place = RequireRow(*pager_, *definition_, row);
  const RowView view(place.bytes, definition_->variableColumnCounter > 0);
  LongValueStore store(*pager_, *definition_);
  for (const ColumnDefinition& column : definition_->columns) {
    if (!column.IsLongValue()) continue;
    const auto descriptor = view.ValueBytes(column);
    if (descriptor && !descriptor->empty()) store.Free(column, *descriptor);
  }
  if (place.row != row) DeletePlace(*pager_, *definition_, place.row);
  DeletePlace(*pager_, *definition_, row);
  const std::uint32_t count = RowCount(*pager_, *definition_);
  SetRowCount(*pager_, *definition_, count > 0 ? count - 1 : 0);
}

bool TableRows::Exists(RowPointer row) const {
  return FindRow(*pager_, *definition_, row).has_value();
}

RowValues TableRows::Read(RowPointer row) const {
  return Read(row, std::vector<bool>(definition_->columns.size(), true));
}

RowValues TableRows::Read(RowPointer row, const std::vector<bool>& wanted) const {
  const Place place = RequireRow(*pager_, *definition_, row);
  const RowView view(place.bytes, definition_->variableColumnCounter > 0);
  const LongValueStore store(*pager_, *definition_);
  RowValues values(definition_->columns.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (wanted[i]) values[i] = DecodeColumn(view, store, definition_->columns[i]);
  }
  return values;
}

std::optional<RowPointer> TableRows::Next(std::optional<RowPointer> after) const {
  const UsageMap owned(*pager_, definition_->ownedPages);
  std::size_t row = after ? after->row + std::size_t{1} : 0;
  std::optional<PageNumber> number = after ? std::optional(after->page) : owned.Next(1);
  for (; number; number = owned.Next(*number + 1), row = 0) {
    const PageHandle page = pager_->Read(*number);
    const DataPageView view(*page);
    for (; row < view.RowCount(); ++row) {
      if (IsRowOfItsOwn(view.Flags(row))) return RowPointer{*number, static_cast<std::uint8_t>(row)};
    }
  }
  return std::nullopt;
}

void TableRows::Walk(const std::function<bool(RowPointer)>& visit) const {
  for (const PageNumber number : UsageMap(*pager_, definition_->ownedPages).Pages()) {
    const PageHandle page = pager_->Read(number);
    const DataPageView view(*page);
    for (std::size_t row = 0; row < view.RowCount(); ++row) {
      if (IsRowOfItsOwn(view.Flags(row)) && !visit({number, static_cast<std::uint8_t>(row)})) return;
    }
  }
}

void TableRows::RemoveAll() {
  PageAllocator allocator(*pager_);
  const auto empty = [&](RowPointer ownedRow, RowPointer freeRow) {
    if (ownedRow.IsNone()) return;
    UsageMap owned(*pager_, ownedRow);
    for (const PageNumber page : owned.Pages()) {
      owned.Remove(page);
      if (!freeRow.IsNone()) UsageMap(*pager_, freeRow).Remove(page);
      allocator.Free(page);
    }
  };
  empty(definition_->ownedPages, definition_->freeSpacePages);
  for (const LongValueMaps& maps : definition_->longValueMaps) empty(maps.ownedPages, maps.freeSpacePages);
  SetRowCount(*pager_, *definition_, 0);
}

void TableRows::RemoveLongValues(std::uint16_t columnId) {
  for (const LongValueMaps& maps : definition_->longValueMaps) {
    if (maps.columnId != columnId || maps.ownedPages.IsNone()) continue;
    UsageMap owned(*pager_, maps.ownedPages);
    for (const PageNumber page : owned.Pages()) {
      owned.Remove(page);
      if (!maps.freeSpacePages.IsNone()) UsageMap(*pager_, maps.freeSpacePages).Remove(page);
      PageAllocator(*pager_).Free(page);
    }
  }
}

}  // namespace tavi::access
