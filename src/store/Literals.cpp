#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/Arguments.h"
#include "store/cDatabase.h"

namespace tavi {
namespace {

/// The database takes statements of 64,000 characters.
constexpr std::size_t kLongestText = 60'000;

}  // namespace

std::string cDatabase::SQLDate(Date SomeDate) {
  return std::to_string(ToInt32(RoundHalfEven(RequireDate(SomeDate, "a date").days, 0)));
}

std::string cDatabase::SQLNumber(double Number, const std::string& What) {
  return ExactNumberText(RequireNumber(Number, What));
}

std::string cDatabase::StoredText(std::string_view text) {
  // The percent sign is the escape character, so it goes first.
  return ReplaceAll(ReplaceAll(ReplaceAll(Trim(text), "%", "%p"), "\r", "%c"), "\n", "%l");
}

std::string cDatabase::PlainText(std::string_view stored) {
  // The percent sign last, so that this undoes exactly what StoredText does.
  return ReplaceAll(ReplaceAll(ReplaceAll(stored, "%l", "\n"), "%c", "\r"), "%p", "%");
}

std::string cDatabase::SQLString(std::string_view StringValue, bool EnsureNotEmpty) {
  std::string text = StoredText(StringValue);
  if (text.empty() && EnsureNotEmpty) text = " ";
  text = ReplaceAll(text, "'", "''");
  if (text.size() > kLongestText) RequireLength(text, kLongestText, "a text");
  return "'" + text + "'";
}

}  // namespace tavi
