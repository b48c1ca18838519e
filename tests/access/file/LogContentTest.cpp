// The content of a large file is found out in the background, while statements go on.
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "access/file/LogHeader.h"
#include "access/file/Pager.h"
#include "access/file/support/ClubPaths.h"
#include "access/file/support/CrashingFileSystem.h"
#include "access/file/support/InterceptedFileSystem.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/SmallDatabase.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::CrashKind;
using test::InterceptedFileSystem;
using test::kLog;
using test::kPath;
using test::MakeSmallDatabase;
using test::MemoryFileSystem;
using test::ReadText;
using test::WriteText;

/// Lets something happen before the next reading of the database file.
class MeanwhileFileSystem final : public InterceptedFileSystem {
 public:
  using InterceptedFileSystem::InterceptedFileSystem;

  void BeforeNextRead(std::function<void()> action) { action_ = std::move(action); }
  [[nodiscard]] int ReadCount() const { return reads_; }
  void Before(Operation operation, const std::string& path, const std::function<void()>& /*partDone*/) override {
    if (operation != Operation::Read || path != kPath) return;
    ++reads_;
    if (const auto action = std::exchange(action_, nullptr)) action();
  }

 private:
  std::function<void()> action_;
  int reads_ = 0;
};

class LogContentTest : public ::testing::Test {
 protected:
  static constexpr PageNumber kPages = 200;

  LogContentTest() {
    Pager::Create(*memory_, kPath, MakeSmallDatabase(kPages));
    pager_ = Pager::Open(system_, kPath, kLarge);
  }

  [[nodiscard]] bool LogKnowsContent() const {
    return LogHeader::ReadFrom(*memory_->Open(kLog, FileSystem::OpenMode::ReadOnly)).Content().has_value();
  }

  inline static const PagerOptions kLarge{.largestReadAtOnce = 0};
  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
  std::shared_ptr<MeanwhileFileSystem> system_ = std::make_shared<MeanwhileFileSystem>(memory_);
  std::unique_ptr<Pager> pager_;
};

TEST_F(LogContentTest, ItIsReadOnceAndNotWhileAStatementWaits) {
  WriteText(*pager_, 3, "one");
  const int read = system_->ReadCount();
  EXPECT_LT(read, 10 + static_cast<int>(LogOwner::kWitnesses));
  EXPECT_FALSE(LogKnowsContent());
  memory_->RunBackgroundWork();
  EXPECT_TRUE(LogKnowsContent());
  const int readThrough = system_->ReadCount();
  EXPECT_GT(readThrough, read);
  for (const char* text : {"two", "three"}) {
    WriteText(*pager_, 3, text);
    memory_->RunBackgroundWork();
  }
  EXPECT_LT(system_->ReadCount(), readThrough + 3);
}

TEST_F(LogContentTest, ACheckpointThatBeginsWhileItIsReadMakesItVoid) {
  const auto other = Pager::Open(memory_, kPath, kLarge);
  WriteText(*pager_, 3, "one");
  WriteText(*other, 4, "two");
  system_->BeforeNextRead([&] { other->Close(); });
  memory_->RunBackgroundWork();
  EXPECT_EQ(ReadText(*pager_, 4), "two");
  EXPECT_FALSE(LogKnowsContent());
  WriteText(*pager_, 5, "three");
  memory_->RunBackgroundWork();
  EXPECT_TRUE(LogKnowsContent());
  // It is that of the file as it is now.
  memory_ = memory_->AfterCrash(CrashKind::Kept, 0);
  memory_->SetStamp(kPath, 1);
  EXPECT_EQ(ReadText(*Pager::Open(memory_, kPath, {}), 5), "three");
}

TEST_F(LogContentTest, AProgramThatWritesTheFileWhileItIsReadMakesItVoid) {
  WriteText(*pager_, 3, "one");
  system_->BeforeNextRead([&] {
    auto bytes = memory_->Contents(kPath);
    bytes[7 * kPageSize + 100] ^= 1U;
    memory_->SetContents(kPath, bytes);
  });
  memory_->RunBackgroundWork();
  EXPECT_FALSE(LogKnowsContent());
}

TEST_F(LogContentTest, WhatCannotBeReadInTheBackgroundIsNoErrorOfAStatement) {
  WriteText(*pager_, 3, "one");
  system_->BeforeNextRead([] { throw Error(ErrorNumber::ProviderFailure, "test", "Input/output error."); });
  memory_->RunBackgroundWork();
  EXPECT_FALSE(LogKnowsContent());
  WriteText(*pager_, 3, "two");
  pager_->Close();
  EXPECT_EQ(ReadText(*Pager::Open(memory_, kPath, {}), 3), "two");
}

TEST(NativeLogContentTest, TheFileIsClosedWhileItIsReadInTheBackground) {
  const test::TemporaryFolder folder;
  const std::string path = folder.File("large.mdb");
  const auto system = NativeFileSystem();
  Pager::Create(*system, path, MakeSmallDatabase(512));
  for (int i = 0; i < 20; ++i) {
    const auto pager = Pager::Open(system, path, {.largestReadAtOnce = 0});
    WriteText(*pager, 3, std::to_string(i));
    std::this_thread::sleep_for(std::chrono::milliseconds(45 + i / 2));
    pager->Close();
    EXPECT_FALSE(system->Exists(path + ".redo"));
    EXPECT_EQ(ReadText(*Pager::Open(system, path, {}), 3), std::to_string(i));
  }
}

}  // namespace
}  // namespace tavi::access
