#include "platform/windows/SystemServices.h"

#include <windows.h>

#include "platform/values/WideText.h"

namespace tavi {
namespace {

using windows::ToWide;

// Enough for nearly every path; a longer value costs a second call.
constexpr DWORD kFirstBytes = 512;

/// A key that is open for reading, or is not there. Missing and forbidden are the same to who asks for a setting.
class OpenKey {
 public:
  OpenKey(RegistryRoot root, std::string_view path) {
    const HKEY parent = root == RegistryRoot::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    isOpen_ = ::RegOpenKeyExW(parent, ToWide(path).c_str(), 0, KEY_READ, &key_) == ERROR_SUCCESS;
  }
  ~OpenKey() {
    if (isOpen_) ::RegCloseKey(key_);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;

  [[nodiscard]] std::optional<std::wstring> Text(const std::wstring& name) const {
    if (!isOpen_) return std::nullopt;
    DWORD size = kFirstBytes;
    DWORD type = REG_NONE;
    std::wstring text;
    LSTATUS status = ERROR_MORE_DATA;
    // Again and again, because the value may grow between the call that tells its size and the next one.
    while (status == ERROR_MORE_DATA) {
      text.resize(size / sizeof(wchar_t) + 1);
      size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
      void* target = text.data();
      status = ::RegQueryValueExW(key_, name.c_str(), nullptr, &type, static_cast<BYTE*>(target), &size);
    }
    // Plain texts only: one with variables in it would not be the path that it shows.
    if (status != ERROR_SUCCESS || type != REG_SZ) return std::nullopt;
    text.resize(size / sizeof(wchar_t));
    // Whoever stored it may have counted an end in, or none, or several.
    return text.substr(0, text.find(L'\0'));
  }

 private:
  HKEY key_ = nullptr;
  bool isOpen_ = false;
};

}  // namespace

std::optional<std::string> SystemRegistry::ReadText(RegistryRoot root, std::string_view keyPath,
                                                    std::string_view valueName) const {
  const std::optional<std::wstring> text = OpenKey(root, keyPath).Text(ToWide(valueName));
  return text ? std::optional<std::string>(windows::FromWide(*text)) : std::nullopt;
}

}  // namespace tavi
