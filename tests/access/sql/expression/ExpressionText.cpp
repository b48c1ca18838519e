#include "access/sql/expression/ExpressionText.h"

#include <array>
#include <cstdio>
#include <map>

#include "access/sql/expression/Evaluator.h"
#include "access/sql/support/Parsing.h"
#include "platform/values/Error.h"

namespace tavi::access::sql {
namespace {

class TestScope final : public Scope {
 public:
  [[nodiscard]] Value ColumnValue(const Expression& column) const override {
    Guid key;
    key.bytes = {0x0F, 0xC4, 0x9B, 0x7B, 0xE6, 0x56, 0x42, 0x28, 0xAE, 0xDC, 0xDF, 0x8B, 0xDF, 0x4C, 0x4A, 0x64};
    const std::map<std::string, Value> columns = {
        {"Nothing", Null{}},
        {"Whole", std::int16_t{7}},
        {"Real", 2.5},
        {"Name", std::string("Éloïse")},
        {"Born", *Date::FromIso("2001-05-03T14:30:00")},
        {"Money", Currency{123456}},
        {"Flag", true},
        {"Small", std::uint8_t{200}},
        {"Fine", Decimal{false, 0, 125, 2}},
        {"Key", key},
        {"Blob", Bytes{1, 2}},
    };
    return columns.at(column.name);
  }
  [[nodiscard]] Value AggregateValue(const Expression& call) const override {
    return std::string("aggregate ") + call.name;
  }
  [[nodiscard]] std::vector<Value> SubselectValues(const Expression& expression, std::size_t limit) const override {
    std::vector<Value> values = {1, 2, Null{}};
    if (expression.subselect->from->table == "None") values.clear();
    if (expression.subselect->from->table == "One") values = {2};
    if (values.size() > limit) values.resize(limit);
    return values;
  }
  [[nodiscard]] Date Now() const override { return *Date::FromIso("2024-02-29T18:05:09"); }
};

std::string NumberText(const Error& error) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%04X", static_cast<std::uint32_t>(error.Number()) & 0xFFFFU);
  return text.data();
}

}  // namespace

std::string ResultOf(std::string_view expression) {
  try {
    return ValueText(Evaluate(*ParseExpression(expression), TestScope()));
  } catch (const Error& error) {
    return "error " + NumberText(error);
  }
}

std::string ErrorOf(std::string_view expression) {
  try {
    Evaluate(*ParseExpression(expression), TestScope());
    return {};
  } catch (const Error& error) {
    return error.Description();
  }
}

}  // namespace tavi::access::sql
