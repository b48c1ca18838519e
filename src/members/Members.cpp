// Reading and changing members' records, a statement or two for each. Each function opens the file for itself, so that
// it can be called alone; within a caller's OpenUse that only counts. Readers answer what stands for nothing known (50,
// 0, an empty text) where there is no row, as callers ask for numbers of visitors too.
#include "members/Members.h"

#include <algorithm>
#include <array>
#include <limits>

#include "names/MemberValues.h"
#include "names/NameColumns.h"
#include "names/NameSearch.h"
#include "names/NameText.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/OpenUse.h"
#include "store/Transaction.h"
#include "store/Values.h"

namespace tavi {
namespace {

std::string WhereNumberIs(std::int32_t memberNumber) {
  return "Where " + NumberIs(memberNumber);
}

/// Compared with 0: True is -1 to the database, and 1 where statements write it.
std::string WhereActiveNumberIs(std::int32_t memberNumber) {
  return WhereNumberIs(memberNumber) + " And Active <> 0";
}

/// The uniqueness flag of the row; a damaged value counts as the nearest one of its type.
std::int16_t UniquenessFlagOf(const ado::Recordset& row) {
  const std::int32_t flag = cDatabase::GetNumericField(row, "UniquenessFlag", uniqueness::kFirstName);
  return static_cast<std::int16_t>(std::clamp<std::int32_t>(flag, std::numeric_limits<std::int16_t>::min(),
                                                            std::numeric_limits<std::int16_t>::max()));
}

/// A null counts as no handicap.
double ReadHandicap(cDatabase& database, const std::string& statement) {
  return WhileOpen(database, [&] {
    const auto row = database.OpenRecordset(statement);
    return row->AtEnd() ? kNeutralHandicap : cDatabase::GetNonIntegerField(*row, "Handicap", kNeutralHandicap);
  });
}

/// A number without a row changes nothing, and is no error: -1 stands for somebody who is no member.
void UpdateMembersHandicap(cDatabase& database, double handicap, const std::string& where) {
  database.Execute("Update Members Set Handicap = " + cDatabase::SQLNumber(handicap, "the handicap") + " " + where);
}

}  // namespace

std::string NumberIs(std::int32_t memberNumber) {
  return "MembershipNumber = " + std::to_string(memberNumber);
}

// Whether retired or not.
bool MemberExists(cDatabase& database, std::int32_t memberNumber) {
  return WhileOpen(database, [&] {
    const auto row = database.OpenRecordset("Select count(*) From Members " + WhereNumberIs(memberNumber));
    // The count's column has a name that the database chooses, so it is taken by its place.
    return !row->AtEnd() && ToInt32(row->Get(row->Fields().front().name)) > 0;
  });
}

bool GetMembersNames(cDatabase& database, std::int32_t memberNumber, std::string& FirstName, std::string& Initials,
                     std::string& LastName, bool& Active) {
  return WhileOpen(database, [&] {
    // A file without a key on the number can hold it twice; the first row of this order counts.
    const auto row = database.OpenRecordset("Select FirstName, MiddleInitials, LastName, Active From Members " +
                                            WhereNumberIs(memberNumber) + " Order by Active Desc");
    if (row->AtEnd()) return false;
    FirstName = cDatabase::GetTextField(*row, "FirstName");
    Initials = cDatabase::GetTextField(*row, "MiddleInitials");
    LastName = cDatabase::GetTextField(*row, "LastName");
    Active = cDatabase::GetBooleanField(*row, "Active");
    return true;
  });
}

std::string GetFullName(cDatabase& database, std::int32_t memberNumber) {
  PlayerNameParts name;
  bool active = false;
  if (!GetMembersNames(database, memberNumber, name.FirstName, name.Initials, name.Surname, active)) return {};
  // Tabs and longer gaps stay as they are stored.
  return ReplaceAll(Trim(name.FirstName + " " + name.Initials + " " + name.Surname), "  ", " ");
}

// With the stored flag in place of the one that ReadMemberRow gives, or nobody would see what the flags say.
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

// A retired member is treated like a number that is nobody's.
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
    // EBU numbers are texts: one that is stored with leading zeros is not found.
    const std::string select = "Select MembershipNumber from Members where ";
    if (!database.OpenRecordset(select + NumberIs(EnteredNumber))->AtEnd()) return EnteredNumber;
    const auto row = database.OpenRecordset(select + "EBUNumber = '" + std::to_string(EnteredNumber) + "'");
    return row->AtEnd() ? 0 : cDatabase::GetNumericField(*row, "MembershipNumber");
  });
}

// Retired members' numbers are valid, too.
bool IsValidMemberID(cDatabase& database, std::int32_t MemberID) {
  return WhileOpen(database, [&] {
    return !database.OpenRecordset("Select top 1 MembershipNumber From Members " + WhereNumberIs(MemberID))->AtEnd();
  });
}

// Results and awards refer to the number, so the record stays and only its Active is cleared.
void DeleteMember(cDatabase& database, std::int32_t MembershipNumber) {
  database.Execute("Update Members set Active = 0 " + WhereNumberIs(MembershipNumber));
}

