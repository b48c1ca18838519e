#include "host/tools/MissingNumbers.h"

#include <array>
#include <functional>
#include <optional>

#include "platform/values/Convert.h"
#include "platform/values/Error.h"

namespace tavi::host {
namespace {

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

}  // namespace tavi::host
