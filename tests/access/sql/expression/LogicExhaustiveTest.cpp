#include <gtest/gtest.h>
#include <optional>

#include "access/sql/expression/ExpressionText.h"

/// All small logical expressions, written with as few parentheses as the order of the operators allows, against a plain
/// three-valued logic.
namespace tavi::access::sql {
namespace {

using Truth = std::optional<bool>;  // nothing: Null

/// An expression's text, how tightly its outermost operator binds, and what it must give.
struct Formula {
  std::string text;
  int tightness;
  Truth value;
};

constexpr int kLeaf = 10;
constexpr int kNot = 6;

struct BinaryOperator {
  std::string_view name;
  int tightness;
  Truth (*apply)(Truth, Truth);
};

Truth Not(Truth a) {
  return a ? Truth(!*a) : a;
}
Truth And(Truth a, Truth b) {
  if ((a && !*a) || (b && !*b)) return false;
  return a && b ? Truth(true) : std::nullopt;
}
Truth Or(Truth a, Truth b) {
  if ((a && *a) || (b && *b)) return true;
  return a && b ? Truth(false) : std::nullopt;
}
Truth Xor(Truth a, Truth b) {
  return a && b ? Truth(*a != *b) : std::nullopt;
}
Truth Eqv(Truth a, Truth b) {
  return a && b ? Truth(*a == *b) : std::nullopt;
}
Truth Imp(Truth a, Truth b) {
  if (a && !*a) return true;
  if (b && *b) return true;
  return a && b ? Truth(false) : std::nullopt;
}

constexpr BinaryOperator kOperators[] = {
    {"And", 5, And}, {"Or", 4, Or}, {"Xor", 3, Xor}, {"Eqv", 2, Eqv}, {"Imp", 1, Imp}};

std::string Enclosed(const Formula& formula, bool needed) {
  return needed ? "(" + formula.text + ")" : formula.text;
}

Formula Negation(const Formula& operand) {
  return {"Not " + Enclosed(operand, operand.tightness < kNot), kNot, Not(operand.value)};
}

Formula Join(const BinaryOperator& op, const Formula& left, const Formula& right) {
  return {Enclosed(left, left.tightness < op.tightness) + " " + std::string(op.name) + " " +
              Enclosed(right, right.tightness <= op.tightness),
          op.tightness, op.apply(left.value, right.value)};
}

std::vector<Formula> OneLevelMore(const std::vector<Formula>& formulas) {
  std::vector<Formula> result = formulas;
  for (const Formula& formula : formulas) result.push_back(Negation(formula));
  for (const BinaryOperator& op : kOperators) {
    for (const Formula& left : formulas) {
      for (const Formula& right : formulas) result.push_back(Join(op, left, right));
    }
  }
  return result;
}

std::string TruthText(Truth truth) {
  return !truth ? "Null" : *truth ? "True" : "False";
}

TEST(Logic, AgreesWithAPlainTableOnAllSmallExpressions) {
  const std::vector<Formula> leaves = {
      {"Whole = 7", kLeaf, true}, {"Whole In (1, 2)", kLeaf, false}, {"Nothing > 1", kLeaf, std::nullopt}};
  for (const Formula& formula : OneLevelMore(OneLevelMore(leaves))) {
    ASSERT_EQ(ResultOf(formula.text), TruthText(formula.value)) << formula.text;
  }
}

}  // namespace
}  // namespace tavi::access::sql
