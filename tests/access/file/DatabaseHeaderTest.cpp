#include <gtest/gtest.h>
#include <array>
#include <string>

#include "access/file/DatabaseHeader.h"
#include "access/file/Format.h"
#include "access/file/support/SmallDatabase.h"
#include "platform/values/Error.h"

namespace tavi::access {
namespace {

using test::MakeHeaderPage;

std::string FailureOf(const Page& page, std::uint64_t size = kPageSize) {
  try {
    static_cast<void>(DecodeHeader(page.All(), size, "club.mdb"));
    return "";
  } catch (const Error& error) {
    EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
    return error.Description();
  }
}

TEST(Rc4, GivesTheKeyStreamOfTheHeaderMask) {
  std::array<std::uint8_t, 128> stream{};
  ApplyRc4(format::header::kMaskKey, stream);
  const std::array<std::uint8_t, 8> first = {0xB5, 0x6F, 0x03, 0x62, 0x61, 0x08, 0xC2, 0x55};
  const std::array<std::uint8_t, 8> last = {0x78, 0x16, 0x0C, 0xED, 0xE9, 0x2D, 0x62, 0xD4};
  EXPECT_TRUE(std::equal(first.begin(), first.end(), stream.begin()));
  EXPECT_TRUE(std::equal(last.begin(), last.end(), stream.end() - 8));
  ApplyRc4(format::header::kMaskKey, stream);
  EXPECT_EQ(stream, (std::array<std::uint8_t, 128>{}));
}

TEST(DatabaseHeader, APlainJet4FileIsAccepted) {
  const DatabaseHeader header = DecodeHeader(MakeHeaderPage().All(), kPageSize, "club.mdb");
  EXPECT_FALSE(header.isJet3);
  EXPECT_EQ(header.pageSize, kPageSize);
  EXPECT_EQ(header.databaseKey, 0u);
}

TEST(DatabaseHeader, TheKeyOfAnEncodedFileIsFound) {
  const Page page = MakeHeaderPage({.databaseKey = 0xA7B773E0});
  EXPECT_EQ(DecodeHeader(page.All(), kPageSize, "club.mdb").databaseKey, 0xA7B773E0u);
}

TEST(DatabaseHeader, AFileWithAPasswordIsRefused) {
  EXPECT_EQ(
      FailureOf(MakeHeaderPage({.password = "ucanaccess"})),
      "Not a valid password. 'club.mdb' is protected by a database password; remove the password in Access to use "
      "it here.");
  EXPECT_NE(FailureOf(MakeHeaderPage({.password = "x"})), "");
}

TEST(DatabaseHeader, LaterVersionsAreRefused) {
  EXPECT_EQ(FailureOf(MakeHeaderPage({.version = 2})),
            "Unrecognized database format 'club.mdb'. Its format version is 2; only Access 97 (0) and Access 2000-2003 "
            "(1) are supported. Save it in the Access 2002-2003 format (.mdb) first.");
  Page ace = MakeHeaderPage({.version = 2});
  const std::string name = "Standard ACE DB";
  for (std::size_t i = 0; i < name.size(); ++i) ace.SetU8(4 + i, static_cast<std::uint8_t>(name[i]));
  EXPECT_EQ(FailureOf(ace),
            "Unrecognized database format 'club.mdb'. It is a file of Access 2007 or later; save it in the Access "
            "2002-2003 format (.mdb) first.");
}

TEST(DatabaseHeader, OtherFilesAreRefused) {
  Page money = MakeHeaderPage();
  const std::string name = "MSISAM Database";
  for (std::size_t i = 0; i < name.size(); ++i) money.SetU8(4 + i, static_cast<std::uint8_t>(name[i]));
  EXPECT_EQ(FailureOf(money),
            "Unrecognized database format 'club.mdb'. It is a Microsoft Money file, not an Access database.");
  EXPECT_EQ(FailureOf(Page(0)), "Unrecognized database format 'club.mdb'. It is not an Access database.");
  Page wrongStart = MakeHeaderPage();
  wrongStart.SetU8(1, 0);
  EXPECT_EQ(FailureOf(wrongStart), "Unrecognized database format 'club.mdb'. It is not an Access database.");
}

TEST(DatabaseHeader, AFileShorterThanAPageIsRefused) {
  EXPECT_EQ(FailureOf(MakeHeaderPage(), 4095),
            "Unrecognized database format 'club.mdb'. Its 4095 bytes are less than a page of an Access database.");
  EXPECT_EQ(FailureOf(MakeHeaderPage(), 0),
            "Unrecognized database format 'club.mdb'. Its 0 bytes are less than a page of an Access database.");
}

TEST(DatabaseHeader, AnImpossibleCreationDateIsNoReasonToFall) {
  for (const std::uint64_t bits : {0x7FF0000000000000ULL, 0x7FF8000000000001ULL, 0xFFEFFFFFFFFFFFFFULL, 0ULL}) {
    Page page = MakeHeaderPage();
    ToggleHeaderMask(page);
    page.SetU32(format::header::kCreationDateOffset, static_cast<std::uint32_t>(bits));
    page.SetU32(format::header::kCreationDateOffset + 4, static_cast<std::uint32_t>(bits >> 32U));
    page.Fill(format::header::kPasswordOffset, format::header::kPasswordSize, 0);
    ToggleHeaderMask(page);
    EXPECT_EQ(FailureOf(page), "") << bits;
  }
}

TEST(DatabaseHeader, Jet3HasSmallPagesAndAShorterMask) {
  Page page(0);
  page.CopyFrom(MakeHeaderPage());
  ToggleHeaderMask(page);
  page.Fill(0x3A, 0x60, 0);
  page.SetU8(format::header::kVersionOffset, format::header::kVersionJet3);
  ApplyRc4(format::header::kMaskKey,
           page.AllMutable().subspan(format::header::kMaskOffset, format::header::kJet3MaskSize));
  const DatabaseHeader header = DecodeHeader(page.All().first(2048), 2048, "old.mdb");
  EXPECT_TRUE(header.isJet3);
  EXPECT_EQ(header.pageSize, 2048u);
}

TEST(DatabaseHeader, TheMaskIsItsOwnInverse) {
  Page page = MakeHeaderPage();
  EXPECT_EQ(page.U8(0x18), 0xB5);
  EXPECT_EQ(page.U8(0x19), 0x6E);
  ToggleHeaderMask(page);
  EXPECT_EQ(page.U32(format::header::kGlobalFreeMapOffset), 0x100u);
  ToggleHeaderMask(page);
  EXPECT_EQ(page.U8(0x19), 0x6E);
}

}  // namespace
}  // namespace tavi::access
