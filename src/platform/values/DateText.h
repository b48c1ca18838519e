#pragma once

#include <optional>
#include <string_view>

#include "platform/values/Date.h"

namespace tavi {

/// What 3/5/2001 means.
enum class DateOrder {
  MonthFirst,  ///< 5 March: as in #...#, whatever the system's language
  DayFirst     ///< 3 May: as in texts that people write here
};

/// Reads a date, a time, or both: "5/3/2001", "2001-05-03", "3 May 2001", "May 3, 2001", "14:30", "2:30:05 PM",
/// "2001-05-03T14:30:00". Separators are / - . and blanks. A year of two digits lies in 1930..2029. When the month
/// cannot be one (13/5/2001) day and month change places. Nothing when the text is no date, or has no year.
std::optional<Date> ParseDateText(std::string_view text, DateOrder order);

}  // namespace tavi
