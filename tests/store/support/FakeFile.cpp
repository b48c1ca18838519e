#include "store/support/FakeFile.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/values/Convert.h"
#include "platform/values/Text.h"

namespace tavi::testing {
namespace {

constexpr const char* kSource = "Fake provider";

constexpr std::string_view kCount = "Select count(";

bool IsAscii(const std::string& text) {
  return std::none_of(text.begin(), text.end(), [](char character) { return character < 0; });
}

/// Below, at or above 0 where a file has a value before, with or behind another one: nothing comes first, and True,
/// which is -1, before False. Other letters than those of ASCII stand where a sort order puts them, which is not known
/// here.
int Compare(const Value& left, const Value& right) {
  if (IsNull(left) || IsNull(right)) return static_cast<int>(IsNull(right)) - static_cast<int>(IsNull(left));
  const auto* leftText = std::get_if<std::string>(&left);
  const auto* rightText = std::get_if<std::string>(&right);
  if (leftText != nullptr && rightText != nullptr) {
    return IsAscii(*leftText) && IsAscii(*rightText) ? CompareIgnoringCase(*leftText, *rightText) : 0;
  }
  const double difference = ToDouble(left) - ToDouble(right);
  return difference < 0 ? -1 : static_cast<int>(difference > 0);
}

std::optional<std::size_t> PlaceOf(const FakeRows& rows, const std::string& column) {
  for (std::size_t index = 0; index < rows.fields.size(); ++index) {
    if (EqualIgnoringCase(rows.fields[index], column)) return index;
  }
  return std::nullopt;
}

/// Whether a row may come before another one by the columns of an "Order By".
bool MayPrecede(const FakeRows& rows, std::size_t first, std::size_t second, const std::string& columns) {
  for (const std::string& column : Split(columns, ',')) {
    const std::vector<std::string> words = Split(Trim(column), ' ');
    const auto place = PlaceOf(rows, words.front());
    if (!place) return true;
    const int order = Compare(rows.rows[first][*place], rows.rows[second][*place]);
    if (order != 0) return words.size() > 1 ? order > 0 : order < 0;
  }
  return true;
}

/// What stands in a statement for each "*" of a pattern, which is a word, and for its last word "...", which is the
/// rest; nothing where the statement is another one.
std::vector<std::string> Blanks(const std::string& statement, const std::string& pattern) {
  const std::vector<std::string> words = Split(statement, ' ');
  const std::vector<std::string> wanted = Split(pattern, ' ');
  std::vector<std::string> found;
  std::size_t start = 0;
  for (std::size_t index = 0; index < wanted.size(); ++index) {
    if (index >= words.size()) return {};
    if (wanted[index] == "...") {
      found.push_back(statement.substr(start));
      return found;
    }
    if (wanted[index] == "*") {
      found.push_back(words[index]);
    } else if (wanted[index] != words[index]) {
      return {};
    }
    start += words[index].size() + 1;
  }
  return words.size() == wanted.size() ? found : std::vector<std::string>();
}

/// The columns of the first "Order By" of a statement; none: the empty text.
std::string OrderOf(const std::string& source) {
  constexpr std::string_view kOrder = "Order By ";
  for (std::size_t place = 0; place + kOrder.size() < source.size(); ++place) {
    if (EqualIgnoringCase(source.substr(place, kOrder.size()), kOrder)) return source.substr(place + kOrder.size());
  }
  return "";
}

/// Fails the test whose answer no file would give: rows in another order than was asked for, or retired members among
/// the active ones.
void ExpectAnswerOfAFile(const std::string& source, const FakeRows& answer) {
  const std::string order = OrderOf(source);
  for (std::size_t row = 1; row < answer.rows.size() && !order.empty(); ++row) {
    EXPECT_TRUE(MayPrecede(answer, row - 1, row, order)) << "row " << row + 1 << " of: " << source;
  }
  const auto active = PlaceOf(answer, "Active");
  if (!active || source.find("Active <> 0") == std::string::npos) return;
  for (const auto& row : answer.rows) EXPECT_TRUE(ToBoolean(row[*active])) << source;
}

class FakeRecordset : public ado::Recordset {
 public:
  explicit FakeRecordset(FakeRows& rows) : rows_(rows) {
    for (const std::string& name : rows.fields) fields_.push_back({name, ado::DataType::WChar});
  }
  [[nodiscard]] const std::vector<ado::Field>& Fields() const override { return fields_; }
  [[nodiscard]] bool AtEnd() const override { return position_ >= rows_.rows.size(); }
  void MoveNext() override {
    if (AtEnd()) throw Error(ErrorNumber::ProviderEndOfRecords, kSource, "at the end");
    ++position_;
  }
  void MovePrevious() override {
    if (position_ == 0) throw Error(ErrorNumber::ProviderEndOfRecords, kSource, "before the first row");
    --position_;
  }
  [[nodiscard]] Value Get(std::string_view fieldName) const override {
    if (AtEnd()) throw Error(ErrorNumber::ProviderEndOfRecords, kSource, "no current row");
    return rows_.rows[position_][IndexOf(fieldName)];
  }
  void Set(std::string_view fieldName, const Value& value) override {
    if (buffer_.empty()) buffer_ = rows_.rows.at(position_);
    buffer_[IndexOf(fieldName)] = value;
  }
  void AddNew() override {
    position_ = rows_.rows.size();
    buffer_.assign(fields_.size(), Null());
  }
  void Update() override {
    if (buffer_.empty()) return;
    if (position_ == rows_.rows.size()) rows_.rows.emplace_back();
    rows_.rows[position_] = std::move(buffer_);
    buffer_.clear();
  }
  void CancelUpdate() override { buffer_.clear(); }
  void Close() override {}

