#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

/// Expressions evaluated from their text, for tests.
namespace tavi::access::sql {

/// The value of an expression as ValueText writes it (5L, 'text', ...), or "error NUMBER" with the last four digits of
/// the error's number in hexadecimal. Columns: Nothing (Null), Whole (7), Real (2.5), Name ('Éloïse'), Born (3 May 2001
/// 14:30), Money (12.3456), Flag (True), Small (200 as a Byte), Fine (1.25 as a Decimal), Key (a Guid), Blob (bytes).
/// Sub-selects give 1, 2 and Null; one from a table None gives no rows, one from a table One gives 2. The time is 29
/// February 2024, 18:05:09.
std::string ResultOf(std::string_view expression);
/// The description of the error that evaluating the expression raises; empty when none.
std::string ErrorOf(std::string_view expression);

/// A line of a table of expressions: what ResultOf gives for one.
struct ResultCase {
  std::string_view expression;
  std::string_view result;
};

template <std::size_t kCount>
void ExpectResults(const ResultCase (&cases)[kCount]) {
  for (const ResultCase& one : cases) EXPECT_EQ(ResultOf(one.expression), one.result) << one.expression;
}

}  // namespace tavi::access::sql
