#include "access/sql/support/Parsing.h"

#include <array>

#include "platform/values/Convert.h"

namespace tavi::access::sql {
namespace {

std::string Joined(const std::vector<std::string>& parts) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
  return text;
}

template <typename Items, typename ToPart>
std::string List(const Items& items, ToPart toPart) {
  std::vector<std::string> parts;
  for (const auto& item : items) parts.push_back(toPart(item));
  return "[" + Joined(parts) + "]";
}

std::string_view OperatorText(Operator op) {
  constexpr std::array<std::string_view, 22> kTexts = {"Or", "Xor", "Eqv", "Imp", "And", "Not", "=", "<>",
                                                       "<",  "<=",  ">",   ">=",  "+",   "-",   "*", "/",
                                                       "\\", "Mod", "^",   "&",   "neg", "pos"};
  return kTexts.at(static_cast<std::size_t>(op));
}

std::string SelectText(const Select& select);

std::string Negated(const Expression& expression, const std::string& name) {
  return expression.negated ? "not-" + name : name;
}

std::string Node(const std::string& head, const Expression& expression) {
  std::string text = "(" + head;
  for (const ExpressionPointer& argument : expression.arguments) text += " " + TreeText(*argument);
  if (expression.subselect) text += " " + SelectText(*expression.subselect);
  return text + ")";
}

std::string Qualified(const Expression& expression, const std::string& name) {
  return expression.qualifier.empty() ? name : expression.qualifier + "." + name;
}

std::string AliasText(const std::string& alias) {
  return alias.empty() ? "" : " as " + alias;
}

std::string SourceText(const Source& source) {
  switch (source.kind) {
    case Source::Kind::Table:
      return source.table + AliasText(source.alias);
    case Source::Kind::Subselect:
      return SelectText(*source.subselect) + AliasText(source.alias);
    case Source::Kind::Join:
      break;
  }
  constexpr std::array<const char*, 4> kNames = {"inner", "left", "right", "cross"};
  std::string text = std::string("(") + kNames.at(static_cast<std::size_t>(source.join)) + " " +
                     SourceText(*source.left) + " " + SourceText(*source.right);
  if (source.on) text += " on " + TreeText(*source.on);
  return text + ")";
}

std::string SelectText(const Select& select) {
  std::string text = "(select";
  if (select.distinct) text += " distinct";
  if (select.distinctRow) text += " distinctrow";
  if (select.top) text += " top " + std::to_string(*select.top);
  if (select.topPercent) text += "%";
  text += " " +
          List(select.items, [](const SelectItem& item) { return TreeText(*item.expression) + AliasText(item.alias); });
  if (!select.into.empty()) text += " into " + select.into;
  if (select.from) text += " from " + SourceText(*select.from);
  if (select.where) text += " where " + TreeText(*select.where);
  const auto toText = [](const ExpressionPointer& expression) { return TreeText(*expression); };
  if (!select.groupBy.empty()) text += " group " + List(select.groupBy, toText);
  if (select.having) text += " having " + TreeText(*select.having);
  if (select.unionWith) text += (select.unionAll ? " union-all " : " union ") + SelectText(*select.unionWith);
  if (!select.orderBy.empty()) {
    text += " order " + List(select.orderBy, [](const OrderItem& item) {
              return TreeText(*item.expression) + (item.descending ? " desc" : "");
            });
  }
  return text + ")";
}

std::string InsertText(const Insert& insert) {
  std::string text = "(insert " + insert.table;
  if (!insert.columns.empty()) text += " " + List(insert.columns, [](const std::string& name) { return name; });
  if (insert.select) return text + " " + SelectText(*insert.select) + ")";
  return text + " values " + List(insert.values, [](const ExpressionPointer& value) { return TreeText(*value); }) + ")";
}

std::string UpdateText(const Update& update) {
  std::string text =
      "(update " + SourceText(*update.target) + " " + List(update.assignments, [](const Assignment& assignment) {
        return TreeText(*assignment.column) + " := " + TreeText(*assignment.value);
      });
  if (update.where) text += " where " + TreeText(*update.where);
  return text + ")";
}

std::string DeleteText(const Delete& statement) {
  std::string text = "(delete";
  if (!statement.table.empty()) text += " " + statement.table;
  text += " from " + SourceText(*statement.from);
  if (statement.where) text += " where " + TreeText(*statement.where);
  return text + ")";
}

std::string ColumnText(const ColumnDesign& column) {
  constexpr std::array<const char*, 19> kTypes = {
      "?",    "Boolean", "Byte", "Integer", "Long", "Currency", "Single",  "Double", "Date", "Binary",
      "Text", "Ole",     "Memo", "?",       "?",    "Guid",     "Numeric", "?",      "?"};
  std::string text = column.name + " " + kTypes.at(static_cast<std::size_t>(column.type));
  if (column.type == ColumnType::Text || column.type == ColumnType::Binary)
    text += "(" + std::to_string(column.length) + ")";
  if (column.type == ColumnType::Numeric) {
    text += "(" + std::to_string(column.precision) + "." + std::to_string(column.scale) + ")";
  }
  if (column.autoNumber) text += " auto";
  if (column.required) text += " required";
  if (!column.defaultExpression.empty()) text += " default <" + column.defaultExpression + ">";
  return text;
}

std::string IndexText(const IndexDesign& index) {
  std::string text = "(index " + index.name + " " + List(index.columns, [](const IndexDesign::Column& column) {
                       return column.name + (column.ascending ? "" : " desc");
                     });
  if (index.primaryKey) text += " primary";
  if (index.unique) text += " unique";
  if (index.required) text += " required";
  if (index.ignoreNulls) text += " ignore-nulls";
  return text + ")";
}

std::string RelationshipText(const Relationship& relationship) {
  const auto same = [](const std::string& name) { return name; };
  return "(reference " + relationship.name + " " + relationship.foreignTable + " " +
         List(relationship.foreignColumns, same) + " to " + relationship.primaryTable + " " +
         List(relationship.primaryColumns, same) + (relationship.cascadeUpdates ? " cascade-updates" : "") +
         (relationship.cascadeDeletes ? " cascade-deletes" : "") + ")";
}

struct StatementText {
  std::string operator()(const Select& select) const { return SelectText(select); }
  std::string operator()(const Insert& insert) const { return InsertText(insert); }
  std::string operator()(const Update& update) const { return UpdateText(update); }
  std::string operator()(const Delete& statement) const { return DeleteText(statement); }
  std::string operator()(const CreateTable& create) const {
    std::string text = "(create " + create.design.name + " " + List(create.design.columns, ColumnText);
    for (const IndexDesign& index : create.design.indexes) text += " " + IndexText(index);
    for (const Relationship& relationship : create.relationships) text += " " + RelationshipText(relationship);
    return text + ")";
  }
  std::string operator()(const DropTable& drop) const { return "(drop-table " + drop.table + ")"; }
  std::string operator()(const AddColumn& add) const {
    return "(add-column " + add.table + " " + ColumnText(add.column) + (add.index ? " " + IndexText(*add.index) : "") +
           (add.relationship ? " " + RelationshipText(*add.relationship) : "") + ")";
  }
  std::string operator()(const ChangeColumn& change) const {
    return "(change-column " + change.table + " " + ColumnText(change.column) + ")";
  }
  std::string operator()(const AddRelationship& add) const { return RelationshipText(add.relationship); }
  std::string operator()(const TransactionControl& control) const {
    switch (control.action) {
      case TransactionControl::Action::Begin:
        return "begin";
      case TransactionControl::Action::Commit:
        return "commit";
      case TransactionControl::Action::Rollback:
        break;
    }
    return "rollback";
  }
  std::string operator()(const DropConstraint& drop) const {
    return "(drop-constraint " + drop.table + " " + drop.name + ")";
  }
  std::string operator()(const DropColumn& drop) const {
    return "(drop-column " + drop.table + " " + drop.column + ")";
  }
  std::string operator()(const CreateIndex& create) const {
    return "(create-index " + create.table + " " + IndexText(create.design) + ")";
  }
  std::string operator()(const DropIndex& drop) const { return "(drop-index " + drop.table + " " + drop.index + ")"; }
};

}  // namespace

