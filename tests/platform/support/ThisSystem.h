#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/Platform.h"

/// What tests of the component need of the system that they run on.
namespace tavi::testing {

/// The diagnostics log C:\\Diagnostics\\Tallyman.txt of one test, switched on: its folder is there. At the end of the
/// test both are gone. One at a time; where C: is a real drive, no other program of the tests may use it meanwhile, and
/// making one fails when the folder is there already.
class DiagnosticsLog {
 public:
  DiagnosticsLog();
  ~DiagnosticsLog();
  DiagnosticsLog(const DiagnosticsLog&) = delete;
  DiagnosticsLog& operator=(const DiagnosticsLog&) = delete;

  /// All that was written; empty without a file.
  [[nodiscard]] std::string Text() const;
  [[nodiscard]] bool IsThere() const;
  /// Removes file and folder, which switches the log off; and switches it on again.
  void SwitchOff() const;
  void SwitchOn() const;
  /// Where the file is.
  [[nodiscard]] std::filesystem::path File() const { return drive_ / "Diagnostics" / "Tallyman.txt"; }

 private:
  /// The drive C:.
  std::filesystem::path drive_;
};

/// The system's own way of reading and writing settings files.
[[nodiscard]] std::shared_ptr<const SettingsDocuments> SettingsDocumentsOfThisSystem();

}  // namespace tavi::testing
