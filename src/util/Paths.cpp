#include "util/Paths.h"

#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/NativeFiles.h"

namespace tavi {

std::string PathJoin(std::string_view folder, std::string_view fileName, std::string_view separator) {
  std::string path(folder);
  if (!folder.empty() && folder.back() != '\\' && folder.back() != '/') path += separator;
  path += fileName;
  return path;
}

bool FileExists(std::string_view path) noexcept {
  return IsNativeFile(path);
}

bool IsSameFile(std::string_view path, std::string_view other) {
  return EqualIgnoringCase(ReplaceAll(path, "\\", "/"), ReplaceAll(other, "\\", "/")) || IsSameNativeFile(path, other);
}

std::string ParentPath(std::string_view path) {
  const std::size_t end = path.find_last_of(":\\/");
  if (end == std::string_view::npos) {
    throw Error(ErrorNumber::InvalidArgument, "TaviMembership",
                "Invalid procedure call or argument: the path \"" + std::string(path) + "\" names no folder.");
  }
  const bool isDriveAlone = path.size() == 2 && path[1] == ':';
  return isDriveAlone ? std::string() : std::string(path.substr(0, end));
}

}  // namespace tavi
