// Changes of rows, kept in step with indexes and relationships. Each of the three follows one pattern:
//
//   1. values    converted to their columns' types, automatic numbers filled in
//   2. asked     required and zero-length columns, then each index that is concerned (duplicates, nulls in keys),
//                then the relationships, in both directions
//   3. changed   the row, its index entries, the counter of automatic numbers; then the rows that follow
//
// Step 2 changes nothing but indexes that must be made anew before they can be searched, which leaves what they say as
// it is. So a refusal costs nothing, and only an error while pages are changed needs the statement rolled back. A row
// costs a search in each index concerned, and one in the other table for each relationship concerned.
#include "access/catalog/StoredTable.h"

#include "access/catalog/ChangeErrors.h"
#include "access/catalog/DefinitionChanges.h"
#include "access/catalog/KeyLookup.h"
#include "access/catalog/RelationshipRules.h"
#include "access/file/EngineError.h"
#include "access/table/RowCodec.h"
#include "platform/values/Text.h"

namespace tavi::access {

namespace {

/// No real file has more tables than this in a chain of cascading relationships.
constexpr int kMaximumCascadeDepth = 32;

/// Whether a column is required, takes empty texts or has a default is not in the table's definition but in its
/// properties; a column without any takes everything.
std::vector<Column> MakeColumns(const TableDefinition& definition, const PropertyBlob& properties) {
  std::vector<Column> columns;
  for (const ColumnDefinition& stored : definition.columns) {
    Column column;
    column.definition = stored;
    column.required = properties.ColumnFlag(stored.name, property_name::kRequired).value_or(false);
    column.allowZeroLength = properties.ColumnFlag(stored.name, property_name::kAllowZeroLength).value_or(true);
    column.defaultExpression = properties.ColumnText(stored.name, property_name::kDefaultValue).value_or("");
    columns.push_back(std::move(column));
  }
  return columns;
}

bool IsEmptyText(const Value& value) {
  const std::string* text = std::get_if<std::string>(&value);
  return text != nullptr && text->empty();
}

}  // namespace

StoredTable::StoredTable(Pager& pager, std::string name, bool isSystem, TableDefinition definition,
                         const PropertyBlob& properties, RelatedTables* related)
    : pager_(&pager),
      name_(std::move(name)),
      isSystem_(isSystem),
      definition_(std::move(definition)),
      columns_(MakeColumns(definition_, properties)),
      rows_(pager, definition_),
      indexes_(pager, name_, definition_),
      searchable_(definition_.realIndexes.size()),
      related_(related) {}

std::optional<std::size_t> StoredTable::FindColumn(std::string_view name) const {
  for (std::size_t i = 0; i < columns_.size(); ++i)
    if (EqualIgnoringCase(columns_[i].definition.name, name)) return i;
  return std::nullopt;
}

std::uint32_t StoredTable::RowCount() {
  return access::RowCount(*pager_, definition_);
}

// Row values go by position, so that values made for an earlier shape of the table would land in other columns.
void StoredTable::CheckSize(const RowValues& values) const {
  if (values.size() == columns_.size()) return;
  RaiseFailure("The table '" + name_ + "' has " + std::to_string(columns_.size()) + " fields, but the row has " +
               std::to_string(values.size()) + " values. Open the table again; it was altered.");
}

void StoredTable::ConvertValues(RowValues& values) const {
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = ConvertForColumn(values[i], columns_[i].definition);
}

void StoredTable::CheckColumns(const RowValues* before, const RowValues& after) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    // A rule that was made later than the row does not refuse changes of the row's other columns.
    if (before != nullptr && (*before)[i] == after[i]) continue;
    if (columns_[i].required && IsNull(after[i])) RaiseRequired(name_, columns_[i].definition.name);
    if (!columns_[i].allowZeroLength && IsEmptyText(after[i])) RaiseZeroLength(name_, columns_[i].definition.name);
  }
}

void StoredTable::CheckAutoNumbersKept(const RowValues& before, RowValues& after) const {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].definition.IsAutoNumber() && before[i] != after[i])
      RaiseAutoNumberChange(name_, columns_[i].definition.name);
  }
}

// Found out once for this object, at the price of a walk through the index where its keys can differ at all. An object
// lives until the table is altered or the file is written by others.
bool StoredTable::CanSearch(std::size_t index) {
  std::optional<bool>& known = searchable_[index];
  if (!known.has_value()) {
    try {
      known = !Encoder(index).Positions().empty() && HasOwnKeys(*this, index);
    } catch (const Error&) {
      known = false;  // keys of a type or sort order that cannot be made here
    }
  }
  return *known;
}

