#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "access/catalog/Database.h"
#include "access/sql/parse/Expression.h"

/// The tree that the parser makes of a statement. Plain data; names are as written, looked up ignoring case. `position`
/// is the byte offset in the statement's text where the thing begins, for error messages that point at the place.
namespace tavi::access::sql {

/// A table, a sub-select with a name, or a join of two sources.
struct Source {
  enum class Kind { Table, Subselect, Join };
  enum class Join { Inner, Left, Right, Cross };
  Kind kind = Kind::Table;
  std::size_t position = 0;
  std::uint16_t depth = 1;  ///< as in Expression
  std::string table;
  std::string alias;  ///< empty: the table's own name
  std::shared_ptr<Select> subselect;
  Join join = Join::Inner;
  std::unique_ptr<Source> left, right;
  ExpressionPointer on;
};

struct SelectItem {
  ExpressionPointer expression;
  std::string alias;  ///< empty: named after the column, or Expr1000, Expr1001, ...
};
struct OrderItem {
  ExpressionPointer expression;
  bool descending = false;
};

/// In a union the first select holds the chain: it is united with `unionWith`, the result with that one's `unionWith`,
/// and so on, from left to right; `unionAll` says how a select is united with its successor. The ORDER BY at the end of
/// a union orders the whole and stands in the first select; the others have none.
struct Select {
  std::size_t position = 0;
  std::uint16_t depth = 1;  ///< as in Expression
  bool distinct = false;
  bool distinctRow = false;
  std::optional<std::int64_t> top;
  bool topPercent = false;
  std::vector<SelectItem> items;
  std::string into;              ///< SELECT ... INTO table
  std::unique_ptr<Source> from;  ///< none: one row of constants
  ExpressionPointer where;
  std::vector<ExpressionPointer> groupBy;
  ExpressionPointer having;
  std::vector<OrderItem> orderBy;
  std::shared_ptr<Select> unionWith;  ///< UNION [ALL]
  bool unionAll = false;
};

struct Insert {
  std::string table;
  std::size_t position = 0;
  std::vector<std::string> columns;  ///< empty: all, in order
  std::vector<ExpressionPointer> values;
  std::shared_ptr<Select> select;  ///< instead of values
};
struct Assignment {
  ExpressionPointer column;  // a Column expression
  ExpressionPointer value;
};
struct Update {
  std::unique_ptr<Source> target;
  std::vector<Assignment> assignments;
  ExpressionPointer where;
};
struct Delete {
  std::string table;  ///< the one to delete from when the source is a join (DELETE T.* FROM ...)
  std::unique_ptr<Source> from;
  ExpressionPointer where;
};
struct CreateTable {
  TableDesign design;
  std::vector<Relationship> relationships;  ///< of this table to others, enforced
};
struct DropTable {
  std::string table;
};
struct AddColumn {
  std::string table;
  ColumnDesign column;
  std::optional<IndexDesign> index;          ///< PRIMARY KEY or UNIQUE behind the column
  std::optional<Relationship> relationship;  ///< REFERENCES behind the column
};
/// ALTER TABLE ... ALTER COLUMN.
struct ChangeColumn {
  std::string table;
  ColumnDesign column;
};
/// FOREIGN KEY ... REFERENCES. Without primary columns the primary key is meant; without a name it gets one.
struct AddRelationship {
  Relationship relationship;
};
struct DropColumn {
  std::string table;
  std::string column;
};
struct CreateIndex {
  std::string table;
  IndexDesign design;
};
struct DropIndex {
  std::string table;
  std::string index;
};
/// An index or a relationship of the table.
struct DropConstraint {
  std::string table;
  std::string name;
};

/// BEGIN [TRANSACTION], COMMIT [TRANSACTION | WORK], ROLLBACK [TRANSACTION | WORK].
struct TransactionControl {
  enum class Action { Begin, Commit, Rollback };
  Action action = Action::Begin;
};

using Statement = std::variant<Select, Insert, Update, Delete, CreateTable, DropTable, AddColumn, ChangeColumn,
                               DropColumn, CreateIndex, DropIndex, AddRelationship, DropConstraint, TransactionControl>;

}  // namespace tavi::access::sql
