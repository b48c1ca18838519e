#include "platform/support/ThisSystem.h"

#include <fstream>
#include <iterator>

namespace tavi::testing {

std::string DiagnosticsLog::Text() const {
  std::ifstream file(File(), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

bool DiagnosticsLog::IsThere() const {
  return std::filesystem::exists(File());
}

void DiagnosticsLog::SwitchOff() const {
  std::filesystem::remove_all(File().parent_path());
}

void DiagnosticsLog::SwitchOn() const {
  std::filesystem::create_directories(File().parent_path());
}

}  // namespace tavi::testing
