// The handicap of a pair and its players. A player's is the mean of the percentages that he has scored, with whomever
// he played: of results in competitions that count (match points, and marked for handicaps), of the last MaxWeeks
// weeks, the latest MaxResults of them. A seed, a starting handicap with a date, counts like one more result as long as
// there are not more than MaxResults entries; where that is 0, for all results, none counts. Without any entry it is
// 50.
//
// The pair's is first the mean of the two (gross); then what the two have scored together counts by the weighting w:
//
//   gross + (w - 50) / 50 * (joint - gross)      w = 50: gross alone; 75: half way; 100: joint alone
//
// and a regular pair's is adjusted at the end by the club's factor and addition. Rounding comes last, for each value by
// itself: the pair's is made of the averages as they are.
//
// Example: results 56 and 48 of one player, 50 of the other, 54 and 56 together. With w = 75 the players have 53.5 and
// 53.33 (each has the joint ones in his list, too), gross is 53.42, joint 55, the pair has 54.21.
#include "handicaps/HandicapCalculation.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "members/Members.h"
#include "members/Partnerships.h"
#include "platform/values/Convert.h"
#include "platform/values/Date.h"
#include "platform/values/Text.h"
#include "store/Values.h"

namespace tavi {
namespace {

constexpr std::int32_t kSeedIdentifier = 0;
/// Any number but -1: an average of joint results is never that of somebody unknown.
constexpr std::int32_t kNotNoMember = 0;
constexpr int kDecimals = 2;
constexpr double kWeightingRange = kJointResultsAlone - kPlayersAlone;
/// Scoring method 0 is match points; other methods give no percentages that could be compared.
constexpr const char* kCountingCompetitions = "IncludeInHandicapCalculations <> 0 And ScoringMethod = 0";

/// The same time of day some weeks earlier. The days of a date count backwards from day 0, its time of day never does.
Date WeeksBefore(Date date, std::int32_t weeks) {
  const double day = std::trunc(date.days);
  const double timeOfDay = std::abs(date.days - day);
  const double earlier = std::max(day - 7.0 * weeks, double{kFirstDayNumber});
  return Date{earlier < 0 ? earlier - timeOfDay : earlier + timeOfDay};
}

/// The seed of the current row, when there is one: a handicap above 0 with a date.
/// An individual seed is named by the player's number in messages, the higher one of the pair (player, -1).
std::optional<cHandiCalcResultData> SeedOf(const ado::Recordset& row, const cPairMemberNumbers& pair, bool isOfPair) {
  if (row.AtEnd()) return std::nullopt;
  const double seed = cDatabase::GetNonIntegerField(row, "HandicalcSeed");
  if (!(seed > 0.0)) return std::nullopt;
  const auto date = ReadField(
      row, "HandicalcSeedDate",
      [](const Value& value) { return IsNull(value) ? std::optional<Date>() : std::optional<Date>(ToDate(value)); },
      [&] {
        return isOfPair ? "the partnership of " + std::to_string(pair.Lower()) + " and " + std::to_string(pair.Higher())
                        : "member " + std::to_string(pair.Higher());
      });
  if (!date) return std::nullopt;
  return cHandiCalcResultData::Create(kSeedIdentifier, *date, seed, pair, isOfPair);
}

/// Rounded to two decimals. Raises Overflow for what is no number that could be stored.
double Rounded(double handicap) {
  if (!std::isfinite(handicap)) {
    throw Error(
        ErrorNumber::Overflow, kStoreSource,
        "Overflow: a handicap is too large for a number; look for enormous percentages among the results and for "
        "an enormous factor in the handicap settings.");
  }
  return RoundDecimalHalfEven(handicap, kDecimals);
}

/// A value for a message, which it must not spoil.
std::string Shown(const ado::Recordset& row, std::string_view column) {
  try {
    const Value value = row.Get(column);
    return IsNull(value) ? "(none)" : ToText(value);
  } catch (const Error&) {
    return "?";
  }
}

/// A field of the current result.
template <typename Read>
auto ResultField(const ado::Recordset& row, std::string_view column, const Read& read) {
  return ReadField(row, column, read, [&row] {
    return "the result of player " + Shown(row, "Player") + " and partner " + Shown(row, "Partner") +
           " in competition " + Shown(row, "Competitions.ID");
  });
}

/// A player of the current result; who is not stored is no member.
std::int32_t PlayerOf(const ado::Recordset& row, std::string_view column) {
  return ResultField(row, column, [](const Value& value) { return IsNull(value) ? kNoMember : ToInt32(value); });
}

cPairMemberNumbers PairOf(const ado::Recordset& row) {
  return cPairMemberNumbers::Create(PlayerOf(row, "Player"), PlayerOf(row, "Partner"));
}

/// The current result; nothing when it has no percentage: it was never scored then.
std::optional<PlayerResult> ResultOf(const ado::Recordset& row, const cPairMemberNumbers& pair) {
  const auto percentage = ResultField(row, "ActualPercentage", [](const Value& value) {
    return IsNull(value) ? std::optional<double>() : std::optional<double>(ToDouble(value));
  });
  if (!percentage) return std::nullopt;
  const Date date = ResultField(row, "Competitions.CompetitionDate",
                                [](const Value& value) { return IsNull(value) ? Date() : ToDate(value); });
  const std::int32_t competition = ResultField(row, "Competitions.ID", ToInt32);
  return PlayerResult{competition, date, *percentage, pair};
}

void AddResult(HandicapResultList& list, const PlayerResult& result, bool samePair) {
  AddResultInOrder(
      list, cHandiCalcResultData::Create(result.competition, result.date, result.percentage, result.pair, samePair));
}

}  // namespace

// Two visitors have nothing to be calculated from, and the file is not left open for them.
Handicaps CalculateHandicaps(cDatabase& database, HeldSettings& held, const HandicapRequest& request,
                             PlayerFindings* findings) {
  held.LoadHandicalcSettings(database);
  const std::shared_ptr<const HandiCalcSettings> settings = held.Held();
  HandicapRequest asked = request;
  if (asked.Individual) asked.PartnerID = kNoMember;
  if (cPairMemberNumbers::Create(asked.PlayerID, asked.PartnerID).BothNonMembers()) {
    Handicaps unknown;
    unknown.SetPlayer1Handicap(settings->UnknownPlayerHandicap());
    unknown.SetPlayer2Handicap(settings->UnknownPlayerHandicap());
    unknown.SetPartnershipHandicap(settings->UnknownPlayerHandicap());
    return unknown;
  }
  HandicapCalculation calculation(database, *settings, std::move(asked), findings);
  // Deliberately without its CloseDB.
  database.OpenDB();
  return calculation.Run();
}

HandicapCalculation::HandicapCalculation(cDatabase& database, const HandiCalcSettings& settings,
                                         HandicapRequest request, PlayerFindings* findings)
    : database_(database),
      settings_(settings),
      request_(std::move(request)),
      findings_(findings),
      pair_(cPairMemberNumbers::Create(request_.PlayerID, request_.PartnerID)) {
  BuildClauses();
}

// The clauses stand in every query of the calculation; they are built once, before the store is opened.
void HandicapCalculation::BuildClauses() {
  dateClause_ = DateClause();
  // Seeds count like results, so the same days hold for them.
  seedDateClause_ = ReplaceAll(dateClause_, "CompetitionDate", "HandicalcSeedDate");
  if (settings_.MaxResults() != 0) topClause_ = " Top " + std::to_string(settings_.MaxResults()) + " ";
  exclusionClause_ = ExclusionClause();
}

// The span ends with the day of the competition, so that scoring an old competition again takes what counted then. As
// of today (the marker) it has no end.
std::string HandicapCalculation::DateClause() const {
  std::string upTo = IsMarker() ? "" : " And CompetitionDate <= " + cDatabase::SQLDate(request_.CompetitionDate);
  if (settings_.MaxWeeks() < 1) return upTo;
  const Date end = IsMarker() ? database_.GetPlatform().clock->Now().DayOnly() : request_.CompetitionDate;
  return " And CompetitionDate >= " + cDatabase::SQLDate(WeeksBefore(end, settings_.MaxWeeks())) + upTo;
}

// The competition that is about to be scored may have been scored before; its own results must not move its handicaps.
// An individual and a pairs event of one name and day are two competitions.
std::string HandicapCalculation::ExclusionClause() const {
  if (IsMarker()) return {};
  return " And (CompetitionDate <> " + cDatabase::SQLDate(request_.CompetitionDate) + " Or CompetitionName <> " +
         cDatabase::SQLString(request_.CompetitionName) +
         (request_.Individual ? " Or Individual = 0)" : " Or Individual <> 0)");
}

// A pair's seed stands in for the seeds of both players, so theirs are not read then.
void HandicapCalculation::ReadPairSeed() {
  if (!pair_.BothMembers()) return;
  const auto row =
      database_.OpenRecordset("Select HandicalcSeed, HandicalcSeedDate From Partnerships Where (" +
                              PairWhereClause(request_.PlayerID, request_.PartnerID) + ")" + seedDateClause_);
  pairSeed_ = SeedOf(*row, pair_, true);
  if (!pairSeed_) return;
  list1_.Append(pairSeed_->Key(), *pairSeed_);
  list2_.Append(pairSeed_->Key(), *pairSeed_);
}

// Where only the player's average is wanted, and no seed of the pair is in it, it is that of the player's other pairs.
double HandicapCalculation::ReadAverage(std::int32_t number, HandicapResultList& list) {
  const bool isOwn = findings_ != nullptr && number != kNoMember && !pairSeed_ && !NeedsLists();
  if (isOwn) {
    const auto known = findings_->players.find(number);
    if (known != findings_->players.end() && known->second.average) return *known->second.average;
  }
  ReadPlayer(number, list);
  const double average = AverageOf(list, number, settings_.UnknownPlayerHandicap());
  if (isOwn) findings_->players[number].average = average;
  return average;
}

void HandicapCalculation::ReadPlayer(std::int32_t number, HandicapResultList& list) {
  if (number == kNoMember) return;
  if (!pairSeed_) ReadPlayerSeed(number, list);
  ReadPlayerResults(number, list);
  TrimSeeds(list, settings_.MaxResults());
}

void HandicapCalculation::ReadPlayerSeed(std::int32_t number, HandicapResultList& list) {
  const auto row =
      database_.OpenRecordset("Select MembershipNumber, HandicalcSeed, HandicalcSeedDate From Members Where " +
                              NumberIs(number) + seedDateClause_);
  const auto seed = SeedOf(*row, cPairMemberNumbers::Create(number, kNoMember), false);
  if (seed) list.Append(seed->Key(), *seed);
}

// TOP gives the rows that tie with the last one too, so that of one day all results count or none; there may be more
// than MaxResults.
std::unique_ptr<ado::Recordset> HandicapCalculation::OpenResults(const std::string& condition) {
  return database_.OpenRecordset("Select " + topClause_ +
                                 "ActualPercentage, Player, Partner, Competitions.ID, Competitions.CompetitionDate "
                                 " From Results Inner Join Competitions "
                                 " On Results.Competition = Competitions.ID "
                                 " Where " +
                                 condition + " And " + kCountingCompetitions + dateClause_ + exclusionClause_ +
                                 " Order By Competitions.CompetitionDate Desc");
}

// A result is one row for both players; whichever of the two places a player stands in, it is his.
void HandicapCalculation::ReadPlayerResults(std::int32_t number, HandicapResultList& list) {
  const auto add = [&](const std::vector<PlayerResult>& results) {
    for (const PlayerResult& result : results) AddResult(list, result, pair_.SameAs(result.pair));
  };
  if (findings_ == nullptr) return add(ResultsOf(number));
  const auto known = findings_->players.find(number);
  add(known != findings_->players.end() ? known->second.results
                                        : (findings_->players[number].results = ResultsOf(number)));
}

std::vector<PlayerResult> HandicapCalculation::ResultsOf(std::int32_t number) {
  const std::string player = std::to_string(number);
  const auto rows = OpenResults("(Player = " + player + " Or Partner = " + player + ") ");
  std::vector<PlayerResult> results;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    if (const auto result = ResultOf(*rows, PairOf(*rows))) results.push_back(*result);
  }
  return results;
}

