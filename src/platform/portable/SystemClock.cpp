// A file of its own: the server for Windows asks for the time, but has no use for streams, which would make it a
// quarter larger.
#include <ctime>

#include "platform/portable/PortableServices.h"
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
  return Date::AtSecond(day.DayNumber(), second);
}

}  // namespace tavi
