#include <windows.h>

#include <string>

#include "platform/values/WideText.h"
#include "util/NativeFiles.h"
#include "util/NativePath.h"

namespace tavi {
namespace {

std::wstring WidePath(std::string_view path) {
  return windows::ToWidePath(NativePath(path));
}

bool CanBePath(std::string_view path) {
  return path.find('\0') == std::string_view::npos;
}

bool WriteThrough(std::string_view path, DWORD access, DWORD disposition, std::string_view text) noexcept {
  try {
    if (!CanBePath(path)) return false;
    constexpr DWORD kShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    const HANDLE file =
        ::CreateFileW(WidePath(path).c_str(), access, kShare, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) return false;
    DWORD written = 0;
    const bool isWritten = ::WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0;
    ::CloseHandle(file);
    return isWritten && written == text.size();
  } catch (...) {
    return false;
  }
}

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

bool MakeNativeFolder(std::string_view path) noexcept {
  try {
    return CanBePath(path) && ::CreateDirectoryW(WidePath(path).c_str(), nullptr) != 0;
  } catch (...) {
    return false;
  }
}

bool MakeNativeFile(std::string_view path, std::string_view text) noexcept {
  return WriteThrough(path, GENERIC_WRITE, CREATE_NEW, text);
}

bool AppendToNativeFile(std::string_view path, std::string_view text) noexcept {
  return WriteThrough(path, FILE_APPEND_DATA, OPEN_ALWAYS, text);
}

}  // namespace tavi
