#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "access/catalog/Table.h"
#include "access/file/Pager.h"
#include "platform/values/Date.h"

namespace tavi::access {

/// A column as it is to be made.
struct ColumnDesign {
  std::string name;
  ColumnType type = ColumnType::Text;
  std::uint16_t length = 255;   ///< Text: characters; Binary: bytes; others: ignored
  std::uint8_t precision = 18;  ///< Numeric
  std::uint8_t scale = 0;       ///< Numeric
  bool autoNumber = false;
  bool required = false;
  bool allowZeroLength = true;
  bool compressed = true;         ///< Unicode compression of Text and Memo
  std::string defaultExpression;  ///< expression text, empty for none
};

/// An index as it is to be made.
struct IndexDesign {
  std::string name;
  struct Column {
    std::string name;
    bool ascending = true;
  };
  std::vector<Column> columns;
  bool primaryKey = false;
  bool unique = false;
  bool ignoreNulls = false;
  bool required = false;
};

struct TableDesign {
  std::string name;
  std::vector<ColumnDesign> columns;
  std::vector<IndexDesign> indexes;
};

/// What the catalogue knows of an object that is a table or stands for one.
struct CatalogEntry {
  std::string name;
  PageNumber page = 0;
  bool isSystem = false;
  bool isLinked = false;
};

/// The relationship rows of the file.
struct Relationship {
  std::string name;
  std::string primaryTable;
  std::vector<std::string> primaryColumns;
  std::string foreignTable;
  std::vector<std::string> foreignColumns;
  bool enforced = false;
  bool cascadeUpdates = false;
  bool cascadeDeletes = false;
};

/// An Access file as a set of tables with names. One database belongs to one pager (connection, thread). Calls that
/// change the file need an open write statement (WriteStatement), the others a read statement. Table and column names
/// are compared ignoring case. A change that fails leaves pages half-changed in memory: roll the statement back.
class Database {
 public:
  explicit Database(std::unique_ptr<Pager> pager);
  ~Database();

  /// Writes a new, empty Jet 4 file that holds the system tables only, durable on return. `now` becomes the time at
  /// which they were made. Raises ProviderFailure when the file exists.
  static void CreateFile(FileSystem& fileSystem, const std::string& path, Date now);

  [[nodiscard]] Pager& GetPager();

  /// Tables and links by name; system tables included and marked.
  [[nodiscard]] std::vector<CatalogEntry> Tables();
  [[nodiscard]] std::vector<Relationship> Relationships();
  /// A table by name. The object is remembered and shared until the table is altered or the pager's generation changes:
  /// fetch it anew in each statement. Raises ProviderNoTable.
  [[nodiscard]] std::shared_ptr<Table> OpenTable(std::string_view name);
  /// As OpenTable, but nothing when there is no such table.
  [[nodiscard]] std::shared_ptr<Table> FindTable(std::string_view name);

  // The changes of definitions below take the time for the table's date of change; without one that date stays.

  /// Makes an empty table. An index without a name gets one. Raises ProviderSyntax for an unusable name,
  /// ProviderFailure ("Table 'X' already exists.") for one in use, ProviderBadStatus for a column that is there twice,
  /// ProviderFailure ("Too many fields defined.") for more than 255.
  void CreateTable(const TableDesign& design, Date now);
  /// Raises ProviderNoTable, ProviderPermission for a table of the system, ProviderFailure while a relationship uses
  /// it.
  void DropTable(std::string_view name);
  /// Existing rows get null (a Boolean: False; an automatic number: 1, 2, ...); `required` and the default hold for
  /// rows that are written from then on. Raises ProviderBadStatus when the column exists, ProviderFailure ("Too many
  /// fields defined.") when 255 columns were ever created in the table.
  void AddColumn(std::string_view table, const ColumnDesign& column, std::optional<Date> now = std::nullopt);
  /// Raises ProviderBadParameter when there is no such column, ProviderFailure while an index or relationship uses it.
  void DropColumn(std::string_view table, std::string_view column, std::optional<Date> now = std::nullopt);
  /// Gives the column of that name the type, length and properties of the design; values are converted, and the default
  /// stays when the design has none. A change between lengths of Text keeps the column, any other takes a new one of
  /// the 255 that a table can ever have. Raises ProviderBadParameter when there is no such column, ProviderFailure for
  /// a change of type while an index or relationship uses it, and the errors of ConvertForColumn for a value that does
  /// not fit.
  void ChangeColumn(std::string_view table, const ColumnDesign& column, std::optional<Date> now = std::nullopt);
  /// Builds the index from the rows. Raises ProviderFailure for duplicate keys in a unique index, more than 32 indexes,
  /// a name in use or a second primary key; ProviderIntegrity for a null in a key that must not have one;
  /// ProviderBadParameter for an unknown column.
  void CreateIndex(std::string_view table, const IndexDesign& design, std::optional<Date> now = std::nullopt);
  /// Raises ProviderFailure when there is no such index or a relationship uses it.
  void DropIndex(std::string_view table, std::string_view index, std::optional<Date> now = std::nullopt);

  /// Declares that rows of the foreign table refer to rows of the primary one. An enforced relationship needs a unique
  /// index on exactly the primary columns and gives the foreign table an index. Raises ProviderFailure when that index
  /// is missing, columns are of different types, rows violate the relationship, or the name is in use; ProviderNoTable;
  /// ProviderBadParameter for an unknown column.
  void CreateRelationship(const Relationship& relationship, Date now);
  /// Raises ProviderFailure when there is none of that name.
  void DropRelationship(std::string_view name);

 private:
  class Implementation;
  std::unique_ptr<Implementation> implementation_;
};

}  // namespace tavi::access
