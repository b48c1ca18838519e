#pragma once

#include <cstdint>
#include <string>

#include "competitions/Competition.h"
#include "handicaps/HeldSettings.h"
#include "platform/values/Date.h"
#include "store/cDatabase.h"

namespace tavi {

/// What a scoring program says of a competition when it registers it. The meaning of the codes is its own business.
struct CompetitionRegistration {
  std::string CompName;
  Date CompDate;
  bool Individual = false;
  std::int16_t ScoringMethod = 0;
  std::int16_t ButlerType = 0;
  bool IsSwiss = false;
  bool QualiFinal = false;
  std::int16_t MasterPointsLevel = 0;
  std::int16_t NumberOfTables = 0;
  std::int16_t NumberOfWinners = 0;
  std::string Gov = kUsualGoverningBody;
  bool IncludeInHandicaps = false;
  std::int16_t NumberOfTeams = 0;  ///< above 0: a teams event
};

/// One competitor's result, in per cent. An applied handicap of 0 or less means none.
struct CompetitorResult {
  std::int32_t CompetitionID = 0;
  Competitors Players;
  double ActualPercent = 0.0;
  double NetPercent = 0.0;
  double AppliedHandicap = -1.0;
};

/// The results of a competition on their way into the file: registered, noted and ended through the same public object,
/// which owns this one and the settings that it refers to. Errors of the store pass on.
class ResultUpdate {
 public:
  /// `held` must outlive this object.
  explicit ResultUpdate(HeldSettings& held) : held_(held) {}

  /// Finds the competition of this name and date, clearing its results and marking its awards for replacement, or adds
  /// it; stores its attributes and returns its identifier. The store stays open once more, after an error too;
  /// EndResultUpdate closes it.
  std::int32_t SetCompetitionEx(cDatabase& database, const CompetitionRegistration& registration);

  /// Stores a result (unless neither competitor has a number), refreshes the handicaps when the registered competition
  /// counts for them, and deletes the competitors' awards in the competition: all of it or, with an error, nothing.
  /// Each handicap calculation leaves the store open once more.
  void NoteCompetitorResult(cDatabase& database, const CompetitorResult& result);

  /// NoteCompetitorResult, and AddMasterPoints for session 1 when MasterPoints is above 0. The award exchanges the
  /// first name and the second number: the second player's award goes to the number that the first name spells. Errors
  /// do not reach the caller: the operation is repeated until it succeeds, for ever when it cannot.
  void UpdateResult(cDatabase& database, const CompetitorResult& result, std::int16_t MasterPoints);

  /// Whether the competition registered last counts for handicaps; False before the first.
  [[nodiscard]] bool CurrentCompetitionInHandicaps() const { return currentCompetitionInHandicaps_; }

 private:
  void RefreshHandicaps(cDatabase& database, const CompetitorResult& result, bool isIndividual, bool isRegularPair);

  HeldSettings& held_;
  bool currentCompetitionInHandicaps_ = false;
};

}  // namespace tavi
