#include <array>
#include <limits>

#include "members/Members.h"
#include "names/MemberValues.h"
#include "names/NameText.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/Transaction.h"
#include "store/cDatabase.h"

namespace tavi {
namespace {

std::string InsertStatement(std::int32_t number, const MemberDetails& details, const NameKeyService& nameKeyService) {
  std::string fuzzedFirstName;
  std::string fuzzedLastName;
  MakeFuzzedNames(fuzzedFirstName, fuzzedLastName, {details.FirstName, details.Initials, details.LastName},
                  nameKeyService);
  const auto text = [](const std::string& value) { return cDatabase::SQLString(value); };
  const std::array<std::string, 25> values{std::to_string(number),
                                           text(""),  // EBUNumber
                                           text(details.Title),
                                           text(details.FirstName),
                                           text(details.Initials),
                                           text(details.LastName),
                                           text(fuzzedFirstName),
                                           text(fuzzedLastName),
                                           text(""),  // KnownAs
                                           std::to_string(details.Gender),
                                           "Null",  // DOB
                                           text(details.email),
                                           text(details.HouseID),
                                           text(details.Address),
                                           text(details.PostCode),
                                           text(details.HomePhone),
                                           text(details.WorkPhone),
                                           text(details.MobilePhone),
                                           text(details.Notes),
                                           text(details.MemberType),
                                           cDatabase::SQLDate(details.JoinDate),
                                           cDatabase::SQLDate(details.LastPaid),
                                           cDatabase::SQLDate(details.NextDue),
                                           cDatabase::SQLNumber(details.Subs, "the subscription"),
                                           details.Privacy ? "1" : "0"};
  std::string joined;
  for (const std::string& value : values) joined += (joined.empty() ? "" : ", ") + value;
  return "Insert into Members (MembershipNumber, EBUNumber, Title, FirstName, MiddleInitials, LastName, "
         "FuzzedFirstName, FuzzedLastName, KnownAs, Sex, DOB, email, HouseID, Address, PostCode, HomePhone, WorkPhone, "
         "MobilePhone, Notes, MemberType, DateOfJoining, SubsPaid, SubsDue, AmountOwing, Privacy) Values (" +
         joined + ")";
}

}  // namespace

std::int32_t cDatabase::NextAvailableMemberNo() {
  return WhileOpen(*this, [&] {
    const auto row = OpenRecordset("Select Top 1 MembershipNumber from Members Order by MembershipNumber Desc");
    if (row->AtEnd()) return 1;
    const std::int32_t highest = GetNumericField(*row, "MembershipNumber");
    if (highest == std::numeric_limits<std::int32_t>::max()) {
      throw Error(ErrorNumber::Overflow, "cDatabase",
                  "Overflow: there is no membership number behind " + std::to_string(highest) +
                      "; give the member who has it another one.");
    }
    return highest + 1;
  });
}

std::int32_t cDatabase::AddMember(const MemberDetails& details) {
  return InTransaction(*this, [&] {
    const std::int32_t number = details.RequiredID == kNoMember ? NextAvailableMemberNo() : details.RequiredID;
    const std::string setHandicap =
        "Update Members Set Handicap = " + SQLNumber(details.Handicap, "the handicap") + " ";
    Execute(InsertStatement(number, details, *platform_->nameKeyService));
    Execute(setHandicap + WhereNumberIs(number));
    SetNameUniquenessFlags(details.FirstName);
    return number;
  });
}

bool cDatabase::MemberExists(std::int32_t memberNumber) {
  return WhileOpen(*this, [&] {
    const auto row = OpenRecordset("Select count(*) From Members " + WhereNumberIs(memberNumber));
    return !row->AtEnd() && ToInt32(row->Get(row->Fields().front().name)) > 0;
  });
}

bool cDatabase::GetMembersNames(std::int32_t memberNumber, std::string& FirstName, std::string& Initials,
                                std::string& LastName, bool& Active) {
  return WhileOpen(*this, [&] {
    const auto row = OpenRecordset("Select FirstName, MiddleInitials, LastName, Active From Members " +
                                   WhereNumberIs(memberNumber) + " Order by Active Desc");
    if (row->AtEnd()) return false;
    FirstName = GetTextField(*row, "FirstName");
    Initials = GetTextField(*row, "MiddleInitials");
    LastName = GetTextField(*row, "LastName");
    Active = GetBooleanField(*row, "Active");
    return true;
  });
}

std::string cDatabase::GetFullName(std::int32_t memberNumber) {
  PlayerNameParts name;
  bool active = false;
  if (!GetMembersNames(memberNumber, name.FirstName, name.Initials, name.Surname, active)) return {};
  // Tabs and longer gaps stay as they are stored.
  return ReplaceAll(Trim(name.FirstName + " " + name.Initials + " " + name.Surname), "  ", " ");
}

std::int32_t cDatabase::GetMembershipID(const std::string& FirstName, const std::string& Initials,
                                        const std::string& LastName, bool& Retired) {
  return WhileOpen(*this, [&] {
    const auto row =
        OpenRecordset("Select MembershipNumber, Active from Members Where FirstName = " + SQLString(FirstName) +
                      " And MiddleInitials = " + SQLString(Initials) + " And LastName = " + SQLString(LastName));
    if (row->AtEnd()) return kNoMember;
    Retired = !GetBooleanField(*row, "Active");
    return GetNumericField(*row, "MembershipNumber", kNoMember);
  });
}

double cDatabase::GetHandicap(std::int32_t memberNumber) {
  return WhileOpen(*this, [&] {
    const auto row =
        OpenRecordset("Select Handicap from Members where MembershipNumber = " + std::to_string(memberNumber));
    return row->AtEnd() ? kNeutralHandicap : GetNonIntegerField(*row, "Handicap", kNeutralHandicap);
  });
}

std::int16_t cDatabase::GetPlayerStratum(std::int32_t memberNumber) {
  return WhileOpen(*this, [&] {
    const auto row =
        OpenRecordset("Select Stratum from Members where MembershipNumber = " + std::to_string(memberNumber));
    return row->AtEnd() ? std::int16_t{0} : ToInt16(GetNumericField(*row, "Stratum"));
  });
}

void cDatabase::SetPlayerStratum(std::int32_t memberNumber, std::int16_t NewStratum) {
  Execute("Update Members Set Stratum = " + std::to_string(NewStratum) + " " + WhereNumberIs(memberNumber));
}

}  // namespace tavi
