#pragma once

#include <string>
#include <string_view>

#include "platform/values/Value.h"

namespace tavi::access::sql {

/// A value by a pattern as the function Format knows them: the named ones ("Fixed", "Standard", "Percent",
/// "Scientific", "Currency" (as Standard: no sign is known), "General Number", "Yes/No", "True/False", "On/Off",
/// "General Date", "Long Date", "Medium Date", "Short Date", "Long Time", "Medium Time", "Short Time"), numbers
/// (FormatNumber.h), dates (FormatDate.h), and texts: @ a character or blank, & a character or nothing, < and > lower
/// and upper case, ! from the left. The value is not null.
std::string FormatText(const Value& value, std::string_view pattern);

}  // namespace tavi::access::sql
