#include "util/SpecialFolders.h"

#include <exception>

#include "util/Diagnostics.h"

namespace tavi {
namespace {

constexpr std::int32_t kCreateFlag = 0x8000;

/// Asks the shell in one of its two ways; an error counts as no answer.
template <typename Question>
std::optional<std::string> Ask(Question question) {
  try {
    return question();
  } catch (const std::exception& error) {
    WriteDiagnostic("SHGetFolderPath error: " + std::string(error.what()));
    return std::nullopt;
  }
}

}  // namespace

std::string SpecialFolderPath(const ShellFolders& shell, std::int32_t& folderNumber, bool create) {
  if (create) folderNumber |= kCreateFlag;
  if (const auto path = Ask([&] { return shell.FolderPath(folderNumber); })) return *path;

  const auto located = Ask([&]() -> std::optional<std::string> {
    const std::optional<ShellFolders::Location> location = shell.FolderLocation(folderNumber);
    // The test is the wrong way round, and installed clubs' folders depend on that.
    if (!location || location->nonZeroReturn) return std::nullopt;
    return location->path;
  });
  if (located) return *located;

  if (folderNumber != kCommonDocumentsFolder) return {};
  std::int32_t personal = kPersonalFolder;
  return SpecialFolderPath(shell, personal, create);
}

}  // namespace tavi
