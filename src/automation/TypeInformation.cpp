#include "automation/TypeInformation.h"

#include <bit>

namespace tavi::automation {

std::wstring ModulePath() {
  HMODULE module = nullptr;
  const auto someAddress = std::bit_cast<const wchar_t*>(&ModulePath);
  constexpr DWORD kFlags = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  if (::GetModuleHandleExW(kFlags, someAddress, &module) == 0) return {};
  std::wstring path(MAX_PATH, L'\0');
  DWORD length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  while (length == path.size()) {
    path.resize(path.size() * 2);
    length = ::GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
  }
  path.resize(length);
  return path;
}

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
