#include "facade/faults/support/Operations.h"

#include <algorithm>
#include <memory>

#include "platform/values/Convert.h"

namespace tavi::testing {
namespace {

using Club = MembershipDatabase;
using Kind = ProviderCall::Kind;

const Date kEvening = Date::FromCivil(2025, 9, 17);
const Date kNextEvening = Date::FromCivil(2025, 9, 24);
const Date kToday = Date::FromCivil(2000, 1, 1);

constexpr std::int16_t kFirstAndLastName = 5;

std::string Text(bool value) {
  return value ? "True" : "False";
}
std::string Text(std::int32_t value) {
  return std::to_string(value);
}
std::string Text(double value) {
  return NumberText(value);
}
std::string Text(const std::string& value) {
  return value;
}

template <typename... Values>
std::string Joined(const Values&... values) {
  std::string joined;
  ((joined += (joined.empty() ? "" : " | ") + Text(values)), ...);
  return joined;
}

std::string Done() {
  return "done";
}

// --- What stays open -------------------------------------------------------------------------------------------------

/// Walks close the file first, then hold it open until they end.
int OpenDuringAWalk(const Progress& progress) {
  return progress.FailedIn(Kind::Open) || progress.FailedIn(Kind::CloseConnection) ? 0 : 1;
}

int Closed(const Progress& /*progress*/) {
  return 0;
}

/// A registration leaves the file open from its look for the competition on.
int OpenAfterRegistration(const Progress& progress) {
  const bool isReached = progress.CountOf("Select * from Competitions") > 0;
  return progress.openCountBefore + (isReached ? 1 : 0);
}

/// Each calculation leaves the file open once more; its first question is for the pair's seed, or the player's.
int OpenAfterPairCalculation(const Progress& progress) {
  const bool isReached = progress.CountOf("Select HandicalcSeed, HandicalcSeedDate From Partnerships") > 0;
  return progress.openCountBefore + (isReached ? 1 : 0);
}

int OpenAfterPlayerCalculation(const Progress& progress) {
  const bool isReached = progress.CountOf("Select MembershipNumber, HandicalcSeed") > 0;
  return progress.openCountBefore + (isReached ? 1 : 0);
}

/// Three pairs; no member is calculated alone, because each active one plays in a pair.
int OpenAfterRecalculation(const Progress& progress) {
  return progress.openCountBefore + progress.CountOf("Select HandicalcSeed, HandicalcSeedDate From Partnerships");
}

/// An award that fails leaves the file open once more.
int OpenAfterAward(const Progress& progress) {
  const bool isOpened = !progress.FailedIn(Kind::Open) && !progress.FailedIn(Kind::CloseConnection);
  return progress.openCountBefore + (progress.failed && isOpened ? 1 : 0);
}

/// The end of an update gives back the one use that its registration took.
int OpenAfterEndOfUpdate(const Progress& progress) {
  return progress.FailedIn(Kind::Execute) ? progress.openCountBefore : std::max(progress.openCountBefore - 1, 0);
}

// --- The operations --------------------------------------------------------------------------------------------------

Operation FirstPartnership(bool inactiveToo) {
  return {.name = inactiveToo ? "GetFirstPartnership_inactiveToo" : "GetFirstPartnership",
          .call =
              [](Club& club) {
                std::int32_t p1 = 0, p2 = 0;
                std::string name1, name2, pair, alternate;
                double par = 12.5;
                const bool found =
                    club.GetFirstPartnership(p1, name1, p2, name2, pair, alternate, par, kFirstAndLastName);
                return Joined(found, p1, name1, p2, name2, pair, alternate, par);
              },
          .prepare = [inactiveToo](Club& club) { club.IncludeInactiveMembers = inactiveToo; },
          .openCount = OpenDuringAWalk,
          // Beginning a walk ends the one before, which parts retired players from their pairs.
          .isRepeatable = false};
}

std::string NextPartnership(Club& club) {
  std::int32_t p1 = 0, p2 = 0;
  std::string name1, name2, pair, alternate;
  double par = 12.5;
  const bool found = club.GetNextPartnership(p1, name1, p2, name2, pair, alternate, par, kFirstAndLastName);
  return Joined(found, p1, name1, p2, name2, pair, alternate, par);
}

std::string NextMember(Club& club) {
  std::int32_t number = 0;
  std::string name;
  double par = 0.0;
  const bool found = club.GetNextMember(number, name, par, kFirstAndLastName);
  return Joined(found, number, name, par);
}

std::string FirstMember(Club& club) {
  std::int32_t number = 0;
  std::string name;
  double par = 0.0;
  const bool found = club.GetFirstMember(number, name, par, kFirstAndLastName);
  return Joined(found, number, name, par);
}

std::string FirstEBURecord(Club& club) {
  std::string number, name;
  const bool found = club.GetFirstEBURecord(number, name, kFirstAndLastName);
  return Joined(found, number, name);
}

std::string NextEBURecord(Club& club) {
  std::string number, name;
  const bool found = club.GetNextEBURecord(number, name, "5");
  return Joined(found, number, name);
}

/// As far as the last row of a walk of partnerships.
void WalkPartnerships(Club& club) {
  static_cast<void>(FirstPartnership(false).call(club));
  static_cast<void>(NextPartnership(club));
}

std::string Check(Club& club, std::int32_t number, const std::string& name) {
  bool retired = false;
  const std::int32_t result = club.CheckMembershipID(number, name, 44.0, retired);
  return Joined(result, retired);
}

std::string Register(Club& club, const std::string& name, Date date) {
  return Text(club.SetCompetitionEx(name, date, false, 0, 0, true, false, 1, 5, 2, "EBU", 0, true, 4));
}

void RegisterQuietly(Club& club) {
  static_cast<void>(Register(club, "Wednesday", kEvening));
}

std::string Calculated(Club& club, std::int32_t player, std::int32_t partner, const std::string& name, Date date,
                       bool individual) {
  const Handicaps handicaps = club.CalculateHandicaps(player, partner, name, date, individual);
  return Joined(handicaps.PartnershipHandicap(), handicaps.Player1Handicap(), handicaps.Player2Handicap());
}

std::vector<Operation> MemberOperations() {
  const std::string taken = "There is already amember called ";
  return {{.name = "OpenDatabase",
           .call =
               [](Club& club) {
                 club.OpenDatabase();
                 return Done();
               },
           .openCount =
               [](const Progress& progress) {
                 return progress.failed ? progress.openCountBefore : progress.openCountBefore + 1;
               }},
          {.name = "CloseDatabase",
           .call =
               [](Club& club) {
                 club.CloseDatabase();
                 return Done();
               },
           .openCount = Closed},
          {.name = "AddNewMember",
           .call = [](Club& club) { return Text(club.AddNewMember("Jane", "B", "Smythe", 47.5)); },
           .isAllOrNothing = true,
           .isRepeatable = false,
           .refusal = taken + "Jane B Smythe"},
          {.name = "GetMemberName", .call = [](Club& club) { return club.GetMemberName(2, kFirstAndLastName); }},
          {.name = "GetNameAndEBUNumber",
           .call =
               [](Club& club) {
                 std::string number;
                 const std::string name = club.GetNameAndEBUNumber(2, kFirstAndLastName, number);
                 return Joined(name, number);
               }},
          {.name = "GetEBUNoAndNames",
           .call =
               [](Club& club) {
                 std::string first, initials, last;
                 const std::string number = club.GetEBUNoAndNames(2, first, initials, last);
                 return Joined(number, first, initials, last);
               }},
          {.name = "SetEBUNumber",
           .call =
               [](Club& club) {
                 club.SetEBUNumber(3, "100003");
                 return Done();
               }},
          {.name = "EnteredNumberToClubNumber",
           .call = [](Club& club) { return Text(club.EnteredNumberToClubNumber(100002)); }},
          {.name = "DeleteMember",
           .call =
               [](Club& club) {
                 club.DeleteMember(3);
                 return Done();
               }},
          {.name = "GetHandicap", .call = [](Club& club) { return Text(club.GetHandicap(2)); }},
          {.name = "SetHandicap",
           .call =
               [](Club& club) {
                 club.SetHandicap(2, 60.0);
                 return Done();
               }},
          {.name = "IsValidMemberID", .call = [](Club& club) { return Text(club.IsValidMemberID(1)); }},
          {.name = "PlayersStratum_get", .call = [](Club& club) { return Text(std::int32_t{club.PlayersStratum(2)}); }},
          {.name = "PlayersStratum_let",
           .call =
               [](Club& club) {
                 club.SetPlayersStratum(2, 3);
                 return Done();
               }},
          {.name = "ClubName_get", .call = [](Club& club) { return club.ClubName(); }},
          {.name = "ClubName_let",
           .call =
               [](Club& club) {
                 club.SetClubName("Valley Bridge");
                 return Done();
               },
           .isAllOrNothing = true,
           .isRepeatable = false},
          {.name = "ClubID", .call = [](Club& club) { return club.ClubID(); }},
          {.name = "WasClubEverCalled",
           .call = [](Club& club) { return Text(club.WasClubEverCalled("Hillcrest Bridge Club")); }},
          {.name = "FindMember", .call = [](Club& club) { return Text(club.FindMember("John A Smith")); }},
          {.name = "FindMember_byInitials", .call = [](Club& club) { return Text(club.FindMember("John AB Smith")); }},
          {.name = "FindNearestMatches", .call = [](Club& club) {
             const MatchList matches = club.FindNearestMatches("Jon Smyth");
             return Joined(matches.LowerBound, matches.Numbers.front(),
                           static_cast<std::int32_t>(matches.Numbers.size()));
           }}};
}

std::vector<Operation> WalkOperations() {
  const auto startMembers = [](Club& club) { static_cast<void>(FirstMember(club)); };
  const auto rowsSoFar = [](const Progress& progress) {
    return progress.FailedIn(Kind::MoveNext) ? ErrorFate::Hidden : ErrorFate::Reaches;
  };
  return {{.name = "GetFirstMember", .call = FirstMember, .openCount = OpenDuringAWalk},
          {.name = "GetFirstMember_inactiveToo",
           .call = FirstMember,
           .prepare = [](Club& club) { club.IncludeInactiveMembers = true; },
           .openCount = OpenDuringAWalk},
          {.name = "GetNextMember", .call = NextMember, .prepare = startMembers},
          {.name = "GetNextMember_atTheEnd",
           .call = NextMember,
           .prepare =
               [](Club& club) {
                 static_cast<void>(FirstMember(club));
                 for (int row = 0; row < 2; ++row) static_cast<void>(NextMember(club));
               },
           .openCount = Closed},
          {.name = "GetFirstEBURecord", .call = FirstEBURecord, .openCount = OpenDuringAWalk},
          {.name = "GetNextEBURecord",
           .call = NextEBURecord,
           .prepare = [](Club& club) { static_cast<void>(FirstEBURecord(club)); }},
          FirstPartnership(false),
          FirstPartnership(true),
          {.name = "GetNextPartnership",
           .call = NextPartnership,
           .prepare = [](Club& club) { static_cast<void>(FirstPartnership(false).call(club)); }},
          {.name = "GetNextPartnership_atTheEnd",
           .call = NextPartnership,
           .prepare = WalkPartnerships,
           .openCount = Closed,
           .isRepeatable = false},
          {.name = "EndGet",
           .call =
               [](Club& club) {
                 club.EndGet();
                 return Done();
               },
           .prepare = [](Club& club) { static_cast<void>(FirstPartnership(false).call(club)); },
           .openCount = Closed},
          {.name = "MembersEmailAddress", .call = [](Club& club) { return club.MembersEmailAddress(1); }},
          {.name = "AllEmailAddresses",
           .call =
               [](Club& club) {
                 const std::vector<std::string> all = club.AllEmailAddresses();
                 return Joined(all.front(), all.back());
               }},
          {.name = "SearchEBUList",
           .call =
               [](Club& club) {
                 const auto found = club.SearchEBUList("", "Smith");
                 return Joined(found.front().EBUNumber(), found.front().FirstName());
               },
           .fate = rowsSoFar},
          {.name = "CheckMembershipID_known", .call = [](Club& club) { return Check(club, 2, "John A Smith"); }},
          {.name = "CheckMembershipID_ofAnother", .call = [](Club& club) { return Check(club, 40, "John A Smith"); }},
          {.name = "CheckMembershipID_enrols",
           .call = [](Club& club) { return Check(club, 40, "Jane Newman"); },
           .isAllOrNothing = true,
           .isRepeatable = false}};
}

std::vector<Operation> PairOperations() {
  return {{.name = "AddRegularPair_new", .call = [](Club& club) { return Text(club.AddRegularPair(4, 3)); }},
          {.name = "AddRegularPair_inactive",
           .call = [](Club& club) { return Text(club.AddRegularPair(2, 3)); },
           .prepare = [](Club& club) { club.DeletePair(2, 3); }},
          {.name = "IsRegularPair",
           .call =
               [](Club& club) {
                 std::string alias;
                 double par = 0.0;
                 const bool isRegular = club.IsRegularPair(3, 2, alias, par);
                 return Joined(isRegular, alias, par);
               }},
          {.name = "DeletePair",
           .call =
               [](Club& club) {
                 club.DeletePair(2, 3);
                 return Done();
               }},
          {.name = "SetPairHandicap",
           .call =
               [](Club& club) {
                 club.SetPairHandicap(3, 2, 61.0);
                 return Done();
               }},
          {.name = "GetPairName",
           .call = [](Club& club) { return club.GetPairName(2, "", 3, "", kFirstAndLastName, true); }}};
}

std::vector<Operation> ResultOperations() {
  return {
      {.name = "SetCompetitionEx_again",
       .call = [](Club& club) { return Register(club, "Wednesday", kEvening); },
       .openCount = OpenAfterRegistration},
      {.name = "SetCompetitionEx_new",
       .call = [](Club& club) { return Register(club, "Wednesday", kNextEvening); },
       .openCount = OpenAfterRegistration},
      {.name = "SetCompetition",
       .call =
           [](Club& club) { return Text(club.SetCompetition("Wednesday", kEvening, true, 1, 2, 3, 4, 5, 6, false)); },
       .openCount = OpenAfterRegistration},
      {.name = "NoteCompetitorResult",
       .call =
           [](Club& club) {
             club.NoteCompetitorResult(1, 2, "", 3, "", 65.0, 66.0, 40.0);
             return Done();
           },
       .prepare = RegisterQuietly,
       .openCount = OpenAfterPairCalculation,
       .isAllOrNothing = true,
       .isRepeatable = false},
      {.name = "AddMasterPoints",
       .call =
           [](Club& club) {
             club.AddMasterPoints(1, 2, 3, "", -1, "Guest", 1.5, 2);
             return Done();
           },
       .openCount = OpenAfterAward,
       .isRepeatable = false},
      {.name = "EndResultUpdate",
       .call =
           [](Club& club) {
             club.EndResultUpdate(1);
             return Done();
           },
       .prepare = RegisterQuietly,
       .openCount = OpenAfterEndOfUpdate}};
}

std::vector<Operation> HandicapOperations() {
  const auto storeOptions = [](Club& club) {
    const auto settings = std::make_shared<HandiCalcSettings>();
    settings->SetMaxResults(7);
    club.SetHandicalcOptions(settings);
    return Done();
  };
  const auto hold = [](Club& club) { static_cast<void>(club.HandicalcOptions()); };
  return {{.name = "HandicalcOptions_get",
           .call = [](Club& club) { return Text(club.HandicalcOptions().RegularPairAdd()); }},
          {.name = "HandicalcOptions_let", .call = storeOptions, .isAllOrNothing = true},
          {.name = "HandiCalcDisabled_get", .call = [](Club& club) { return Text(club.HandiCalcDisabled()); }},
          {.name = "HandiCalcDisabled_let",
           .call =
               [](Club& club) {
                 club.SetHandiCalcDisabled(true);
                 return Done();
               },
           .prepare = hold},
          {.name = "CalculateHandicaps_pair",
           .call = [](Club& club) { return Calculated(club, 2, 3, "", kToday, false); },
           .openCount = OpenAfterPairCalculation},
          {.name = "CalculateHandicaps_withoutCompetition",
           .call = [](Club& club) { return Calculated(club, 2, 4, "Wednesday", kEvening, false); },
           .openCount = OpenAfterPairCalculation},
          {.name = "CalculateHandicaps_player",
           .call = [](Club& club) { return Calculated(club, 2, 4, "", kToday, true); },
           .openCount = OpenAfterPlayerCalculation},
          {.name = "RecalculateAllHandicaps",
           .call =
               [](Club& club) {
                 club.RecalculateAllHandicaps();
                 return Done();
               },
           .openCount = OpenAfterRecalculation}};
}

}  // namespace

int Progress::CountOf(const std::string& beginning) const {
  return static_cast<int>(
      std::count_if(calls.begin(), calls.end(), [&](const ProviderCall& call) { return call.Asks(beginning); }));
}

std::vector<Operation> Operations() {
  std::vector<Operation> all;
  for (const auto& group :
       {MemberOperations(), WalkOperations(), PairOperations(), ResultOperations(), HandicapOperations()}) {
    all.insert(all.end(), group.begin(), group.end());
  }
  return all;
}

}  // namespace tavi::testing
