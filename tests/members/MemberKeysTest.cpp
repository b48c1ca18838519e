#include <gtest/gtest.h>

#include "facade/support/Club.h"

namespace tavi {
namespace {

using testing::Club;
using Texts = std::vector<std::string>;

/// A name-key service that is out of order from the moment that a test says so.
class FailingKeys : public NameKeyService {
 public:
  explicit FailingKeys(std::shared_ptr<const NameKeyService> keys) : keys_(std::move(keys)) {}
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override {
    if (isOutOfOrder) throw Error(ErrorNumber::Component, "keys", "The service is out of order.");
    return keys_->Key(mode, name);
  }
  bool isOutOfOrder = false;

 private:
  std::shared_ptr<const NameKeyService> keys_;
};

/// Operations on names whose key service fails.
class MemberKeysTest : public ::testing::Test {
 protected:
  MemberKeysTest() {
    club_->AddNewMember("John", "", "Smith");
    auto platform = std::make_shared<Platform>(*club_.SharedPlatform());
    keys_ = std::make_shared<FailingKeys>(platform->nameKeyService);
    platform->nameKeyService = keys_;
    database_ = std::make_unique<MembershipDatabase>(platform);
    database_->SetDatabaseFolder(club_.Folder().Path());
    database_->OpenDatabase();
    database_->CloseDatabase();
    keys_->isOutOfOrder = true;
  }

  void ExpectError(const std::function<void()>& operation) {
    try {
      operation();
      FAIL() << "the service was not asked";
    } catch (const Error& error) {
      EXPECT_EQ(error.Source(), "keys");
      EXPECT_EQ(error.Description(), "The service is out of order.");
    }
    EXPECT_EQ(club_.OpenCount(), 0);
  }

  Club club_;
  std::shared_ptr<FailingKeys> keys_;
  std::unique_ptr<MembershipDatabase> database_;
};

TEST_F(MemberKeysTest, NobodyIsAddedWithoutKeys) {
  ExpectError([this] { database_->AddNewMember("Ann", "", "Lee"); });
  EXPECT_EQ(club_.Rows("Select FirstName From Members"), (Texts{"John"}));
  keys_->isOutOfOrder = false;
  EXPECT_EQ(database_->AddNewMember("Ann", "", "Lee"), 2);
}

TEST_F(MemberKeysTest, NobodyIsEnrolledWithoutKeys) {
  bool retired = false;
  ExpectError([&] { static_cast<void>(database_->CheckMembershipID(40, "Ann Lee", 50.0, retired)); });
  EXPECT_EQ(club_.Rows("Select FirstName From Members"), (Texts{"John"}));
}

TEST_F(MemberKeysTest, ACheckMakesTheKeysOfTheNameBeforeItOpensTheFile) {
  bool retired = false;
  club_.Watch().statements.clear();
  ExpectError([&] { static_cast<void>(database_->CheckMembershipID(1, "John Smith", 50.0, retired)); });
  EXPECT_TRUE(club_.Watch().statements.empty());
}

TEST_F(MemberKeysTest, SearchingAndLoadingRecordsPassTheErrorOn) {
  ExpectError([this] { static_cast<void>(database_->FindNearestMatches("John")); });
  ExpectError([this] { static_cast<void>(database_->GetMemberName(1, 5)); });
  ExpectError([this] { static_cast<void>(database_->GetPairName(1, "", -1, "Sam Fox", 5)); });
}

TEST_F(MemberKeysTest, AWalkStaysWhereTheErrorMetIt) {
  std::int32_t number = 0;
  std::string name;
  double par = 0.0;
  EXPECT_THROW(static_cast<void>(database_->GetFirstMember(number, name, par, 5)), Error);
  EXPECT_EQ(club_.OpenCount(), 1);
  keys_->isOutOfOrder = false;
  EXPECT_TRUE(database_->GetNextMember(number, name, par, 5));
  EXPECT_EQ(name, "John Smith");
  EXPECT_FALSE(database_->GetNextMember(number, name, par, 5));
  EXPECT_EQ(club_.OpenCount(), 0);
}

}  // namespace
}  // namespace tavi
