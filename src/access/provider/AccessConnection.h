#pragma once

#include <memory>

#include "access/catalog/Database.h"
#include "access/sql/run/Session.h"
#include "platform/ado/Provider.h"

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

}  // namespace tavi::access
