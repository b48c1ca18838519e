// "registration_client LIBRARY" calls the entries of the library's file as installers do, with the classes' part of the
// registry replaced by a key of this program's user. Prints each failed check and a last line with the counts; the exit
// code is 1 when one failed.
#include <bit>
#include <string>

#include "support/Checks.h"

namespace {

using namespace tavi::automation_test;  // NOLINT(google-build-using-namespace): a program of checks

constexpr const wchar_t* kPlace = L"Software\\TaviMembershipTest";
constexpr const wchar_t* kClassFile = L"CLSID\\{88FA9BA1-A3F3-47AE-A57D-5FA91276F083}\\InprocServer32";

/// A loaded copy of the library, without the help of COM.
class Library {
 public:
  explicit Library(const std::wstring& file) : module_(::LoadLibraryW(file.c_str())) {
    Check("the library can be loaded", module_ != nullptr);
  }
  ~Library() { ::FreeLibrary(module_); }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  HRESULT Register() { return Entry<HRESULT(STDAPICALLTYPE*)()>("DllRegisterServer")(); }
  HRESULT Unregister() { return Entry<HRESULT(STDAPICALLTYPE*)()>("DllUnregisterServer")(); }
  HRESULT CanUnload() { return Entry<HRESULT(STDAPICALLTYPE*)()>("DllCanUnloadNow")(); }
  HRESULT ClassObject(REFCLSID identifier, REFIID wanted, void** result) {
    return Entry<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>("DllGetClassObject")(identifier, wanted, result);
  }

 private:
  template <typename Function>
  Function Entry(const char* name) {
    return std::bit_cast<Function>(::GetProcAddress(module_, name));
  }

  HMODULE module_;
};

/// The key that stands for the classes.
HKEY OpenPlace() {
  HKEY key = nullptr;
  ::RegCreateKeyExW(HKEY_CURRENT_USER, kPlace, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key, nullptr);
  return key;
}

/// While it lives, the classes are read and written below the place.
class ReplacedClasses {
 public:
  ReplacedClasses() : key_(OpenPlace()) {
    Check("the classes can be replaced", ::RegOverridePredefKey(HKEY_CLASSES_ROOT, key_) == ERROR_SUCCESS);
  }
  ~ReplacedClasses() {
    ::RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    ::RegCloseKey(key_);
  }
  ReplacedClasses(const ReplacedClasses&) = delete;
  ReplacedClasses& operator=(const ReplacedClasses&) = delete;

