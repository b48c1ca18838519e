#pragma once

#include <csignal>
#include <string>

#include "host/commands/Context.h"
#include "host/sql/LineSource.h"
#include "platform/ado/Provider.h"

namespace tavi::host {

/// Reads SQL statements, each ended by a semicolon, and commands, each a line that begins with a full stop, and carries
/// them out one after the other.
class Shell {
 public:
  /// Without `interactive` (statements come from a file or another program) the first error ends the run, unless the
  /// command ".bail off" came before it; the exit code tells of errors either way.
  Shell(const Context& context, ado::Connection& connection, LineSource& lines, bool interactive)
      : context_(context), connection_(connection), lines_(lines), interactive_(interactive), bails_(!interactive) {}

  /// Runs until the end of the input or ".quit"; a transaction that is open then is rolled back. Returns the exit code
  /// of the command.
  int Run();

 private:
  /// Takes one more line; false when the run is to end.
  bool Take(const std::string& line);
  [[nodiscard]] const char* Prompt() const;
  bool RunCommand(const std::string& line);
  bool RunStatement(const std::string& statement);
  void ListTables();
  void ListColumns(const std::string& table);
  /// Runs a task; an error is shown, with its place in the statement. False when the run is to end.
  template <typename Task>
  bool Attempt(const std::string& statement, Task task);

  const Context& context_;
  ado::Connection& connection_;
  LineSource& lines_;
  bool interactive_;
  bool bails_;
  bool flushes_ = false;
  bool explains_ = false;
  int exitCode_ = kSucceeded;
  std::string unfinished_;
};

/// What `tavi sql` was asked for.
struct SqlRequest {
  std::string statement{};  ///< empty: statements come from standard input, or from the person at the terminal
  std::string file{};       ///< another Access file than the club's
  bool explain = false;     ///< show the plan instead of running the statement
};

/// Runs one statement and writes its rows (or the number of rows that it changed), or begins a shell.
int RunSql(const Context& context, const SqlRequest& request);

/// For its life Ctrl-C does not end the process but asks that the running statement be given up. One at a time in a
/// process, as signals are the process's.
class CancelKey {
 public:
  CancelKey();
  ~CancelKey();
  CancelKey(const CancelKey&) = delete;
  CancelKey& operator=(const CancelKey&) = delete;

  /// Whether Ctrl-C was pressed in the life of the object that there is. Callable on any thread.
  [[nodiscard]] static bool IsPressed();

 private:
  using Handler = void (*)(int);
  Handler former_;
};

}  // namespace tavi::host
