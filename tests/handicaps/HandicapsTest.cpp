#include "handicaps/Handicaps.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(Handicaps, ANewResultHoldsZeros) {
  const Handicaps handicaps;
  EXPECT_EQ(handicaps.PartnershipHandicap(), 0.0);
  EXPECT_EQ(handicaps.Player1Handicap(), 0.0);
  EXPECT_EQ(handicaps.Player2Handicap(), 0.0);
}

TEST(Handicaps, EachValueIsReadBackAsItWasWritten) {
  Handicaps handicaps;
  handicaps.SetPartnershipHandicap(51.25);
  handicaps.SetPlayer1Handicap(-3.0);
  handicaps.SetPlayer2Handicap(100.125);
  EXPECT_EQ(handicaps.PartnershipHandicap(), 51.25);
  EXPECT_EQ(handicaps.Player1Handicap(), -3.0);
  EXPECT_EQ(handicaps.Player2Handicap(), 100.125);
}

}  // namespace
}  // namespace tavi
