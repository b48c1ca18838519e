// A connection: each call goes to the engine's session, under a guard (AsProvider) that gives every error the engine's
// source, so that programs know where it comes from.
//
// Connection and record sets share the open file. Whichever goes last gives it back; but closing the connection, or its
// end, closes the file at once, and record sets that are still about then say so instead of reading on.
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

/// A record set may be opened on the bare name of a table. The length and the word Select are asked first, as looking
/// in the catalogue is what each statement of a program would pay otherwise.
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

// Counts as closed before it is tried, so that an error of closing is told once; what could not be written is in the
// log.
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

// Rows that the statement gives are dropped with its outcome.
std::int64_t AccessConnection::Execute(std::string_view commandText) {
  return AsProvider([&] { return file_->Session().Run(commandText).affected; });
}

// The kind of cursor is not asked: every record set here can go both ways. A statement that changes rows is run, and
// only then found to have none to show.
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
    // A list that describes the file is made at once and can be read only.
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