 private:
  [[nodiscard]] std::size_t IndexOf(std::string_view fieldName) const {
    for (std::size_t index = 0; index < fields_.size(); ++index) {
      if (EqualIgnoringCase(fields_[index].name, fieldName)) return index;
    }
    throw Error(ErrorNumber::ProviderNoColumn, kSource, "no field " + std::string(fieldName));
  }

  FakeRows& rows_;
  std::vector<ado::Field> fields_;
  std::vector<Value> buffer_;
  std::size_t position_ = 0;
};

class FakeConnection : public ado::Connection {
 public:
  explicit FakeConnection(std::shared_ptr<FakeFile> file) : file_(std::move(file)) {}
  ~FakeConnection() override {
    while (level_ > 0) End("rollback");
  }
  FakeConnection(const FakeConnection&) = delete;
  FakeConnection& operator=(const FakeConnection&) = delete;

  std::int64_t Execute(std::string_view commandText) override {
    const std::string statement(commandText);
    file_->statements.push_back(statement);
    for (const auto& [text, error] : file_->failures) {
      if (statement.find(text) != std::string::npos) throw error;
    }
    Run(statement);
    return 0;
  }
  std::unique_ptr<ado::Recordset> OpenRecordset(std::string_view source, ado::CursorType cursorType,
                                                ado::LockType lockType, ado::SourceKind sourceKind) override {
    file_->recordsets.push_back({std::string(source), cursorType, lockType, sourceKind});
    for (const auto& [text, error] : file_->failures) {
      if (source.find(text) != std::string::npos) throw error;
    }
    FakeRows& answer = file_->answers[std::string(source)];
    const bool isCount = EqualIgnoringCase(source.substr(0, kCount.size()), kCount);
    if (isCount && answer.rows.empty()) answer = {{"Expr1000"}, {{std::int32_t{0}}}};
    ExpectAnswerOfAFile(std::string(source), answer);
    return MakeFakeRecordset(answer);
  }
  std::unique_ptr<ado::Recordset> OpenSchema(ado::SchemaKind /*kind*/) override {
    schema_.fields = {"TABLE_NAME", "COLUMN_NAME", "DATA_TYPE"};
    schema_.rows.clear();
    for (const auto& [table, columns] : file_->tables) {
      for (const auto& [column, type] : columns) {
        const std::int32_t number = type == "Double" ? 5 : 3;
        schema_.rows.push_back({table, column, number});
      }
    }
    return MakeFakeRecordset(schema_);
  }
  void Flush() override {}
  std::int32_t BeginTrans() override {
    file_->transactions.push_back("begin " + std::to_string(++level_));
    return level_;
  }
  void CommitTrans() override { End("commit"); }
  void RollbackTrans() override { End("rollback"); }
  [[nodiscard]] std::int32_t TransactionLevel() const override { return level_; }
  void Close() override {
    while (level_ > 0) End("rollback");
    ++file_->closes;
  }

 private:
  void End(const std::string& how) {
    if (level_ == 0) throw Error(ErrorNumber::ProviderFailure, kSource, "There is no transaction to end.");
    for (const auto& [text, error] : file_->failures) {
      if (text == how) throw error;
    }
    file_->transactions.push_back(how + " " + std::to_string(level_--));
  }

