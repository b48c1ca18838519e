#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "names/cPlayerDetails.h"
#include "store/cDatabase.h"
#include "util/cIntegerList.h"

namespace tavi {

/// A partnership as a walk returns it.
struct WalkedPartnership {
  std::int32_t P1Number = 0;
  std::string P1Name;
  std::int32_t P2Number = 0;
  std::string P2Name;
  std::string PartnershipName;
  std::string AlternateName;
};

/// The players that a walk of the partnerships met who are not active members (any more).
class RetiredPlayers {
 public:
  void Add(std::int32_t memberNumber);
  /// Makes every partnership of these players inactive, the smallest number first.
  void RetireFromPartnerships(cDatabase& store) const;

 private:
  cIntegerList list_;
  std::set<std::int32_t> beyondList_;  // numbers that a 16-bit list, or a full one, cannot hold
};

/// The walk of one facade object through the members, the partnerships or the governing body's list: one at a time, row
/// by row. Opening one ends the one before; the store stays open until it ends. Errors of the store pass to the caller
/// and leave the walk where it was.
class Walk {
 public:
  /// Begins a walk and returns its first row; false (and no walk) when there is none.
  bool GetFirstMember(cDatabase& store, bool includeInactive, std::int32_t& Number, std::string& Name, double& ParScore,
                      std::int16_t NameFormat);
  bool GetFirstEBURecord(cDatabase& store, std::string& EBUNumber, std::string& Name, std::int16_t NameFormat);
  bool GetFirstPartnership(cDatabase& store, bool includeInactive, WalkedPartnership& partnership,
                           std::int16_t NameFormat);

  /// The next row; false at the end, which ends the walk, and when no walk is open.
  bool GetNextMember(cDatabase& store, bool includeInactive, std::int32_t& Number, std::string& Name, double& ParScore,
                     std::int16_t NameFormat);
  /// The format is a number written as text; one that is none raises TypeMismatch.
  bool GetNextEBURecord(cDatabase& store, std::string& EBUNumber, std::string& Name, const std::string& NameFormat);
  /// Partnerships of players who are not active members are left out and remembered.
  bool GetNextPartnership(cDatabase& store, WalkedPartnership& partnership, std::int16_t NameFormat);

  /// Closes the store whatever its open count, ends the walk, and makes the partnerships of the remembered players
  /// inactive, unless the store has moved to another file.
  void EndGet(cDatabase& store);

  /// During a walk of the members that includes inactive ones: whether the last one returned is inactive. False at any
  /// other time.
  [[nodiscard]] bool Retired() const { return retired_; }

 private:
  /// False without a cursor; at the end of the cursor the walk is ended.
  bool HasRow(cDatabase& store);
  void Remember(std::int32_t retiredPlayer);
  void ReadPartnership(const std::shared_ptr<cPlayerDetails>& lower, const std::shared_ptr<cPlayerDetails>& higher,
                       WalkedPartnership& partnership, std::int16_t NameFormat) const;

  std::unique_ptr<ado::Recordset> cursor_;
  std::optional<RetiredPlayers> retiredPlayers_;
  std::string retiredPlayersFile_;
  bool retired_ = false;
};

}  // namespace tavi
