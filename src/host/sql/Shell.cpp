#include "host/sql/Shell.h"

#include <atomic>
#include <optional>
#include <ostream>

#include "host/commands/OpenFile.h"
#include "host/sql/Query.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

// The shell: lines are collected until a statement has its end, then it runs; a line that begins with a full stop is a
// command, but only between statements, since a number may begin with one. The same shell serves a person and a file of
// statements; they differ in what an error does. A person sees it and goes on; of a file the rest might build on what
// failed, so it ends there.
//
// Each statement is shown at once and whole: its rows are read before the first is written. A transaction that is open
// at the end was not committed, and is rolled back with a message, because its changes would be missed without a word
// otherwise.
namespace tavi::host {
namespace {

constexpr const char* kPrompt = "tavi> ";
// With a star, so that nobody leaves a transaction open without noticing.
constexpr const char* kPromptInTransaction = "tavi*> ";
constexpr const char* kPromptWithin = "  ... ";
constexpr const char* kHelp =
    "A statement ends with a semicolon and may take several lines. BEGIN, COMMIT and ROLLBACK make several one; they\n"
    "nest, and the prompt shows a star until the end. Commands:\n"
    "  .tables           the tables of the file\n"
    "  .columns TABLE    the columns of a table\n"
    "  .explain on|off   show how statements would be run instead of running them\n"
    "  .flush            wait until all that is stored would survive a loss of power\n"
    "  .flush on|off     whether each statement waits for that\n"
    "  .bail on|off      whether the first error ends the run\n"
    "  .help             this text\n"
    "  .quit             leave (so does the end of the input)\n";

/// False for blanks and semicolons only, which are no statement.
bool HasText(const std::string& text) {
  return text.find_first_not_of(" \t\r\n;") != std::string::npos;
}

/// The table's name without brackets, blanks and a closing semicolon.
/// People add what they are used to from statements.
std::string TidyName(std::string name) {
  while (!name.empty() && (name.back() == ';' || name.back() == ' ')) name.pop_back();
  if (name.size() >= 2 && name.front() == '[' && name.back() == ']') name = name.substr(1, name.size() - 2);
  return name;
}

}  // namespace

int Shell::Run() {
  // Nothing of the kind in a file's run, whose output is its results alone.
  if (interactive_) context_.out << "Statements end with a semicolon; .help tells more.\n" << std::flush;
  bool goOn = true;
  while (goOn) {
    const auto line = lines_.Next(Prompt());
    if (!line) break;
    goOn = Take(*line);
  }
  // The last statement of a file may lack its semicolon.
  // Not a person's: whoever leaves in the middle of a statement has not finished it.
  if (goOn && !interactive_ && HasText(unfinished_)) RunStatement(unfinished_);
  if (RollBackUnfinished(connection_)) {
    context_.error << "tavi: " << kRolledBack << '\n' << std::flush;
    if (!interactive_) exitCode_ = kFailed;
  }
  return exitCode_;
}

const char* Shell::Prompt() const {
  if (!unfinished_.empty()) return kPromptWithin;
  return connection_.TransactionLevel() > 0 ? kPromptInTransaction : kPrompt;
}

bool Shell::Take(const std::string& line) {
  if (unfinished_.empty() && Trim(line).starts_with(".")) {
    return RunCommand(Trim(ReplaceAll(line, "\r", "")));
  }
  // With the line break, which may be within a text.
  unfinished_ += (unfinished_.empty() ? "" : "\n") + line;
  bool goOn = true;
  while (const auto end = EndOfStatement(unfinished_)) {
    const std::string statement = unfinished_.substr(0, *end);
    unfinished_.erase(0, *end);
    if (HasText(statement)) {
      // Whole, however many lines it took.
      lines_.Remember(Trim(statement));
      goOn = RunStatement(statement.substr(0, statement.size() - 1));
    }
    if (!goOn) return false;
  }
  // So that the next line can be a command again.
  if (!HasText(unfinished_)) unfinished_.clear();
  return goOn;
}

bool Shell::RunCommand(const std::string& line) {
  const std::size_t blank = line.find(' ');
  const std::string word = line.substr(0, blank);
  const std::string rest = blank == std::string::npos ? "" : Trim(line.substr(blank));
  if (word == ".quit" || word == ".exit") return false;
  lines_.Remember(line);
  if (word == ".help") {
    context_.out << kHelp << std::flush;
  } else if (word == ".tables") {
    return Attempt("", [&] { ListTables(); });
  } else if (word == ".columns" && !rest.empty()) {
    return Attempt("", [&] { ListColumns(TidyName(rest)); });
  } else if (word == ".explain" && (rest == "on" || rest == "off")) {
    explains_ = rest == "on";
  } else if (word == ".flush" && rest.empty()) {
    return Attempt("", [&] { connection_.Flush(); });
  } else if (word == ".flush" && (rest == "on" || rest == "off")) {
    flushes_ = rest == "on";
  } else if (word == ".bail" && (rest == "on" || rest == "off")) {
    bails_ = rest == "on";
  } else {
    // Also a command with a wrong word behind it, which must not pass for done in a file.
    context_.error << "tavi: \"" << Printable(line) << "\" is no command; .help lists them.\n";
    if (!interactive_) exitCode_ = kFailed;
    return !bails_;
  }
  return true;
}

template <typename Task>
bool Shell::Attempt(const std::string& statement, Task task) {
  try {
    task();
    context_.out << std::flush;
    // A reader that is gone ends the run, as nobody would see what further statements do.
    return context_.out.good();
  } catch (const Error& problem) {
    // The engine counts in the statement without its leading blanks and without EXPLAIN, which is what was given here.
    const auto place = PlaceInError(problem.Description());
    if (place) context_.error << MarkPlace(statement, *place) << '\n';
    context_.error << "tavi: " << PrintableLines(problem.Description()) << '\n' << std::flush;
  }
  if (!interactive_) exitCode_ = kFailed;
  return !bails_;
}

bool Shell::RunStatement(const std::string& statement) {
  const std::string tidy = statement.substr(statement.find_first_not_of(" \t\r\n"));
  const std::string text = (explains_ ? "EXPLAIN " : "") + tidy;
  return Attempt(tidy, [&] {
    // Ctrl-C gives up the statement and leaves the person in the shell. In a file's run it ends the process, as it does
    // with any command. While rows are written it does so for a person, too.
    std::optional<CancelKey> key;
    if (interactive_) key.emplace();
    const Table result = Query(connection_, text);
    key.reset();
    context_.Write(result);
    // Behind the rows, which need not wait for the disk.
    if (flushes_) connection_.Flush();
  });
}

void Shell::ListTables() {
  Table tables({"Table"});
  const auto rows = connection_.OpenSchema(ado::SchemaKind::Tables);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const Value type = rows->Get("TABLE_TYPE");
    // Tables of the system, and what is no table, are left out.
    if (const auto* text = std::get_if<std::string>(&type); text != nullptr && *text != "TABLE") continue;
    tables.Add({CellOf(rows->Get("TABLE_NAME"))});
  }
  context_.Write(tables);
}

