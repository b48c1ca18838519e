#include "automation/Registration.h"

#include <array>
#include <cstdint>
#include <string>

#include "automation/ClassFactory.h"
#include "automation/TypeInformation.h"

// What regsvr32 asks for. Entering writes, for each class, its identifier with this file and its apartment, and its
// name with the identifier; then the system enters the type library:
//
//   CLSID\{class}                       description; below it InprocServer32, ProgID, TypeLib, Version, ...
//   TaviMembership.MembershipDatabase   description; below it CLSID
//
// The 32-bit and the 64-bit library may be registered side by side. Class identifiers lie in a part of the registry of
// their kind of program; names and the type library are common to both, so that taking one kind out must leave them as
// long as the other is there. An entry that is there already is written again: the file may have been moved.
namespace tavi::automation {
namespace {

const std::wstring kProgramPrefix = L"TaviMembership.";

std::wstring TextOf(REFGUID identifier) {
  std::array<wchar_t, 40> text{};
  ::StringFromGUID2(identifier, text.data(), static_cast<int>(text.size()));
  return text.data();
}

std::wstring ClassKey(const CreatableClass& entry) {
  return L"CLSID\\" + TextOf(entry.identifier);
}

/// Most often the user is no administrator; the system's text says so.
void RequireRegistry(LSTATUS status) {
  windows::Require(HRESULT_FROM_WIN32(static_cast<DWORD>(status)), "The registry cannot be written");
}

/// Sets a text value of a key below the classes, the key's own one when `name` is null.
void Enter(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  RequireRegistry(::RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, text.c_str(), size));
}

/// All entries of one class. Apartment: an object is used on the thread that made it, and others get a proxy.
void RegisterClass(const CreatableClass& entry, const std::wstring& file, const std::wstring& typeLibrary) {
  const std::wstring key = ClassKey(entry);
  const std::wstring program = kProgramPrefix + entry.name;
  Enter(key, nullptr, entry.description);
  Enter(key + L"\\InprocServer32", nullptr, file);
  Enter(key + L"\\InprocServer32", L"ThreadingModel", L"Apartment");
  Enter(key + L"\\ProgID", nullptr, program);
  Enter(key + L"\\Programmable", nullptr, L"");
  Enter(key + L"\\TypeLib", nullptr, typeLibrary);
  Enter(key + L"\\Version", nullptr, L"1.0");
  Enter(key + L"\\VersionIndependentProgID", nullptr, program);
  Enter(program, nullptr, entry.description);
  Enter(program + L"\\CLSID", nullptr, TextOf(entry.identifier));
}

/// The attributes of a type library.
class LibraryAttributes {
 public:
  explicit LibraryAttributes(ITypeLib& library) : library_(library) {
    windows::Require(library.GetLibAttr(&attributes_), "The type library of TaviMembership is damaged");
  }
  ~LibraryAttributes() { library_.ReleaseTLibAttr(attributes_); }
  LibraryAttributes(const LibraryAttributes&) = delete;
  LibraryAttributes& operator=(const LibraryAttributes&) = delete;
  const TLIBATTR* operator->() const { return attributes_; }

 private:
  ITypeLib& library_;
  TLIBATTR* attributes_ = nullptr;
};

/// Deletes a key below the classes with all that it holds.
/// What is not there counts as removed, so that unregistering twice, or after half a registration, succeeds.
LSTATUS Remove(const std::wstring& key) {
  const LSTATUS status = ::RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status;
}

/// The part of the registry that programs of the other kind see, where that is another one.
constexpr REGSAM kOtherKind = sizeof(void*) == sizeof(std::uint64_t) ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

/// `kind` may ask for the part of the other kind of programs.
bool IsThere(const std::wstring& key, REGSAM kind = 0) {
  HKEY opened = nullptr;
  if (::RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ | kind, &opened) != ERROR_SUCCESS) return false;
  ::RegCloseKey(opened);
  return true;
}

/// Where the system has entered an interface of the type library: how other apartments find its proxy.
std::wstring InterfaceKey(ITypeLib& library, UINT index) {
  windows::ComPointer<ITypeInfo> information;
  TYPEATTR* attributes = nullptr;
  windows::Require(library.GetTypeInfo(index, information.Receive()), "The type library of TaviMembership is damaged");
  windows::Require(information->GetTypeAttr(&attributes), "The type library of TaviMembership is damaged");
  const std::wstring key = L"Interface\\" + TextOf(attributes->guid);
  information->ReleaseTypeAttr(attributes);
  return key;
}

/// Removes the entries of the type library of this kind of program and of its interfaces. The system leaves the latter
/// where the former was never entered, and does not tell "not there" from "refused".
LSTATUS RemoveTypeLibrary() {
  const windows::ComPointer<ITypeLib> library = LoadOwnTypeLibrary();
  const LibraryAttributes attributes(*library.Get());
  ::UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum, attributes->lcid,
                      attributes->syskind);
  const std::wstring kind = attributes->syskind == SYS_WIN64 ? L"\\1.0\\0\\win64" : L"\\1.0\\0\\win32";
  // So it is asked afterwards whether the entry is gone.
  LSTATUS result = IsThere(L"TypeLib\\" + TextOf(attributes->guid) + kind) ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
  for (UINT index = 0; index < library->GetTypeInfoCount(); ++index) {
    TYPEKIND typeKind = TKIND_MAX;
    library->GetTypeInfoType(index, &typeKind);
    // Only these are entered; classes and structures of the library are not.
    if (typeKind != TKIND_DISPATCH) continue;
    const LSTATUS status = Remove(InterfaceKey(*library.Get(), index));
    if (result == ERROR_SUCCESS) result = status;
  }
  return result;
}

void RegisterAll() {
  std::wstring file = ModulePath();
  const windows::ComPointer<ITypeLib> library = LoadOwnTypeLibrary();
  const LibraryAttributes attributes(*library.Get());
  for (const CreatableClass& entry : CreatableClasses()) RegisterClass(entry, file, TextOf(attributes->guid));
  windows::Require(::RegisterTypeLib(library.Get(), file.data(), nullptr),
                   "The type library of TaviMembership cannot be registered");
}

/// Removes everything that can be removed; the first thing that went wrong.
/// It goes on after a failure: what can be taken out is better gone, and the first failure is told at the end.
LSTATUS RemoveAll() {
  LSTATUS result = ERROR_SUCCESS;
  const auto note = [&result](LSTATUS status) {
    if (result == ERROR_SUCCESS) result = status;
  };
  for (const CreatableClass& entry : CreatableClasses()) {
    note(Remove(ClassKey(entry)));
    // Names are common to both kinds of programs.
    if (!IsThere(ClassKey(entry), kOtherKind)) note(Remove(kProgramPrefix + entry.name));
  }
  note(RemoveTypeLibrary());
  return result;
}

}  // namespace

void Register() {
  try {
    // Half a registration would let programs create a class whose arguments they cannot pass.
    RegisterAll();
  } catch (...) {
    RemoveAll();
    throw;
  }
}

void Unregister() {
  RequireRegistry(RemoveAll());
}

}  // namespace tavi::automation
