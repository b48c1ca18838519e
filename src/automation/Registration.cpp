#include "automation/Registration.h"

#include <array>
#include <string>

#include "automation/ClassFactory.h"
#include "automation/TypeInformation.h"

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

void RequireRegistry(LSTATUS status) {
  windows::Require(HRESULT_FROM_WIN32(static_cast<DWORD>(status)), "The registry cannot be written");
}

/// Sets a text value of a key below the classes, the key's own one when `name` is null.
void Enter(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  RequireRegistry(::RegSetKeyValueW(HKEY_CLASSES_ROOT, key.c_str(), name, REG_SZ, text.c_str(), size));
}

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

}  // namespace

void Register() {
  std::wstring file = ModulePath();
  const windows::ComPointer<ITypeLib> library = LoadOwnTypeLibrary();
  const LibraryAttributes attributes(*library.Get());
  for (const CreatableClass& entry : CreatableClasses()) RegisterClass(entry, file, TextOf(attributes->guid));
  windows::Require(::RegisterTypeLib(library.Get(), file.data(), nullptr),
                   "The type library of TaviMembership cannot be registered");
}

void Unregister() {
  for (const CreatableClass& entry : CreatableClasses()) {
    ::RegDeleteTreeW(HKEY_CLASSES_ROOT, ClassKey(entry).c_str());
    ::RegDeleteTreeW(HKEY_CLASSES_ROOT, (kProgramPrefix + entry.name).c_str());
  }
  const windows::ComPointer<ITypeLib> library = LoadOwnTypeLibrary();
  const LibraryAttributes attributes(*library.Get());
  ::UnRegisterTypeLib(attributes->guid, attributes->wMajorVerNum, attributes->wMinorVerNum, attributes->lcid,
                      attributes->syskind);
}

}  // namespace tavi::automation
