#include "services/Services.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "composition/Composition.h"
#include "platform/values/Convert.h"
#include "platform/values/WideText.h"
#include "store/Layout.h"
#include "store/cDatabase.h"

namespace tavi::service_test {
namespace {

std::filesystem::path PathOf(const std::string& utf8) {
  return std::filesystem::path(windows::ToWidePath(utf8));
}

std::unique_ptr<ado::Connection> Connect(const std::string& folder) {
  return DefaultPlatform()->databaseProvider->Open(ConnectionText(folder + "\\ClubMembers.mdb"));
}

constexpr const char* kLogFolder = "C:\\Diagnostics";
constexpr const char* kLogFile = "C:\\Diagnostics\\Tallyman.txt";

}  // namespace

void CheckText(const std::string& what, const std::string& got, const std::string& wanted) {
  Check(got == wanted ? what : what + ": got \"" + got + "\", want \"" + wanted + "\"", got == wanted);
}

ComPointer<_MembershipDatabase> NewDatabase() {
  return automation_test::Create<_MembershipDatabase>(__uuidof(::MembershipDatabase));
}

std::string FolderFound() {
  AutomationText folder;
  CheckResult("the folder can be asked for", NewDatabase()->get_DatabaseFolder(folder.Receive()), S_OK);
  return folder.ToUtf8();
}

std::string LastDescription() {
  ComPointer<IErrorInfo> information;
  AutomationText description;
  if (::GetErrorInfo(0, information.Receive()) == S_OK) information->GetDescription(description.Receive());
  return description.ToUtf8();
}

RegistryValue::RegistryValue(HKEY root, const std::wstring& key, const std::wstring& name, DWORD type,
                             const std::string& bytes)
    : root_(root), key_(key), name_(name) {
  Check("a registry value can be set", ::RegSetKeyValueW(root, key.c_str(), name.c_str(), type, bytes.data(),
                                                         static_cast<DWORD>(bytes.size())) == ERROR_SUCCESS);
}

RegistryValue::~RegistryValue() {
  ::RegDeleteKeyValueW(root_, key_.c_str(), name_.c_str());
}

std::string RegistryBytes(const std::wstring& text, bool withZero) {
  const void* bytes = text.c_str();
  return {static_cast<const char*>(bytes), (text.size() + (withZero ? 1 : 0)) * sizeof(wchar_t)};
}

RegistryValue Setting(HKEY root, const std::wstring& name, const std::wstring& text) {
  return {root, kSettingsKey, name, REG_SZ, RegistryBytes(text)};
}

std::optional<std::string> Content(const std::string& path) {
  std::ifstream file(PathOf(path), std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream content;
  content << file.rdbuf();
  return content.str();
}

void WriteFile(const std::string& path, const std::string& content) {
  std::ofstream(PathOf(path), std::ios::binary) << content;
}

WriteProtection::WriteProtection(const std::string& path)
    : file_(::CreateFileW(windows::ToWidePath(path).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                          nullptr)) {
  Check(path + " can be protected", file_ != INVALID_HANDLE_VALUE);
}

WriteProtection::~WriteProtection() {
  ::CloseHandle(file_);
}

void MakeFolder(const std::string& path) {
  const std::wstring wide = windows::ToWidePath(path);
  Check("folder " + path + " can be made",
        ::CreateDirectoryW(wide.c_str(), nullptr) != 0 || ::GetLastError() == ERROR_ALREADY_EXISTS);
}

void RemoveTree(const std::string& path) {
  std::error_code isMissing;
  std::filesystem::remove_all(PathOf(path), isMissing);
}

std::string LoggedBy(const std::function<void()>& step) {
  RemoveTree(kLogFolder);
  MakeFolder(kLogFolder);
  step();
  std::string log = Content(kLogFile).value_or("");
  RemoveTree(kLogFolder);
  return log;
}

void MakeClub(const std::string& folder) {
  MakeFolder(folder);
  CreateEmptyDatabase(folder + "\\ClubMembers.mdb", DefaultPlatform()->clock->Now());
  const auto connection = Connect(folder);
  CreateBaseFile(*connection);
  connection->Close();
}

void RunStatements(const std::string& folder, const std::vector<std::string>& statements) {
  const auto connection = Connect(folder);
  for (const std::string& statement : statements) connection->Execute(statement);
  connection->Close();
}

std::vector<std::string> Column(const std::string& folder, const std::string& statement) {
  const auto connection = Connect(folder);
  const auto rows = connection->OpenRecordset(statement, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                              ado::SourceKind::CommandText);
  std::vector<std::string> values;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Value value = rows->Get(rows->Fields().front().name);
    values.push_back(IsNull(value) ? "Null" : ToText(value));
  }
  rows->Close();
  connection->Close();
  return values;
}

HRESULT AddMember(_MembershipDatabase& database, const std::string& first, const std::string& last) {
  long number = 0;
  return database.AddNewMember(AutomationText(first).Get(), AutomationText("").Get(), AutomationText(last).Get(),
                               automation_test::LeftOut(), &number);
}

}  // namespace tavi::service_test
