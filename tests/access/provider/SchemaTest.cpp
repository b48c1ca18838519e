#include "access/provider/ProviderFile.h"
#include "platform/values/Convert.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

Texts RowTexts(ado::Recordset& rows, const std::vector<std::string>& fields) {
  Texts texts;
  for (; !rows.AtEnd(); rows.MoveNext()) {
    std::string text;
    for (const std::string& field : fields) {
      const Value value = rows.Get(field);
      text += (text.empty() ? "" : "|") + (IsNull(value) ? "null" : ToText(value));
    }
    texts.push_back(text);
  }
  return texts;
}

class SchemaTest : public ::testing::Test {
 protected:
  SchemaTest() : connection_(file_.Open()) {
    connection_->Execute(
        "Create Table MasterPoints (ID Counter Constraint PrimaryKey Primary Key, TempMPTotal Double, Name Text (30) "
        "Not Null, MPTotalsString Memo, Colour Long Default -1, Status Short, Flag Bit, Paid Currency, Done Date)");
    connection_->Execute("Create Index ByName On MasterPoints (Name, Colour Desc)");
    connection_->Execute("Create Table Another (X Byte, Y Single)");
  }
  ProviderFile file_;
  std::unique_ptr<ado::Connection> connection_;
};

TEST_F(SchemaTest, ColumnsAreListedByTableAndName) {
  const auto rows = connection_->OpenSchema(ado::SchemaKind::Columns);
  EXPECT_EQ(RowTexts(*rows, {"TABLE_NAME", "COLUMN_NAME", "ORDINAL_POSITION", "DATA_TYPE", "CHARACTER_MAXIMUM_LENGTH",
                             "IS_NULLABLE", "COLUMN_HASDEFAULT"}),
            (Texts{"Another|X|1|17|null|True|False", "Another|Y|2|4|null|True|False",
                   "MasterPoints|Colour|5|3|null|True|True", "MasterPoints|Done|9|7|null|True|False",
                   "MasterPoints|Flag|7|11|null|True|False", "MasterPoints|ID|1|3|null|True|False",
                   "MasterPoints|MPTotalsString|4|130|0|True|False", "MasterPoints|Name|3|130|30|False|False",
                   "MasterPoints|Paid|8|6|null|True|False", "MasterPoints|Status|6|2|null|True|False",
                   "MasterPoints|TempMPTotal|2|5|null|True|False"}));
}

TEST_F(SchemaTest, TablesAreListedWithTheirKind) {
  const auto rows = connection_->OpenSchema(ado::SchemaKind::Tables);
  const Texts tables = RowTexts(*rows, {"TABLE_NAME", "TABLE_TYPE"});
  EXPECT_EQ(tables.front(), "Another|TABLE");
  EXPECT_NE(std::find(tables.begin(), tables.end(), "MSysObjects|SYSTEM TABLE"), tables.end());
}

TEST_F(SchemaTest, IndexesAreListedColumnByColumn) {
  const auto rows = connection_->OpenSchema(ado::SchemaKind::Indexes);
  EXPECT_EQ(RowTexts(*rows, {"TABLE_NAME", "INDEX_NAME", "PRIMARY_KEY", "UNIQUE", "ORDINAL_POSITION", "COLUMN_NAME",
                             "COLLATION"}),
            (Texts{"MasterPoints|ByName|False|False|1|Name|1", "MasterPoints|ByName|False|False|2|Colour|2",
                   "MasterPoints|PrimaryKey|True|True|1|ID|1"}));
}

TEST_F(SchemaTest, ASchemaIsNotChanged) {
  const auto rows = connection_->OpenSchema(ado::SchemaKind::Columns);
  EXPECT_EQ(NumberRaisedBy([&] { rows->Set("COLUMN_NAME", std::string("x")); }), 0x800A0CB3U);
}

}  // namespace
}  // namespace tavi::access::test
