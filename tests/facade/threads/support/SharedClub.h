#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "platform/Platform.h"
#include "platform/TemporaryFolder.h"
#include "platform/support/ThisSystem.h"

namespace tavi::testing {

/// A new, empty membership file, its folder, and a platform that every thread may use. The settings file is
/// in the test's own folder, and the diagnostics log is switched on.
class SharedClub {
 public:
  /// 1 October 2025, the day on which the club is looked at.
  static constexpr Date kToday{45931.0};

  SharedClub();
  ~SharedClub();
  SharedClub(const SharedClub&) = delete;
  SharedClub& operator=(const SharedClub&) = delete;

  /// Makes another file, in a folder below.
  void MakeFile(const std::string& folder) const;
  /// A new public object, and so a new store of the calling thread, on the file.
  [[nodiscard]] std::unique_ptr<MembershipDatabase> NewObject() const;
  [[nodiscard]] std::shared_ptr<const Platform> SharedPlatform() const { return platform_; }
  [[nodiscard]] const TemporaryFolder& Folder() const { return folder_; }
  [[nodiscard]] const DiagnosticsLog& Log() const { return log_; }

  /// The first field of each row of a query, read through a connection of its own.
  [[nodiscard]] std::vector<std::string> Column(const std::string& query, const std::string& folder = "") const;
  /// Expects that the file is closed and that a check of it finds nothing.
  void ExpectASoundClosedFile() const;

 private:
  TemporaryFolder folder_;
  DiagnosticsLog log_;
  std::shared_ptr<const Platform> platform_;
};

}  // namespace tavi::testing
