#include "members/ClubIdentity.h"

#include "store/OpenUse.h"

namespace tavi {

std::string ClubID(cDatabase& database) {
  return WhileOpen(database, [&] {
    const auto row = database.OpenRecordset("Select top 1 ClubEBUNumber from ClubNames Order by ClubID Desc");
    return row->AtEnd() ? std::string() : cDatabase::GetTextField(*row, "ClubEBUNumber");
  });
}

bool WasClubEverCalled(cDatabase& database, const std::string& ClubName) {
  return WhileOpen(database, [&] {
    const auto row =
        database.OpenRecordset("Select top 1 ClubID from ClubNames Where ClubName = " + cDatabase::SQLString(ClubName));
    return !row->AtEnd();
  });
}

}  // namespace tavi
