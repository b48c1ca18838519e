#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/Value.h"

/// Expressions as the parser makes them: trees of plain data, which nothing changes afterwards, the operators and the
/// functions that stand in them. Names are as written, looked up ignoring case.
namespace tavi::access::sql {

struct Function;
struct Select;
class Scope;

/// Levels of nesting, in brackets and sub-selects as well as in the tree that the parser makes: "1+2+3" has three. Long
/// chains of And and Or are no deeper than short ones. Walks of the tree may recurse.
inline constexpr std::uint16_t kMaximumDepth = 200;

enum class ExpressionKind {
  Literal,    // value
  Column,     // qualifier (may be empty), name
  Star,       // qualifier (may be empty); only in SELECT lists and Count(*)
  Unary,      // op, arguments[0]
  Binary,     // op, arguments[0..1]
  Between,    // arguments: tested, low, high; negated
  In,         // arguments: tested, items...; or a sub-select; negated
  Exists,     // subselect; negated
  IsNull,     // arguments[0]; negated
  Like,       // arguments: tested, pattern; negated
  Call,       // name, arguments; distinct for aggregates
  Subselect,  // a scalar sub-select
  Quantified  // arguments[0] op ALL (all) or ANY (not all) of a sub-select
};

enum class Operator {
  Or,
  Xor,
  Eqv,
  Imp,
  And,
  Not,
  Equal,
  NotEqual,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Add,
  Subtract,
  Multiply,
  Divide,
  IntegerDivide,
  Modulo,
  Power,
  Concatenate,
  Negate,
  Plus
};

/// How tightly operators bind, the loosest first.
enum class Tightness : std::uint8_t {
  Imp,
  Eqv,
  Xor,
  Or,
  And,
  Not,
  Comparison,
  Concatenate,
  Add,
  Modulo,
  IntegerDivide,
  Multiply,
  Sign,
  Power,
  Operand  ///< no operator binds so tightly
};

enum class OperatorKind : std::uint8_t {
  Logical,     ///< joins two truth values
  Comparison,  ///< two values give a truth value
  Arithmetic,  ///< two values give a value
  Prefix       ///< stands before its one operand
};

struct OperatorTraits {
  Operator op;
  std::string_view symbol;  ///< as it is written, words in any case
  OperatorKind kind;
  Tightness tightness;
};

/// All operators, in the order of the enumeration. Like, In, Between and Is are kinds of expressions.
inline constexpr std::array<OperatorTraits, 22> kOperators = {{
    {Operator::Or, "Or", OperatorKind::Logical, Tightness::Or},
    {Operator::Xor, "Xor", OperatorKind::Logical, Tightness::Xor},
    {Operator::Eqv, "Eqv", OperatorKind::Logical, Tightness::Eqv},
    {Operator::Imp, "Imp", OperatorKind::Logical, Tightness::Imp},
    {Operator::And, "And", OperatorKind::Logical, Tightness::And},
    {Operator::Not, "Not", OperatorKind::Prefix, Tightness::Not},
    {Operator::Equal, "=", OperatorKind::Comparison, Tightness::Comparison},
    {Operator::NotEqual, "<>", OperatorKind::Comparison, Tightness::Comparison},
    {Operator::Less, "<", OperatorKind::Comparison, Tightness::Comparison},
    {Operator::LessOrEqual, "<=", OperatorKind::Comparison, Tightness::Comparison},
    {Operator::Greater, ">", OperatorKind::Comparison, Tightness::Comparison},
    {Operator::GreaterOrEqual, ">=", OperatorKind::Comparison, Tightness::Comparison},
    {Operator::Add, "+", OperatorKind::Arithmetic, Tightness::Add},
    {Operator::Subtract, "-", OperatorKind::Arithmetic, Tightness::Add},
    {Operator::Multiply, "*", OperatorKind::Arithmetic, Tightness::Multiply},
    {Operator::Divide, "/", OperatorKind::Arithmetic, Tightness::Multiply},
    {Operator::IntegerDivide, "\\", OperatorKind::Arithmetic, Tightness::IntegerDivide},
    {Operator::Modulo, "Mod", OperatorKind::Arithmetic, Tightness::Modulo},
    {Operator::Power, "^", OperatorKind::Arithmetic, Tightness::Power},
    {Operator::Concatenate, "&", OperatorKind::Arithmetic, Tightness::Concatenate},
    {Operator::Negate, "-", OperatorKind::Prefix, Tightness::Sign},
    {Operator::Plus, "+", OperatorKind::Prefix, Tightness::Sign},
}};

[[nodiscard]] constexpr const OperatorTraits& TraitsOf(Operator op) {
  return kOperators[static_cast<std::size_t>(op)];
}
[[nodiscard]] constexpr bool IsLogical(Operator op) {
  return TraitsOf(op).kind == OperatorKind::Logical;
}
/// True for = <> < <= > >=.
[[nodiscard]] constexpr bool IsComparison(Operator op) {
  return TraitsOf(op).kind == OperatorKind::Comparison;
}

struct Expression {
  ExpressionKind kind = ExpressionKind::Literal;
  std::size_t position = 0;  ///< byte offset in the statement's text, for errors that point at the place
  Value value;
  std::string qualifier;
  std::string name;
  Operator op = Operator::And;
  bool negated = false;
  bool distinct = false;
  bool all = false;
  std::uint16_t depth = 1;  ///< levels of the tree from here down, sub-selects included; at most kMaximumDepth
  std::vector<std::unique_ptr<Expression>> arguments;
  std::shared_ptr<Select> subselect;
  const Function* function = nullptr;  ///< Call: the built-in function, found once; none for aggregates
  /// Column, aggregate, sub-select: which of them it is in its select (with all of a union) or statement, from 1 on. By
  /// this number plans hold what they find out, so that a tree stays as it was parsed.
  std::size_t number = 0;
};
using ExpressionPointer = std::unique_ptr<Expression>;

/// A new node of the tree.
ExpressionPointer MakeExpression(ExpressionKind kind, std::size_t position);

/// Calls `visit` for the expression and everything below it, sub-selects left out.
void VisitExpression(const Expression& expression, const std::function<void(const Expression&)>& visit);
/// The operands of the chain of And, or of Or, that the expression is; of any other the expression itself.
[[nodiscard]] std::vector<const Expression*> OperandsOf(const Expression& expression, Operator chain);
/// True when the expression is a call of an aggregate function.
[[nodiscard]] bool IsAggregate(const Expression& expression);
/// True when one is part of it (sub-selects left out).
[[nodiscard]] bool HasAggregate(const Expression& expression);

/// A built-in function of expressions. Aggregates (Count, Sum, ...) are none of them.
struct Function {
  /// What a Null among the arguments means.
  enum class Nulls : std::uint8_t {
    Propagate,  ///< the result is Null, the function is not called
    Refuse,     ///< ProviderTypeConflict ("Invalid use of Null."): the conversions CStr, CInt, ...
    Pass        ///< the function knows
  };
  /// The type of what it gives, as it is known before it is called.
  enum class Result : std::uint8_t {
    Text,
    Boolean,
    Byte,
    Short,
    Long,
    Single,
    Double,
    Currency,
    Date,
    Guid,
    OfArgument,  ///< that of the first argument
    OfChoice     ///< the wider one of the second and the third
  };
  /// The arguments' values; the scope for the time.
  using Call = Value (*)(std::span<const Value> arguments, const Scope& scope);
  /// The value of an argument.
  using Evaluation = Value (*)(const Expression& argument, const Scope& scope);
  /// The arguments themselves, for functions that evaluate only some of them (IIf, Switch, Choose).
  using LazyCall = Value (*)(std::span<const ExpressionPointer> arguments, const Scope& scope, Evaluation evaluate);

  std::string_view name;  ///< upper case
  std::uint8_t minimumArguments = 0;
  std::uint8_t maximumArguments = 0;  ///< kAnyNumber: no limit
  Nulls nulls = Nulls::Propagate;
  Result result = Result::Text;
  Call call = nullptr;
  LazyCall lazyCall = nullptr;  ///< instead of `call`

  static constexpr std::uint8_t kAnyNumber = 255;
  [[nodiscard]] bool Accepts(std::size_t count) const {
    return count >= minimumArguments && (count <= maximumArguments || maximumArguments == kAnyNumber);
  }
};

/// Finds the function of a name in any case, with or without a $ at its end (Left$); null when there is none. What the
/// parser knows of functions: who parses brings it along.
using FunctionFinder = const Function* (*)(std::string_view name);

}  // namespace tavi::access::sql
