// Keys that lie in the file are brought up to date with the key function at hand. Names and keys are compared as the
// columns hold them, with % and line feeds written in their stored form; a key is made of the name as it is. Only rows
// that differ are written, so that a file whose keys are right stays as it is.
#include "names/StoredNameKeys.h"

#include <exception>
#include <memory>
#include <string>

#include "platform/values/Convert.h"
#include "util/Diagnostics.h"

namespace tavi {
namespace {

constexpr const char* kFirstNameKey = "FuzzedFirstName";
constexpr const char* kSurnameKey = "FuzzedLastName";
constexpr int kMostFailuresInARow = 3;

/// A field that cannot be read is an error here, not an empty text: a key made of nothing would be stored.
StoredNames NamesOf(const ado::Recordset& row) {
  const auto text = [&row](const char* column) {
    const Value value = row.Get(column);
    return IsNull(value) ? std::string() : ToText(value);
  };
  return {text("FirstName"), text("LastName"), text(kFirstNameKey), text(kSurnameKey)};
}

/// Done is a row whose keys are right, too.
enum class RowOutcome { Done, ValueRefused, FileRefused };

void NotePassedOver(NameKeyRefresh& result, const StoredNames& names, const Error& error) {
  ++result.passedOver;
  if (result.firstPassedOver.empty()) {
    result.firstPassedOver = names.firstName + " " + names.surname + ": " + error.Description();
  }
}

/// Brings the keys of the current row up to date. A key that does not fit its column concerns that row alone; of what
/// goes wrong otherwise it is not known.
RowOutcome RefreshRow(ado::Recordset& row, const NameKeyService& keys, NameKeyRefresh& result) {
  RowOutcome ifItFails = RowOutcome::FileRefused;
  StoredNames names;
  try {
    names = NamesOf(row);
    const StoredNames fresh = WithFreshKeys(names, keys);
    if (fresh == names) return RowOutcome::Done;
    // A key that is too long for an older file's column is refused by the field, before the row is stored.
    ifItFails = RowOutcome::ValueRefused;
    row.Set(kFirstNameKey, fresh.firstNameKey);
    row.Set(kSurnameKey, fresh.surnameKey);
    ifItFails = RowOutcome::FileRefused;
    row.Update();
    ++result.refreshed;
    return RowOutcome::Done;
  } catch (const Error& error) {
    row.CancelUpdate();
    // A file that is read-only refuses every row.
    if (error.Is(ErrorNumber::ProviderPermission)) throw;
    NotePassedOver(result, names, error);
    return ifItFails;
  }
}

}  // namespace

StoredNames WithFreshKeys(StoredNames names, const NameKeyService& keys) {
  const NameKeys fresh = keys.Keys(cDatabase::PlainText(names.surname), cDatabase::PlainText(names.firstName));
  names.firstNameKey = cDatabase::StoredText(fresh.firstName);
  names.surnameKey = cDatabase::StoredText(fresh.surname);
  return names;
}

// Row by row over a cursor, so that a row that refuses its keys costs only itself. Some failures one after the other
// mean the file and not the rows, and it is not worth asking for the rest.
NameKeyRefresh RefreshNameKeys(cDatabase& database) {
  const NameKeyService& keys = *database.GetPlatform().nameKeyService;
  NameKeyRefresh result;
  int failuresInARow = 0;
  const auto rows = database.OpenRecordset("Select FirstName, LastName, FuzzedFirstName, FuzzedLastName From Members",
                                           ado::CursorType::Dynamic);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const RowOutcome outcome = RefreshRow(*rows, keys, result);
    failuresInARow = outcome == RowOutcome::FileRefused ? failuresInARow + 1 : 0;
    if (failuresInARow == kMostFailuresInARow) {
      throw Error(ErrorNumber::ProviderFailure, kStoreSource, "nothing can be stored: " + result.firstPassedOver);
    }
  }
  return result;
}

void RefreshStoredNameKeys(cDatabase& database) noexcept {
  try {
    const NameKeyRefresh refresh = RefreshNameKeys(database);
    if (refresh.passedOver == 0) return;
    WriteDiagnostic("Name keys that could not be brought up to date: " + std::to_string(refresh.passedOver) +
                    ". The first: " + refresh.firstPassedOver);
  } catch (const std::exception& error) {
    WriteDiagnostic("Failed to bring name keys up to date: " + std::string(error.what()));
  }
}

}  // namespace tavi
