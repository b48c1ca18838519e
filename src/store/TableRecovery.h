#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "store/RecoveryReport.h"
#include "store/cDatabase.h"

/// One table of an old file and how it is copied, and what the copies of all tables share.
namespace tavi {

/// Values of columns that an old file lacks, by their names in lower case.
using ColumnDefaults = std::map<std::string, std::string>;

/// Reads "IsTeams=0,IsSwiss=0". An empty text has no items. Raises "Illegal defaults setting" (source "Recovery") for
/// an item without "=".
ColumnDefaults ParseDefaults(const std::string& text);

/// Which identifier the copy of a row got in the new file, by the table and its identifier in the old one. Identifiers
/// of different tables are different things: competition 5 and award 5 have nothing to do with each other.
class IdentifierMap {
 public:
  void Enter(const std::string& table, std::int32_t oldIdentifier, std::int32_t newIdentifier) {
    entries_.try_emplace({table, oldIdentifier}, newIdentifier);
  }
  [[nodiscard]] std::optional<std::int32_t> Find(const std::string& table, std::int32_t oldIdentifier) const {
    const auto found = entries_.find({table, oldIdentifier});
    return found == entries_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  std::map<std::pair<std::string, std::int32_t>, std::int32_t> entries_;
};

/// A table as it is to be copied.
struct TableTask {
  std::string table;
  std::string identifier{};         ///< its column of identifiers, which the new file gives out anew; may be empty
  ColumnDefaults defaults{};        ///< for columns that the old file lacks, and for its empty values
  std::string competitionColumn{};  ///< holds an identifier of Competitions; may be empty
  /// Further defaults with a value out of a setting, which anybody can write: read (ParseDefaults) when the table's
  /// turn comes, so that a setting that cannot be one costs this table alone.
  std::string defaultsFromSetting{};
};

/// What the copies of all tables of one recovery share.
struct CarriedOver {
  IdentifierMap identifiers;
  bool acceptsNegativeIdentifiers = false;  ///< random automatic numbers; without it they count as not found
  bool conversionNeeded = true;             ///< false as soon as the old Competitions table shows the current layout
  bool competitionsMayFollow = false;  ///< competitions were refused and are tried again, so their numbers may come
};

/// The table that rows of other tables refer to.
inline constexpr const char* kCompetitionsTable = "Competitions";

/// True when the rows have a field of that name, in any case.
[[nodiscard]] bool HasField(const ado::Recordset& rows, std::string_view name);

/// True for an error that the system has with the new file, such as a full disk: no row that follows would escape it,
/// and what is not saved is not lost, for the old file has it still. The old file itself is only read.
[[nodiscard]] bool IsOfTheNewFile(const Error& error);

/// Copies one table of an old file, row by row and column by column, into the store's open file, whose table is emptied
/// first. What cannot be read or stored is left out and reported; the rest goes on.
class TableRecovery {
 public:
  /// All references outlive this object; `observer` may be null.
  TableRecovery(cDatabase& database, ado::Connection& old, CarriedOver& carried, TableTask task,
                RecoveryObserver* observer);

  /// Copies. `stated`: how many rows the old table says to have. Raises nothing that concerns the table (see
  /// RecoveredTable::error), only errors of the new file.
  void Copy(std::optional<std::int64_t> stated);
  /// Tries those rows again that a rule of the new file refused, such as a relationship with a table that was copied
  /// later. True when one of them was saved. Raises as Copy does.
  bool TryRefusedRowsAgain();
  /// What became of the table; called once, at the end.
  [[nodiscard]] RecoveredTable Report();

 private:
  enum class Fate { Saved, Refused, Lost };

  void CopyRows();
  void OpenRows();
  void CopyRow(std::int64_t place);
  Fate SaveRow();
  /// Runs `copying`, whose errors belong into the report when they concern the table.
  void Attempt(const std::function<void()>& copying);
  /// The old row's value of a column: as it is, or the default when there is none. Nothing when the new row is to keep
  /// what the file gives to it.
  [[nodiscard]] std::optional<Value> ValueFor(const std::string& column);
  [[nodiscard]] std::optional<Value> ReadOld(const std::string& column);
  [[nodiscard]] Value NewReference(const Value& oldReference);
  void Store(const std::string& column, const Value& value);
  void StoreShortened(const std::string& column, const std::string& text, const Error& refusal);
  void EnterIdentifier();
  void DeleteOldRows();
  void NoteRefusal(const std::string& why);
  void Remark(const std::string& text);
  [[nodiscard]] bool IsOfCompetitions() const;

  cDatabase& database_;
  ado::Connection& old_;
  CarriedOver& carried_;
  TableTask task_;
  RecoveryObserver* observer_;

  RecoveredTable report_;
  std::unique_ptr<ado::Recordset> oldRows_;
  std::unique_ptr<ado::Recordset> newRows_;
  std::int64_t danglingReferences_ = 0;
  std::vector<std::int64_t> refused_;  ///< the places of rows in the old table, counted as lost until they are saved
  std::vector<std::string> refusals_;  ///< why, each reason once

  // Of the row that is being copied.
  std::optional<std::int32_t> oldIdentifier_;
  std::int64_t valuesRead_ = 0;
  std::int64_t valuesLost_ = 0;
  bool isDangling_ = false;
  bool isWaiting_ = false;
  std::string firstDamage_;
};

}  // namespace tavi
