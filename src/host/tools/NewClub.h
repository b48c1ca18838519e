#pragma once

#include <memory>

#include "host/commands/Context.h"
#include "host/tools/ClubDraft.h"

namespace tavi::host {

/// Makes the folder and in it an empty file with all tables of the current layout. Raises an error when there is a file
/// already. The file appears when it is whole; on an error, or when the program is stopped, there is none. With what is
/// returned the traces go by which a run that was stopped at its end can be repeated: keep it until all has been said.
/// It goes before `context` does.
[[nodiscard]] std::unique_ptr<ClubDraft> MakeClub(const Context& context, const ClubIdentity& identity);

/// `tavi new`.
int NewClub(const Context& context, const ClubIdentity& identity);

}  // namespace tavi::host
