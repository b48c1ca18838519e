#include "members/EBUMembershipDetails.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

TEST(EBUMembershipDetails, ANewRowIsEmpty) {
  const EBUMembershipDetails details;
  EXPECT_EQ(details.EBUNumber() + details.FirstName() + details.LastName(), "");
  EXPECT_EQ(details.CountyCode() + details.Location(), "");
}

TEST(EBUMembershipDetails, EachTextIsReadBackAsItWasWritten) {
  EBUMembershipDetails details;
  details.SetEBUNumber("00123456");
  details.SetFirstName("Éloïse");
  details.SetLastName(" O'Neil ");
  details.SetCountyCode("");
  details.SetLocation("50% of Łódź");
  EXPECT_EQ(details.EBUNumber(), "00123456");
  EXPECT_EQ(details.FirstName(), "Éloïse");
  EXPECT_EQ(details.LastName(), " O'Neil ");
  EXPECT_EQ(details.CountyCode(), "");
  EXPECT_EQ(details.Location(), "50% of Łódź");
}

}  // namespace
}  // namespace tavi
