#pragma once

#include <string>
#include <vector>

#include "host/text/Terminal.h"

namespace tavi::host {

/// The tavi command: understands the arguments (without the program's name) and runs the subcommand. Returns the exit
/// code: 0 done, 1 it failed (the reason is on `terminal.error`) or its output could not be written, 2 wrong use, 141
/// when the program that read the output has ended. Results are tables on a terminal and
/// tab-separated text elsewhere; progress is shown on a terminal only.
int RunCommandLine(std::vector<std::string> arguments, const Terminal& terminal);

}  // namespace tavi::host
