#include "host/tools/NewClub.h"

#include <filesystem>
#include <ostream>

#include "composition/Composition.h"
#include "host/text/PathText.h"
#include "host/tools/Connect.h"
#include "platform/values/Error.h"
#include "store/BaseFile.h"
#include "store/cDatabase.h"
#include "util/NativePath.h"

namespace tavi::host {
namespace {

void RemoveQuietly(const std::string& path) {
  std::error_code ignored;
  std::filesystem::remove(PathOf(path), ignored);
}

void StoreNationalNumber(const Context& context, const std::string& number) {
  if (number.empty()) return;
  cDatabase store(context.platform);
  store.SetDatabaseFolder(context.ClubFolder());
  store.Execute("Update ClubNames Set ClubEBUNumber = " + cDatabase::SQLString(number));
}

}  // namespace

void MakeClub(const Context& context, const ClubIdentity& identity) {
  const std::string folder = NativePath(context.ClubFolder());
  const std::string file = NativePath(context.ClubFile());
  if (std::filesystem::exists(PathOf(file))) {
    throw Error(ErrorNumber::InvalidArgument, "tavi", file + " exists already; choose another folder with --db FOLDER");
  }
  if (const std::error_code code = MakeFolders(folder)) {
    throw Error(ErrorNumber::InvalidArgument, "tavi", "the folder " + folder + " cannot be made: " + ReasonOf(code));
  }
  CreateEmptyDatabase(file, context.platform->clock->Now());
  try {
    const std::unique_ptr<ado::Connection> connection = Connect(context, context.ClubFile());
    CreateBaseFile(*connection);
    connection->Close();
    const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
    if (!identity.name.empty()) club->SetClubName(identity.name);
    club->CloseDatabase();
    StoreNationalNumber(context, identity.nationalNumber);
  } catch (...) {
    RemoveQuietly(file);
    throw;
  }
}

int NewClub(const Context& context, const ClubIdentity& identity) {
  MakeClub(context, identity);
  Table table({"What", "Value"});
  table.Add({std::string("File"), NativePath(context.ClubFile())});
  table.Add({std::string("Club"), identity.name});
  table.Write(context.out, context.format);
  return kSucceeded;
}

}  // namespace tavi::host
