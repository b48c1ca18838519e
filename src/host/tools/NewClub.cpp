#include "host/tools/NewClub.h"

#include <filesystem>
#include <ostream>

#include "facade/ThreadStore.h"
#include "host/text/PathText.h"
#include "platform/values/Error.h"
#include "util/NativePath.h"

namespace tavi::host {

namespace {

/// The traces of a run with the same request that was stopped at the very end, when the file is what it made.
std::unique_ptr<ClubDraft> FindFormerRun(const Context& context, const ClubIdentity& identity) {
  if (!ClubDraft::WasLeftWhenDone(context)) return nullptr;
  const std::unique_ptr<cDatabase> store = MakeStore(context.platform);
  store->SetDatabaseFolder(context.ClubFolder());
  if (store->LatestClubName() != identity.name) return nullptr;
  return std::make_unique<ClubDraft>(context);
}

}  // namespace

std::unique_ptr<ClubDraft> MakeClub(const Context& context, const ClubIdentity& identity) {
  const std::string file = NativePath(context.ClubFile());
  if (std::filesystem::exists(PathOf(file))) {
    if (std::unique_ptr<ClubDraft> former = FindFormerRun(context, identity)) return former;
    throw Error(ErrorNumber::InvalidArgument, "tavi", file + " exists already; choose another folder with --db FOLDER");
  }
  auto draft = std::make_unique<ClubDraft>(context);
  draft->BeginEmpty(identity);
  draft->TakePlace();
  return draft;
}

int NewClub(const Context& context, const ClubIdentity& identity) {
  // Asked for first: nothing is changed any more when the file is made.
  const std::string file = NativePath(context.ClubFile());
  const std::unique_ptr<ClubDraft> traces = MakeClub(context, identity);
  Table table({"What", "Value"});
  table.Add({std::string("File"), file});
  table.Add({std::string("Club"), identity.name});
  context.Write(table);
  context.out.flush();
  return kSucceeded;
}

}  // namespace tavi::host
