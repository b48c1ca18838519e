#pragma once

#include <string>

#include "platform/Platform.h"

namespace tavi::host {

/// A name as far as it tells who somebody is.
struct PersonName {
  std::string first;
  std::string knownAs;
  std::string last;
};

/// How well a written name agrees with a stored one.
enum class NameAgreement {
  Fits,       ///< first name and surname may both be the same, spelt or shortened otherwise
  HalfFits,   ///< only one of the two may be the same
  OtherName,  ///< neither: clearly another name
};

/// Compares two names by spelling (accents, a slip of the pen, an initial, a part of a double name) and by sound. A
/// part that one of them lacks agrees with anything.
NameAgreement CompareNames(const PersonName& stored, const PersonName& written, const NameKeyService& keys);

/// Whether a whole name in one text may be that of a person, wherever the surname begins in it.
bool FitsWholeName(const PersonName& stored, const std::string& written, const NameKeyService& keys);

}  // namespace tavi::host
