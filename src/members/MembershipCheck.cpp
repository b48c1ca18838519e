// A number and a name from a scoring program are checked against the members, and a newcomer is enrolled. The name is
// asked first: whoever bears exactly this name is meant, even where the number is another member's. Only a name that is
// nobody's, or that of the number's owner, leaves the number to decide.
#include "members/MembershipCheck.h"

#include "members/Members.h"
#include "names/NameSearch.h"
#include "names/cPlayerDetails.h"
#include "platform/values/Convert.h"
#include "store/OpenUse.h"
#include "store/Values.h"

namespace tavi {
namespace {

constexpr std::int32_t kEnrolled = -1;

/// A field of the policy's row.
template <typename Read>
auto PolicyField(const ado::Recordset& row, std::string_view column, const Read& read) {
  return ReadField(row, column, read,
                   [] { return "the table ClubPolicies, row \"" + std::string(kStandardMember) + "\","; });
}

/// The fixed day of this year, or of the next when it is not after today.
// By the written day and month and not by adding years to the stored date: 29 February has to be refused in other
// years, not moved.
Date NextFixedDay(Date fixedDay, Date today) {
  const std::string text = fixedDay.DayMonthYear();
  const std::string dayAndMonth = text.substr(0, text.rfind(' ') + 1);
  const Date thisYear = ToDate(dayAndMonth + std::to_string(today.Civil().year));
  return thisYear <= today ? thisYear.AddYears(1) : thisYear;
}

/// What the policy says is read before the member is added, so that a policy which cannot be read enrols nobody.
void Enrol(cDatabase& store, std::int32_t number, const PlayerNameParts& name, double handicap) {
  const SubscriptionTerms terms = GetStandardSubscriptionTerms(store);
  MemberDetails member;
  member.FirstName = name.FirstName;
  member.Initials = name.Initials;
  member.LastName = name.Surname;
  member.Handicap = handicap;
  member.MemberType = kStandardMember;
  // The days of joining and of the last payment are those of an unknown detail.
  member.NextDue = terms.NextDue;
  member.Subs = terms.Amount;
  member.RequiredID = number;
  AddMember(store, member);
}

}  // namespace

SubscriptionTerms GetStandardSubscriptionTerms(cDatabase& store) {
  const Date today = store.GetPlatform().clock->Now().DayOnly();
  SubscriptionTerms terms{today.AddYears(1), 0.0};
  OpenUse use(store);
  const auto rows =
      store.OpenRecordset("Select * from ClubPolicies Where MemberType = " + cDatabase::SQLString(kStandardMember));
  if (!rows->AtEnd()) {
    if (PolicyField(*rows, "SpecificDate", ToBoolean)) {
      // Without a stored day it is the day a year from today, which is then taken like a fixed day.
      terms.NextDue = PolicyField(*rows, "SubsDueDate", [&terms, today](const Value& day) {
        return NextFixedDay(IsNull(day) ? terms.NextDue : ToDate(day), today);
      });
    }
    terms.Amount =
        PolicyField(*rows, "Subs", [](const Value& amount) { return IsNull(amount) ? 0.0 : ToDouble(amount); });
  }
  rows->Close();
  use.Close();
  return terms;
}

std::int32_t CheckMembershipID(cDatabase& store, std::int32_t MembershipID, const std::string& Name, double Par,
                               bool& Retired) {
  // With its keys, so that a key service that is out of order is met before anything else is done.
  cPlayerDetails player(store.GetPlatform().nameKeyService);
  player.SetName(Name);
  const PlayerNameParts& name = player.NameParts();
  OpenUse use(store);
  bool retiredNamesake = false;
  const std::int32_t namesake = GetMembershipID(store, name.FirstName, name.Initials, name.Surname, retiredNamesake);
  std::int32_t result = namesake;
  if (namesake == kNoMember || namesake == MembershipID) {
    const auto rows = store.OpenRecordset("Select Active from Members Where " + NumberIs(MembershipID));
    const bool known = !rows->AtEnd();
    if (known) Retired = !ToBoolean(rows->Get("Active"));
    rows->Close();
    if (!known) Enrol(store, MembershipID, name, Par);
    result = known ? MembershipID : kEnrolled;
  }
  use.Close();
  return result;
}

}  // namespace tavi
