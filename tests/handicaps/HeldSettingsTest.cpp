#include <gtest/gtest.h>

#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

constexpr const char* kColumns =
    "MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, RegularPairAdd, UnknownPlayerHandicap, "
    "Disabled";

/// The settings that a public object holds, and the table that they come from.
class HeldSettingsTest : public ::testing::Test {
 protected:
  HeldSettingsTest() { club_.Execute("Delete From HandicalcSettings"); }
  ~HeldSettingsTest() override { EXPECT_EQ(club_.OpenCount(), 0) << "an operation left the file open"; }

  void StoreRow(const std::string& values) {
    club_.Execute("Insert Into HandicalcSettings (" + std::string(kColumns) + ") Values (" + values + ")");
  }
  Texts StoredRows() { return club_.Rows("Select " + std::string(kColumns) + " From HandicalcSettings"); }

  Club club_;
};

TEST_F(HeldSettingsTest, AnEmptyTableGivesTheDefaultsAndIsLeftEmpty) {
  const HandiCalcSettings settings = club_->HandicalcOptions();
  EXPECT_EQ(settings.SamePartnerWeighting(), 50);
  EXPECT_EQ(settings.UnknownPlayerHandicap(), 50.0);
  EXPECT_FALSE(club_->HandiCalcDisabled());
  EXPECT_TRUE(StoredRows().empty());
}

TEST_F(HeldSettingsTest, TheStoredRowIsReadWithTheWeightingLimited) {
  StoreRow("52, 10, 120, 0.9, 1.5, 46.25, 1");
  const HandiCalcSettings settings = club_->HandicalcOptions();
  EXPECT_EQ(settings.MaxWeeks(), 52);
  EXPECT_EQ(settings.MaxResults(), 10);
  EXPECT_EQ(settings.SamePartnerWeighting(), 100);
  EXPECT_EQ(settings.RegularPairMultiplier(), 0.9);
  EXPECT_EQ(settings.RegularPairAdd(), 1.5);
  EXPECT_EQ(settings.UnknownPlayerHandicap(), 46.25);
  EXPECT_TRUE(settings.Disabled());
}

TEST_F(HeldSettingsTest, TheTableIsReadOnceInAnObjectsLife) {
  static_cast<void>(club_->HandicalcOptions());
  StoreRow("52, 10, 75, 1, 0, 50, 1");
  EXPECT_FALSE(club_->HandiCalcDisabled());
  club_.Reopen();
  EXPECT_TRUE(club_->HandiCalcDisabled());
}

TEST_F(HeldSettingsTest, AFileWithoutTheColumnDisabledIsReadAsNotDisabled) {
  StoreRow("52, 10, 75, 1, 0, 50, 1");
  club_.Execute("Alter Table HandicalcSettings Drop Column Disabled");
  EXPECT_EQ(club_->HandicalcOptions().MaxWeeks(), 52);
  EXPECT_FALSE(club_->HandiCalcDisabled());
}

TEST_F(HeldSettingsTest, AnEmptyColumnIsAnErrorAndTheNextUseReadsTheRowAgain) {
  StoreRow("52, 10, 75, Null, 0, 40, 1");
  EXPECT_THROW(static_cast<void>(club_->HandicalcOptions()), Error);
  EXPECT_THROW(static_cast<void>(club_->HandicalcOptions()), Error) << "nothing half-read is held";
  club_.Execute("Update HandicalcSettings Set RegularPairMultiplier = 0.9");
  EXPECT_EQ(club_->HandicalcOptions().RegularPairMultiplier(), 0.9);
}

TEST_F(HeldSettingsTest, AFileThatCouldNotBeReadIsReadAgainByTheNextUse) {
  StoreRow("52, 10, 75, 1, 0, 40, 0");
  const std::string folder = club_->DatabaseFolder();
  club_->SetDatabaseFolder(club_.Folder().Path("nowhere"));
  EXPECT_THROW(static_cast<void>(club_->HandicalcOptions()), Error);
  EXPECT_THROW(club_->SetHandiCalcDisabled(true), Error) << "no settings are held";
  club_->SetDatabaseFolder(folder);
  EXPECT_EQ(club_->HandicalcOptions().MaxWeeks(), 52);
}

TEST_F(HeldSettingsTest, StoringReplacesEveryRow) {
  StoreRow("1, 1, 50, 1, 0, 50, 1");
  StoreRow("2, 2, 50, 1, 0, 50, 1");
  auto settings = std::make_shared<HandiCalcSettings>();
  settings->SetMaxWeeks(26);
  settings->SetMaxResults(-1);
  settings->SetSamePartnerWeighting(75);
  settings->SetRegularPairMultiplier(1.0 / 3.0);
  settings->SetRegularPairAdd(-0.5);
  settings->SetUnknownPlayerHandicap(1234567.890625);
  club_->SetHandicalcOptions(settings);
  EXPECT_EQ(StoredRows(), (Texts{"26 | -1 | 75 | 0.333333333333333 | -0.5 | 1234567.890625 | False"}));
}

