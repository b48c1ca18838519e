// Name keys of the outside class where it is registered, and of the server itself elsewhere.
#include "services/FakeKeys.h"

#include <algorithm>
#include <bit>

#include "platform/values/WideText.h"
#include "services/Services.h"

namespace tavi::service_test {
namespace {

constexpr GUID kClass = {0x1926D4B2, 0xC320, 0x11D1, {0x94, 0x59, 0x00, 0x00, 0x4B, 0x40, 0x2E, 0x6B}};
constexpr const wchar_t* kClassKey = L"Software\\Classes\\CLSID\\{1926D4B2-C320-11D1-9459-00004B402E6B}";
constexpr const char* kKeys = "Select FuzzedFirstName & '/' & FuzzedLastName From Members Order By MembershipNumber";
constexpr HRESULT kOwnFailure = static_cast<HRESULT>(0x80040207);
constexpr std::wstring_view kNew = L"new ";
constexpr std::wstring_view kFree = L"free ";

/// The library with the fake class, loaded.
class FakeLibrary {
 public:
  FakeLibrary() : library_(::LoadLibraryW(Path().c_str())) {
    Check("the fake name-key library can be loaded", library_ != nullptr);
    if (library_ == nullptr) throw std::runtime_error("no fake_keys.dll beside this program");
    state_ = std::bit_cast<FakeKeysState* (*)()>(::GetProcAddress(library_, "FakeKeysState"))();
  }
  ~FakeLibrary() { ::FreeLibrary(library_); }
  FakeLibrary(const FakeLibrary&) = delete;
  FakeLibrary& operator=(const FakeLibrary&) = delete;

  FakeKeysState* operator->() const { return state_; }

  /// The class object, not by way of the registry.
  [[nodiscard]] ComPointer<IUnknown> ClassObject() const {
    using Entry = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    ComPointer<IUnknown> factory;
    std::bit_cast<Entry>(::GetProcAddress(library_, "DllGetClassObject"))(kClass, IID_IClassFactory,
                                                                          factory.ReceiveUntyped());
    return factory;
  }

  /// fake_keys.dll beside this program.
  static std::wstring Path() {
    std::wstring path(MAX_PATH, L'\0');
    path.resize(::GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    return path.substr(0, path.find_last_of(L'\\') + 1) + L"fake_keys.dll";
  }

 private:
  HMODULE library_;
  FakeKeysState* state_ = nullptr;
};

/// Names a library in the registry as the one with the class, while this lives.
class Registered {
 public:
  explicit Registered(const std::wstring& path) {
    Set(L"", path);
    Set(L"ThreadingModel", L"Both");
  }
  ~Registered() { ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, kClassKey); }
  Registered(const Registered&) = delete;
  Registered& operator=(const Registered&) = delete;

