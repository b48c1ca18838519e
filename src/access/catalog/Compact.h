#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "access/catalog/Check.h"
#include "access/catalog/Database.h"
#include "access/file/FileSystem.h"

namespace tavi::access {

/// What compacting a file came to.
struct CompactResult {
  std::string backup;  ///< the path of the file as it was
  std::uint64_t bytesBefore = 0;
  std::uint64_t bytesAfter = 0;
};

/// Puts a file with the same contents, laid out anew (see RebuildPages), into the place of a file: free room goes,
/// dropped columns no longer count, damaged indexes and counters are mended. The old file stays beside it under the
/// next free name NAME.backup-1.mdb, NAME.backup-2.mdb, ...
///
/// The old file is checked first; the new one is written under another name (NAME.mdb.compact), flushed, read again,
/// checked, and each of its tables compared with the old one's; then it takes the old one's name in one step. A crash
/// at any instant leaves the one or the other whole under the name; what it leaves beside them the next call removes,
/// or gives its name as the backup: after a crash at the very end that is all that the next call does. Nobody else can
/// have the file open meanwhile. A file that was compacted and has not changed since stays, without a second backup:
/// the result is that of the former call.
///
/// Raises ProviderFailure, and leaves the file as it was: when the file cannot be opened, is in use by anybody, has
/// damage in its catalogue, maps, rows or long values, or has an index that cannot be made anew; when the disk is full.
/// ProviderPermission when the file cannot be written or is one of Access 97.
CompactResult CompactFile(const std::shared_ptr<FileSystem>& fileSystem, const std::string& path,
                          const CheckProgress& progress = {});

/// The pages of a file with the same contents as a database, laid out anew:
///
///   header             taken over as it is: sort order, code page, dates, key of an encoded file
///   tables             all of the catalogue, the system's included; each keeps its number, the page of its
///                      definition, because other rows refer to it. What was not in the catalogue is gone.
///   columns            numbered 0, 1, ... in their old order, without gaps: dropped ones no longer count
///   rows, long values  value by value, in the order of the old pages
///   indexes            with the same names and numbers, built from the rows
///   counters           of rows and keys: counted; the last automatic number: the old one, or the greatest stored
///
/// Everything that lies in rows of the system's tables (properties, rights, relationships, stored queries, forms,
/// links) is kept with these rows. Joins the pager's open statement or makes a read statement. Holds the whole new file
/// in memory. Raises ProviderFailure when something cannot be read or an index cannot be built.
std::vector<Page> RebuildPages(Database& database);

/// True when two tables have the same columns in the same order and hold the same rows, each as often, wherever they
/// lie: value by value, numbers to the last bit. Reads each row twice and remembers little of it. Both tables are read
/// in open statements; raises the errors of reading.
[[nodiscard]] bool HaveSameRows(Table& left, Table& right);

}  // namespace tavi::access
