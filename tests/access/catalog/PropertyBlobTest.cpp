#include "access/catalog/PropertyBlob.h"

#include <gtest/gtest.h>

#include "platform/values/Error.h"

namespace tavi::access {
namespace {

// One column X with the property Required = True.
const Bytes kRequiredX = {0x4d, 0x52, 0x32, 0x00, 0x18, 0x00, 0x00, 0x00, 0x80, 0x00, 0x10, 0x00, 0x52,
                          0x00, 0x65, 0x00, 0x71, 0x00, 0x75, 0x00, 0x69, 0x00, 0x72, 0x00, 0x65, 0x00,
                          0x64, 0x00, 0x17, 0x00, 0x00, 0x00, 0x01, 0x00, 0x08, 0x00, 0x00, 0x00, 0x02,
                          0x00, 0x58, 0x00, 0x09, 0x00, 0x01, 0x01, 0x00, 0x00, 0x01, 0x00, 0x01};

// The properties of a real database object: AccessVersion Text "08.50" and Build Long, of the object itself.
const Bytes kVersion = {0x4d, 0x52, 0x32, 0x00, 0x2e, 0x00, 0x00, 0x00, 0x80, 0x00, 0x1a, 0x00, 0x41, 0x00, 0x63, 0x00,
                        0x63, 0x00, 0x65, 0x00, 0x73, 0x00, 0x73, 0x00, 0x56, 0x00, 0x65, 0x00, 0x72, 0x00, 0x73, 0x00,
                        0x69, 0x00, 0x6f, 0x00, 0x6e, 0x00, 0x0a, 0x00, 0x42, 0x00, 0x75, 0x00, 0x69, 0x00, 0x6c, 0x00,
                        0x64, 0x00, 0x2a, 0x00, 0x00, 0x00, 0x00, 0x00, 0x06, 0x00, 0x00, 0x00, 0x00, 0x00, 0x12, 0x00,
                        0x00, 0x0a, 0x00, 0x00, 0x0a, 0x00, 0x30, 0x00, 0x38, 0x00, 0x2e, 0x00, 0x35, 0x00, 0x30, 0x00,
                        0x0c, 0x00, 0x00, 0x04, 0x01, 0x00, 0x04, 0x00, 0xdc, 0x19, 0x00, 0x00};

TEST(PropertyBlob, ReadsTheSmallestUsefulBlob) {
  const PropertyBlob blob = PropertyBlob::Parse(kRequiredX);
  EXPECT_EQ(blob.ColumnFlag("X", "Required"), true);
  EXPECT_EQ(blob.ColumnFlag("x", "required"), true);
  EXPECT_EQ(blob.ColumnFlag("X", "AllowZeroLength"), std::nullopt);
  EXPECT_EQ(blob.ColumnFlag("Y", "Required"), std::nullopt);
}

TEST(PropertyBlob, MakesTheSmallestUsefulBlobByteForByte) {
  PropertyBlob blob;
  blob.SetColumnFlag("X", "Required", true);
  EXPECT_EQ(blob.Serialize(), kRequiredX);
}

TEST(PropertyBlob, GivesTheSameBytesBack) {
  EXPECT_EQ(PropertyBlob::Parse(kRequiredX).Serialize(), kRequiredX);
  EXPECT_EQ(PropertyBlob::Parse(kVersion).Serialize(), kVersion);
}

TEST(PropertyBlob, KeepsOtherColumnsWhenOneGoes) {
  PropertyBlob blob = PropertyBlob::Parse(kRequiredX);
  blob.SetColumnText("Y", "DefaultValue", "\"Łukasz\"");
  blob.RemoveColumn("X");
  const PropertyBlob again = PropertyBlob::Parse(blob.Serialize());
  EXPECT_EQ(again.ColumnFlag("X", "Required"), std::nullopt);
  EXPECT_EQ(again.ColumnText("Y", "DefaultValue"), "\"Łukasz\"");
}

TEST(PropertyBlob, ReplacesAPropertyInsteadOfAddingASecondOne) {
  PropertyBlob blob = PropertyBlob::Parse(kRequiredX);
  blob.SetColumnFlag("X", "Required", false);
  EXPECT_EQ(blob.Serialize().size(), kRequiredX.size());
  EXPECT_EQ(blob.ColumnFlag("X", "Required"), false);
}

// Symptom: a property that a file spells in another way kept its old value.
TEST(PropertyBlob, ReplacesAPropertyWhateverTheCaseOfItsName) {
  PropertyBlob blob;
  blob.SetColumnText("X", "DEFAULTValue", "1");
  blob.SetColumnText("x", "DefaultValue", "2");
  EXPECT_EQ(blob.ColumnText("X", "DefaultValue"), "2");
  EXPECT_EQ(PropertyBlob::Parse(blob.Serialize()).ColumnText("X", "DefaultValue"), "2");
}

TEST(PropertyBlob, RefusesEveryCutOffBlob) {
  for (std::size_t length = 0; length < kRequiredX.size(); ++length) {
    const Bytes cut(kRequiredX.begin(), kRequiredX.begin() + static_cast<std::ptrdiff_t>(length));
    if (length == 4 || length == 28) continue;  // ends behind a chunk: complete, with less in it
    EXPECT_THROW(PropertyBlob::Parse(cut), Error) << length;
  }
}

TEST(PropertyBlob, NeverRunsPastDamagedBytes) {
  for (std::size_t place = 0; place < kVersion.size(); ++place) {
    for (const int value : {0x00, 0x01, 0x7F, 0xFF}) {
      Bytes damaged = kVersion;
      damaged[place] = static_cast<std::uint8_t>(value);
      try {
        static_cast<void>(PropertyBlob::Parse(damaged).Serialize());
      } catch (const Error& error) {
        EXPECT_TRUE(error.Is(ErrorNumber::ProviderFailure));
      }
    }
  }
}

TEST(PropertyBlob, SaysWhereItIsDamaged) {
  Bytes damaged = kRequiredX;
  damaged[46] = 7;  // the name number
  try {
    PropertyBlob::Parse(damaged);
    FAIL();
  } catch (const Error& error) {
    EXPECT_NE(error.Description().find("names name 7 of 1"), std::string::npos) << error.Description();
  }
}

}  // namespace
}  // namespace tavi::access
