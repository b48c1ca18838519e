#pragma once

#include <string>
#include <vector>

namespace tavi::access::test {

/// Prints "ready", and returns when the standard input ends.
void WaitForEndOfInput();

/// Tasks of the worker that each system has in its own way: "lock" everywhere, "cramped" on POSIX systems. `arguments`
/// and what is printed as in WorkerMain.cpp. Returns the exit code; 2 for a task that the system does not have.
int RunSystemTask(const std::vector<std::string>& arguments);

}  // namespace tavi::access::test
