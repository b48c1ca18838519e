#include "platform/values/WideText.h"

#include <windows.h>

#include <limits>
#include <stdexcept>

// These are the system's own conversions. Unlike those of Text.h they keep no unpaired surrogate, which no call of the
// system needs. Each is asked twice: for the length first, then for the text.
namespace tavi::windows {
namespace {

// Without the prefix a folder's name may have this many characters, room for a file name in it included.
constexpr std::size_t kLongestPlainPath = 247;
// With the prefix the system takes the path as it stands, up to 32767 characters: no slashes, no "..", no relative
// names.
constexpr std::wstring_view kUnlimited = L"\\\\?\\";
constexpr std::wstring_view kUnlimitedShare = L"\\\\?\\UNC\\";

/// The calls count in ints.
int LengthOf(std::size_t length) {
  if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::length_error("text too long");
  return static_cast<int>(length);
}

/// The absolute path with backslashes, as the prefix needs it; empty when the system cannot make one. A length that is
/// larger than the buffer is the size that it ought to have.
std::wstring FullPath(const std::wstring& path) {
  std::wstring full(path.size() + MAX_PATH, L'\0');
  DWORD length = ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  if (length > full.size()) {
    full.resize(length);
    length = ::GetFullPathNameW(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
  }
  full.resize(length);
  return full;
}

}  // namespace

std::wstring ToWide(std::string_view text) {
  if (text.empty()) return {};
  const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), LengthOf(text.size()), nullptr, 0);
  // No end is counted in: the length of the text was given, so that zeros inside survive.
  std::wstring wide(static_cast<std::size_t>(length), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, text.data(), LengthOf(text.size()), wide.data(), length);
  return wide;
}

std::string FromWide(std::wstring_view text) {
  if (text.empty()) return {};
  const int wideLength = LengthOf(text.size());
  const int length = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), wideLength, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(length), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, text.data(), wideLength, narrow.data(), length, nullptr, nullptr);
  return narrow;
}

std::wstring ToWidePath(std::string_view path) {
  const std::wstring wide = ToWide(path);
  if (wide.size() <= kLongestPlainPath || wide.starts_with(kUnlimited)) return wide;
  const std::wstring full = FullPath(wide);
  if (full.empty()) return wide;
  // A share: "\\server\folder" is written "\\?\UNC\server\folder".
  if (full.starts_with(L"\\\\")) return std::wstring(kUnlimitedShare) + full.substr(2);
  return std::wstring(kUnlimited) + full;
}

std::string SystemErrorText(unsigned long code) {
  constexpr DWORD kLongest = 512;
  std::wstring text(kLongest, L'\0');
  const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                        text.data(), kLongest, nullptr);
  text.resize(length);
  // The system ends its texts with a full stop and a line end; here they become a part of a sentence.
  while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.pop_back();
  return text.empty() ? "system error " + std::to_string(code) : FromWide(text);
}

}  // namespace tavi::windows
