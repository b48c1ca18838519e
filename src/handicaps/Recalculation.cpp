// All handicaps of a club, as of today. The rows are changed through the record set that finds them. Each row is stored
// by itself, and on an error those before stay: they are right as of today, and calling again does the rest.
#include "handicaps/HandicapCalculation.h"

#include <optional>

#include "names/MemberValues.h"
#include "platform/values/Convert.h"
#include "store/OpenUse.h"
#include "store/Values.h"

namespace tavi {
namespace {

std::string KeyOf(std::int32_t memberNumber) {
  return std::to_string(memberNumber) + "M";
}

/// A number by which a row is known; nothing where it has none.
/// By ReadField, which names table and column: a number that cannot be read is damage, and not somebody without a
/// number.
std::optional<std::int32_t> NumberIn(const ado::Recordset& row, const char* table, std::string_view column) {
  return ReadField(
      row, column,
      [](const Value& value) {
        return IsNull(value) ? std::optional<std::int32_t>() : std::optional<std::int32_t>(ToInt32(value));
      },
      [table] { return "a row of the table " + std::string(table); });
}

void Store(ado::Recordset& row, double handicap) {
  row.Set("Handicap", handicap);
  row.Update();
}

/// Without a competition: as of today, and nothing is left out.
HandicapRequest RequestFor(std::int32_t player, std::int32_t partner, bool individual) {
  HandicapRequest request;
  request.PlayerID = player;
  request.PartnerID = partner;
  request.Individual = individual;
  return request;
}

// Partnerships first: their calculation yields the players' handicaps too, which saves most of the members' ones.
RememberedHandicaps RecalculatePartnerships(cDatabase& database, HeldSettings& held) {
  RememberedHandicaps remembered;
  PlayerFindings findings;
  const auto rows = database.OpenRecordset("Select * from Partnerships Where Active <> 0", ado::CursorType::Dynamic);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::optional<std::int32_t> lower = NumberIn(*rows, "Partnerships", "LowerPlayer");
    const std::optional<std::int32_t> higher = NumberIn(*rows, "Partnerships", "HigherPlayer");
    // A row that does not say who plays has no results to be found by.
    if (!lower || !higher) continue;
    const Handicaps handicaps = CalculateHandicaps(database, held, RequestFor(*lower, *higher, false), &findings);
    Store(*rows, handicaps.PartnershipHandicap());
    RememberHandicap(remembered, *lower, handicaps.Player1Handicap());
    RememberHandicap(remembered, *higher, handicaps.Player2Handicap());
  }
  return remembered;
}

void RecalculateMembers(cDatabase& database, HeldSettings& held, const RememberedHandicaps& remembered) {
  const auto rows = database.OpenRecordset("Select * from Members Where Active <> 0", ado::CursorType::Dynamic);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    const std::optional<std::int32_t> number = NumberIn(*rows, "Members", "MembershipNumber");
    if (!number) continue;
    // The first of a member's partnerships has decided.
    const double* known = remembered.Find(KeyOf(*number));
    double handicap = known == nullptr ? 0.0 : *known;
    // 0 is also what a member without a partnership has in the list of remembered ones.
    if (handicap == 0.0) {
      handicap = CalculateHandicaps(database, held, RequestFor(*number, kNoMember, true)).Player1Handicap();
    }
    Store(*rows, handicap);
  }
}

}  // namespace

void RememberHandicap(RememberedHandicaps& list, std::int32_t memberNumber, double handicap) {
  const std::string key = KeyOf(memberNumber);
  if (list.Find(key) == nullptr) list.Append(key, handicap);
}

void RecalculateAllHandicaps(cDatabase& database, HeldSettings& held) {
  WhileOpen(database, [&] {
    const RememberedHandicaps remembered = RecalculatePartnerships(database, held);
    RecalculateMembers(database, held, remembered);
  });
}

}  // namespace tavi
