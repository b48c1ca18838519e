#include "util/SpecialFolders.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/support/ThisSystem.h"
#include "platform/values/Error.h"

namespace tavi {
namespace {

using ::testing::Return;
using ::testing::StrictMock;
using ::testing::Throw;
using Location = ShellFolders::Location;

class ShellMock : public ShellFolders {
 public:
  MOCK_METHOD(std::optional<std::string>, FolderPath, (std::int32_t), (const, override));
  MOCK_METHOD(std::optional<Location>, FolderLocation, (std::int32_t), (const, override));
};

const Error kShellError(ErrorNumber::InvalidArgument, "shell", "no such library");

class SpecialFolderPathTest : public ::testing::Test {
 protected:
  std::string PathOf(std::int32_t number, bool create = false) {
    number_ = number;
    return SpecialFolderPath(shell_, number_, create);
  }

  StrictMock<ShellMock> shell_;
  std::int32_t number_ = 0;
};

TEST_F(SpecialFolderPathTest, TheFirstWayOfAskingIsEnoughWhenItAnswers) {
  EXPECT_CALL(shell_, FolderPath(46)).WillOnce(Return("C:\\Common"));
  EXPECT_EQ(PathOf(46), "C:\\Common");
  EXPECT_EQ(number_, 46);
}

TEST_F(SpecialFolderPathTest, CreateSetsTheCreateBitInTheCallersNumber) {
  EXPECT_CALL(shell_, FolderPath(0x8000 | 35)).WillOnce(Return("C:\\Data"));
  EXPECT_EQ(PathOf(35, true), "C:\\Data");
  EXPECT_EQ(number_, 0x8000 | 35);
}

TEST_F(SpecialFolderPathTest, TheOlderWayAnswersWhenItsCallReturnsZero) {
  EXPECT_CALL(shell_, FolderPath(5)).WillOnce(Return(std::nullopt));
  EXPECT_CALL(shell_, FolderLocation(5)).WillOnce(Return(Location{"C:\\Old", false}));
  EXPECT_EQ(PathOf(5), "C:\\Old");
}

TEST_F(SpecialFolderPathTest, ANonZeroReturnOfTheOlderWayIsTakenForFailure) {
  EXPECT_CALL(shell_, FolderPath(5)).WillOnce(Return(std::nullopt));
  EXPECT_CALL(shell_, FolderLocation(5)).WillOnce(Return(Location{"C:\\Old", true}));
  EXPECT_EQ(PathOf(5), "");
}

TEST_F(SpecialFolderPathTest, CommonDocumentsFallBackToTheUsersOwn) {
  EXPECT_CALL(shell_, FolderPath(46)).WillOnce(Return(std::nullopt));
  EXPECT_CALL(shell_, FolderLocation(46)).WillOnce(Return(std::nullopt));
  EXPECT_CALL(shell_, FolderPath(5)).WillOnce(Return("C:\\Ann"));
  EXPECT_EQ(PathOf(46), "C:\\Ann");
  EXPECT_EQ(number_, 46) << "the fallback has a number of its own";
}

TEST_F(SpecialFolderPathTest, WithCreateThereIsNoFallbackBecauseTheNumberHasChanged) {
  EXPECT_CALL(shell_, FolderPath(0x8000 | 46)).WillOnce(Return(std::nullopt));
  EXPECT_CALL(shell_, FolderLocation(0x8000 | 46)).WillOnce(Return(std::nullopt));
  EXPECT_EQ(PathOf(46, true), "");
}

TEST_F(SpecialFolderPathTest, OtherFoldersHaveNoFallback) {
  EXPECT_CALL(shell_, FolderPath(5)).WillOnce(Return(std::nullopt));
  EXPECT_CALL(shell_, FolderLocation(5)).WillOnce(Return(std::nullopt));
  EXPECT_EQ(PathOf(5), "");
}

TEST_F(SpecialFolderPathTest, ErrorsOfTheShellAreLoggedAndCountAsNoAnswer) {
  const testing::DiagnosticsLog log;
  EXPECT_CALL(shell_, FolderPath(46)).WillOnce(Throw(kShellError));
  EXPECT_CALL(shell_, FolderLocation(46)).WillOnce(Throw(kShellError));
  EXPECT_CALL(shell_, FolderPath(5)).WillOnce(Return("C:\\Ann"));
  EXPECT_EQ(PathOf(46), "C:\\Ann");
  EXPECT_EQ(log.Text(), "SHGetFolderPath error: no such library\r\nSHGetFolderPath error: no such library\r\n");
}

}  // namespace
}  // namespace tavi
