// Apart from the other paths: programs that do not call it are spared the standard library's file system.
#include "util/NativePath.h"

namespace tavi {

std::filesystem::path NativeFilePath(std::string_view path) {
  const std::string native = NativePath(path);
  return std::filesystem::path(std::u8string(native.begin(), native.end()));
}

}  // namespace tavi
