// The statements that change tables themselves (declared in PlanRun.h).
// Each runs inside one write statement, so that a table whose second relationship is refused is not there afterwards.
// The catalogue does the work; here stands what a statement leaves open and means all the same.
#include <algorithm>

#include "access/sql/plan/ExecutionErrors.h"
#include "access/sql/run/PlanRun.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {

namespace {

/// `time` goes into the catalogue, as the moment of the change.
class DefinitionRunner {
 public:
  DefinitionRunner(Database& changed, Date time) : database_(changed), now_(time) {}

  void operator()(const CreateTable& statement) const {
    database_.CreateTable(statement.design, now_);
    // A table may refer to itself, so it is there before its relationships are.
    for (const Relationship& relationship : statement.relationships) Relate(relationship);
  }
  void operator()(const DropTable& statement) const { database_.DropTable(statement.table); }
  void operator()(const AddColumn& statement) const {
    database_.AddColumn(statement.table, statement.column, now_);
    // What a column brings along (PRIMARY KEY, UNIQUE, REFERENCES) is made when the column is there.
    if (statement.index) database_.CreateIndex(statement.table, *statement.index, now_);
    if (statement.relationship) Relate(*statement.relationship);
  }
  void operator()(const ChangeColumn& statement) const {
    database_.ChangeColumn(statement.table, statement.column, now_);
  }
  void operator()(const AddRelationship& statement) const { Relate(statement.relationship); }
  void operator()(const DropConstraint& statement) const {
    // A constraint is a relationship of this table or one of its indexes, whichever has the name.
    const auto isMeant = [&](const Relationship& other) {
      return EqualIgnoringCase(other.name, statement.name) && EqualIgnoringCase(other.foreignTable, statement.table);
    };
    if (std::ranges::any_of(database_.Relationships(), isMeant)) return database_.DropRelationship(statement.name);
    database_.DropIndex(statement.table, statement.name, now_);
  }
  void operator()(const DropColumn& statement) const { database_.DropColumn(statement.table, statement.column, now_); }
  void operator()(const CreateIndex& statement) const {
    database_.CreateIndex(statement.table, statement.design, now_);
  }
  void operator()(const DropIndex& statement) const { database_.DropIndex(statement.table, statement.index, now_); }
  template <typename Other>
  void operator()(const Other& /*changes rows*/) const {}

 private:
  // Without columns a reference means the primary key of the other table; without a name it is named after both tables.
  void Relate(Relationship relationship) const {
    if (relationship.primaryColumns.empty()) relationship.primaryColumns = KeyColumns(relationship.primaryTable);
    if (relationship.name.empty()) relationship.name = relationship.primaryTable + relationship.foreignTable;
    database_.CreateRelationship(relationship, now_);
  }

  [[nodiscard]] std::vector<std::string> KeyColumns(const std::string& name) const {
    const std::shared_ptr<Table> table = database_.OpenTable(name);
    std::vector<std::string> names;
    for (const Index& index : table->Indexes()) {
      // In the order of the key, in which the referring columns are matched with it.
      if (!index.primaryKey) continue;
      for (const std::size_t column : index.columns) names.push_back(table->Columns()[column].definition.name);
    }
    if (names.empty())
      throw StatementError("The table '" + name + "' has no primary key; name the columns that are meant.");
    return names;
  }

  Database& database_;
  Date now_;
};

/// The column type that holds the values of an expression.
/// Expressions that give texts get a column of texts, not a memo; a longer text is refused when its row is stored.
ColumnType TypeFor(ado::DataType type) {
  switch (type) {
    case ado::DataType::SmallInt:
      return ColumnType::Integer;
    case ado::DataType::Integer:
      return ColumnType::Long;
    case ado::DataType::Single:
      return ColumnType::Single;
    case ado::DataType::Double:
      return ColumnType::Double;
    case ado::DataType::Currency:
      return ColumnType::Currency;
    case ado::DataType::Date:
      return ColumnType::Date;
    case ado::DataType::Boolean:
      return ColumnType::Boolean;
    case ado::DataType::UnsignedTinyInt:
      return ColumnType::Byte;
    case ado::DataType::Guid:
      return ColumnType::Guid;
    case ado::DataType::Binary:
      return ColumnType::Binary;
    case ado::DataType::LongVarBinary:
      return ColumnType::Ole;
    case ado::DataType::Numeric:
      return ColumnType::Numeric;
    case ado::DataType::WChar:
      break;
  }
  return ColumnType::Text;
}

/// A column that comes straight from a table becomes one of the same type and size. The definition counts a text's
/// length in bytes, two for a character, the design in characters.
ColumnDesign DesignFor(const OutputColumn& output, const SelectPlan& plan) {
  ColumnDesign design;
  design.name = output.column.name;
  design.type = TypeFor(output.column.type);
  // Rules, defaults and automatic numbering do not come along: the rows are values here.
  const bool isTableColumn = output.slot && plan.sources[output.slot->source].table;
  if (!isTableColumn) return design;
  const ColumnDefinition& origin = plan.sources[output.slot->source].table->Columns()[output.slot->column].definition;
  design.type = origin.type;
  design.length = origin.type == ColumnType::Text ? static_cast<std::uint16_t>(origin.length / 2) : origin.length;
  design.precision = origin.precision;
  design.scale = origin.scale;
  return design;
}

}  // namespace

void RunDefinition(StatementContext& context, const Statement& statement) {
  std::visit(DefinitionRunner(context.database, context.now), statement);
}

std::int64_t RunSelectInto(StatementContext& context, TableChanges& changes, const Select& select,
                           const SelectPlan& plan) {
  TableDesign design;
  design.name = select.into;
  for (const OutputColumn& output : plan.outputs) design.columns.push_back(DesignFor(output, plan));
  // The rows are computed before the table is made, so that making it cannot change what is read.
  std::vector<RowValues> rows = CollectValues(context, plan, nullptr);
  context.database.CreateTable(design, context.now);
  const std::shared_ptr<Table> table = context.database.OpenTable(design.name);
  for (RowValues& row : rows) changes.Insert(*table, row);
  return static_cast<std::int64_t>(rows.size());
}

}  // namespace tavi::access::sql
