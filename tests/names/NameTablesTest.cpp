#include "names/NameTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <ranges>
#include <string>
#include <vector>

#include "names/NameSounds.h"

namespace tavi {
namespace {

/// What the dictionary takes for granted of a table.
void ExpectSound(const NameTable& table) {
  const auto forms = std::views::iota(std::size_t{0}, table.Size());
  const auto lettersOf = [&](std::size_t form) { return table.LettersOf(form); };
  const auto skeletonOf = [&](std::size_t form) { return SkeletonOf(table.SoundsOf(form)); };
  EXPECT_TRUE(std::ranges::none_of(forms, [&](std::size_t form) { return lettersOf(form).empty(); }));
  EXPECT_TRUE(
      std::ranges::all_of(forms, [&](std::size_t form) { return table.SoundsOf(form) == SoundsOf(lettersOf(form)); }));
  // No two are equal: a form stands in one family.
  EXPECT_TRUE(std::ranges::is_sorted(table.byLetters, std::less_equal(), lettersOf));
  EXPECT_TRUE(std::ranges::is_sorted(table.bySkeleton, {},
                                     [&](std::size_t form) { return std::pair(skeletonOf(form), form); }));
  std::vector<std::size_t> numbers(table.bySkeleton.begin(), table.bySkeleton.end());
  std::ranges::sort(numbers);
  EXPECT_TRUE(std::ranges::equal(numbers, forms));
  EXPECT_TRUE(std::ranges::is_sorted(table.heads, std::less_equal()));
  EXPECT_EQ(table.heads.front(), 0U);
  EXPECT_EQ(table.heads.back(), table.Size());
}

TEST(NameTables, OfFirstNamesIsSound) {
  const NameTable table = FirstNameTable();
  ExpectSound(table);
  EXPECT_GT(table.Size(), 4000U);
  EXPECT_EQ(table.LettersOf(0), "JOHN");
}

TEST(NameTables, OfSurnamesIsSound) {
  const NameTable table = SurnameTable();
  ExpectSound(table);
  EXPECT_GT(table.Size(), 15000U);
  EXPECT_EQ(table.LettersOf(0), "SMITH");
}

TEST(NameTables, AFormKnowsTheHeadOfItsFamily) {
  const NameTable table = SurnameTable();
  const auto form = std::ranges::find(table.byLetters, std::string_view("SMYTHE"),
                                      [&](std::size_t number) { return table.LettersOf(number); });
  ASSERT_NE(form, table.byLetters.end());
  EXPECT_EQ(table.HeadOf(*form), 0U);
  EXPECT_EQ(table.HeadOf(0), 0U);
  EXPECT_EQ(table.HeadOf(table.Size() - 1), *(table.heads.end() - 2));
}

}  // namespace
}  // namespace tavi