double GetHandicap(cDatabase& database, std::int32_t memberNumber) {
  return ReadHandicap(database, "Select Handicap from Members where " + NumberIs(memberNumber));
}

double GetActiveHandicap(cDatabase& database, std::int32_t MemberID) {
  return ReadHandicap(database, "Select Handicap From Members " + WhereActiveNumberIs(MemberID));
}

void SetActiveHandicap(cDatabase& database, std::int32_t MemberID, double NewHandicap) {
  UpdateMembersHandicap(database, NewHandicap, WhereActiveNumberIs(MemberID));
}

// Whether the member is active or not: a retired member who plays gets his handicap refreshed.
void StoreHandicap(cDatabase& database, std::int32_t memberNumber, double handicap) {
  UpdateMembersHandicap(database, handicap, WhereNumberIs(memberNumber));
}

// In one statement, which changes nobody twice where both numbers are one and nobody for the number of no member.
void StoreHandicapOfBoth(cDatabase& database, std::int32_t first, std::int32_t second, double handicap) {
  UpdateMembersHandicap(database, handicap, WhereNumberIs(first) + " Or " + NumberIs(second));
}

// Zero is also what a row without a stratum has.
std::int16_t GetPlayerStratum(cDatabase& database, std::int32_t memberNumber) {
  return WhileOpen(database, [&] {
    const auto row = database.OpenRecordset("Select Stratum from Members where " + NumberIs(memberNumber));
    return row->AtEnd() ? std::int16_t{0} : ToInt16(cDatabase::GetNumericField(*row, "Stratum"));
  });
}

void SetPlayerStratum(cDatabase& database, std::int32_t memberNumber, std::int16_t NewStratum) {
  database.Execute("Update Members Set Stratum = " + std::to_string(NewStratum) + " " + WhereNumberIs(memberNumber));
}

namespace {

/// In per cent; what is below counts as none given.
constexpr double kLowestHandicap = 1.0;

// The keys are made first: an error of the key service must come before anything is stored.
std::string InsertStatement(std::int32_t number, const MemberDetails& details, const NameKeyService& nameKeyService) {
  std::string fuzzedFirstName;
  std::string fuzzedLastName;
  MakeFuzzedNames(fuzzedFirstName, fuzzedLastName, {details.FirstName, details.Initials, details.LastName},
                  nameKeyService);
  const auto text = [](const std::string& value) { return cDatabase::SQLString(value); };
  // In the order of the columns in the statement below.
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

/// The message runs "a" and the next word together; programs know it that way.
Error NameIsTaken(const MemberDetails& details, bool retired) {
  return Error(ErrorNumber::Component, kStoreSource,
               std::string("There is already a") + (retired ? "retired " : "") + "member called " +
                   JoinNameParts(details.FirstName, details.Initials, details.LastName));
}

}  // namespace

// Numbers of retired members count, because results and awards still refer to them; gaps are not filled.
std::int32_t NextAvailableMemberNo(cDatabase& database) {
  return WhileOpen(database, [&] {
    const auto row =
        database.OpenRecordset("Select Top 1 MembershipNumber from Members Order by MembershipNumber Desc");
    if (row->AtEnd()) return 1;
    const std::int32_t highest = cDatabase::GetNumericField(*row, "MembershipNumber");
    // The next one would be negative, and negative numbers stand for people who are no members.
    if (highest == std::numeric_limits<std::int32_t>::max()) {
      throw Error(ErrorNumber::Overflow, kStoreSource,
                  "Overflow: there is no membership number behind " + std::to_string(highest) +
                      "; give the member who has it another one.");
    }
    return highest + 1;
  });
}

// All of a new member is stored or nothing: the row, then what the insert has no place for, then the flags of those
// who bear the same first name, since a namesake makes their names longer too.
std::int32_t AddMember(cDatabase& database, const MemberDetails& details) {
  return InTransaction(database, [&] {
    // Asked within the transaction: nobody else can take the number before the row is there.
    const std::int32_t number = details.RequiredID == kNoMember ? NextAvailableMemberNo(database) : details.RequiredID;
    // Before the first statement, although it is stored by the second.
    RequireNumber(details.Handicap, "the handicap");
    database.Execute(InsertStatement(number, details, *database.GetPlatform().nameKeyService));
    // The insert has no column for it, as programs know the statement.
    StoreHandicap(database, number, details.Handicap);
    // Only members of one first name can be taken for each other.
    SetNameUniquenessFlags(database, details.FirstName);
    return number;
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
  details.MemberType = kStandardMember;
  // The first day of 1800 stands for one that is not known.
  details.JoinDate = unknown;
  details.LastPaid = unknown;
  details.NextDue = unknown;

  return WhileOpen(database, [&] {
    bool retired = false;
    // Names of retired members are taken too: whoever comes back has a record already.
    if (GetMembershipID(database, FirstName, Initials, LastName, retired) != kNoMember) {
      throw NameIsTaken(details, retired);
    }
    return AddMember(database, details);
  });
}

}  // namespace tavi
