#pragma once

namespace tavi {

/// The result of a handicap calculation, in per cent.
class Handicaps {
 public:
  [[nodiscard]] double PartnershipHandicap() const { return partnership_; }
  void SetPartnershipHandicap(double value) { partnership_ = value; }
  [[nodiscard]] double Player1Handicap() const { return player1_; }
  void SetPlayer1Handicap(double value) { player1_ = value; }
  [[nodiscard]] double Player2Handicap() const { return player2_; }
  void SetPlayer2Handicap(double value) { player2_ = value; }

 private:
  double partnership_ = 0.0;
  double player1_ = 0.0;
  double player2_ = 0.0;
};

}  // namespace tavi
