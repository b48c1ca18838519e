#include "host/commands/ClubCheck.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "host/commands/OpenFile.h"
#include "names/NameColumns.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "store/cDatabase.h"

// What a club's own programs would stumble over in a file that is sound: names whose keys are of another version, and
// rows without the numbers that handicaps are made of. Both walk tables with the engine itself, one row at a time and
// only the columns that are needed, so that each value is seen as it is stored.
namespace tavi::host {
namespace {

/// Positions of first name, last name and their keys.
using Places = std::array<std::size_t, 4>;

/// Nothing for a table without these columns: another program's, or one of an early version.
std::optional<Places> FindPlaces(const access::Table& members) {
  constexpr std::array<const char*, 4> kNames{"FirstName", "LastName", "FuzzedFirstName", "FuzzedLastName"};
  Places places{};
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const std::optional<std::size_t> place = members.FindColumn(kNames[i]);
    if (!place) return std::nullopt;
    places[i] = *place;
  }
  return places;
}

/// A null is no name, and no key.
std::string TextOf(const Value& value) {
  const std::string* text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : *text;
}

}  // namespace

NameKeyCount CountNameKeys(access::Database& database, const NameKeyService& keys) {
  // One statement, so that all rows are read as the file is at one moment.
  const access::ReadStatement statement(database.GetPager());
  NameKeyCount count;
  const std::shared_ptr<access::Table> members = database.FindTable("Members");
  const std::optional<Places> places = members == nullptr ? std::nullopt : FindPlaces(*members);
  if (!places) return count;
  const auto& [firstName, lastName, firstKey, lastKey] = *places;
  std::vector<bool> wanted(members->Columns().size());
  for (const std::size_t place : *places) wanted[place] = true;
  for (auto row = members->Next(std::nullopt); row.has_value(); row = members->Next(row)) {
    const access::RowValues values = members->Read(*row, wanted);
    const StoredNames names{TextOf(values[firstName]), TextOf(values[lastName]), TextOf(values[firstKey]),
                            TextOf(values[lastKey])};
    ++count.members;
    // Compared with what the first open of the file would store.
    if (WithFreshKeys(names, keys) != names) ++count.stale;
  }
  return count;
}

namespace {

// Whoever mends the file calls the check again.
constexpr std::size_t kMostRows = 100;

/// The values of some columns of a row, in the order in which they were asked for.
using Values = std::vector<Value>;
using ColumnNames = std::vector<const char*>;

/// Calls `visit` for each row of a table; for none where the table or one of the columns is missing.
void VisitRows(access::Database& database, const char* tableName, const ColumnNames& columns,
               const std::function<void(const Values&)>& visit) {
  const std::shared_ptr<access::Table> table = database.FindTable(tableName);
  if (table == nullptr) return;
  std::vector<bool> wanted(table->Columns().size());
  std::vector<std::size_t> places;
  for (const char* column : columns) {
    const std::optional<std::size_t> place = table->FindColumn(column);
    // Without one of its columns it is no club's table.
    if (!place) return;
    places.push_back(*place);
    wanted[*place] = true;
  }
  for (auto row = table->Next(std::nullopt); row.has_value(); row = table->Next(row)) {
    const access::RowValues values = table->Read(*row, wanted);
    Values found;
    for (const std::size_t place : places) found.push_back(values[place]);
    visit(found);
  }
}

/// What is wrong with a value that should be a number; empty when it is one.
/// Both kinds matter in another way: a null is passed over where handicaps are made, a value that does not convert is
/// an error there.
template <typename Read>
std::string Lack(const Value& value, const Read& read) {
  if (IsNull(value)) return "no";
  try {
    static_cast<void>(read(value));
  } catch (const Error&) {
    return "no readable";
  }
  return {};
}

std::string Shown(const Value& value) {
  return IsNull(value) ? "(none)" : ToText(value);
}

/// Counts what is beyond the bound, so that the message is honest about it.
void Add(MissingNumbers& missing, const std::string& text) {
  if (missing.rows.size() < kMostRows) {
    missing.rows.push_back(text);
  } else {
    ++missing.more;
  }
}

}  // namespace

MissingNumbers FindMissingNumbers(access::Database& database) {
  const access::ReadStatement statement(database.GetPager());
  MissingNumbers missing;
  VisitRows(database, "Results", {"ActualPercentage", "Player", "Partner", "Competition"}, [&](const Values& row) {
    // The percentage is the first of the columns asked for; the others say whose row it is.
    const std::string lack = Lack(row[0], ToDouble);
    if (lack.empty()) return;
    Add(missing, "Results: player " + Shown(row[1]) + " with partner " + Shown(row[2]) + " in competition " +
                     Shown(row[3]) + " has " + lack + " percentage.");
  });
  VisitRows(database, "Members", {"MembershipNumber", "FirstName", "LastName"}, [&](const Values& row) {
    const std::string lack = Lack(row[0], ToInt32);
    if (lack.empty()) return;
    Add(missing, "Members: " + Shown(row[1]) + " " + Shown(row[2]) + " has " + lack + " membership number.");
  });
  VisitRows(database, "Partnerships", {"LowerPlayer", "HigherPlayer"}, [&](const Values& row) {
    if (Lack(row[0], ToInt32).empty() && Lack(row[1], ToInt32).empty()) return;
    Add(missing, "Partnerships: the pair of " + Shown(row[0]) + " and " + Shown(row[1]) + " lacks a player's number.");
  });
  return missing;
}

namespace {

/// A field as `read` converts it; nothing where it is empty.
template <typename Read>
auto FieldIn(const ado::Recordset& row, const char* column, const Read& read) {
  const Value value = row.Get(column);
  return IsNull(value) ? std::nullopt : std::optional(read(value));
}

}  // namespace

std::vector<IncompletePair> IncompletePairs(const Context& context, const std::string& file) {
  const std::unique_ptr<ado::Connection> connection = Connect(context, file);
  const std::unique_ptr<ado::Recordset> rows = connection->OpenRecordset(
      // Walks leave these pairs out, so they are asked for by a statement. As in walks, a null HigherFirst means the
      // higher number first.
      "Select LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs, Active From Partnerships "
      "Where LowerPlayer Is Null Or HigherPlayer Is Null",
      ado::CursorType::ForwardOnly, ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  std::vector<IncompletePair> pairs;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    IncompletePair pair;
    pair.first = FieldIn(*rows, "LowerPlayer", ToInt32);
    pair.second = FieldIn(*rows, "HigherPlayer", ToInt32);
    if (cDatabase::GetBooleanField(*rows, "HigherFirst", true)) std::swap(pair.first, pair.second);
    pair.knownAs = cDatabase::GetTextField(*rows, "KnownAs");
    pair.handicap = FieldIn(*rows, "Handicap", ToDouble);
    pair.active = cDatabase::GetBooleanField(*rows, "Active");
    pairs.push_back(std::move(pair));
  }
  rows->Close();
  connection->Close();
  return pairs;
}

}  // namespace tavi::host
