#include "host/imports/MemberFields.h"

#include <algorithm>

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

}  // namespace tavi::host
