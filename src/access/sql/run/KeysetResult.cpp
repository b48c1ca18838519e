// A record set as a list of row pointers, 4 bytes for each row and source. It is made when the set is opened; what the
// rows hold is read when somebody comes to them. So a set of thousands of rows costs little to open, shows what others
// have changed since, and knows where to write what is changed through it.
//
// Rows are read in blocks, each a statement of its own: the first one alone, then 2, 4 and so on up to 64 as long as
// the reader goes forward, again one alone after a jump or a change. Whoever wants one row pays for one, and whoever
// walks through all pays a lock and a look at the log every 64th row. A block is dropped when the session itself
// changes anything; changes by others show when the next block is read.
//
// A row that cannot be read does not end the walk: it keeps its place, and reading a column of it raises what is wrong.
#include "access/sql/run/KeysetResult.h"

#include <algorithm>

#include "access/sql/plan/ExecutionErrors.h"
#include "access/table/RowCodec.h"

namespace tavi::access::sql {

namespace {

constexpr std::size_t kLargestBlock = 64;

/// Row values are taken by their positions in the columns as they were when the set was opened; columns that were added
/// behind them do no harm.
bool SameColumns(const Table& before, const Table& now) {
  const auto& old = before.Columns();
  const auto& current = now.Columns();
  return old.size() <= current.size() &&
         std::equal(old.begin(), old.end(), current.begin(), [](const Column& left, const Column& right) {
           return left.definition.id == right.definition.id && left.definition.type == right.definition.type;
         });
}

}  // namespace

// The pointer of a damaged place is kept as well, so that places and pointers stay side by side.
Keyset CollectWholeTable(Table& table) {
  Keyset keyset;
  table.WalkPastDamage([&](RowPointer row) { keyset.keys.push_back(row.Packed()); },
                       [&](RowPointer place, const Error& error) {
                         keyset.damage.emplace(keyset.keys.size(), error);
                         keyset.keys.push_back(place.Packed());
                       });
  return keyset;
}

// Holds on to the plan that its pointers belong to: the remembered statement may get another one. The first row is read
// at once, within the statement that found it.
KeysetResult::KeysetResult(StatementRunner& runner, std::shared_ptr<const PreparedStatement> prepared,
                           std::vector<ResultColumn> columns, Keyset keyset)
    : ResultSet(std::move(columns)),
      runner_(runner),
      prepared_(std::move(prepared)),
      heldPlan_(prepared_->plan),
      plan_(*heldPlan_),
      width_(plan_.sources.size()),
      keys_(std::move(keyset.keys)),
      damage_(std::move(keyset.damage)) {
  for (const PlannedSource& source : plan_.sources) tables_.push_back(source.table);
  if (Count() > 0) ReadBlock(0, 1);
}

RowPointer KeysetResult::PointerAt(std::size_t row, std::size_t source) const {
  return RowPointer::FromPacked(keys_[row * width_ + source]);
}

bool KeysetResult::IsRead(std::size_t row) const {
  return block_.changeCount == runner_.ChangeCount() && row >= block_.first && row - block_.first < block_.rows.size();
}

// Nothing for a row that is gone: moving passes over it, reading it raises an error.
const std::optional<std::vector<SourceRow>>& KeysetResult::RowAt(std::size_t row) {
  if (!IsRead(row)) {
    const bool goesOn = block_.changeCount == runner_.ChangeCount() && row == block_.first + block_.rows.size();
    nextBlockSize_ = goesOn ? std::min(nextBlockSize_ * 2, kLargestBlock) : 1;
    const ReadStatement reading(runner_.GetPager());
    RefreshTables();
    ReadBlock(row, nextBlockSize_);
  }
  return block_.rows[row - block_.first];
}

// Rows that are gone or cannot be read have their places in the block, so that places in it are those of the set.
void KeysetResult::ReadBlock(std::size_t first, std::size_t count) {
  block_.rows.clear();
  block_.first = first;
  block_.changeCount = runner_.ChangeCount();
  for (std::size_t row = first; row < std::min(first + count, Count()); ++row) block_.rows.push_back(ReadRow(row));
}

bool KeysetResult::IsShown(std::size_t source) const {
  const std::vector<bool>& wanted = plan_.sources[source].outputColumns;
  return std::find(wanted.begin(), wanted.end(), true) != wanted.end();
}

// Of a join, sources that give nothing to the select list are not read, and a row of theirs that is gone is not missed.
std::optional<std::vector<SourceRow>> KeysetResult::ReadRow(std::size_t row) {
  std::vector<SourceRow> rows(width_);
  for (std::size_t i = 0; i < width_; ++i) {
    rows[i].pointer = PointerAt(row, i);
    rows[i].present = !rows[i].pointer.IsNone();
    if (!rows[i].present || (!IsShown(i) && width_ > 1)) continue;
    try {
      if (!ReadSource(row, i, rows[i])) return std::nullopt;
    } catch (const Error&) {
      // Others may be read ahead of the one that is wanted, and columns that are not damaged may be all that is wanted.
      rows[i].values.clear();
    }
  }
  return rows;
}

// Only the columns of the select list are read; those that were added to the table since are none of them.
bool KeysetResult::ReadSource(std::size_t row, std::size_t source, SourceRow& target) {
  if (const auto damage = damage_.find(row); damage != damage_.end()) throw damage->second;
  if (!tables_[source]->Exists(target.pointer)) return false;
  std::vector<bool> columns = plan_.sources[source].outputColumns;
  columns.resize(tables_[source]->Columns().size(), false);
  if (IsShown(source)) target.values = tables_[source]->Read(target.pointer, columns);
  return true;
}

// Reads just the one column, so that what is damaged in others does not matter.
Value KeysetResult::ReadAlone(const SourceRow& row, std::size_t source, std::size_t column) {
  if (const auto damage = damage_.find(position_); damage != damage_.end()) throw damage->second;
  const ReadStatement reading(runner_.GetPager());
  RefreshTables();
  std::vector<bool> columns(tables_[source]->Columns().size(), false);
  columns.at(column) = true;
  return tables_[source]->Read(row.pointer, columns).at(column);
}

// A definition that was read anew is another object, with the same table behind it unless somebody has dropped the
// table and made another of the name: that one lies on another page.
void KeysetResult::RefreshTables() {
  for (std::size_t i = 0; i < width_; ++i) {
    const std::string& name = plan_.sources[i].table->Name();
    std::shared_ptr<Table> table = runner_.GetDatabase().FindTable(name);
    if (table == tables_[i]) continue;
    if (!table || table->Definition().page != plan_.sources[i].table->Definition().page ||
        !SameColumns(*plan_.sources[i].table, *table)) {
      throw EngineError(ErrorNumber::ProviderFailure, "The table '" + name +
                                                          "' has been altered since the record set was opened. Open "
                                                          "the record set again.");
    }
    tables_[i] = std::move(table);
  }
}

void KeysetResult::MoveNext() {
  Update();
  if (position_ >= Count()) RaiseNoCurrentRow();
  runner_.GoOnUnlessCancelled();
  // A row that was deleted meanwhile is passed over, which takes reading it.
  do {
    ++position_;
  } while (position_ < Count() && !RowAt(position_));
}

// Where no row is left before, the position stays.
void KeysetResult::MovePrevious() {
  Update();
  for (std::size_t row = position_; row > 0; --row) {
    if (!RowAt(row - 1)) continue;
    position_ = row - 1;
    return;
  }
  RaiseNoCurrentRow();
}

// The edit buffer comes before the file; of a row that is being added it holds what was set, and the defaults fill the
// rest. Expressions of such a row have no value yet.
Value KeysetResult::Get(std::size_t column) {
  if (AtEnd()) RaiseNoCurrentRow();
  const auto& slot = plan_.outputs.at(column).slot;
  const bool isTableColumn = slot && slot->kind == Slot::Kind::Column && slot->depth == 0;
  if (isTableColumn) {
    const auto edit = edits_.find({slot->source, slot->column});
    if (edit != edits_.end()) return edit->second;
  }
  if (isAdding_) return isTableColumn ? newRow_[slot->column] : Value{};
  const auto& rows = RowAt(position_);
  if (!rows) throw RowDeletedError();
  if (!isTableColumn) return ComputedValue(column, *rows);
  const SourceRow& row = (*rows)[slot->source];
  if (!row.present) return Value{};
  return row.values.empty() ? ReadAlone(row, slot->source, slot->column) : row.values.at(slot->column);
}

// Evaluated anew for each call, outside the statement that found the row: Now() is the time of the call.
Value KeysetResult::ComputedValue(std::size_t column, const std::vector<SourceRow>& rows) {
  const ReadStatement reading(runner_.GetPager());
  StatementContext context = runner_.MakeContext();
  RowScope scope(context, plan_, nullptr);
  scope.rows = rows;
  for (std::size_t i = 0; i < width_; ++i) {
    if (rows[i].present && rows[i].values.empty() && IsShown(i))
      static_cast<void>(ReadSource(position_, i, scope.rows[i]));
  }
  return scope.OutputValue(column);
}

// At the first assignment, before somebody has filled a whole row.
void KeysetResult::RefuseReadOnly() const {
  Pager& pager = runner_.GetPager();
  if (pager.IsReadOnly()) throw ReadOnlyError(pager.Path());
}

KeysetResult::Place KeysetResult::PlaceOf(std::size_t column) const {
  const auto& slot = plan_.outputs.at(column).slot;
  if (!slot || slot->kind != Slot::Kind::Column || slot->depth != 0) {
    throw NotUpdatableError("the column '" + Columns()[column].name + "', which is computed");
  }
  return {slot->source, slot->column};
}

void KeysetResult::Set(std::size_t column, const Value& value) {
  if (AtEnd()) RaiseNoCurrentRow();
  const Place place = PlaceOf(column);
  RefuseReadOnly();
  // Converted at once, so that an unfit value is an error of the assignment and not of the storing.
  edits_[place] = ConvertForStatement(value, tables_[place.first]->Columns()[place.second].definition);
}

// The defaults are those of this moment; the automatic number comes when the row is stored.
void KeysetResult::AddNew() {
  Update();
  if (width_ != 1) throw NotUpdatableError("by new rows, as it joins several tables");
  RefuseReadOnly();
  const ReadStatement reading(runner_.GetPager());
  RefreshTables();
  RowValues row;
  for (const Column& column : tables_[0]->Columns()) {
    row.push_back(runner_.ColumnDefaults().ValueFor(*tables_[0], column, runner_.MakeContext().now));
  }
  newRow_ = std::move(row);
  isAdding_ = true;
}

void KeysetResult::Update() {
  if (isAdding_) {
    StoreNewRow();
  } else if (!edits_.empty()) {
    StoreEdits();
  }
}

void KeysetResult::CancelUpdate() {
  edits_.clear();
  isAdding_ = false;
}

// When the table refuses the row, the buffer stays as it is, to be corrected and stored again or given up.
void KeysetResult::StoreNewRow() {
  RowPointer pointer;
  runner_.Change([&](StatementContext&, TableChanges& changes) {
    RefreshTables();
    RowValues row = newRow_;
    row.resize(tables_[0]->Columns().size());
    for (const auto& [place, value] : edits_) row[place.second] = value;
    pointer = changes.Insert(*tables_[0], row);
  });
  keys_.push_back(pointer.Packed());
  position_ = Count() - 1;
  CancelUpdate();
}

// The row is read again within the write statement, and only the edited columns are put over it: what others have
// stored in its other columns since it was shown is kept.
void KeysetResult::StoreEdits() {
  const bool wasRead = IsRead(position_);
  RowValues stored;
  runner_.Change([&](StatementContext&, TableChanges& changes) {
    RefreshTables();
    for (std::size_t source = 0; source < width_; ++source) {
      // The edits are sorted by source, so those of one stand together, and each row is written once.
      const auto first = edits_.lower_bound({source, 0});
      if (first == edits_.end() || first->first.first != source) continue;
      const RowPointer pointer = PointerAt(position_, source);
      if (pointer.IsNone()) throw NotUpdatableError("the side of an outer join that has no row");
      Table& table = *tables_[source];
      if (!table.Exists(pointer)) throw RowDeletedError();
      const RowValues before = table.Read(pointer);
      stored = before;
      for (auto edit = first; edit != edits_.end() && edit->first.first == source; ++edit) {
        stored[edit->first.second] = edit->second;
      }
      changes.Update(table, pointer, before, stored);
    }
  });
  edits_.clear();
  // The only row that has changed is at hand, so the rows read together with it stay good.
  if (!wasRead || width_ != 1) return;
  auto& row = block_.rows[position_ - block_.first];
  if (!row) return;
  if (!row->front().values.empty()) row->front().values = std::move(stored);
  block_.changeCount = runner_.ChangeCount();
}

}  // namespace tavi::access::sql
