// Which settings the server takes from the registry, and what it copies into the settings file.
#include <shlobj.h>

#include <array>

#include "platform/values/WideText.h"
#include "services/Services.h"

namespace tavi::service_test {
namespace {

constexpr const wchar_t* kFolderName = L"DB Folder";
constexpr const char* kSkeleton =
    "<settings>\r\n"
    "  <hkey_local_machine>\r\n"
    "    <software>\r\n"
    "      <pelmont>\r\n"
    "      </pelmont>\r\n"
    "    </software>\r\n"
    "  </hkey_local_machine>\r\n"
    "</settings>\r\n";

std::string ShellFolder(int number) {
  std::array<wchar_t, MAX_PATH> path{};
  Check("the shell knows the folder", SUCCEEDED(::SHGetFolderPathW(nullptr, number, nullptr, 0, path.data())));
  return windows::FromWide(path.data());
}

std::string SettingsFolder() {
  return ShellFolder(CSIDL_COMMON_APPDATA) + "\\Madrigo";
}

std::string SettingsFile() {
  return SettingsFolder() + "\\Settings.xml";
}

/// The file with elements below the component's key.
std::string FileWith(const std::string& elements) {
  return "<settings><hkey_local_machine><software><pelmont><bridge><clubdatabase>" + elements +
         "</clubdatabase></bridge></pelmont></software></hkey_local_machine></settings>";
}

/// Puts the file into the state of the start: missing, with its folder.
void Forget() {
  ::SetFileAttributesW(windows::ToWide(SettingsFile()).c_str(), FILE_ATTRIBUTE_NORMAL);
  RemoveTree(SettingsFolder());
}

void PutFile(const std::string& content) {
  Forget();
  MakeFolder(SettingsFolder());
  WriteFile(SettingsFile(), content);
}

bool FileHolds(const std::string& text) {
  return Content(SettingsFile()).value_or("").find(text) != std::string::npos;
}

RegistryValue Raw(HKEY root, DWORD type, const std::string& bytes) {
  return {root, kSettingsKey, kFolderName, type, bytes};
}

void CheckOrder(const std::string& usual) {
  Forget();
  CheckText("without settings the folder is the usual one", FolderFound(), usual);
  CheckText("the file is made with its skeleton", Content(SettingsFile()).value_or("none"), kSkeleton);
  {
    const auto machine = Setting(HKEY_LOCAL_MACHINE, kFolderName, L"C:\\Machine \x0141");
    CheckText("a machine-wide value counts", FolderFound(), "C:\\Machine Ł");
    Check("it is copied into the file", FileHolds("<clubdatabase><DB_Folder>C:\\Machine Ł</DB_Folder>"));
  }
  CheckText("the file goes on without the registry", FolderFound(), "C:\\Machine Ł");
  const auto other = Setting(HKEY_LOCAL_MACHINE, kFolderName, L"C:\\Other");
  const std::string before = Content(SettingsFile()).value_or("");
  CheckText("the file wins over the registry", FolderFound(), "C:\\Machine Ł");
  {
    const auto user = Setting(HKEY_CURRENT_USER, kFolderName, L"D:\\Mine");
    CheckText("a value of the user wins over both", FolderFound(), "D:\\Mine");
  }
  {
    const auto user = Setting(HKEY_CURRENT_USER, kFolderName, L"");
    CheckText("an empty value of the user counts as none", FolderFound(), "C:\\Machine Ł");
  }
  CheckText("the user's value is not copied", Content(SettingsFile()).value_or(""), before);
}

void CheckTypes(const std::string& usual) {
  Forget();
  for (const DWORD type : std::initializer_list<DWORD>{REG_DWORD, REG_BINARY, REG_EXPAND_SZ, REG_MULTI_SZ, REG_NONE}) {
    for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
      const auto value =
          Raw(root, type, RegistryBytes(L"C:\\Club", type != REG_DWORD).substr(0, type == REG_DWORD ? 4 : 16));
      CheckText("a value of type " + std::to_string(type) + " is none", FolderFound(), usual);
    }
  }
  CheckText("nothing was copied", Content(SettingsFile()).value_or(""), kSkeleton);
}

void CheckLengths() {
  // 256 is the size of the first buffer, in bytes or in characters.
  for (const std::size_t length : {126U, 127U, 128U, 129U, 254U, 255U, 256U, 257U, 511U, 512U, 1000U, 20000U}) {
    const std::wstring folder = L"C:\\" + std::wstring(length - 4, L'x') + L"\x00E9";
    for (const bool withZero : {true, false}) {
      const auto value = Raw(HKEY_CURRENT_USER, REG_SZ, RegistryBytes(folder, withZero));
      CheckText("a value of " + std::to_string(length) + " characters", FolderFound(), windows::FromWide(folder));
    }
    Forget();
    const auto value = Raw(HKEY_LOCAL_MACHINE, REG_SZ, RegistryBytes(folder));
    CheckText("the same machine-wide", FolderFound(), windows::FromWide(folder));
    CheckText("and from the file", FolderFound(), windows::FromWide(folder));
  }
}

void CheckCharacters(const std::string& usual) {
  const auto found = [](const std::wstring& text, HKEY root) {
    Forget();
    const auto value = Raw(root, REG_SZ, RegistryBytes(text));
    const std::string first = FolderFound();
    CheckText("it is found again", FolderFound(), first);
    return first;
  };
  for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
    CheckText("accents", found(L"C:\\Zo\x00EB M\x00FCller", root), "C:\\Zoë Müller");
    CheckText("letters of no code page", found(L"C:\\\x6A4B \xD835\xDD0A", root), "C:\\橋 𝔊");
    CheckText("an embedded zero ends the value", found(std::wstring(L"C:\\one\0two", 10), root), "C:\\one");
    CheckText("a value of zeros is none", found(std::wstring(3, L'\0'), root), usual);
  }
  {
    const auto odd = Raw(HKEY_CURRENT_USER, REG_SZ, RegistryBytes(L"C:\\Odd", false) + "x");
    CheckText("half a character is none", FolderFound(), "C:\\Odd");
  }
  CheckText("markup characters", found(L"C:\\R&B <new> &lt;", HKEY_LOCAL_MACHINE), "C:\\R&B <new> &lt;");
  Check("stand in the file escaped twice",
        FileHolds("<DB_Folder>C:\\R&amp;amp;B &amp;lt;new&amp;gt; &amp;amp;lt;</DB_Folder>"));
  CheckText("a control character is refused", found(L"C:\\\x0001", HKEY_LOCAL_MACHINE), usual);
  CheckText("and not copied", Content(SettingsFile()).value_or(""), kSkeleton);
}

