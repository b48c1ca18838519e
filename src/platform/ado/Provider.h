#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/values/Value.h"

/// The database provider as the component sees it: connections, text commands and record sets. Errors of a provider are
/// tavi::Error with the provider's own number, source and description.
namespace tavi::ado {

/// How a record set may move (values of the original interface; the component passes 0, 2).
enum class CursorType : std::int32_t { ForwardOnly = 0, Keyset = 1, Dynamic = 2, Static = 3 };
/// How rows are locked while they are edited.
enum class LockType : std::int32_t { ReadOnly = 1, Pessimistic = 2, Optimistic = 3 };
/// What the source text of a record set is.
enum class SourceKind : std::int32_t { CommandText = 1, TableDirect = 512 };
/// What a schema record set lists.
enum class SchemaKind : std::int32_t { Columns = 4, Indexes = 12, Tables = 20 };
/// Data types as a provider names them (the DATA_TYPE column of the columns schema, and the type of a field).
enum class DataType : std::int32_t {
  SmallInt = 2,
  Integer = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  Boolean = 11,
  UnsignedTinyInt = 17,
  Guid = 72,
  Binary = 128,
  WChar = 130,
  Numeric = 131,
  LongVarBinary = 205
};

/// A field of a record set: its name as the table or statement gives it, and its type.
struct Field {
  std::string name;
  DataType type = DataType::WChar;
};

/// The rows that a statement or table gave, one of them current. Field names are looked up without regard to case; a
/// field of a join is also found by its qualified name ("Competitions.ID"). A name that is not there raises
/// ProviderNoColumn; reading or writing without a current row raises ProviderEndOfRecords. Used on the thread and
/// during the life of its connection. Destroying it closes it.
class Recordset {
 public:
  virtual ~Recordset() = default;

  /// The fields in their order.
  [[nodiscard]] virtual const std::vector<Field>& Fields() const = 0;
  /// True behind the last row (at once when there is none).
  [[nodiscard]] virtual bool AtEnd() const = 0;
  /// The next row becomes current. At the end it raises ProviderEndOfRecords.
  virtual void MoveNext() = 0;
  /// The row before becomes current (from the end: the last row). Before the first row it raises ProviderEndOfRecords.
  virtual void MovePrevious() = 0;

  /// The value of a field of the current row, or of the row being added.
  [[nodiscard]] virtual Value Get(std::string_view fieldName) const = 0;
  /// Puts a value into the edit buffer of the current (or new) row; stored by Update. The value is converted to the
  /// column's type; where it does not convert ProviderTypeConflict is raised.
  virtual void Set(std::string_view fieldName, const Value& value) = 0;
  /// Begins a new row: defaults and, once saved, the automatic number are filled in by the provider.
  virtual void AddNew() = 0;
  /// Stores the edit buffer as one atomic statement. A row that was added becomes the current one. With nothing in the
  /// edit buffer it does nothing.
  virtual void Update() = 0;
  /// Drops the edit buffer.
  virtual void CancelUpdate() = 0;
  /// Releases the rows. Further calls raise an error; a second Close does nothing.
  virtual void Close() = 0;
};

/// An open database file.
class Connection {
 public:
  virtual ~Connection() = default;

  /// Runs one SQL statement that gives no rows (or whose rows are not wanted). Returns the number of rows affected.
  virtual std::int64_t Execute(std::string_view commandText) = 0;
  /// Opens a record set on a SELECT statement or on a whole table. The record set on a whole table does not end at
  /// damage in the file: a place that cannot be read counts as a row. Get raises ProviderFailure there, for those
  /// fields that are damaged, and MoveNext goes on behind it.
  virtual std::unique_ptr<Recordset> OpenRecordset(std::string_view source, CursorType cursorType, LockType lockType,
                                                   SourceKind sourceKind) = 0;
  /// A record set that describes the file: for Columns it has TABLE_NAME, COLUMN_NAME, ORDINAL_POSITION (1-based),
  /// DATA_TYPE, CHARACTER_MAXIMUM_LENGTH, IS_NULLABLE and COLUMN_HASDEFAULT, ordered by table and column name; for
  /// Tables it has TABLE_NAME, TABLE_TYPE and CARDINALITY, the number of rows as the table states it (null when that is
  /// not to be found out), ordered by name.
  virtual std::unique_ptr<Recordset> OpenSchema(SchemaKind kind) = 0;
  /// Returns when all that statements have stored, also those of others, would survive a loss of power. Raises
  /// ProviderFailure when the system cannot flush it.
  virtual void Flush() = 0;
  /// Begins a transaction, within another one when there is one, and returns how many are open then: 1 for the
  /// outermost. What is stored until its end is kept or undone together; a statement that fails undoes only itself.
  /// Others see the state before, without waiting, until the outermost one is committed; who wants to store something
  /// waits until it has ended. Raises ProviderFailure when another stores something for longer than a while, or waiting
  /// for him would never end. On a file that is only read it is begun all the same, and storing fails.
  virtual std::int32_t BeginTrans() = 0;
  /// Ends the innermost transaction. The changes of the outermost are stored, all or, with an error, none; after an
  /// error it is still open, to be rolled back. Raises ProviderFailure when there is no transaction.
  virtual void CommitTrans() = 0;
  /// Ends the innermost transaction and undoes all that was stored in it, inner ones included. Record sets show the
  /// rows as they are then. Raises ProviderFailure when there is no transaction.
  virtual void RollbackTrans() = 0;
  /// How many transactions are open; 0 on a closed connection.
  [[nodiscard]] virtual std::int32_t TransactionLevel() const = 0;
  /// Closes the file; open transactions are rolled back. Open record sets of the connection become unusable. A second
  /// Close does nothing.
  virtual void Close() = 0;
};

/// Opens database files.
class Provider {
 public:
  virtual ~Provider() = default;
  /// Opens the file that a connection string names ("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=PATH"; items are
  /// separated by semicolons, names ignore case). Raises ProviderFailure when the file is missing, no database, or in
  /// use. Callable on any thread; the connection belongs to the calling one.
  [[nodiscard]] virtual std::unique_ptr<Connection> Open(std::string_view connectionString) const = 0;
};

}  // namespace tavi::ado
