#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "support/Checks.h"

/// The parts of a program that shows how the automation server uses the services of Windows. It makes its changes to
/// registry, files and desktop with the system's own calls, drives the registered server, and looks at what came of it.
namespace tavi::service_test {

using automation_test::Check;
using automation_test::CheckResult;
using windows::AutomationText;
using windows::ComPointer;

/// Checks that a text is the wanted one; a failure shows both.
void CheckText(const std::string& what, const std::string& got, const std::string& wanted);

/// A new MembershipDatabase, which looks for its folder anew.
ComPointer<_MembershipDatabase> NewDatabase();
/// The folder that a new MembershipDatabase finds.
std::string FolderFound();
/// What the last failed call of this thread says about itself.
std::string LastDescription();

/// A value of a registry key; removed when this goes out of scope, with its key as far as that is empty then.
class RegistryValue {
 public:
  /// `bytes` are stored as they are.
  RegistryValue(HKEY root, const std::wstring& key, const std::wstring& name, DWORD type, const std::string& bytes);
  ~RegistryValue();
  RegistryValue(const RegistryValue&) = delete;
  RegistryValue& operator=(const RegistryValue&) = delete;

 private:
  HKEY root_;
  std::wstring key_;
  std::wstring name_;
};

inline constexpr const wchar_t* kSettingsKey = L"Software\\Pelmont\\Bridge\\ClubDatabase";
/// The bytes of a text as the registry holds them, with or without the zero behind it.
std::string RegistryBytes(const std::wstring& text, bool withZero = true);
/// A text value of the component's settings.
RegistryValue Setting(HKEY root, const std::wstring& name, const std::wstring& text);

/// The content of a file; nothing when it cannot be read.
std::optional<std::string> Content(const std::string& path);
void WriteFile(const std::string& path, const std::string& content);
/// Lets nobody write a file while it lives. (A user with all rights may write even read-only files.)
class WriteProtection {
 public:
  explicit WriteProtection(const std::string& path);
  ~WriteProtection();
  WriteProtection(const WriteProtection&) = delete;
  WriteProtection& operator=(const WriteProtection&) = delete;

 private:
  HANDLE file_;
};
void MakeFolder(const std::string& path);
void RemoveTree(const std::string& path);
/// The diagnostics log while a step runs, which starts without it.
std::string LoggedBy(const std::function<void()>& step);

/// Makes a club file of the current layout, without members, in a new folder.
void MakeClub(const std::string& folder);
/// Runs statements on the club file of a folder, past the server.
void RunStatements(const std::string& folder, const std::vector<std::string>& statements);
/// The first column of what a statement selects there, as texts.
std::vector<std::string> Column(const std::string& folder, const std::string& statement);
/// Adds a member without initials; the result of the call.
HRESULT AddMember(_MembershipDatabase& database, const std::string& first, const std::string& last);

/// A message box as it stood on the screen.
struct ShownBox {
  std::string title;
  std::string text;
  /// The system's icon ("information", "exclamation", "critical"), else empty.
  std::string icon;
  bool isVisible = false;
  /// Whether the other windows of its thread were shut off meanwhile.
  bool isModal = false;
};
/// Runs a step of this thread and answers all message boxes that it shows, in order.
std::vector<ShownBox> AnsweredBoxes(const std::function<void()>& step);

// Each takes a folder of its own, which does not exist yet.
void CheckSettings(const std::string& folder);
void CheckSettingsFiles(const std::string& folder);
void CheckFolders(const std::string& folder);
void CheckMessageBoxes(const std::string& folder);
void CheckNameKeys(const std::string& folder);
void CheckDiagnostics(const std::string& folder);
void CheckFiles(const std::string& folder);
void CheckSuddenEnd(const std::string& folder);
/// The program that CheckSuddenEnd starts and ends: adds members to the club file of a folder for ever.
void AddMembersForEver(const std::string& folder);

}  // namespace tavi::service_test
