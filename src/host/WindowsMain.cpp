#include "host/CommandLine.h"
#include "host/text/WindowsTerminal.h"

// The arguments are asked of the system in the function below: those of main are in the machine's code page.
int main() {
  tavi::host::WindowsTerminal terminal;
  return tavi::host::RunCommandLine(tavi::host::ProgramArguments(), terminal.Streams());
}
