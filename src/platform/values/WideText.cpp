#include "platform/values/WideText.h"

#include <windows.h>

#include <limits>
#include <stdexcept>

namespace tavi::windows {
namespace {

// Without the prefix a folder's name may have this many characters, room for a file name in it included.
constexpr std::size_t kLongestPlainPath = 247;
constexpr std::wstring_view kUnlimited = L"\\\\?\\";
constexpr std::wstring_view kUnlimitedShare = L"\\\\?\\UNC\\";

int LengthOf(std::size_t length) {
  if (length > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::length_error("text too long");
  return static_cast<int>(length);
}

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
  if (full.starts_with(L"\\\\")) return std::wstring(kUnlimitedShare) + full.substr(2);
  return std::wstring(kUnlimited) + full;
}

std::string SystemErrorText(unsigned long code) {
  constexpr DWORD kLongest = 512;
  std::wstring text(kLongest, L'\0');
  const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0,
                                        text.data(), kLongest, nullptr);
  text.resize(length);
  while (!text.empty() && (text.back() <= L' ' || text.back() == L'.')) text.pop_back();
  return text.empty() ? "system error " + std::to_string(code) : FromWide(text);
}

}  // namespace tavi::windows
