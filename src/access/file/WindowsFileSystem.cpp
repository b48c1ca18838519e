// The operating system's files on Windows. Paths are UTF-8; every opener lets the others read, write, rename and
// remove, and the engine's locks keep them apart.
#include <windows.h>

#include <algorithm>
#include <compare>
#include <limits>
#include <optional>
#include <utility>

#include "access/file/EngineError.h"
#include "access/file/FileSystem.h"
#include "access/file/WindowsRangeLocks.h"
#include "platform/values/WideText.h"

// Handles are opened with all sharing, so that a file can be renamed or removed while others have it open; only
// HoldUnwritten shares less, on purpose. Each read and write says its place itself, so that a
// handle has no position that two calls could fight for. Times are counted in steps of 100 nanoseconds since 1601; they
// are handed out as nanoseconds since 1970.

namespace tavi::access {

namespace {

using windows::SystemErrorText;
using windows::ToWidePath;

constexpr DWORD kShareEverything = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// The system counts bytes of a transfer in 32 bits.
constexpr DWORD kLargestTransfer = DWORD{1} << 30U;

/// A sharing violation is the system's way to say that another program has the file open for itself alone.
[[noreturn]] void RaiseSystemError(const std::string& operation, const std::string& path, DWORD code,
                                   const std::string& place = "") {
  if (code == ERROR_SHARING_VIOLATION) {
    RaiseFailure("Could not use '" + path + "'; file already in use. Another program has locked it as a whole.");
  }
  RaiseFailure("Could not " + operation + " '" + path + "'" + place + ": " + SystemErrorText(code) + ".");
}

std::string AtByte(std::uint64_t offset) {
  return " at byte " + std::to_string(offset);
}

/// With its last slash, which a drive needs ("C:\"); of a name on a drive without a folder the drive's current one.
std::string FolderOf(const std::string& path) {
  const std::size_t slash = path.find_last_of("\\/");
  if (slash == std::string::npos) return path.size() > 1 && path[1] == ':' ? path.substr(0, 2) + "." : ".";
  return path.substr(0, slash + 1);
}

bool HasReadOnlyAttribute(const std::string& path) {
  const DWORD attributes = ::GetFileAttributesW(ToWidePath(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

/// Not assignable: a file keeps the handle that it was opened with.
class Handle {
 public:
  explicit Handle(HANDLE value) : value_(value) {}
  ~Handle() {
    if (IsOpen()) ::CloseHandle(value_);
  }
  Handle(Handle&& other) noexcept : value_(std::exchange(other.value_, INVALID_HANDLE_VALUE)) {}
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  Handle& operator=(Handle&&) = delete;
  [[nodiscard]] bool IsOpen() const { return value_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE Value() const { return value_; }

 private:
  HANDLE value_;
};

/// The path in the long form that has no limit of 260 characters.
Handle OpenHandle(const std::string& path, DWORD access, DWORD disposition, DWORD flags) {
  return Handle(
      ::CreateFileW(ToWidePath(path).c_str(), access, kShareEverything, nullptr, disposition, flags, nullptr));
}

// The place of a transfer, in the two halves that the system takes.
OVERLAPPED At(std::uint64_t offset) {
  OVERLAPPED position{};
  position.Offset = static_cast<DWORD>(offset & std::numeric_limits<DWORD>::max());
  position.OffsetHigh = static_cast<DWORD>(offset >> 32U);
  return position;
}

DWORD TransferSize(std::size_t size) {
  return static_cast<DWORD>(std::min<std::size_t>(size, kLargestTransfer));
}

/// What the system knows of a file, and on which disk it lies.
struct KnownFile {
  DWORD volume = 0;
  FileIdentity identity;

  static std::optional<KnownFile> Of(const Handle& handle) {
    constexpr unsigned kUpperHalf = 32;
    BY_HANDLE_FILE_INFORMATION file{};
    if (::GetFileInformationByHandle(handle.Value(), &file) == 0) return std::nullopt;
    return KnownFile{file.dwVolumeSerialNumber,
                     {(std::uint64_t{file.nFileIndexHigh} << kUpperHalf) | file.nFileIndexLow, file.nNumberOfLinks}};
  }
  [[nodiscard]] bool IsSameFile(const KnownFile& other) const {
    return volume == other.volume && identity.number == other.identity.number;
  }
};

class WindowsFile final : public File {
 public:
  WindowsFile(Handle handle, std::string path, bool isReadOnly)
      : handle_(std::move(handle)), path_(path), isReadOnly_(isReadOnly), locks_(handle_.Value(), std::move(path)) {}

  void ReadAt(std::uint64_t offset, std::span<std::uint8_t> target) override {
    // The end of the file is an error to the system or a short read, as the case may be; both give no bytes.
    while (!target.empty()) {
      OVERLAPPED position = At(offset);
      DWORD count = 0;
      if (::ReadFile(handle_.Value(), target.data(), TransferSize(target.size()), &count, &position) == 0 &&
          ::GetLastError() != ERROR_HANDLE_EOF) {
        RaiseSystemError("read", path_, ::GetLastError(), AtByte(offset));
      }
      if (count == 0) {
        RaiseFailure("Could not read '" + path_ + "': the file ends at byte " + std::to_string(offset) + ".");
      }
      offset += count;
      target = target.subspan(count);
    }
  }

  void WriteAt(std::uint64_t offset, std::span<const std::uint8_t> source) override {
    while (!source.empty()) {
      OVERLAPPED position = At(offset);
      DWORD count = 0;
      if (::WriteFile(handle_.Value(), source.data(), TransferSize(source.size()), &count, &position) == 0) {
        RaiseSystemError("write", path_, ::GetLastError(), AtByte(offset));
      }
      if (count == 0) RaiseSystemError("write", path_, ERROR_DISK_FULL, AtByte(offset));
      offset += count;
      source = source.subspan(count);
    }
  }

  std::uint64_t Size() override {
    LARGE_INTEGER size{};
    if (::GetFileSizeEx(handle_.Value(), &size) == 0) RaiseSystemError("examine", path_, ::GetLastError());
    return static_cast<std::uint64_t>(size.QuadPart);
  }

  // Longer or shorter; the handle has no position that would have to be moved there first.
  void Truncate(std::uint64_t size) override {
    FILE_END_OF_FILE_INFO end{};
    end.EndOfFile.QuadPart = static_cast<LONGLONG>(size);
    if (::SetFileInformationByHandle(handle_.Value(), FileEndOfFileInfo, &end, sizeof end) == 0) {
      RaiseSystemError("change the length of", path_, ::GetLastError());
    }
  }

  void Sync() override {
    // There is nothing to flush for an opener that cannot write, and the system refuses it.
    if (!isReadOnly_ && ::FlushFileBuffers(handle_.Value()) == 0) RaiseSystemError("flush", path_, ::GetLastError());
  }

  // The system's time of a change is set as late as when an opener is gone, so that it would tell ourselves from
  // others.
  FileTimes Times() override {
    constexpr std::int64_t kNanosecondsPerTick = 100;
    constexpr std::int64_t kTicksTo1970 = 116444736000000000;
    FILE_BASIC_INFO times{};
    if (::GetFileInformationByHandleEx(handle_.Value(), FileBasicInfo, &times, sizeof times) == 0) {
      RaiseSystemError("examine", path_, ::GetLastError());
    }
    return {.written = (times.LastWriteTime.QuadPart - kTicksTo1970) * kNanosecondsPerTick};
  }

  // By the handle, as the name may belong to another file by now.
  std::unique_ptr<File> OpenAgain() override {
    const DWORD access = isReadOnly_ ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    Handle again(::ReOpenFile(handle_.Value(), access, kShareEverything, 0));
    if (!again.IsOpen()) RaiseSystemError("open", path_, ::GetLastError());
    return std::make_unique<WindowsFile>(std::move(again), path_, isReadOnly_);
  }

  // The system itself may set the time as late as when the last opener is gone, and not after it was set expressly.
  void StampNow() noexcept override {
    FILETIME now{};
    ::GetSystemTimeAsFileTime(&now);
    ULARGE_INTEGER ticks{};
    ticks.LowPart = now.dwLowDateTime;
    ticks.HighPart = now.dwHighDateTime;
    FILE_BASIC_INFO times{};  // what is 0 stays as it is
    times.LastWriteTime.QuadPart = static_cast<LONGLONG>(ticks.QuadPart);
    ::SetFileInformationByHandle(handle_.Value(), FileBasicInfo, &times, sizeof times);
  }

  FileIdentity Identity() override { return KnownFile::Of(handle_).value_or(asOpened_.value_or(KnownFile{})).identity; }

  bool IsReadOnly() const override { return isReadOnly_; }

  // Compares disk and number with those of the time of opening. Where the system tells neither, the name has to do.
  bool IsStillAt(const std::string& path) override {
    const Handle named = OpenHandle(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    if (!named.IsOpen()) return false;
    const std::optional<KnownFile> known = KnownFile::Of(named);
    return known && asOpened_ ? known->IsSameFile(*asOpened_) : known.has_value() == asOpened_.has_value();
  }

  bool TryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
    return locks_.TryLock(offset, length, kind);
  }
  void Unlock(std::uint64_t offset, std::uint64_t length) override { locks_.Unlock(offset, length); }
  bool IsLockedByOther(std::uint64_t offset, std::uint64_t length) override {
    return locks_.IsLockedByOther(offset, length);
  }
  // The system does not tell whose a lock is.
  std::string LockHolder(std::uint64_t /*offset*/, std::uint64_t /*length*/) override { return {}; }

 private:
  Handle handle_;
  std::string path_;
  // As it was opened: the system may tell no more of a file that was renamed since.
  std::optional<KnownFile> asOpened_ = KnownFile::Of(handle_);
  bool isReadOnly_;
  WindowsRangeLocks locks_;
};

class WindowsFileSystem final : public FileSystem {
 public:
  std::unique_ptr<File> Open(const std::string& path, OpenMode mode) override {
    const std::string operation = mode == OpenMode::CreateNew ? "create" : "open";
    // The system would take the path up to there, and open another file.
    if (path.find('\0') != std::string::npos) RaiseSystemError(operation, path, ERROR_INVALID_NAME);
    if (mode == OpenMode::ReadWrite && HasReadOnlyAttribute(path))
      RaiseSystemError(operation, path, ERROR_ACCESS_DENIED);
    const DWORD access = mode == OpenMode::ReadOnly ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE;
    Handle handle =
        OpenHandle(path, access, mode == OpenMode::CreateNew ? CREATE_NEW : OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    if (!handle.IsOpen()) RaiseSystemError(operation, path, ::GetLastError());
    // A device such as CON opens like a file.
    if (::GetFileType(handle.Value()) != FILE_TYPE_DISK) {
      RaiseFailure("Could not open '" + path + "': it is not a file.");
    }
    return std::make_unique<WindowsFile>(std::move(handle), path, mode == OpenMode::ReadOnly);
  }

  // Nobody who wants to write gets in while this handle is open; whoever only reads does.
  std::unique_ptr<File> HoldUnwritten(const std::string& path) override {
    Handle handle(::CreateFileW(ToWidePath(path).c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!handle.IsOpen()) return nullptr;
    return std::make_unique<WindowsFile>(std::move(handle), path, true);
  }

  bool Exists(const std::string& path) override {
    return ::GetFileAttributesW(ToWidePath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
  }

  bool IsWritable(const std::string& path) override {
    if (HasReadOnlyAttribute(path)) return false;
    // Tried, because permissions have too many sources to be calculated. Who has the file open alone is no matter of
    // permission.
    const Handle file = OpenHandle(path, GENERIC_WRITE, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL);
    if (!file.IsOpen() && ::GetLastError() != ERROR_SHARING_VIOLATION) return false;
    return OpenHandle(FolderOf(path), FILE_ADD_FILE, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS).IsOpen();
  }

  // What the system calls the file, whatever links, short names and letters of either case led there. When the buffer
  // is too small the length that is needed comes back.
  std::string CanonicalPath(const std::string& path) override {
    const Handle file = OpenHandle(path, FILE_READ_ATTRIBUTES, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS);
    if (!file.IsOpen()) return path;
    std::wstring full(MAX_PATH, L'\0');
    DWORD length = FinalPath(file, full);
    if (length > full.size()) {
      full.resize(length);
      length = FinalPath(file, full);
    }
    if (length == 0 || length > full.size()) return path;
    full.resize(length);
    return windows::FromWide(WithoutUnlimitedPrefix(full));
  }

  void Remove(const std::string& path) override {
    if (::DeleteFileW(ToWidePath(path).c_str()) == 0) RaiseSystemError("remove", path, ::GetLastError());
  }

  void Rename(const std::string& from, const std::string& to) override {
    // The new name is on the disk when the call returns.
    constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    if (::MoveFileExW(ToWidePath(from).c_str(), ToWidePath(to).c_str(), kFlags) == 0) {
      RaiseSystemError("rename", from, ::GetLastError());
    }
  }

  // A new file inherits the permissions of its folder, as the database beside it did.
  void CopyPermissions(const std::string& /*from*/, const std::string& /*to*/) override {}

  // Folders are journalled by the system and need no flush.
  void SyncFolderOf(const std::string& /*path*/) override {}

 private:
  static DWORD FinalPath(const Handle& file, std::wstring& target) {
    return ::GetFinalPathNameByHandleW(file.Value(), target.data(), static_cast<DWORD>(target.size()),
                                       FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
  }

  // For messages and comparisons: \\?\C:\... is C:\..., and \\?\UNC\server\share is \\server\share.
  static std::wstring WithoutUnlimitedPrefix(const std::wstring& path) {
    constexpr std::wstring_view kShare = L"\\\\?\\UNC\\";
    constexpr std::wstring_view kLocal = L"\\\\?\\";
    if (path.starts_with(kShare)) return L"\\\\" + path.substr(kShare.size());
    return path.starts_with(kLocal) ? path.substr(kLocal.size()) : path;
  }
};

}  // namespace

std::shared_ptr<FileSystem> NativeFileSystem() {
  return std::make_shared<WindowsFileSystem>();
}

}  // namespace tavi::access
