#include "host/sql/SqlCommand.h"

#include <ostream>

#include "host/sql/Query.h"
#include "host/sql/Shell.h"
#include "host/sql/StatementText.h"
#include "host/tools/Connect.h"
#include "platform/values/Error.h"

namespace tavi::host {
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
    const std::string text = (request.explain ? "EXPLAIN " : "") + request.statement;
    try {
      context.Write(Query(*connection, text));
    } catch (const Error& problem) {
      const auto place = PlaceInError(problem.Description());
      if (place) context.error << MarkPlace(request.statement, *place) << '\n';
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

}  // namespace tavi::host
