#pragma once

#include <shlobj.h>
#include <windows.h>
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

/// Message boxes of the Windows desktop, with an OK button.
class SystemMessageBoxes : public MessageBoxes {
 public:
  void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const override;
};

/// The registry of Windows. A 32-bit program sees the 32-bit view.
class SystemRegistry : public Registry {
 public:
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot root, std::string_view keyPath,
                                                    std::string_view valueName) const override;
};

/// Settings documents on the XML document service of Windows. White space around a text is no part of it; entities of
/// other files are not read. A document is used on the thread that loaded it. Errors carry the service's number and
/// name the file.
class SystemXmlDocuments : public SettingsDocuments {
 public:
  [[nodiscard]] std::unique_ptr<SettingsDocument> Load(const std::string& path) const override;
};

/// The outside automation class that makes name keys, for machines where it is registered. Every computation takes a
/// new object of it, which is asked for the numbers of its two modes.
class OutsideNameKeys : public NameKeyService {
 public:
  /// True when programs like this one can create objects of the class on this machine: from a library or a program that
  /// the registry names, or from a class object that this program has registered itself. An entry whose library or
  /// program is missing counts.
  [[nodiscard]] static bool IsRegistered();
  /// Raises an error with the number, and where it tells them the source and the description, of the class's own when
  /// it cannot be created or called.
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override;
  /// Both keys by one object. Raises the same errors.
  [[nodiscard]] NameKeys Keys(std::string_view surname, std::string_view firstName) const override;
};

}  // namespace tavi
