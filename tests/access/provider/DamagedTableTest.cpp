// A record set on a whole table reads on behind damage, so that what is left of a file can be saved through it.

#include <fstream>
#include <iterator>

#include "access/file/Format.h"
#include "access/provider/ProviderFile.h"
#include "platform/values/Convert.h"

namespace tavi::access::test {
namespace {

using Texts = std::vector<std::string>;

constexpr std::int32_t kRows = 60;
constexpr std::size_t kRowCountOffset = format::data::kRowCountOffset;
constexpr std::size_t kDirectoryOffset = format::data::kRowDirectoryOffset;

class DamagedTableTest : public ::testing::Test {
 protected:
  DamagedTableTest() {
    const auto connection = file_.Open();
    connection->Execute("Create Table T (N Long, Name Text (255), Notes Memo)");
    for (std::int32_t n = 1; n <= kRows; ++n) {
      connection->Execute("Insert Into T (N, Name, Notes) Values (" + std::to_string(n) + ", '" +
                          std::string(200, 'x') + "', '" + (n == 30 ? std::string(3000, 'm') : "short") + "')");
    }
    connection->Close();
    std::ifstream stream(file_.Path(), std::ios::binary);
    content_.assign(std::istreambuf_iterator<char>(stream), {});
    table_ = OwnerOfPageWithText(std::string(200, 'x'));
  }

  [[nodiscard]] unsigned U16(std::size_t offset) const {
    const unsigned low = static_cast<std::uint8_t>(content_[offset]);
    const unsigned high = static_cast<std::uint8_t>(content_[offset + 1]);
    return low | high << 8U;
  }
  [[nodiscard]] std::string OwnerOf(std::size_t page) const {
    return content_.substr(page * kPageSize + format::data::kOwnerOffset, 4);
  }
  /// The owner of the last page that holds a text; compressed text is one byte a character.
  [[nodiscard]] std::string OwnerOfPageWithText(const std::string& text) const {
    return OwnerOf(content_.rfind(text) / kPageSize);
  }
  /// The data pages of an owner.
  [[nodiscard]] std::vector<std::size_t> Pages(const std::string& owner) const {
    std::vector<std::size_t> pages;
    for (std::size_t page = 1; page < content_.size() / kPageSize; ++page) {
      if (content_[page * kPageSize] == 1 && OwnerOf(page) == owner) pages.push_back(page);
    }
    return pages;
  }
  [[nodiscard]] unsigned RowsOn(std::size_t page) const { return U16(page * kPageSize + kRowCountOffset); }

  void Zero(std::size_t offset, std::size_t size) { content_.replace(offset, size, size, '\0'); }

  /// The note of row 30 is stored without compression, two bytes a character.
  void ZeroTheLongValue() {
    std::string stored;
    for (int i = 0; i < 1000; ++i) stored += std::string("m\0", 2);
    const std::size_t place = content_.find(stored);
    ASSERT_NE(place, std::string::npos);
    Zero(place / kPageSize * kPageSize, kPageSize);
  }

  struct Found {
    Texts read;     ///< N of the rows that could be read
    Texts damaged;  ///< the errors of the others
  };
  /// Reads `field` of all rows of the damaged file.
  [[nodiscard]] Found ReadAll(const std::string& field = "N") const {
    std::ofstream(file_.Path(), std::ios::binary) << content_;
    const auto connection = file_.Open();
    const auto rows = connection->OpenRecordset("T", ado::CursorType::ForwardOnly, ado::LockType::Pessimistic,
                                                ado::SourceKind::TableDirect);
    Found found;
    for (; !rows->AtEnd(); rows->MoveNext()) {
      try {
        static_cast<void>(rows->Get(field));
        found.read.push_back(ToText(rows->Get("N")));
      } catch (const Error& error) {
        EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
        found.damaged.push_back(error.Description());
      }
    }
    return found;
  }
  [[nodiscard]] static Texts Numbers(std::int32_t first, std::int32_t last) {
    Texts numbers;
    for (std::int32_t n = first; n <= last; ++n) numbers.push_back(std::to_string(n));
    return numbers;
  }

