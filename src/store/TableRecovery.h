#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>

#include "store/IdentifierMap.h"
#include "store/RecoveryReport.h"
#include "store/RecoverySpecification.h"
#include "store/cDatabase.h"

namespace tavi {

/// The table that rows of other tables refer to.
inline constexpr const char* kCompetitionsTable = "Competitions";

/// True for an error that the system has with the new file, such as a full disk: no row that follows would escape it,
/// and what is not saved is not lost, for the old file has it still. The old file itself is only read.
[[nodiscard]] bool IsOfTheNewFile(const Error& error);

/// A table as it is to be copied.
struct TableTask {
  std::string specification;        ///< see ParseTableSpecification
  std::string defaults{};           ///< see ParseDefaults
  std::string competitionColumn{};  ///< holds an identifier of Competitions; may be empty
};

/// Copies one table of an old file, row by row and column by column, into the store's open file, whose table is emptied
/// first. What cannot be read or stored is left out and reported; the rest goes on.
class TableRecovery {
 public:
  /// `stated`: how many rows the old table says to have. `conversionNeeded` becomes false when the old table is a
  /// Competitions table of the current layout. All references outlive this object.
  TableRecovery(cDatabase& database, ado::Connection& old, IdentifierMap& identifiers, bool& conversionNeeded,
                RecoveryObserver* observer)
      : database_(database),
        old_(old),
        identifiers_(identifiers),
        conversionNeeded_(conversionNeeded),
        observer_(observer) {}

  /// Copies. Raises nothing that concerns the table (see RecoveredTable::error), only errors of the new file.
  RecoveredTable Copy(const TableTask& task, std::optional<std::int64_t> stated);

 private:
  void CopyRows(const TableTask& task);
  void CopyRow();
  /// The old row's value of a column: as it is, or the default when there is none. Nothing when the new row is to keep
  /// what the file gives to it.
  [[nodiscard]] std::optional<Value> ValueFor(const std::string& column);
  [[nodiscard]] std::optional<Value> ReadOld(const std::string& column);
  [[nodiscard]] Value NewReference(const Value& oldReference);
  void Store(const std::string& column, const Value& value);
  void StoreShortened(const std::string& column, const std::string& text, const Error& refusal);
  void EnterIdentifier();
  void Account(std::optional<std::int64_t> stated);
  void Remark(const std::string& text);

  cDatabase& database_;
  ado::Connection& old_;
  IdentifierMap& identifiers_;
  bool& conversionNeeded_;
  RecoveryObserver* observer_;

  RecoveredTable report_;
  TableSpecification specification_;
  std::map<std::string, std::string> defaults_;
  std::string competitionColumn_;
  std::unique_ptr<ado::Recordset> oldRows_;
  std::unique_ptr<ado::Recordset> newRows_;
  std::int64_t danglingReferences_ = 0;

  // Of the row that is being copied.
  std::int32_t oldIdentifier_ = -1;
  std::int64_t valuesRead_ = 0;
  std::int64_t valuesLost_ = 0;
  std::string firstDamage_;
};

}  // namespace tavi
