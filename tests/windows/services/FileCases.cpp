// Club files where and how people have them.
#include "platform/values/WideText.h"
#include "services/Services.h"

namespace tavi::service_test {
namespace {

constexpr HRESULT kComponentError = static_cast<HRESULT>(0x80040000);

std::wstring FileIn(const std::string& folder) {
  return windows::ToWidePath(folder + "\\ClubMembers.mdb");
}

ComPointer<_MembershipDatabase> DatabaseIn(const std::string& folder) {
  auto database = NewDatabase();
  CheckResult("the folder " + folder + " can be set", database->put_DatabaseFolder(AutomationText(folder).Get()), S_OK);
  return database;
}

bool Exists(const std::string& folder) {
  VARIANT_BOOL exists = VARIANT_FALSE;
  CheckResult("DatabaseExists", DatabaseIn(folder)->get_DatabaseExists(&exists), S_OK);
  return exists != VARIANT_FALSE;
}

std::string NameOf(_MembershipDatabase& database, long member) {
  AutomationText name;
  CheckResult("GetMemberName", database.GetMemberName(member, 5, AutomationText("nobody").Get(), name.Receive()), S_OK);
  return name.ToUtf8();
}

/// A club file is used by this writing of its folder, and is found in `folder`.
void CheckWriting(const std::string& what, const std::string& writing, const std::string& folder) {
  Check(what + ": the file exists", Exists(writing));
  const auto database = DatabaseIn(writing);
  const std::size_t before = Column(folder, "Select MembershipNumber From Members").size();
  CheckResult(what + ": a member can be added", AddMember(*database, "Ann", "Lee " + what), S_OK);
  CheckText(what + ": it is in the file", std::to_string(Column(folder, "Select MembershipNumber From Members").size()),
            std::to_string(before + 1));
  Check(what + ": nothing is left beside the file",
        ::GetFileAttributesW((FileIn(folder) + L"-log").c_str()) == INVALID_FILE_ATTRIBUTES);
}

void CheckWritings(const std::string& folder) {
  const std::string club = folder + "\\klub";
  MakeClub(club);
  const std::string rooted = club.substr(2);
  std::string slashes = club;
  for (char& character : slashes) character = character == '\\' ? '/' : character;
  ::SetCurrentDirectoryW(windows::ToWide(folder).c_str());
  for (const auto& [what, writing] : {std::pair{"a backslash at the end", club + "\\"},
                                      {"slashes", slashes},
                                      {"a slash at the end", slashes + "/"},
                                      {"from the root", rooted},
                                      {"from the folder", std::string("klub")},
                                      {"from the drive's folder", std::string("C:klub")},
                                      {"a way round", club + "\\..\\.\\KLUB"},
                                      {"without limit", "\\\\?\\" + club}}) {
    CheckWriting(what, writing, club);
  }
  ::SetCurrentDirectoryW(L"C:\\");
}

void CheckNames(const std::string& folder) {
  const std::string club = folder + "\\Zoë Łukasz 橋 𝔊; O'Neil (x) 100%";
  MakeClub(club);
  CheckWriting("letters of all kinds", club, club);
  std::string deep = folder;
  for (int level = 0; level < 6; ++level) {
    deep += "\\" + std::string(60, 'd') + "é";
    MakeFolder(deep);
  }
  deep += "\\klub";
  MakeClub(deep);
  CheckWriting("a path of 400 characters", deep, deep);
}

void CheckFailure(const std::string& what, const std::string& folder, const std::string& reason) {
  const auto database = DatabaseIn(folder);
  CheckResult(what, database->OpenDatabase(), kComponentError);
  const std::string description = LastDescription();
  Check(what + ": " + description,
        description.starts_with("Failed to open membership database " + folder + "\\ClubMembers.mdb:\r\n\r\n") &&
            description.find(reason) != std::string::npos);
  CheckResult(what + " fails a change as well", AddMember(*database, "Ann", "Lee"), kComponentError);
}

void CheckRefusals(const std::string& folder) {
  CheckFailure("a missing folder", folder + "\\missing", "Could not find");
  CheckFailure("a share that is not there", "\\\\no-such-server\\share", "ClubMembers.mdb");
  CheckFailure("a drive that is not there", "Q:\\klub", "ClubMembers.mdb");
  CheckFailure("a name that no folder has", folder + "\\a<b>|?*", "ClubMembers.mdb");
  CheckFailure("a name of devices", "\\\\.\\NUL", "ClubMembers.mdb");
  for (const char* const none : {"\\missing", "\\a<b>|?*", ""}) Check("there is no file", !Exists(folder + none));

  MakeFolder(folder + "\\folders");
  MakeFolder(folder + "\\folders\\ClubMembers.mdb");
  Check("a folder is no file", !Exists(folder + "\\folders"));
  CheckFailure("a folder in the file's place", folder + "\\folders", "ClubMembers.mdb");

  const std::string club = folder + "\\shared";
  MakeClub(club);
  const HANDLE alone = ::CreateFileW(FileIn(club).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
  CheckFailure("a file that a program keeps to itself", club, "already in use");
  Check("still exists", Exists(club));
  ::CloseHandle(alone);
  CheckResult("and opens afterwards", DatabaseIn(club)->OpenDatabase(), S_OK);
}

void CheckOtherPrograms(const std::string& folder) {
  const std::string club = folder + "\\others";
  MakeClub(club);
  CheckResult("a member can be added", AddMember(*DatabaseIn(club), "Ann", "Lee"), S_OK);
  const std::string lockFile = club + "\\ClubMembers.ldb";
  std::string slot(64, '\0');
  slot.replace(0, 6, "SCORER").replace(32, 5, "Admin");
  WriteFile(lockFile, slot);
  CheckResult("a lock file that a crash has left is no hindrance", AddMember(*DatabaseIn(club), "Tom", "Ash"), S_OK);
  const HANDLE other = ::CreateFileW(windows::ToWide(lockFile).c_str(), GENERIC_READ | GENERIC_WRITE,
                                     FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
  constexpr DWORD kFirstUser = 0x10000001;
  Check("another program locks its place", ::LockFile(other, kFirstUser, 0, 1, 0) != 0);
  const auto database = DatabaseIn(club);
  const HRESULT result = database->OpenDatabase();
  const std::string description = FAILED(result) ? LastDescription() : "";
  if (SUCCEEDED(result)) CheckText("the file is readable", NameOf(*database, 1), "Ann Lee");
  const HRESULT change = AddMember(*database, "Sue", "Elm");
  Check("it is not written while the other program has it: " + description + LastDescription(), FAILED(change));
  ::UnlockFile(other, kFirstUser, 0, 1, 0);
  ::CloseHandle(other);
  CheckResult("afterwards it is", AddMember(*DatabaseIn(club), "Sue", "Elm"), S_OK);
}

void CheckReadOnly(const std::string& folder) {
  const std::string club = folder + "\\readonly";
  MakeClub(club);
  CheckResult("a member can be added", AddMember(*DatabaseIn(club), "Ann", "Lee"), S_OK);
  const std::optional<std::string> before = Content(club + "\\ClubMembers.mdb");
  ::SetFileAttributesW(FileIn(club).c_str(), FILE_ATTRIBUTE_READONLY);
  const auto database = DatabaseIn(club);
  CheckResult("a read-only file opens", database->OpenDatabase(), S_OK);
  CheckText("and is read", NameOf(*database, 1), "Ann Lee");
  CheckResult("a change is refused", AddMember(*database, "Tom", "Ash"), static_cast<HRESULT>(0x80040E09));
  Check("with the reason: " + LastDescription(), true);
  database->CloseDatabase();
  Check("it is as it was", Content(club + "\\ClubMembers.mdb") == before);
  ::SetFileAttributesW(FileIn(club).c_str(), FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM);
  Check("a hidden file exists", Exists(club));
  CheckResult("and is written", AddMember(*DatabaseIn(club), "Tom", "Ash"), S_OK);
  Check("and keeps its attributes", (::GetFileAttributesW(FileIn(club).c_str()) & FILE_ATTRIBUTE_HIDDEN) != 0);
  ::SetFileAttributesW(FileIn(club).c_str(), FILE_ATTRIBUTE_NORMAL);
}

}  // namespace

void CheckFiles(const std::string& folder) {
  MakeFolder(folder);
  CheckWritings(folder);
  CheckNames(folder);
  CheckRefusals(folder);
  CheckOtherPrograms(folder);
  CheckReadOnly(folder);
}

}  // namespace tavi::service_test
