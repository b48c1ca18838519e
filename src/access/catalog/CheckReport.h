#pragma once

#include <string>
#include <vector>

#include "platform/values/Error.h"

namespace tavi::access {

/// The findings of a check.
class CheckReport {
 public:
  static constexpr std::size_t kMaximumFindings = 1000;

  void Add(std::string finding) {
    if (findings_.size() < kMaximumFindings) findings_.push_back(std::move(finding));
  }
  [[nodiscard]] const std::vector<std::string>& Findings() const { return findings_; }

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
  std::vector<std::string> findings_;
};

}  // namespace tavi::access
