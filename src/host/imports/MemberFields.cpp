#include "host/imports/MemberFields.h"

#include <algorithm>
#include <string_view>

#include "platform/values/Date.h"
#include "platform/values/Text.h"
#include "util/TextHelpers.h"

// The fields of a member that files know. A value has one way of writing in plans, whether it comes from a file or from
// the club, so that comparing texts tells what changes: M and F, ISO dates, y and n, texts trimmed. What a club's file
// may hold besides, such as a sex of 3 or the zero date, is written as empty.
namespace tavi::host {
namespace {

using Kind = MemberField::Kind;

constexpr std::int32_t kMale = 1;
constexpr std::int32_t kFemale = 2;

std::string SexText(std::int32_t sex) {
  return sex == kMale ? "M" : sex == kFemale ? "F" : "";
}

std::int32_t SexNumber(const std::string& text) {
  return text == "M" ? kMale : text == "F" ? kFemale : 0;
}

}  // namespace

// `town` is missing: it is no column but the last line of the address (ChangedAddress).
const std::vector<MemberField>& MemberFields() {
  static const std::vector<MemberField> fields = {{"ebu_number", "EBUNumber"},
                                                  {"title", "Title"},
                                                  {"first", "FirstName"},
                                                  {"initials", "MiddleInitials"},
                                                  {"last", "LastName"},
                                                  {"known_as", "KnownAs"},
                                                  {"sex", "Sex", Kind::Sex},
                                                  {"email", "email"},
                                                  {"phone", "HomePhone"},
                                                  {"mobile", "MobilePhone"},
                                                  {"join_date", "DateOfJoining", Kind::Day},
                                                  {"member_type", "MemberType"},
                                                  {"house", "HouseID"},
                                                  {"address", "Address"},
                                                  {"postcode", "PostCode"},
                                                  {"active", "Active", Kind::YesNo}};
  return fields;
}

const MemberField& MemberFieldNamed(std::string_view name) {
  return *std::ranges::find_if(MemberFields(), [name](const MemberField& field) { return field.name == name; });
}

std::string StoredValue(const ado::Recordset& row, const MemberField& field) {
  switch (field.kind) {
    case Kind::Sex:
      return SexText(cDatabase::GetNumericField(row, field.column));
    case Kind::Day: {
      const Date day = cDatabase::GetDateField(row, field.column, Date{});
      // The zero date, 30 December 1899, stands for none.
      return day.DayNumber() == 0 ? "" : day.DayOnly().Iso();
    }
    case Kind::YesNo:
      return cDatabase::GetBooleanField(row, field.column) ? "y" : "n";
    case Kind::Text:
      break;
  }
  // As it was given once: what escaping has added is taken away again.
  const std::string text = Trim(cDatabase::PlainText(cDatabase::GetTextField(row, field.column)));
  return std::string_view(field.name) == "ebu_number" ? WithoutLeadingZeros(text) : text;
}

std::string LiteralOf(const MemberField& field, const std::string& value) {
  switch (field.kind) {
    case Kind::Sex:
      return std::to_string(SexNumber(value));
    case Kind::Day:
      return value.empty() ? "Null" : cDatabase::SQLDate(Date::FromIso(value).value_or(Date{}));
    case Kind::YesNo:
      return value == "n" ? "0" : "-1";
    case Kind::Text:
      break;
  }
  return cDatabase::SQLString(value);
}

namespace {

// What follows is the address, of which the town is the last line when there are several. Nobody marks it, so the last
// of several lines counts as the town; where it cannot be told which line is meant, none goes, and importing the same
// file twice changes nothing the second time.
//
//   stored            the file says          becomes
//   1 High St, Acol   town Deal              1 High St, Deal
//   1 High St         town Acol              1 High St, Acol        one line is no town
//   1 High St, Acol   address 2 High St      2 High St, Acol        the town stays
//   a, b, c           town empty             a, b, c                which of them is the town, nobody can tell
constexpr const char* kLineBreak = "\r\n";

/// Without a break where either part is empty.
std::string WithLastLine(const std::string& lines, const std::string& last) {
  return lines + (lines.empty() || last.empty() ? "" : kLineBreak) + last;
}

/// Without empty lines at its end, which are no town.
std::string WithoutEmptyEnd(std::string text) {
  while (text.ends_with(kLineBreak)) text.resize(text.size() - std::string_view(kLineBreak).size());
  return text;
}

/// Where the last of several lines begins with its line break; npos when there is one line only.
std::size_t LastBreak(const std::string& text) {
  return text.rfind(kLineBreak);
}

std::string LastLine(const std::string& text) {
  const std::size_t at = LastBreak(text);
  return at == std::string::npos ? text : text.substr(at + 2);
}

/// Another address, with the town that is stored. Where the new one ends in that town already it is not put there
/// twice.
std::string WithOtherAddress(const std::string& stored, const std::string& address) {
  const std::size_t at = LastBreak(stored);
  const bool holdsTown = at != std::string::npos && LastLine(address) != stored.substr(at + 2);
  return address.empty() || stored == address || !holdsTown ? address : WithLastLine(address, stored.substr(at + 2));
}

/// Another town in place of the last of several lines, or behind the only one. An empty one takes the last of exactly
/// two lines away.
std::string WithOtherTown(const std::string& stored, const std::string& town) {
  const std::size_t at = LastBreak(stored);
  if (town.empty()) {
    const bool hasTwoLines = at != std::string::npos && stored.find(kLineBreak) == at;
    return hasTwoLines ? stored.substr(0, at) : stored;
  }
  if (LastLine(stored) == town) return stored;
  return WithLastLine(stored.substr(0, at), town);
}

}  // namespace

std::string ChangedAddress(const std::string& stored, const WrittenAddress& written) {
  const std::string lines = WithoutEmptyEnd(stored);
  const std::string changed = written.address && written.town ? WithLastLine(*written.address, *written.town)
                              : written.address               ? WithOtherAddress(lines, *written.address)
                              : written.town                  ? WithOtherTown(lines, *written.town)
                                                              : lines;
  // Empty lines at the end alone are no change that anybody asked for.
  return changed == lines ? stored : changed;
}

}  // namespace tavi::host
