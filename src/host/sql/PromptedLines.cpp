// The terminal's lines where the console itself has editing keys and a history.
#include <istream>
#include <ostream>

#include "host/sql/LineSource.h"

namespace tavi::host {
namespace {

class PromptedLines final : public LineSource {
 public:
  PromptedLines(std::istream& in, std::ostream& out) : lines_(in), out_(out) {}

  std::optional<std::string> Next(const std::string& prompt) override {
    out_ << prompt << std::flush;
    std::optional<std::string> line = lines_.Next(prompt);
    // The end key leaves the cursor behind the prompt.
    if (!line) out_ << '\n';
    if (line && line->ends_with('\r')) line->pop_back();
    return line;
  }

 private:
  StreamLines lines_;
  std::ostream& out_;
};

}  // namespace

std::unique_ptr<LineSource> MakeTerminalLines(std::istream& in, std::ostream& out) {
  return std::make_unique<PromptedLines>(in, out);
}

}  // namespace tavi::host
