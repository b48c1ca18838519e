// Data of an older layout become those of the current one: kinds of competitions from one-letter codes, colours of
// awards from those of their competitions. Each can be run again without harm, because a check that was stopped is
// repeated.
#include "store/LayoutCheck.h"

#include <array>

#include "platform/values/Text.h"
#include "store/OpenUse.h"

namespace tavi {
namespace {

struct CompetitionKind {
  const char* code;
  const char* assignments;
};

constexpr std::array<CompetitionKind, 4> kCompetitionKinds{{{"P", "Individual = 0, IsSwiss = 0, IsTeams = 0"},
                                                            {"I", "Individual = 1, IsSwiss = 0, IsTeams = 0"},
                                                            {"S", "Individual = 0, IsSwiss = 1, IsTeams = 0"},
                                                            {"T", "Individual = 0, IsSwiss = 0, IsTeams = 1"}}};

/// All three are set, whatever stood there: a code says the kind completely.
std::string Assignments(const CompetitionKind& kind, bool setIsExternal) {
  return std::string(kind.assignments) + (setIsExternal ? ", IsExternal = 1" : "");
}

/// True when codes can be looked for: a column that holds no texts has none. Any other error passes on, because a file
/// that could not be read for a moment must not lose its codes.
bool CanReadCodes(cDatabase& database) {
  try {
    database.Execute("Select Count(*) From Competitions Where ExternalType = 'P'");
    return true;
  } catch (const Error& error) {
    if (!error.Is(ErrorNumber::ProviderTypeConflict)) throw;
    return false;
  }
}

/// Converts the competitions of one code and empties it in the same statement.
void ConvertCode(cDatabase& database, const CompetitionKind& kind, bool setIsExternal) {
  const auto convert = [&](const std::string& emptyCode) {
    database.Execute("Update Competitions Set " + Assignments(kind, setIsExternal) + ", ExternalType = " + emptyCode +
                     " Where ExternalType = '" + kind.code + "'");
  };
  try {
    convert("Null");
  } catch (const Error&) {
    // The column may have to hold something.
    convert("' '");
  }
}

}  // namespace

void ConvertCompetitionTypes(cDatabase& database, bool setIsExternal) {
  OpenUse use(database);
  if (!CanReadCodes(database)) return;
  for (const CompetitionKind& kind : kCompetitionKinds) ConvertCode(database, kind, setIsExternal);
}

void ConvertCompetitionType(cDatabase& database, std::int32_t competition, const std::string& code,
                            bool setIsExternal) {
  for (const CompetitionKind& kind : kCompetitionKinds) {
    if (!EqualIgnoringCase(code, kind.code)) continue;
    database.Execute("Update Competitions Set " + Assignments(kind, setIsExternal) +
                     " Where ID = " + std::to_string(competition));
  }
}

void ConvertMasterPointColours(cDatabase& database) {
  database.Execute("Update MasterPoints Set Colour = -1 Where Colour Is Null");
}

// Row by row over the join, so that an award changes only where its competition has a colour.
void RepairMasterPointColours(cDatabase& database) {
  OpenUse use(database);
  const auto awards = database.OpenRecordset(
      "Select MasterPointsColour, Colour from MasterPoints Inner Join Competitions On MasterPoints.CompetitionID = "
      "Competitions.ID Where Colour < 0",
      ado::CursorType::Dynamic);
  for (; !awards->AtEnd(); awards->MoveNext()) {
    const Value colour = awards->Get("MasterPointsColour");
    // Writing what is there already would change the file on every opening.
    if (IsNull(colour) || colour == awards->Get("Colour")) continue;
    awards->Set("Colour", colour);
    awards->Update();
  }
}

}  // namespace tavi
