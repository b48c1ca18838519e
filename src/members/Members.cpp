#include "members/Members.h"

#include <algorithm>
#include <limits>

#include "names/MemberRow.h"
#include "names/MemberValues.h"
#include "names/NameText.h"
#include "platform/values/Convert.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

constexpr std::int32_t kFirstNameSuffices = 4;
constexpr double kLowestHandicap = 1.0;

std::string WhereActiveNumberIs(std::int32_t memberNumber) {
  return WhereNumberIs(memberNumber) + " And Active <> 0";
}

/// The uniqueness flag of the row; a damaged value counts as the nearest one of its type.
std::int16_t UniquenessFlagOf(const ado::Recordset& row) {
  const std::int32_t flag = cDatabase::GetNumericField(row, "UniquenessFlag", kFirstNameSuffices);
  return static_cast<std::int16_t>(std::clamp<std::int32_t>(flag, std::numeric_limits<std::int16_t>::min(),
                                                            std::numeric_limits<std::int16_t>::max()));
}

/// The message runs "a" and the next word together; programs know it that way.
Error NameIsTaken(const MemberDetails& details, bool retired) {
  return Error(ErrorNumber::Component, "cDatabase",
               std::string("There is already a") + (retired ? "retired " : "") + "member called " +
                   JoinNameParts(details.FirstName, details.Initials, details.LastName));
}

}  // namespace

std::string WhereNumberIs(std::int32_t memberNumber) {
  return "Where MembershipNumber = " + std::to_string(memberNumber);
}

std::shared_ptr<cPlayerDetails> FindActiveMember(cDatabase& database, std::int32_t memberNumber) {
  return WhileOpen(database, [&]() -> std::shared_ptr<cPlayerDetails> {
    const auto row = database.OpenRecordset("Select " + std::string(kMemberRowColumns) + " From Members " +
                                            WhereActiveNumberIs(memberNumber));
    if (row->AtEnd()) return nullptr;
    auto member = ReadMemberRow(*row, database.GetPlatform().nameKeyService);
    member->UniquenessFlag = UniquenessFlagOf(*row);
    return member;
  });
}

std::int32_t AddNewMember(cDatabase& database, const std::string& FirstName, const std::string& Initials,
                          const std::string& LastName, std::optional<double> Handicap) {
  const Date unknown = Date::FromCivil(1800, 1, 1);
  MemberDetails details;
  details.FirstName = FirstName;
  details.Initials = Initials;
  details.LastName = LastName;
  details.Handicap = Handicap && *Handicap >= kLowestHandicap ? *Handicap : kNeutralHandicap;
  details.MemberType = "Standard";
  details.JoinDate = unknown;
  details.LastPaid = unknown;
  details.NextDue = unknown;

  return WhileOpen(database, [&] {
    bool retired = false;
    if (database.GetMembershipID(FirstName, Initials, LastName, retired) != kNoMember) {
      throw NameIsTaken(details, retired);
    }
    return database.AddMember(details);
  });
}

std::string GetNameAndEBUNumber(cDatabase& database, std::int32_t MemberNo, std::int16_t NameFormat,
                                std::string& EBUNumber, const std::string& DefaultName) {
  const auto member = FindActiveMember(database, MemberNo);
  EBUNumber = member ? member->EBUNumber : std::string();
  return member ? member->Name(NameFormat) : DefaultName;
}

std::string GetEBUNoAndNames(cDatabase& database, std::int32_t MemberNo, std::string& FirstName, std::string& Initials,
                             std::string& LastName) {
  const auto member = FindActiveMember(database, MemberNo);
  const PlayerNameParts name = member ? member->NameParts() : PlayerNameParts();
  FirstName = name.FirstName;
  Initials = name.Initials;
  LastName = name.Surname;
  return member ? member->EBUNumber : std::string();
}

void SetEBUNumber(cDatabase& database, std::int32_t MemberNo, const std::string& EBUNo) {
  database.Execute("Update Members set EBUNumber = " + cDatabase::SQLString(EBUNo) + " " + WhereNumberIs(MemberNo));
}

std::int32_t EnteredNumberToClubNumber(cDatabase& database, std::int32_t EnteredNumber) {
  return WhileOpen(database, [&] {
    const std::string number = std::to_string(EnteredNumber);
    const std::string select = "Select MembershipNumber from Members where ";
    if (!database.OpenRecordset(select + "MembershipNumber = " + number)->AtEnd()) return EnteredNumber;
    const auto row = database.OpenRecordset(select + "EBUNumber = '" + number + "'");
    return row->AtEnd() ? 0 : cDatabase::GetNumericField(*row, "MembershipNumber");
  });
}

void DeleteMember(cDatabase& database, std::int32_t MembershipNumber) {
  database.Execute("Update Members set Active = 0 " + WhereNumberIs(MembershipNumber));
}

double GetActiveHandicap(cDatabase& database, std::int32_t MemberID) {
  return WhileOpen(database, [&] {
    const auto row = database.OpenRecordset("Select Handicap From Members " + WhereActiveNumberIs(MemberID));
    return row->AtEnd() ? kNeutralHandicap : cDatabase::GetNonIntegerField(*row, "Handicap", kNeutralHandicap);
  });
}

void SetActiveHandicap(cDatabase& database, std::int32_t MemberID, double NewHandicap) {
  database.Execute("Update Members Set Handicap = " + cDatabase::SQLNumber(NewHandicap, "the handicap") + " " +
                   WhereActiveNumberIs(MemberID));
}

bool IsValidMemberID(cDatabase& database, std::int32_t MemberID) {
  return WhileOpen(database, [&] {
    return !database.OpenRecordset("Select top 1 MembershipNumber From Members " + WhereNumberIs(MemberID))->AtEnd();
  });
}

}  // namespace tavi
