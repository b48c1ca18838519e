#include "competitions/MasterPoints.h"

#include "competitions/CompetitionAttributes.h"
#include "platform/values/Convert.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

constexpr std::int32_t kNoMember = -1;

}  // namespace

void AddMasterPoints(cDatabase& database, const MasterPointAward& award, const Competitors& players) {
  if (award.MasterPoints == 0.0) return;
  OpenUse use(database);
  try {
    const CompetitionAttributes attributes = ReadCompetitionAttributes(database, award.CompetitionID);
    InsertMasterPointsRow(database, award, players.Player1ID, players.P1Name);
    if (!attributes.Individual) InsertMasterPointsRow(database, award, players.Player2ID, players.P2Name);
  } catch (...) {
    use.KeepOpen();
    throw;
  }
  use.Close();
}

void InsertMasterPointsRow(cDatabase& database, const MasterPointAward& award, std::int32_t MemberID,
                           const std::string& Name) {
  const std::string storedName = MemberID == kNoMember ? Name : std::string();
  database.Execute(
      "Insert into MasterPoints (MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, Colour, "
      "Status, RecordUpdated) Values (" +
      std::to_string(MemberID) + ", " + cDatabase::SQLString(storedName) + ", " + std::to_string(award.CompetitionID) +
      ", " + std::to_string(award.SessionNo) + ", " + NumberText(award.MasterPoints) + ", " +
      std::to_string(award.Colour) + ", 0, 1)");
}

void ClearCompetitorMasterPoints(cDatabase& database, std::int32_t CompetitionID, std::int32_t MemberID,
                                 const std::string& Name) {
  const std::string statement =
      "Delete from MasterPoints Where CompetitionID = " + std::to_string(CompetitionID) + " And ";
  if (MemberID != kNoMember) {
    database.Execute(statement + "MembershipNumber = " + std::to_string(MemberID));
  } else if (!Name.empty()) {
    database.Execute(statement + "MembershipNumber < 0 and NonMemberName = " + cDatabase::SQLString(Name));
  }
}

void EndResultUpdate(cDatabase& database, std::int32_t CompetitionID) {
  database.Execute("Delete From MasterPoints Where CompetitionID = " + std::to_string(CompetitionID) +
                   " And RecordUpdated = 0");
  database.CloseDB(false);
}

}  // namespace tavi
