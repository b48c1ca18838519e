#include <algorithm>
#include <bit>
#include <span>
#include <string>

#include "access/file/Bytes.h"
#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/file/PageAllocator.h"
#include "access/table/TableRows.h"
#include "access/table/ValueCodec.h"

// Storing and changing rows, in an order that leaves nothing behind when a row is refused. First the row is laid out as
// it will be, with long values only measured: all that can be wrong with values (types, lengths, a row that is too
// long) shows there, and no page has been touched. Then long values are stored, which tells their places, and the row
// is laid out again with these; its length is the same. Only then it goes to a page.
//
// A row that is changed keeps its place as its name. If its page cannot take it any more, the body goes elsewhere and
// the place holds a pointer; entries of indexes need not be touched.

namespace tavi::access {

namespace {

namespace data = format::data;

/// The MEMO and OLE values of a row on their way into it, by position in TableDefinition::columns.
struct LongValuePlan {
  explicit LongValuePlan(std::size_t columnCount) : toStore(columnCount), inRow(columnCount) {}

  void Store(std::size_t position, const Value& value, const ColumnDefinition& column) {
    toStore[position] = PrepareLongValue(value, column);
    inRow[position].resize(toStore[position]->SizeInRow());
  }

  std::vector<std::optional<PreparedLongValue>> toStore;  // nothing for a null, a value that stays, another type
  std::vector<Bytes> inRow;  // what the row will hold; until a value is stored as many bytes as that will be
};

// Floating-point values are the same when their bits are: -0 is equal to 0, and stored differently; a value that is
// equal to nothing, not to itself, would be written again each time.
bool IsSameStored(const Value& left, const Value& right) {
  if (left.index() != right.index()) return false;
  if (const auto* number = std::get_if<double>(&left)) {
    return std::bit_cast<std::uint64_t>(*number) == std::bit_cast<std::uint64_t>(std::get<double>(right));
  }
  if (const auto* date = std::get_if<Date>(&left)) {
    return std::bit_cast<std::uint64_t>(date->days) == std::bit_cast<std::uint64_t>(std::get<Date>(right).days);
  }
  if (const auto* number = std::get_if<float>(&left)) {
    return std::bit_cast<std::uint32_t>(*number) == std::bit_cast<std::uint32_t>(std::get<float>(right));
  }
  return left == right;
}

Bytes PointerBytes(RowPointer body) {
  Bytes pointer(format::row::kRowPointerSize);
  PutLittle(std::span(pointer), 0, body.Packed());
  return pointer;
}

// The count may be wrong in files of other programs; it never falls below zero.
void CountRow(Pager& pager, const TableDefinition& definition, bool isAdded) {
  Page& page = pager.Write(definition.page);
  const std::uint32_t count = page.U32(format::table::kRowCountOffset);
  if (!isAdded && count == 0) return;
  page.SetU32(format::table::kRowCountOffset, isAdded ? count + 1 : count - 1);
}

const LongValueMaps* FindMaps(const TableDefinition& definition, std::uint16_t columnId) {
  const auto found = std::ranges::find(definition.longValueMaps, columnId, &LongValueMaps::columnId);
  return found == definition.longValueMaps.end() ? nullptr : &*found;
}

// A column can have a record with one map or none: in files of Access, and where a column is new here.
bool IsComplete(const LongValueMaps& maps) {
  return !maps.ownedPages.IsNone() && !maps.freeSpacePages.IsNone();
}

}  // namespace

RowSpace TableRows::Space() const {
  return {*pager_, definition_->page, definition_->ownedPages, definition_->freeSpacePages};
}

RowPointer TableRows::Insert(const RowValues& values) {
  RequireValuePerColumn(*definition_, values);
  LongValuePlan plan(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const ColumnDefinition& column = definition_->columns[i];
    if (column.IsLongValue() && !IsNull(values[i])) plan.Store(i, values[i], column);
  }
  // Encoded before anything is written, so that a refusal leaves no trace.
  Bytes bytes = EncodeRow(*definition_, values, plan.inRow);
  bool hasStored = false;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!plan.toStore[i]) continue;
    plan.inRow[i] = StoreLongValue(*plan.toStore[i], definition_->columns[i].id);
    hasStored = true;
  }
  if (hasStored) bytes = EncodeRow(*definition_, values, plan.inRow);
  const RowPointer row = Space().Insert(bytes, data::kRowNormal, lastInserted_);
  lastInserted_ = row.page;
  CountRow(*pager_, *definition_, true);
  return row;
}

