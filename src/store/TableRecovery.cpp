#include "store/TableRecovery.h"

#include <algorithm>
#include <utility>

#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "store/EmptyTables.h"
#include "util/Diagnostics.h"

// One table of an old file, row by row. A damaged file gives what it has left, so nothing that goes wrong with a value
// or a row ends the copy:
//
//   a value that cannot be read        the row is saved without it
//   a value that does not fit          a text is shortened, anything else left out
//   a row that a rule refuses          kept in mind by its place, and tried again when other tables have been copied
//   a row of which nothing is readable lost
//   the old table breaks off           what came before is kept, the reason is reported
//
// Only trouble with the new file ends everything, as every further row would meet it. Each row is a statement of its
// own; a recovery that is stopped has saved whole rows, and starts each table anew when it is called again.

namespace tavi {
namespace {

/// A damaged page can spoil hundreds of rows; further remarks are only counted.
constexpr std::size_t kMostRemarks = 10;
constexpr std::size_t kLongestQuotation = 60;

/// How many characters a text column of the store's file takes; 0 when it has no limit.
/// Asked only when a text was refused, so that looking through the list of columns costs ordinary rows nothing.
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

bool HasField(const ado::Recordset& rows, std::string_view name) {
  return std::any_of(rows.Fields().begin(), rows.Fields().end(),
                     [&](const ado::Field& field) { return EqualIgnoringCase(field.name, name); });
}

// Told by the text, because damage has the same number as errors of the disk. Only the new file is written, so whatever
// could not be done but reading is about it.
bool IsOfTheNewFile(const Error& error) {
  const std::string text = error.Description();
  return text.starts_with("Could not ") && !text.starts_with("Could not read ");
}

TableRecovery::TableRecovery(cDatabase& database, ado::Connection& old, CarriedOver& carried, TableTask task,
                             RecoveryObserver* observer)
    : database_(database), old_(old), carried_(carried), task_(std::move(task)), observer_(observer) {
  report_.name = task_.table;
}

// The old table's count is a statement of a file that may be damaged: it says how many rows should have been there, and
// is corrected where more are met.
void TableRecovery::Copy(std::optional<std::int64_t> stated) {
  report_.found = stated.value_or(0);
  if (observer_ != nullptr) observer_->Show(report_.name, 0, report_.found);
  Attempt([this] { CopyRows(); });
  const std::int64_t met = report_.saved + report_.lost;
  if (report_.found > met && !report_.error) {
    const auto readable = report_.saved + static_cast<std::int64_t>(refused_.size());
    Remark("The table states " + std::to_string(report_.found) + " rows; " + std::to_string(readable) +
           " of them can be read.");
  }
  report_.found = std::max(met, report_.found);
  // Awards and results that name a missing competition then wait for it instead of losing it.
  if (IsOfCompetitions()) carried_.competitionsMayFollow = !refused_.empty();
}

// The old table is read once more, instead of keeping what may be all of its rows.
bool TableRecovery::TryRefusedRowsAgain() {
  if (refused_.empty()) return false;
  const std::vector<std::int64_t> places = std::exchange(refused_, {});
  const std::int64_t savedBefore = report_.saved;
  refusals_.clear();
  Attempt([&] {
    OpenRows();
    auto next = places.begin();
    for (std::int64_t place = 0; next != places.end() && !oldRows_->AtEnd(); oldRows_->MoveNext(), ++place) {
      if (place != *next) continue;
      ++next;
      --report_.lost;
      CopyRow(place);
    }
  });
  const bool isGain = report_.saved > savedBefore;
  if (IsOfCompetitions()) carried_.competitionsMayFollow = isGain && !refused_.empty();
  return isGain;
}

RecoveredTable TableRecovery::Report() {
  for (const std::string& refusal : refusals_) Remark("A row could not be saved: " + refusal);
  report_.lost = report_.found - report_.saved;
  if (danglingReferences_ > 0) {
    Remark("Rows that refer to a competition that was not saved, or was not there, and belong to none now: " +
           std::to_string(danglingReferences_) + ".");
  }
  return std::move(report_);
}

// The record sets go after an error too: a later round opens them anew.
void TableRecovery::Attempt(const std::function<void()>& copying) {
  try {
    copying();
  } catch (const Error& error) {
    if (IsOfTheNewFile(error)) throw;
    report_.error = error;
    report_.isInOldFile = !error.Is(ErrorNumber::ProviderNoTable);
  }
  oldRows_.reset();
  newRows_.reset();
}

void TableRecovery::CopyRows() {
  WriteDiagnostic("Recovering " + task_.table + (task_.identifier.empty() ? "" : ":" + task_.identifier));
  // Before rows are deleted: a list of defaults that cannot be read must cost nothing.
  task_.defaults.merge(ParseDefaults(task_.defaultsFromSetting));
  DeleteOldRows();
  OpenRows();
  for (std::int64_t place = 0; !oldRows_->AtEnd(); oldRows_->MoveNext(), ++place) {
    CopyRow(place);
    if (observer_ != nullptr) observer_->Show(report_.name, report_.saved + report_.lost, report_.found);
  }
}

// Rows of the new file that a relationship keeps are no reason to lose the old ones, which are added beside them.
void TableRecovery::DeleteOldRows() {
  const std::string& table = task_.table;
  try {
    database_.Execute("Delete from " + table);
  } catch (const Error& error) {
    if (!error.Is(ErrorNumber::ProviderIntegrity)) throw;
    Remark("Rows that stood in the table before could not be deleted and are still there: " +
           std::to_string(CountRows(database_, table)) + ". " + error.Description());
  }
}

// The old table is walked as a table: a statement on it would fail at the first damage.
void TableRecovery::OpenRows() {
  const std::string& table = task_.table;
  newRows_ = database_.OpenRecordset(table, ado::CursorType::Dynamic, true);
  oldRows_ =
      old_.OpenRecordset(table, ado::CursorType::ForwardOnly, ado::LockType::Pessimistic, ado::SourceKind::TableDirect);
}

// What is counted of a row counts only when the row was saved; a lost row is lost as a whole.
void TableRecovery::CopyRow(std::int64_t place) {
  oldIdentifier_.reset();
  valuesRead_ = 0;
  valuesLost_ = 0;
  isDangling_ = false;
  isWaiting_ = false;
  firstDamage_.clear();
  const Fate fate = SaveRow();
  if (fate == Fate::Refused) refused_.push_back(place);
  if (fate != Fate::Saved) {
    ++report_.lost;
    return;
  }
  ++report_.saved;
  report_.valuesLost += valuesLost_;
  danglingReferences_ += isDangling_ ? 1 : 0;
  if (!firstDamage_.empty()) Remark(firstDamage_);
  if (!task_.identifier.empty()) EnterIdentifier();
}

// All columns of the new file are asked for, so that those which the old file has beside them stay behind, and those
// which it lacks get their defaults.
TableRecovery::Fate TableRecovery::SaveRow() {
  newRows_->AddNew();
  try {
    for (const ado::Field& field : newRows_->Fields()) {
      if (const std::optional<Value> value = ValueFor(field.name)) Store(field.name, *value);
    }
    // A row of nothing but unreadable values would be an empty row of the new file.
    const bool isReadable = valuesRead_ > 0 || valuesLost_ == 0;
    if (!isReadable) throw Error(ErrorNumber::ProviderFailure, "Recovery", firstDamage_);
    if (isWaiting_) throw Error(ErrorNumber::ProviderIntegrity, "Recovery", "Its competition was not saved.");
    newRows_->Update();
    return Fate::Saved;
  } catch (const Error& error) {
    newRows_->CancelUpdate();
    if (IsOfTheNewFile(error)) throw;
    if (error.Is(ErrorNumber::ProviderIntegrity)) {
      NoteRefusal(error.Description());
      return Fate::Refused;
    }
    Remark("A row could not be saved: " + error.Description());
    return Fate::Lost;
  }
}

// Each column is asked for by itself, so that a damaged one, such as a memo whose page is gone, costs only its own
// value.
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

// The identifier is not carried over: the new file gives its own, and what refers to the row follows by the map.
std::optional<Value> TableRecovery::ValueFor(const std::string& column) {
  std::optional<Value> value = ReadOld(column);
  if (EqualIgnoringCase(column, task_.identifier)) {
    if (value) oldIdentifier_ = NumberOf(*value);
    return std::nullopt;
  }
  // A file with this column was converted by the version that added it.
  if (value && IsOfCompetitions() && EqualIgnoringCase(column, "Qualifinal")) carried_.conversionNeeded = false;
  if (value && EqualIgnoringCase(column, task_.competitionColumn)) value = NewReference(*value);
  if (value && !IsNull(*value)) return value;
  const auto fallback = task_.defaults.find(LowerCase(column));
  return fallback == task_.defaults.end() ? value : Value(fallback->second);
}

// Left as it was, a number that belongs to no competition might belong to another one in the new file.
Value TableRecovery::NewReference(const Value& oldReference) {
  const std::int32_t number = NumberOf(oldReference).value_or(0);
  if (const auto entry = carried_.identifiers.Find(kCompetitionsTable, number)) return *entry;
  if (number != 0 && carried_.competitionsMayFollow) isWaiting_ = true;
  // Whatever they meant, no competition of the new file has such a number.
  if (number <= 0) return oldReference;
  isDangling_ = true;
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

// Counts as a lost value also when most of the text is saved: somebody should look at it.
void TableRecovery::StoreShortened(const std::string& column, const std::string& text, const Error& refusal) {
  ++valuesLost_;
  const std::size_t width = WidthOf(database_, task_.table, column);
  std::string what = "The value " + Quoted(text) + " of " + column + " was refused: " + refusal.Description();
  if (width > 0 && TextLength(text) > width) {
    newRows_->Set(column, FirstCharacters(text, width));
    what = "The text " + Quoted(text) + " of " + column + " was shortened to " + std::to_string(width) + " characters.";
  }
  if (firstDamage_.empty()) firstDamage_ = what;
}

// The number is read back from the saved row: the file gives it out when the row is stored.
void TableRecovery::EnterIdentifier() {
  if (!oldIdentifier_ || (*oldIdentifier_ < 0 && !carried_.acceptsNegativeIdentifiers)) {
    report_.error = Error(ErrorNumber::Component, "Recover", "ID field not found in old record");
    return;
  }
  carried_.identifiers.Enter(task_.table, *oldIdentifier_, ToInt32(newRows_->Get(task_.identifier)));
}

// Each reason once: a relationship can refuse thousands of rows with one text.
void TableRecovery::NoteRefusal(const std::string& why) {
  if (std::find(refusals_.begin(), refusals_.end(), why) == refusals_.end()) refusals_.push_back(why);
}

void TableRecovery::Remark(const std::string& text) {
  if (std::find(report_.remarks.begin(), report_.remarks.end(), text) != report_.remarks.end()) return;
  if (report_.remarks.size() < kMostRemarks) {
    report_.remarks.push_back(text);
  } else {
    ++report_.moreRemarks;
  }
}

bool TableRecovery::IsOfCompetitions() const {
  return EqualIgnoringCase(task_.table, kCompetitionsTable);
}

ColumnDefaults ParseDefaults(const std::string& text) {
  ColumnDefaults defaults;
  if (text.empty()) return defaults;
  for (const std::string& item : Split(text, ',')) {
    const std::size_t equals = item.find('=');
    if (equals == std::string::npos) throw Error(ErrorNumber::Component, "Recovery", "Illegal defaults setting");
    defaults[LowerCase(Trim(item.substr(0, equals)))] = Trim(item.substr(equals + 1));
  }
  return defaults;
}

}  // namespace tavi