TEST_F(HeldSettingsTest, NumbersAreReadBackAsTheyWereStored) {
  auto settings = std::make_shared<HandiCalcSettings>();
  settings->SetRegularPairMultiplier(1.0 / 3.0);
  settings->SetRegularPairAdd(-0.1 - 0.2);
  settings->SetUnknownPlayerHandicap(50.0 + 1.0 / 7.0);
  club_->SetHandicalcOptions(settings);
  club_.Reopen();
  const HandiCalcSettings read = club_->HandicalcOptions();
  EXPECT_EQ(read.RegularPairMultiplier(), 1.0 / 3.0);
  EXPECT_EQ(read.RegularPairAdd(), -0.1 - 0.2);
  EXPECT_EQ(read.UnknownPlayerHandicap(), 50.0 + 1.0 / 7.0);
}

TEST_F(HeldSettingsTest, TheStatementsAreTheKnownOnes) {
  static_cast<void>(club_->HandicalcOptions());
  club_.Watch().statements.clear();
  club_->SetHandicalcOptions(std::make_shared<HandiCalcSettings>());
  club_->SetHandiCalcDisabled(true);
  club_->SetHandiCalcDisabled(false);
  EXPECT_EQ(club_.Watch().statements,
            (Texts{"Delete from HandicalcSettings",
                   "Insert Into HandicalcSettings (MaxWeeks, MaxResults, SamePartnerWeighting, RegularPairMultiplier, "
                   "RegularPairAdd, UnknownPlayerHandicap, Disabled) Values (0, 0, 50, 1, 0, 50, 0)",
                   "Update HandicalcSettings Set Disabled = 1", "Update HandicalcSettings Set Disabled = 0"}));
}

TEST_F(HeldSettingsTest, StoringSwitchesTheCalculationOnAgain) {
  auto settings = std::make_shared<HandiCalcSettings>();
  settings->SetDisabled(true);
  club_->SetHandicalcOptions(settings);
  EXPECT_FALSE(settings->Disabled()) << "the object that was passed is the one that is held";
  EXPECT_FALSE(club_->HandiCalcDisabled());
  EXPECT_EQ(StoredRows(), (Texts{"0 | 0 | 50 | 1 | 0 | 50 | False"}));
}

TEST_F(HeldSettingsTest, AStoredObjectIsHeldItself) {
  auto settings = std::make_shared<HandiCalcSettings>();
  club_->SetHandicalcOptions(settings);
  settings->SetMaxWeeks(7);
  EXPECT_EQ(club_->HandicalcOptions().MaxWeeks(), 7);
}

TEST_F(HeldSettingsTest, EditingACopyChangesNothing) {
  HandiCalcSettings copy = club_->HandicalcOptions();
  copy.SetMaxWeeks(7);
  EXPECT_EQ(club_->HandicalcOptions().MaxWeeks(), 0);
}

TEST_F(HeldSettingsTest, DisablingChangesThatColumnAlone) {
  StoreRow("52, 10, 75, 0.9, 1.5, 46.25, 0");
  static_cast<void>(club_->HandicalcOptions());
  club_->SetHandiCalcDisabled(true);
  EXPECT_TRUE(club_->HandiCalcDisabled());
  EXPECT_EQ(StoredRows(), (Texts{"52 | 10 | 75 | 0.9 | 1.5 | 46.25 | True"}));
}

TEST_F(HeldSettingsTest, DisablingBeforeAnySettingsAreHeldIsRefused) {
  StoreRow("52, 10, 75, 0.9, 1.5, 46.25, 0");
  try {
    club_->SetHandiCalcDisabled(true);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::NoObject));
  }
  EXPECT_EQ(StoredRows(), (Texts{"52 | 10 | 75 | 0.9 | 1.5 | 46.25 | False"}));
}

TEST(HeldSettingsOfANewClub, AreTheDefaultsAndRememberThatTheCalculationIsSwitchedOff) {
  Club club;
  const HandiCalcSettings settings = club->HandicalcOptions();
  const HandiCalcSettings defaults;
  EXPECT_EQ(settings.MaxWeeks(), defaults.MaxWeeks());
  EXPECT_EQ(settings.MaxResults(), defaults.MaxResults());
  EXPECT_EQ(settings.SamePartnerWeighting(), defaults.SamePartnerWeighting());
  EXPECT_EQ(settings.RegularPairMultiplier(), defaults.RegularPairMultiplier());
  EXPECT_EQ(settings.RegularPairAdd(), defaults.RegularPairAdd());
  EXPECT_EQ(settings.UnknownPlayerHandicap(), defaults.UnknownPlayerHandicap());
  EXPECT_FALSE(settings.Disabled());
  club->SetHandiCalcDisabled(true);
  club.Reopen();
  EXPECT_TRUE(club->HandiCalcDisabled());
}

TEST_F(HeldSettingsTest, StoringNothingIsRefused) {
  StoreRow("52, 10, 75, 0.9, 1.5, 46.25, 0");
  try {
    club_->SetHandicalcOptions(nullptr);
    FAIL() << "no error";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::NoObject));
  }
  EXPECT_EQ(StoredRows().size(), 1U);
}

}  // namespace
}  // namespace tavi
