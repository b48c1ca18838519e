#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "access/file/support/MemoryFileSystem.h"

namespace tavi::access::test {

/// The path of the file in the file systems below.
inline constexpr char kUsedPath[] = "club.mdb";

/// What using a file needed.
struct Use {
  std::uint64_t pagesRead = 0;
  std::size_t answers = 0;   ///< requests that were answered
  std::size_t refusals = 0;  ///< requests that raised an Error with a description
};

/// Uses the file `kUsedPath` in all ways: checks it, lists its schema, reads every table by its rows and by statements,
/// inserts, updates, deletes, adds and drops columns, indexes and tables. Whatever is wrong with it, each request is
/// answered or refused with an Error. Raises TooManyReads when more than `limit` pages were asked for, and lets through
/// whatever is no Error.
Use UseFile(const std::shared_ptr<MemoryFileSystem>& memory, std::uint64_t limit);

/// The same for the bytes of a file.
Use UseFile(const std::vector<std::uint8_t>& bytes, std::uint64_t limit);

/// A sound small file that has one of everything: tables with all types of columns, related ones, long values of every
/// form, indexes of two levels, properties, rows that have moved.
[[nodiscard]] std::vector<std::uint8_t> MakeFileOfEverything();

}  // namespace tavi::access::test
