#include <iostream>

#include "host/CommandLine.h"
#include "host/text/ProgressBar.h"

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  return tavi::host::RunCommandLine(arguments, std::cout, std::cerr, tavi::host::OutputIsTerminal(),
                                    tavi::host::ErrorIsTerminal());
}
