#pragma once

#include <istream>
#include <memory>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

#include "host/text/Terminal.h"

namespace tavi::host {

/// The standard streams of a process under Windows. Those that belong to a console are read and written as UTF-16, so
/// that every letter is right whatever code page the console has; files and pipes carry the bytes as they are, without
/// carriage returns. One at a time in a process; the console is left as it was found.
class WindowsTerminal {
 public:
  WindowsTerminal();
  ~WindowsTerminal();
  WindowsTerminal(const WindowsTerminal&) = delete;
  WindowsTerminal& operator=(const WindowsTerminal&) = delete;

  /// The streams, which live as long as this object.
  [[nodiscard]] Terminal Streams();

 private:
  class ConsoleWriter;
  class ConsoleReader;
  class FileWriter;

  std::unique_ptr<std::streambuf> in_;
  std::unique_ptr<std::streambuf> out_;
  std::unique_ptr<FileWriter> fileOut_;  // in the place of out_
  std::unique_ptr<std::streambuf> error_;
  std::streambuf* formerIn_ = nullptr;
  std::streambuf* formerOut_ = nullptr;
  std::streambuf* formerError_ = nullptr;
  bool showsProgress_ = false;
};

/// The arguments of the process as UTF-8, without the program's name.
[[nodiscard]] std::vector<std::string> ProgramArguments();

}  // namespace tavi::host
