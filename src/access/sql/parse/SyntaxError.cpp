#include "access/sql/parse/SyntaxError.h"

#include <algorithm>

#include "access/file/EngineError.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"

namespace tavi::access::sql {
namespace {

constexpr std::size_t kCharactersAround = 24;

/// The statement's characters around a place, on one line, with marks where some are left out.
std::string TextAround(std::u32string_view before, std::u32string_view after) {
  const std::size_t beforeCount = std::min(before.size(), kCharactersAround);
  const std::size_t afterCount = std::min(after.size(), kCharactersAround);
  std::u32string around(before.substr(before.size() - beforeCount));
  around += after.substr(0, afterCount);
  std::replace_if(
      around.begin(), around.end(), [](char32_t character) { return character < U' '; }, U' ');
  return (beforeCount < before.size() ? "..." : "") + FromCodePoints(around) + (afterCount < after.size() ? "..." : "");
}

}  // namespace

void RaiseSyntax(std::string_view statement, std::size_t position, const std::string& problem) {
  const std::size_t place = std::min(position, statement.size());
  const std::u32string before = ToCodePoints(statement.substr(0, place));
  const std::u32string after = ToCodePoints(statement.substr(place));
  throw Error(
      ErrorNumber::ProviderSyntax, kErrorSource,
      problem + " (character " + std::to_string(before.size() + 1) + " of \"" + TextAround(before, after) + "\").");
}

}  // namespace tavi::access::sql