HandicapResultList HandicapCalculation::ReadJointResults() {
  const std::string player = std::to_string(request_.PlayerID);
  const std::string partner = std::to_string(request_.PartnerID);
  const auto rows = OpenResults("( (Player = " + player + " And Partner = " + partner + ")  Or (Player = " + partner +
                                " And Partner = " + player + ")) ");
  HandicapResultList joint;
  for (; !rows->AtEnd(); rows->MoveNext()) {
    if (const auto result = ResultOf(*rows, pair_)) AddResult(joint, *result, true);
  }
  return joint;
}

HandicapResultList HandicapCalculation::SharedEntries() const {
  HandicapResultList joint;
  for (const HandicapResultList* list : {&list1_, &list2_}) {
    for (const auto& [key, entry] : *list) {
      if (entry.SamePairResult() && !entry.IsSeed()) AddResultInOrder(joint, entry);
    }
  }
  return joint;
}

// With a limit the players' lists may have lost joint results to more recent other ones, so they are asked for anew.
HandicapResultList HandicapCalculation::JointResults() {
  HandicapResultList joint = settings_.MaxResults() != 0 ? ReadJointResults() : SharedEntries();
  const bool isFull = settings_.MaxResults() != 0 && static_cast<std::int64_t>(joint.Count()) >= settings_.MaxResults();
  if (pairSeed_ && !isFull && !KeyExists(joint, pairSeed_->Key())) joint.Append(pairSeed_->Key(), *pairSeed_);
  return joint;
}

