#include "util/Diagnostics.h"

#include <string>

#include "util/NativeFiles.h"

namespace tavi {
namespace {

/// On other systems a path below the drives' root: ~/.local/share/tavimembership/c/Diagnostics/Tallyman.txt.
constexpr std::string_view kLogFile = "C:\\Diagnostics\\Tallyman.txt";

}  // namespace

void WriteDiagnostic(std::string_view message) noexcept {
  try {
    // In one piece with its line end, so that lines of several programs do not mix.
    AppendToNativeFile(kLogFile, std::string(message) + "\r\n");
  } catch (...) {
    return;
  }
}

}  // namespace tavi
