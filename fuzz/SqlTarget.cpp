// SQL statements, one a line, on a small file, which must be sound afterwards.
#include <sstream>
#include <stdexcept>
#include <string>

#include "access/catalog/Check.h"
#include "access/file/Pager.h"
#include "access/provider/support/CountingPager.h"
#include "access/provider/support/Evening.h"
#include "access/sql/run/Session.h"
#include "fuzz/Target.h"
#include "platform/values/Error.h"

namespace {

using namespace tavi;
using namespace tavi::access;
using namespace tavi::access::test;

constexpr std::uint64_t kMostReads = 1000000;
constexpr std::size_t kMostRows = 300;
constexpr std::size_t kMostStatements = 6;
// Texts longer than this only take time.
constexpr std::size_t kLongestInput = 3000;

std::shared_ptr<const MemoryFileSystem> MakeFile() {
  auto memory = NewEveningFile();
  Database database(Pager::Open(memory, kEveningPath, {}));
  sql::Session session(database, std::make_shared<EveningClock>());
  for (const char* text :
       {"Create Table M (ID Counter Constraint K Primary Key, N Text (20), B Date, A Bit, C Currency, X Memo)",
        "Create Index ByN On M (N)", "Create Table R (P Long, S Double, W Integer Default 3)",
        "Insert Into M (N, B, A, C, X) Values ('Ann', #1/2/2003#, True, 1.5, 'text')",
        "Insert Into M (N, B) Values ('Éloïse', #3/4/2005 6:7:8#)", "Insert Into M (N) Values (Null)",
        "Insert Into R (P, S) Values (1, 50.5)", "Insert Into R (P, S) Values (2, Null)",
        "Insert Into R (P, S, W) Values (1, 61.25, -4)"}) {
    session.Run(text);
  }
  database.GetPager().Close();
  return memory;
}

void Run(sql::Session& session, const std::string& text) {
  try {
    const sql::Outcome outcome = session.Run(text);
    if (!outcome.rows) return;
    for (std::size_t row = 0; row < kMostRows && !outcome.rows->AtEnd(); ++row, outcome.rows->MoveNext()) {
      for (std::size_t column = 0; column < outcome.rows->Columns().size(); ++column) {
        static_cast<void>(outcome.rows->Get(column));
      }
    }
  } catch (const Error& error) {
    if (error.Description().empty()) throw std::logic_error("an error without a description");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::shared_ptr<const MemoryFileSystem> file = MakeFile();
  if (size > kLongestInput) return 0;
  const auto memory = file->AfterCrash(CrashKind::Kept, 0);
  Database database(std::make_unique<CountingPager>(Pager::Open(memory, kEveningPath, {}), kMostReads));
  sql::Session session(database, std::make_shared<EveningClock>());
  std::istringstream lines(std::string(data, data + size));
  std::string line;
  for (std::size_t i = 0; i < kMostStatements && std::getline(lines, line); ++i) Run(session, line);
  const auto findings = CheckDatabase(database, CheckKind::Strict);
  if (!findings.empty()) throw std::logic_error("the file is damaged: " + findings.front());
  return 0;
}
