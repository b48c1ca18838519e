#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "access/catalog/Database.h"
#include "platform/values/Value.h"

namespace tavi::host {

/// The contents of a database as texts that tell all that its user tables hold, in an order that does not depend on
/// where things lie in the file: two files with the same contents give the same texts, and so do other readers that
/// write this form. The texts are UTF-8, their lines end in LF.
///
///   schema.json   the version of the format, tables with columns and indexes, relationships, names of links
///   TABLE.tsv     the names of the columns in one line, then a line for each row, sorted by bytes; values as TsvText
///                 writes them, with a tab between. The name of the file is the table's; bytes other than letters,
///                 digits, space and ._-() become %XX. A name of more than 255 bytes is cut, and ends in ~ and
///                 sixteen digits that tell it from others; schema.json names the file of each table.
///
/// Calls `write` with the name and the text of each. Joins the pager's open statement or makes a read statement.
/// Raises ProviderFailure where the file is damaged.
void DumpDatabase(access::Database& database,
                  const std::function<void(const std::string& name, const std::string& text)>& write);

/// The text of one table alone.
[[nodiscard]] std::string TableText(access::Database& database, const std::string& table);

/// A value as one field of a tab-separated dump, in a form that other readers of Access files give too, so that dumps
/// can be compared line by line:
///
///   null            \N
///   Boolean         true, false
///   whole numbers   plain decimal
///   Currency, Numeric   plain decimal without exponent and trailing zeros
///   Single, Double  the fewest digits that read back to the same value; plain for 1e-5 <= |x| < 1e16, else d.ddde-x;
///                   nan, inf, -inf; both zeros are 0
///   Date            yyyy-MM-ddTHH:mm:ss, the second rounded
///   text            \\ \t \n \r \0 for these characters, \uxxxx for a surrogate without its partner
///   bytes           lower-case hexadecimal; more than 256 bytes as sha256: and their digest
///   GUID            upper case, in braces
[[nodiscard]] std::string TsvText(const Value& value);

/// The SHA-256 digest of bytes (FIPS 180-4).
[[nodiscard]] std::array<std::uint8_t, 32> Sha256(std::span<const std::uint8_t> bytes);

}  // namespace tavi::host
