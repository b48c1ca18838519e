#include <cmath>

#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/cDatabase.h"

namespace tavi {

std::string cDatabase::SQLDate(Date SomeDate) {
  return std::to_string(ToInt32(RoundHalfEven(SomeDate.days, 0)));
}

std::string cDatabase::SQLString(std::string_view StringValue, bool EnsureNotEmpty) {
  std::string text = Trim(StringValue);
  if (text.empty() && EnsureNotEmpty) text = " ";
  // The percent sign is the escape character, so it goes first.
  text = ReplaceAll(text, "%", "%p");
  text = ReplaceAll(text, "\r", "%c");
  text = ReplaceAll(text, "\n", "%l");
  text = ReplaceAll(text, "'", "''");
  return "'" + text + "'";
}

}  // namespace tavi