  void Run(const std::string& statement) {
    const auto select = Blanks(statement, "Select Top 1 * From *");
    if (!select.empty() && !file_->HasColumn(select[1], select[0])) {
      throw Error(ErrorNumber::ProviderBadParameter, kSource, "no column " + select[0]);
    }
    const auto add = Blanks(statement, "Alter Table * Add Column * ...");
    if (!add.empty()) file_->tables[add[0]][add[1]] = add[2];
    const auto drop = Blanks(statement, "Alter Table * Drop Column *");
    if (!drop.empty() && file_->tables[drop[0]].erase(drop[1]) == 0) {
      throw Error(ErrorNumber::ProviderBadParameter, kSource, "nothing to drop");
    }
    const auto create = Blanks(statement, "Create Table * ...");
    if (!create.empty() && !file_->tables.try_emplace(create[0]).second) {
      throw Error(ErrorNumber::ProviderFailure, kSource, "the table exists");
    }
  }

  std::shared_ptr<FakeFile> file_;
  FakeRows schema_;
  std::int32_t level_ = 0;
};

class FakeProvider : public ado::Provider {
 public:
  explicit FakeProvider(std::shared_ptr<FakeFile> file) : file_(std::move(file)) {}
  [[nodiscard]] std::unique_ptr<ado::Connection> Open(std::string_view connectionString) const override {
    file_->connectionStrings.emplace_back(connectionString);
    if (file_->openFailures > 0) {
      --file_->openFailures;
      throw Error(ErrorNumber::ProviderFailure, kSource, "Could not find file.");
    }
    ++file_->opens;
    return std::make_unique<FakeConnection>(file_);
  }

 private:
  std::shared_ptr<FakeFile> file_;
};

/// Makes a key of a name that can be told from the name.
class FakeNameKeys : public NameKeyService {
 public:
  [[nodiscard]] std::string Key(NameKeyMode mode, std::string_view name) const override {
    return (mode == NameKeyMode::Surname ? "S:" : "F:") + UpperCase(name);
  }
};

/// A registry that holds the governing body only.
class FakeRegistry : public Registry {
 public:
  explicit FakeRegistry(const std::optional<std::string>& governingBody) : governingBody_(governingBody) {}
  [[nodiscard]] std::optional<std::string> ReadText(RegistryRoot root, std::string_view keyPath,
                                                    std::string_view valueName) const override {
    const bool isAsked = root == RegistryRoot::CurrentUser && keyPath == "Software\\Pelmont\\Bridge\\ClubDatabase" &&
                         valueName == "Governing Body";
    return isAsked ? governingBody_ : std::nullopt;
  }

 private:
  const std::optional<std::string>& governingBody_;
};

}  // namespace

std::vector<std::string> FakeFile::StatementsWith(const std::string& beginning) const {
  std::vector<std::string> found;
  for (const std::string& statement : statements) {
    if (statement.starts_with(beginning)) found.push_back(statement);
  }
  return found;
}

bool FakeFile::HasColumn(const std::string& table, const std::string& column) const {
  const auto found = tables.find(table);
  return found != tables.end() && found->second.contains(column);
}

std::shared_ptr<FakeFile> CurrentFakeFile() {
  auto file = std::make_shared<FakeFile>();
  const auto add = [&file](const char* table, const std::vector<std::string>& columns) {
    for (const std::string& column : columns) file->tables[table][column] = "Long";
  };
  add("Settings", {"LastMPCertificate", "LastMPUploadNo", "MPCertificatePrefix", "CountyList", "LastUploadDate",
                   "MasterPointMethod", "LastGotEBUNos"});
  add("Members", {"MembershipNumber", "HandicalcSeed", "HandicalcSeedDate", "UniquenessFlag", "Sex", "HouseID",
                  "PostCode", "DOB", "Title", "Stratum", "Privacy"});
  add("MasterPoints", {"ID", "MPTotalsString", "Colour", "SessionNo"});
  file->tables["MasterPoints"]["TempMPTotal"] = "Double";
  add("Partnerships", {"HandicalcSeed", "HandicalcSeedDate"});
  add("Competitions", {"ID", "NumberOfTables", "NumberOfWinners", "MasterPointsColour", "IsTeams", "IsSwiss",
                       "IsExternal", "QualiFinal", "NatCode", "Individual"});
  add("ClubNames", {"ClubID", "Affiliation"});
  add("HandicalcSettings", {"Disabled"});
  add("EBUMembershipList", {"EBUNumber"});
  return file;
}

std::unique_ptr<ado::Recordset> MakeFakeRecordset(FakeRows& rows) {
  return std::make_unique<FakeRecordset>(rows);
}

FakePlatform::FakePlatform() {
  platform->databaseProvider = std::make_shared<FakeProvider>(file);
  platform->messageBoxes = messages;
  platform->nameKeyService = std::make_shared<FakeNameKeys>();
  platform->registry = std::make_shared<FakeRegistry>(governingBody);
}

}  // namespace tavi::testing
