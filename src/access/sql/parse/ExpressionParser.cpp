// Expressions, by precedence climbing: an operand, then operators as long as they bind tightly enough; the operand on
// the right of each is read by the same rule with a tighter bound. So one function serves all levels, and how tightly
// an operator binds stands in one table (kOperators). From the loosest to the tightest:
//
//   Imp, Eqv, Xor, Or, And, Not,  = <> < <= > >= Like In Between Is,  &,  + -,  Mod,  \,  * /,  - + as signs,  ^
//
// For instance "A Or B And Not C = 1 + 2 * 3" is A Or (B And (Not (C = (1 + (2 * 3))))). Like, In, Between and Is stand
// behind what they test and are read where a comparison may come next; "Not In" and the like begin with Not.
//
// Nodes are made with their depth, which is bounded (TokenStream::Above), and nesting is bounded while reading
// (TokenStream::Level): neither this program nor a later walk of the tree can exhaust the stack.
#include <algorithm>
#include <limits>
#include <optional>

#include "access/sql/parse/Expression.h"
#include "access/sql/parse/Parser.h"

namespace tavi::access::sql {
namespace {

/// The operator between two operands that a token is.
/// Null for all other tokens. A word between brackets is a name and never an operator.
const OperatorTraits* FindOperator(const Token& token) {
  for (const OperatorTraits& known : kOperators) {
    if (known.kind == OperatorKind::Prefix) continue;
    if (token.IsWord(known.symbol) || token.IsSymbol(known.symbol)) return &known;
  }
  return nullptr;
}

/// What an operand on the right of an operator may consist of, so that equal ones group from the left.
Tightness TighterThan(Tightness tightness) {
  return static_cast<Tightness>(static_cast<int>(tightness) + 1);
}

/// Sub-selects are told from other brackets by their first word.
bool IsSelect(const TokenStream& stream, std::size_t ahead) {
  return stream.Peek(ahead).IsWord("SELECT");
}

class ExpressionReader {
 public:
  explicit ExpressionReader(TokenStream& stream) : stream_(stream) {}

  /// Reads operands and the operators between them that bind at least as tightly as `loosest`.
  ExpressionPointer ReadBinary(Tightness loosest) {
    const TokenStream::Level level(stream_);
    ExpressionPointer left = ReadPrefix();
    for (;;) {
      if (loosest <= Tightness::Comparison && BeginsPredicate()) {
        left = ReadPredicate(std::move(left));
        continue;
      }
      const OperatorTraits* op = FindOperator(stream_.Peek());
      if (op == nullptr || op->tightness < loosest) return left;
      const std::size_t position = stream_.Take().position;
      if (op->op == Operator::And || op->op == Operator::Or) {
        left = ReadChain(std::move(left), *op, position);
      } else if (op->tightness == Tightness::Comparison && BeginsQuantifier()) {
        left = ReadQuantified(std::move(left), op->op, position);
      } else {
        left = Binary(op->op, position, std::move(left), ReadBinary(TighterThan(op->tightness)));
      }
    }
  }

 private:
  /// Operands joined by And, or by Or, the first of which and the first operator are read already.
  ExpressionPointer ReadChain(ExpressionPointer first, const OperatorTraits& op, std::size_t position) {
    std::vector<ExpressionPointer> operands;
    operands.push_back(std::move(first));
    do operands.push_back(ReadBinary(TighterThan(op.tightness)));
    while (stream_.TakeWord(op.symbol));
    return Balanced(op.op, position, operands, 0, operands.size());
  }

  /// The operands from `from` up to `to` as a tree of as little depth as can be, in their order: of a thousand
  /// conditions ten levels instead of a thousand.
  ExpressionPointer Balanced(Operator op, std::size_t position, std::vector<ExpressionPointer>& operands,
                             std::size_t from, std::size_t to) {
    if (to - from == 1) return std::move(operands[from]);
    const std::size_t middle = from + (to - from + 1) / 2;
    ExpressionPointer left = Balanced(op, position, operands, from, middle);
    return Binary(op, position, std::move(left), Balanced(op, position, operands, middle, to));
  }

  /// The place of a node is that of its operator.
  ExpressionPointer Binary(Operator op, std::size_t position, ExpressionPointer left, ExpressionPointer right) {
    ExpressionPointer node = MakeExpression(ExpressionKind::Binary, position);
    node->op = op;
    AddArgument(*node, std::move(left));
    AddArgument(*node, std::move(right));
    return node;
  }

  /// Keeps the depth of the node, and refuses one that becomes too deep.
  void AddArgument(Expression& node, ExpressionPointer argument) {
    node.depth = std::max(node.depth, stream_.Above(argument->depth));
    node.arguments.push_back(std::move(argument));
  }

