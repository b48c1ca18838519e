#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace tavi::host {

/// The tavi command: understands the arguments (without the program's name) and runs the subcommand. Returns the exit
/// code: 0 done, 1 it failed (the reason is on `error`), 2 wrong use. `outputIsTerminal` and `errorIsTerminal` decide
/// between tables and tab-separated text, and whether progress is shown.
int RunCommandLine(std::vector<std::string> arguments, std::ostream& out, std::ostream& error, bool outputIsTerminal,
                   bool errorIsTerminal);

}  // namespace tavi::host
