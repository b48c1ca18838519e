// Names are compared as the file's indexes compare texts: case and trailing blanks do not count, accents do. So two
// names are the same here just when the unique index on names in the catalogue takes them for one.
#include "access/catalog/Names.h"

#include <algorithm>

#include "access/file/EngineError.h"
#include "access/file/Format.h"
#include "access/index/Collation.h"
#include "platform/values/Text.h"

namespace tavi::access {

void CheckName(std::string_view name, std::string_view what) {
  const std::u32string points = ToCodePoints(name);
  // These have a meaning of their own where names are written in statements.
  const bool badCharacter = std::ranges::any_of(points, [](char32_t c) {
    return c < U' ' || c == 0x7F || std::u32string_view(U".!`[]").find(c) != std::u32string_view::npos;
  });
  std::string reason;
  if (Trim(name).empty()) {
    reason = "it is empty";
  } else if (ToUtf16(name).size() > format::table::kMaximumNameLength) {
    reason = "it has more than 64 characters";
  } else if (points.front() == U' ') {
    reason = "it begins with a blank";
  } else if (badCharacter) {
    reason = "it holds one of . ! ` [ ] or a control character";
  }
  if (reason.empty()) return;
  throw Error(
      ErrorNumber::ProviderSyntax, kErrorSource,
      "'" + std::string(name) + "' is not a valid " + std::string(what) + " name: " + reason +
          ". Make sure that it does not include invalid characters or punctuation and that it is not too long.");
}

bool SameName(std::string_view left, std::string_view right) {
  return CollationCompare(left, right) == 0;
}

bool NameBefore(std::string_view left, std::string_view right) {
  return CollationCompare(left, right) < 0;
}

std::string NameKey(std::string_view name) {
  const std::vector<std::uint8_t> key = CollationKey(name);
  return {key.begin(), key.end()};
}

}  // namespace tavi::access
