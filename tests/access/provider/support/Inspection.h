#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "access/catalog/Database.h"

namespace tavi::access::test {

/// A checksum of all that people can see in a file: tables, columns, indexes and every value of every row; the
/// order of the rows does not count.
[[nodiscard]] std::uint64_t DigestOf(Database& database);

/// The rows of each table as another program would print them: whole numbers, texts, memos and Booleans, separated by
/// commas. In the order of their texts; a long row is cut off, its length and a checksum added.
using PrintedRows = std::map<std::string, std::multiset<std::string>>;

/// A row as PrintedRows holds it.
[[nodiscard]] std::string Abridged(const std::string& line);

/// What this engine reads.
[[nodiscard]] PrintedRows PrintTables(Database& database);

/// True where mdbtools is installed, which there is for POSIX systems.
[[nodiscard]] bool AnotherReaderIsThere();
/// What mdbtools reads. Fails the test when it cannot read the file.
[[nodiscard]] PrintedRows PrintTablesByAnother(const std::string& path);

}  // namespace tavi::access::test
