// The layout of a club's file, twice: as a new file gets it, in statements, and as columns that files of earlier
// versions may lack, which the layout check adds one by one. A column of a later version stands in both, with the same
// type. An added column's default is written into the rows that are there, while the statements' defaults are for rows
// to come. Types are the names that the database's SQL has for them; Short has 16 bits, Integer and Long have 32.
#include "store/Layout.h"

#include <array>

namespace tavi {
namespace {

constexpr std::array kTableStatements{
    // A row for each member, who stays in it when he retires (Active = 0). FuzzedFirstName and FuzzedLastName are the
    // sound-alike keys of the names, UniquenessFlag how much of a name must be shown, HandicalcSeed a starting
    // handicap.
    "Create Table Members (MembershipNumber Long Not Null, EBUNumber Text (20), Title Text (20), FirstName Text (50), "
    "MiddleInitials Text (50), LastName Text (50), FuzzedFirstName Text (50), FuzzedLastName Text (50), "
    "KnownAs Text (50), Sex Integer Default 0, DOB Date, email Text (255), HouseID Text (100), Address Memo, "
    "PostCode Text (20), HomePhone Text (50), WorkPhone Text (50), MobilePhone Text (50), Notes Memo, "
    "MemberType Text (50), DateOfJoining Date, SubsPaid Date, SubsDue Date, AmountOwing Currency, Privacy Bit Default "
    "0, "
    "Active Bit Default -1, Handicap Double Default 50, UniquenessFlag Integer, Stratum Integer Default 0, "
    "HandicalcSeed Double, HandicalcSeedDate Date)",

    // A row for each pair, known by its numbers in ascending order; HigherFirst is 1 when it was entered the other way
    // round.
    "Create Table Partnerships (LowerPlayer Long Not Null, HigherPlayer Long Not Null, HigherFirst Short, "
    "Handicap Double Default 50, KnownAs Text (255), Active Bit Default -1, HandicalcSeed Double, "
    "HandicalcSeedDate Date)",

    // A competition is known by name and date to scoring programs, by ID to results and awards. Truth values of the
    // first versions are numbers of 16 bits, later ones are Bit.
    "Create Table Competitions (ID Counter, CompetitionName Text (255), CompetitionDate Date, Individual Short, "
    "ScoringMethod Short, ButlerType Short, MasterPointsType Short, IncludeInHandicapCalculations Short, "
    "NumberOfTables Integer, NumberOfWinners Short, MasterPointsColour Integer, IsTeams Bit Default 0, "
    "IsSwiss Bit Default 0, IsExternal Bit Default 0, QualiFinal Bit Default 0, NatCode Text (20) Default 'EBU')",

    // A row for the two players of a result together; -1 stands for who is no member, and for the partner in an
    // individual one.
    "Create Table Results (Competition Long, Player Long, Partner Long, ActualPercentage Double, NetPercentage Double)",

    // A row for each player's award, by number or, with the number -1, by name. RecordUpdated is 0 while a competition
    // that is stored again has not passed the award again.
    "Create Table MasterPoints (ID Counter, MembershipNumber Long, NonMemberName Text (255), CompetitionID Long, "
    "SessionNo Integer Default -1, MasterPoints Double, Colour Integer Default -1, Status Short, RecordUpdated Short, "
    "TempMPTotal Double, MPTotalsString Memo)",

    // One row, which is made when it is first needed.
    "Create Table Settings (MasterPointMethod Short, LastMPCertificate Long, LastMPUploadNo Long, "
    "MPCertificatePrefix Text (4), CountyList Text (100), LastUploadDate Date, LastGotEBUNos Date)",

    // The club's names in the course of time; the row with the highest ClubID is the current one.
    "Create Table ClubNames (ClubID Counter, ClubName Text (255), ClubEBUNumber Text (20), "
    "Affiliation Text (10) Default 'EBU')",

    // What each type of members pays, and when.
    "Create Table ClubPolicies (MemberType Text (50), SpecificDate Short, SubsDueDate Date, Subs Currency)",

    // One row, how handicaps are calculated.
    "Create Table HandicalcSettings (MaxWeeks Short, MaxResults Short, SamePartnerWeighting Short, "
    "RegularPairMultiplier Double, RegularPairAdd Double, UnknownPlayerHandicap Double, Disabled Bit Default 0)"};

/// The row of handicap settings, with what counts where none are stored: switching the calculation off changes this
/// row.
constexpr const char* kHandicapSettings =
    "Insert Into HandicalcSettings (MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, RegularPairAdd, "
    "UnknownPlayerHandicap, Disabled) Values (0, 0, 50, 1, 0, 50, 0)";

/// One index for each column, or set of columns, by which rows are looked up or sorted.
constexpr std::array kIndexStatements{
    "Create Index PrimaryKey On Members (MembershipNumber) With Primary",
    "Create Index FullName On Members (FirstName, LastName, MiddleInitials)",
    "Create Index LastName On Members (LastName)",
    "Create Index FuzzedFirstName On Members (FuzzedFirstName)",
    "Create Index FuzzedLastName On Members (FuzzedLastName)",
    "Create Index EBUNumber On Members (EBUNumber)",
    "Create Index PrimaryKey On Partnerships (LowerPlayer, HigherPlayer) With Primary",
    "Create Index HigherPlayer On Partnerships (HigherPlayer)",
    "Create Index PrimaryKey On Competitions (ID) With Primary",
    "Create Index DateAndName On Competitions (CompetitionDate, CompetitionName)",
    "Create Index Competition On Results (Competition)",
    "Create Index Player On Results (Player)",
    "Create Index Partner On Results (Partner)",
    "Create Index PrimaryKey On MasterPoints (ID) With Primary",
    "Create Index CompetitionID On MasterPoints (CompetitionID)",
    "Create Index MembershipNumber On MasterPoints (MembershipNumber)",
    "Create Index PrimaryKey On ClubNames (ClubID) With Primary",
    "Create Index ClubName On ClubNames (ClubName)",
    "Create Index MemberType On ClubPolicies (MemberType)",
    "Create Index FullName On EBUMembershipList (LastName, FirstName)"};

cDbFieldDef Column(const char* table, const char* field, const char* type) {
  cDbFieldDef column;
  column.TableName = table;
  column.FieldName = field;
  column.FieldType = type;
  return column;
}

cDbFieldDef TextColumn(const char* table, const char* field, std::int16_t length) {
  cDbFieldDef column = Column(table, field, "Text");
  column.TextFieldLength = length;
  return column;
}

/// The literal stands in an UPDATE as it is.
cDbFieldDef ColumnWithDefault(const char* table, const char* field, const char* type, const char* literal) {
  cDbFieldDef column = Column(table, field, type);
  column.SetDefault = true;
  column.DefaultValue = literal;
  return column;
}

}  // namespace

// Tables before their indexes, and the row of settings last: it counts on its table's columns.
void CreateBaseFile(ado::Connection& connection) {
  for (const char* statement : kTableStatements) connection.Execute(statement);
  connection.Execute(kCreateEbuMembersTable);
  for (const char* statement : kIndexStatements) connection.Execute(statement);
  StoreFirstHandicapSettings(connection);
}

void StoreFirstHandicapSettings(ado::Connection& connection) {
  connection.Execute(kHandicapSettings);
}

std::vector<cDbFieldDef> AddedSettingsColumns() {
  return {Column("Settings", "LastMPCertificate", "Long"),  Column("Settings", "LastMPUploadNo", "Long"),
          TextColumn("Settings", "MPCertificatePrefix", 4), TextColumn("Settings", "CountyList", 100),
          Column("Settings", "LastUploadDate", "Date"),     Column("Settings", "MasterPointMethod", "Short")};
}

std::vector<cDbFieldDef> AddedMembersColumns() {
  return {Column("Members", "HandicalcSeed", "Double"),
          Column("Members", "HandicalcSeedDate", "Date"),
          Column("Members", "UniquenessFlag", "Integer"),
          ColumnWithDefault("Members", "Sex", "Integer", "0"),
          TextColumn("Members", "HouseID", 100),
          TextColumn("Members", "PostCode", 20),
          Column("Members", "DOB", "Date"),
          TextColumn("Members", "Title", 20),
          ColumnWithDefault("Members", "Stratum", "Integer", "0"),
          ColumnWithDefault("Members", "Privacy", "bit", "0")};
}

std::vector<cDbFieldDef> AddedResultColumns() {
  return {Column("MasterPoints", "TempMPTotal", "Double"),
          Column("MasterPoints", "MPTotalsString", "Memo"),
          ColumnWithDefault("MasterPoints", "Colour", "Integer", "-1"),
          ColumnWithDefault("MasterPoints", "SessionNo", "Integer", "-1"),
          Column("Partnerships", "HandicalcSeed", "Double"),
          Column("Partnerships", "HandicalcSeedDate", "Date"),
          Column("Competitions", "NumberOfTables", "Integer"),
          Column("Competitions", "NumberOfWinners", "Short"),
          Column("Competitions", "MasterPointsColour", "Integer"),
          ColumnWithDefault("Competitions", "IsTeams", "Bit", "0"),
          ColumnWithDefault("Competitions", "IsSwiss", "Bit", "0"),
          ColumnWithDefault("Competitions", "IsExternal", "Bit", "0"),
          ColumnWithDefault("Competitions", "QualiFinal", "Bit", "0")};
}

cDbFieldDef ObsoleteColumn(const std::string& tableName, const std::string& fieldName) {
  cDbFieldDef column;
  column.TableName = tableName;
  column.FieldName = fieldName;
  column.Action = cDbFieldDef::ChangeAction::Remove;
  return column;
}

}  // namespace tavi
