#include <windows.h>

#include <array>
#include <stdexcept>

#include "access/provider/support/Worker.h"
#include "platform/values/WideText.h"

namespace tavi::access::test {

namespace {

constexpr UINT kExitCodeOfTheKilled = 0x6B696C6C;
constexpr int kStarts = 5;
constexpr DWORD kPauseMilliseconds = 200;

class Handle {
 public:
  Handle() = default;
  ~Handle() { Close(); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  [[nodiscard]] HANDLE Get() const { return value_; }
  HANDLE* Receive() { return &value_; }
  void Close() {
    if (value_ != nullptr) ::CloseHandle(value_);
    value_ = nullptr;
  }

 private:
  HANDLE value_ = nullptr;
};

/// A pipe of which the started process inherits one end.
struct Pipe {
  Pipe(Handle& readEnd, Handle& writeEnd, const Handle& kept) {
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    if (::CreatePipe(readEnd.Receive(), writeEnd.Receive(), &inherited, 0) == 0) throw std::runtime_error("no pipe");
    ::SetHandleInformation(kept.Get(), HANDLE_FLAG_INHERIT, 0);
  }
};

std::wstring ProgramPath() {
  std::array<wchar_t, MAX_PATH + 1> own{};
  const DWORD length = ::GetModuleFileNameW(nullptr, own.data(), MAX_PATH);
  std::wstring path(own.data(), length);
  return path.substr(0, path.find_last_of(L'\\') + 1) + L"test_access_worker.exe";
}

// Wine answers ERROR_INTERNAL_ERROR for a process that ended before its first instruction, as happens on a machine with
// much else to do; nothing of the worker has run then.
PROCESS_INFORMATION StartProcess(std::wstring line, STARTUPINFOW start) {
  PROCESS_INFORMATION started{};
  for (int attempt = 1;; ++attempt) {
    if (::CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &started) != 0) {
      return started;
    }
    const DWORD error = ::GetLastError();
    if (error != ERROR_INTERNAL_ERROR || attempt == kStarts) {
      throw std::runtime_error("could not start the worker: " + windows::SystemErrorText(error));
    }
    ::Sleep(kPauseMilliseconds);
  }
}

std::wstring CommandLine(const std::vector<std::string>& arguments) {
  std::wstring line = L"\"" + ProgramPath() + L"\"";
  // None of them holds quotes or ends with a backslash.
  for (const std::string& argument : arguments) line += L" \"" + windows::ToWide(argument) + L"\"";
  return line;
}

}  // namespace

struct Worker::System {
  Handle process;
  Handle input;
  Handle output;
  DWORD number = 0;
  bool hasEnded = false;
};

Worker::Worker(const std::vector<std::string>& arguments) : system_(std::make_unique<System>()) {
  Handle itsInput;
  Handle itsOutput;
  const Pipe toWorker(itsInput, system_->input, system_->input);
  const Pipe fromWorker(system_->output, itsOutput, system_->output);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdInput = itsInput.Get();
  start.hStdOutput = itsOutput.Get();
  start.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
  const PROCESS_INFORMATION started = StartProcess(CommandLine(arguments), start);
  ::CloseHandle(started.hThread);
  *system_->process.Receive() = started.hProcess;
  system_->number = started.dwProcessId;
}

Worker::~Worker() {
  EndInput();
  if (!system_->hasEnded) {
    Kill();
    Wait();
  }
}

std::optional<std::string> Worker::ReadLine() {
  for (;;) {
    if (const std::size_t end = buffered_.find('\n'); end != std::string::npos) {
      std::string line = buffered_.substr(0, end);
      buffered_.erase(0, end + 1);
      if (line.ends_with('\r')) line.pop_back();
      return line;
    }
    std::array<char, 4096> bytes{};
    DWORD count = 0;
    if (::ReadFile(system_->output.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) == 0 ||
        count == 0) {
      return std::nullopt;
    }
    buffered_.append(bytes.data(), count);
  }
}

void Worker::EndInput() {
  system_->input.Close();
}

std::string Worker::Process() const {
  return std::to_string(system_->number);
}

void Worker::Kill() {
  ::TerminateProcess(system_->process.Get(), kExitCodeOfTheKilled);
}

int Worker::Wait() {
  ::WaitForSingleObject(system_->process.Get(), INFINITE);
  system_->hasEnded = true;
  DWORD code = 0;
  ::GetExitCodeProcess(system_->process.Get(), &code);
  return code == kExitCodeOfTheKilled ? kKilled : static_cast<int>(code);
}

}  // namespace tavi::access::test
