#include "host/input/FilePatterns.h"

#include <algorithm>
#include <filesystem>

#include "host/text/PathText.h"
#include "platform/values/Text.h"
#include "platform/values/Wildcards.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr bool kTakesPatterns = true;
#else
// The shell has done it, and a name may really hold a star.
constexpr bool kTakesPatterns = false;
#endif

/// Letter by letter, so that `?` is one character also where that takes several bytes.
bool Fits(std::u32string_view name, std::u32string_view pattern) {
  return FitsPattern(
      name, pattern, [](char32_t piece) { return piece == U'*'; },
      [](char32_t piece, char32_t character) { return piece == U'?' || piece == character; });
}

/// Capitals do not tell names of files apart on Windows.
std::u32string Folded(const std::string& name) {
  return ToCodePoints(LowerCase(name));
}

}  // namespace

std::vector<std::string> FilesOfPattern(const std::string& pattern) {
  const PathParts parts = SplitPath(pattern);
  const std::u32string wanted = Folded(parts.name);
  std::vector<std::string> files;
  std::error_code failure;
  for (const std::string& name : NamesIn(parts.folder.empty() ? "." : parts.folder, failure)) {
    const std::string file = JoinPath(parts.folder, name);
    if (!fs::is_directory(PathOf(file), failure) && Fits(Folded(name), wanted)) files.push_back(file);
  }
  // The folder tells its names in any order; files are scored in that of their names.
  std::ranges::sort(files);
  // So that the message about a missing file shows what was typed.
  return files.empty() ? std::vector<std::string>{pattern} : files;
}

std::vector<std::string> FilesNamed(const std::vector<std::string>& names) {
  // What follows is compiled on every system, and FilesOfPattern is tested there.
  if (!kTakesPatterns) return names;
  std::vector<std::string> files;
  for (const std::string& name : names) {
    // A plain name is passed on, there or not: its reader says what is wrong with it.
    const bool isPattern = name.find_first_of("*?") != std::string::npos;
    const std::vector<std::string> meant = isPattern ? FilesOfPattern(name) : std::vector<std::string>{name};
    files.insert(files.end(), meant.begin(), meant.end());
  }
  return files;
}

}  // namespace tavi::host