void CheckViews(const std::string& usual) {
  if constexpr (sizeof(void*) == 8) {
    Forget();
    HKEY key = nullptr;
    ::RegCreateKeyExW(HKEY_LOCAL_MACHINE, kSettingsKey, 0, nullptr, 0, KEY_ALL_ACCESS | KEY_WOW64_32KEY, nullptr, &key,
                      nullptr);
    const std::string bytes = RegistryBytes(L"C:\\ForOthers");
    const void* data = bytes.data();
    ::RegSetValueExW(key, kFolderName, 0, REG_SZ, static_cast<const BYTE*>(data), static_cast<DWORD>(bytes.size()));
    CheckText("the view of 32-bit programs is not looked into", FolderFound(), usual);
    ::RegDeleteValueW(key, kFolderName);
    ::RegCloseKey(key);
  }
}

/// A file that cannot be read fails no start: the registry's value counts, and the file is left alone.
void CheckPassedOver(const std::string& what) {
  const std::optional<std::string> before = Content(SettingsFile());
  const auto machine = Setting(HKEY_LOCAL_MACHINE, kFolderName, L"C:\\Machine");
  CheckText(what + ": the registry's value counts", FolderFound(), "C:\\Machine");
  Check(what + ": the file is left alone", Content(SettingsFile()) == before);
}

