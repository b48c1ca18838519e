// The terminal's lines by way of the editline library, which knows terminals and keeps the history.
#include <histedit.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <ostream>

#include "host/sql/LineSource.h"

namespace tavi::host {
namespace {

namespace fs = std::filesystem;

// As many as anybody will look back for; the file stays small.
constexpr int kRememberedInputs = 1000;

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// By the rules for the state of programs, which is no configuration and no data.
fs::path HistoryFile() {
  if (const std::string named = Environment("TAVI_HISTORY"); !named.empty()) return named;
  const std::string state = Environment("XDG_STATE_HOME");
  const fs::path folder = state.empty() ? fs::path(Environment("HOME")) / ".local" / "state" : fs::path(state);
  return folder / "tavimembership" / "sql-history";
}

class TerminalLines final : public LineSource {
 public:
  explicit TerminalLines(std::ostream& out)
      : out_(out), file_(HistoryFile()), history_(history_init()), editor_(el_init("tavi", stdin, stdout, stderr)) {
    // Without it the library takes each byte for a letter. Numbers and dates keep the plain locale.
    std::setlocale(LC_CTYPE, "");
    history(history_.get(), &event_, H_SETSIZE, kRememberedInputs);
    history(history_.get(), &event_, H_SETUNIQUE, 1);
    // No file, the first time, is no failure.
    history(history_.get(), &event_, H_LOAD, file_.c_str());
    el_set(editor_.get(), EL_CLIENTDATA, this);
    el_set(editor_.get(), EL_PROMPT, &Prompt);
    el_set(editor_.get(), EL_EDITOR, "emacs");
    // The library puts the terminal in order when a signal comes while a line is typed.
    el_set(editor_.get(), EL_SIGNAL, 1);
    el_set(editor_.get(), EL_HIST, history, history_.get());
    // The person's own keys, last, so that they win.
    el_source(editor_.get(), nullptr);
  }
  // The history is written once, at the end; where it cannot be, the session was right all the same.
  ~TerminalLines() override {
    std::error_code ignored;
    fs::create_directories(file_.parent_path(), ignored);
    history(history_.get(), &event_, H_SAVE, file_.c_str());
  }
  TerminalLines(const TerminalLines&) = delete;
  TerminalLines& operator=(const TerminalLines&) = delete;

  std::optional<std::string> Next(const std::string& prompt) override {
    prompt_ = prompt;
    int length = 0;
    const char* line = el_gets(editor_.get(), &length);
    // The end key leaves the cursor behind the prompt.
    if (line == nullptr || length <= 0) {
      out_ << '\n' << std::flush;
      return std::nullopt;
    }
    std::string text(line, static_cast<std::size_t>(length));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return text;
  }

  void Remember(const std::string& input) override { history(history_.get(), &event_, H_ENTER, input.c_str()); }

 private:
  struct EndHistory {
    void operator()(History* history) const { history_end(history); }
  };
  struct EndEditor {
    void operator()(EditLine* editor) const { el_end(editor); }
  };

  // The library asks for the prompt by this.
  static char* Prompt(EditLine* editor) {
    void* self = nullptr;
    el_get(editor, EL_CLIENTDATA, &self);
    return static_cast<TerminalLines*>(self)->prompt_.data();
  }

  std::ostream& out_;
  fs::path file_;
  std::string prompt_;
  HistEvent event_{};
  std::unique_ptr<History, EndHistory> history_;
  std::unique_ptr<EditLine, EndEditor> editor_;
};

}  // namespace

std::unique_ptr<LineSource> MakeTerminalLines(std::istream& /*in*/, std::ostream& out) {
  return std::make_unique<TerminalLines>(out);
}

}  // namespace tavi::host