  /// Not takes a whole comparison, a sign only a power: -2 ^ 2 is -4. A sign before a number that is written out
  /// becomes part of the number.
  ExpressionPointer ReadPrefix() {
    const std::size_t position = stream_.Peek().position;
    if (stream_.TakeWord("NOT")) return Unary(Operator::Not, position, ReadBinary(Tightness::Comparison));
    if (stream_.TakeSymbol("+")) return Unary(Operator::Plus, position, ReadBinary(Tightness::Power));
    if (!stream_.TakeSymbol("-")) return ReadPrimary();
    ExpressionPointer operand = ReadBinary(Tightness::Power);
    if (!NegateNumber(*operand)) return Unary(Operator::Negate, position, std::move(operand));
    operand->position = position;
    return operand;
  }

  /// Makes a number that is written in the statement the negative one; false for every other expression. &H80000000 is
  /// the one whole number without an opposite of its type.
  static bool NegateNumber(Expression& operand) {
    if (operand.kind != ExpressionKind::Literal) return false;
    if (const auto* whole = std::get_if<std::int32_t>(&operand.value)) {
      const bool hasOpposite = *whole != std::numeric_limits<std::int32_t>::min();
      operand.value = hasOpposite ? Value(-*whole) : Value(-double{std::numeric_limits<std::int32_t>::min()});
      return true;
    }
    auto* number = std::get_if<double>(&operand.value);
    if (number != nullptr) *number = -*number;
    return number != nullptr;
  }

  ExpressionPointer Unary(Operator op, std::size_t position, ExpressionPointer operand) {
    ExpressionPointer node = MakeExpression(ExpressionKind::Unary, position);
    node->op = op;
    AddArgument(*node, std::move(operand));
    return node;
  }

  /// True before Like, In, Between and Is, with or without Not.
  [[nodiscard]] bool BeginsPredicate() const {
    const std::size_t ahead = stream_.Peek().IsWord("NOT") ? 1 : 0;
    const Token& word = stream_.Peek(ahead);
    return word.IsWord("LIKE") || word.IsWord("ALIKE") || word.IsWord("IN") || word.IsWord("BETWEEN") ||
           (ahead == 0 && word.IsWord("IS"));
  }

  /// The bounds of Between are read tighter than And, which stands between them.
  ExpressionPointer ReadPredicate(ExpressionPointer tested) {
    const std::size_t position = stream_.Peek().position;
    const bool negated = stream_.TakeWord("NOT");
    const Token& word = stream_.Take();
    ExpressionPointer node = MakeExpression(ExpressionKind::Like, position);
    node->negated = negated;
    AddArgument(*node, std::move(tested));
    if (word.IsWord("IN")) {
      node->kind = ExpressionKind::In;
      ReadItems(*node);
    } else if (word.IsWord("BETWEEN")) {
      node->kind = ExpressionKind::Between;
      AddArgument(*node, ReadBinary(Tightness::Concatenate));
      stream_.ExpectWord("AND");
      AddArgument(*node, ReadBinary(Tightness::Concatenate));
    } else if (word.IsWord("IS")) {
      node->kind = ExpressionKind::IsNull;
      node->negated = stream_.TakeWord("NOT");
      stream_.ExpectWord("NULL");
    } else {
      AddArgument(*node, ReadBinary(Tightness::Concatenate));
    }
    return node;
  }

  /// The list or sub-select of In.
  void ReadItems(Expression& node) {
    stream_.ExpectSymbol("(");
    if (IsSelect(stream_, 0)) {
      SetSubselect(node);
    } else {
      do AddArgument(node, ReadExpression(stream_));
      while (stream_.TakeSymbol(","));
    }
    stream_.ExpectSymbol(")");
  }

  /// The sub-select has a number in the select around it; its own columns are counted from 1 again.
  void SetSubselect(Expression& node) {
    node.number = stream_.NextNumber();
    node.subselect = ReadSelect(stream_);
    node.depth = std::max(node.depth, stream_.Above(node.subselect->depth));
  }

  [[nodiscard]] bool BeginsQuantifier() const {
    const Token& word = stream_.Peek();
    return (word.IsWord("ALL") || word.IsWord("ANY") || word.IsWord("SOME")) && stream_.Peek(1).IsSymbol("(");
  }

  /// SOME is another word for ANY.
  ExpressionPointer ReadQuantified(ExpressionPointer left, Operator op, std::size_t position) {
    ExpressionPointer node = MakeExpression(ExpressionKind::Quantified, position);
    node->op = op;
    node->all = stream_.Take().IsWord("ALL");
    AddArgument(*node, std::move(left));
    stream_.ExpectSymbol("(");
    SetSubselect(*node);
    stream_.ExpectSymbol(")");
    return node;
  }

  /// The order matters: a name with a bracket behind it is a call, and the words for constants are tried before
  /// columns. What is none of these is a column, so that its error says all that could have stood here.
  ExpressionPointer ReadPrimary() {
    const Token& token = stream_.Peek();
    if (token.kind == TokenKind::Literal) {
      ExpressionPointer literal = MakeExpression(ExpressionKind::Literal, token.position);
      literal->value = stream_.Take().value;
      return literal;
    }
    if (token.IsSymbol("(")) return ReadParentheses();
    if (token.IsWord("EXISTS") && stream_.Peek(1).IsSymbol("(") && IsSelect(stream_, 2)) return ReadExists();
    if (token.kind == TokenKind::Name && stream_.Peek(1).IsSymbol("(") && IsCallable(token)) return ReadCall();
    if (ExpressionPointer constant = ReadConstant()) return constant;
    return ReadColumn(stream_);
  }

