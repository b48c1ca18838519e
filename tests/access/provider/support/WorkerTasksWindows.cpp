#include <windows.h>

#include "access/provider/support/WorkerTasks.h"
#include "platform/values/WideText.h"

namespace tavi::access::test {

namespace {

int Lock(const std::vector<std::string>& arguments) {
  constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const HANDLE file = ::CreateFileW(windows::ToWidePath(arguments.at(1)).c_str(), GENERIC_READ | GENERIC_WRITE, kShare,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(std::stoul(arguments.at(2)));
  const DWORD length = static_cast<DWORD>(std::stoul(arguments.at(3)));
  if (::LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, length, 0, &place) == 0) return 1;
  WaitForEndOfInput();
  ::CloseHandle(file);
  return 0;
}

}  // namespace

int RunSystemTask(const std::vector<std::string>& arguments) {
  return arguments.at(0) == "lock" ? Lock(arguments) : 2;
}

}  // namespace tavi::access::test