void TableRows::Update(RowPointer row, const RowValues& values, const RowValues* before) {
  RequireValuePerColumn(*definition_, values);
  const FoundRow found = Require(row);
  const RowView view(found.bytes, Version(), row);
  LongValuePlan plan(values.size());
  std::vector<std::size_t> changed;
  std::vector<std::size_t> replaced;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const ColumnDefinition& column = definition_->columns[i];
    // Long values are compared as well, which reads them: a value that did not change keeps its place, and a program
    // that writes back all fields of a record stores none of them anew.
    const bool isSame = IsSameStored(before != nullptr ? (*before)[i] : ReadValue(view, column, row), values[i]);
    if (!isSame) changed.push_back(i);
    if (!column.IsLongValue()) continue;
    if (!isSame) replaced.push_back(i);
    if (IsNull(values[i])) continue;
    // The descriptor is taken over as it stands.
    if (isSame) {
      const Stored kept = view.Stored(column);
      plan.inRow[i].assign(kept.begin(), kept.end());
    } else {
      plan.Store(i, values[i], column);
    }
  }
  if (changed.empty() || PatchInPlace(found, view, values, changed)) return;
  Bytes bytes = EncodeRow(*definition_, values, plan.inRow);
  for (const std::size_t i : replaced) {
    const ColumnDefinition& column = definition_->columns[i];
    // The new value comes before the old one goes, so that the old one's pages are not taken for the new one while the
    // row still refers to them. `view` shows the row as it was read, whatever is written meanwhile.
    if (plan.toStore[i]) plan.inRow[i] = StoreLongValue(*plan.toStore[i], column.id);
    if (!view.IsNull(column) && LongValues::IsElsewhere(view.Stored(column))) {
      LongValues(*pager_, Version()).Remove(view.Stored(column), MapsOf(column.id));
    }
  }
  if (!replaced.empty()) bytes = EncodeRow(*definition_, values, plan.inRow);
  ReplaceBytes(row, found.body, bytes);
}

// Numbers and dates that were there before have their bytes where they are; nothing else of the row or page changes.
bool TableRows::PatchInPlace(const FoundRow& found, const RowView& view, const RowValues& values,
                             const std::vector<std::size_t>& changed) {
  if (view.ColumnCount() != definition_->columnIdCounter) return false;  // older than the table is now
  std::vector<std::pair<std::size_t, Bytes>> patches;
  for (const std::size_t i : changed) {
    const ColumnDefinition& column = definition_->columns[i];
    const bool isInPlace = column.IsFixed() && column.type != ColumnType::Boolean && !column.IsLongValue();
    if (!isInPlace || IsNull(values[i]) || view.IsNull(column)) return false;
    const Stored stored = view.Stored(column);
    Bytes bytes = EncodeValue(values[i], column);
    if (bytes.size() != stored.size()) return false;
    patches.emplace_back(stored.data() - found.page->All().data(), std::move(bytes));
  }
  Page& page = pager_->Write(found.body.page);
  for (const auto& [offset, bytes] : patches) page.Put(offset, bytes);
  return true;
}

