// What is done is flushed to the disk by the system's own call.
#include <gtest/gtest.h>

#include "access/catalog/Database.h"
#include "access/file/FileSystem.h"
#include "access/file/support/TemporaryFolder.h"
#include "access/provider/AccessProvider.h"
#include "platform/ConnectionTo.h"
#include "platform/portable/PortableServices.h"
#include "windows/FlushCounter.h"

namespace tavi::access {
namespace {

using tavi::test::CountFlushes;

class FlushTest : public ::testing::Test {
 protected:
  test::TemporaryFolder folder_;
  std::shared_ptr<FileSystem> system_ = NativeFileSystem();
  std::string path_ = folder_.File("file");
};

TEST_F(FlushTest, SyncFlushesTheSystemsBuffers) {
  const auto file = system_->Open(path_, FileSystem::OpenMode::CreateNew);
  file->WriteAt(0, std::vector<std::uint8_t>{1});
  const int before = CountFlushes();
  file->Sync();
  EXPECT_EQ(CountFlushes(), before + 1);
}

TEST_F(FlushTest, ClosingAChangedFileFlushesTheLogAndThenTheFile) {
  constexpr Date kNow{46000.0};
  Database::CreateFile(*system_, path_, kNow);
  const auto provider = MakeAccessProvider(system_, std::make_shared<FixedClock>(kNow), ProviderOptions{});
  const auto open = [&] { return provider->Open(ConnectionTo(path_)); };
  auto connection = open();
  connection->Execute("Create Table T (A Long)");
  connection->Execute("Insert Into T (A) Values (1)");
  int before = CountFlushes();
  connection->Close();
  EXPECT_GE(CountFlushes(), before + 2);
  before = CountFlushes();
  connection = open();
  connection->Execute("Select A From T");
  connection->Close();
  EXPECT_EQ(CountFlushes(), before) << "nothing was changed";
}

}  // namespace
}  // namespace tavi::access
