#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "access/catalog/Database.h"
#include "access/file/support/TemporaryFolder.h"
#include "access/provider/AccessProvider.h"
#include "platform/ConnectionTo.h"
#include "platform/values/Error.h"

namespace tavi::access::test {

class NoonClock final : public Clock {
 public:
  [[nodiscard]] Date Now() const override { return Date{45000.5}; }
};

/// A new file and a provider that opens it.
class ProviderFile {
 public:
  ProviderFile() : path_(folder_.File("ClubMembers.mdb")) {
    Database::CreateFile(*NativeFileSystem(), path_, Date{45000});
    provider_ = MakeAccessProvider(NativeFileSystem(), std::make_shared<NoonClock>(), {});
  }

  [[nodiscard]] std::unique_ptr<ado::Connection> Open(const std::string& more = "") const {
    return provider_->Open(ConnectionTo(path_ + more));
  }
  [[nodiscard]] const std::string& Path() const { return path_; }
  [[nodiscard]] const ado::Provider& Provider() const { return *provider_; }

 private:
  TemporaryFolder folder_;
  std::string path_;
  std::shared_ptr<const ado::Provider> provider_;
};

/// The number of the error that something raises, after a look at its source; 0 and a failure when there is none.
inline std::uint32_t NumberRaisedBy(const std::function<void()>& work) {
  try {
    work();
  } catch (const Error& error) {
    EXPECT_EQ(error.Source(), "Microsoft JET Database Engine") << error.Description();
    return static_cast<std::uint32_t>(error.Number());
  }
  ADD_FAILURE() << "no error";
  return 0;
}

inline std::unique_ptr<ado::Recordset> Select(ado::Connection& connection, const std::string& text) {
  return connection.OpenRecordset(text, ado::CursorType::Dynamic, ado::LockType::Pessimistic,
                                  ado::SourceKind::CommandText);
}

}  // namespace tavi::access::test
