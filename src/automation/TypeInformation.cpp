#include "automation/TypeInformation.h"

#include <bit>

namespace tavi::automation {

// The file of this library, not of the program that has loaded it: the system is asked which module an address of ours
// lies in, without keeping it loaded for the question.
std::wstring ModulePath() {
  HMODULE module = nullptr;
  const auto someAddress = std::bit_cast<const wchar_t*>(&ModulePath);
  constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (::GetModuleHandleExW(kFlags, someAddress, &module) == 0) return {};
  std::wstring path(MAX_PATH, L'\0');
  DWORD length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  // A path that does not fit is cut and fills the whole room; one that just fills it is asked for once more, with no
  // harm.
  while (length == path.size()) {
    path.resize(path.size() * 2);
    length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  }
  path.resize(length);
  return path;
}

// Read from the library itself and without entering it anywhere: it works unregistered too, and never gives the library
// of another version that the registry happens to name.
windows::ComPointer<ITypeLib> LoadOwnTypeLibrary() {
  windows::ComPointer<ITypeLib> library;
  windows::Require(::LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Receive()),
                   "The type library of TaviMembership cannot be read");
  return library;
}

windows::ComPointer<ITypeInfo> TypeInformationOf(const IID& interfaceIdentifier) {
  windows::ComPointer<ITypeInfo> information;
  windows::Require(LoadOwnTypeLibrary()->GetTypeInfoOfGuid(interfaceIdentifier, information.Receive()),
                   "The type library of TaviMembership is damaged");
  return information;
}

}  // namespace tavi::automation
