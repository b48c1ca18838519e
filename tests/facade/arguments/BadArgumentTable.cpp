#include "facade/arguments/BadArguments.h"
#include "facade/arguments/BadValues.h"

namespace tavi::testing {
namespace {

using Club = MembershipDatabase;
using Operations = std::vector<BadArgumentOperation>;
using String = std::string;
using Long = std::int32_t;

/// Where operations put what they pass back.
struct PassedBack {
  Long number = 0;
  Long second = 0;
  String name;
  String secondName;
  String pair;
  String alternate;
  double par = 0.0;
  bool retired = false;
};

const Date kDay = Date::FromCivil(2025, 9, 17);
constexpr Long kCompetition = 1;

/// Calls an operation whose answer does not matter.
template <typename Answer>
void Ignore(const Answer& /*answer*/) {}

Operations Location() {
  return {{"DatabaseFolder", {Text("folder", [](Club& club, const String& bad) {
             const String before = club.DatabaseFolder();
             club.SetDatabaseFolder(bad);
             Ignore(club.DatabaseExists());
             Ignore(club.DatabaseFileName());
             try {
               club.OpenDatabase();
             } catch (const Error&) {
               club.SetDatabaseFolder(before);
               throw;
             }
             club.CloseDatabase();
             club.SetDatabaseFolder(before);
           })}}};
}

Operations Members() {
  return {
      {"AddNewMember",
       {Text("FirstName", [](Club& club, const String& bad) { club.AddNewMember(bad, "Q", "Moor", 45.0); }),
        Text("Initials", [](Club& club, const String& bad) { club.AddNewMember("Eve", bad, "Moor", 45.0); }),
        Text("LastName", [](Club& club, const String& bad) { club.AddNewMember("Eve", "Q", bad, 45.0); }),
        Number("Handicap", [](Club& club, double bad) { club.AddNewMember("Eve", "Q", "Moor", bad); })}},
      {"GetMemberName",
       {Whole("MemberNo", [](Club& club, Long bad) { Ignore(club.GetMemberName(bad, 0, "nobody")); }),
        Short("NameFormat", [](Club& club, std::int16_t bad) { Ignore(club.GetMemberName(1, bad, "nobody")); }),
        Text("DefaultName", [](Club& club, const String& bad) { Ignore(club.GetMemberName(77, 0, bad)); })}},
      {"GetNameAndEBUNumber",
       {Whole("MemberNo",
              [](Club& club, Long bad) {
                PassedBack out;
                Ignore(club.GetNameAndEBUNumber(bad, 0, out.name, "nobody"));
              }),
        Short("NameFormat",
              [](Club& club, std::int16_t bad) {
                PassedBack out;
                Ignore(club.GetNameAndEBUNumber(1, bad, out.name, "nobody"));
              }),
        Text("EBUNumber",
             [](Club& club, const String& bad) {
               String passed = bad;
               Ignore(club.GetNameAndEBUNumber(1, 0, passed, "nobody"));
             }),
        Text("DefaultName",
             [](Club& club, const String& bad) {
               PassedBack out;
               Ignore(club.GetNameAndEBUNumber(77, 0, out.name, bad));
             })}},
      {"GetEBUNoAndNames",
       {Whole("MemberNo",
              [](Club& club, Long bad) {
                PassedBack out;
                Ignore(club.GetEBUNoAndNames(bad, out.name, out.secondName, out.pair));
              }),
        Text("FirstName",
             [](Club& club, const String& bad) {
               PassedBack out;
               String passed = bad;
               Ignore(club.GetEBUNoAndNames(1, passed, out.secondName, out.pair));
             })}},
      {"SetEBUNumber",
       {Whole("MemberNo", [](Club& club, Long bad) { club.SetEBUNumber(bad, "123"); }),
        Text("EBUNo", [](Club& club, const String& bad) { club.SetEBUNumber(1, bad); })}},
      {"EnteredNumberToClubNumber",
       {Whole("EnteredNumber", [](Club& club, Long bad) { Ignore(club.EnteredNumberToClubNumber(bad)); })}},
      {"DeleteMember", {Whole("MembershipNumber", [](Club& club, Long bad) { club.DeleteMember(bad); })}},
      {"GetHandicap", {Whole("MemberID", [](Club& club, Long bad) { Ignore(club.GetHandicap(bad)); })}},
      {"SetHandicap",
       {Whole("MemberID", [](Club& club, Long bad) { club.SetHandicap(bad, 45.0); }),
        Number("NewHandicap", [](Club& club, double bad) { club.SetHandicap(1, bad); })}},
      {"IsValidMemberID", {Whole("MemberID", [](Club& club, Long bad) { Ignore(club.IsValidMemberID(bad)); })}},
      {"PlayersStratum",
       {Whole("PlayerID", [](Club& club, Long bad) { Ignore(club.PlayersStratum(bad)); }),
        Whole("PlayerID, to set it", [](Club& club, Long bad) { club.SetPlayersStratum(bad, 2); }),
        Short("NewStratum", [](Club& club, std::int16_t bad) { club.SetPlayersStratum(1, bad); })}},
      {"ClubName", {Text("name", [](Club& club, const String& bad) { club.SetClubName(bad); })}},
      {"WasClubEverCalled",
       {Text("ClubName", [](Club& club, const String& bad) { Ignore(club.WasClubEverCalled(bad)); })}},
      {"FindMember",
       {Text("Name", [](Club& club, const String& bad) { Ignore(club.FindMember(bad)); }),
        Text("Name, exactly", [](Club& club, const String& bad) { Ignore(club.FindMember(bad, true)); })}},
      {"FindNearestMatches",
       {Text("Name", [](Club& club, const String& bad) { Ignore(club.FindNearestMatches(bad).Numbers); })}},
      {"CheckMembershipID",
       {Whole("MembershipID",
              [](Club& club, Long bad) {
                PassedBack out;
                club.CheckMembershipID(bad, "Eve Moor", 45.0, out.retired);
              }),
        Text("Name",
             [](Club& club, const String& bad) {
               PassedBack out;
               club.CheckMembershipID(77, bad, 45.0, out.retired);
             }),
        Number("Par",
               [](Club& club, double bad) {
                 PassedBack out;
                 club.CheckMembershipID(77, "Eve Moor", bad, out.retired);
               })}},
  };
}

Operations Walks() {
  constexpr int kTheWalk = 1;
  return {
      {"GetFirstMember",
       {Short("NameFormat",
              [](Club& club, std::int16_t bad) {
                PassedBack out;
                club.GetFirstMember(out.number, out.name, out.par, bad);
              })},
       nullptr,
       kTheWalk},
      {"GetNextMember",
       {Short("NameFormat",
              [](Club& club, std::int16_t bad) {
                PassedBack out;
                club.GetFirstMember(out.number, out.name, out.par, 0);
                club.GetNextMember(out.number, out.name, out.par, bad);
              })},
       nullptr,
       kTheWalk},
      {"GetFirstEBURecord",
       {Short("NameFormat",
              [](Club& club, std::int16_t bad) {
                PassedBack out;
                club.GetFirstEBURecord(out.name, out.secondName, bad);
              })},
       nullptr,
       kTheWalk},
      {"GetNextEBURecord",
       {Text("NameFormat",
             [](Club& club, const String& bad) {
               PassedBack out;
               club.GetFirstEBURecord(out.name, out.secondName, 0);
               club.GetNextEBURecord(out.name, out.secondName, bad);
             })},
       nullptr,
       kTheWalk,
       kTheWalk},
      {"GetFirstPartnership",
       {Short("NameFormat",
              [](Club& club, std::int16_t bad) {
                PassedBack out;
                club.GetFirstPartnership(out.number, out.name, out.second, out.secondName, out.pair, out.alternate,
                                         out.par, bad);
              }),
        Number("ParScore",
               [](Club& club, double bad) {
                 PassedBack out;
                 club.GetFirstPartnership(out.number, out.name, out.second, out.secondName, out.pair, out.alternate,
                                          bad, 0);
               })},
       nullptr,
       kTheWalk},
      {"GetNextPartnership",
       {Short("NameFormat",
              [](Club& club, std::int16_t bad) {
                PassedBack out;
                club.GetFirstPartnership(out.number, out.name, out.second, out.secondName, out.pair, out.alternate,
                                         out.par, 0);
                club.GetNextPartnership(out.number, out.name, out.second, out.secondName, out.pair, out.alternate,
                                        out.par, bad);
              }),
        Number("ParScore",
               [](Club& club, double bad) {
                 PassedBack out;
                 club.GetFirstPartnership(out.number, out.name, out.second, out.secondName, out.pair, out.alternate,
                                          bad, 0);
                 club.GetNextPartnership(out.number, out.name, out.second, out.secondName, out.pair, out.alternate, bad,
                                         0);
               })},
       nullptr,
       kTheWalk},
      {"MembersEmailAddress", {Whole("MemberNo", [](Club& club, Long bad) { Ignore(club.MembersEmailAddress(bad)); })}},
      {"SearchEBUList",
       {Text("GivenName", [](Club& club, const String& bad) { Ignore(club.SearchEBUList(bad, "Fox")); }),
        Text("Surname", [](Club& club, const String& bad) { Ignore(club.SearchEBUList("", bad)); })}},
  };
}

Operations Pairs() {
  return {
      {"AddRegularPair",
       {Whole("Player1MembershipNo", [](Club& club, Long bad) { club.AddRegularPair(bad, 1); }),
        Whole("Player2MembershipNo", [](Club& club, Long bad) { club.AddRegularPair(1, bad); })}},
      {"IsRegularPair",
       {Whole("Player1No",
              [](Club& club, Long bad) {
                PassedBack out;
                club.IsRegularPair(bad, 1, out.name, out.par);
              }),
        Whole("Player2No",
              [](Club& club, Long bad) {
                PassedBack out;
                club.IsRegularPair(1, bad, out.name, out.par);
              }),
        Text("PairAlias",
             [](Club& club, const String& bad) {
               PassedBack out;
               String passed = bad;
               club.IsRegularPair(1, 2, passed, out.par);
             }),
        Number("ParScore",
               [](Club& club, double bad) {
                 PassedBack out;
                 club.IsRegularPair(1, 2, out.name, bad);
               })}},
      {"DeletePair",
       {Whole("MemberID1", [](Club& club, Long bad) { club.DeletePair(bad, 2); }),
        Whole("MemberID2", [](Club& club, Long bad) { club.DeletePair(1, bad); })}},
      {"SetPairHandicap",
       {Whole("MemberID1", [](Club& club, Long bad) { club.SetPairHandicap(bad, 2, 45.0); }),
        Whole("MemberID2", [](Club& club, Long bad) { club.SetPairHandicap(1, bad, 45.0); }),
        Number("NewHandicap", [](Club& club, double bad) { club.SetPairHandicap(1, 2, bad); })}},
      {"GetPairName",
       {Whole("Player1ID", [](Club& club, Long bad) { Ignore(club.GetPairName(bad, "A B", 2, "", 0)); }),
        Text("Player1Name", [](Club& club, const String& bad) { Ignore(club.GetPairName(-1, bad, 2, "", 0, true)); }),
        Whole("Player2ID", [](Club& club, Long bad) { Ignore(club.GetPairName(1, "", bad, "A B", 0)); }),
        Text("Player2Name",
             [](Club& club, const String& bad) { Ignore(club.GetPairName(1, "", -1, bad, 10, true, true)); }),
        Short("NameFormat",
              [](Club& club, std::int16_t bad) { Ignore(club.GetPairName(1, "", -1, "A B", bad, true)); })}},
  };
}

Operations Registration() {
  constexpr int kTheUpdate = 1;
  Operations operations{
      {"SetCompetitionEx",
       {Text("CompName",
             [](Club& club, const String& bad) {
               club.SetCompetitionEx(bad, kDay, false, 0, 0, false, false, 0, 5, 2, "EBU", 0, true);
             }),
        Day("CompDate",
            [](Club& club, Date bad) {
              club.SetCompetitionEx("Tuesday", bad, false, 0, 0, false, false, 0, 5, 2, "EBU", 0, true);
            }),
        Short("ScoringMethod",
              [](Club& club, std::int16_t bad) {
                club.SetCompetitionEx("Tuesday", kDay, false, bad, 0, false, false, 0, 5, 2, "EBU", 0, true);
              }),
        Short("ButlerType",
              [](Club& club, std::int16_t bad) {
                club.SetCompetitionEx("Tuesday", kDay, false, 0, bad, false, false, 0, 5, 2, "EBU", 0, true);
              }),
        Short("MasterPointsLevel",
              [](Club& club, std::int16_t bad) {
                club.SetCompetitionEx("Tuesday", kDay, false, 0, 0, false, false, bad, 5, 2, "EBU", 0, true);
              }),
        Short("NumberOfTables",
              [](Club& club, std::int16_t bad) {
                club.SetCompetitionEx("Tuesday", kDay, false, 0, 0, false, false, 0, bad, 2, "EBU", 0, true);
              }),
        Short("NumberOfWinners",
              [](Club& club, std::int16_t bad) {
                club.SetCompetitionEx("Tuesday", kDay, false, 0, 0, false, false, 0, 5, bad, "EBU", 0, true);
              }),
        Text("Gov, of a known competition",
             [](Club& club, const String& bad) {
               club.SetCompetitionEx("Tuesday", kDay, false, 0, 0, false, false, 0, 5, 2, bad, 0, true);
             }),
        Text("Gov, of a new competition",
             [](Club& club, const String& bad) {
               club.SetCompetitionEx("New", kDay, false, 0, 0, false, false, 0, 5, 2, bad, 0, true);
             }),
        Short("MasterPointsColour",
              [](Club& club, std::int16_t bad) {
                club.SetCompetitionEx("Tuesday", kDay, false, 0, 0, false, false, 0, 5, 2, "EBU", bad, true);
              }),
        Short("NumberOfTeams",
              [](Club& club, std::int16_t bad) {
                club.SetCompetitionEx("Tuesday", kDay, false, 0, 0, false, false, 0, 5, 2, "EBU", 0, true, bad);
              })}},
      {"SetCompetition",
       {Text("CompName",
             [](Club& club, const String& bad) { club.SetCompetition(bad, kDay, false, 0, 0, 0, 5, 2, 0, true); }),
        Day("CompDate",
            [](Club& club, Date bad) { club.SetCompetition("Tuesday", bad, false, 0, 0, 0, 5, 2, 0, true); }),
        Short("ScoringMethod",
              [](Club& club, std::int16_t bad) {
                club.SetCompetition("Tuesday", kDay, false, bad, 0, 0, 5, 2, 0, true);
              }),
        Short("ButlerType",
              [](Club& club, std::int16_t bad) {
                club.SetCompetition("Tuesday", kDay, false, 0, bad, 0, 5, 2, 0, true);
              }),
        Short("NumberOfTables",
              [](Club& club, std::int16_t bad) {
                club.SetCompetition("Tuesday", kDay, false, 0, 0, 0, bad, 2, 0, true);
              }),
        Short("NumberOfWinners",
              [](Club& club, std::int16_t bad) {
                club.SetCompetition("Tuesday", kDay, false, 0, 0, 0, 5, bad, 0, true);
              }),
        Short("MasterPointsColour",
              [](Club& club, std::int16_t bad) {
                club.SetCompetition("Tuesday", kDay, false, 0, 0, 0, 5, 2, bad, true);
              }),
        Short("MasterPoints",
              [](Club& club, std::int16_t bad) {
                club.SetCompetition("Tuesday", kDay, false, 0, 0, bad, 5, 2, 0, true);
              }),
        Short("NumberOfTeams",
              [](Club& club, std::int16_t bad) {
                club.SetCompetition("Tuesday", kDay, false, 0, 0, 0, 5, 2, 0, true, bad);
              })}},
  };
  for (BadArgumentOperation& operation : operations) operation.usesLeft = kTheUpdate;
  return operations;
}

/// A competition that counts for handicaps, so that noting a result calculates them.
void RegisterTuesday(Club& club) {
  club.SetCompetition("Tuesday", kDay, false, 0, 0, 0, 5, 2, 0, true);
}

Operations Results() {
  constexpr int kTheCalculation = 1;
  return {
      {"NoteCompetitorResult",
       {Whole("CompetitionID",
              [](Club& club, Long bad) { club.NoteCompetitorResult(bad, 1, "", 2, "", 50.0, 50.0, 45.0); }),
        Whole(
            "Player1ID",
            [](Club& club, Long bad) { club.NoteCompetitorResult(kCompetition, bad, "A B", 2, "", 50.0, 50.0, 45.0); }),
        Text("P1Name",
             [](Club& club, const String& bad) {
               club.NoteCompetitorResult(kCompetition, -1, bad, 2, "", 50.0, 50.0, 45.0);
             }),
        Whole(
            "Player2ID",
            [](Club& club, Long bad) { club.NoteCompetitorResult(kCompetition, 1, "", bad, "A B", 50.0, 50.0, 45.0); }),
        Text("P2Name",
             [](Club& club, const String& bad) {
               club.NoteCompetitorResult(kCompetition, 1, "", -1, bad, 50.0, 50.0, 45.0);
             }),
        Text("P1Name of a member",
             [](Club& club, const String& bad) {
               club.NoteCompetitorResult(kCompetition, 1, bad, 2, bad, 50.0, 50.0, 45.0);
             }),
        Number("ActualPercent",
               [](Club& club, double bad) { club.NoteCompetitorResult(kCompetition, 1, "", 2, "", bad, 50.0, 45.0); }),
        Number("NetPercent",
               [](Club& club, double bad) { club.NoteCompetitorResult(kCompetition, 1, "", 2, "", 50.0, bad, 45.0); }),
        Number("AppliedHandicap",
               [](Club& club, double bad) { club.NoteCompetitorResult(kCompetition, 1, "", 2, "", 50.0, 50.0, bad); })},
       RegisterTuesday,
       kTheCalculation},
      {"AddMasterPoints",
       {Whole("CompetitionID", [](Club& club, Long bad) { club.AddMasterPoints(bad, 1, 1, "", 2, "", 0.5, 0); }),
        Short("SessionNo",
              [](Club& club, std::int16_t bad) { club.AddMasterPoints(kCompetition, bad, 1, "", 2, "", 0.5, 0); }),
        Whole("Player1ID",
              [](Club& club, Long bad) { club.AddMasterPoints(kCompetition, 1, bad, "A B", 2, "", 0.5, 0); }),
        Text("P1Name",
             [](Club& club, const String& bad) { club.AddMasterPoints(kCompetition, 1, -1, bad, 2, "", 0.5, 0); }),
        Whole("Player2ID",
              [](Club& club, Long bad) { club.AddMasterPoints(kCompetition, 1, 1, "", bad, "A B", 0.5, 0); }),
        Text("P2Name",
             [](Club& club, const String& bad) { club.AddMasterPoints(kCompetition, 1, 1, "", -1, bad, 0.5, 0); }),
        Number("MasterPoints",
               [](Club& club, double bad) { club.AddMasterPoints(kCompetition, 1, 1, "", 2, "", bad, 0); }),
        Whole("MasterPointsColour",
              [](Club& club, Long bad) { club.AddMasterPoints(kCompetition, 1, 1, "", 2, "", 0.5, bad); })}},
      // Without master points: with some, a first name that is no number makes it repeat for ever, as it always has.
      {"UpdateResult",
       {Whole("CompetitionID",
              [](Club& club, Long bad) { club.UpdateResult(bad, false, 1, "", 2, "", 50.0, 50.0, 0, 45.0); }),
        Whole("Player1ID",
              [](Club& club, Long bad) {
                club.UpdateResult(kCompetition, false, bad, "A B", 2, "", 50.0, 50.0, 0, 45.0);
              }),
        Whole("Player2ID",
              [](Club& club, Long bad) {
                club.UpdateResult(kCompetition, false, 1, "", bad, "A B", 50.0, 50.0, 0, 45.0);
              }),
        Text("P1Name",
             [](Club& club, const String& bad) {
               club.UpdateResult(kCompetition, false, -1, bad, 2, "", 50.0, 50.0, 0, 45.0);
             }),
        Text("P2Name",
             [](Club& club, const String& bad) {
               club.UpdateResult(kCompetition, false, 1, "", -1, bad, 50.0, 50.0, 0, 45.0);
             }),
        Number(
            "ActualPercent",
            [](Club& club, double bad) { club.UpdateResult(kCompetition, false, 1, "", 2, "", bad, 50.0, 0, 45.0); }),
        Number(
            "NetPercent",
            [](Club& club, double bad) { club.UpdateResult(kCompetition, false, 1, "", 2, "", 50.0, bad, 0, 45.0); }),
        Short("MasterPoints",
              [](Club& club, std::int16_t bad) {
                club.UpdateResult(kCompetition, false, 1, "2", 2, "", 50.0, 50.0, bad, 45.0);
              }),
        Number(
            "AppliedHandicap",
            [](Club& club, double bad) { club.UpdateResult(kCompetition, false, 1, "", 2, "", 50.0, 50.0, 0, bad); })},
       RegisterTuesday,
       kTheCalculation},
      {"EndResultUpdate",
       {Whole("CompetitionID", [](Club& club, Long bad) { club.EndResultUpdate(bad); })},
       RegisterTuesday,
       -1},
  };
}

/// A call that stores changed settings.
template <typename Bad, typename Change>
auto Storing(Change change) {
  return [change](Club& club, Bad bad) {
    auto settings = std::make_shared<HandiCalcSettings>();
    change(*settings, bad);
    club.SetHandicalcOptions(settings);
  };
}

Operations Handicaps() {
  using Settings = HandiCalcSettings;
  constexpr int kTheCalculation = 1;
  return {
      {"HandicalcOptions",
       {Short("MaxWeeks", Storing<std::int16_t>([](Settings& to, std::int16_t bad) { to.SetMaxWeeks(bad); })),
        Short("MaxResults", Storing<std::int16_t>([](Settings& to, std::int16_t bad) { to.SetMaxResults(bad); })),
        Short("SamePartnerWeighting",
              Storing<std::int16_t>([](Settings& to, std::int16_t bad) { to.SetSamePartnerWeighting(bad); })),
        Number("RegularPairMultiplier",
               Storing<double>([](Settings& to, double bad) { to.SetRegularPairMultiplier(bad); })),
        Number("RegularPairAdd", Storing<double>([](Settings& to, double bad) { to.SetRegularPairAdd(bad); })),
        Number("UnknownPlayerHandicap",
               Storing<double>([](Settings& to, double bad) { to.SetUnknownPlayerHandicap(bad); })),
        {{"settings: none", [](Club& club) { club.SetHandicalcOptions(nullptr); }}}}},
      {"HandiCalcDisabled",
       {{{"disabled: before settings were read", [](Club& club) { club.SetHandiCalcDisabled(true); }}}}},
      {"CalculateHandicaps",
       {Whole("PlayerID",
              [](Club& club, Long bad) {
                Ignore(club.CalculateHandicaps(bad, 2, "Tuesday", kDay, false));
                if (bad != -1) return;
                Ignore(club.CalculateHandicaps(bad, 77, "Tuesday", kDay, true));
              }),
        Whole("PartnerID",
              [](Club& club, Long bad) { Ignore(club.CalculateHandicaps(1, bad, "Tuesday", kDay, false)); }),
        Text("CompetitionName",
             [](Club& club, const String& bad) { Ignore(club.CalculateHandicaps(1, 2, bad, kDay, false)); }),
        Day("CompetitionDate",
            [](Club& club, Date bad) { Ignore(club.CalculateHandicaps(1, 2, "Tuesday", bad, false)); })},
       nullptr,
       kTheCalculation},
  };
}

}  // namespace

std::vector<BadArgumentOperation> BadArgumentOperations() {
  std::vector<BadArgumentOperation> all;
  for (Operations (*group)() : {Location, Members, Walks, Pairs, Registration, Results, Handicaps}) {
    for (BadArgumentOperation& operation : group()) all.push_back(std::move(operation));
  }
  return all;
}

}  // namespace tavi::testing