  ProviderFile file_;
  std::string content_;
  std::string table_;
};

TEST_F(DamagedTableTest, ASoundTableIsReadAsItIs) {
  const Found found = ReadAll("Notes");
  EXPECT_EQ(found.read, Numbers(1, kRows));
  EXPECT_TRUE(found.damaged.empty());
}

TEST_F(DamagedTableTest, APageOfZerosCountsAsOneRowThatCannotBeRead) {
  const std::vector<std::size_t> pages = Pages(table_);
  ASSERT_GE(pages.size(), 3U);
  const auto before = static_cast<std::int32_t>(RowsOn(pages[0]));
  const auto lost = static_cast<std::int32_t>(RowsOn(pages[1]));
  Zero(pages[1] * kPageSize, kPageSize);
  const Found found = ReadAll();
  Texts expected = Numbers(1, before);
  const Texts rest = Numbers(before + lost + 1, kRows);
  expected.insert(expected.end(), rest.begin(), rest.end());
  EXPECT_EQ(found.read, expected);
  ASSERT_EQ(found.damaged.size(), 1U);
  EXPECT_NE(found.damaged[0].find("page " + std::to_string(pages[1])), std::string::npos) << found.damaged[0];
}

TEST_F(DamagedTableTest, ARowThatLiesOutsideOfItsPageCostsTheOneBehindItToo) {
  const std::size_t page = Pages(table_).front();
  const std::size_t entry = page * kPageSize + kDirectoryOffset + 2 * format::data::kRowEntrySize;
  content_[entry] = '\xff';
  content_[entry + 1] = '\x1f';
  const Found found = ReadAll();
  EXPECT_EQ(found.read.size(), kRows - 2U);
  EXPECT_EQ(found.damaged.size(), 2U);
  EXPECT_EQ(found.read[2], "5");
}

TEST_F(DamagedTableTest, RowsWhoseBytesAreGoneAreNotTakenForEmptyOnes) {
  const std::size_t page = Pages(table_).front();
  const std::size_t directoryEnd = kDirectoryOffset + RowsOn(page) * format::data::kRowEntrySize;
  Zero(page * kPageSize + directoryEnd, kPageSize - directoryEnd);
  const Found found = ReadAll();
  EXPECT_EQ(found.damaged.size(), RowsOn(page));
  EXPECT_EQ(found.read.size(), kRows - found.damaged.size());
}

TEST_F(DamagedTableTest, ALongValueWhosePageIsGoneCostsOnlyItself) {
  ZeroTheLongValue();
  EXPECT_EQ(ReadAll("N").read, Numbers(1, kRows));
  const Found found = ReadAll("Notes");
  EXPECT_EQ(found.read.size(), kRows - 1U);
  EXPECT_EQ(found.damaged.size(), 1U);
}

TEST_F(DamagedTableTest, WithoutItsListOfPagesTheTableIsLookedForInTheWholeFile) {
  const std::size_t definition = U16(Pages(table_).front() * kPageSize + format::data::kOwnerOffset);
  // An owned-pages map at row 200 of the definition itself: there is none.
  content_[definition * kPageSize + format::table::kOwnedPagesOffset] = '\xc8';
  EXPECT_EQ(ReadAll().read, Numbers(1, kRows));
}

TEST_F(DamagedTableTest, ASelectStatementFailsWhereDamageIs) {
  Zero(Pages(table_)[1] * kPageSize, kPageSize);
  std::ofstream(file_.Path(), std::ios::binary) << content_;
  const auto connection = file_.Open();
  EXPECT_EQ(NumberRaisedBy([&] { Select(*connection, "Select * From T"); }), 0x80004005U);
}

TEST_F(DamagedTableTest, ComputedColumnsOfADamagedRowRaiseTheDamage) {
  ZeroTheLongValue();
  std::ofstream(file_.Path(), std::ios::binary) << content_;
  const auto connection = file_.Open();
  const auto rows = Select(*connection, "Select N, N + 1 As Next1, Notes From T Where N >= 30");
  EXPECT_EQ(ToText(rows->Get("N")), "30");
  EXPECT_EQ(NumberRaisedBy([&] { static_cast<void>(rows->Get("Notes")); }), 0x80004005U);
  EXPECT_EQ(NumberRaisedBy([&] { static_cast<void>(rows->Get("Next1")); }), 0x80004005U);
  rows->MoveNext();
  EXPECT_EQ(ToText(rows->Get("Next1")), "32");
}

TEST_F(DamagedTableTest, TheTablesSayHowManyRowsTheyHave) {
  const auto connection = file_.Open();
  const auto tables = connection->OpenSchema(ado::SchemaKind::Tables);
  while (ToText(tables->Get("TABLE_NAME")) != "T") tables->MoveNext();
  EXPECT_EQ(tables->Get("CARDINALITY"), Value(kRows));
}

}  // namespace
}  // namespace tavi::access::test
