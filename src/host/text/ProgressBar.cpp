#include "host/text/Terminal.h"

#include <fmt/format.h>
#include <algorithm>
#include <ostream>

#include "host/text/Table.h"

namespace tavi::host {
namespace {
constexpr std::size_t kBarWidth = 30;
// To the beginning of the line, and away with what is behind.
constexpr const char* kClearLine = "\r\x1b[K";
}  // namespace

ProgressBar::~ProgressBar() {
  // The line is left as it was, for the result or the next message.
  if (!shown_.empty()) out_ << kClearLine << std::flush;
}

void ProgressBar::Show(std::size_t done, const std::string& label) {
  if (!visible_ || total_ == 0) return;
  const std::size_t filled = std::min(kBarWidth, kBarWidth * done / total_);
  const std::string line = fmt::format("[{}{}] {}/{} {}", std::string(filled, '#'),
                                       std::string(kBarWidth - filled, '.'), done, total_, Printable(label));
  // Most steps of many do not change what is shown.
  if (line == shown_) return;
  shown_ = line;
  out_ << kClearLine << line << std::flush;
}

}  // namespace tavi::host
