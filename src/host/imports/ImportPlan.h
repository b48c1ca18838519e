#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "store/cDatabase.h"

/// What an import would change, before anything is changed: made from a file and the club as it is, shown or applied.
namespace tavi::host {

/// A field that gets another value; `field` is its name in members and pairs files. An empty text is an empty field.
struct FieldChange {
  std::string field;
  std::string before;
  std::string after;
};

/// A member or a regular pair that is added or changed.
struct RecordChange {
  std::size_t line = 0;               ///< of the file, for messages
  std::vector<std::int32_t> members;  ///< the member, or the two of a pair, the one who is entered first in front
  std::string name;                   ///< as it will be
  bool isNew = false;
  std::vector<FieldChange> fields;  ///< of a new record those that are not empty
};

/// Something that was decided for the person, who had better know it.
struct ImportRemark {
  std::size_t line = 0;
  std::string text;
};

struct ImportPlan {
  std::vector<RecordChange> changes;  ///< in the order of the file
  std::size_t unchanged = 0;          ///< how many lines of the file change nothing
  std::vector<ImportRemark> remarks;

  [[nodiscard]] std::size_t Added() const;
  [[nodiscard]] std::size_t Updated() const { return changes.size() - Added(); }
};

/// Told how many changes are done and whose is next.
using ImportProgress = std::function<void(std::size_t done, const std::string& name)>;

/// "FILE:LINE", as messages begin.
std::string PlaceInFile(const std::string& fileName, std::size_t line);
/// Raises InvalidArgument "FILE:LINE: reason".
[[noreturn]] void RefuseImport(const std::string& fileName, std::size_t line, const std::string& reason);

/// How many characters the text columns of one table take, as the file says.
class ColumnWidths {
 public:
  /// Reads the columns of a table of the open file.
  ColumnWidths(cDatabase& store, const std::string& table);
  /// Raises InvalidArgument ("WHERE: COLUMN ...") when a text is longer than its column takes as it will be stored.
  void Require(const std::string& where, const std::string& column, const std::string& text) const;

 private:
  std::map<std::string, std::int32_t> widths_;
};

}  // namespace tavi::host
