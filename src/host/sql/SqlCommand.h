#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// What `tavi sql` was asked for.
struct SqlRequest {
  std::string statement{};  ///< empty: statements come from standard input, or from the person at the terminal
  std::string file{};       ///< another Access file than the club's
  bool explain = false;     ///< show the plan instead of running the statement
};

/// Runs one statement and writes its rows (or the number of rows that it changed), or begins a shell.
int RunSql(const Context& context, const SqlRequest& request);

}  // namespace tavi::host
