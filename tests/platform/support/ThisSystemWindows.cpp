#include <gtest/gtest.h>

#include <stdexcept>
#include <system_error>

#include "platform/support/ThisSystem.h"
#include "platform/windows/SystemServices.h"

namespace tavi::testing {

DiagnosticsLog::DiagnosticsLog() : drive_("C:\\") {
  if (std::filesystem::exists(File().parent_path())) {
    throw std::runtime_error(File().parent_path().string() + " is in use; its log would be lost.");
  }
  SwitchOn();
}

DiagnosticsLog::~DiagnosticsLog() {
  // What stayed would be in the way of the next test.
  std::error_code error;
  std::filesystem::remove_all(File().parent_path(), error);
  EXPECT_FALSE(error) << File().parent_path() << ": " << error.message();
}

std::shared_ptr<const SettingsDocuments> SettingsDocumentsOfThisSystem() {
  return std::make_shared<SystemXmlDocuments>();
}

}  // namespace tavi::testing
