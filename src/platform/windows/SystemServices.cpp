#include "platform/windows/SystemServices.h"

#include <windows.h>
#include <array>
#include <bit>
#include <memory>

#include "platform/values/WideText.h"

namespace tavi {
namespace {

// Installed programs have always passed this number for the owner window.
constexpr std::uintptr_t kOwnerWindow = 100;
// The room that each call takes for granted; the array has one more for the end of the text.
constexpr std::size_t kPathCharacters = 260;
constexpr std::size_t kLocationCharacters = 520;

struct FreeByTaskAllocator {
  void operator()(ITEMIDLIST* list) const { ::CoTaskMemFree(list); }
};

}  // namespace

// The calls stand behind functions, so that tests can answer as a shell would that fails, or that is older than this
// one.
ShellCalls ShellCalls::OfTheSystem() {
  return {::SHGetFolderPathW, ::SHGetSpecialFolderLocation, ::SHGetPathFromIDListW};
}

std::optional<std::string> SystemFolders::FolderPath(std::int32_t folderNumber) const {
  std::array<wchar_t, kPathCharacters + 1> path{};
  // No owner window, no user's token: the folder of whoever runs the program.
  const HRESULT result = shell_.getFolderPath(nullptr, folderNumber, nullptr, SHGFP_TYPE_CURRENT, path.data());
  // S_FALSE: the folder is known but is not there.
  if (result != S_OK && result != S_FALSE) return std::nullopt;
  return windows::FromWide(path.data());
}

std::optional<ShellFolders::Location> SystemFolders::FolderLocation(std::int32_t folderNumber) const {
  ITEMIDLIST* found = nullptr;
  const HRESULT result = shell_.getSpecialFolderLocation(std::bit_cast<HWND>(kOwnerWindow), folderNumber, &found);
  // Owned before the result is judged: a call that failed may have left a list all the same.
  const std::unique_ptr<ITEMIDLIST, FreeByTaskAllocator> list(found);
  if (result != S_OK) return std::nullopt;
  std::array<wchar_t, kLocationCharacters + 1> path{};
  // Nonzero is success to this call, and failure to those who ask here (see Location); both get the path.
  const bool isNonZero = shell_.getPathFromIdList(list.get(), path.data()) != 0;
  return Location{windows::FromWide(path.data()), isNonZero};
}

namespace {

UINT StyleOf(MessageBoxIcon icon) {
  switch (icon) {
    case MessageBoxIcon::Critical:
      return MB_ICONERROR;
    case MessageBoxIcon::Exclamation:
      return MB_ICONEXCLAMATION;
    case MessageBoxIcon::Information:
      break;
  }
  return MB_ICONINFORMATION;
}

}  // namespace

void SystemMessageBoxes::Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const {
  try {
    // Task modal: without an owner window, all windows of the calling thread wait. In the foreground, because the
    // program that called may be busy behind others, and nobody would dismiss what he does not see.
    ::MessageBoxW(nullptr, windows::ToWide(text).c_str(), windows::ToWide(title).c_str(),
                  MB_OK | MB_TASKMODAL | MB_SETFOREGROUND | StyleOf(icon));
  } catch (const std::exception&) {
    // A message that nobody can be shown is no reason to stop the work it tells of.
    return;
  }
}

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
