#include "platform/portable/PortableServices.h"

#include <ctime>
#include <ostream>

#include "platform/values/Date.h"

namespace tavi {

Date SystemClock::Now() const {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &now);
#else
  localtime_r(&now, &local);
#endif
  constexpr int kTmYear = 1900;
  const Date day = Date::FromCivil(local.tm_year + kTmYear, local.tm_mon + 1, local.tm_mday);
  const int second = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
  return Date{day.days + second / kSecondsOfDay};
}

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
