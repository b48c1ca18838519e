#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

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

}  // namespace tavi::host
