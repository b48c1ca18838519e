// What a competition is, read by its identifier.
#include "competitions/Competition.h"

#include "store/OpenUse.h"

namespace tavi {

CompetitionAttributes ReadCompetitionAttributes(cDatabase& database, std::int32_t CompetitionID) {
  return WhileOpen(database, [&] {
    CompetitionAttributes attributes;
    const auto row = database.OpenRecordset("Select * from Competitions Where ID = " + std::to_string(CompetitionID));
    if (row->AtEnd()) return attributes;
    attributes.Individual = cDatabase::GetBooleanField(*row, "Individual");
    // Columns of later versions: where they are missing, the reader gives False, which is what such a competition was.
    attributes.IsTeams = cDatabase::GetBooleanField(*row, "IsTeams");
    attributes.IsSwiss = cDatabase::GetBooleanField(*row, "IsSwiss");
    attributes.NatCode = cDatabase::GetTextField(*row, "NatCode", true, attributes.NatCode);
    return attributes;
  });
}

}  // namespace tavi
