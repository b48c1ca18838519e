// Files that the user has no right to. The system's administrator may read everything, so these tests act as an
// ordinary user; whoever runs them as one already is left as that.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "access/file/Pager.h"
#include "access/file/support/SmallDatabase.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

namespace fs = std::filesystem;

/// For its lifetime the process has the rights of a user who owns nothing here.
class AsOrdinaryUser {
 public:
  AsOrdinaryUser() {
    constexpr uid_t kNobody = 65534;
    if (before_ == 0 && seteuid(kNobody) != 0) ADD_FAILURE() << "the rights of the administrator could not be given up";
  }
  ~AsOrdinaryUser() {
    if (seteuid(before_) != 0) ADD_FAILURE() << "the rights of before could not be taken again";
  }
  AsOrdinaryUser(const AsOrdinaryUser&) = delete;
  AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

 private:
  uid_t before_ = geteuid();
};

std::string ErrorOfOpening(const std::string& path, bool readOnly) {
  PagerOptions options;
  options.readOnly = readOnly;
  try {
    static_cast<void>(Pager::Open(NativeFileSystem(), path, options));
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    return error.Description();
  }
  return "the file was opened";
}

class Permissions : public testing::Test {
 protected:
  void SetUp() override {
    std::ofstream stream(Path(), std::ios::binary);
    for (const Page& page : MakeSmallDatabase(8))
      stream.write(reinterpret_cast<const char*>(page.All().data()), kPageSize);
  }
  [[nodiscard]] std::string Path() const { return folder_.File("club.mdb"); }

  TemporaryFolder folder_;
};

TEST_F(Permissions, AFileThatMayNotBeReadIsRefusedInTheSystemsWords) {
  fs::permissions(Path(), fs::perms::none);
  const AsOrdinaryUser user;
  for (const bool readOnly : {false, true}) {
    const std::string error = ErrorOfOpening(Path(), readOnly);
    EXPECT_NE(error.find("Permission denied"), std::string::npos) << error;
    EXPECT_NE(error.find("club.mdb"), std::string::npos) << error;
  }
  EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()), 1);
}

}  // namespace
}  // namespace tavi::access::test