std::string ValueText(const Value& value) {
  if (IsNull(value)) return "Null";
  if (const auto* text = std::get_if<std::string>(&value)) return "'" + *text + "'";
  if (const auto* truth = std::get_if<bool>(&value)) return *truth ? "True" : "False";
  if (std::holds_alternative<Date>(value)) return "#" + ToText(value) + "#";
  std::string text = ToText(value);
  if (std::holds_alternative<std::int32_t>(value)) text += "L";
  if (std::holds_alternative<std::int16_t>(value)) text += "I";
  if (std::holds_alternative<std::uint8_t>(value)) text += "B";
  if (std::holds_alternative<float>(value)) text += "S";
  if (std::holds_alternative<Currency>(value)) text += "C";
  if (std::holds_alternative<Decimal>(value)) text += "D";
  return text;
}

std::string TreeText(const Expression& expression) {
  switch (expression.kind) {
    case ExpressionKind::Literal:
      return ValueText(expression.value);
    case ExpressionKind::Column:
      return Qualified(expression, expression.name);
    case ExpressionKind::Star:
      return Qualified(expression, "*");
    case ExpressionKind::Unary:
    case ExpressionKind::Binary:
      return Node(std::string(OperatorText(expression.op)), expression);
    case ExpressionKind::Between:
      return Node(Negated(expression, "between"), expression);
    case ExpressionKind::In:
      return Node(Negated(expression, "in"), expression);
    case ExpressionKind::Exists:
      return Node(Negated(expression, "exists"), expression);
    case ExpressionKind::IsNull:
      return Node(Negated(expression, "is-null"), expression);
    case ExpressionKind::Like:
      return Node(Negated(expression, "like"), expression);
    case ExpressionKind::Call:
      return Node("call " + expression.name + (expression.distinct ? " distinct" : ""), expression);
    case ExpressionKind::Subselect:
      return Node("value", expression);
    case ExpressionKind::Quantified:
      return Node(std::string(OperatorText(expression.op)) + (expression.all ? "-all" : "-any"), expression);
  }
  return "?";
}

std::string TreeText(const Statement& statement) {
  return std::visit(StatementText(), statement);
}

}  // namespace tavi::access::sql
