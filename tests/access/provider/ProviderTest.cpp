#include "access/provider/ProviderFile.h"
#include "platform/ConnectionTo.h"

namespace tavi::access::test {
namespace {

class ProviderTest : public ::testing::Test {
 protected:
  ProviderTest() : connection_(file_.Open()) {
    connection_->Execute(
        "Create Table Competitions (ID Counter Constraint PrimaryKey Primary Key, CompetitionName Text (50), "
        "CompetitionDate Date, Individual Short, Tables Byte, Fee Currency, IsTeams Bit Default 0, Percentage Double, "
        "Notes Memo, NatCode Text (20) Default 'EBU')");
  }
  ProviderFile file_;
  std::unique_ptr<ado::Connection> connection_;
};

TEST_F(ProviderTest, AMissingFileOrNoDatabaseIsAFailure) {
  EXPECT_EQ(NumberRaisedBy([&] { (void)file_.Provider().Open("Data Source=" + file_.Path() + ".none"); }), 0x80004005U);
  EXPECT_EQ(NumberRaisedBy([&] { (void)file_.Provider().Open("Provider=Microsoft.Jet.OLEDB.4.0"); }), 0x80004005U);
}

TEST_F(ProviderTest, ExecuteTellsTheRowsAffected) {
  EXPECT_EQ(connection_->Execute("Insert into Competitions (CompetitionName) Values ('One')"), 1);
  EXPECT_EQ(connection_->Execute("Insert into Competitions (CompetitionName) Values ('Two')"), 1);
  EXPECT_EQ(connection_->Execute("Update Competitions Set Tables = 5"), 2);
  EXPECT_EQ(connection_->Execute("Select * From Competitions"), 0);
  EXPECT_EQ(connection_->Execute("Delete From Competitions"), 2);
}

TEST_F(ProviderTest, ARegistrationReadsTheNumberOfItsNewRowAndSetsMore) {
  const auto rows = Select(*connection_,
                           "Select * from Competitions Where CompetitionName = 'O''Neil Cup' And "
                           "CompetitionDate = 45000");
  ASSERT_TRUE(rows->AtEnd());
  rows->AddNew();
  rows->Set("CompetitionName", std::string("O'Neil Cup"));
  rows->Set("CompetitionDate", Date{45000});
  rows->Update();
  EXPECT_EQ(rows->Get("ID"), Value{std::int32_t{1}});
  rows->Set("Individual", std::int16_t{-1});
  rows->Set("Tables", std::int16_t{7});
  rows->Set("IsTeams", true);
  rows->Update();
  const auto found = Select(*connection_, "Select * from Competitions Where ID = 1");
  EXPECT_EQ(found->Get("individual"), Value{std::int16_t{-1}});
  EXPECT_EQ(found->Get("Tables"), Value{std::uint8_t{7}});
  EXPECT_EQ(found->Get("IsTeams"), Value{true});
  EXPECT_EQ(found->Get("NatCode"), Value{std::string("EBU")});
  EXPECT_EQ(found->Get("CompetitionDate"), Value{Date{45000}});
  EXPECT_EQ(found->Get("Percentage"), Value{Null{}});
}

TEST_F(ProviderTest, FieldsHaveNamesAndTypes) {
  const auto rows = Select(*connection_, "Select ID, CompetitionName, Fee, Notes From Competitions");
  ASSERT_EQ(rows->Fields().size(), 4U);
  EXPECT_EQ(rows->Fields()[1].name, "CompetitionName");
  EXPECT_EQ(rows->Fields()[0].type, ado::DataType::Integer);
  EXPECT_EQ(rows->Fields()[2].type, ado::DataType::Currency);
  EXPECT_EQ(rows->Fields()[3].type, ado::DataType::WChar);
}

TEST_F(ProviderTest, AFieldThatIsNotThereIsAnError) {
  connection_->Execute("Insert into Competitions (CompetitionName) Values ('One')");
  const auto rows = Select(*connection_, "Select ID From Competitions");
  EXPECT_EQ(NumberRaisedBy([&] { (void)rows->Get("CompetitionName"); }), 0x800A0CC1U);
  EXPECT_EQ(NumberRaisedBy([&] { rows->Set("CompetitionName", std::string("x")); }), 0x800A0CC1U);
}

TEST_F(ProviderTest, ATableIsOpenedByItsName) {
  connection_->Execute("Insert into Competitions (CompetitionName) Values ('One')");
  for (const auto kind : {ado::SourceKind::TableDirect, ado::SourceKind::CommandText}) {
    const auto rows =
        connection_->OpenRecordset("competitions", ado::CursorType::Dynamic, ado::LockType::Pessimistic, kind);
    EXPECT_EQ(rows->Get("CompetitionName"), Value{std::string("One")});
  }
  EXPECT_EQ(NumberRaisedBy([&] {
              (void)connection_->OpenRecordset("Nothing", ado::CursorType::Dynamic, ado::LockType::Pessimistic,
                                               ado::SourceKind::TableDirect);
            }),
            0x80040E37U);
}

TEST_F(ProviderTest, ARecordSetForReadingIsNotChanged) {
  connection_->Execute("Insert into Competitions (CompetitionName) Values ('One')");
  const auto rows = connection_->OpenRecordset("Select * From Competitions", ado::CursorType::ForwardOnly,
                                               ado::LockType::ReadOnly, ado::SourceKind::CommandText);
  EXPECT_EQ(NumberRaisedBy([&] { rows->Set("CompetitionName", std::string("x")); }), 0x800A0CB3U);
  EXPECT_EQ(NumberRaisedBy([&] { rows->AddNew(); }), 0x800A0CB3U);
}

TEST_F(ProviderTest, AStatementWithoutRowsOpensNoRecordSet) {
  EXPECT_EQ(NumberRaisedBy([&] { (void)Select(*connection_, "Delete From Competitions"); }), 0x80004005U);
}

TEST_F(ProviderTest, AClosedConnectionEndsItsRecordSets) {
  connection_->Execute("Insert into Competitions (CompetitionName) Values ('One')");
  const auto rows = Select(*connection_, "Select * From Competitions");
  connection_->Close();
  connection_->Close();
  EXPECT_EQ(NumberRaisedBy([&] { (void)rows->Get("ID"); }), 0x80004005U);
  EXPECT_EQ(NumberRaisedBy([&] { (void)rows->AtEnd(); }), 0x80004005U);
  EXPECT_EQ(NumberRaisedBy([&] { connection_->Execute("Delete From Competitions"); }), 0x80004005U);
  rows->Close();
}

TEST_F(ProviderTest, ARecordSetMayOutliveItsConnection) {
  auto rows = Select(*connection_, "Select * From Competitions");
  connection_.reset();
  EXPECT_EQ(NumberRaisedBy([&] { rows->MoveNext(); }), 0x80004005U);
  rows.reset();
}

TEST_F(ProviderTest, AClosedRecordSetIsAnError) {
  const auto rows = Select(*connection_, "Select * From Competitions");
  rows->Close();
  rows->Close();
  EXPECT_EQ(NumberRaisedBy([&] { rows->MoveNext(); }), 0x80004005U);
}

TEST_F(ProviderTest, TwoConnectionsSeeEachOthersChanges) {
  const auto other = file_.Open();
  connection_->Execute("Insert into Competitions (CompetitionName) Values ('One')");
  EXPECT_EQ(Select(*other, "Select CompetitionName From Competitions")->Get("CompetitionName"),
            Value{std::string("One")});
  other->Execute("Update Competitions Set CompetitionName = 'Two'");
  EXPECT_EQ(Select(*connection_, "Select CompetitionName From Competitions")->Get("CompetitionName"),
            Value{std::string("Two")});
}

TEST_F(ProviderTest, AFileOpenedForReadingIsNotChanged) {
  const auto reader = file_.Open(";Mode=Read");
  EXPECT_EQ(NumberRaisedBy([&] { reader->Execute("Delete From Competitions"); }), 0x80040E09U);
  EXPECT_TRUE(Select(*reader, "Select * From Competitions")->AtEnd());
}

TEST_F(ProviderTest, PathsAreMadeNative) {
  ProviderOptions options;
  std::string asked;
  options.nativePath = [&](const std::string& path) {
    asked = path;
    return file_.Path();
  };
  const auto provider = MakeAccessProvider(NativeFileSystem(), std::make_shared<NoonClock>(), options);
  const auto connection = provider->Open(ConnectionTo("C:\\Club\\ClubMembers.mdb"));
  EXPECT_EQ(asked, "C:\\Club\\ClubMembers.mdb");
}

}  // namespace
}  // namespace tavi::access::test
