#include "host/tools/NameKeyCheck.h"

#include <array>
#include <optional>
#include <string>

#include "names/StoredNameKeys.h"

namespace tavi::host {
namespace {

/// Positions of first name, last name and their keys.
using Places = std::array<std::size_t, 4>;

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

std::string TextOf(const Value& value) {
  const std::string* text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : *text;
}

}  // namespace

NameKeyCount CountNameKeys(access::Database& database, const NameKeyService& keys) {
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
    if (WithFreshKeys(names, keys) != names) ++count.stale;
  }
  return count;
}

}  // namespace tavi::host
