// What is no database, or none that can be used: each is refused in its own words, and neither it nor its folder is
// changed. On the system's own files.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "access/file/Format.h"
#include "access/file/Pager.h"
#include "access/file/support/SmallDatabase.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access::test {
namespace {

namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

class BadFilesTest : public testing::Test {
 protected:
  [[nodiscard]] std::string Path() const { return folder_.File("club.mdb"); }
  void Write(const std::string& content) const { std::ofstream(Path(), std::ios::binary) << content; }
  /// Writes a small database with other bytes in some places.
  void WriteDatabase(const SmallDatabaseOptions& options,
                     const std::map<std::size_t, std::string>& changes = {}) const {
    std::string content;
    for (const Page& page : MakeSmallDatabase(8, options))
      content.append(reinterpret_cast<const char*>(page.All().data()), kPageSize);
    for (const auto& [offset, bytes] : changes) content.replace(offset, bytes.size(), bytes);
    Write(content);
  }

  /// All names in the folder, with the content of files.
  [[nodiscard]] std::map<std::string, std::string> Everything() const {
    std::map<std::string, std::string> all;
    for (const auto& entry : fs::directory_iterator(folder_.Path())) {
      const bool isFile = fs::is_regular_file(entry.path());
      all[entry.path().filename().string()] = isFile ? ReadFile(entry.path()) : "";
    }
    return all;
  }

  /// Expects that opening, for writing and for reading, fails with the words and changes nothing.
  void ExpectRefused(const std::string& words) const {
    const auto before = Everything();
    for (const bool readOnly : {false, true}) {
      PagerOptions options;
      options.readOnly = readOnly;
      try {
        static_cast<void>(Pager::Open(NativeFileSystem(), Path(), options));
        ADD_FAILURE() << "the file was opened";
      } catch (const Error& error) {
        EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
        EXPECT_NE(error.Description().find(words), std::string::npos) << error.Description();
        EXPECT_NE(error.Description().find("club.mdb"), std::string::npos) << error.Description();
      }
    }
    EXPECT_TRUE(Everything() == before);
  }

  TemporaryFolder folder_;
};

TEST_F(BadFilesTest, NoFile) {
  ExpectRefused("Could not find file");
}

TEST_F(BadFilesTest, ALinkThatLeadsNowhere) {
  std::error_code unsupported;
  fs::create_symlink(folder_.File("gone.mdb"), Path(), unsupported);
  if (unsupported) GTEST_SKIP() << "this system makes no links";
  ExpectRefused("Could not find file");
}

TEST_F(BadFilesTest, NoBytes) {
  Write("");
  ExpectRefused("Its 0 bytes are less than a page of an Access database.");
}

TEST_F(BadFilesTest, AFolder) {
  fs::create_directory(Path());
  ExpectRefused("Could not open '");
}

TEST_F(BadFilesTest, ALetter) {
  Write(std::string(20000, 'x'));
  ExpectRefused("It is not an Access database.");
}

TEST_F(BadFilesTest, AFileOfALaterAccess) {
  WriteDatabase({}, {{format::header::kEngineNameOffset, format::header::kEngineNameAce}});
  ExpectRefused("It is a file of Access 2007 or later; save it in the Access 2002-2003 format (.mdb) first.");
}

TEST_F(BadFilesTest, AFormatThatIsNotKnown) {
  WriteDatabase({}, {{format::header::kVersionOffset, "\x05"}});
  ExpectRefused("Its format version is 5");
}

TEST_F(BadFilesTest, AFileWithAPassword) {
  SmallDatabaseOptions options;
  options.password = "secret";
  WriteDatabase(options);
  ExpectRefused("Not a valid password.");
}

TEST_F(BadFilesTest, AFileOfAnotherProgramWithTheSameEngine) {
  WriteDatabase({}, {{format::header::kEngineNameOffset, format::header::kEngineNameMoney}});
  ExpectRefused("It is a Microsoft Money file");
}

TEST_F(BadFilesTest, AFileThatIsCutShort) {
  WriteDatabase({});
  fs::resize_file(Path(), 5 * kPageSize + 100);
  ExpectRefused("is not a whole number of pages; the file is incomplete. Restore it from a backup.");
  fs::resize_file(Path(), 3000);
  ExpectRefused("Its 3000 bytes are less than a page of an Access database.");
}

}  // namespace
}  // namespace tavi::access::test
