// New members. All of a member is stored or nothing, by one transaction: the row, then what the insert has no place
// for, then the flags of those who bear the same first name, since a namesake makes their names longer too.
#include "members/NewMembers.h"

#include <array>
#include <limits>

#include "members/Members.h"
#include "names/NameSearch.h"
#include "names/NameText.h"
#include "names/NameUniqueness.h"
#include "store/Transaction.h"
#include "store/Values.h"

namespace tavi {
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
    if (highest == std::numeric_limits<std::int32_t>::max()) {
      throw Error(ErrorNumber::Overflow, kStoreSource,
                  "Overflow: there is no membership number behind " + std::to_string(highest) +
                      "; give the member who has it another one.");
    }
    return highest + 1;
  });
}

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
