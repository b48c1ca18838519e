#include "host/results/Xml.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "platform/values/Error.h"
#include "platform/values/Text.h"

// A parser for the part of XML that result files use, in one pass and without recursion: open_ is the stack of elements
// whose end has not come yet, the document itself at its bottom, and an element moves into its parent when it ends. So
// neither the depth nor the size of a hostile file costs more than the bounds allow, and time grows with the length.
//
// It is strict about structure, because a file that was cut off must not pass for an evening with fewer pairs, and
// lenient about two habits of club programs: an ampersand that nobody escaped ("Smith & Jones") stays what it is, and
// names of elements and attributes may have any letters beyond ASCII. Nothing outside of the text is ever opened, and
// no entity but those of characters is expanded.
namespace tavi::host {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

bool IsBlank(char c) {
  return kBlanks.find(c) != std::string_view::npos;
}

/// Letters of other scripts, which are bytes from 0x80, are names' characters without being looked at.
bool BeginsName(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '_' || byte == ':' || byte >= 0x80;
}

bool IsInName(char c) {
  return BeginsName(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

/// The character of "#160" or "#xA0".
/// A number that is no character, such as a half of a surrogate pair, becomes U+FFFD: one odd letter in a name is no
/// reason to refuse the evening.
std::optional<std::string> CharacterOfNumber(std::string_view digits) {
  const bool isHexadecimal = digits.starts_with('x');
  if (isHexadecimal) digits.remove_prefix(1);
  std::uint32_t number = 0;
  const auto [end, problem] =
      std::from_chars(digits.data(), digits.data() + digits.size(), number, isHexadecimal ? 16 : 10);
  if (digits.empty() || end != digits.data() + digits.size() || problem != std::errc()) return std::nullopt;
  constexpr std::uint32_t kLast = 0x10FFFF;
  const bool isCharacter = number != 0 && number <= kLast && (number < 0xD800 || number > 0xDFFF);
  return FromCodePoints(std::u32string(1, isCharacter ? static_cast<char32_t>(number) : U'\uFFFD'));
}

/// What stands for `&name;`; nothing when the name means nothing.
std::optional<std::string> ValueOfEntity(std::string_view name) {
  if (name.starts_with('#')) return CharacterOfNumber(name.substr(1));
  static constexpr std::array<std::pair<std::string_view, const char*>, 5> kNamed = {
      {{"amp", "&"}, {"lt", "<"}, {"gt", ">"}, {"quot", "\""}, {"apos", "'"}}};
  for (const auto& [entity, character] : kNamed) {
    if (entity == name) return character;
  }
  return std::nullopt;
}

/// Replaces the entities of characters; whatever else follows an ampersand stays as it is.
std::string Unescaped(std::string_view text) {
  // So far a semicolon is looked for behind an ampersand; "&#x0010FFFF;" is as long as they get. It keeps a text of
  // many ampersands from being searched to its end for each.
  constexpr std::size_t kLongestEntity = 12;
  std::string plain;
  while (!text.empty()) {
    const std::size_t ampersand = std::min(text.find('&'), text.size());
    plain += text.substr(0, ampersand);
    text.remove_prefix(ampersand);
    if (text.empty()) break;
    const std::size_t end = text.substr(0, kLongestEntity).find(';');
    const auto value = end == std::string_view::npos ? std::nullopt : ValueOfEntity(text.substr(1, end - 1));
    plain += value.value_or("&");
    text.remove_prefix(value ? end + 1 : 1);
  }
  return plain;
}

/// Those of ASCII but for the blanks, and those from 80 to 9F, with which terminals can be steered as well.
bool IsControl(char32_t c) {
  const bool isBlank = c == U'\t' || c == U'\n' || c == U'\r';
  return (c < 0x20 && !isBlank) || (c >= 0x7F && c < 0xA0);
}

/// Where the first control character begins; npos without any.
std::size_t FindControl(std::string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto byte = static_cast<unsigned char>(text[at]);
    // U+0080 to U+009F are C2 80 to C2 9F in UTF-8, and C2 begins no other control character.
    const bool isTwoBytes = byte == 0xC2 && at + 1 < text.size();
    const char32_t c = isTwoBytes ? static_cast<unsigned char>(text[at + 1]) : byte;
    if (isTwoBytes ? IsControl(c) : byte < 0x80 && IsControl(c)) return at;
  }
  return std::string_view::npos;
}

/// at_ is the first byte that has not been read. Every Take function begins where its thing begins and ends behind it,
/// or refuses the file with the line.
class Parser {
 public:
  Parser(std::string_view text, const std::string& fileName) : text_(text), fileName_(fileName) {
    open_.emplace_back();
  }

  /// The root element. What stands beside it (text, further elements) is nothing that a result file has; it is passed
  /// over.
  XmlElement Parse() {
    // Once over the whole text first; afterwards only what an entity such as "&#27;" has made needs to be looked at.
    RefuseControls(text_, 0);
    while (at_ < text_.size()) {
      if (text_[at_] == '<') {
        TakeMarkup();
      } else {
        TakeText();
      }
    }
    if (open_.size() > 1) {
      RefuseMarkup(text_.size(), "the element " + open_.back().name + " of line " + std::to_string(open_.back().line) +
                                     " has no end");
    }
    if (open_.front().children.empty()) RefuseMarkup(text_.size(), "there is no element in it");
    return std::move(open_.front().children.front());
  }

 private:
  [[noreturn]] void Refuse(std::size_t at, const std::string& reason) const {
    throw Error(ErrorNumber::InvalidArgument, "tavi",
                fileName_ + ":" + std::to_string(LineOf(text_, at)) + ": " + reason);
  }

  [[noreturn]] void RefuseMarkup(std::size_t at, const std::string& reason) const {
    Refuse(at, "not well-formed XML (" + reason + "); a complete USEBIO file was expected");
  }

  /// Refuses text that begins at `begin`, or was made from what begins there, when a control character is in it.
  void RefuseControls(std::string_view text, std::size_t begin) const {
    const std::size_t control = FindControl(text);
    if (control == std::string_view::npos) return;
    constexpr std::string_view kFigures = "0123456789abcdef";
    const char32_t c = ToCodePoints(text.substr(control, 2)).front();
    const std::string number{kFigures[c / 16], kFigures[c % 16]};
    // In the file's own text the character has a place; in what was made of an entity only the piece has one.
    const bool isRaw = text.data() == text_.data();
    Refuse(isRaw ? control : begin, "the control character 0x" + number + " is in the text; expected none");
  }

  [[nodiscard]] bool Follows(std::string_view expected) const { return text_.substr(at_).starts_with(expected); }

  /// Steps over `expected` when it follows.
  bool Skip(std::string_view expected) {
    const bool follows = Follows(expected);
    if (follows) at_ += expected.size();
    return follows;
  }

  bool SkipBlanks() {
    const std::size_t start = at_;
    at_ = std::min(text_.find_first_not_of(kBlanks, at_), text_.size());
    return at_ != start;
  }

  /// Steps behind the next `end` and gives what lies before it.
  std::string_view SkipTo(std::string_view end) {
    const std::size_t found = text_.find(end, at_);
    if (found == std::string_view::npos) {
      Refuse(at_, "the file ends inside markup; expected " + std::string(end) + " and the rest of the file");
    }
    const std::string_view passed = text_.substr(at_, found - at_);
    at_ = found + end.size();
    return passed;
  }

  /// The line in which a byte lies that is not before the one last asked for.
  /// Counted on from the last place, so that the lines of all elements together cost one walk over the text.
  std::size_t LineAt(std::size_t at) {
    line_ += static_cast<std::size_t>(std::count(text_.begin() + static_cast<std::ptrdiff_t>(lineCountedTo_),
                                                 text_.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
    lineCountedTo_ = at;
    return line_;
  }

  /// Text outside of the root and blank pieces between elements are no contents. The pieces of an element's text, which
  /// comments and entities may divide, are joined.
  void TakeText() {
    const std::size_t end = std::min(text_.find('<', at_), text_.size());
    const std::string_view piece = text_.substr(at_, end - at_);
    if (open_.size() > 1 && piece.find_first_not_of(kBlanks) != std::string_view::npos) {
      // Looked at before it is stored: names go to lists and terminals.
      const std::string text = Unescaped(piece);
      RefuseControls(text, at_);
      open_.back().text += text;
    }
    at_ = end;
  }

  /// The order matters: each beginning is tried before those that are a part of it ("<!--" before "<").
  void TakeMarkup() {
    if (Skip("<!--")) {
      SkipTo("-->");
    } else if (Skip("<![CDATA[")) {
      const std::string_view piece = SkipTo("]]>");
      // Nothing is escaped in such a section: that is what it is for.
      if (open_.size() > 1) open_.back().text += piece;
    } else if (Follows("<!DOCTYPE")) {
      SkipDocumentType();
    } else if (Skip("<?")) {
      SkipTo("?>");
    } else if (Skip("</")) {
      TakeEndTag();
    } else {
      TakeStartTag();
    }
  }

  /// A document type only names a file with the rules of the format, which is never fetched. One with definitions of
  /// its own, between brackets, may define entities out of entities, whose expansion could fill the memory: refused.
  void SkipDocumentType() {
    const std::size_t end = text_.find('>', at_);
    // Not found is the largest number, so that a bracket somewhere behind the end is none of this type's.
    const std::size_t subset = text_.find('[', at_);
    if (subset < end) {
      at_ = subset;
      const std::size_t entity = SkipTo("]").find("<!ENTITY");
      if (entity != std::string_view::npos) {
        Refuse(subset + entity,
               "the document type defines entities, which result files have no use for; expected none");
      }
    }
    SkipTo(">");
  }

  std::string TakeName(const char* kind) {
    const std::size_t start = at_;
    if (at_ == text_.size() || !BeginsName(text_[at_])) RefuseMarkup(at_, std::string(kind) + " has no name");
    while (at_ < text_.size() && IsInName(text_[at_])) ++at_;
    return std::string(text_.substr(start, at_ - start));
  }

  void TakeStartTag() {
    const std::size_t start = at_++;
    XmlElement element;
    element.name = TakeName("a tag");
    element.line = LineAt(start);
    // An element costs some hundred bytes of memory, its tag four of the file: a file of 32 MiB could otherwise need
    // many times as much.
    if (++elements_ > kMaximumElements) {
      Refuse(start, "there are more than " + std::to_string(kMaximumElements) + " elements; no event has so many");
    }
    // Attributes need a blank before them; "<a b='1'c='2'>" is refused by what comes next.
    bool isApart = SkipBlanks();
    while (isApart && at_ < text_.size() && BeginsName(text_[at_])) {
      TakeAttribute(element);
      isApart = SkipBlanks();
    }
    if (Skip("/>")) {
      open_.back().children.push_back(std::move(element));
    } else if (Skip(">")) {
      Open(start, std::move(element));
    } else {
      RefuseMarkup(at_, "the tag " + element.name + " has no end");
    }
  }

  void Open(std::size_t start, XmlElement element) {
    // open_ also counts the document.
    if (open_.size() > kMaximumElementDepth) {
      Refuse(start, "elements lie more than " + std::to_string(kMaximumElementDepth) +
                        " deep; expected 8 or so, as in result files");
    }
    open_.push_back(std::move(element));
  }

  void TakeAttribute(XmlElement& element) {
    const std::size_t start = at_;
    std::string name = TakeName("an attribute");
    SkipBlanks();
    const bool hasValue = Skip("=");
    SkipBlanks();
    const char quote = at_ < text_.size() ? text_[at_] : ' ';
    if (!hasValue || (quote != '"' && quote != '\'')) {
      RefuseMarkup(start, "the attribute " + name + " has no value between quotes");
    }
    ++at_;
    const std::size_t end = text_.find(quote, at_);
    if (end == std::string_view::npos) RefuseMarkup(start, "the value of " + name + " has no closing quote");
    // A line break in an attribute counts as one blank, however it is written.
    std::string value = Unescaped(ReplaceAll(std::string(text_.substr(at_, end - at_)), "\r\n", "\n"));
    RefuseControls(value, start);
    std::ranges::replace_if(value, IsBlank, ' ');
    element.attributes.emplace_back(std::move(name), std::move(value));
    at_ = end + 1;
  }

  void TakeEndTag() {
    const std::size_t start = at_;
    const std::string name = TakeName("an end tag");
    SkipBlanks();
    if (!Skip(">")) RefuseMarkup(at_, "the end tag " + name + " has no end");
    if (open_.size() == 1) RefuseMarkup(start, "the end tag " + name + " ends nothing");
    if (open_.back().name != name) {
      RefuseMarkup(start, "the end tag " + name + " stands where " + open_.back().name + " of line " +
                              std::to_string(open_.back().line) + " is open");
    }
    XmlElement element = std::move(open_.back());
    open_.pop_back();
    open_.back().children.push_back(std::move(element));
  }

  std::string_view text_;
  const std::string& fileName_;
  std::size_t at_ = 0;
  std::size_t elements_ = 0;
  std::size_t line_ = 1;
  std::size_t lineCountedTo_ = 0;
  std::vector<XmlElement> open_;  // the document itself, and the elements that are open, inwards
};

}  // namespace

XmlElement ParseXml(std::string_view text, const std::string& fileName) {
  return Parser(text, fileName).Parse();
}

std::size_t LineOf(std::string_view text, std::size_t offset) {
  const std::string_view before = text.substr(0, std::min(offset, text.size()));
  return 1 + static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
}

}  // namespace tavi::host
