#include "access/provider/support/Evening.h"

#include <algorithm>
#include <tuple>

#include "access/file/Pager.h"
#include "access/file/support/Random.h"
#include "access/provider/AccessProvider.h"
#include "access/provider/support/Inspection.h"
#include "platform/values/Error.h"

namespace tavi::access::test {

namespace {

using Kind = EveningStep::Kind;

/// Makes the steps; knows only which optional things are there.
class EveningMaker {
 public:
  EveningMaker(std::uint32_t seed, std::size_t steps) : random_(seed), wanted_(steps) {}

  std::vector<EveningStep> Make() {
    Say("Create Table Members (ID Counter Constraint PrimaryKey Primary Key, [Name] Text (255), Code Long, Notes Memo, "
        "Active Bit)");
    Say("Create Index ByName On Members ([Name])");
    Say("Create Table Results (Player Long, Score Long, Remark Text (100))");
    Say("Create Index ByPlayer On Results (Player, Score Desc)");
    Say("Create Unique Index ByCode On Members (Code)");
    while (steps_.size() < wanted_) Continue();
    return std::move(steps_);
  }

 private:
  void Say(std::string text, Kind kind = Kind::Statement) { steps_.push_back({kind, std::move(text), {}, true}); }
  std::string Number(std::uint64_t count) { return std::to_string(random_.Below(count)); }
  std::string Word(std::size_t longest) {
    std::string word(1 + random_.Below(longest), 'a');
    for (char& letter : word) letter = static_cast<char>('a' + random_.Below(26));
    return word;
  }
  // Of every form that a memo can have: in the row, on a page with others, on a chain of pages.
  std::string Memo() {
    constexpr std::size_t kLengths[] = {10, 60, 700, 2500, 9000};
    return std::string(kLengths[random_.Below(std::size(kLengths))], static_cast<char>('a' + random_.Below(26)));
  }

  void Continue() {
    const std::uint32_t choice = random_.Below(100);
    if (choice < 8) return DoTogether();
    if (choice < 30) return InsertMember();
    if (choice < 44) return Say("Update Members Set Notes = '" + Memo() + "' Where ID Mod 7 = " + Number(7));
    if (choice < 52) return Say("Update Members Set [Name] = '" + Word(200) + "' Where ID Mod 9 = " + Number(9));
    if (choice < 57) return Say("Delete From Members Where ID Mod 11 = " + Number(11));
    if (choice < 67) return InsertResults();
    if (choice < 70) return Say("Update Results Set Score = Score + 1 Where Player Mod 3 = " + Number(3));
    if (choice < 73) return Say("Delete From Results Where Score Mod 4 = " + Number(4));
    if (choice < 78) return Say(Word(100), Kind::AddRow);
    if (choice < 82) return Say(Memo(), Kind::EditRow);
    if (choice < 86) return AddOrDropColumn();
    if (choice < 89) return AddOrDropIndex();
    if (choice < 93) return AddOrDropTable();
    if (choice < 95) return Say("Insert Into Members (Code, Nothing) Values (1, 2)");
    if (depth_ == 0) Say("", Kind::Reopen);
  }

  // Several steps as one, some of which are such ones themselves.
  void DoTogether() {
    constexpr int kDeepest = 3;
    if (depth_ == kDeepest) return;
    EveningStep together{Kind::Transaction, "", {}, random_.Below(4) != 0};
    const auto known = std::tuple(hasColumn_, hasIndex_, hasTable_);
    steps_.swap(together.parts);
    ++depth_;
    for (std::uint32_t parts = 1 + random_.Below(5); parts > 0; --parts) {
      if (random_.Below(5) == 0) {
        Say("Update Members Set Code = 5000, Notes = '" + Memo() + "'", Kind::Duplicate);
      } else {
        Continue();
      }
    }
    --depth_;
    steps_.swap(together.parts);
    if (!together.isKept) std::tie(hasColumn_, hasIndex_, hasTable_) = known;
    steps_.push_back(std::move(together));
  }

