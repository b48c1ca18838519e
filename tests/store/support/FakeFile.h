#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "platform/ado/Provider.h"
#include "platform/values/Error.h"

namespace tavi::testing {

/// Rows of a fake record set, kept by the file, so that changes can be looked at.
struct FakeRows {
  std::vector<std::string> fields;
  std::vector<std::vector<Value>> rows;
};

/// A file of which the provider knows the columns of each table, and answers that the test puts in. It records what it
/// is asked, fails where the test says so, and fails the test where a file could not give its answer: rows in another
/// order than was asked for, or retired members among the active ones. A count without an answer is 0.
struct FakeFile {
  /// The columns of each table with their type words.
  std::map<std::string, std::map<std::string, std::string>> tables;
  /// The rows that a record set on this source (a table, or the exact text of a statement) gives.
  std::map<std::string, FakeRows> answers;
  /// Statements that contain the text fail with the error.
  std::vector<std::pair<std::string, Error>> failures;
  /// How many of the next openings fail.
  int openFailures = 0;

  /// What happened to transactions: "begin 1", "commit 1", "rollback 2".
  std::vector<std::string> transactions;
  int opens = 0;
  int closes = 0;
  std::vector<std::string> connectionStrings;
  std::vector<std::string> statements;
  struct Opened {
    std::string source;
    ado::CursorType cursorType;
    ado::LockType lockType;
    ado::SourceKind sourceKind;
  };
  std::vector<Opened> recordsets;

  /// The statements that begin with a text.
  [[nodiscard]] std::vector<std::string> StatementsWith(const std::string& beginning) const;
  [[nodiscard]] bool HasColumn(const std::string& table, const std::string& column) const;
};

/// A file of the current layout, without rows.
std::shared_ptr<FakeFile> CurrentFakeFile();

/// A record set on rows of a test.
std::unique_ptr<ado::Recordset> MakeFakeRecordset(FakeRows& rows);

struct ShownMessage {
  MessageBoxIcon icon;
  std::string title;
  std::string text;
};

/// Keeps the messages that would have been shown.
class RecordedMessages : public MessageBoxes {
 public:
  void Show(MessageBoxIcon icon, const std::string& title, const std::string& text) const override {
    shown.push_back({icon, title, text});
  }
  mutable std::vector<ShownMessage> shown;
};

/// A platform on a fake file, with an empty registry that the test can fill.
struct FakePlatform {
  FakePlatform();
  std::shared_ptr<FakeFile> file = CurrentFakeFile();
  std::shared_ptr<RecordedMessages> messages = std::make_shared<RecordedMessages>();
  std::optional<std::string> governingBody;
  std::shared_ptr<Platform> platform = std::make_shared<Platform>();
};

}  // namespace tavi::testing