// In its own place, or back there if it was moved; else where it was moved to; else somewhere new. So there is never a
// pointer to a pointer, and a row that shrinks comes home. The old body goes last.
void TableRows::ReplaceBytes(RowPointer row, RowPointer body, const Bytes& bytes) {
  RowSpace space = Space();
  const bool wasMoved = body != row;
  if (space.TryReplace(row, bytes, data::kRowNormal)) {
    if (wasMoved) space.Delete(body);
    return;
  }
  if (wasMoved && space.TryReplace(body, bytes, data::kRowMovedTarget)) return;
  const RowPointer next = space.Insert(bytes, data::kRowMovedTarget, lastInserted_);
  // Every row has 4 bytes at least, so there is room for the pointer, unless another program wrote a shorter one on a
  // page without any room.
  if (!space.TryReplace(row, PointerBytes(next), data::kRowMoved)) {
    RaiseDamage("row " + std::to_string(row.row) + " of page " + std::to_string(row.page) +
                " is too short to say where it was moved to.");
  }
  if (wasMoved) space.Delete(body);
}

// What the row owns goes before the row itself, which is the only way to it.
void TableRows::Delete(RowPointer row) {
  const FoundRow found = Require(row);
  const RowView view(found.bytes, Version(), row);
  for (const ColumnDefinition& column : definition_->columns) {
    if (!column.IsLongValue() || view.IsNull(column) || !LongValues::IsElsewhere(view.Stored(column))) continue;
    LongValues(*pager_, Version()).Remove(view.Stored(column), MapsOf(column.id));
  }
  RowSpace space = Space();
  if (found.body != row) space.Delete(found.body);
  space.Delete(row);
  CountRow(*pager_, *definition_, false);
}

void TableRows::RemoveAll() {
  Space().ReleaseAll();
  for (const ColumnDefinition& column : definition_->columns) {
    if (column.IsLongValue()) RemoveLongValues(column.id);
  }
  SetRowCount(*pager_, *definition_, 0);
  lastInserted_ = 0;
}

void TableRows::RemoveLongValues(std::uint16_t columnId) {
  const LongValueMaps maps = MapsOf(columnId);
  RowSpace(*pager_, data::kOwnerLongValues, maps.ownedPages, maps.freeSpacePages).ReleaseAll();
}

// ---------------------------------------------------------------------------------------------------------------------
// Long values
// ---------------------------------------------------------------------------------------------------------------------

LongValueMaps TableRows::MapsOf(std::uint16_t columnId) const {
  const LongValueMaps* maps = FindMaps(*definition_, columnId);
  if (maps != nullptr && IsComplete(*maps)) return *maps;
  // Others may have made them since this definition was read.
  const TableDefinition stored = ReadTableDefinition(*pager_, definition_->page);
  const LongValueMaps* storedMaps = FindMaps(stored, columnId);
  return storedMaps == nullptr ? LongValueMaps{columnId, {}, {}} : *storedMaps;
}

// A column's maps are made when it first needs a page: most Memo columns of a table hold short texts, which lie in the
// row. The definition in the file is read again and written whole, as others may have changed it since ours was read.
LongValueMaps TableRows::MapsForStoring(std::uint16_t columnId) {
  LongValueMaps maps = MapsOf(columnId);
  if (IsComplete(maps)) return maps;
  PageAllocator allocator(*pager_);
  // Beside the maps of the table, where there is room.
  const PageNumber near = definition_->ownedPages.page;
  if (maps.ownedPages.IsNone()) maps.ownedPages = allocator.AddUsageMap(near);
  if (maps.freeSpacePages.IsNone()) maps.freeSpacePages = allocator.AddUsageMap(near);

  TableDefinition stored = ReadTableDefinition(*pager_, definition_->page);
  for (TableDefinition* definition : {&stored, writableDefinition_}) {
    if (definition == nullptr) continue;
    const auto record = std::ranges::find(definition->longValueMaps, columnId, &LongValueMaps::columnId);
    if (record == definition->longValueMaps.end()) {
      definition->longValueMaps.push_back(maps);
    } else {
      *record = maps;
    }
  }
  WriteTableDefinition(*pager_, stored, true);
  return maps;
}

Bytes TableRows::StoreLongValue(const PreparedLongValue& value, std::uint16_t columnId) {
  const bool isInline = value.form == PreparedLongValue::Form::Inline;
  // An inline value needs no maps, so none are made for it.
  return LongValues(*pager_, Version()).Store(value, isInline ? LongValueMaps{} : MapsForStoring(columnId));
}

}  // namespace tavi::access
