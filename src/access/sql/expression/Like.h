#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace tavi::access::sql {

/// A pattern of the Like operator:
///   * or %      any characters, or none
///   ? or _      one character
///   #           one digit
///   [abc], [a-f], [!a-f]  one character that is (with !: is not) among those; [*] is a plain star; [] is nothing
/// Access reads * and ? from its own windows and % and _ from programs that use its provider; here both sets count, so
/// that a pattern works wherever it was written. Letters match in either case.
class LikePattern {
 public:
  /// Raises ProviderFailure ("Invalid pattern string.") for an open bracket or a range whose end is before its start.
  explicit LikePattern(std::string_view pattern);
  [[nodiscard]] bool Matches(std::string_view text) const;

 private:
  struct Piece {
    enum class Kind { Character, Any, AnyRun, Digit, Set } kind = Kind::Character;
    char32_t character = 0;
    bool excluded = false;
    std::vector<std::pair<char32_t, char32_t>> ranges;
  };

  std::size_t ReadSet(std::u32string_view pattern, std::size_t place);
  static bool Accepts(const Piece& piece, char32_t character);

  std::vector<Piece> pieces_;
};

}  // namespace tavi::access::sql
