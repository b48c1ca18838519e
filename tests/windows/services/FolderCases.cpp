// Where the server looks for the club's file and its settings, by the shell's special folders.
#include <shlobj.h>

#include <array>

#include "platform/values/WideText.h"
#include "services/Services.h"

namespace tavi::service_test {
namespace {

constexpr const wchar_t* kFoldersKey = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders";

RegistryValue ShellFolder(HKEY root, const std::wstring& name, const std::string& path) {
  return {root, kFoldersKey, name, REG_SZ, RegistryBytes(windows::ToWide(path))};
}

bool ShellHas(int number) {
  std::array<wchar_t, MAX_PATH> path{};
  return SUCCEEDED(::SHGetFolderPathW(nullptr, number, nullptr, 0, path.data()));
}

}  // namespace

void CheckFolders(const std::string& folder) {
  MakeFolder(folder);
  const std::string common = folder + "\\Zoë Łukasz 橋 𝔊";
  const std::string personal = folder + "\\Élan";
  MakeFolder(common);
  MakeFolder(personal);
  const auto own = ShellFolder(HKEY_CURRENT_USER, L"Personal", personal);
  {
    const auto documents = ShellFolder(HKEY_LOCAL_MACHINE, L"Common Documents", common);
    CheckText("the documents of all users, with letters of all kinds", FolderFound(), common + "\\Bridge\\Database");
  }
  const auto missing = ShellFolder(HKEY_LOCAL_MACHINE, L"Common Documents", folder + "\\missing");
  Check("this shell has no folder that is missing", !ShellHas(CSIDL_COMMON_DOCUMENTS));
  CheckText("without them the user's own", FolderFound(), personal + "\\Bridge\\Database");
  {
    const auto none = ShellFolder(HKEY_CURRENT_USER, L"Personal", folder + "\\none");
    CheckText("without both the folder of last resort", FolderFound(), "C:\\My Documents\\Bridge\\Database");
    const auto user = Setting(HKEY_CURRENT_USER, L"DB Folder", L"C:\\Set");
    CheckText("unless there is a setting", FolderFound(), "C:\\Set");
  }
  const std::string data = folder + "\\Données";
  const auto settings = ShellFolder(HKEY_LOCAL_MACHINE, L"Common AppData", data);
  const auto machine = Setting(HKEY_LOCAL_MACHINE, L"DB Folder", L"C:\\Machine");
  CheckText("settings have a folder that is made", FolderFound(), "C:\\Machine");
  Check("with the file below \"Madrigo\"",
        Content(data + "\\Madrigo\\Settings.xml").value_or("").find("C:\\Machine") != std::string::npos);
}

}  // namespace tavi::service_test
