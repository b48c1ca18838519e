#include "host/CommandLine.h"
#include "host/text/WindowsTerminal.h"

int main() {
  tavi::host::WindowsTerminal terminal;
  return tavi::host::RunCommandLine(tavi::host::ProgramArguments(), terminal.Streams());
}
