#include "host/sql/StatementText.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "host/text/Table.h"
#include "platform/values/Text.h"

namespace tavi::host {
namespace {

constexpr std::string_view kWordCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

/// The character that closes what `opening` begins; 0 for any other character.
char ClosingOf(char opening) {
  switch (opening) {
    case '\'':
    case '"':
    case '#':
      return opening;
    case '[':
      return ']';
    default:
      return '\0';
  }
}

/// The place behind what begins at `begin` with a quote or bracket. A doubled quote begins the next piece at once.
std::size_t BehindQuoted(std::string_view text, std::size_t begin) {
  const std::size_t end = text.find(ClosingOf(text[begin]), begin + 1);
  return end == std::string_view::npos ? text.size() : end + 1;
}

/// The words of a statement in capitals, without what stands in quotes or brackets.
std::vector<std::string> WordsOf(std::string_view text) {
  std::vector<std::string> words;
  for (std::size_t place = 0; place < text.size();) {
    if (ClosingOf(text[place]) != '\0') {
      place = BehindQuoted(text, place);
    } else if (kWordCharacters.find(text[place]) != std::string_view::npos) {
      const std::size_t end = std::min(text.find_first_not_of(kWordCharacters, place), text.size());
      words.push_back(UpperCase(text.substr(place, end - place)));
      place = end;
    } else {
      ++place;
    }
  }
  return words;
}

}  // namespace

std::optional<std::size_t> EndOfStatement(std::string_view text) {
  for (std::size_t place = 0; place < text.size();) {
    if (text[place] == ';') return place + 1;
    place = ClosingOf(text[place]) != '\0' ? BehindQuoted(text, place) : place + 1;
  }
  return std::nullopt;
}

bool GivesRows(std::string_view statement) {
  const std::vector<std::string> words = WordsOf(statement);
  if (words.empty()) return false;
  if (words.front() == "EXPLAIN") return true;
  return words.front() == "SELECT" && std::find(words.begin(), words.end(), "INTO") == words.end();
}

std::optional<std::size_t> PlaceInError(std::string_view description) {
  constexpr std::string_view kMark = "(character ";
  const std::size_t mark = description.find(kMark);
  if (mark == std::string_view::npos) return std::nullopt;
  const char* begin = description.data() + mark + kMark.size();
  std::size_t place = 0;
  const auto read = std::from_chars(begin, description.data() + description.size(), place);
  if (read.ec != std::errc() || place == 0) return std::nullopt;
  return place - 1;
}

std::string MarkPlace(std::string_view statement, std::size_t character) {
  const std::u32string all = ToCodePoints(statement);
  const std::size_t place = std::min(character, all.size());
  const std::size_t lineBreak = place == 0 ? std::u32string::npos : all.rfind(U'\n', place - 1);
  const std::size_t begin = lineBreak == std::u32string::npos ? 0 : lineBreak + 1;
  const std::size_t end = std::min(all.find(U'\n', place), all.size());
  const auto part = [&](std::size_t from, std::size_t to) {
    return Printable(ReplaceAll(FromCodePoints(all.substr(from, to - from)), "\r", ""));
  };
  return part(begin, end) + "\n" + std::string(DisplayWidth(part(begin, place)), ' ') + "^";
}

}  // namespace tavi::host
