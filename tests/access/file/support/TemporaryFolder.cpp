#include "access/file/support/TemporaryFolder.h"

#include <random>

namespace tavi::access::test {

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  do {
    path_ =
        std::filesystem::temp_directory_path() / ("tavi-test-" + std::to_string(random()) + std::to_string(random()));
  } while (!std::filesystem::create_directory(path_));
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  // A test may have taken the right to write away.
  std::filesystem::permissions(path_, std::filesystem::perms::owner_all, std::filesystem::perm_options::add, ignored);
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace tavi::access::test
