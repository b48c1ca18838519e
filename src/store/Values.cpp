// Values as SQL literals and out of record sets. A text is stored in one line: carriage return and line feed as %c and
// %l, and the percent sign itself as %p, so that "50%\r\nnet" is kept as "50%p%c%lnet". What SQLString has written
// GetTextField reads back as it was, and a search compares with what is written in the same way.
#include "store/Values.h"

#include <exception>

#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/cDatabase.h"

namespace tavi {
namespace {

/// The database takes statements of 64,000 characters.
constexpr std::size_t kLongestText = 60'000;

[[noreturn]] void Refuse(const std::string& what, const std::string& reason) {
  throw Error(ErrorNumber::InvalidArgument, kStoreSource, "Invalid procedure call or argument: " + what + " " + reason);
}

/// Reads a field with `convert`; null gives `defaultValue`, any failure the zero value of the type.
template <typename Result, typename Conversion>
Result Read(const ado::Recordset& rs, std::string_view fieldName, const Result& defaultValue, Conversion convert) {
  try {
    const Value value = rs.Get(fieldName);
    return IsNull(value) ? defaultValue : convert(value);
  } catch (const std::exception&) {
    return Result{};
  }
}

}  // namespace

// Asked of the text and not of the number, because it is the text that the database has to read back.
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
  // A column counts units of 16 bits: a character beyond them takes two.
  const std::size_t length = ToUtf16(text).size();
  if (length <= most) return;
  Refuse(what, "has " + std::to_string(length) + " characters, and at most " + std::to_string(most) +
                   " are possible; shorten it.");
}

// A plain number, which no setting of a machine reads in another way.
std::string cDatabase::SQLDate(Date SomeDate) {
  return std::to_string(ToInt32(RoundHalfEven(RequireDate(SomeDate, "a date").days, 0)));
}

// With as many digits as it takes: what is stored reads back as the same number.
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

// The readers hide all errors, as programs rely on files that lack a column of a later version, or have it with another
// type. Where a wrong value would do harm, ReadField reads instead.
std::string cDatabase::GetTextField(const ado::Recordset& rs, std::string_view FieldName, bool Trimmed,
                                    const std::string& DefaultIfEmpty) {
  return Read(rs, FieldName, DefaultIfEmpty, [Trimmed](const Value& value) {
    const std::string text = PlainText(ToText(value));
    return Trimmed ? Trim(text) : text;
  });
}

bool cDatabase::GetBooleanField(const ado::Recordset& rs, std::string_view FieldName, bool Default) {
  return Read(rs, FieldName, Default, ToBoolean);
}

std::int32_t cDatabase::GetNumericField(const ado::Recordset& rs, std::string_view FieldName, std::int32_t Default) {
  return Read(rs, FieldName, Default, ToInt32);
}

double cDatabase::GetNonIntegerField(const ado::Recordset& rs, std::string_view FieldName, double Default) {
  return Read(rs, FieldName, Default, ToDouble);
}

Date cDatabase::GetDateField(const ado::Recordset& rs, std::string_view FieldName, Date DefaultDate) {
  return Read(rs, FieldName, DefaultDate.DayOnly(), ToDate);
}

}  // namespace tavi
