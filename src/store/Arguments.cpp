#include "store/Arguments.h"

#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

[[noreturn]] void Refuse(const std::string& what, const std::string& reason) {
  throw Error(ErrorNumber::InvalidArgument, "cDatabase", "Invalid procedure call or argument: " + what + " " + reason);
}

}  // namespace

double RequireNumber(double number, const std::string& what) {
  const std::string text = NumberText(number);
  if (!ParseNumber(text)) Refuse(what, "cannot be " + text + "; pass an ordinary number.");
  return number;
}

Date RequireDate(Date date, const std::string& what) {
  if (!date.IsInCalendar()) {
    Refuse(what, "cannot be day " + NumberText(date.days) + "; pass a date of the years 100 to 9999.");
  }
  return date;
}

void RequireLength(std::string_view text, std::size_t most, const std::string& what) {
  const std::size_t length = ToUtf16(text).size();
  if (length <= most) return;
  Refuse(what, "has " + std::to_string(length) + " characters, and at most " + std::to_string(most) +
                   " are possible; shorten it.");
}

}  // namespace tavi
