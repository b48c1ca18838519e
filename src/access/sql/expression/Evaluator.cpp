// The value of an expression, by walking its tree for each row. Conditions are walked as truth values of three kinds,
// all else as values; each kind of walk calls the other where the tree changes from one to the other. Null means that
// something is not known, so what depends on it is not known either, unless it comes out the same whatever stood in its
// place:
//
//   Null And False = False      Null Or True = True       Null = Null is Null      Null In (1, 2) is Null
//   Null And True  = Null       Null Or False = Null      Not Null is Null         2 In (1, 2, Null) = True
//
// The depth of a tree is bounded by the parser, so walks may recurse. Operands are looked at where they are (Operand),
// as copying a text costs more than comparing it.
#include "access/sql/expression/Evaluator.h"

#include <array>
#include <limits>

#include "access/file/EngineError.h"
#include "access/sql/expression/Coercion.h"
#include "access/sql/expression/Operators.h"
#include "access/sql/parse/Expression.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

Truth EvaluateTruth(const Expression& expression, const Scope& scope);

/// The value of an expression, copied only where it must be.
/// A literal is read in the tree and a column in the current row; both stay where they are while the operator runs.
class Operand {
 public:
  Operand(const Expression& expression, const Scope& scope) {
    if (expression.kind == ExpressionKind::Literal) {
      held_ = &expression.value;
    } else if (expression.kind == ExpressionKind::Column) {
      held_ = scope.ColumnReference(expression);
    }
    if (held_ == nullptr) own_ = Evaluate(expression, scope);
  }
  [[nodiscard]] const Value& Get() const { return held_ != nullptr ? *held_ : own_; }

 private:
  const Value* held_ = nullptr;
  Value own_;
};

Truth FromBool(bool truth) {
  return truth ? Truth::True : Truth::False;
}

Truth Not(Truth truth) {
  if (truth == Truth::Unknown) return truth;
  return FromBool(truth == Truth::False);
}

/// For the conditions that have their Not inside: Not In, Not Like, Not Between.
Truth NotIf(bool negated, Truth truth) {
  return negated ? Not(truth) : truth;
}

/// Raises a type conflict for values that have no order between them, such as a text and a number.
Truth Compare(Operator op, const Value& left, const Value& right) {
  if (IsNull(left) || IsNull(right)) return Truth::Unknown;
  // One comparison answers all six operators.
  const int order = CompareValues(left, right);
  switch (op) {
    case Operator::Equal:
      return FromBool(order == 0);
    case Operator::NotEqual:
      return FromBool(order != 0);
    case Operator::Less:
      return FromBool(order < 0);
    case Operator::LessOrEqual:
      return FromBool(order <= 0);
    case Operator::Greater:
      return FromBool(order > 0);
    default:
      return FromBool(order >= 0);
  }
}

Truth And(Truth left, Truth right) {
  if (left == Truth::False || right == Truth::False) return Truth::False;
  return left == Truth::True && right == Truth::True ? Truth::True : Truth::Unknown;
}

/// The same rule seen from the other side, so that Null is treated in one place.
Truth Or(Truth left, Truth right) {
  return Not(And(Not(left), Not(right)));
}

/// What the left side decides is not asked on the right: "Number <> 0 And 1 / Number > 2" must not divide by zero. Imp
/// is "not the left, or the right"; Xor and Eqv need both sides to be known.
Truth EvaluateLogical(const Expression& expression, const Scope& scope) {
  const Truth left = EvaluateTruth(*expression.arguments[0], scope);
  if (expression.op == Operator::And && left == Truth::False) return left;
  if (expression.op == Operator::Or && left == Truth::True) return left;
  const Truth right = EvaluateTruth(*expression.arguments[1], scope);
  if (expression.op == Operator::And) return And(left, right);
  if (expression.op == Operator::Or) return Or(left, right);
  if (expression.op == Operator::Imp) return Or(Not(left), right);
  if (left == Truth::Unknown || right == Truth::Unknown) return Truth::Unknown;
  return FromBool((left == right) == (expression.op == Operator::Eqv));
}

