#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "names/cPlayerDetails.h"

namespace tavi {

/// Two players as a pair. The players are shared by reference, with other partnerships too.
class cPartnership {
 public:
  /// A pair of two empty players.
  explicit cPartnership(const std::shared_ptr<const NameKeyService>& nameKeyService);
  cPartnership(std::shared_ptr<cPlayerDetails> player1, std::shared_ptr<cPlayerDetails> player2);

  /// In per cent.
  double Handicap = kNeutralHandicap;
  /// The pair's own name; may be empty.
  std::string KnownAs;
  /// Never null.
  std::shared_ptr<cPlayerDetails> Player1;
  std::shared_ptr<cPlayerDetails> Player2;

  /// The same pair with the players exchanged.
  [[nodiscard]] cPartnership OtherOrder() const;
  /// The displayed name of the pair: its own name (except in format 10), else both players' names in a format of
  /// cPlayerDetails::Name joined by " & ". TransferSurname writes a shared surname once. Alternate gives the other
  /// order; empty when there is none to offer.
  [[nodiscard]] std::string Name(std::int16_t NameFormat, bool TransferSurname, bool Alternate) const;

 private:
  [[nodiscard]] std::string FamiliarNames(bool alternate) const;
  [[nodiscard]] std::string SharedSurnameName(std::int16_t format) const;
};

}  // namespace tavi
