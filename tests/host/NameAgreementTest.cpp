#include "host/imports/MemberRoll.h"

#include <gtest/gtest.h>

#include "composition/Composition.h"

namespace tavi::host {
namespace {

const PersonName kRobert{"Robert", "Bob", "McAllister-Ray"};

class NameAgreementTest : public ::testing::Test {
 protected:
  NameAgreement With(const std::string& first, const std::string& last, const std::string& knownAs = "") const {
    return CompareNames(kRobert, {first, knownAs, last}, *platform_->nameKeyService);
  }
  bool Whole(const std::string& written) const { return FitsWholeName(kRobert, written, *platform_->nameKeyService); }

  std::shared_ptr<const Platform> platform_ = MakePlatform({});
};

TEST_F(NameAgreementTest, SpellingsSoundsInitialsAndFamiliarNamesFit) {
  EXPECT_EQ(With("ROBERT", "mcallister ray"), NameAgreement::Fits);
  EXPECT_EQ(With("Robbert", "MacAllister-Ray"), NameAgreement::Fits);
  EXPECT_EQ(With("Bob", "McAllister"), NameAgreement::Fits);
  EXPECT_EQ(With("R", "Ray"), NameAgreement::Fits);
  EXPECT_EQ(With("Robin", "Ray", "Bob"), NameAgreement::Fits);
  EXPECT_EQ(With("", "Ray"), NameAgreement::Fits);
  EXPECT_EQ(With("Robert", ""), NameAgreement::Fits);
  EXPECT_EQ(With("", ""), NameAgreement::Fits);
}

TEST_F(NameAgreementTest, OneOtherPartFitsHalf) {
  EXPECT_EQ(With("Robert", "Quartermain"), NameAgreement::HalfFits);
  EXPECT_EQ(With("Zoe", "Ray"), NameAgreement::HalfFits);
  EXPECT_EQ(With("Z", "Ray"), NameAgreement::HalfFits);
}

TEST_F(NameAgreementTest, TwoOtherPartsAreAnotherName) {
  EXPECT_EQ(With("Zoe", "Quartermain"), NameAgreement::OtherName);
}

TEST_F(NameAgreementTest, ShortNamesOfOneOtherLetterAreOthers) {
  const NameKeyService& keys = *platform_->nameKeyService;
  EXPECT_EQ(CompareNames({"Tom", "", "Day"}, {"Tim", "", "Day"}, keys), NameAgreement::HalfFits);
}

TEST_F(NameAgreementTest, WholeNamesFitWhereverTheSurnameBegins) {
  EXPECT_TRUE(Whole("Bob McAllister Ray"));
  EXPECT_TRUE(Whole("Mr. Robert J McAllister-Ray"));
  EXPECT_TRUE(Whole("McAllister-Ray, Robert"));
  EXPECT_TRUE(Whole("Bob"));
  EXPECT_FALSE(Whole("Zoe Ray"));
  EXPECT_FALSE(Whole("Robert Quartermain"));
  EXPECT_FALSE(Whole("Zoe"));
}

}  // namespace
}  // namespace tavi::host
