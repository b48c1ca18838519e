#include "names/NameColumns.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <string>

#include "names/MemberValues.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/OpenUse.h"
#include "util/Diagnostics.h"

// How much of each active member's name has to be shown. With the members sorted by first name and surname, whoever has
// most of the name in common with a member stands next to him; so each is compared with his two neighbours only, and
// gets the smaller of the two levels (a smaller number means that more is to be shown). The cost is one sorted walk.

namespace tavi {
namespace {

constexpr std::int32_t kNotStored = 0;

struct ActiveMember {
  std::string firstName;
  std::string surname;
  std::int32_t storedFlag = kNotStored;
  std::int32_t flag = uniqueness::kFirstName;
};

// From the coarsest difference to the finest, as a name grows when more of it is shown.
std::int32_t LevelBetween(const ActiveMember& left, const ActiveMember& right) {
  if (!EqualIgnoringCase(left.firstName, right.firstName)) return uniqueness::kFirstName;
  if (UpperCase(FirstCharacters(left.surname, 1)) != UpperCase(FirstCharacters(right.surname, 1)))
    return uniqueness::kSurnameLetter;
  return EqualIgnoringCase(left.surname, right.surname) ? uniqueness::kAllOfName : uniqueness::kSurname;
}

/// Reads all rows and gives each the smaller level of its two neighbours.
std::vector<ActiveMember> ReadMembers(ado::Recordset& rows) {
  std::vector<ActiveMember> members;
  for (; !rows.AtEnd(); rows.MoveNext()) {
    ActiveMember member{cDatabase::GetTextField(rows, "FirstName"), cDatabase::GetTextField(rows, "LastName"),
                        cDatabase::GetNumericField(rows, "UniquenessFlag", kNotStored)};
    if (!members.empty()) {
      const std::int32_t level = LevelBetween(members.back(), member);
      members.back().flag = std::min(members.back().flag, level);
      member.flag = level;
    }
    members.push_back(std::move(member));
  }
  return members;
}

}  // namespace

void SetNameUniquenessFlags(cDatabase& database, const std::string& FirstName) {
  WhileOpen(database, [&] {
    const std::string condition = FirstName.empty() ? "" : " And FirstName = " + cDatabase::SQLString(FirstName);
    // Sorted by name, so that a name's nearest likenesses are its two neighbours.
    const auto rows = database.OpenRecordset(
        "Select FirstName, MiddleInitials, LastName, UniquenessFlag From Members Where Active <> 0 " + condition +
            "Order By FirstName, LastName, MiddleInitials",
        ado::CursorType::Dynamic);
    // All of them first: a flag is only known when the next row has been seen.
    const std::vector<ActiveMember> members = ReadMembers(*rows);
    // Backwards over the rows again, writing only what differs: opening an unchanged club must not change its file.
    for (auto member = members.rbegin(); member != members.rend(); ++member) {
      rows->MovePrevious();
      if (member->storedFlag == member->flag) continue;
      rows->Set("UniquenessFlag", static_cast<std::int16_t>(member->flag));
      rows->Update();
    }
  });
}

std::vector<FirstOpenStep> NameSteps() {
  return {
      {"refreshing the uniqueness flags of names", [](cDatabase& database) { SetNameUniquenessFlags(database, ""); }},
      // The file's keys may be of another function than this version's.
      {"refreshing the keys of names", RefreshStoredNameKeys}};
}

}  // namespace tavi

// Keys that lie in the file are brought up to date with the key function at hand. Names and keys are compared as the
// columns hold them, with % and line feeds written in their stored form; a key is made of the name as it is. Only rows
// that differ are written, so that a file whose keys are right stays as it is.

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