 private:
  HKEY key_;
};

std::wstring TextAt(const std::wstring& key, const wchar_t* name) {
  wchar_t text[512] = {};
  DWORD size = sizeof(text) - sizeof(wchar_t);
  const std::wstring path = std::wstring(kPlace) + L"\\" + key;
  if (::RegGetValueW(HKEY_CURRENT_USER, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS) {
    return L"(none)";
  }
  return text;
}

void WriteText(const std::wstring& key, const std::wstring& text) {
  const std::wstring path = std::wstring(kPlace) + L"\\" + key;
  ::RegSetKeyValueW(HKEY_CURRENT_USER, path.c_str(), nullptr, REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

/// How many keys there are below a key of the place.
DWORD KeysBelow(const wchar_t* name) {
  HKEY key = nullptr;
  const std::wstring path = std::wstring(kPlace) + (*name == 0 ? L"" : L"\\") + name;
  if (::RegOpenKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS) return 0;
  DWORD keys = 0;
  ::RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                     nullptr);
  ::RegCloseKey(key);
  return keys;
}

DWORD EntriesLeft() {
  return KeysBelow(L"CLSID") + KeysBelow(L"TypeLib") + KeysBelow(L"Interface");
}

void CheckEntries(const std::wstring& file) {
  const std::wstring key = L"CLSID\\{88FA9BA1-A3F3-47AE-A57D-5FA91276F083}";
  const std::wstring program = L"TaviMembership.MembershipDatabase";
  Check("file", TextAt(kClassFile, nullptr) == file);
  Check("threading", TextAt(kClassFile, L"ThreadingModel") == L"Apartment");
  Check("program identifier", TextAt(key + L"\\ProgID", nullptr) == program);
  Check("the same for all versions", TextAt(key + L"\\VersionIndependentProgID", nullptr) == program);
  Check("type library", TextAt(key + L"\\TypeLib", nullptr) == L"{CC2E8982-45EA-4B2D-805C-D41DB1E09BE7}");
  Check("version", TextAt(key + L"\\Version", nullptr) == L"1.0");
  Check("class of the program identifier", TextAt(program + L"\\CLSID", nullptr) == key.substr(6));
  Check("four classes", KeysBelow(L"CLSID") == 4);
  Check("one type library", KeysBelow(L"TypeLib") == 1);
  Check("interfaces of every class and of collections", KeysBelow(L"Interface") == 5);
  const std::wstring interfaceKey = L"Interface\\{CD603914-4761-472B-BDA3-F543D0ABC6C1}";
  Check("calls between threads go by the type library",
        TextAt(interfaceKey + L"\\ProxyStubClsid32", nullptr) == L"{00020424-0000-0000-C000-000000000046}");
}

void CheckUserRegistration(Library& library, Library& second, const std::wstring& file, const std::wstring& copy) {
  const ReplacedClasses replaced;
  CheckResult("nothing to remove", library.Unregister(), S_OK);
  CheckResult("entered", library.Register(), S_OK);
  CheckEntries(file);
  CheckResult("entered again", library.Register(), S_OK);
  CheckEntries(file);
  CheckResult("entered from another place", second.Register(), S_OK);
  CheckEntries(copy);
  CheckResult("removed by the first one", library.Unregister(), S_OK);
  Check("all of it", EntriesLeft() == 0 && TextAt(L"TaviMembership.Handicaps", nullptr) == L"(none)");
  CheckResult("removed again", second.Unregister(), S_OK);
}

/// Makes a key in which no lasting key can be made.
void MakePassingKey(const std::wstring& path) {
  HKEY key = nullptr;
  ::RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                    nullptr);
  ::RegCloseKey(key);
}

void CheckRefusal(Library& library) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
  MakePassingKey(kPlace);
  {
    const ReplacedClasses replaced;
    CheckResult("a registry that cannot be written", library.Register(),
                HRESULT_FROM_WIN32(ERROR_CHILD_MUST_BE_VOLATILE));
    Check("holds nothing", EntriesLeft() == 0);
    ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
    CheckResult("one that is gone", library.Register(), HRESULT_FROM_WIN32(ERROR_KEY_DELETED));
    CheckResult("from which nothing can be removed", library.Unregister(), HRESULT_FROM_WIN32(ERROR_KEY_DELETED));
  }
  const ReplacedClasses replaced;
  MakePassingKey(std::wstring(kPlace) + L"\\TypeLib");
  Check("a type library that cannot be entered", FAILED(library.Register()));
  Check("takes the classes out again", EntriesLeft() == 0);
  Check("and their program identifiers", TextAt(L"TaviMembership.Handicaps", nullptr) == L"(none)");
}

void CheckOthersEntries(Library& library) {
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
  const ReplacedClasses replaced;
  CheckResult("entered", library.Register(), S_OK);
  // What others have written below our class goes with it, what is beside it stays.
  WriteText(std::wstring(kClassFile) + L"\\Deep\\Deeper", L"x");
  WriteText(L"CLSID\\{00000000-1111-2222-3333-444444444444}", L"another class");
  CheckResult("removed", library.Unregister(), S_OK);
  Check("but for another class", KeysBelow(L"CLSID") == 1 && EntriesLeft() == 1);
}

void CheckEntryRules(Library& library) {
  void* object = &object;
  CheckResult("another class", library.ClassObject(IID_IUnknown, IID_IClassFactory, &object),
              CLASS_E_CLASSNOTAVAILABLE);
  Check("is null", object == nullptr);
  object = &object;
  CheckResult("another interface", library.ClassObject(__uuidof(Handicaps), IID_IDispatch, &object), E_NOINTERFACE);
  Check("is null too", object == nullptr);
  object = &object;
  CheckResult("no class for collections", library.ClassObject(__uuidof(Collection), IID_IUnknown, &object),
              CLASS_E_CLASSNOTAVAILABLE);
  CheckResult("no place", library.ClassObject(__uuidof(Handicaps), IID_IClassFactory, nullptr), E_POINTER);
  CheckResult("nothing is out", library.CanUnload(), S_OK);
  ComPointer<IClassFactory> factory;
  CheckResult("a class object", library.ClassObject(__uuidof(Handicaps), IID_IClassFactory, factory.ReceiveUntyped()),
              S_OK);
  CheckResult("is out", library.CanUnload(), S_FALSE);
  ComPointer<_Handicaps> handicaps;
  CheckResult("an object without any entry",
              factory->CreateInstance(nullptr, __uuidof(_Handicaps), handicaps.ReceiveUntyped()), S_OK);
  VARIANT value{};
  DISPPARAMS none{};
  CheckResult("even by number",
              handicaps->Invoke(1, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr), S_OK);
  factory.Reset();
  handicaps.Reset();
  CheckResult("all is back", library.CanUnload(), S_OK);
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 2) return 2;
  const tavi::windows::ComApartment apartment;
  const std::wstring file = arguments[1];
  wchar_t folder[MAX_PATH] = {};
  ::GetTempPathW(MAX_PATH, folder);
  const std::wstring copy = std::wstring(folder) + L"Zo\u00EB \u0141 TaviMembership copy.dll";
  Check("the library can be copied", ::CopyFileW(file.c_str(), copy.c_str(), FALSE) != 0);
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
  {
    Library library(file);
    Library second(copy);
    CheckEntryRules(library);
    CheckUserRegistration(library, second, file, copy);
    CheckRefusal(library);
    CheckOthersEntries(library);
  }
  ::RegDeleteTreeW(HKEY_CURRENT_USER, kPlace);
  ::DeleteFileW(copy.c_str());
  return Summary();
}
