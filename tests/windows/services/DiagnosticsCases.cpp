// The diagnostics log, which is written when its folder is there.
#include "platform/values/WideText.h"
#include "services/Services.h"

namespace tavi::service_test {
namespace {

constexpr const char* kLogFolder = "C:\\Diagnostics";
constexpr const char* kLogFile = "C:\\Diagnostics\\Tallyman.txt";
constexpr const char* kStart = "TaviMembership Initialising\r\n";

/// A program that stopped while it had its turn to write: locks of all that is far behind the text.
void CheckStoppedWriter() {
  WriteFile(kLogFile, "");
  const HANDLE stopped = ::CreateFileW(windows::ToWide(kLogFile).c_str(), GENERIC_READ,
                                       FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  OVERLAPPED farBehind{};
  farBehind.OffsetHigh = 1;
  constexpr DWORD kToTheEnd = 0x7FFFFFFE;
  Check("the far bytes are locked",
        ::LockFileEx(stopped, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 0, kToTheEnd, &farBehind) != 0);
  static_cast<void>(FolderFound());
  ::CloseHandle(stopped);
  CheckText("a program that stopped in its turn stops nobody", Content(kLogFile).value_or(""), kStart);
}

}  // namespace

void CheckDiagnostics(const std::string& folder) {
  RemoveTree(kLogFolder);
  static_cast<void>(FolderFound());
  Check("the folder is not made", ::GetFileAttributesW(L"C:\\Diagnostics") == INVALID_FILE_ATTRIBUTES);

  const std::string club = folder + "\\Łódź 橋";
  std::string description;
  const std::string log = LoggedBy([&] {
    const auto database = NewDatabase();
    database->put_DatabaseFolder(AutomationText(club).Get());
    CheckResult("a missing file", database->OpenDatabase(), static_cast<HRESULT>(0x80040000));
    description = LastDescription();
  });
  CheckText("a start and a failure, in UTF-8 without anything before or between", log, kStart + description + "\r\n");
  Check("the failure: " + description,
        description.starts_with("Failed to open membership database " + club + "\\ClubMembers.mdb:\r\n\r\n"));

  MakeFolder(kLogFolder);
  WriteFile(kLogFile, "of another program\r\n");
  static_cast<void>(FolderFound());
  CheckText("lines are appended", Content(kLogFile).value_or(""), std::string("of another program\r\n") + kStart);
  {
    const WriteProtection protection(kLogFile);
    static_cast<void>(FolderFound());
  }
  CheckText("what cannot be written is dropped", Content(kLogFile).value_or(""),
            std::string("of another program\r\n") + kStart);
  const HANDLE alone =
      ::CreateFileW(windows::ToWide(kLogFile).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  static_cast<void>(FolderFound());
  ::CloseHandle(alone);
  CheckStoppedWriter();
  RemoveTree(kLogFolder);
  WriteFile(kLogFolder, "a file in the folder's place");
  static_cast<void>(FolderFound());
  ::DeleteFileW(windows::ToWide(kLogFolder).c_str());
}

}  // namespace tavi::service_test
