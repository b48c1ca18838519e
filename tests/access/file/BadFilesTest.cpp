// What is no database, or none that can be used: each is refused in its own words, and neither it nor its folder is
// changed. On the system's own files.

#include "access/file/support/BadFile.h"

namespace tavi::access::test {
namespace {

namespace fs = std::filesystem;

TEST_F(BadFilesTest, NoFile) {
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
