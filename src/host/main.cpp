#include "host/CommandLine.h"
#include "host/text/StandardStreams.h"

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  tavi::host::StandardStreams streams;
  return tavi::host::RunCommandLine(arguments, streams.Streams());
}
