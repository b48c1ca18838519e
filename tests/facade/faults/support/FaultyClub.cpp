#include "facade/faults/support/FaultyClub.h"

#include <filesystem>

#include "platform/ConnectionTo.h"
#include "platform/values/Convert.h"

namespace tavi::testing {
namespace {

constexpr const char* kFileName = "ClubMembers.mdb";
constexpr const char* kCopyName = "AtFirst.mdb";

void AddRows(ado::Connection& connection, const std::string& table, std::vector<std::string>& texts) {
  const auto rows = connection.OpenRecordset(table, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                             ado::SourceKind::TableDirect);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::string text = table;
    for (const ado::Field& field : rows->Fields()) {
      const Value value = rows->Get(field.name);
      text += " | " + (IsNull(value) ? std::string("null") : ToText(value));
    }
    texts.push_back(text);
  }
}

}  // namespace

FaultyClub::FaultyClub() {
  club_ = std::make_unique<Club>([this](const std::shared_ptr<const ado::Provider>& provider) {
    plainProvider_ = provider;
    return MakeFaultyProvider(provider, plan_);
  });
  Fill();
  (*club_)->CloseDatabase();
  club_->Folder().CopyFile(kFileName, kCopyName);
}

void FaultyClub::Fill() {
  MembershipDatabase& club = **club_;
  club.OpenDatabase();
  club.SetClubName("Hillcrest Bridge Club");
  club.AddNewMember("Old", "", "Man", 40.0);
  club.AddNewMember("John", "A", "Smith", 46.0);
  club.AddNewMember("Jane", "", "Smith", 55.0);
  club.AddNewMember("Bob", "", "Dale", 51.5);
  club.SetEBUNumber(2, "100002");
  club.AddRegularPair(1, 2);
  club.AddRegularPair(2, 3);
  club.AddRegularPair(4, 2);
  for (const char* statement :
       {"Update Partnerships Set KnownAs = 'The Smiths' Where HigherPlayer = 3",
        "Update Members Set email = 'a@b', Active = 0 Where MembershipNumber = 1",
        "Update Members Set email = 'c@d', HandicalcSeed = 48, HandicalcSeedDate = 45930 Where MembershipNumber = 2",
        "Update Members Set email = 'e@f' Where MembershipNumber = 3",
        "Update Partnerships Set HandicalcSeed = 47, HandicalcSeedDate = 45930 Where HigherPlayer = 3",
        "Insert Into EBUMembershipList Values (100002, 'John', 'Smith', 'SX', 'Lewes')",
        "Insert Into EBUMembershipList Values (100003, 'Jane', 'Smith', 'SX', 'Lewes')",
        "Insert Into ClubPolicies (MemberType, SpecificDate, SubsDueDate, Subs) Values ('Standard', 1, 45748, 25)",
        "Delete From HandicalcSettings", "Insert Into HandicalcSettings Values (52, 3, 75, 0.9, 1.5, 45, 0)"}) {
    club_->Execute(statement);
  }
  const std::int32_t id = club.SetCompetition("Wednesday", Date::FromCivil(2025, 9, 17), false, 0, 0, 0, 5, 2, 0, true);
  club.NoteCompetitorResult(id, 2, "", 3, "", 55.0, 59.0);
  club.NoteCompetitorResult(id, 2, "", 4, "", 45.0, 49.0);
  club.AddMasterPoints(id, 1, 2, "", 3, "", 12.0, 0);
  club.AddMasterPoints(id, 1, -1, "Guest", 4, "", 6.0, 0);
  club.EndResultUpdate(id);
}

void FaultyClub::SetBack(bool isFirstOpenPending) {
  plan_->Start();
  (*club_)->CloseDatabase();
  club_->Folder().CopyFile(kCopyName, kFileName);
  club_->Reopen();
  if (isFirstOpenPending) return;
  (*club_)->OpenDatabase();
  (*club_)->CloseDatabase();
  plan_->Start();
}

std::string FaultyClub::FilePath() const {
  return club_->Folder().Path(kFileName);
}

std::unique_ptr<ado::Connection> FaultyClub::PlainConnection() const {
  return plainProvider_->Open(ConnectionTo(FilePath()));
}

void FaultyClub::ExecuteAtFirst(const std::string& statement) const {
  const auto connection = PlainConnection();
  connection->Execute(statement);
  connection->Close();
}

std::int32_t FaultyClub::Single(const std::string& query) const {
  const auto connection = PlainConnection();
  const auto rows = connection->OpenRecordset(query, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                              ado::SourceKind::CommandText);
  const std::int32_t number = ToInt32(rows->Get(rows->Fields().front().name));
  rows->Close();
  connection->Close();
  return number;
}

std::vector<std::string> FaultyClub::StoredRows() const {
  const auto connection = PlainConnection();
  std::vector<std::string> texts;
  for (const char* table : {"Members", "Partnerships", "Competitions", "Results", "MasterPoints", "Settings",
                            "ClubNames", "ClubPolicies", "HandicalcSettings", "EBUMembershipList"}) {
    AddRows(*connection, table, texts);
  }
  connection->Close();
  return texts;
}

}  // namespace tavi::testing
