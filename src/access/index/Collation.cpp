#include "access/index/Collation.h"

#include <algorithm>

#include "access/file/Format.h"
#include "access/index/CollationTable.h"
#include "platform/values/Text.h"

// A key has up to five parts:
//
//   primary codes 01 diacritic weights [01 01 [kana flags FF 02 80 FF 80 [FF]] [01 special entries]] 00
//
//   primary codes      one to four bytes for each code unit that makes collation elements; its case is not in them
//   diacritic weights  a byte for each element (02 = none), trailing ones of 02 and less left out
//   kana flags         three 2-bit flags in a byte 80 | f1 << 4 | f2 << 2 | f3, trailing flags of 3 left out
//   special entries    8000 | (7 + 4 x elements before it), 06, code: four bytes for each hyphen, apostrophe, ...
//
// Example: "NuNuCa Nuß-Nougat-Creme", the hyphens after 11 and 17 elements (ß makes two)
//   62 6f 62 6f 4d 4a 07 62 6f 6b 6b 62 64 6f 55 4a 6d 4d 69 51 60 51  01  01 01  01  80 33 06 82  80 4b 06 82  00
//
// Case is not in a key at all, and accents and hyphens count only where all primary codes agree, because their parts
// stand behind the 01 that ends the codes. That end sorts before every code, so that a text sorts before all that begin
// with it. Most texts are plain ASCII: such a text has no part but the codes, and both the key and the comparison have
// a quick way for it that needs no UTF-16. Whatever is not plain takes the long way, by the key, which therefore
// decides what is right.

namespace tavi::access {

namespace {

namespace key = format::key;

constexpr char kBlank = ' ';
/// Trailing flags with this value are left out, like trailing weights of the default.
constexpr std::uint8_t kOrdinaryKana = 3;
constexpr std::uint8_t kKanaByte = 0x80;
constexpr std::size_t kKanaFlagsPerByte = 3;
constexpr std::uint8_t kKanaEnd[] = {0xFF, 0x02, 0x80, 0xFF, 0x80};
constexpr std::uint8_t kBetweenKanaAndSpecial = 0xFF;
constexpr std::uint16_t kGeneralSortOrder = 1033;
constexpr std::uint8_t kLegacyVersion = 0;

using WeightBytes = std::vector<std::uint8_t>;

/// One byte or two, as CollationInline holds them. No first byte of a code of two is a code of one byte, so that keys
/// can be compared without knowing where a code begins.
void AppendInline(std::uint16_t codes, WeightBytes& bytes) {
  if (codes > 0xFFU) bytes.push_back(static_cast<std::uint8_t>(codes >> 8U));
  bytes.push_back(static_cast<std::uint8_t>(codes & 0xFFU));
}

/// Collects the parts of a key while the code units of a text go by. Primary codes go straight into the key.
class KeyBuilder {
 public:
  explicit KeyBuilder(WeightBytes& result) : key_(result) {}

  void Add(char16_t unit) {
    const CollationTrait& trait = CollationTraitOf(unit);
    switch (trait.kind) {
      case CollationKind::Element:
        return AddElements(unit, trait);
      case CollationKind::Special:
        return AddSpecial(trait);
      case CollationKind::Combining:
        return Combine(trait);
      case CollationKind::Ignored:
        return;
    }
  }

  // The parts behind the codes are left out from the back: a text without special characters and kana ends after the
  // weights, one without accents has none of these either.
  void Finish() {
    key_.push_back(key::kTextPartEnd);
    while (!diacritics_.empty() && diacritics_.back() <= key::kDefaultDiacritic) diacritics_.pop_back();
    key_.insert(key_.end(), diacritics_.begin(), diacritics_.end());
    if (!kana_.empty() || !special_.empty()) key_.insert(key_.end(), 2, key::kTextPartEnd);
    if (!kana_.empty()) FinishKana();
    if (!special_.empty()) {
      key_.push_back(key::kTextPartEnd);
      key_.insert(key_.end(), special_.begin(), special_.end());
    }
    key_.push_back(key::kTextEnd);
  }

 private:
  // A ligature makes several elements (ß makes two) and has a weight for each, which moves the places of accents and
  // hyphens behind it. Later versions of Access count such letters once; keys of theirs that differ are noticed when an
  // index is first used.
  void AddElements(char16_t unit, const CollationTrait& trait) {
    AppendInline(CollationInline(unit), key_);
    for (const std::uint8_t byte : trait.furtherBytes)
      if (byte != 0) key_.push_back(byte);
    for (std::size_t i = 0; i < trait.elements; ++i)
      diacritics_.push_back(i < std::size(trait.diacritics) ? trait.diacritics[i] : key::kDefaultDiacritic);
    if (trait.kanaFlag != 0) kana_.push_back(trait.kanaFlag);
    elements_ += trait.elements;
  }

  // No code and no element: the place says how many elements come before it, so that co-op and coop differ in this part
  // only, and stand next to each other.
  void AddSpecial(const CollationTrait& trait) {
    const std::size_t place = key::kSpecialPositionBase + key::kSpecialPositionStep * elements_;
    const std::size_t position = key::kSpecialPositionFlag | place;
    special_.push_back(static_cast<std::uint8_t>(position >> 8U));
    special_.push_back(static_cast<std::uint8_t>(position & 0xFFU));
    special_.push_back(key::kSpecialMiddle);
    special_.push_back(trait.value);
  }