/// The bounds may stand in either order. With one of them Null the other may still say that the value is outside.
Truth EvaluateBetween(const Expression& expression, const Scope& scope) {
  const Operand tested(*expression.arguments[0], scope);
  const Operand one(*expression.arguments[1], scope);
  const Operand other(*expression.arguments[2], scope);
  const bool isSwapped = !IsNull(one.Get()) && !IsNull(other.Get()) && CompareValues(one.Get(), other.Get()) > 0;
  // Exchanged only where both are known: with a Null there is no telling which is the lower.
  const Value& low = isSwapped ? other.Get() : one.Get();
  const Value& high = isSwapped ? one.Get() : other.Get();
  return NotIf(expression.negated, And(Compare(Operator::GreaterOrEqual, tested.Get(), low),
                                       Compare(Operator::LessOrEqual, tested.Get(), high)));
}

/// One equal value decides; without one, a Null among the values leaves it open. The scope is asked first, as it may
/// have the rows of a sub-select that is the same for all rows in a table of its own.
Truth EvaluateIn(const Expression& expression, const Scope& scope) {
  const Operand tested(*expression.arguments[0], scope);
  Truth found = Truth::False;
  if (expression.subselect) {
    if (const auto known = scope.IsAmong(expression, tested.Get())) return NotIf(expression.negated, *known);
    for (const Value& value : scope.SubselectValues(expression, std::numeric_limits<std::size_t>::max())) {
      found = Or(found, Compare(Operator::Equal, tested.Get(), value));
      if (found == Truth::True) break;
    }
  }
  // The items behind the first argument, one by one until one is equal: those behind it are not evaluated.
  for (std::size_t i = 1; i < expression.arguments.size() && found != Truth::True; ++i) {
    found = Or(found, Compare(Operator::Equal, tested.Get(), Operand(*expression.arguments[i], scope).Get()));
  }
  return NotIf(expression.negated, found);
}

/// The text of a value; `holder` has it where the value is none itself.
std::string_view TextIn(const Value& value, std::string& holder) {
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  holder = TextOf(value);
  return holder;
}

Truth EvaluateLike(const Expression& expression, const Scope& scope) {
  const Operand tested(*expression.arguments[0], scope);
  const Operand pattern(*expression.arguments[1], scope);
  if (IsNull(tested.Get()) || IsNull(pattern.Get())) return Truth::Unknown;
  std::string patternHolder;
  std::string testedHolder;
  const LikePattern& taken = scope.PatternOf(expression, TextIn(pattern.Get(), patternHolder));
  const bool matches = taken.Matches(TextIn(tested.Get(), testedHolder));
  return FromBool(matches != expression.negated);
}

/// All: none may differ. Any: one must agree.
Truth EvaluateQuantified(const Expression& expression, const Scope& scope) {
  const Operand tested(*expression.arguments[0], scope);
  Truth result = FromBool(expression.all);
  for (const Value& value : scope.SubselectValues(expression, std::numeric_limits<std::size_t>::max())) {
    const Truth one = Compare(expression.op, tested.Get(), value);
    result = expression.all ? And(result, one) : Or(result, one);
  }
  return result;
}

/// Anything else than a condition is a value that is taken for one: a number that is not 0 is true.
Truth EvaluateTruth(const Expression& expression, const Scope& scope) {
  switch (expression.kind) {
    case ExpressionKind::Unary:
      if (expression.op == Operator::Not) return Not(EvaluateTruth(*expression.arguments[0], scope));
      break;
    case ExpressionKind::Binary:
      if (IsLogical(expression.op)) return EvaluateLogical(expression, scope);
      if (IsComparison(expression.op)) {
        return Compare(expression.op, Operand(*expression.arguments[0], scope).Get(),
                       Operand(*expression.arguments[1], scope).Get());
      }
      break;
    case ExpressionKind::Between:
      return EvaluateBetween(expression, scope);
    case ExpressionKind::In:
      return EvaluateIn(expression, scope);
    case ExpressionKind::Exists:
      // One row is enough to know.
      return FromBool(scope.SubselectValues(expression, 1).empty() == expression.negated);
    case ExpressionKind::IsNull:
      return FromBool(IsNull(Operand(*expression.arguments[0], scope).Get()) != expression.negated);
    case ExpressionKind::Like:
      return EvaluateLike(expression, scope);
    case ExpressionKind::Quantified:
      return EvaluateQuantified(expression, scope);
    default:
      break;
  }
  return TruthOf(Operand(expression, scope).Get());
}

