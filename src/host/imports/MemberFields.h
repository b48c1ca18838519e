#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/cDatabase.h"

/// The fields of a member that members files know: how they are called there and in the table Members, and how their
/// values are written in both.
namespace tavi::host {

struct MemberField {
  enum class Kind { Text, Sex, Day, YesNo };
  const char* name;    ///< in files and plans
  const char* column;  ///< of the table Members
  Kind kind = Kind::Text;
};

/// All of them, in the order in which changes are shown.
const std::vector<MemberField>& MemberFields();
/// The field of a name that is one.
const MemberField& MemberFieldNamed(std::string_view name);

/// A field of the current row in the way that MemberLine writes it; what is no value (no date, an unknown sex) is
/// empty.
std::string StoredValue(const ado::Recordset& row, const MemberField& field);
/// The literal of SQL for a value that is written so.
std::string LiteralOf(const MemberField& field, const std::string& value);

/// An address as a file gives it. The club's file keeps the town as the last line of the address.
struct WrittenAddress {
  std::optional<std::string> address;  ///< nothing where the file lacks the column
  std::optional<std::string> town;     ///< likewise
};

/// The lines of the stored address with what the file says put in; lines are separated by CR LF. Without the column
/// `town` the last of several stored lines stays; without `address` all lines stay but the last of several, and of more
/// than two lines none is emptied, because nobody can tell which is the town. Doing it again changes nothing.
std::string ChangedAddress(const std::string& stored, const WrittenAddress& written);

}  // namespace tavi::host
