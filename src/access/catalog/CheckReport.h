#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "access/catalog/Check.h"
#include "platform/values/Error.h"

namespace tavi::access {

/// The findings of a check, while it is made.
class CheckReport {
 public:
  static constexpr std::size_t kMaximumFindings = 1000;

  explicit CheckReport(CheckProgress progress = {}) : progress_(std::move(progress)) {}

  /// What is looked at from now on.
  void Begin(CheckPart part, std::string table) {
    part_ = part;
    table_ = std::move(table);
  }
  void Add(std::string finding) {
    if (result_.findings.size() < kMaximumFindings) {
      result_.findings.push_back({part_, table_, std::move(finding)});
    } else {
      result_.isCutShort = true;
    }
  }
  [[nodiscard]] CheckResult& Result() { return result_; }

  /// Notes that one more page has been looked at.
  void CountPage() {
    ++done_;
    if (progress_) progress_(std::min(done_, result_.pages), result_.pages, table_);
  }

  /// Runs a part of the check; an error that it raises becomes a finding. True when it ended without one.
  template <typename Part>
  bool Guard(const std::string& where, Part part) {
    try {
      part();
      return true;
    } catch (const Error& error) {
      Add(where + ": " + error.Description());
      return false;
    }
  }

 private:
  CheckProgress progress_;
  CheckPart part_ = CheckPart::File;
  std::string table_;
  std::size_t done_ = 0;
  CheckResult result_;
};

}  // namespace tavi::access
