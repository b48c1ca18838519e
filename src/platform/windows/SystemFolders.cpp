#include "platform/windows/SystemServices.h"

#include <array>
#include <bit>
#include <memory>

#include "platform/values/WideText.h"

namespace tavi {
namespace {

// Installed programs have always passed this number for the owner window.
constexpr std::uintptr_t kOwnerWindow = 100;
// The room that each call takes for granted; the array has one more for the end of the text.
constexpr std::size_t kPathCharacters = 260;
constexpr std::size_t kLocationCharacters = 520;

struct FreeByTaskAllocator {
  void operator()(ITEMIDLIST* list) const { ::CoTaskMemFree(list); }
};

}  // namespace

// The calls stand behind functions, so that tests can answer as a shell would that fails, or that is older than this
// one.
ShellCalls ShellCalls::OfTheSystem() {
  return {::SHGetFolderPathW, ::SHGetSpecialFolderLocation, ::SHGetPathFromIDListW};
}

std::optional<std::string> SystemFolders::FolderPath(std::int32_t folderNumber) const {
  std::array<wchar_t, kPathCharacters + 1> path{};
  // No owner window, no user's token: the folder of whoever runs the program.
  const HRESULT result = shell_.getFolderPath(nullptr, folderNumber, nullptr, SHGFP_TYPE_CURRENT, path.data());
  // S_FALSE: the folder is known but is not there.
  if (result != S_OK && result != S_FALSE) return std::nullopt;
  return windows::FromWide(path.data());
}

std::optional<ShellFolders::Location> SystemFolders::FolderLocation(std::int32_t folderNumber) const {
  ITEMIDLIST* found = nullptr;
  const HRESULT result = shell_.getSpecialFolderLocation(std::bit_cast<HWND>(kOwnerWindow), folderNumber, &found);
  // Owned before the result is judged: a call that failed may have left a list all the same.
  const std::unique_ptr<ITEMIDLIST, FreeByTaskAllocator> list(found);
  if (result != S_OK) return std::nullopt;
  std::array<wchar_t, kLocationCharacters + 1> path{};
  // Nonzero is success to this call, and failure to those who ask here (see Location); both get the path.
  const bool isNonZero = shell_.getPathFromIdList(list.get(), path.data()) != 0;
  return Location{windows::FromWide(path.data()), isNonZero};
}

}  // namespace tavi
