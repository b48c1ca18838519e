#pragma once

/// The code page of Asc and Chr: Windows Latin 1 (1252), whatever the system's own is.
namespace tavi::access::sql {

/// The character of a code 0..255. The five codes without a character stand for the control characters of that number.
char32_t FromWindowsLatin(int code);
/// The code of a character; that of "?" when it has none.
int ToWindowsLatin(char32_t character);

}  // namespace tavi::access::sql
