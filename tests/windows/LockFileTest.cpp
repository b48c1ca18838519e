// Another database program that comes while the engine has a file open: it opens the database shared for reading and
// writing, opens the lock file beside it, or makes it, and locks its user's byte there. It is refused at the lock file.
#include <gtest/gtest.h>
#include <windows.h>

#include <optional>

#include "access/file/FileSystem.h"
#include "access/file/Pager.h"
#include "access/file/support/SmallDatabase.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"
#include "platform/values/WideText.h"

namespace tavi::access {
namespace {

using test::ReadText;
using test::WriteText;

/// What another database program does until it could write.
class OtherProgram {
 public:
  /// The last error of the system when it is refused, 0 when it has come in.
  DWORD Enter(const std::string& database, const std::string& lockFile) {
    database_ = OpenShared(database, OPEN_EXISTING);
    if (database_ == INVALID_HANDLE_VALUE) return ::GetLastError();
    lockFile_ = OpenShared(lockFile, OPEN_ALWAYS);
    if (lockFile_ == INVALID_HANDLE_VALUE) return ::GetLastError();
    constexpr DWORD kFirstUser = 0x10000001;
    if (::LockFile(lockFile_, kFirstUser, 0, 1, 0) == 0) return ::GetLastError();
    std::string slot(64, '\0');
    slot.replace(0, 6, "OFFICE").replace(32, 5, "Admin");
    DWORD written = 0;
    return ::WriteFile(lockFile_, slot.data(), 64, &written, nullptr) != 0 ? 0 : ::GetLastError();
  }
  OtherProgram() = default;
  ~OtherProgram() {
    for (const HANDLE handle : {lockFile_, database_}) {
      if (handle != INVALID_HANDLE_VALUE) ::CloseHandle(handle);
    }
  }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;

 private:
  static HANDLE OpenShared(const std::string& path, DWORD disposition) {
    return ::CreateFileW(windows::ToWidePath(path).c_str(), GENERIC_READ | GENERIC_WRITE,
                         FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, disposition,
                         FILE_ATTRIBUTE_NORMAL, nullptr);
  }

  HANDLE database_ = INVALID_HANDLE_VALUE;
  HANDLE lockFile_ = INVALID_HANDLE_VALUE;
};

class LockFileTest : public ::testing::Test {
 protected:
  LockFileTest() { Pager::Create(*system_, path_, test::MakeSmallDatabase(8)); }

  [[nodiscard]] std::unique_ptr<Pager> Open() const { return Pager::Open(system_, path_, {}); }
  [[nodiscard]] DWORD EnterOther(std::optional<OtherProgram>& other) const {
    return other.emplace().Enter(path_, lockPath_);
  }
  [[nodiscard]] DWORD TryOther() const { return OtherProgram().Enter(path_, lockPath_); }

  test::TemporaryFolder folder_;
  std::string path_ = folder_.File("club.mdb");
  std::string lockPath_ = folder_.File("club.ldb");
  std::shared_ptr<FileSystem> system_ = NativeFileSystem();
};

TEST_F(LockFileTest, AnotherProgramIsRefusedWhileAFileIsOpenAndComesInAfterwards) {
  {
    const auto pager = Open();
    EXPECT_EQ(TryOther(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    WriteText(*pager, 3, "ours");
    EXPECT_EQ(TryOther(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    EXPECT_EQ(ReadText(*pager, 3), "ours");
  }
  EXPECT_FALSE(system_->Exists(lockPath_));
  EXPECT_EQ(TryOther(), 0U);
}

TEST_F(LockFileTest, OurOwnUsersKnowEachOtherAndTheLastOneOpensTheDoor) {
  auto one = Open();
  auto two = Open();
  WriteText(*one, 3, "one");
  WriteText(*two, 4, "two");
  EXPECT_EQ(ReadText(*one, 4), "two");
  one->Close();
  EXPECT_EQ(TryOther(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  WriteText(*two, 3, "two");
  two->Close();
  EXPECT_FALSE(system_->Exists(lockPath_));
  EXPECT_EQ(ReadText(*Open(), 3), "two");
}

TEST_F(LockFileTest, WhileAnotherProgramIsThereTheFileIsReadAndNotWritten) {
  std::optional<OtherProgram> other;
  ASSERT_EQ(EnterOther(other), 0U);
  const auto pager = Open();
  EXPECT_EQ(ReadText(*pager, 3), "page 3");
  EXPECT_THROW(WriteText(*pager, 3, "ours"), Error);
  other.reset();
  // From here on it is the other one who waits, though its place in the lock file stays.
  WriteText(*pager, 3, "ours");
  EXPECT_EQ(TryOther(), static_cast<DWORD>(ERROR_SHARING_VIOLATION));
  pager->Close();
  EXPECT_TRUE(system_->Exists(lockPath_));
  EXPECT_EQ(TryOther(), 0U);
}

TEST_F(LockFileTest, WhoOpensForReadingOnlyKeepsNobodyOut) {
  const auto reader = Pager::Open(system_, path_, {.readOnly = true});
  EXPECT_EQ(ReadText(*reader, 3), "page 3");
  EXPECT_EQ(TryOther(), 0U);
}

}  // namespace
}  // namespace tavi::access
