#include "host/input/FilePatterns.h"

#include <algorithm>
#include <filesystem>

#include "host/text/PathText.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

#ifdef _WIN32
constexpr bool kTakesPatterns = true;
#else
constexpr bool kTakesPatterns = false;
#endif

/// Whether a whole name fits. After a mismatch the last star takes one character more.
bool Fits(const std::u32string& name, const std::u32string& pattern) {
  std::size_t star = std::u32string::npos;
  std::size_t behindStar = 0;
  std::size_t at = 0;
  for (std::size_t i = 0; i < name.size();) {
    if (at < pattern.size() && pattern[at] == U'*') {
      star = at++;
      behindStar = i;
    } else if (at < pattern.size() && (pattern[at] == U'?' || pattern[at] == name[i])) {
      ++at;
      ++i;
    } else if (star != std::u32string::npos) {
      at = star + 1;
      i = ++behindStar;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of(U'*', at) == std::u32string::npos;
}

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
  std::ranges::sort(files);
  return files.empty() ? std::vector<std::string>{pattern} : files;
}

std::vector<std::string> FilesNamed(const std::vector<std::string>& names) {
  if (!kTakesPatterns) return names;
  std::vector<std::string> files;
  for (const std::string& name : names) {
    const bool isPattern = name.find_first_of("*?") != std::string::npos;
    const std::vector<std::string> meant = isPattern ? FilesOfPattern(name) : std::vector<std::string>{name};
    files.insert(files.end(), meant.begin(), meant.end());
  }
  return files;
}

}  // namespace tavi::host
