#pragma once

#include <string>

#include "host/commands/Context.h"

namespace tavi::host {

/// What a new club's file says of the club.
struct ClubIdentity {
  std::string name;
  std::string nationalNumber;  ///< of the club, at the governing body; may be empty
};

/// Makes the folder and in it an empty file with all tables of the current layout. Raises an error when there is a file
/// already; nothing is changed then.
void MakeClub(const Context& context, const ClubIdentity& identity);

/// `tavi new`.
int NewClub(const Context& context, const ClubIdentity& identity);

}  // namespace tavi::host
