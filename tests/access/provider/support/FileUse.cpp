#include "access/provider/support/FileUse.h"

#include <stdexcept>
#include <utility>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/provider/AccessConnection.h"
#include "access/provider/support/CountingPager.h"
#include "access/provider/support/Evening.h"
#include "access/sql/run/Session.h"
#include "platform/values/Error.h"

namespace tavi::access::test {

namespace {

// A result is not read further than this; a damaged file may join everything with everything.
constexpr std::size_t kRowsRead = 2000;
// Tables that are used; the others have nothing new to show.
constexpr std::size_t kTablesUsed = 12;

class FileUser {
 public:
  FileUser(const std::shared_ptr<MemoryFileSystem>& memory, std::uint64_t limit) : limit_(limit), memory_(memory) {}

  Use Run() {
    Try([&] {
      PagerOptions options;
      options.lockTimeout = std::chrono::milliseconds(0);
      auto pager = std::make_unique<CountingPager>(Pager::Open(memory_, kUsedPath, options), limit_);
      const CountingPager& counter = *pager;
      Database database(std::move(pager));
      sql::Session session(database, std::make_shared<EveningClock>());
      UseAll(database, session);
      Try([&] { database.GetPager().Close(); });
      use_.pagesRead = limit_ - counter.Left();
    });
    return use_;
  }

 private:
  template <typename Request>
  void Try(Request request) {
    try {
      request();
      ++use_.answers;
    } catch (const Error& error) {
      if (error.Description().empty()) throw std::logic_error("an error without a description");
      ++use_.refusals;
    }
  }

  void UseAll(Database& database, sql::Session& session) {
    Try([&] { static_cast<void>(CheckDatabase(database, CheckKind::Strict)); });
    for (const auto kind : {ado::SchemaKind::Tables, ado::SchemaKind::Columns, ado::SchemaKind::Indexes}) {
      Try([&] { ReadAll(*ListSchema(database, kind)); });
    }
    std::vector<CatalogEntry> tables;
    Try([&] {
      const ReadStatement statement(database.GetPager());
      tables = database.Tables();
      static_cast<void>(database.Relationships());
    });
    std::size_t used = 0;
    for (const CatalogEntry& entry : tables) {
      Try([&] { ReadAll(*session.OpenTable(entry.name)); });
      if (!entry.isSystem && ++used <= kTablesUsed)
        UseTable(session, "[" + entry.name + "]", FirstColumn(session, entry));
    }
    Try([&] { session.Run("Create Table Another (ID Counter Constraint K Primary Key, T Text (20), M Memo)"); });
    Try([&] { session.Run("Insert Into Another (T, M) Values ('a', '" + std::string(5000, 'm') + "')"); });
    Try([&] { static_cast<void>(CheckDatabase(database)); });
  }

  std::string FirstColumn(sql::Session& session, const CatalogEntry& entry) {
    std::string name = "ID";
    Try([&] {
      const auto rows = session.OpenTable(entry.name);
      if (!rows->Columns().empty()) name = rows->Columns().front().name;
    });
    return "[" + name + "]";
  }

  void UseTable(sql::Session& session, const std::string& table, const std::string& column) {
    const auto run = [&](const std::string& text) {
      Try([&] {
        const sql::Outcome outcome = session.Run(text);
        if (outcome.rows) ReadAll(*outcome.rows);
      });
    };
    run("Select * From " + table);
    run("Select Count(*), Min(" + column + ") From " + table + " Where " + column + " > 0");
    run("Select * From " + table + " Order By " + column + " Desc");
    run("Update " + table + " Set " + column + " = " + column);
    Try([&] {
      const auto rows = session.OpenTable(table.substr(1, table.size() - 2));
      rows->AddNew();
      rows->Update();
    });
    run("Alter Table " + table + " Add Column Added Text (30)");
    run("Update " + table + " Set Added = 'something longer than before'");
    run("Create Index ByAdded On " + table + " (Added)");
    run("Delete From " + table + " Where " + column + " Is Null");
    run("Alter Table " + table + " Drop Column " + column);
    run("Delete From " + table);
    run("Drop Table " + table);
  }

  void ReadAll(sql::ResultSet& rows) {
    for (std::size_t row = 0; row < kRowsRead && !rows.AtEnd(); ++row, rows.MoveNext()) {
      for (std::size_t column = 0; column < rows.Columns().size(); ++column) {
        Try([&] { static_cast<void>(rows.Get(column)); });
      }
    }
  }

  std::uint64_t limit_;
  std::shared_ptr<MemoryFileSystem> memory_;
  Use use_;
};

void AddRelationship(Database& database) {
  WriteStatement statement(database.GetPager());
  Relationship relationship;
  relationship.name = "PairsMembers";
  relationship.primaryTable = "Members";
  relationship.primaryColumns = {"ID"};
  relationship.foreignTable = "Pairs";
  relationship.foreignColumns = {"Player"};
  relationship.enforced = true;
  relationship.cascadeDeletes = true;
  database.CreateRelationship(relationship, Date{45000});
  statement.Commit();
}

}  // namespace

Use UseFile(const std::shared_ptr<MemoryFileSystem>& memory, std::uint64_t limit) {
  return FileUser(memory, limit).Run();
}

Use UseFile(const std::vector<std::uint8_t>& bytes, std::uint64_t limit) {
  const auto memory = std::make_shared<MemoryFileSystem>();
  memory->SetContents(kUsedPath, bytes);
  return UseFile(memory, limit);
}

std::vector<std::uint8_t> MakeFileOfEverything() {
  const auto memory = NewEveningFile();
  {
    Database database(Pager::Open(memory, kEveningPath, {}));
    sql::Session session(database, std::make_shared<EveningClock>());
    const auto run = [&](const std::string& text) { session.Run(text); };
    run("Create Table Members (ID Counter Constraint K Primary Key, [Name] Text (255) Not Null, Notes Memo, Born "
        "Date)");
    run("Create Index ByName On Members ([Name] Desc)");
    for (int i = 0; i < 40; ++i) {
      const auto letter = static_cast<char>('a' + i % 26);
      const std::size_t length = i == 3 ? 9000 : i % 5 == 0 ? 900 : static_cast<std::size_t>(i);
      run("Insert Into Members ([Name], Notes, Born) Values ('" + std::string(120, letter) + "', '" +
          std::string(length, letter) + "', #1/2/1950#)");
    }
    run("Update Members Set Notes = Notes & '" + std::string(150, 'u') + "' Where ID < 10");
    run("Create Table Types (A Long, B Byte, C Single, D Double, E Currency, F Date, G Bit, H Text (10), I Memo, J "
        "Guid, "
        "K Binary (20), L LongBinary, M Integer Default 7)");
    run("Insert Into Types (A, B, C, D, E, F, G, H, I) Values (1, 2, 3.5, 4.25, 5.5, #6/7/2008#, True, 'h', 'i')");
    run("Create Table Pairs (Player Long, Partner Long, Score Double)");
    for (int i = 1; i < 30; ++i) {
      run("Insert Into Pairs (Player, Partner, Score) Values (" + std::to_string(i) + ", " + std::to_string(i + 1) +
          ", 51.25)");
    }
    AddRelationship(database);
    database.GetPager().Close();
  }
  return memory->Contents(kEveningPath);
}

}  // namespace tavi::access::test
