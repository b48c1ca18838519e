#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "access/catalog/Check.h"
#include "platform/values/Error.h"

namespace tavi::access {

/// The findings and remarks of a check, while it is made.
class CheckReport {
 public:
  static constexpr std::size_t kMaximumFindings = 1000;

  explicit CheckReport(CheckKind kind = CheckKind::Ordinary, CheckProgress progress = {})
      : kind_(kind), progress_(std::move(progress)) {}

  [[nodiscard]] bool IsStrict() const { return kind_ == CheckKind::Strict; }
  /// What is looked at from now on.
  void Begin(CheckPart part, std::string table) {
    part_ = part;
    table_ = std::move(table);
  }
  /// Notes damage.
  void Add(std::string finding) { AddTo(result_.findings, std::move(finding)); }
  /// Notes what is worth knowing and does no harm.
  void Remark(std::string remark) { AddTo(result_.remarks, std::move(remark)); }
  /// Notes what other programs leave behind without harm: of interest to a strict check only.
  void Leftover(std::string remark) {
    if (IsStrict()) Remark(std::move(remark));
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
  void AddTo(std::vector<CheckFinding>& list, std::string text) {
    if (list.size() < kMaximumFindings) {
      list.push_back({part_, table_, std::move(text)});
    } else {
      result_.isCutShort = true;
    }
  }

  CheckKind kind_;
  CheckProgress progress_;
  CheckPart part_ = CheckPart::File;
  std::string table_;
  std::size_t done_ = 0;
  CheckResult result_;
};

}  // namespace tavi::access
