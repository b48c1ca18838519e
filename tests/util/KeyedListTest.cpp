#include "util/KeyedList.h"

#include <gtest/gtest.h>

#include <functional>

#include "util/TextHelpers.h"

namespace tavi {
namespace {

using List = KeyedList<std::string, int>;

std::string KeysOf(const List& list) {
  std::string keys;
  for (const auto& [key, value] : list) keys += key;
  return keys;
}

std::uint32_t Raised(const std::function<void()>& call) {
  try {
    call();
    return 0;
  } catch (const Error& error) {
    return static_cast<std::uint32_t>(error.Number());
  }
}

TEST(KeyedList, KeepsItsOwnOrder) {
  List list;
  list.Append("b", 2);
  list.Append("d", 4);
  list.InsertBefore("b", "a", 1);
  list.InsertBefore("d", "c", 3);
  EXPECT_EQ(KeysOf(list), "abcd");
  EXPECT_EQ(list.Count(), 4U);
}

TEST(KeyedList, LooksUpByKeyAndAMissingKeyIsNoError) {
  List list;
  list.Append("a", 1);
  ASSERT_NE(list.Find("a"), nullptr);
  *list.Find("a") = 7;
  EXPECT_EQ(*std::as_const(list).Find("a"), 7);
  EXPECT_EQ(list.Find("A"), nullptr);
}

TEST(KeyedList, RefusesAKeyThatIsThereAlreadyAndStaysAsItWas) {
  List list;
  list.Append("a", 1);
  EXPECT_EQ(Raised([&] { list.Append("a", 2); }), 0x800A01C9U);
  EXPECT_EQ(Raised([&] { list.InsertBefore("a", "a", 2); }), 0x800A01C9U);
  EXPECT_EQ(*list.Find("a"), 1);
  EXPECT_EQ(list.Count(), 1U);
}

TEST(KeyedList, RefusesToInsertBeforeAMissingKey) {
  List list;
  EXPECT_EQ(Raised([&] { list.InsertBefore("x", "a", 2); }), 0x800A0005U);
  EXPECT_TRUE(list.IsEmpty());
}

TEST(KeyedList, RemovesByKey) {
  List list;
  list.Append("a", 1);
  list.Append("b", 2);
  list.Append("c", 3);
  EXPECT_TRUE(list.Remove("b"));
  EXPECT_FALSE(list.Remove("b"));
  EXPECT_EQ(KeysOf(list), "ac");
  list.Append("b", 2);
  EXPECT_EQ(KeysOf(list), "acb");
}

TEST(KeyedList, MovesAsAWhole) {
  List list;
  list.Append("a", 1);
  List other = std::move(list);
  other.InsertBefore("a", "z", 0);
  EXPECT_EQ(KeysOf(other), "za");
  other.Clear();
  EXPECT_TRUE(other.IsEmpty());
}

TEST(PaddedNumber, HasAtLeastTheDigitsAskedFor) {
  EXPECT_EQ(PaddedNumber(42, 5), "00042");
  EXPECT_EQ(PaddedNumber(0, 5), "00000");
  EXPECT_EQ(PaddedNumber(1234567, 5), "1234567");
  EXPECT_EQ(PaddedNumber(-42, 5), "-00042");
}

TEST(HexadecimalNumber, WritesErrorNumbersAsPeopleKnowThem) {
  EXPECT_EQ(HexadecimalNumber(-2147467259), "0x80004005");
  EXPECT_EQ(HexadecimalNumber(0xABC), "0x00000ABC");
}

}  // namespace
}  // namespace tavi
