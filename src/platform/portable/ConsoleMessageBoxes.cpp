#include <ostream>

#include "platform/portable/PortableServices.h"

namespace tavi {
namespace {

const char* KindOf(MessageBoxIcon icon) {
  switch (icon) {
    case MessageBoxIcon::Critical:
      return "Error";
    case MessageBoxIcon::Exclamation:
      return "Warning";
    case MessageBoxIcon::Information:
      break;
  }
  return "Note";
}

std::string Printable(const std::string& text) {
  constexpr char kDelete = 127;
  std::string result;
  for (const char character : text) {
    const bool isControl = (character >= 0 && character < ' ') || character == kDelete;
    if (!isControl || character == '\n' || character == '\t') result.push_back(character);
  }
  return result;
}

}  // namespace

void ConsoleMessageBoxes::Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const {
  const std::scoped_lock lock(mutex_);
  try {
    stream_ << KindOf(icon) << ": " << Printable(title) << "\n" << Printable(text) << std::endl;
  } catch (const std::exception&) {
    // A message that nobody can be shown is no reason to stop the work it tells of.
    stream_.clear();
  }
}

}  // namespace tavi
