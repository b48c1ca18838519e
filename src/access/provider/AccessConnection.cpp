#include "access/provider/AccessConnection.h"

#include "platform/values/Text.h"

namespace tavi::access {

namespace {

/// Command texts up to this length may be the bare name of a table (64 characters, in brackets).
constexpr std::size_t kLongestTableName = 300;

/// The table that a command text names, blanks and brackets taken away.
std::string BareName(std::string_view commandText) {
  std::string name = Trim(commandText);
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
  return name;
}

bool IsTableName(sql::Session& session, std::string_view commandText) {
  if (commandText.size() > kLongestTableName || EqualIgnoringCase(FirstCharacters(commandText, 7), "select ")) {
    return false;
  }
  return session.HasTable(BareName(commandText));
}

}  // namespace

OpenFile::OpenFile(std::unique_ptr<Pager> pager, std::shared_ptr<const Clock> clock, std::function<bool()> isCancelled)
    : database_(std::move(pager)), session_(database_, std::move(clock), {}, std::move(isCancelled)) {}

sql::Session& OpenFile::Session() {
  if (isClosed_) RaiseFailure("The connection to the database is closed. Open it again.");
  return session_;
}

void OpenFile::Flush() {
  if (!isClosed_) database_.GetPager().Flush();
}

void OpenFile::Close() {
  if (isClosed_) return;
  isClosed_ = true;
  database_.GetPager().Close();
}

AccessConnection::~AccessConnection() {
  try {
    file_->Close();
  } catch (const std::exception&) {
    // Nobody is there to be told; what was committed is in the redo log.
  }
}

std::int64_t AccessConnection::Execute(std::string_view commandText) {
  return AsProvider([&] { return file_->Session().Run(commandText).affected; });
}

std::unique_ptr<ado::Recordset> AccessConnection::OpenRecordset(std::string_view source, ado::CursorType /*cursorType*/,
                                                                ado::LockType lockType, ado::SourceKind sourceKind) {
  return AsProvider([&]() -> std::unique_ptr<ado::Recordset> {
    sql::Session& session = file_->Session();
    std::unique_ptr<sql::ResultSet> rows;
    if (sourceKind == ado::SourceKind::TableDirect || IsTableName(session, source)) {
      rows = session.OpenTable(BareName(source));
    } else {
      rows = session.Run(source).rows;
    }
    if (!rows) RaiseFailure("The statement gives no rows, so no record set can be opened on it; execute it.");
    return std::make_unique<AccessRecordset>(file_, std::move(rows), lockType == ado::LockType::ReadOnly);
  });
}

std::unique_ptr<ado::Recordset> AccessConnection::OpenSchema(ado::SchemaKind kind) {
  return AsProvider([&]() -> std::unique_ptr<ado::Recordset> {
    return std::make_unique<AccessRecordset>(file_, ListSchema(file_->GetDatabase(), kind), true);
  });
}

std::int32_t AccessConnection::BeginTrans() {
  return AsProvider([&] { return file_->Session().BeginTransaction(); });
}

void AccessConnection::CommitTrans() {
  AsProvider([&] { file_->Session().CommitTransaction(); });
}

void AccessConnection::RollbackTrans() {
  AsProvider([&] { file_->Session().RollbackTransaction(); });
}

std::int32_t AccessConnection::TransactionLevel() const {
  return file_->GetDatabase().GetPager().TransactionLevel();
}

void AccessConnection::Flush() {
  AsProvider([&] { file_->Flush(); });
}

void AccessConnection::Close() {
  AsProvider([&] { file_->Close(); });
}

}  // namespace tavi::access