double HandicapCalculation::Blend(double joint, double gross) {
  list1_.Remove(cHandiCalcResultData::kPairSeedKey);
  list2_.Remove(cHandiCalcResultData::kPairSeedKey);
  // Where the pair's seed is all that there is, nothing is left to weigh it against.
  const bool hasOtherEntries = !list1_.IsEmpty() || !list2_.IsEmpty();
  if (settings_.SamePartnerWeighting() == kJointResultsAlone || !hasOtherEntries) return joint;
  const double weight = (settings_.SamePartnerWeighting() - kPlayersAlone) / kWeightingRange;
  return weight * (joint - gross) + gross;
}

/// False when the players' averages are all that their results are read for.
bool HandicapCalculation::NeedsLists() const {
  return settings_.SamePartnerWeighting() != kPlayersAlone && pair_.BothMembers();
}

double HandicapCalculation::PartnershipHandicap(double gross) {
  if (!NeedsLists()) return gross;
  const HandicapResultList joint = JointResults();
  if (joint.IsEmpty()) return gross;
  return Blend(AverageOf(joint, kNotNoMember, settings_.UnknownPlayerHandicap()), gross);
}

// Asked only when the adjustment changes anything, which saves a query for each pair.
double HandicapCalculation::AdjustedForRegularPair(double handicap) {
  if (!settings_.IncludesRegularPairAdjustment()) return handicap;
  std::string alias;
  double parScore = 0.0;
  const bool isRegular = IsRegularPair(database_, request_.PlayerID, request_.PartnerID, alias, parScore);
  return isRegular ? settings_.AdjustRegularPair(handicap) : handicap;
}

// The players come before the pair: the partnership is made of their averages before they are rounded.
Handicaps HandicapCalculation::Run() {
  ReadPairSeed();
  const double player1 = ReadAverage(request_.PlayerID, list1_);
  const double player2 = ReadAverage(request_.PartnerID, list2_);

  Handicaps handicaps;
  handicaps.SetPlayer1Handicap(Rounded(player1));
  if (request_.Individual) {
    handicaps.SetPlayer2Handicap(player2);
    handicaps.SetPartnershipHandicap(handicaps.Player1Handicap());
    return handicaps;
  }
  handicaps.SetPlayer2Handicap(Rounded(player2));
  // Halved before they are added, so that two enormous averages do not overflow in between.
  const double partnership = AdjustedForRegularPair(PartnershipHandicap(player1 / 2.0 + player2 / 2.0));
  handicaps.SetPartnershipHandicap(Rounded(partnership));
  return handicaps;
}

}  // namespace tavi
