#include "store/LayoutTable.h"

namespace tavi {
namespace {

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

cDbFieldDef ColumnWithDefault(const char* table, const char* field, const char* type, const char* literal) {
  cDbFieldDef column = Column(table, field, type);
  column.SetDefault = true;
  column.DefaultValue = literal;
  return column;
}

}  // namespace

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
