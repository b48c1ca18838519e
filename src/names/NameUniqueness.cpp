// How much of each active member's name has to be shown. With the members sorted by first name and surname, whoever has
// most of the name in common with a member stands next to him; so each is compared with his two neighbours only, and
// gets the smaller of the two levels (a smaller number means that more is to be shown). The cost is one sorted walk.
#include "names/NameUniqueness.h"

#include <algorithm>

#include "names/MemberValues.h"
#include "names/StoredNameKeys.h"
#include "platform/values/Text.h"
#include "store/OpenUse.h"

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
