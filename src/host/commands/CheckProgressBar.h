#pragma once

#include <optional>

#include "access/catalog/Check.h"
#include "host/commands/Context.h"
#include "host/text/Terminal.h"

namespace tavi::host {

/// Shows how far the check of a file has come, when the file is so large that this takes a while and somebody is
/// watching.
class CheckProgressBar {
 public:
  explicit CheckProgressBar(const Context& context) : context_(context) {}

  /// To be given to a check; it may be called as long as this object lives.
  [[nodiscard]] access::CheckProgress Progress() {
    return [this](std::size_t done, std::size_t total, const std::string& table) { Show(done, total, table); };
  }

 private:
  /// Smaller files are done before a bar could be read.
  static constexpr std::size_t kPagesWorthABar = 2000;

  void Show(std::size_t done, std::size_t total, const std::string& table) {
    if (total < kPagesWorthABar) return;
    if (total != total_) bar_.emplace(context_.error, context_.showProgress, total);
    total_ = total;
    bar_->Show(done, "pages, table " + table);
  }

  const Context& context_;
  std::size_t total_ = 0;
  std::optional<ProgressBar> bar_;
};

}  // namespace tavi::host
