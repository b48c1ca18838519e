#pragma once

#include <cstdint>
#include <span>
#include <string_view>

/// The dictionaries that name keys are made with: families of names, each with the forms that count as the same name.
/// People keep them in first-names.txt and surnames.txt; MakeNameTable.cpp makes these tables of them when the system
/// is built, so that a program finds them ready.
namespace tavi {

/// The forms of all families, in plain letters, and how they are said (NameSounds.h). A form's number is its place from
/// the most common family to the least, the head of a family before its other forms.
struct NameTable {
  /// What the forms have, one after the other.
  std::string_view letters;
  std::string_view sounds;
  /// Where a form's part of these begins; after the last form, where they end.
  std::span<const std::uint32_t> letterStarts;
  std::span<const std::uint32_t> soundStarts;
  /// The numbers of the heads; after the last family, how many forms there are.
  std::span<const std::uint16_t> heads;
  /// The forms in the order of their letters.
  std::span<const std::uint16_t> byLetters;
  /// The forms in the order of their skeletons, and of their numbers where these are equal.
  std::span<const std::uint16_t> bySkeleton;

  [[nodiscard]] std::size_t Size() const { return byLetters.size(); }
  [[nodiscard]] std::string_view LettersOf(std::size_t form) const {
    return letters.substr(letterStarts[form], letterStarts[form + 1] - letterStarts[form]);
  }
  [[nodiscard]] std::string_view SoundsOf(std::size_t form) const {
    return sounds.substr(soundStarts[form], soundStarts[form + 1] - soundStarts[form]);
  }
  /// The number of the head of a form's family.
  [[nodiscard]] std::size_t HeadOf(std::size_t form) const;
};

/// First names with their short and pet forms and their spellings.
NameTable FirstNameTable();
/// Surnames, their beginnings written in one way (WithPlainPrefix).
NameTable SurnameTable();

}  // namespace tavi
