#include "host/imports/MemberFields.h"

#include <algorithm>
#include <string_view>

#include "host/text/Figures.h"
#include "platform/values/Date.h"
#include "platform/values/Text.h"

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
      return day.DayNumber() == 0 ? "" : day.DayOnly().Iso();
    }
    case Kind::YesNo:
      return cDatabase::GetBooleanField(row, field.column) ? "y" : "n";
    case Kind::Text:
      break;
  }
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

constexpr const char* kLineBreak = "\r\n";

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

std::string WithOtherAddress(const std::string& stored, const std::string& address) {
  const std::size_t at = LastBreak(stored);
  const bool holdsTown = at != std::string::npos && LastLine(address) != stored.substr(at + 2);
  return address.empty() || stored == address || !holdsTown ? address : WithLastLine(address, stored.substr(at + 2));
}

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
  return changed == lines ? stored : changed;
}

}  // namespace tavi::host
