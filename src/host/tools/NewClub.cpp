#include "host/tools/NewClub.h"

#include <filesystem>

#include "host/text/PathText.h"
#include "platform/values/Error.h"
#include "store/cDatabase.h"
#include "util/NativePath.h"

namespace tavi::host {

namespace {

/// True when the file is what a run with the same request made that was stopped at the very end; its traces go then.
bool FinishFormerRun(const Context& context, const ClubIdentity& identity) {
  if (!ClubDraft::WasLeftWhenDone(context)) return false;
  cDatabase store(context.platform);
  store.SetDatabaseFolder(context.ClubFolder());
  if (store.LatestClubName() != identity.name) return false;
  const ClubDraft cleared(context);
  return true;
}

}  // namespace

void MakeClub(const Context& context, const ClubIdentity& identity) {
  const std::string file = NativePath(context.ClubFile());
  if (std::filesystem::exists(PathOf(file))) {
    if (FinishFormerRun(context, identity)) return;
    throw Error(ErrorNumber::InvalidArgument, "tavi", file + " exists already; choose another folder with --db FOLDER");
  }
  ClubDraft draft(context);
  draft.BeginEmpty(identity);
  draft.TakePlace();
}

int NewClub(const Context& context, const ClubIdentity& identity) {
  // Asked for first: nothing is changed any more when the file is made.
  const std::string file = NativePath(context.ClubFile());
  MakeClub(context, identity);
  Table table({"What", "Value"});
  table.Add({std::string("File"), file});
  table.Add({std::string("Club"), identity.name});
  table.Write(context.out, context.format);
  return kSucceeded;
}

}  // namespace tavi::host
