#pragma once

#include <memory>
#include <string>
#include <vector>

#include "access/catalog/support/TestFile.h"
#include "access/sql/run/Session.h"

namespace tavi::access::test {

/// A clock that stands still.
class StillClock final : public Clock {
 public:
  [[nodiscard]] Date Now() const override { return kNow; }
};

/// Another connection to a file, with a session of its own.
class OtherUser {
 public:
  OtherUser(const std::string& path, sql::PlanOptions options)
      : database_(Pager::Open(NativeFileSystem(), path, {})),
        session_(database_, std::make_shared<StillClock>(), options) {}

  sql::Session& GetSession() { return session_; }
  std::vector<std::string> Rows(const std::string& text);

 private:
  Database database_;
  sql::Session session_;
};

/// A new, empty file with a session.
class SqlFile {
 public:
  SqlFile();

  /// Runs a statement and returns the number of rows affected.
  std::int64_t Run(const std::string& text);
  /// Runs statements one after the other.
  void RunAll(const std::vector<std::string>& texts);
  /// The rows of a SELECT as texts, values separated by "|", null as "null".
  std::vector<std::string> Rows(const std::string& text);
  [[nodiscard]] std::unique_ptr<sql::ResultSet> Open(const std::string& text);
  /// The error that a statement raises; fails the test when it raises none.
  Error Refused(const std::string& text);
  [[nodiscard]] std::string Explain(const std::string& text) { return session_->Explain(text); }

  [[nodiscard]] sql::Session& GetSession() { return *session_; }
  [[nodiscard]] TestFile& File() { return file_; }
  /// Another connection to the same file, for instance with other plan options.
  [[nodiscard]] std::unique_ptr<OtherUser> NewUser(sql::PlanOptions options = {}) {
    return std::make_unique<OtherUser>(file_.Path(), options);
  }
  /// Expects that the file is sound, now and opened anew. Result sets must be closed.
  void ExpectSound();

 private:
  TestFile file_;
  std::unique_ptr<sql::Session> session_;
};

/// The rows of a result set from its current row on, as SqlFile::Rows gives them.
std::vector<std::string> RowTexts(sql::ResultSet& rows);
std::string ValueText(const Value& value);
/// The number of an error as enumerated.
std::uint32_t NumberOf(const Error& error);

/// Makes the tables of a small bridge club, with keys and indexes, and some rows.
void MakeClub(SqlFile& file);

}  // namespace tavi::access::test
