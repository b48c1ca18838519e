#pragma once

#include <windows.h>

#include <shlobj.h>

#include <functional>

#include "platform/Platform.h"

namespace tavi {

/// The calls of the shell that SystemFolders makes, with the shell's own arguments and results. Every member is set.
struct ShellCalls {
  /// SHGetFolderPath. The text has room for 260 characters.
  std::function<HRESULT(HWND owner, int folderNumber, HANDLE token, DWORD flags, wchar_t* path)> getFolderPath;
  /// SHGetSpecialFolderLocation. The list is the caller's, to be freed by CoTaskMemFree.
  std::function<HRESULT(HWND owner, int folderNumber, ITEMIDLIST** list)> getSpecialFolderLocation;
  /// SHGetPathFromIDList. The text has room for 520 characters.
  std::function<BOOL(const ITEMIDLIST* list, wchar_t* path)> getPathFromIdList;

  /// Those of this machine's shell.
  static ShellCalls OfTheSystem();
};

/// The special folders as the Windows shell names them. Exceptions of the calls pass on.
class SystemFolders : public ShellFolders {
 public:
  explicit SystemFolders(ShellCalls shell = ShellCalls::OfTheSystem()) : shell_(std::move(shell)) {}
  [[nodiscard]] std::optional<std::string> FolderPath(std::int32_t folderNumber) const override;
  [[nodiscard]] std::optional<Location> FolderLocation(std::int32_t folderNumber) const override;

 private:
  ShellCalls shell_;
};

}  // namespace tavi
