#include "host/CommandLine.h"

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  return tavi::host::RunCommandLine(arguments, tavi::host::StandardTerminal());
}
