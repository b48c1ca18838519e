#include <gtest/gtest.h>

#include <fstream>

#include "SourceDirectory.h"
#include "names/NameKeys.h"

namespace tavi {
namespace {

/// Lines of mode, name and key: a part of the listed names, a slip of the hand or ear for each, and names that are hard
/// for other reasons. `cut -f1,2 keys.tsv | tavi keys` makes the keys anew.
constexpr const char* kGoldenFile = TAVI_SOURCE_DIR "/tests/names/golden/keys.tsv";

constexpr std::size_t kFewestNames = 4000;
constexpr int kMostShown = 20;

TEST(NameKeysGolden, KeysNeverChange) {
  std::ifstream file(kGoldenFile);
  ASSERT_TRUE(file) << kGoldenFile << " is missing";
  std::size_t count = 0;
  int changed = 0;
  for (std::string line; std::getline(file, line); ++count) {
    const std::size_t afterMode = line.find('\t');
    const std::size_t beforeKey = line.rfind('\t');
    ASSERT_LT(afterMode, beforeKey) << "line " << count + 1 << ": " << line;
    const std::string name = line.substr(afterMode + 1, beforeKey - afterMode - 1);
    const std::string key = line.starts_with("first\t") ? FirstNameKey(name) : SurnameKey(name);
    if (key == line.substr(beforeKey + 1)) continue;
    if (++changed <= kMostShown) ADD_FAILURE() << "the key of " << line << " is now " << key;
  }
  EXPECT_GE(count, kFewestNames);
  EXPECT_EQ(changed, 0)
      << "Keys are stored in clubs' files. A search compares stored keys with fresh ones, so that members whose keys "
         "have changed are not found by any program that has not yet brought the file up to date. Keep the function as "
         "it is; if the gain is worth it, make the golden file anew and say so in the change log: every club's file is "
         "then rewritten at its next opening, and all programs that open it must be replaced together.";
}

}  // namespace
}  // namespace tavi
