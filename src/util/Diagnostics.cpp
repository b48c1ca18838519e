#include "util/Diagnostics.h"

#include <string>

#include "util/NativeFiles.h"

namespace tavi {
namespace {

constexpr std::string_view kLogFile = "C:\\Diagnostics\\Tallyman.txt";

}  // namespace

void WriteDiagnostic(std::string_view message) noexcept {
  try {
    AppendToNativeFile(kLogFile, std::string(message) + "\r\n");
  } catch (...) {
    return;
  }
}

}  // namespace tavi
