#include "access/sql/support/SqlFile.h"

#include <gtest/gtest.h>

#include "platform/values/Convert.h"

namespace tavi::access::test {

std::vector<std::string> OtherUser::Rows(const std::string& text) {
  return RowTexts(*session_.Run(text).rows);
}

SqlFile::SqlFile() : session_(std::make_unique<sql::Session>(file_.Get(), std::make_shared<StillClock>())) {}

std::int64_t SqlFile::Run(const std::string& text) {
  return session_->Run(text).affected;
}

void SqlFile::RunAll(const std::vector<std::string>& texts) {
  for (const std::string& text : texts) Run(text);
}

std::unique_ptr<sql::ResultSet> SqlFile::Open(const std::string& text) {
  return session_->Run(text).rows;
}

std::vector<std::string> SqlFile::Rows(const std::string& text) {
  const auto rows = Open(text);
  return RowTexts(*rows);
}

Error SqlFile::Refused(const std::string& text) {
  try {
    session_->Run(text);
  } catch (const Error& error) {
    return error;
  }
  ADD_FAILURE() << "not refused: " << text;
  return {0, "", ""};
}

void SqlFile::ExpectSound() {
  session_.reset();
  file_.ExpectSound();
  session_ = std::make_unique<sql::Session>(file_.Get(), std::make_shared<StillClock>());
}

std::string ValueText(const Value& value) {
  return IsNull(value) ? "null" : ToText(value);
}

std::uint32_t NumberOf(const Error& error) {
  return static_cast<std::uint32_t>(error.Number());
}

std::vector<std::string> RowTexts(sql::ResultSet& rows) {
  std::vector<std::string> texts;
  for (; !rows.AtEnd(); rows.MoveNext()) {
    std::string text;
    for (std::size_t i = 0; i < rows.Columns().size(); ++i) text += (i == 0 ? "" : "|") + ValueText(rows.Get(i));
    texts.push_back(std::move(text));
  }
  return texts;
}

void MakeClub(SqlFile& file) {
  file.RunAll({
      "Create Table Members (MembershipNumber Long Constraint PrimaryKey Primary Key, FirstName Text (50), "
      "MiddleInitials Text (10), LastName Text (50), KnownAs Text (50), Handicap Double Default 50, "
      "EBUNumber Text (20), UniquenessFlag Short, Active Bit Default -1, Notes Memo, DateOfJoining Date)",
      "Create Index FullName On Members (FirstName, LastName, MiddleInitials)",
      "Create Table Partnerships (LowerPlayer Long, HigherPlayer Long, HigherFirst Short, Handicap Double, "
      "KnownAs Text (50), Active Bit Default -1, HandicalcSeed Double, HandicalcSeedDate Date, "
      "Constraint PrimaryKey Primary Key (LowerPlayer, HigherPlayer))",
      "Create Table Competitions (ID Counter Constraint PrimaryKey Primary Key, CompetitionName Text (255), "
      "CompetitionDate Date, Individual Short, ScoringMethod Short, IncludeInHandicapCalculations Short, "
      "MasterPointsColour Long, NatCode Text (20) Default 'EBU')",
      "Create Table Results (Competition Long, Player Long, Partner Long, ActualPercentage Double, "
      "NetPercentage Double)",
      "Create Index Competition On Results (Competition)",
      "Create Index Player On Results (Player)",
      "Create Index Partner On Results (Partner)",
      "Create Table MasterPoints (ID Counter Constraint PrimaryKey Primary Key, MembershipNumber Long, "
      "NonMemberName Text (255), CompetitionID Long, SessionNo Long Default -1, MasterPoints Double, "
      "Colour Long Default -1, Status Short, RecordUpdated Short)",
      "Create Table ClubNames (ClubID Counter Constraint PrimaryKey Primary Key, ClubName Text (255))",
  });
  file.RunAll({
      "Insert into Members (MembershipNumber, FirstName, MiddleInitials, LastName, EBUNumber) "
      "Values (1, 'John', 'A', 'Smith', '100')",
      "Insert into Members (MembershipNumber, FirstName, MiddleInitials, LastName, EBUNumber) "
      "Values (2, 'Jane', '', 'Brown', '101')",
      "Insert into Members (MembershipNumber, FirstName, MiddleInitials, LastName, Active) "
      "Values (3, 'Tom', '', 'O''Neil', 0)",
      "Insert into Members (MembershipNumber, FirstName, MiddleInitials, LastName) Values (4, 'john', '', 'Brown')",
      "Insert into Members (MembershipNumber, FirstName, MiddleInitials, LastName) Values (7, 'Ann', 'B C', 'Green')",
      "Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Handicap) Values (1, 2, 0, 51.5)",
      "Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Handicap) Values (4, 7, 1, 48)",
      "Insert into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, "
      "IncludeInHandicapCalculations, MasterPointsColour) Values ('Monday', 45000, 0, 0, 1, 0)",
      "Insert into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, "
      "IncludeInHandicapCalculations, MasterPointsColour) Values ('Monday', 45007, 0, 0, 1, 2)",
      "Insert into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, "
      "IncludeInHandicapCalculations, MasterPointsColour) Values ('Teams', 45007, 0, 1, 1, 3)",
      "Insert into Results (Competition, Player, Partner, ActualPercentage) Values (1, 1, 2, 55.5)",
      "Insert into Results (Competition, Player, Partner, ActualPercentage) Values (2, 2, 1, 45)",
      "Insert into Results (Competition, Player, Partner, ActualPercentage) Values (2, 4, 7, 60)",
      "Insert into Results (Competition, Player, Partner, ActualPercentage) Values (3, 1, 4, 70)",
  });
}

}  // namespace tavi::access::test
