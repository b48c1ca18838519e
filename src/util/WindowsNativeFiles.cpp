// The calls of NativeFiles.h on Windows. Every file is shared for all that others may want to do with it: the component
// holds them for a moment only, and must not be what stops another program. None of the calls raises an error.
#include <windows.h>

#include <string>

#include "platform/values/WideText.h"
#include "util/NativeFiles.h"
#include "util/Paths.h"

namespace tavi {
namespace {

std::wstring WidePath(std::string_view path) {
  return windows::ToWidePath(NativePath(path));
}

/// The system would take the path to end there, and name another file.
bool CanBePath(std::string_view path) {
  return path.find('\0') == std::string_view::npos;
}

/// A file that is open while this object lives.
class OpenFile {
 public:
  // A path with a null character leaves it closed, as one that does not lead anywhere does.
  OpenFile(std::string_view path, DWORD access, DWORD disposition) {
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    if (!CanBePath(path)) return;
    handle_ =
        ::CreateFileW(WidePath(path).c_str(), access, kShare, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
  }
  ~OpenFile() {
    if (IsOpen()) ::CloseHandle(handle_);
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  [[nodiscard]] bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE Handle() const { return handle_; }

  [[nodiscard]] bool Write(std::string_view text) const {
    DWORD written = 0;
    return ::WriteFile(handle_, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0 &&
           written == text.size();
  }

 private:
  HANDLE handle_ = INVALID_HANDLE_VALUE;
};

/// The turn to append to a file: a lock on a byte far behind every text, which nobody reads. Windows adds a text to the
/// end in one step, but Wine finds the end first and writes then. Whoever does not get the turn soon writes without it:
/// a program that was stopped in its turn must not stop others.
class AppendTurn {
 public:
  explicit AppendTurn(const OpenFile& file) : file_(file.Handle()) {
    // A pause lasts a tick of the system's clock, so this is about a second at most.
    constexpr int kTries = 50;
    // At 2^62 bytes, where no log ends.
    constexpr DWORD kHighOffset = 0x40000000;
    constexpr DWORD kKind = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    byte_.OffsetHigh = kHighOffset;
    for (int tries = 0; tries < kTries; ++tries) {
      // Any other error than that somebody else has it is not waited for: the text is written without the turn.
      isOurs_ = ::LockFileEx(file_, kKind, 0, 1, 0, &byte_) != 0;
      if (isOurs_ || ::GetLastError() != ERROR_LOCK_VIOLATION) return;
      ::Sleep(1);
    }
  }
  ~AppendTurn() {
    if (isOurs_) ::UnlockFileEx(file_, 0, 1, 0, &byte_);
  }
  AppendTurn(const AppendTurn&) = delete;
  AppendTurn& operator=(const AppendTurn&) = delete;

 private:
  HANDLE file_;
  OVERLAPPED byte_{};
  bool isOurs_ = false;
};

}  // namespace

bool IsNativeFile(std::string_view path) noexcept {
  try {
    if (!CanBePath(path)) return false;
    const DWORD attributes = ::GetFileAttributesW(WidePath(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
  } catch (...) {
    return false;
  }
}

// Opened for their attributes alone, which is granted also where reading is not. The disk's number and the file's on it
// tell a file whatever its name is.
bool IsSameNativeFile(std::string_view path, std::string_view other) noexcept {
  try {
    const OpenFile first(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING);
    const OpenFile second(other, FILE_READ_ATTRIBUTES, OPEN_EXISTING);
    BY_HANDLE_FILE_INFORMATION one{};
    BY_HANDLE_FILE_INFORMATION two{};
    return first.IsOpen() && second.IsOpen() && ::GetFileInformationByHandle(first.Handle(), &one) != 0 &&
           ::GetFileInformationByHandle(second.Handle(), &two) != 0 &&
           one.dwVolumeSerialNumber == two.dwVolumeSerialNumber && one.nFileIndexHigh == two.nFileIndexHigh &&
           one.nFileIndexLow == two.nFileIndexLow;
  } catch (...) {
    return false;
  }
}

bool MakeNativeFolder(std::string_view path) noexcept {
  try {
    return CanBePath(path) && ::CreateDirectoryW(WidePath(path).c_str(), nullptr) != 0;
  } catch (...) {
    return false;
  }
}

// CREATE_NEW makes sure of it in one step with the look whether it is there.
bool MakeNativeFile(std::string_view path, std::string_view text) noexcept {
  try {
    const OpenFile file(path, GENERIC_WRITE, CREATE_NEW);
    return file.IsOpen() && file.Write(text);
  } catch (...) {
    return false;
  }
}

std::optional<std::string> ReadNativeFile(std::string_view path, std::size_t most) noexcept {
  try {
    const OpenFile file(path, GENERIC_READ, OPEN_EXISTING);
    if (!file.IsOpen()) return std::nullopt;
    // One byte more, to see whether the file is larger.
    std::string content(most + 1, '\0');
    DWORD size = 0;
    if (::ReadFile(file.Handle(), content.data(), static_cast<DWORD>(content.size()), &size, nullptr) == 0) {
      return std::nullopt;
    }
    if (size > most) return std::nullopt;
    content.resize(size);
    return content;
  } catch (...) {
    return std::nullopt;
  }
}

bool ReplaceNativeFile(std::string_view path, std::string_view text) noexcept {
  try {
    const OpenFile file(path, GENERIC_WRITE, CREATE_ALWAYS);
    return file.IsOpen() && file.Write(text);
  } catch (...) {
    return false;
  }
}

bool AppendToNativeFile(std::string_view path, std::string_view text) noexcept {
  try {
    // Only who may read may lock.
    const OpenFile file(path, FILE_APPEND_DATA | FILE_READ_DATA, OPEN_ALWAYS);
    if (!file.IsOpen()) return false;
    const AppendTurn turn(file);
    return file.Write(text);
  } catch (...) {
    return false;
  }
}

}  // namespace tavi
