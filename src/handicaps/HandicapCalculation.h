#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "handicaps/HandiCalcSettings.h"
#include "handicaps/Handicaps.h"
#include "handicaps/HeldSettings.h"
#include "handicaps/cHandiCalcResultData.h"
#include "names/MemberValues.h"
#include "platform/values/Date.h"
#include "store/cDatabase.h"
#include "util/KeyedList.h"

namespace tavi {

/// As the date of a competition: today, with no competition to leave out (1 January 2000).
inline constexpr Date kNoCompetitionDate{36526.0};

/// Whose handicaps are asked for, and the competition about to be scored, which is left out of its own handicaps.
struct HandicapRequest {
  std::int32_t PlayerID = kNoMember;
  std::int32_t PartnerID = kNoMember;  ///< not looked at in an individual competition
  std::string CompetitionName;
  Date CompetitionDate = kNoCompetitionDate;
  bool Individual = false;
};

/// A result as it was read, whoever's handicap it goes into.
struct PlayerResult {
  std::int32_t competition = 0;
  Date date;
  double percentage = 0.0;
  cPairMemberNumbers pair;
};

/// What a recalculation has found out about players, by number. It changes neither results nor seeds, so that a player
/// of several partnerships need be asked for only once.
struct PlayerFindings {
  struct Player {
    std::vector<PlayerResult> results;  ///< in the order of the query
    std::optional<double> average;      ///< of results and the player's own seed
  };
  std::unordered_map<std::int32_t, Player> players;
};

/// The handicaps of a pair or a player. The store is left open once more than before (except for two players of number
/// -1), so that the next calculation finds it open: hosts rely on it. Errors of the store pass on. `findings` may be
/// null; calculations that share them have the same settings and differ in the players alone.
Handicaps CalculateHandicaps(cDatabase& database, HeldSettings& held, const HandicapRequest& request,
                             PlayerFindings* findings = nullptr);

/// One calculation, on the open store.
class HandicapCalculation {
 public:
  /// `request` has the partner -1 when it is individual. What is passed must outlive the calculation; `findings` may be
  /// null.
  HandicapCalculation(cDatabase& database, const HandiCalcSettings& settings, HandicapRequest request,
                      PlayerFindings* findings);

  /// Reads the results and seeds and computes the handicaps, rounded to two decimals. Call it once.
  [[nodiscard]] Handicaps Run();

 private:
  [[nodiscard]] bool IsMarker() const { return request_.CompetitionDate == kNoCompetitionDate; }
  void BuildClauses();
  [[nodiscard]] std::string DateClause() const;
  [[nodiscard]] std::string ExclusionClause() const;

  void ReadPairSeed();
  [[nodiscard]] double ReadAverage(std::int32_t number, HandicapResultList& list);
  void ReadPlayer(std::int32_t number, HandicapResultList& list);
  void ReadPlayerSeed(std::int32_t number, HandicapResultList& list);
  void ReadPlayerResults(std::int32_t number, HandicapResultList& list);
  [[nodiscard]] std::vector<PlayerResult> ResultsOf(std::int32_t number);
  [[nodiscard]] bool NeedsLists() const;
  [[nodiscard]] std::unique_ptr<ado::Recordset> OpenResults(const std::string& condition);

  [[nodiscard]] double PartnershipHandicap(double gross);
  [[nodiscard]] HandicapResultList JointResults();
  [[nodiscard]] HandicapResultList ReadJointResults();
  [[nodiscard]] HandicapResultList SharedEntries() const;
  [[nodiscard]] double Blend(double joint, double gross);
  [[nodiscard]] double AdjustedForRegularPair(double handicap);

  cDatabase& database_;
  const HandiCalcSettings& settings_;
  HandicapRequest request_;
  PlayerFindings* findings_;
  cPairMemberNumbers pair_;

  std::string dateClause_;
  std::string seedDateClause_;
  std::string topClause_;
  std::string exclusionClause_;

  std::optional<cHandiCalcResultData> pairSeed_;
  HandicapResultList list1_;
  HandicapResultList list2_;
};

/// Handicaps by member, key number + "M".
using RememberedHandicaps = KeyedList<std::string, double>;

/// Notes a member's handicap; of a second one for the same member nothing is kept.
void RememberHandicap(RememberedHandicaps& list, std::int32_t memberNumber, double handicap);

/// Calculates the handicap of every active partnership and member as of today and stores it. A member of a partnership
/// gets the player handicap of that calculation (of the first of several partnerships), anybody else, and who gets
/// exactly 0 there, an individual one. Rows without a number are left out; one that holds no number raises
/// TypeMismatch. Each calculation leaves the store open once more. Errors of the store pass on; the rows stored before
/// stay stored.
void RecalculateAllHandicaps(cDatabase& database, HeldSettings& held);

}  // namespace tavi
