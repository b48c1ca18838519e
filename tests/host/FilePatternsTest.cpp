#include "host/input/FilePatterns.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "host/support/Command.h"
#include "platform/Matchers.h"

namespace tavi::host {
namespace {

using testing::ElementsAre;

class FilePatterns : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* name : {"b.xml", "a.XML", "Žofie.xml", "ab.xmlx", "a.csv"}) folder_.Write(name, "");
    std::filesystem::create_directory(folder_.Path("c.xml"));
  }

  [[nodiscard]] std::vector<std::string> Meant(const std::string& pattern) const {
    std::vector<std::string> names;
    for (const std::string& file : FilesOfPattern(folder_.Path(pattern))) {
      names.push_back(file.substr(file.find_last_of("/\\") + 1));
    }
    return names;
  }

  CommandFolder folder_;
};

TEST_F(FilePatterns, MeanFilesInTheOrderOfTheirNamesWhateverTheirCapitals) {
  EXPECT_THAT(Meant("*.xml"), ElementsAre("a.XML", "b.xml", "Žofie.xml"));
  EXPECT_THAT(Meant("?.*"), ElementsAre("a.XML", "a.csv", "b.xml"));
  EXPECT_THAT(Meant("žO?ie*"), ElementsAre("Žofie.xml"));
  EXPECT_THAT(Meant("*b*x*x"), ElementsAre("ab.xmlx"));
  EXPECT_THAT(Meant("a.?sv"), ElementsAre("a.csv"));
}

TEST_F(FilePatterns, StayWhereNoFileFits) {
  EXPECT_THAT(Meant("*.pdf"), ElementsAre("*.pdf"));
  EXPECT_THAT(Meant("none/*.xml"), ElementsAre("*.xml"));
  EXPECT_THAT(Meant("a.xml?"), ElementsAre("a.xml?"));
}

TEST_F(FilePatterns, AreLeftToTheShellWhereThereIsOne) {
#ifndef _WIN32
  const std::string pattern = folder_.Path("*.xml");
  EXPECT_THAT(FilesNamed({pattern, "b"}), ElementsAre(pattern, "b"));
#else
  EXPECT_EQ(FilesNamed({folder_.Path("*.xml"), "b"}).size(), 4U);
#endif
}

}  // namespace
}  // namespace tavi::host