void StoredTable::MakeSearchable(std::size_t index) {
  if (CanSearch(index)) return;
  // Where no keys can be made the error is that of the sort order, which tells more than what FillIndex would come to.
  static_cast<void>(Encoder(index));
  try {
    FillIndex(*pager_, *this, index);
  } catch (const Error& error) {
    throw Error(
        error.Number(), error.Source(),
        "The index '" + Indexes()[index].name + "' of the table '" + name_ +
            "' holds its keys in an order other than this program's and cannot be made anew: " + error.Description());
  }
  searchable_[index] = true;
}

// Planning looks for duplicates and for the entry to be removed, which it can only find under keys of our own making.
void StoredTable::MakeChangedSearchable(const RowValues* before, const RowValues* after) {
  for (std::size_t i = 0; i < Indexes().size(); ++i) {
    const bool isConcerned = before == nullptr || after == nullptr || !indexes_.SameColumns(i, *before, *after);
    if (isConcerned) MakeSearchable(i);
  }
}

// The counter of automatic numbers grows last, so that a refused row uses none up.
RowPointer StoredTable::Insert(RowValues& row) {
  CheckSize(row);
  RowValues values = row;
  ConvertValues(values);
  FillAutoNumbers(*pager_, *this, values);
  CheckColumns(nullptr, values);
  MakeChangedSearchable(nullptr, &values);
  const std::vector<IndexChange> changes = indexes_.Plan(nullptr, &values);
  if (related_ != nullptr) CheckPrimaryRows(*this, *related_, nullptr, values);

  const RowPointer place = rows_.Insert(values);
  indexes_.Apply(changes, place);
  KeepLastAutoNumber(*pager_, *this, values);
  row = std::move(values);
  return place;
}

void StoredTable::Update(RowPointer row, RowValues values) {
  UpdateCascading(row, std::move(values), 0);
}

void StoredTable::UpdateCascading(RowPointer row, RowValues values, int depth) {
  if (depth > kMaximumCascadeDepth)
    RaiseFailure("The relationships of the table '" + name_ + "' cascade updates in a circle. Correct them in Access.");
  CheckSize(values);
  const RowValues before = rows_.Read(row);
  ConvertValues(values);
  // Nothing is written, and no relationship is asked, when all stays as it was.
  if (values == before) return;
  CheckAutoNumbersKept(before, values);
  CheckColumns(&before, values);
  MakeChangedSearchable(&before, &values);
  const std::vector<IndexChange> changes = indexes_.Plan(&before, &values);
  std::vector<FollowingUpdate> following;
  if (related_ != nullptr) {
    CheckPrimaryRows(*this, *related_, &before, values);
    following = PlanKeyChange(*this, *related_, before, values);
  }

  // The changed row must be there before the rows that follow it, as each of these asks for its primary row again.
  rows_.Update(row, values, &before);
  indexes_.Apply(changes, row);
  for (const FollowingUpdate& update : following) {
    // Read when its turn comes: another relationship between the same tables may have changed it meanwhile.
    RowValues next = update.row.table->Read(update.row.row);
    for (const auto& [column, value] : update.values) next[column] = value;
    update.row.table->UpdateCascading(update.row.row, std::move(next), depth + 1);
  }
}

// The plan holds all that goes, over all relationships, or the delete was refused as a whole. So those rows are removed
// without being asked again; rows that lose their reference are ordinary updates, which a required column can refuse.
void StoredTable::Delete(RowPointer row) {
  DeletePlan plan;
  if (related_ != nullptr) plan = PlanDelete(*this, *related_, row);

  for (const DeletePlan::Detached& detached : plan.detached) {
    RowValues values = detached.row.table->Read(detached.row.row);
    for (const std::size_t column : detached.columns) values[column] = Null{};
    detached.row.table->Update(detached.row.row, std::move(values));
  }
  for (const TableRow& deleted : plan.deleted) deleted.table->DeleteAlone(deleted.row);
  DeleteAlone(row);
}

void StoredTable::DeleteAlone(RowPointer row) {
  const RowValues before = rows_.Read(row);
  MakeChangedSearchable(&before, nullptr);
  const std::vector<IndexChange> changes = indexes_.Plan(&before, nullptr);
  rows_.Delete(row);
  indexes_.Apply(changes, row);
}

}  // namespace tavi::access
