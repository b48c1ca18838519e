#pragma once

#include <exception>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>

#include "access/catalog/Database.h"
#include "access/file/EngineError.h"
#include "access/sql/run/ResultSet.h"
#include "access/sql/run/Session.h"
#include "platform/ado/Provider.h"
#include "platform/values/Error.h"

namespace tavi::access {

/// An open file with its session. Record sets share it with their connection, so that using one after the connection
/// was closed is an error and no accident.
class OpenFile {
 public:
  /// `isCancelled`: see sql::Session.
  OpenFile(std::unique_ptr<Pager> pager, std::shared_ptr<const Clock> clock, std::function<bool()> isCancelled);

  /// Raises ProviderFailure after Close.
  [[nodiscard]] sql::Session& Session();
  [[nodiscard]] Database& GetDatabase() { return database_; }
  [[nodiscard]] bool IsClosed() const { return isClosed_; }
  /// Nothing is left to flush after Close.
  void Flush();
  void Close();

 private:
  Database database_;
  sql::Session session_;
  bool isClosed_ = false;
};

/// A connection of the provider.
class AccessConnection final : public ado::Connection {
 public:
  explicit AccessConnection(std::shared_ptr<OpenFile> file) : file_(std::move(file)) {}
  ~AccessConnection() override;

  std::int64_t Execute(std::string_view commandText) override;
  std::unique_ptr<ado::Recordset> OpenRecordset(std::string_view source, ado::CursorType cursorType,
                                                ado::LockType lockType, ado::SourceKind sourceKind) override;
  std::unique_ptr<ado::Recordset> OpenSchema(ado::SchemaKind kind) override;
  std::int32_t BeginTrans() override;
  void CommitTrans() override;
  void RollbackTrans() override;
  [[nodiscard]] std::int32_t TransactionLevel() const override;
  void Flush() override;
  void Close() override;

 private:
  std::shared_ptr<OpenFile> file_;
};

/// A record set of the provider on a result set of the engine.
class AccessRecordset final : public ado::Recordset {
 public:
  AccessRecordset(std::shared_ptr<OpenFile> file, std::unique_ptr<sql::ResultSet> rows, bool isReadOnly);

  [[nodiscard]] const std::vector<ado::Field>& Fields() const override { return fields_; }
  [[nodiscard]] bool AtEnd() const override;
  void MoveNext() override;
  void MovePrevious() override;
  [[nodiscard]] Value Get(std::string_view fieldName) const override;
  void Set(std::string_view fieldName, const Value& value) override;
  void AddNew() override;
  void Update() override;
  void CancelUpdate() override;
  void Close() override { rows_.reset(); }

 private:
  /// Raises ProviderFailure when this record set or its connection is closed.
  [[nodiscard]] sql::ResultSet& Rows() const;
  [[nodiscard]] std::size_t PositionOf(std::string_view fieldName) const;
  void RefuseReadOnly() const;

  std::shared_ptr<OpenFile> file_;
  std::unique_ptr<sql::ResultSet> rows_;
  bool isReadOnly_;
  std::vector<ado::Field> fields_;
  /// Names as they were asked for: hosts ask for the same few again and again.
  mutable std::unordered_map<std::string, std::size_t> positions_;
};

/// The rows that describe a file, ordered by table and column or index name. System tables are listed by Tables only. A
/// table whose definition is damaged is left out of Columns and Indexes: using it raises the error that says so.
///   Columns: TABLE_NAME, COLUMN_NAME, ORDINAL_POSITION (from 1), DATA_TYPE, CHARACTER_MAXIMUM_LENGTH (0: no
///     limit; null for other than texts and bytes), IS_NULLABLE, COLUMN_HASDEFAULT, COLUMN_DEFAULT
///   Tables: TABLE_NAME, TABLE_TYPE ("TABLE", "SYSTEM TABLE" or "LINK"), CARDINALITY (rows as the table states them;
///     null for a link, a damaged table or a count that the file has no room for)
///   Indexes: TABLE_NAME, INDEX_NAME, PRIMARY_KEY, UNIQUE, ORDINAL_POSITION (from 1), COLUMN_NAME, COLLATION (1
///     ascending, 2 descending)
std::unique_ptr<sql::ResultSet> ListSchema(Database& database, ado::SchemaKind kind);

/// Runs what a caller of the provider asked for. All errors that leave it have the engine's source; those that are none
/// of ours (memory, the standard library) become ProviderFailure.
template <typename Work>
auto AsProvider(const Work& work) -> decltype(work()) {
  try {
    return work();
  } catch (const Error& error) {
    if (error.Source() == kErrorSource) throw;
    throw Error(error.Number(), kErrorSource, error.Description());
  } catch (const std::bad_alloc&) {
    RaiseFailure("There is not enough memory for the statement.");
  } catch (const std::exception& exception) {
    RaiseFailure(std::string("The statement failed inside the database engine: ") + exception.what() + ".");
  }
}

}  // namespace tavi::access