  // A mark with nothing before it stands in front of the weights; it is no element. The sum is cut to a byte, as the
  // weight of a letter with many marks is.
  void Combine(const CollationTrait& trait) {
    if (diacritics_.empty()) {
      diacritics_.push_back(trait.value);
    } else {
      diacritics_.back() = static_cast<std::uint8_t>(diacritics_.back() + trait.value);
    }
  }

  void FinishKana() {
    while (!kana_.empty() && kana_.back() == kOrdinaryKana) kana_.pop_back();
    for (std::size_t first = 0; first < kana_.size(); first += kKanaFlagsPerByte) {
      std::uint8_t packed = kKanaByte;
      for (std::size_t i = 0; i < kKanaFlagsPerByte && first + i < kana_.size(); ++i)
        packed = static_cast<std::uint8_t>(packed | (kana_[first + i] << (4U - 2U * i)));
      key_.push_back(packed);
    }
    key_.insert(key_.end(), std::begin(kKanaEnd), std::end(kKanaEnd));
    if (!special_.empty()) key_.push_back(kBetweenKanaAndSpecial);
  }

  WeightBytes& key_;
  std::size_t elements_ = 0;
  WeightBytes diacritics_;
  WeightBytes special_;
  WeightBytes kana_;
};

/// The primary code of an ASCII character that makes one element of default weight, two bytes long so that codes
/// compare like their bytes; 0 for every other byte, those of longer UTF-8 sequences included.
std::uint16_t QuickCode(char character) {
  const auto byte = static_cast<std::uint8_t>(character);
  if (byte > 0x7FU || !IsPlainElement(CollationTraitOf(byte))) return 0;
  const std::uint16_t code = CollationInline(byte);
  return code > 0xFFU ? code : static_cast<std::uint16_t>(code << 8U);
}

std::string_view WithoutTrailingBlanks(std::string_view text) {
  while (!text.empty() && text.back() == kBlank) text.remove_suffix(1);
  return text;
}

/// The key of a text of plain ASCII in one pass; false, and nothing is appended, when a character is not plain. Up to
/// 255 bytes are at most 255 characters, so that nothing has to be cut.
bool AppendQuickKey(std::string_view text, WeightBytes& bytes) {
  if (text.size() > key::kMaximumTextLength) return false;
  const std::size_t start = bytes.size();
  for (const char character : WithoutTrailingBlanks(text)) {
    const auto byte = static_cast<std::uint8_t>(character);
    if (byte > 0x7FU || !IsPlainElement(CollationTraitOf(byte))) {
      bytes.resize(start);
      return false;
    }
    AppendInline(CollationInline(byte), bytes);
  }
  bytes.push_back(key::kTextPartEnd);
  bytes.push_back(key::kTextEnd);
  return true;
}

int Sign(std::strong_ordering order) {
  return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

/// The long way, which makes both keys. It allocates; only texts with accents, hyphens and the like get here.
int CompareKeys(std::string_view left, std::string_view right) {
  const WeightBytes leftKey = CollationKey(left);
  const WeightBytes rightKey = CollationKey(right);
  return Sign(leftKey <=> rightKey);
}

}  // namespace

void AppendCollationKey(std::string_view text, std::vector<std::uint8_t>& bytes) {
  if (AppendQuickKey(text, bytes)) return;
  std::u16string units = ToUtf16(text);
  // Cut first, then the blanks: a text whose 255th character is a blank loses it, whatever follows.
  units.resize(std::min(units.size(), key::kMaximumTextLength));
  while (!units.empty() && units.back() == u' ') units.pop_back();
  KeyBuilder builder(bytes);
  for (const char16_t unit : units) builder.Add(unit);
  builder.Finish();
}

std::vector<std::uint8_t> CollationKey(std::string_view text) {
  WeightBytes key;
  key.reserve(text.size() + 2);
  AppendCollationKey(text, key);
  return key;
}

// Primary codes come first in a key. So the first place where the codes of two texts differ decides, whatever comes
// behind it, as long as the texts agree up to there in all but the case of plain letters.
int CollationCompare(std::string_view left, std::string_view right) {
  if (left.size() > key::kMaximumTextLength || right.size() > key::kMaximumTextLength) return CompareKeys(left, right);
  const std::string_view shownLeft = WithoutTrailingBlanks(left);
  const std::string_view shownRight = WithoutTrailingBlanks(right);
  const std::size_t common = std::min(shownLeft.size(), shownRight.size());
  for (std::size_t i = 0; i < common; ++i) {
    // Equal ASCII characters have equal effects on both keys, also a hyphen at the same place.
    if (shownLeft[i] == shownRight[i] && static_cast<std::uint8_t>(shownLeft[i]) <= 0x7FU) continue;
    const std::uint16_t leftCode = QuickCode(shownLeft[i]);
    const std::uint16_t rightCode = QuickCode(shownRight[i]);
    if (leftCode == 0 || rightCode == 0) return CompareKeys(left, right);
    if (leftCode != rightCode) return leftCode < rightCode ? -1 : 1;
  }
  if (shownLeft.size() == shownRight.size()) return 0;
  const bool leftEnds = shownLeft.size() == common;
  // Any primary code is greater than the end of the part.
  if (QuickCode(leftEnds ? shownRight[common] : shownLeft[common]) == 0) return CompareKeys(left, right);
  return leftEnds ? -1 : 1;
}

bool IsSupportedSortOrder(std::uint16_t sortOrder, std::uint8_t version) {
  return sortOrder == kGeneralSortOrder && version == kLegacyVersion;
}

}  // namespace tavi::access
