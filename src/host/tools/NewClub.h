#pragma once

#include "host/commands/Context.h"
#include "host/tools/ClubDraft.h"

namespace tavi::host {

/// Makes the folder and in it an empty file with all tables of the current layout. Raises an error when there is a file
/// already. The file appears when it is whole; on an error, or when the program is stopped, there is none.
void MakeClub(const Context& context, const ClubIdentity& identity);

/// `tavi new`.
int NewClub(const Context& context, const ClubIdentity& identity);

}  // namespace tavi::host
