#pragma once

#include <memory>
#include <string>
#include <vector>

#include "harness/Answer.h"
#include "platform/Platform.h"

struct sqlite3;
struct sqlite3_stmt;

namespace tavi::bench {

/// The component's platform on this machine with a clock that stands still, the same for all jobs.
const std::shared_ptr<const Platform>& BenchPlatform();

/// An Access file, used as any host would: through the database provider.
class OurFile {
 public:
  explicit OurFile(const std::string& path);

  /// Runs a statement; returns the number of rows affected.
  double Run(const std::string& text);
  /// All values of all rows of a SELECT.
  Answer Rows(const std::string& text);
  ado::Connection& Connection() { return *connection_; }
  void Close() { connection_->Close(); }

 private:
  std::unique_ptr<ado::Connection> connection_;
};

/// A prepared statement of SQLite.
class SqliteStatement {
 public:
  SqliteStatement(sqlite3* file, const std::string& text);
  ~SqliteStatement();
  SqliteStatement(const SqliteStatement&) = delete;
  SqliteStatement& operator=(const SqliteStatement&) = delete;

  /// Sets a parameter (from 1).
  SqliteStatement& Bind(int parameter, double value);
  SqliteStatement& Bind(int parameter, std::int64_t value);
  SqliteStatement& Bind(int parameter, const std::string& value);
  /// The next row; false, and ready to be run again, when there is none.
  bool Next();
  void Run() {
    while (Next()) {
    }
  }
  [[nodiscard]] double Number(int column) const;
  [[nodiscard]] std::int64_t Integer(int column) const;
  [[nodiscard]] std::string Text(int column) const;
  /// Folds all values of all rows.
  void AddRows(Answer& answer);

 private:
  [[noreturn]] void Raise() const;

  sqlite3* file_;
  sqlite3_stmt* statement_ = nullptr;
};

/// A SQLite file with durability like ours: what a finished statement stored survives the end of the process.
class SqliteFile {
 public:
  /// `journal`: WAL or DELETE.
  explicit SqliteFile(const std::string& path, const std::string& journal = "WAL");
  ~SqliteFile() { Close(); }
  SqliteFile(const SqliteFile&) = delete;
  SqliteFile& operator=(const SqliteFile&) = delete;

  double Run(const std::string& text);
  Answer Rows(const std::string& text);
  [[nodiscard]] sqlite3* Handle() const { return file_; }
  void Close();

 private:
  sqlite3* file_ = nullptr;
};

}  // namespace tavi::bench