Value EvaluateSubselect(const Expression& expression, const Scope& scope) {
  // Two rows are enough to see that there are too many.
  std::vector<Value> values = scope.SubselectValues(expression, 2);
  if (values.size() > 1) RaiseFailure("At most one record can be returned by this subquery.");
  return values.empty() ? Value() : std::move(values.front());
}

Value EvaluateUnary(const Expression& expression, const Scope& scope) {
  if (expression.op == Operator::Not) return ValueOf(EvaluateTruth(expression, scope));
  Value value = Evaluate(*expression.arguments[0], scope);
  return expression.op == Operator::Negate ? Negated(value) : value;
}

/// Conditions go the other way round: their truth is found out and then made a value.
Value EvaluateBinary(const Expression& expression, const Scope& scope) {
  if (IsLogical(expression.op) || IsComparison(expression.op)) return ValueOf(EvaluateTruth(expression, scope));
  return Calculate(expression.op, Operand(*expression.arguments[0], scope).Get(),
                   Operand(*expression.arguments[1], scope).Get());
}

Value EvaluateCall(const Expression& expression, const Scope& scope) {
  if (IsAggregate(expression)) return scope.AggregateValue(expression);
  const Function* function = expression.function;
  if (function == nullptr || !function->Accepts(expression.arguments.size())) {
    // Only for trees that no parser has made, which refuses such calls itself.
    throw Error(ErrorNumber::ProviderSyntax, kErrorSource,
                "Undefined function '" + expression.name + "' in expression.");
  }
  // These evaluate what they choose themselves: IIf(Number = 0, 0, 1 / Number).
  if (function->lazyCall != nullptr) return function->lazyCall(expression.arguments, scope, Evaluate);
  std::vector<Value> arguments;
  arguments.reserve(expression.arguments.size());
  for (const ExpressionPointer& argument : expression.arguments) {
    arguments.push_back(Evaluate(*argument, scope));
    // The first Null answers for the whole call; arguments behind it are not evaluated.
    if (!IsNull(arguments.back()) || function->nulls == Function::Nulls::Pass) continue;
    if (function->nulls == Function::Nulls::Propagate) return Null{};
    throw Error(ErrorNumber::ProviderTypeConflict, kErrorSource,
                "Invalid use of Null in '" + expression.name + "': give another value with Nz or IIf.");
  }
  return function->call(arguments, scope);
}

}  // namespace

const Value* Scope::ColumnReference(const Expression& /*column*/) const {
  return nullptr;
}

const LikePattern& Scope::PatternOf(const Expression& like, std::string_view text) const {
  const auto found = patterns_.find(&like);
  if (found != patterns_.end() && found->second.text == text) return found->second.pattern;
  return patterns_.insert_or_assign(&like, KeptPattern{std::string(text), LikePattern(text)}).first->second.pattern;
}

std::optional<Truth> Scope::IsAmong(const Expression& /*in*/, const Value& /*tested*/) const {
  return std::nullopt;
}

Value Evaluate(const Expression& expression, const Scope& scope) {
  switch (expression.kind) {
    case ExpressionKind::Literal:
      return expression.value;
    case ExpressionKind::Column:
      return scope.ColumnValue(expression);
    case ExpressionKind::Star:
      RaiseFailure("A '*' has no value: it stands for columns.");
    case ExpressionKind::Unary:
      return EvaluateUnary(expression, scope);
    case ExpressionKind::Binary:
      return EvaluateBinary(expression, scope);
    case ExpressionKind::Call:
      return EvaluateCall(expression, scope);
    case ExpressionKind::Subselect:
      return EvaluateSubselect(expression, scope);
    default:
      return ValueOf(EvaluateTruth(expression, scope));
  }
}

// For rows to be chosen not known is as good as false.
bool IsTrue(const Expression& expression, const Scope& scope) {
  return EvaluateTruth(expression, scope) == Truth::True;
}

}  // namespace tavi::access::sql
