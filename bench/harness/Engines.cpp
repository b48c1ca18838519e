#include "harness/Engines.h"

#include <sqlite3.h>

#include <stdexcept>

#include "composition/Composition.h"
#include "store/cDatabase.h"

namespace tavi::bench {

const std::shared_ptr<const Platform>& BenchPlatform() {
  static const std::shared_ptr<const Platform> kPlatform = [] {
    PlatformOptions options;
    options.now = Date::FromCivil(2026, 6, 30);
    return MakePlatform(options);
  }();
  return kPlatform;
}

OurFile::OurFile(const std::string& path)
    : connection_(BenchPlatform()->databaseProvider->Open(ConnectionText(path))) {}

double OurFile::Run(const std::string& text) {
  return static_cast<double>(connection_->Execute(text));
}

Answer OurFile::Rows(const std::string& text) {
  Answer answer;
  const auto rows = connection_->OpenRecordset(text, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                               ado::SourceKind::CommandText);
  const std::vector<ado::Field>& fields = rows->Fields();
  for (; !rows->AtEnd(); rows->MoveNext()) {
    for (const ado::Field& field : fields) answer.Add(rows->Get(field.name));
    answer.EndRow();
  }
  return answer;
}

SqliteStatement::SqliteStatement(sqlite3* file, const std::string& text) : file_(file) {
  if (sqlite3_prepare_v2(file_, text.c_str(), -1, &statement_, nullptr) != SQLITE_OK) Raise();
}

SqliteStatement::~SqliteStatement() {
  sqlite3_finalize(statement_);
}

void SqliteStatement::Raise() const {
  throw std::runtime_error(std::string("SQLite: ") + sqlite3_errmsg(file_));
}

SqliteStatement& SqliteStatement::Bind(int parameter, double value) {
  if (sqlite3_bind_double(statement_, parameter, value) != SQLITE_OK) Raise();
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, std::int64_t value) {
  if (sqlite3_bind_int64(statement_, parameter, value) != SQLITE_OK) Raise();
  return *this;
}

SqliteStatement& SqliteStatement::Bind(int parameter, const std::string& value) {
  const int length = static_cast<int>(value.size());
  if (sqlite3_bind_text(statement_, parameter, value.data(), length, SQLITE_TRANSIENT) != SQLITE_OK) Raise();
  return *this;
}

bool SqliteStatement::Next() {
  const int result = sqlite3_step(statement_);
  if (result == SQLITE_ROW) return true;
  if (result != SQLITE_DONE) Raise();
  sqlite3_reset(statement_);
  return false;
}

double SqliteStatement::Number(int column) const {
  return sqlite3_column_double(statement_, column);
}

std::int64_t SqliteStatement::Integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

std::string SqliteStatement::Text(int column) const {
  const auto* text = static_cast<const char*>(sqlite3_column_blob(statement_, column));
  return {text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
}

void SqliteStatement::AddRows(Answer& answer) {
  const int columns = sqlite3_column_count(statement_);
  while (Next()) {
    for (int column = 0; column < columns; ++column) {
      switch (sqlite3_column_type(statement_, column)) {
        case SQLITE_NULL:
          answer.AddNull();
          break;
        case SQLITE_TEXT:
          answer.Add(std::string_view(static_cast<const char*>(sqlite3_column_blob(statement_, column)),
                                      static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))));
          break;
        default:
          answer.Add(Number(column));
      }
    }
    answer.EndRow();
  }
}

SqliteFile::SqliteFile(const std::string& path, const std::string& journal) {
  if (sqlite3_open(path.c_str(), &file_) != SQLITE_OK) throw std::runtime_error("SQLite cannot open " + path);
  Run("PRAGMA journal_mode = " + journal);
  Run(journal == "WAL" ? "PRAGMA synchronous = NORMAL" : "PRAGMA synchronous = FULL");
  Run("PRAGMA cache_size = -65536");
}

void SqliteFile::Close() {
  sqlite3_close(file_);
  file_ = nullptr;
}

double SqliteFile::Run(const std::string& text) {
  SqliteStatement(file_, text).Run();
  return sqlite3_changes(file_);
}

Answer SqliteFile::Rows(const std::string& text) {
  Answer answer;
  SqliteStatement(file_, text).AddRows(answer);
  return answer;
}

}  // namespace tavi::bench