/// What comes of a machine-wide value of the registry when the file cannot take it.
void CheckRefusedCopy(const std::string& what, const std::string& usual) {
  const std::optional<std::string> before = Content(SettingsFile());
  const auto machine = Setting(HKEY_LOCAL_MACHINE, kFolderName, L"C:\\Machine");
  std::string folder;
  const std::string log = LoggedBy([&] { folder = FolderFound(); });
  CheckText(what + ": the copy fails and the folder stays", folder, usual);
  Check(what + ": the log says so: " + log,
        log.starts_with("TaviMembership Initialising\r\nUnexpected exception in TaviMembership initialisation: The "
                        "settings file ") &&
            log.ends_with("\r\n") && log.find("Settings.xml") != std::string::npos);
  const auto user = Setting(HKEY_CURRENT_USER, kFolderName, L"C:\\Mine");
  CheckText(what + ": the user's value counts", FolderFound(), "C:\\Mine");
  Check(what + ": the file is as it was", Content(SettingsFile()) == before);
}

}  // namespace

void CheckSettings(const std::string& /*folder*/) {
  const std::string usual = ShellFolder(CSIDL_COMMON_DOCUMENTS) + "\\Bridge\\Database";
  CheckOrder(usual);
  CheckTypes(usual);
  CheckLengths();
  CheckCharacters(usual);
  CheckViews(usual);
  Forget();
}

void CheckSettingsFiles(const std::string& folder) {
  const std::string usual = ShellFolder(CSIDL_COMMON_DOCUMENTS) + "\\Bridge\\Database";
  PutFile("");
  CheckText("an empty file holds nothing", FolderFound(), usual);
  CheckText("and is made whole", Content(SettingsFile()).value_or(""), kSkeleton);
  for (const char* const content : {"this is no XML", "<settings><hkey_local_machine>", "\xFF\xFE<"}) {
    PutFile(content);
    CheckText("a garbled file holds nothing", FolderFound(), usual);
    CheckPassedOver("a garbled file");
  }
  PutFile(FileWith("<DB_Folder> \r\n</DB_Folder>"));
  CheckText("an empty value of the file is none", FolderFound(), usual);
  {
    const auto machine = Setting(HKEY_LOCAL_MACHINE, kFolderName, L"C:\\Machine");
    CheckText("and makes place for that of the registry", FolderFound(), "C:\\Machine");
    Check("which fills it", FileHolds("<DB_Folder>C:\\Machine</DB_Folder>"));
  }
  PutFile(
      "<settings>\r\n<hkey_local_machine><software><pelmont><scorer><Font>A&amp;amp;B</Font></scorer></pelmont>"
      "</software></hkey_local_machine><other/></settings>");
  {
    const auto machine = Setting(HKEY_LOCAL_MACHINE, kFolderName, L"C:\\Machine");
    CheckText("a value beside those of other programs", FolderFound(), "C:\\Machine");
    Check("leaves these alone", FileHolds("<scorer><Font>A&amp;amp;B</Font></scorer>") && FileHolds("<other/>"));
  }
  PutFile(FileWith("<DB_Folder>C:\\Fixed</DB_Folder>"));
  ::SetFileAttributesW(windows::ToWide(SettingsFile()).c_str(), FILE_ATTRIBUTE_READONLY);
  CheckText("a read-only file is read", FolderFound(), "C:\\Fixed");
  PutFile(FileWith(""));
  {
    const WriteProtection protection(SettingsFile());
    CheckRefusedCopy("a file that cannot be written", usual);
  }
  Forget();
  MakeFolder(SettingsFolder());
  MakeFolder(SettingsFile());
  CheckRefusedCopy("a folder in the place of the file", usual);
  Forget();

  MakeClub(folder);
  RunStatements(
      folder, {"Insert into ClubNames (ClubName) Values ('Elm Club')", "Alter Table ClubNames Drop Column Affiliation",
               "Alter Table Competitions Drop Column NatCode"});
  const auto body = Setting(HKEY_CURRENT_USER, L"Governing Body", L"S'BU");
  const auto ignored = Setting(HKEY_LOCAL_MACHINE, L"Governing Body", L"XBU");
  const auto database = NewDatabase();
  database->put_DatabaseFolder(AutomationText(folder).Get());
  // The message box that tells of the change is answered.
  const auto boxes = AnsweredBoxes([&] { CheckResult("the file opens", database->OpenDatabase(), S_OK); });
  CheckText("one message box", std::to_string(boxes.size()), "1");
  database->CloseDatabase();
  CheckText("the user's governing body is the affiliation", Column(folder, "Select Affiliation From ClubNames").front(),
            "S'BU");
}

}  // namespace tavi::service_test