  /// Brackets leave no trace but the shape of the tree.
  ExpressionPointer ReadParentheses() {
    const std::size_t position = stream_.Take().position;
    ExpressionPointer inner;
    if (IsSelect(stream_, 0)) {
      inner = MakeExpression(ExpressionKind::Subselect, position);
      SetSubselect(*inner);
    } else {
      inner = ReadExpression(stream_);
    }
    stream_.ExpectSymbol(")");
    return inner;
  }

  /// The select behind it tells it from a column of this name.
  ExpressionPointer ReadExists() {
    ExpressionPointer node = MakeExpression(ExpressionKind::Exists, stream_.Take().position);
    stream_.ExpectSymbol("(");
    SetSubselect(*node);
    stream_.ExpectSymbol(")");
    return node;
  }

  /// Left and Right join tables, Asc orders, and all three are functions.
  static bool IsCallable(const Token& word) {
    return !IsReserved(word) || word.IsWord("LEFT") || word.IsWord("RIGHT") || word.IsWord("ASC");
  }

  ExpressionPointer ReadCall() {
    ExpressionPointer call = MakeExpression(ExpressionKind::Call, stream_.Peek().position);
    call->name = stream_.Take().text;
    stream_.ExpectSymbol("(");
    // Count(*): a star is no expression, so it is taken here alone.
    if (stream_.Peek().IsSymbol("*") && stream_.Peek(1).IsSymbol(")")) {
      call->arguments.push_back(MakeExpression(ExpressionKind::Star, stream_.Take().position));
    } else if (!stream_.Peek().IsSymbol(")")) {
      call->distinct = stream_.TakeWord("DISTINCT");
      do AddArgument(*call, ReadExpression(stream_));
      while (stream_.TakeSymbol(","));
    }
    stream_.ExpectSymbol(")");
    CheckCall(*call);
    return call;
  }

  /// Aggregates are found by the plan and have numbers; all others are looked up once, here, and called through what
  /// was found.
  void CheckCall(Expression& call) {
    const bool isAggregate = IsAggregate(call);
    if (isAggregate) {
      call.number = stream_.NextNumber();
    } else {
      call.function = stream_.FindFunction(call.name);
    }
    if (!isAggregate && call.function == nullptr) {
      stream_.Fail(call.position, "Undefined function '" + call.name + "' in expression");
    }
    const std::size_t count = call.arguments.size();
    const bool isCountable = isAggregate ? count == 1 : call.function->Accepts(count);
    const bool hasStar = count == 1 && call.arguments[0]->kind == ExpressionKind::Star;
    if (!isCountable || (hasStar && !IsCount(call))) {
      stream_.Fail(call.position, "Wrong number of arguments used with function '" + call.name + "' in expression");
    }
    if (call.distinct && !isAggregate) stream_.Fail(call.position, "DISTINCT has no meaning in '" + call.name + "'");
  }

  static bool IsCount(const Expression& call) {
    Token name{TokenKind::Name, 0, 0, call.name, {}};
    return name.IsWord("COUNT");
  }

  /// Null, and the words for truth values; as a table's name in front of a point they are none.
  ExpressionPointer ReadConstant() {
    const Token& word = stream_.Peek();
    if (word.kind != TokenKind::Name || stream_.Peek(1).IsSymbol(".") || stream_.Peek(1).IsSymbol("!")) return nullptr;
    std::optional<Value> value;
    if (word.IsWord("NULL")) value = Null{};
    if (word.IsWord("TRUE") || word.IsWord("YES") || word.IsWord("ON")) value = true;
    if (word.IsWord("FALSE") || word.IsWord("NO") || word.IsWord("OFF")) value = false;
    if (!value) return nullptr;
    ExpressionPointer literal = MakeExpression(ExpressionKind::Literal, stream_.Take().position);
    literal->value = *value;
    return literal;
  }

  TokenStream& stream_;
};

}  // namespace

// Behind the point every word is a name, as nothing else can stand there.
ExpressionPointer ReadColumn(TokenStream& stream) {
  ExpressionPointer column = MakeExpression(ExpressionKind::Column, stream.Peek().position);
  column->number = stream.NextNumber();
  column->name = stream.ExpectName("a value, a column name or a function");
  if (stream.TakeSymbol(".") || stream.TakeSymbol("!")) {
    column->qualifier = std::move(column->name);
    column->name = stream.ExpectAnyName("a column name");
  }
  return column;
}

// Notes where the expression ended: an error right behind it says that an operator is missing.
ExpressionPointer ReadExpression(TokenStream& stream) {
  const std::size_t start = stream.Place();
  ExpressionPointer expression = ExpressionReader(stream).ReadBinary(Tightness::Imp);
  stream.EndExpression(start);
  return expression;
}

}  // namespace tavi::access::sql
