#pragma once

#include <iosfwd>
#include <memory>
#include <optional>
#include <string>

namespace tavi::host {

/// Where a shell gets its lines from.
class LineSource {
 public:
  virtual ~LineSource() = default;
  /// The next line, without its end; nothing at the end of the input. A person is shown the prompt.
  virtual std::optional<std::string> Next(const std::string& prompt) = 0;
  /// Notes an input that a person may want to have again.
  virtual void Remember(const std::string& /*input*/) {}
};

/// Lines of a stream, without a byte-order mark before the first. A carriage return before the end of a line stays: it
/// can belong to a text that goes on in the next line. No prompt is shown.
class StreamLines final : public LineSource {
 public:
  explicit StreamLines(std::istream& in) : in_(in) {}
  std::optional<std::string> Next(const std::string& prompt) override;

 private:
  std::istream& in_;
  bool isFirst_ = true;
};

/// Lines that a person types at the terminal, which `in` and `out` belong to, with editing keys and a history that is
/// kept in a file from one session to the next (TAVI_HISTORY names it; else sql-history in the user's folder for state
/// of programs; under Windows the console has its own, for as long as it is open). One at a time in a process, as the
/// terminal is one.
std::unique_ptr<LineSource> MakeTerminalLines(std::istream& in, std::ostream& out);

}  // namespace tavi::host
