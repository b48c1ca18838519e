// An evening's results on their way into the file. A scoring program registers the competition, notes each competitor's
// result, passes the awards, and ends the update; and it may do all of that again after a correction:
//
//   SetCompetitionEx      the competition's row; its results go, its awards are marked (RecordUpdated = 0)
//   NoteCompetitorResult  a result; handicaps; the competitor's awards go
//   AddMasterPoints       an award, unmarked
//   EndResultUpdate       what is still marked goes: nobody passed it again
#include "competitions/ResultUpdate.h"

#include "competitions/Competition.h"
#include "competitions/MasterPoints.h"
#include "handicaps/HandicapCalculation.h"
#include "members/Members.h"
#include "members/Partnerships.h"
#include "platform/values/Convert.h"
#include "store/OpenUse.h"
#include "store/Transaction.h"
#include "store/Values.h"

namespace tavi {
namespace {

constexpr std::int16_t kFirstSession = 1;
constexpr std::size_t kLongestBody = 20;
constexpr const char* kActual = "the actual percentage";
constexpr const char* kNet = "the net percentage";

/// True as the integer that a column of numbers holds for it.
std::int16_t TruthNumber(bool truth) {
  return truth ? std::int16_t{-1} : std::int16_t{0};
}

/// A competition is known by its name and its day.
std::string SelectOf(const CompetitionRegistration& registration) {
  return "Select * from Competitions Where CompetitionName = " + cDatabase::SQLString(registration.CompName) +
         " And CompetitionDate = " + cDatabase::SQLDate(registration.CompDate);
}

/// Stored twice: the first time makes the identifier, and the caller then stores the attributes on the same row.
std::int32_t AddCompetition(ado::Recordset& rows, const CompetitionRegistration& registration) {
  rows.AddNew();
  rows.Set("CompetitionName", registration.CompName);
  rows.Set("CompetitionDate", registration.CompDate);
  rows.Update();
  return ToInt32(rows.Get("ID"));
}

/// The identifier of the current row, whose results are deleted and whose awards are marked as not yet stored again.
// Results are deleted at once, for they all come again; awards are only marked, because a correction may pass some of
// them, and what is not passed is deleted at the end.
std::int32_t PrepareForReplacement(cDatabase& database, const ado::Recordset& row) {
  const std::int32_t identifier = ToInt32(row.Get("ID"));
  database.Execute("Delete from Results where Competition = " + std::to_string(identifier));
  database.Execute("Update MasterPoints set RecordUpdated = 0 Where CompetitionID = " + std::to_string(identifier));
  return identifier;
}

/// A competition that is registered again gets the attributes of this time, all of them.
void StoreAttributes(ado::Recordset& row, const CompetitionRegistration& registration) {
  row.Set("Individual", TruthNumber(registration.Individual));
  row.Set("ScoringMethod", registration.ScoringMethod);
  row.Set("ButlerType", registration.ButlerType);
  row.Set("MasterPointsType", registration.MasterPointsLevel);
  row.Set("IncludeInHandicapCalculations", TruthNumber(registration.IncludeInHandicaps));
  row.Set("NumberOfWinners", registration.NumberOfWinners);
  row.Set("NumberOfTables", registration.NumberOfTables);
  // The colour travels with each award; the competition's is always 0.
  row.Set("MasterPointsColour", std::int32_t{0});
  row.Set("IsTeams", registration.NumberOfTeams > 0);
  row.Set("IsSwiss", registration.IsSwiss);
  row.Set("IsExternal", false);
  row.Set("QualiFinal", registration.QualiFinal);
  row.Set("NatCode", registration.Gov);
  row.Update();
}

void RequireNumbers(const CompetitorResult& result) {
  RequireNumber(result.ActualPercent, kActual);
  RequireNumber(result.NetPercent, kNet);
  RequireNumber(result.AppliedHandicap, "the applied handicap");
}

// With two blanks before two of the columns: the statement is known word for word.
void InsertResult(cDatabase& database, const CompetitorResult& result) {
  database.Execute("Insert into Results (Competition, Player, Partner,  ActualPercentage,  NetPercentage) Values (" +
                   std::to_string(result.CompetitionID) + ", " + std::to_string(result.Players.Player1ID) + ", " +
                   std::to_string(result.Players.Player2ID) + ", " +
                   cDatabase::SQLNumber(result.ActualPercent, kActual) + ", " +
                   cDatabase::SQLNumber(result.NetPercent, kNet) + ")");
}

/// -1 is nobody's record.
void StoreCalculated(cDatabase& database, const Competitors& players, const Handicaps& handicaps, bool isRegularPair) {
  if (isRegularPair) {
    StorePairHandicap(database, players.Player1ID, players.Player2ID, handicaps.PartnershipHandicap());
  }
  if (players.Player1ID != kNoMember) StoreHandicap(database, players.Player1ID, handicaps.Player1Handicap());
  if (players.Player2ID != kNoMember) StoreHandicap(database, players.Player2ID, handicaps.Player2Handicap());
}

/// True when the pair has a record, active or not.
/// An inactive pair's handicap is refreshed as well, for it plays after all.
bool HasPartnershipRecord(cDatabase& database, const Competitors& pair) {
  std::string name;
  double handicap = 0.0;
  bool inactive = false;
  return IsRegularPartnership(database, pair.Player1ID, pair.Player2ID, name, handicap, inactive);
}

/// The colour that nobody uses is read all the same; nothing depends on the outcome.
void ReadCompetitionColour(cDatabase& database, std::int32_t competition) {
  try {
    const auto row =
        database.OpenRecordset("Select MasterPointsColour from Competitions Where ID = " + std::to_string(competition));
    static_cast<void>(cDatabase::GetNumericField(*row, "MasterPointsColour"));
  } catch (const std::exception&) {
    return;
  }
}

/// Notes the result and awards the points, with the first name and the second number exchanged.
/// This is what scoring programs that still call UpdateResult have always got.
void NoteAndAward(ResultUpdate& update, cDatabase& database, const CompetitorResult& result, std::int16_t points) {
  update.NoteCompetitorResult(database, result);
  if (points <= 0) return;
  const Competitors exchanged{result.Players.Player1ID, std::to_string(result.Players.Player2ID),
                              ToInt32(result.Players.P1Name), result.Players.P2Name};
  AddMasterPoints(database, {result.CompetitionID, kFirstSession, static_cast<double>(points), 0}, exchanged);
}

}  // namespace

std::int32_t ResultUpdate::SetCompetitionEx(cDatabase& database, const CompetitionRegistration& registration) {
  currentCompetitionInHandicaps_ = registration.IncludeInHandicaps;
  held_.LoadHandicalcSettings(database);
  // Before the file is opened: what does not fit its column must not leave a competition without results.
  RequireLength(registration.CompName, kLongestName, "the competition's name");
  RequireLength(registration.Gov, kLongestBody, "the governing body");
  const std::string select = SelectOf(registration);
  // EndResultUpdate makes the matching CloseDB.
  database.OpenDB();
  const auto row = database.OpenRecordset(select, ado::CursorType::Dynamic);
  const std::int32_t identifier =
      row->AtEnd() ? AddCompetition(*row, registration) : PrepareForReplacement(database, *row);
  StoreAttributes(*row, registration);
  return identifier;
}

// In this order: the handicaps are calculated with the result that has just been stored.
void ResultUpdate::NoteCompetitorResult(cDatabase& database, const CompetitorResult& result) {
  RequireNumbers(result);
  InTransaction(database, [&] {
    const bool isIndividual = ReadCompetitionAttributes(database, result.CompetitionID).Individual;
    CompetitorResult noted = result;
    Competitors& players = noted.Players;
    if (isIndividual) {
      players.Player2ID = kNoMember;
      players.P2Name.clear();
    }
    const bool isRegularPair = !isIndividual && HasPartnershipRecord(database, players);
    // Two visitors have no handicaps to be kept, and no number by which their result could be found again.
    if (players.Player1ID != kNoMember || players.Player2ID != kNoMember) {
      InsertResult(database, noted);
      if (currentCompetitionInHandicaps_) RefreshHandicaps(database, noted, isIndividual, isRegularPair);
    }
    ClearCompetitorMasterPoints(database, result.CompetitionID, players.Player1ID, players.P1Name);
    if (!isIndividual) {
      ClearCompetitorMasterPoints(database, result.CompetitionID, players.Player2ID, players.P2Name);
    }
  });
}

// The handicap that was applied is stored first, so that it stands where the calculation is switched off.
void ResultUpdate::RefreshHandicaps(cDatabase& database, const CompetitorResult& result, bool isIndividual,
                                    bool isRegularPair) {
  const Competitors& players = result.Players;
  if (result.AppliedHandicap > 0.0) {
    StoreHandicapOfBoth(database, players.Player1ID, players.Player2ID, result.AppliedHandicap);
    if (isRegularPair) StorePairHandicap(database, players.Player1ID, players.Player2ID, result.AppliedHandicap);
  }
  if (held_.HeldDisabled()) return;
  const Handicaps handicaps =
      CalculateHandicaps(database, held_, {players.Player1ID, players.Player2ID, "", kNoCompetitionDate, isIndividual});
  StoreCalculated(database, players, handicaps, isRegularPair);
}

// The numbers are judged before the loop, which would repeat a refusal for ever.
void ResultUpdate::UpdateResult(cDatabase& database, const CompetitorResult& result, std::int16_t MasterPoints) {
  RequireNumbers(result);
  OpenUse use(database);
  ReadCompetitionColour(database, result.CompetitionID);
  for (;;) {
    try {
      NoteAndAward(*this, database, result, MasterPoints);
      use.Close();
      return;
    } catch (const std::exception&) {
      // Older scoring programs rely on the repetition; one that cannot end is theirs to avoid.
      continue;
    }
  }
}

}  // namespace tavi
