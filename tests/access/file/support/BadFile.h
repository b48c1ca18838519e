#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "access/file/Format.h"
#include "access/file/Pager.h"
#include "access/file/support/SmallDatabase.h"
#include "access/file/support/TemporaryFolder.h"
#include "platform/values/Error.h"

namespace tavi::access::test {

inline std::string WholeFile(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// A file of the system, club.mdb, that is no database or none that can be used.
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
    for (const auto& entry : std::filesystem::directory_iterator(folder_.Path())) {
      const bool isFile = std::filesystem::is_regular_file(entry.path());
      all[entry.path().filename().string()] = isFile ? WholeFile(entry.path()) : "";
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

}  // namespace tavi::access::test
