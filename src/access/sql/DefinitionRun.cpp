// The statements that change tables themselves (declared in ChangeRun.h).
#include "access/sql/ChangeRun.h"
#include "access/sql/SelectRun.h"

namespace tavi::access::sql {

namespace {

struct DefinitionRunner {
  Database& database;
  Date now;

  void operator()(const CreateTable& statement) const { database.CreateTable(statement.design, now); }
  void operator()(const DropTable& statement) const { database.DropTable(statement.table); }
  void operator()(const AddColumn& statement) const {
    database.AddColumn(statement.table, statement.column, now);
    if (statement.index) database.CreateIndex(statement.table, *statement.index, now);
  }
  void operator()(const DropColumn& statement) const { database.DropColumn(statement.table, statement.column, now); }
  void operator()(const CreateIndex& statement) const { database.CreateIndex(statement.table, statement.design, now); }
  void operator()(const DropIndex& statement) const { database.DropIndex(statement.table, statement.index, now); }
  template <typename Other>
  void operator()(const Other& /*changes rows*/) const {}
};

/// The column type that holds the values of an expression.
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

ColumnDesign DesignFor(const OutputColumn& output, const SelectPlan& plan) {
  ColumnDesign design;
  design.name = output.column.name;
  design.type = TypeFor(output.column.type);
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
  std::visit(DefinitionRunner{context.database, context.now}, statement);
}

std::int64_t RunSelectInto(StatementContext& context, TableChanges& changes, const Select& select,
                           const SelectPlan& plan) {
  TableDesign design;
  design.name = select.into;
  for (const OutputColumn& output : plan.outputs) design.columns.push_back(DesignFor(output, plan));
  std::vector<RowValues> rows = CollectValues(context, plan, nullptr);
  context.database.CreateTable(design, context.now);
  const std::shared_ptr<Table> table = context.database.OpenTable(design.name);
  for (RowValues& row : rows) changes.Insert(*table, row);
  return static_cast<std::int64_t>(rows.size());
}

}  // namespace tavi::access::sql
