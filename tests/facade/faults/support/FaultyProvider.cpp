#include "facade/faults/support/FaultyProvider.h"

#include <array>

namespace tavi::testing {
namespace {

using Kind = ProviderCall::Kind;

class FaultyRecordset : public ado::Recordset {
 public:
  FaultyRecordset(std::unique_ptr<ado::Recordset> rows, std::shared_ptr<FaultPlan> plan, std::string source)
      : rows_(std::move(rows)), plan_(std::move(plan)), source_(std::move(source)) {}

  [[nodiscard]] const std::vector<ado::Field>& Fields() const override { return rows_->Fields(); }
  [[nodiscard]] bool AtEnd() const override { return rows_->AtEnd(); }
  void MoveNext() override {
    plan_->Note(Kind::MoveNext, source_);
    rows_->MoveNext();
  }
  void MovePrevious() override {
    plan_->Note(Kind::MovePrevious, source_);
    rows_->MovePrevious();
  }
  [[nodiscard]] Value Get(std::string_view fieldName) const override { return rows_->Get(fieldName); }
  void Set(std::string_view fieldName, const Value& value) override {
    plan_->Note(Kind::Set, fieldName);
    rows_->Set(fieldName, value);
  }
  void AddNew() override {
    plan_->Note(Kind::AddNew, source_);
    rows_->AddNew();
  }
  void Update() override {
    plan_->Note(Kind::Update, source_);
    rows_->Update();
  }
  void CancelUpdate() override { rows_->CancelUpdate(); }
  void Close() override {
    plan_->Note(Kind::CloseRecordset, source_);
    rows_->Close();
  }

 private:
  std::unique_ptr<ado::Recordset> rows_;
  std::shared_ptr<FaultPlan> plan_;
  std::string source_;
};

class FaultyConnection : public ado::Connection {
 public:
  FaultyConnection(std::unique_ptr<ado::Connection> connection, std::shared_ptr<FaultPlan> plan)
      : connection_(std::move(connection)), plan_(std::move(plan)) {}

  std::int64_t Execute(std::string_view commandText) override {
    plan_->Note(Kind::Execute, commandText);
    return connection_->Execute(commandText);
  }
  std::unique_ptr<ado::Recordset> OpenRecordset(std::string_view source, ado::CursorType cursorType,
                                                ado::LockType lockType, ado::SourceKind sourceKind) override {
    plan_->Note(Kind::OpenRecordset, source);
    return Watched(connection_->OpenRecordset(source, cursorType, lockType, sourceKind), source);
  }
  std::unique_ptr<ado::Recordset> OpenSchema(ado::SchemaKind kind) override {
    plan_->Note(Kind::OpenSchema, "the schema");
    return Watched(connection_->OpenSchema(kind), "the schema");
  }
  std::int32_t BeginTrans() override {
    plan_->Note(Kind::BeginTrans, "");
    return connection_->BeginTrans();
  }
  void CommitTrans() override {
    plan_->Note(Kind::CommitTrans, "");
    connection_->CommitTrans();
  }
  // What is only in memory can be forgotten whatever the disk does.
  void RollbackTrans() override { connection_->RollbackTrans(); }
  [[nodiscard]] std::int32_t TransactionLevel() const override { return connection_->TransactionLevel(); }
  void Flush() override { connection_->Flush(); }
  void Close() override {
    plan_->Note(Kind::CloseConnection, "the connection");
    connection_->Close();
  }

 private:
  [[nodiscard]] std::unique_ptr<ado::Recordset> Watched(std::unique_ptr<ado::Recordset> rows,
                                                        std::string_view source) const {
    return std::make_unique<FaultyRecordset>(std::move(rows), plan_, std::string(source));
  }

  std::unique_ptr<ado::Connection> connection_;
  std::shared_ptr<FaultPlan> plan_;
};

class FaultyProvider : public ado::Provider {
 public:
  FaultyProvider(std::shared_ptr<const ado::Provider> provider, std::shared_ptr<FaultPlan> plan)
      : provider_(std::move(provider)), plan_(std::move(plan)) {}
  [[nodiscard]] std::unique_ptr<ado::Connection> Open(std::string_view connectionString) const override {
    plan_->Note(Kind::Open, connectionString);
    return std::make_unique<FaultyConnection>(provider_->Open(connectionString), plan_);
  }

 private:
  std::shared_ptr<const ado::Provider> provider_;
  std::shared_ptr<FaultPlan> plan_;
};

}  // namespace

std::string Description(const ProviderCall& call) {
  static constexpr std::array<const char*, 13> kNames{
      "Open", "Execute", "OpenRecordset",        "OpenSchema", "MoveNext",    "MovePrevious",        "AddNew",
      "Set",  "Update",  "Close the record set", "BeginTrans", "CommitTrans", "Close the connection"};
  return std::string(kNames.at(static_cast<std::size_t>(call.kind))) + ": " + call.text;
}

void FaultPlan::Start() {
  calls_.clear();
  error_.reset();
  failuresLeft_ = 0;
}

void FaultPlan::FailAt(std::size_t number, const Error& error) {
  FailWhere([this, number](const ProviderCall&) { return calls_.size() == number; }, error, 1);
}

void FaultPlan::FailWhere(const std::function<bool(const ProviderCall&)>& chooses, const Error& error, int times) {
  Start();
  chooses_ = chooses;
  error_ = error;
  failuresLeft_ = times;
}

void FaultPlan::Note(ProviderCall::Kind kind, std::string_view text) {
  if (before) before();
  calls_.push_back({kind, std::string(text)});
  if (failuresLeft_ == 0 || !chooses_(calls_.back())) return;
  --failuresLeft_;
  throw Error(*error_);
}

std::shared_ptr<const ado::Provider> MakeFaultyProvider(std::shared_ptr<const ado::Provider> provider,
                                                        std::shared_ptr<FaultPlan> plan) {
  return std::make_shared<FaultyProvider>(std::move(provider), std::move(plan));
}

}  // namespace tavi::testing
