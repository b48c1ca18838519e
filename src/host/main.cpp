#include <csignal>

#include "host/CommandLine.h"
#include "host/text/StandardStreams.h"

int main(int count, char** values) {
  // A reader that is gone and a file that may not grow are errors of the write, which the command answers; the signals
  // would end it in the middle of a change.
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  const std::vector<std::string> arguments(values + 1, values + count);
  tavi::host::StandardStreams streams;
  return tavi::host::RunCommandLine(arguments, streams.Streams());
}
