#pragma once

#include <string>
#include <string_view>

/// Between this system's UTF-8 texts and the wide texts of Windows calls.
namespace tavi::windows {

/// UTF-16 of a UTF-8 text. What is not UTF-8 becomes the replacement character.
[[nodiscard]] std::wstring ToWide(std::string_view text);
/// UTF-8 of a UTF-16 text; an unpaired surrogate becomes the replacement character.
[[nodiscard]] std::string FromWide(std::wstring_view text);
/// A path for the system's file calls: as ToWide, and in the unlimited form ("\\?\C:\...") when it is long.
[[nodiscard]] std::wstring ToWidePath(std::string_view path);
/// The system's text for one of its error codes, in the user's language, without the full stop at its end.
[[nodiscard]] std::string SystemErrorText(unsigned long code);

}  // namespace tavi::windows
