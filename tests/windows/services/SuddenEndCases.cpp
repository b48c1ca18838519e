// What a program has been told is stored, is stored, whenever the program is ended.
#include <iostream>
#include <limits>

#include "platform/values/WideText.h"
#include "services/Services.h"

namespace tavi::service_test {
namespace {

/// This program, adding members until it is ended; it writes a line for each.
class Adder {
 public:
  explicit Adder(const std::string& folder) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE write = nullptr;
    ::CreatePipe(&read_, &write, &inherited, 0);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = write;
    start.hStdError = write;
    std::wstring program(MAX_PATH, L'\0');
    program.resize(::GetModuleFileNameW(nullptr, program.data(), MAX_PATH));
    std::wstring command = L"\"" + program + L"\" \"" + windows::ToWide(folder) + L"\" addmembers";
    Check("the program can be started", ::CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0,
                                                         nullptr, nullptr, &start, &process_) != 0);
    ::CloseHandle(write);
  }
  ~Adder() {
    ::CloseHandle(read_);
    ::CloseHandle(process_.hProcess);
    ::CloseHandle(process_.hThread);
  }
  Adder(const Adder&) = delete;
  Adder& operator=(const Adder&) = delete;

  /// Ends it after that many members; how many it has added in all.
  int EndAfter(int members) {
    int added = ReadLines(members);
    ::TerminateProcess(process_.hProcess, 1);
    ::WaitForSingleObject(process_.hProcess, INFINITE);
    return added + ReadLines(std::numeric_limits<int>::max());
  }

 private:
  int ReadLines(int most) const {
    int lines = 0;
    char character = 0;
    DWORD count = 0;
    while (lines < most && ::ReadFile(read_, &character, 1, &count, nullptr) != 0 && count == 1) {
      if (character == '\n') ++lines;
    }
    return lines;
  }

  HANDLE read_ = nullptr;
  PROCESS_INFORMATION process_{};
};

}  // namespace

void AddMembersForEver(const std::string& folder) {
  const auto database = NewDatabase();
  database->put_DatabaseFolder(AutomationText(folder).Get());
  database->OpenDatabase();
  const std::string process = std::to_string(::GetCurrentProcessId());
  for (int count = 0; SUCCEEDED(AddMember(*database, "Ann", process + "x" + std::to_string(count))); ++count) {
    std::cout << "added" << std::endl;
  }
}

void CheckSuddenEnd(const std::string& folder) {
  MakeClub(folder);
  int added = 0;
  for (const int members : {1, 7, 20}) {
    added += Adder(folder).EndAfter(members);
    const auto database = NewDatabase();
    database->put_DatabaseFolder(AutomationText(folder).Get());
    CheckResult("the file opens afterwards", database->OpenDatabase(), S_OK);
    const auto stored = Column(folder, "Select MembershipNumber From Members");
    const int more = static_cast<int>(stored.size()) - added;
    Check("all " + std::to_string(added) +
              " members are stored, and at most the one that was on its way: " + std::to_string(stored.size()),
          more == 0 || more == 1);
    added = static_cast<int>(stored.size());
    CheckResult("and another one can be added", AddMember(*database, "Tom", "Ash" + std::to_string(members)), S_OK);
    ++added;
  }
}

}  // namespace tavi::service_test