void Shell::ListColumns(const std::string& table) {
  // By the table and not by a statement, so that any name will do.
  const auto columns = connection_.OpenRecordset(table, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                                 ado::SourceKind::TableDirect);
  Table list({"Column", "Type"});
  for (const ado::Field& field : columns->Fields()) list.Add({field.name, TypeName(field.type)});
  context_.Write(list);
}

namespace {

int RunShell(const Context& context, ado::Connection& connection) {
  const std::unique_ptr<LineSource> lines =
      context.inputIsTerminal ? MakeTerminalLines(context.in, context.out) : std::make_unique<StreamLines>(context.in);
  return Shell(context, connection, *lines, context.inputIsTerminal).Run();
}

}  // namespace

int RunSql(const Context& context, const SqlRequest& request) {
  const std::string file = request.file.empty() ? context.AccessFile() : request.file;
  const std::unique_ptr<ado::Connection> connection = Connect(context, file);
  int exitCode = kSucceeded;
  if (request.statement.empty()) {
    exitCode = RunShell(context, *connection);
  } else {
    // A statement on the command line needs no semicolon.
    const std::string text = (request.explain ? "EXPLAIN " : "") + request.statement;
    try {
      context.Write(Query(*connection, text));
    } catch (const Error& problem) {
      const auto place = PlaceInError(problem.Description());
      if (place) context.error << MarkPlace(request.statement, *place) << '\n';
      // The message itself is written with those of all commands.
      throw;
    }
    if (RollBackUnfinished(*connection)) {
      context.error << "tavi: " << kRolledBack << '\n';
      exitCode = kFailed;
    }
  }
  connection->Close();
  return exitCode;
}

namespace {

// A signal's handler reaches nothing else.
std::atomic<bool> isPressed = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a handler of signals may not wait");

extern "C" void NoteCancelKey(int /*signal*/) {
  isPressed = true;
}

}  // namespace

// What was pressed before this statement is not meant for it.
CancelKey::CancelKey() {
  isPressed = false;
  former_ = std::signal(SIGINT, NoteCancelKey);
}

CancelKey::~CancelKey() {
  isPressed = false;
  // The former handler again, for whoever is around the shell.
  std::signal(SIGINT, former_ == SIG_ERR ? SIG_DFL : former_);
}

bool CancelKey::IsPressed() {
  return isPressed.load(std::memory_order_relaxed);
}

}  // namespace tavi::host
