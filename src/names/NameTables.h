#pragma once

#include <span>
#include <string_view>

/// The dictionaries that name keys are made with: families of names, each with the forms that count as the same name.
///
/// A row is a text in which families are separated by blanks and the forms of a family by "/"; the first form is the
/// family's head. What stands earlier is more common. A form stands in one family only; two forms that differ in case,
/// accents, apostrophes, hyphens or (surnames) in Mac and Mc are one. Rules find the other writings of a form, so only
/// what is said or written quite differently needs a place here.
///
/// Keys are stored in clubs' files: a changed family changes keys.
namespace tavi {

/// First names with their short and pet forms and their spellings, in Britain and in the countries that members of
/// British clubs come from.
std::span<const std::string_view> FirstNames();

/// The surnames that a British club is most likely to have.
std::span<const std::string_view> CommonSurnames();

/// Less common surnames, by the letter of the head.
std::span<const std::string_view> SurnamesAToG();
std::span<const std::string_view> SurnamesHToO();
std::span<const std::string_view> SurnamesPToZ();

}  // namespace tavi
