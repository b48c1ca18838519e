#include "util/Diagnostics.h"

#include <fstream>
#include <string>

#include "util/NativePath.h"

namespace tavi {
namespace {

constexpr std::string_view kLogFile = "C:\\Diagnostics\\Tallyman.txt";

}  // namespace

void WriteDiagnostic(std::string_view message) noexcept {
  try {
    std::ofstream log(NativeFilePath(kLogFile), std::ios::app | std::ios::binary);
    // One write for the whole line, so that lines of several programs do not mix.
    log << std::string(message) + "\r\n";
  } catch (...) {
    return;
  }
}

}  // namespace tavi
