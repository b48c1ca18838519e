#pragma once

#include <cstddef>
#include <string>

namespace tavi::host {

/// A name reduced to what scorers write alike: upper case, accents dropped, only letters and digits kept, Mac at the
/// beginning of a word as Mc. A "?" (which stands where a letter had no place in a file's character set) is kept.
std::string FoldName(const std::string& name);

/// A written name without what does not belong to it: titles in front, a figure or a remark in brackets behind, points
/// behind initials, typographic apostrophes as plain ones; "Surname, First" the usual way round.
std::string CleanWrittenName(const std::string& name);

/// True when two folded names are equal, "?" standing for any one letter.
bool FoldedEqual(const std::string& left, const std::string& right);

/// True when one slip (a letter lost, added, changed, or two neighbours exchanged) at most lies between two folded
/// names.
bool WithinOneSlip(const std::string& left, const std::string& right);

}  // namespace tavi::host
