#include "names/cPartnership.h"

#include "names/NameText.h"
#include "platform/values/Text.h"

namespace tavi {
namespace {

constexpr const char* kAnd = " & ";

/// A player's name in a format, without the surname.
/// By a copy without the surname, so that each format leaves it out in its own way; the player belongs to other pairs
/// too.
std::string NameWithoutSurname(const cPlayerDetails& player, std::int16_t format) {
  const auto copy = player.Clone();
  copy->SetSurname("");
  return copy->Name(format);
}

/// Without the "&" that an empty name leaves at an end.
std::string WithoutStrayAnd(std::string_view text) {
  if (text.starts_with('&')) return Trim(text.substr(1));
  if (text.ends_with('&')) return Trim(text.substr(0, text.size() - 1));
  return std::string(text);
}

}  // namespace

cPartnership::cPartnership(const std::shared_ptr<const NameKeyService>& nameKeyService)
    : Player1(std::make_shared<cPlayerDetails>(nameKeyService)),
      Player2(std::make_shared<cPlayerDetails>(nameKeyService)) {}

cPartnership::cPartnership(std::shared_ptr<cPlayerDetails> player1, std::shared_ptr<cPlayerDetails> player2)
    : Player1(std::move(player1)), Player2(std::move(player2)) {}

cPartnership cPartnership::OtherOrder() const {
  cPartnership other(Player2, Player1);
  other.KnownAs = KnownAs;
  other.Handicap = Handicap;
  return other;
}

std::string cPartnership::FamiliarNames(bool alternate) const {
  const std::string& first = Player1->FamiliarName();
  const std::string& second = Player2->FamiliarName();
  // "Chris & Chris" is the same the other way round.
  if (alternate && EqualIgnoringCase(first, second)) return {};
  return first + kAnd + second;
}

// "John & Mary Smith", and in format 10, where the surname comes first, "Smith, John & Mary".
std::string cPartnership::SharedSurnameName(std::int16_t format) const {
  if (format == name_format::kSurnameFirst) return Player1->Name(format) + kAnd + NameWithoutSurname(*Player2, format);
  return NameWithoutSurname(*Player1, format) + kAnd + Player2->Name(format);
}

std::string cPartnership::Name(std::int16_t NameFormat, bool TransferSurname, bool Alternate) const {
  // A pair with a name of its own has no other order of it.
  if (!KnownAs.empty() && NameFormat != name_format::kSurnameFirst) return Alternate ? std::string() : KnownAs;
  if (NameFormat == name_format::kFamiliar) return WithoutStrayAnd(FamiliarNames(Alternate));
  if (Alternate) return OtherOrder().Name(NameFormat, TransferSurname, false);
  const std::string text = TransferSurname && Player1->SameSurnameAs(*Player2)
                               ? SharedSurnameName(NameFormat)
                               : Player1->Name(NameFormat) + kAnd + Player2->Name(NameFormat);
  // A pair of one name, or none, has an "&" too many.
  return WithoutStrayAnd(CollapseWhitespace(text, true));
}

}  // namespace tavi
