// The types of expressions and columns (declared in Plan.h). They are told from the text and the tables alone, before
// any row is read, because record sets say the types of their fields when they are opened, empty ones too. They are for
// whom a record set tells them, and for the columns of a table made by SELECT INTO; values keep the types that
// evaluation gives them.
#include <algorithm>
#include <array>

#include "access/sql/parse/Expression.h"
#include "access/sql/plan/Plan.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

using ado::DataType;

/// Whole numbers have the smallest type that the parser gave them; a null literal is announced as a text.
struct TypeOfValue {
  DataType operator()(Null) const { return DataType::WChar; }
  DataType operator()(bool) const { return DataType::Boolean; }
  DataType operator()(std::uint8_t) const { return DataType::UnsignedTinyInt; }
  DataType operator()(std::int16_t) const { return DataType::SmallInt; }
  DataType operator()(std::int32_t) const { return DataType::Integer; }
  DataType operator()(float) const { return DataType::Single; }
  DataType operator()(double) const { return DataType::Double; }
  DataType operator()(Currency) const { return DataType::Currency; }
  DataType operator()(const Decimal&) const { return DataType::Numeric; }
  DataType operator()(Date) const { return DataType::Date; }
  DataType operator()(const std::string&) const { return DataType::WChar; }
  DataType operator()(const Bytes&) const { return DataType::Binary; }
  DataType operator()(const Guid&) const { return DataType::Guid; }
};

/// How far a numeric type reaches: the result of arithmetic has the wider type. -1 for what is no number.
int Rank(DataType type) {
  constexpr std::array kOrder = {DataType::Boolean,  DataType::UnsignedTinyInt, DataType::SmallInt,
                                 DataType::Integer,  DataType::Single,          DataType::Double,
                                 DataType::Currency, DataType::Numeric,         DataType::Date};
  const auto* const found = std::find(kOrder.begin(), kOrder.end(), type);
  return found == kOrder.end() ? -1 : static_cast<int>(found - kOrder.begin());
}

/// Beside a number, what is no number (a text) gives a double, as arithmetic converts it. Truth values count as small
/// whole numbers as soon as they are added.
DataType WiderType(DataType left, DataType right) {
  if (Rank(left) < 0 || Rank(right) < 0) return Rank(left) < 0 && Rank(right) < 0 ? left : DataType::Double;
  const DataType wider = Rank(left) < Rank(right) ? right : left;
  return wider == DataType::Boolean ? DataType::SmallInt : wider;
}

/// The types of results as record sets announce them; a value may be of a wider type, such as the double of a sum of
/// whole numbers that does not fit 32 bits. Comparisons and logic are truth values.
DataType TypeOfBinary(const Expression& expression, const SelectPlan& plan) {
  switch (expression.op) {
    case Operator::Add:
    case Operator::Subtract:
    case Operator::Multiply:
      return WiderType(TypeOf(*expression.arguments[0], plan), TypeOf(*expression.arguments[1], plan));
    case Operator::Divide:
    case Operator::Power:
      return DataType::Double;
    case Operator::IntegerDivide:
    case Operator::Modulo:
      return DataType::Integer;
    case Operator::Concatenate:
      return DataType::WChar;
    default:
      return DataType::Boolean;
  }
}

/// Amounts add up to amounts, exactly; all other sums are doubles (Aggregator).
DataType TypeOfAggregate(const Expression& call, const SelectPlan& plan) {
  const std::string name = UpperCase(call.name);
  if (name == "COUNT") return DataType::Integer;
  // Min, Max, First and Last give one of the values themselves.
  const DataType argument = call.arguments.empty() ? DataType::Double : TypeOf(*call.arguments[0], plan);
  if (name == "MIN" || name == "MAX" || name == "FIRST" || name == "LAST") return argument;
  return argument == DataType::Currency && (name == "SUM" || name == "AVG") ? argument : DataType::Double;
}

