#include <ostream>

#include "platform/portable/PortableServices.h"

namespace tavi {
namespace {

/// What a box shows as its icon, as a word before the title.
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

/// The text without what could steer a terminal: it may quote a name or a file's error, and those come from anybody.
/// Letters beyond ASCII stay; char is signed or not, so that both ends of the control range are asked for.
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
  // One message at a time: two threads that bring two files up to date must not mix their lines.
  const std::scoped_lock lock(mutex_);
  try {
    stream_ << KindOf(icon) << ": " << Printable(title) << "\n" << Printable(text) << std::endl;
  } catch (const std::exception&) {
    // A message that nobody can be shown is no reason to stop the work it tells of.
    // Without this, every later message would be dropped for one that failed.
    stream_.clear();
  }
}

}  // namespace tavi
