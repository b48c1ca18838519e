// Awards. Each is a row for one player: of a member by the number, of a visitor by the name with the number -1. An
// award is never changed; a correction deletes and inserts.
#include "competitions/MasterPoints.h"

#include "competitions/Competition.h"
#include "members/Members.h"
#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/OpenUse.h"
#include "store/Values.h"

namespace tavi {
namespace {

constexpr const char* kPoints = "the number of master points";

/// A name is kept for who is no member only.
std::string KeptName(std::int32_t memberNumber, const std::string& name) {
  return memberNumber == kNoMember ? name : std::string();
}

/// Judged before the first row is stored, so that a name that is too long does not leave one player's award alone.
void RequireName(std::int32_t memberNumber, const std::string& name, const char* what) {
  RequireLength(cDatabase::StoredText(KeptName(memberNumber, name)), kLongestName, what);
}

/// Nobody's award bears a longer name.
bool IsStorable(const std::string& name) {
  return TextLength(cDatabase::StoredText(name)) <= kLongestName;
}

}  // namespace

void AddMasterPoints(cDatabase& database, const MasterPointAward& award, const Competitors& players) {
  if (award.MasterPoints == 0.0) return;
  RequireNumber(award.MasterPoints, kPoints);
  RequireName(players.Player1ID, players.P1Name, "the first player's name");
  OpenUse use(database);
  // An error of the database leaves the file open once more: programs know it that way.
  const auto run = [&use](const auto& step) {
    try {
      step();
    } catch (...) {
      use.KeepOpen();
      throw;
    }
  };
  // Only the competition says whether there is a second player.
  bool isIndividual = false;
  run([&] { isIndividual = ReadCompetitionAttributes(database, award.CompetitionID).Individual; });
  if (!isIndividual) RequireName(players.Player2ID, players.P2Name, "the second player's name");
  run([&] {
    InsertMasterPointsRow(database, award, players.Player1ID, players.P1Name);
    if (!isIndividual) InsertMasterPointsRow(database, award, players.Player2ID, players.P2Name);
  });
  use.Close();
}

// RecordUpdated is 1 from the start: the end of the update deletes what still has 0.
void InsertMasterPointsRow(cDatabase& database, const MasterPointAward& award, std::int32_t MemberID,
                           const std::string& Name) {
  database.Execute(
      "Insert into MasterPoints (MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, Colour, "
      "Status, RecordUpdated) Values (" +
      std::to_string(MemberID) + ", " + cDatabase::SQLString(KeptName(MemberID, Name)) + ", " +
      std::to_string(award.CompetitionID) + ", " + std::to_string(award.SessionNo) + ", " +
      NumberText(RequireNumber(award.MasterPoints, kPoints)) + ", " + std::to_string(award.Colour) + ", 0, 1)");
}

// Visitors' awards are those with any number below 0. Who has neither number nor name cannot be told from others of
// that kind, so nothing is deleted for him.
void ClearCompetitorMasterPoints(cDatabase& database, std::int32_t CompetitionID, std::int32_t MemberID,
                                 const std::string& Name) {
  const std::string statement =
      "Delete from MasterPoints Where CompetitionID = " + std::to_string(CompetitionID) + " And ";
  if (MemberID != kNoMember) {
    database.Execute(statement + NumberIs(MemberID));
    // All members of no name share a number: without a name, "theirs" would be everybody's.
  } else if (!Name.empty() && IsStorable(Name)) {
    database.Execute(statement + "MembershipNumber < 0 and NonMemberName = " + cDatabase::SQLString(Name));
  }
}

void EndResultUpdate(cDatabase& database, std::int32_t CompetitionID) {
  database.Execute("Delete From MasterPoints Where CompetitionID = " + std::to_string(CompetitionID) +
                   " And RecordUpdated = 0");
  database.CloseDB(false);
}

}  // namespace tavi