/// As its row in the functions' table says. Those that pass a value on have the type of their argument.
DataType TypeOfCall(const Expression& call, const SelectPlan& plan) {
  switch (call.function->result) {
    case Function::Result::Text:
      break;
    case Function::Result::Boolean:
      return DataType::Boolean;
    case Function::Result::Byte:
      return DataType::UnsignedTinyInt;
    case Function::Result::Short:
      return DataType::SmallInt;
    case Function::Result::Long:
      return DataType::Integer;
    case Function::Result::Single:
      return DataType::Single;
    case Function::Result::Double:
      return DataType::Double;
    case Function::Result::Currency:
      return DataType::Currency;
    case Function::Result::Date:
      return DataType::Date;
    case Function::Result::Guid:
      return DataType::Guid;
    case Function::Result::OfArgument:
      return TypeOf(*call.arguments[0], plan);
    case Function::Result::OfChoice:
      // Which of the two it will be only the row tells, so that the wider one is announced.
      return WiderType(TypeOf(*call.arguments[1], plan), TypeOf(*call.arguments[2], plan));
  }
  return DataType::WChar;
}

/// Of a column of a derived table the type is the one that its select gives.
DataType TypeOfColumn(const Slot& slot, const SelectPlan& plan) {
  if (slot.kind == Slot::Kind::Item) return TypeOf(*plan.select->items[slot.column].expression, plan);
  if (slot.kind == Slot::Kind::None) return DataType::WChar;
  if (slot.depth > 0) return DataType::WChar;  // only inside sub-selects, whose columns nobody sees
  const PlannedSource& source = plan.sources[slot.source];
  return source.table ? TypeOf(source.table->Columns()[slot.column].definition)
                      : source.derived->outputs[slot.column].column.type;
}

/// A sub-select as a value gives its first column.
DataType TypeOfSubselect(const SelectPlan* subselect) {
  const bool isKnown = subselect != nullptr && !subselect->outputs.empty();
  return isKnown ? subselect->outputs.front().column.type : DataType::WChar;
}

}  // namespace

// The expression is bound. Conditions of all kinds (Between, In, Like, Exists ...) are truth values.
DataType TypeOf(const Expression& expression, const SelectPlan& plan) {
  switch (expression.kind) {
    case ExpressionKind::Literal:
      return std::visit(TypeOfValue{}, expression.value);
    case ExpressionKind::Column:
      return TypeOfColumn(plan.SlotOf(expression), plan);
    case ExpressionKind::Unary:
      return expression.op == Operator::Not ? DataType::Boolean : TypeOf(*expression.arguments[0], plan);
    case ExpressionKind::Binary:
      return TypeOfBinary(expression, plan);
    case ExpressionKind::Call:
      return IsAggregate(expression) ? TypeOfAggregate(expression, plan) : TypeOfCall(expression, plan);
    case ExpressionKind::Subselect:
      return TypeOfSubselect(plan.SubselectOf(expression));
    default:
      return DataType::Boolean;
  }
}

// Memos are announced as texts, and the numbers of complex columns as whole numbers.
DataType TypeOf(const ColumnDefinition& column) {
  switch (column.type) {
    case ColumnType::Boolean:
      return DataType::Boolean;
    case ColumnType::Byte:
      return DataType::UnsignedTinyInt;
    case ColumnType::Integer:
      return DataType::SmallInt;
    case ColumnType::Long:
    case ColumnType::Complex:
      return DataType::Integer;
    case ColumnType::Currency:
      return DataType::Currency;
    case ColumnType::Single:
      return DataType::Single;
    case ColumnType::Double:
      return DataType::Double;
    case ColumnType::Date:
      return DataType::Date;
    case ColumnType::Binary:
    case ColumnType::FixedBinary:
      return DataType::Binary;
    case ColumnType::Ole:
      return DataType::LongVarBinary;
    case ColumnType::Guid:
      return DataType::Guid;
    case ColumnType::Numeric:
      return DataType::Numeric;
    case ColumnType::Text:
    case ColumnType::Memo:
      break;
  }
  return DataType::WChar;
}

}  // namespace tavi::access::sql