 private:
  static void Set(const std::wstring& name, const std::wstring& text) {
    const std::wstring key = std::wstring(kClassKey) + L"\\InprocServer32";
    ::RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name.c_str(), REG_SZ, text.c_str(),
                      static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
  }
};

ComPointer<_MembershipDatabase> DatabaseIn(const std::string& folder) {
  auto database = NewDatabase();
  database->put_DatabaseFolder(AutomationText(folder).Get());
  return database;
}

std::string KeysIn(const std::string& folder) {
  std::string keys;
  for (const std::string& key : Column(folder, kKeys)) keys += key + " ";
  return keys;
}

HRESULT Search(_MembershipDatabase& database, const std::string& name, bool& isFound) {
  SAFEARRAY* numbers = nullptr;
  const HRESULT result = database.FindNearestMatches(AutomationText(name).Get(), &numbers);
  long first = 0;
  if (SUCCEEDED(result)) ::SafeArrayGetLBound(numbers, 1, &first);
  ::SafeArrayDestroy(numbers);
  isFound = first == 1;
  return result;
}

bool IsFound(_MembershipDatabase& database, const std::string& name) {
  bool isFound = false;
  CheckResult("FindNearestMatches", Search(database, name, isFound), S_OK);
  return isFound;
}

/// The calls of one computation.
std::wstring Computation(const std::wstring& surnameMode, const std::wstring& surname,
                         const std::wstring& firstNameMode, const std::wstring& firstName) {
  return L"new surnameMode= mode:" + surnameMode + L" input:" + surname + L" key firstNameMode= mode:" + firstNameMode +
         L" input:" + firstName + L" key free ";
}

void CheckUse(const std::string& folder, const FakeLibrary& fake) {
  const auto database = DatabaseIn(folder);
  CheckResult("the file opens", database->OpenDatabase(), S_OK);
  CheckText("its keys become those of the class", KeysIn(folder), "22-BILL/11-SMYTH ");
  fake->calls.clear();
  CheckResult("a member can be added", AddMember(*database, "Zoë", "Müller"), S_OK);
  const std::wstring calls = fake->calls;
  Check(
      "each computation takes an object of its own, asks for its modes, and gives it back: " + windows::FromWide(calls),
      calls.find(Computation(L"11", L"M\x00FCller", L"22", L"Zo\x00EB")) != std::wstring::npos);
  std::wstring rest = calls;
  for (std::size_t end = 0; !rest.empty() && (end = rest.find(kFree)) != std::wstring::npos;) {
    Check("one object follows another", rest.starts_with(kNew) && std::min(rest.find(kNew, 1), rest.size()) > end);
    rest.erase(0, end + kFree.size());
  }
  Check("no object is left over", rest.empty());
  fake->surnameMode = 3;
  fake->firstNameMode = -4;
  CheckResult("and another one", AddMember(*database, "Ann", "Lee"), S_OK);
  CheckText("the modes are the class's own, each time", KeysIn(folder),
            "22-BILL/11-SMYTH 22-ZOË/11-MÜLLER -4-ANN/3-LEE ");
  fake->surnameMode = 11;
  fake->firstNameMode = 22;
}

void CheckFailures(const std::string& folder, const FakeLibrary& fake) {
  const auto database = DatabaseIn(folder);
  CheckResult("the file opens", database->OpenDatabase(), S_OK);
  const std::string before = KeysIn(folder);
  fake->creation = E_ACCESSDENIED;
  CheckResult("a failed creation reaches the caller", AddMember(*database, "Tom", "Ash"), E_ACCESSDENIED);
  Check("with a reason", LastDescription().starts_with("The name-key service could not make a key: "));
  std::string log =
      LoggedBy([&] { CheckResult("opening does not need it", DatabaseIn(folder)->OpenDatabase(), S_OK); });
  Check("and the log tells: " + log, log.find("Failed to bring name keys up to date: ") != std::string::npos &&
                                         log.find("The name-key service could not make a key: ") != std::string::npos);
  fake->creation = S_OK;

  const auto other = DatabaseIn(folder);
  fake->key = kOwnFailure;
  fake->reason = L"No key for \x0141.";
  CheckResult("a failed call reaches the caller", AddMember(*other, "Tom", "Ash"), kOwnFailure);
  CheckText("with its own words", LastDescription(), "No key for Ł.");
  fake->reason.clear();
  CheckResult("and without words", AddMember(*other, "Tom", "Ash"), kOwnFailure);
  Check("with ours", LastDescription().starts_with("The name-key service could not make a key: "));
  bool isFound = false;
  CheckResult("a search fails as well", Search(*other, "Ann Lee", isFound), kOwnFailure);
  fake->key = S_OK;
  other->CloseDatabase();
  CheckText("nothing was added or changed", KeysIn(folder), before);
  CheckResult("afterwards all is well", AddMember(*DatabaseIn(folder), "Tom", "Ash"), S_OK);
}

void CheckMoves(const std::string& folder) {
  const auto own = DatabaseIn(folder);
  Check("without the class members are found by the server's keys", IsFound(*own, "William Smith"));
  CheckText("which are made anew", KeysIn(folder), "WILLIAM/SMITH ");
  {
    const Registered registered(FakeLibrary::Path());
    const auto outside = DatabaseIn(folder);
    Check("with it only equal names are found", !IsFound(*outside, "William Smith"));
    Check("these are found", IsFound(*outside, "Bill Smyth"));
    CheckText("because the keys are the class's", KeysIn(folder), "22-BILL/11-SMYTH ");
  }
  Check("and back", IsFound(*DatabaseIn(folder), "William Smith"));
  CheckText("the keys are the server's again", KeysIn(folder), "WILLIAM/SMITH ");
}

void CheckMissingLibrary(const std::string& folder) {
  const Registered registered(L"C:\\no such library.dll");
  const auto database = DatabaseIn(folder);
  CheckResult("the file opens", database->OpenDatabase(), S_OK);
  const HRESULT result = AddMember(*database, "Tom", "Ash");
  Check("a registered library that is missing is an error", FAILED(result));
}

void CheckOwnClassObject(const std::string& folder, const FakeLibrary& fake) {
  DWORD registration = 0;
  const auto factory = fake.ClassObject();
  CheckResult("a program can register a class object",
              ::CoRegisterClassObject(kClass, factory.Get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &registration),
              S_OK);
  CheckResult("the file opens", DatabaseIn(folder)->OpenDatabase(), S_OK);
  CheckText("its keys are used too", KeysIn(folder), "22-BILL/11-SMYTH ");
  ::CoRevokeClassObject(registration);
}

}  // namespace

void CheckNameKeys(const std::string& folder) {
  MakeClub(folder);
  const FakeLibrary fake;
  CheckResult("a member can be added", AddMember(*DatabaseIn(folder), "Bill", "Smyth"), S_OK);
  CheckText("without the class the keys are the server's", KeysIn(folder), "WILLIAM/SMITH ");
  Check("and the class is not asked", fake->calls.empty());
  CheckMoves(folder);
  CheckOwnClassObject(folder, fake);
  CheckMissingLibrary(folder);
  const Registered registered(FakeLibrary::Path());
  CheckUse(folder, fake);
  CheckFailures(folder, fake);
}

}  // namespace tavi::service_test
