// Files that Access has written, read and compared with what an independent reader made of them.
#include <gtest/gtest.h>
#include <algorithm>
#include <cctype>
#include <fstream>

#include "access/file/Format.h"
#include "access/table/DefinitionBytes.h"
#include "access/table/TableRows.h"
#include "access/table/support/RealFiles.h"
#include "host/dump/DatabaseDump.h"

namespace tavi::access::test {
namespace {

// The name under which the expected contents of a table are kept.
std::string TsvFileName(const std::string& table) {
  constexpr std::string_view kKept = " ._-()";
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string name;
  for (const char character : table) {
    const auto byte = static_cast<unsigned char>(character);
    if ((byte < 0x80 && std::isalnum(byte) != 0) || kKept.find(character) != std::string_view::npos) {
      name += character;
    } else {
      name += {'%', kDigits[byte >> 4U], kDigits[byte & 0xFU]};
    }
  }
  return name + ".tsv";
}

std::vector<std::string> ExpectedLines(const std::string& file, const std::string& table) {
  std::ifstream stream(RealFilesFolder() / "expected" / file / TsvFileName(table), std::ios::binary);
  EXPECT_TRUE(stream.is_open()) << file << ", " << table;
  std::vector<std::string> lines;
  for (std::string line; std::getline(stream, line, '\n');) lines.push_back(line);
  return lines;
}

std::size_t CountExpectedTables() {
  std::size_t count = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(RealFilesFolder() / "expected")) {
    if (entry.path().extension() == ".tsv") ++count;
  }
  return count;
}

std::vector<std::size_t> PositionsById(const TableDefinition& definition) {
  std::vector<std::size_t> positions(definition.columns.size());
  for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = i;
  std::ranges::sort(positions, {}, [&definition](std::size_t i) { return definition.columns[i].id; });
  return positions;
}

template <typename Text>
std::string JoinedLine(const std::vector<std::size_t>& positions, Text text) {
  std::string line;
  for (const std::size_t position : positions)
    line += (line.empty() && position == positions.front() ? "" : "\t") + text(position);
  return line;
}

std::vector<std::string> ActualLines(Pager& pager, const TableDefinition& definition) {
  const std::vector<std::size_t> positions = PositionsById(definition);
  std::vector<std::string> lines;
  const TableRows rows(pager, definition);
  rows.Walk([&](RowPointer row) {
    const RowValues values = rows.Read(row);
    lines.push_back(JoinedLine(positions, [&values](std::size_t i) { return host::TsvText(values[i]); }));
    return true;
  });
  std::ranges::sort(lines);
  lines.insert(lines.begin(),
               JoinedLine(positions, [&definition](std::size_t i) { return definition.columns[i].name; }));
  return lines;
}

class RealFiles : public ::testing::Test {
 protected:
  void SetUp() override {
    if (RealFilesFolder().empty()) GTEST_SKIP() << "the sample files are not beside this checkout";
  }
};

TEST_F(RealFiles, AllRowsOfAllUserTablesAreReadAsTheIndependentReaderDoes) {
  std::size_t tables = 0;
  std::size_t rows = 0;
  for (const std::string& file : RealFileNames()) {
    const auto pager = OpenRealFile(file);
    const ReadStatement statement(*pager);
    for (const NamedTable& table : ListTables(*pager)) {
      if (table.isSystem) continue;
      const TableDefinition definition = ReadTableDefinition(*pager, table.page);
      const std::vector<std::string> actual = ActualLines(*pager, definition);
      EXPECT_EQ(actual, ExpectedLines(file, table.name)) << file << ", " << table.name;
      EXPECT_EQ(actual.size(), RowCount(*pager, definition) + 1U) << file << ", " << table.name;
      rows += actual.size() - 1;
      ++tables;
    }
  }
  EXPECT_EQ(tables, CountExpectedTables());
  EXPECT_GT(rows, 4000U);
}

TEST_F(RealFiles, SystemTablesAreReadWithoutError) {
  for (const std::string& file : RealFileNames()) {
    const auto pager = OpenRealFile(file);
    const ReadStatement statement(*pager);
    std::size_t tables = 0;
    for (const NamedTable& table : ListTables(*pager)) {
      if (!table.isSystem) continue;
      const TableDefinition definition = ReadTableDefinition(*pager, table.page);
      EXPECT_EQ(ActualLines(*pager, definition).front().empty(), definition.columns.empty()) << file << table.name;
      ++tables;
    }
    EXPECT_GE(tables, 4U) << file;
  }
}

// What a definition says survives being written, whatever Access left in the unused bytes.
TEST_F(RealFiles, DefinitionsWrittenAgainHaveTheSameLengthAndContent) {
  for (const std::string& file : RealFileNames()) {
    const auto pager = OpenRealFile(file);
    const ReadStatement statement(*pager);
    for (const NamedTable& table : ListTables(*pager)) {
      const TableDefinition definition = ReadTableDefinition(*pager, table.page);
      const auto bytes = SerializeTableDefinition(definition, {});
      EXPECT_EQ(bytes.size(), pager->Read(table.page)->U32(format::table::kLengthOffset)) << file << ", " << table.name;
      const TableDefinition again = ParseTableDefinition(bytes, table.page, {});
      EXPECT_EQ(SerializeTableDefinition(again, {}), bytes) << file << ", " << table.name;
    }
  }
}

}  // namespace
}  // namespace tavi::access::test
