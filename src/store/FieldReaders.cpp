#include <exception>

#include "platform/values/Convert.h"
#include "platform/values/Text.h"
#include "store/cDatabase.h"

namespace tavi {
namespace {

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