  void InsertMember() {
    Say("Insert Into Members ([Name], Code, Notes, Active) Values ('" + Word(200) + "', " + Number(400) + ", " +
        (random_.Below(4) == 0 ? "Null" : "'" + Memo() + "'") + ", " + (random_.Below(2) == 0 ? "True" : "False") +
        ")");
  }
  void InsertResults() {
    Say("Insert Into Results (Player, Score, Remark) Select ID, " + Number(100) + ", Left([Name], 40) From Members " +
        "Where ID Mod 3 = " + Number(3) + " Order By ID");
  }
  void AddOrDropColumn() {
    hasColumn_ = !hasColumn_;
    if (!hasColumn_) return Say("Alter Table Members Drop Column House");
    Say("Alter Table Members Add Column House Text (50)");
    Say("Update Members Set House = 'number " + Number(99) + "' Where ID Mod 2 = 0");
  }
  void AddOrDropIndex() {
    hasIndex_ = !hasIndex_;
    Say(hasIndex_ ? "Create Index ByRemark On Results (Remark)" : "Drop Index ByRemark On Results");
  }
  void AddOrDropTable() {
    hasTable_ = !hasTable_;
    if (!hasTable_) return Say("Drop Table Visitors");
    Say("Create Table Visitors (ID Counter, [Name] Text (255), Notes Memo)");
    Say("Insert Into Visitors ([Name], Notes) Select [Name], Notes From Members Where ID Mod 4 = " + Number(4) +
        " Order By ID");
  }

  Random random_;
  std::size_t wanted_;
  int depth_ = 0;  // how many transactions are being made, one in the other
  bool hasColumn_ = false;
  bool hasIndex_ = false;
  bool hasTable_ = false;
  std::vector<EveningStep> steps_;
};

void AddRow(ado::Connection& connection, const std::string& name) {
  const auto rows = connection.OpenRecordset("Members", ado::CursorType::Keyset, ado::LockType::Optimistic,
                                             ado::SourceKind::TableDirect);
  rows->AddNew();
  rows->Set("Name", name);
  rows->Update();
}

void EditRow(ado::Connection& connection, const std::string& notes) {
  const auto rows = connection.OpenRecordset("Select * From Members Order By ID", ado::CursorType::Dynamic,
                                             ado::LockType::Optimistic, ado::SourceKind::CommandText);
  if (rows->AtEnd()) return;
  rows->Set("Notes", notes);
  rows->Set("Active", true);
  rows->Update();
}

void RunOnce(ado::Connection& connection, const EveningStep& step);

void RunTogether(ado::Connection& connection, const EveningStep& step) {
  connection.BeginTrans();
  try {
    for (const EveningStep& part : step.parts) RunOnce(connection, part);
    if (step.isKept) {
      connection.CommitTrans();
    } else {
      connection.RollbackTrans();
    }
  } catch (const Error&) {
    connection.RollbackTrans();
    throw;
  }
}

void RunUnlessDuplicate(ado::Connection& connection, const std::string& statement) {
  try {
    connection.Execute(statement);
  } catch (const Error& error) {
    if (error.Description().find("duplicate values") == std::string::npos) throw;
  }
}

void RunOnce(ado::Connection& connection, const EveningStep& step) {
  switch (step.kind) {
    case Kind::Statement:
      connection.Execute(step.text);
      break;
    case Kind::AddRow:
      AddRow(connection, step.text);
      break;
    case Kind::EditRow:
      EditRow(connection, step.text);
      break;
    case Kind::Duplicate:
      RunUnlessDuplicate(connection, step.text);
      break;
    case Kind::Transaction:
      RunTogether(connection, step);
      break;
    case Kind::Reopen:
      break;
  }
}

}  // namespace

std::vector<EveningStep> MakeEvening(std::uint32_t seed, std::size_t steps) {
  return EveningMaker(seed, steps).Make();
}

bool RunStep(ado::Connection& connection, const EveningStep& step, std::string* refusal) {
  try {
    RunOnce(connection, step);
    return step.isKept;
  } catch (const Error& error) {
    if (refusal != nullptr) *refusal = error.Description();
    return false;
  }
}

std::shared_ptr<MemoryFileSystem> NewEveningFile() {
  auto memory = std::make_shared<MemoryFileSystem>();
  Database::CreateFile(*memory, kEveningPath, Date{45000});
  return memory;
}

std::vector<std::uint64_t> RehearseEvening(const std::vector<EveningStep>& steps) {
  const auto memory = NewEveningFile();
  const auto provider = MakeAccessProvider(memory, std::make_shared<EveningClock>(), {});
  std::vector<std::uint64_t> digests;
  const auto note = [&] {
    Database database(Pager::Open(memory->AfterCrash(CrashKind::Kept, 0), kEveningPath, {}));
    digests.push_back(DigestOf(database));
  };
  note();
  auto connection = provider->Open(kEveningSource);
  for (const EveningStep& step : steps) {
    if (step.kind == Kind::Reopen) {
      connection->Close();
      connection = provider->Open(kEveningSource);
    } else {
      RunStep(*connection, step);
    }
    note();
  }
  return digests;
}

}  // namespace tavi::access::test
