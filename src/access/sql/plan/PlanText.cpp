// Plans and expressions as text (declared in Plan.h). What EXPLAIN shows, a line for each step, indented by how often
// it runs:
//
//   Members: scan; where Members.Active = True
//     Awards: index PlayerID, PlayerID = Members.ID; where Awards.PlayerID = Members.ID
//   sort in memory
//
// Sources stand in the order in which they are read, not in that of the text. Behind a path stands what it looks up,
// behind "where" everything that each row must satisfy, the conditions that the path serves included.
#include "access/sql/plan/Plan.h"
#include "platform/values/Convert.h"

namespace tavi::access::sql {

namespace {

/// What is written for an expression is cut here.
constexpr std::size_t kLongestExpression = 200;

/// The operator as it stands between its operands, or before its only one.
/// Words and most symbols stand between blanks; a minus before a number does not, Not does.
std::string Symbol(Operator op) {
  const OperatorTraits& traits = TraitsOf(op);
  std::string symbol(traits.symbol);
  if (traits.kind != OperatorKind::Prefix) return " " + symbol + " ";
  return op == Operator::Not ? symbol + " " : symbol;
}

/// For people: a quote within the text is not doubled, so this is no SQL to be run again.
std::string LiteralText(const Value& value) {
  if (IsNull(value)) return "Null";
  if (std::holds_alternative<std::string>(value)) return "'" + std::get<std::string>(value) + "'";
  if (std::holds_alternative<Date>(value)) return "#" + ToText(value) + "#";
  return ToText(value);
}

void Write(const Expression& expression, std::string& text);

/// The arguments from `first` on in brackets. A sub-select is only hinted at; its own plan stands below the
/// statement's.
void WriteList(const Expression& expression, std::size_t first, std::string& text) {
  text += "(";
  for (std::size_t i = first; i < expression.arguments.size(); ++i) {
    if (i > first) text += ", ";
    Write(*expression.arguments[i], text);
  }
  text += expression.subselect ? "Select ...)" : ")";
}

/// Between, In, Is Null, Like, comparisons with Any or All, Exists: each with its Not where the text has it.
void WriteCondition(const Expression& expression, std::string& text) {
  const std::string negation = expression.negated ? "Not " : "";
  if (expression.kind != ExpressionKind::Exists) Write(*expression.arguments[0], text);
  switch (expression.kind) {
    case ExpressionKind::Between:
      text += " " + negation + "Between ";
      Write(*expression.arguments[1], text);
      text += " And ";
      Write(*expression.arguments[2], text);
      return;
    case ExpressionKind::In:
      text += " " + negation + "In ";
      WriteList(expression, 1, text);
      return;
    case ExpressionKind::IsNull:
      text += " Is " + negation + "Null";
      return;
    case ExpressionKind::Like:
      text += " " + negation + "Like ";
      Write(*expression.arguments[1], text);
      return;
    case ExpressionKind::Quantified:
      text += Symbol(expression.op) + std::string(expression.all ? "All " : "Any ") + "(Select ...)";
      return;
    default:
      text += negation + "Exists (Select ...)";
  }
}

/// An Or stands in brackets because it is mostly written as one of several conditions that And joins.
void WriteBinary(const Expression& expression, std::string& text) {
  const bool bracket = expression.op == Operator::Or;
  if (bracket) text += "(";
  Write(*expression.arguments[0], text);
  text += Symbol(expression.op);
  Write(*expression.arguments[1], text);
  if (bracket) text += ")";
}

/// Expressions are nested at most as deep as the parser lets them, so the recursion is bounded.
void Write(const Expression& expression, std::string& text) {
  if (text.size() > kLongestExpression) return;
  const std::string qualifier = expression.qualifier.empty() ? "" : expression.qualifier + ".";
  switch (expression.kind) {
    case ExpressionKind::Literal:
      text += LiteralText(expression.value);
      return;
    case ExpressionKind::Column:
      text += qualifier + expression.name;
      return;
    case ExpressionKind::Star:
      text += qualifier + "*";
      return;
    case ExpressionKind::Unary:
      text += Symbol(expression.op);
      Write(*expression.arguments[0], text);
      return;
    case ExpressionKind::Binary:
      WriteBinary(expression, text);
      return;
    case ExpressionKind::Call:
      text += expression.name;
      WriteList(expression, 0, text);
      return;
    case ExpressionKind::Subselect:
      text += "(Select ...)";
      return;
    default:
      WriteCondition(expression, text);
  }
}

std::string ColumnName(const PlannedSource& source, std::size_t column) {
  return source.table ? source.table->Columns()[column].definition.name : source.derived->outputs[column].column.name;
}

/// "index PrimaryKey, ID = 7", "index in memory, EBU = '123456'", "any of {...} {...}".
std::string PathText(const AccessPath& path, const PlannedSource& source) {
  if (path.kind == AccessPath::Kind::Scan) return "scan";
  if (path.kind == AccessPath::Kind::Union) {
    std::string text = "any of";
    for (const AccessPath& branch : path.branches) text += " {" + PathText(branch, source) + "}";
    return text;
  }
  std::string text = path.kind == AccessPath::Kind::Index ? "index " + source.table->Indexes()[path.index].name
                                                          : std::string("index in memory");
  for (std::size_t i = 0; i < path.equals.size(); ++i) {
    text += ", " + ColumnName(source, path.equalColumns[i]) + " = " + Describe(*path.equals[i]);
  }
  if (path.low != nullptr) text += ", " + ColumnName(source, path.rangeColumn) + " from " + Describe(*path.low);
  if (path.high != nullptr) text += ", " + ColumnName(source, path.rangeColumn) + " to " + Describe(*path.high);
  return text;
}

void WriteFilters(const PlanNode& node, std::string& text) {
  for (std::size_t i = 0; i < node.filters.size(); ++i) {
    text += (i == 0 ? "; where " : " and ") + Describe(*node.filters[i]);
  }
}

/// Each part of a join stands one step deeper than the one whose rows it is run for; the first member of a group stands
/// at the group's own depth, since nothing is said about the group itself unless it has conditions.
void WriteNode(const PlanNode& node, const SelectPlan& plan, const std::string& indent, std::string& text) {
  if (node.kind == PlanNode::Kind::Access) {
    const PlannedSource& source = plan.sources[node.source];
    // An index that gives the order takes the place of the scan that the path says.
    text += indent + (source.name.empty() ? "(select)" : source.name) + ": ";
    const auto& walk = plan.orderWalk;
    text += walk ? "index " + source.table->Indexes()[walk->index].name + (walk->backwards ? " backwards" : " in order")
                 : PathText(node.path, source);
    WriteFilters(node, text);
    text += "\n";
    return;
  }
  // A part of its own line only where there is something to say of it.
  if (node.kind == PlanNode::Kind::Outer || !node.filters.empty()) {
    text += indent + (node.kind == PlanNode::Kind::Outer ? "outer join" : "joined");
    WriteFilters(node, text);
    text += "\n";
  }
  const bool nests = node.kind == PlanNode::Kind::Outer || !node.filters.empty();
  std::string deeper = indent;
  for (const auto& part : node.parts) {
    if (nests || node.parts.size() > 1) deeper = &part == &node.parts.front() && !nests ? indent : deeper + "  ";
    WriteNode(*part, plan, deeper, text);
  }
}

}  // namespace

// A result row is then a combination of rows of tables, and each can be read again by its pointer.
bool SelectPlan::IsKeyset() const {
  if (select == nullptr || select->distinct || grouped || !unionParts.empty() || sources.empty()) return false;
  for (const PlannedSource& source : sources) {
    if (!source.table) return false;
  }
  return true;
}

std::string Describe(const Expression& expression) {
  std::string text;
  Write(expression, text);
  return text;
}

std::string Describe(const SelectPlan& plan) {
  std::string text;
  for (const PlannedSource& source : plan.sources) {
    if (source.derived) text += "(select) " + source.name + ":\n" + Describe(*source.derived);
  }
  if (plan.root) WriteNode(*plan.root, plan, "", text);
  if (plan.grouped) text += plan.groupBy.empty() ? "one group\n" : "groups in memory\n";
  if (plan.select != nullptr && plan.select->distinct) text += "distinct rows in memory\n";
  if (!plan.order.empty() && !plan.orderWalk) text += "sort in memory\n";
  for (const auto& subselect : plan.subselects) {
    if (!subselect) continue;
    text += subselect->IsCorrelated() ? "sub-select, again for each row:\n" : "sub-select, once:\n";
    text += Describe(*subselect);
  }
  for (const auto& part : plan.unionParts) text += "union\n" + Describe(*part);
  return text;
}

}  // namespace tavi::access::sql
