#include "store/TableRecovery.h"

#include <algorithm>

#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "util/Diagnostics.h"

namespace tavi {
namespace {

constexpr std::int32_t kNoIdentifier = -1;
constexpr std::size_t kMostRemarks = 10;
constexpr std::size_t kLongestQuotation = 60;

bool HasField(const ado::Recordset& rows, std::string_view name) {
  return std::any_of(rows.Fields().begin(), rows.Fields().end(),
                     [&](const ado::Field& field) { return EqualIgnoringCase(field.name, name); });
}

/// How many characters a text column of the store's file takes; 0 when it has no limit.
std::size_t WidthOf(cDatabase& database, const std::string& table, const std::string& column) {
  const auto columns = database.OpenSchema(ado::SchemaKind::Columns);
  for (; !columns->AtEnd(); columns->MoveNext()) {
    if (!EqualIgnoringCase(cDatabase::GetTextField(*columns, "TABLE_NAME"), table)) continue;
    if (!EqualIgnoringCase(cDatabase::GetTextField(*columns, "COLUMN_NAME"), column)) continue;
    return static_cast<std::size_t>(std::max(0, cDatabase::GetNumericField(*columns, "CHARACTER_MAXIMUM_LENGTH")));
  }
  return 0;
}

/// A whole number; nothing for null and whatever is no number.
std::optional<std::int32_t> NumberOf(const Value& value) {
  try {
    return ToInt32(value);
  } catch (const Error&) {
    return std::nullopt;
  }
}

std::string Quoted(const Value& value) {
  const std::string text = ToText(value);
  return TextLength(text) <= kLongestQuotation ? "\"" + text + "\""
                                               : "\"" + FirstCharacters(text, kLongestQuotation) + "...\"";
}

}  // namespace

bool IsOfTheNewFile(const Error& error) {
  const std::string text = error.Description();
  return text.starts_with("Could not ") && !text.starts_with("Could not read ");
}

RecoveredTable TableRecovery::Copy(const TableTask& task, std::optional<std::int64_t> stated) {
  report_ = {};
  danglingReferences_ = 0;
  specification_ = ParseTableSpecification(task.specification);
  report_.name = specification_.table;
  report_.found = stated.value_or(0);
  if (observer_ != nullptr) observer_->Show(report_.name, 0, report_.found);
  try {
    CopyRows(task);
  } catch (const Error& error) {
    if (IsOfTheNewFile(error)) throw;
    report_.error = error;
    report_.isInOldFile = !error.Is(ErrorNumber::ProviderNoTable);
  }
  oldRows_.reset();
  newRows_.reset();
  Account(stated);
  return std::move(report_);
}

void TableRecovery::CopyRows(const TableTask& task) {
  WriteDiagnostic("Recovering " + task.specification);
  defaults_ = ParseDefaults(task.defaults);
  competitionColumn_ = task.competitionColumn;
  const std::string& table = specification_.table;
  database_.Execute("Delete from " + table);
  newRows_ = database_.OpenRecordset(table, ado::CursorType::Dynamic, true);
  oldRows_ =
      old_.OpenRecordset(table, ado::CursorType::ForwardOnly, ado::LockType::Pessimistic, ado::SourceKind::TableDirect);
  for (; !oldRows_->AtEnd(); oldRows_->MoveNext()) {
    CopyRow();
    if (observer_ != nullptr) observer_->Show(table, report_.saved + report_.lost, report_.found);
  }
}

void TableRecovery::CopyRow() {
  oldIdentifier_ = kNoIdentifier;
  valuesRead_ = 0;
  valuesLost_ = 0;
  firstDamage_.clear();
  newRows_->AddNew();
  try {
    for (const ado::Field& field : newRows_->Fields()) {
      if (const std::optional<Value> value = ValueFor(field.name)) Store(field.name, *value);
    }
    const bool isReadable = valuesRead_ > 0 || valuesLost_ == 0;
    if (!isReadable) throw Error(ErrorNumber::ProviderFailure, "Recovery", firstDamage_);
    newRows_->Update();
  } catch (const Error& error) {
    newRows_->CancelUpdate();
    if (IsOfTheNewFile(error)) throw;
    ++report_.lost;
    Remark("A row could not be saved: " + error.Description());
    return;
  }
  ++report_.saved;
  report_.valuesLost += valuesLost_;
  if (!firstDamage_.empty()) Remark(firstDamage_);
  if (!specification_.identifier.empty()) EnterIdentifier();
}

std::optional<Value> TableRecovery::ReadOld(const std::string& column) {
  if (!HasField(*oldRows_, column)) return std::nullopt;
  try {
    Value value = oldRows_->Get(column);
    ++valuesRead_;
    return value;
  } catch (const Error& error) {
    ++valuesLost_;
    if (firstDamage_.empty()) firstDamage_ = error.Description();
    return std::nullopt;
  }
}

std::optional<Value> TableRecovery::ValueFor(const std::string& column) {
  std::optional<Value> value = ReadOld(column);
  if (EqualIgnoringCase(column, specification_.identifier)) {
    if (value) oldIdentifier_ = NumberOf(*value).value_or(kNoIdentifier);
    return std::nullopt;
  }
  if (value && EqualIgnoringCase(specification_.table, kCompetitionsTable) && EqualIgnoringCase(column, "Qualifinal")) {
    conversionNeeded_ = false;
  }
  if (value && EqualIgnoringCase(column, competitionColumn_)) value = NewReference(*value);
  if (value && !IsNull(*value)) return value;
  const auto fallback = defaults_.find(LowerCase(column));
  return fallback == defaults_.end() ? value : Value(fallback->second);
}

// Left as it was, a number that belongs to no competition might belong to another one in the new file.
Value TableRecovery::NewReference(const Value& oldReference) {
  const std::int32_t number = NumberOf(oldReference).value_or(0);
  if (const auto entry = identifiers_.Find(kCompetitionsTable, number)) return *entry;
  if (number <= 0) return oldReference;
  ++danglingReferences_;
  return Null{};
}

void TableRecovery::Store(const std::string& column, const Value& value) {
  try {
    newRows_->Set(column, value);
  } catch (const Error& error) {
    const auto* text = std::get_if<std::string>(&value);
    if (text != nullptr) return StoreShortened(column, *text, error);
    ++valuesLost_;
    if (firstDamage_.empty()) {
      firstDamage_ = "The value " + Quoted(value) + " of " + column + " was refused: " + error.Description();
    }
  }
}

void TableRecovery::StoreShortened(const std::string& column, const std::string& text, const Error& refusal) {
  ++valuesLost_;
  const std::size_t width = WidthOf(database_, specification_.table, column);
  std::string what = "The value " + Quoted(text) + " of " + column + " was refused: " + refusal.Description();
  if (width > 0 && TextLength(text) > width) {
    newRows_->Set(column, FirstCharacters(text, width));
    what = "The text " + Quoted(text) + " of " + column + " was shortened to " + std::to_string(width) + " characters.";
  }
  if (firstDamage_.empty()) firstDamage_ = what;
}

void TableRecovery::EnterIdentifier() {
  if (oldIdentifier_ < 0) {
    report_.error = Error(ErrorNumber::Component, "Recover", "ID field not found in old record");
    return;
  }
  identifiers_.Enter(specification_.table, oldIdentifier_, ToInt32(newRows_->Get(specification_.identifier)));
}

void TableRecovery::Account(std::optional<std::int64_t> stated) {
  const std::int64_t met = report_.saved + report_.lost;
  report_.found = std::max(met, stated.value_or(0));
  report_.lost = report_.found - report_.saved;
  if (report_.found > met && !report_.error) {
    Remark("The table states " + std::to_string(report_.found) + " rows; " + std::to_string(report_.saved) +
           " of them can be read.");
  }
  if (danglingReferences_ > 0) {
    Remark("Rows that refer to a competition that was not saved, or was not there, and belong to none now: " +
           std::to_string(danglingReferences_) + ".");
  }
}

void TableRecovery::Remark(const std::string& text) {
  if (std::find(report_.remarks.begin(), report_.remarks.end(), text) != report_.remarks.end()) return;
  if (report_.remarks.size() < kMostRemarks) {
    report_.remarks.push_back(text);
  } else {
    ++report_.moreRemarks;
  }
}

}  // namespace tavi
