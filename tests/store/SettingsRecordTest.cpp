#include <gtest/gtest.h>

#include <limits>

#include "store/cDatabase.h"
#include "store/support/FakeFile.h"

namespace tavi {
namespace {

using testing::FakePlatform;
using testing::FakeRows;

/// A store whose club has the name that a test gives it.
class SettingsRecordTest : public ::testing::Test {
 protected:
  SettingsRecordTest() {
    store_.SetDatabaseFolder("C:\\Bridge");
    Settings().fields = {"MPCertificatePrefix", "LastMPCertificate", "LastMPUploadNo", "MasterPointMethod",
                         "CountyList",          "LastGotEBUNos",     "LastUploadDate"};
    SetClubName("Hillcrest Bridge Club");
  }
  FakeRows& Settings() { return fake_.file->answers["Settings"]; }
  void SetClubName(const std::string& name) {
    fake_.file->answers["Select top 1 ClubName from ClubNames Order by ClubID Desc"] = {{"ClubName"}, {{name}}};
  }
  Value Stored(std::size_t column) { return Settings().rows.at(0).at(column); }

  FakePlatform fake_;
  cDatabase store_{fake_.platform, {}};
};

constexpr std::size_t kPrefix = 0;
constexpr std::size_t kCertificate = 1;
constexpr std::size_t kMethod = 3;

TEST_F(SettingsRecordTest, AnEmptyTableGetsItsOneRowWithDefaults) {
  EXPECT_EQ(store_.GetLastMPCertificateNo(), 0);
  ASSERT_EQ(Settings().rows.size(), 1U);
  EXPECT_EQ(Stored(kPrefix), Value(std::string()));
  EXPECT_EQ(Stored(kCertificate), Value(std::int32_t{0}));
  EXPECT_EQ(Stored(kMethod), Value(std::int16_t{0}));
  EXPECT_EQ(fake_.file->recordsets.back().sourceKind, ado::SourceKind::TableDirect);
  EXPECT_EQ(fake_.file->recordsets.back().cursorType, ado::CursorType::Dynamic);
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(SettingsRecordTest, TheFirstCertificateOfAFreshFileIsNumberOne) {
  EXPECT_EQ(store_.NextMPCertificateNumber(), "HBC00001");
  EXPECT_EQ(store_.NextMPCertificateNumber(), "HBC00002");
  EXPECT_EQ(store_.GetLastMPCertificateNo(), 2);
}

TEST_F(SettingsRecordTest, ThePrefixIsDerivedOnceAndStored) {
  EXPECT_EQ(store_.MPCertificatePrefix(), "HBC");
  SetClubName("Other Name");
  EXPECT_EQ(store_.MPCertificatePrefix(), "HBC");
}

TEST_F(SettingsRecordTest, ANameWithoutLettersGivesThePrefixMP) {
  SetClubName("1848 & 1849!");
  EXPECT_EQ(store_.NextMPCertificateNumber(), "MP00001");
}

TEST_F(SettingsRecordTest, FullNumbersHaveAtLeastFiveDigitsAndAreNeverCut) {
  Settings().rows = {{std::string("BC"), Null(), Null(), Null(), Null(), Null(), Null()}};
  EXPECT_EQ(store_.FullCertificateNumber(42), "BC00042");
  EXPECT_EQ(store_.FullCertificateNumber(1234567), "BC1234567");
}

TEST_F(SettingsRecordTest, MissingCountersCountAsZero) {
  Settings().rows = {{std::string("BC"), Null(), Null(), Null(), Null(), Null(), Null()}};
  EXPECT_EQ(store_.NextMPCertificateNumber(), "BC00001");
  EXPECT_EQ(store_.NextMPUploadNumber(), 1);
  EXPECT_EQ(store_.NextMPUploadNumber(), 2);
}

TEST_F(SettingsRecordTest, NumberingStartsAgainAfterAReset) {
  store_.ResetLastMPCertificateNo(99);
  EXPECT_EQ(store_.NextMPCertificateNumber(), "HBC00100");
  store_.ResetLastMPCertificateNo(0);
  EXPECT_EQ(store_.NextMPCertificateNumber(), "HBC00001");
}

TEST_F(SettingsRecordTest, ACounterAtItsEndOverflowsAndStays) {
  store_.ResetLastMPCertificateNo(std::numeric_limits<std::int32_t>::max());
  EXPECT_THROW(static_cast<void>(store_.NextMPCertificateNumber()), Error);
  EXPECT_EQ(store_.GetLastMPCertificateNo(), std::numeric_limits<std::int32_t>::max());
  EXPECT_EQ(store_.OpenCount(), 0);
}

TEST_F(SettingsRecordTest, ThePrefixHasTheInitialsOfTheFirstFourWords) {
  const auto prefixOf = [this](const std::string& name) {
    SetClubName(name);
    return store_.DefaultMPPrefix("none");
  };
  EXPECT_EQ(prefixOf("Hillcrest Bridge Club"), "HBC");
  EXPECT_EQ(prefixOf("St. Anne's"), "SA");
  EXPECT_EQ(prefixOf("o'Brien bridge"), "OB");
  EXPECT_EQ(prefixOf("The Very Old Village Bridge Club"), "TVOV");
  EXPECT_EQ(prefixOf("  one\ttwo\r\nthree "), "OTT");
  EXPECT_EQ(prefixOf("1st club"), "SC") << "the digit before it leaves the letter the first one of its word";
  EXPECT_EQ(prefixOf("Éloïse club"), "LC") << "only A to Z count";
  EXPECT_EQ(prefixOf(""), "none");
}

TEST_F(SettingsRecordTest, RenamingTheClubAddsANameAndRenamesThePrefix) {
  Settings().rows = {{std::string("BC"), Null(), Null(), Null(), Null(), Null(), Null()}};
  SetClubName("Kings' Club");
  store_.SetLatestClubName("Kings' Club");
  EXPECT_EQ(fake_.file->statements.back(), "Insert into ClubNames (ClubName) Values ('Kings'' Club')");
  EXPECT_EQ(Stored(kPrefix), Value(std::string("KC")));
}

TEST_F(SettingsRecordTest, ANameWithoutLettersLeavesThePrefixAsItWas) {
  Settings().rows = {{std::string("BC"), Null(), Null(), Null(), Null(), Null(), Null()}};
  SetClubName("1848");
  store_.SetLatestClubName("1848");
  EXPECT_EQ(Stored(kPrefix), Value(std::string("BC")));
}

TEST_F(SettingsRecordTest, DatesAreTheFourthOfDecember2000WhileNoneIsStored) {
  EXPECT_EQ(store_.LastGotEBUNumbers(), Date::FromCivil(2000, 12, 4));
  EXPECT_EQ(store_.LastUploadDate(), Date::FromCivil(2000, 12, 4));
  store_.SetLastGotEBUNumbers(Date::FromCivil(2024, 2, 29));
  store_.SetLastUploadDate(Date::FromCivil(2024, 3, 1));
  EXPECT_EQ(store_.LastGotEBUNumbers(), Date::FromCivil(2024, 2, 29));
  EXPECT_EQ(store_.LastUploadDate(), Date::FromCivil(2024, 3, 1));
}

TEST_F(SettingsRecordTest, CountiesAndMethodAreStoredAndReadBack) {
  EXPECT_EQ(store_.CountyList(), "");
  store_.SetCountyList("Kent,Surrey");
  EXPECT_EQ(store_.CountyList(), "Kent,Surrey");
  EXPECT_EQ(store_.MasterPointIssueMethod(), 0) << "no row at all";
  store_.SetMasterPointIssueMethod(3);
  EXPECT_EQ(Stored(kMethod), Value(std::int16_t{3}));
  fake_.file->answers["Select MasterPointMethod from Settings"] = {{"MasterPointMethod"}, {{std::int16_t{3}}}};
  EXPECT_EQ(store_.MasterPointIssueMethod(), 3);
}

}  // namespace
}  // namespace tavi
