#pragma once

#include "host/commands/Context.h"
#include "host/tools/ClubDraft.h"

namespace tavi::host {

/// Makes the folder and in it an empty file with all tables of the current layout. The file appears when it is whole;
/// on an error, or when the program is stopped, there is none. A file of this very club in which nobody has stored
/// anything is left as it is, so that the command can be repeated wherever it was stopped. Raises InvalidArgument when
/// there is any other file.
void MakeClub(const Context& context, const ClubIdentity& identity);

/// `tavi new`.
int NewClub(const Context& context, const ClubIdentity& identity);

}  // namespace tavi::host
