#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "access/file/Pager.h"
#include "access/file/support/MemoryFileSystem.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access::test {

/// What tests of pagers begin with: a small database in a file system of their own, in memory.
class PagerFixture : public ::testing::Test {
 protected:
  PagerFixture() { Pager::Create(*memory_, kPath, MakeSmallDatabase(8)); }

  /// What the provider's failure says that an action raises; empty when it raises none.
  template <typename Action>
  static std::string FailureOf(Action action) {
    try {
      action();
      return "";
    } catch (const Error& error) {
      EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
      return error.Description();
    }
  }

  std::shared_ptr<MemoryFileSystem> memory_ = std::make_shared<MemoryFileSystem>();
};

}  // namespace tavi::access::test
