// What only POSIX systems put in the place of a file.

#include "access/file/support/BadFile.h"

namespace tavi::access::test {
namespace {

TEST_F(BadFilesTest, ALinkThatLeadsNowhere) {
  std::filesystem::create_symlink(folder_.File("gone.mdb"), Path());
  ExpectRefused("Could not find file");
}

}  // namespace
}  // namespace tavi::access::test
