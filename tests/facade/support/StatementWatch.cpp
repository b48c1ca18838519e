#include "facade/support/StatementWatch.h"

#include <algorithm>

namespace tavi::testing {
namespace {

void Show(StatementWatch& watch, std::string_view statement) {
  watch.statements.emplace_back(statement);
  if (watch.before) watch.before(watch.statements.back());
}

class WatchedConnection : public ado::Connection {
 public:
  WatchedConnection(std::unique_ptr<ado::Connection> connection, std::shared_ptr<StatementWatch> watch)
      : connection_(std::move(connection)), watch_(std::move(watch)) {}

  std::int64_t Execute(std::string_view commandText) override {
    Show(*watch_, commandText);
    return connection_->Execute(commandText);
  }
  std::unique_ptr<ado::Recordset> OpenRecordset(std::string_view source, ado::CursorType cursorType,
                                                ado::LockType lockType, ado::SourceKind sourceKind) override {
    Show(*watch_, source);
    return connection_->OpenRecordset(source, cursorType, lockType, sourceKind);
  }
  std::unique_ptr<ado::Recordset> OpenSchema(ado::SchemaKind kind) override { return connection_->OpenSchema(kind); }
  std::int32_t BeginTrans() override { return connection_->BeginTrans(); }
  void CommitTrans() override { connection_->CommitTrans(); }
  void RollbackTrans() override { connection_->RollbackTrans(); }
  [[nodiscard]] std::int32_t TransactionLevel() const override { return connection_->TransactionLevel(); }
  void Flush() override { connection_->Flush(); }
  void Close() override { connection_->Close(); }

 private:
  std::unique_ptr<ado::Connection> connection_;
  std::shared_ptr<StatementWatch> watch_;
};

class WatchedProvider : public ado::Provider {
 public:
  WatchedProvider(std::shared_ptr<const ado::Provider> provider, std::shared_ptr<StatementWatch> watch)
      : provider_(std::move(provider)), watch_(std::move(watch)) {}
  [[nodiscard]] std::unique_ptr<ado::Connection> Open(std::string_view connectionString) const override {
    return std::make_unique<WatchedConnection>(provider_->Open(connectionString), watch_);
  }

 private:
  std::shared_ptr<const ado::Provider> provider_;
  std::shared_ptr<StatementWatch> watch_;
};

}  // namespace

void StatementWatch::FailOn(const std::string& text, const Error& error, int times) {
  before = [text, error, left = times](const std::string& statement) mutable {
    if (left == 0 || statement.find(text) == std::string::npos) return;
    --left;
    throw Error(error);
  };
}

int StatementWatch::CountOf(const std::string& beginning) const {
  return static_cast<int>(std::count_if(statements.begin(), statements.end(), [&](const std::string& statement) {
    return statement.starts_with(beginning);
  }));
}

std::shared_ptr<const ado::Provider> MakeWatchedProvider(std::shared_ptr<const ado::Provider> provider,
                                                         std::shared_ptr<StatementWatch> watch) {
  return std::make_shared<WatchedProvider>(std::move(provider), std::move(watch));
}

}  // namespace tavi::testing
