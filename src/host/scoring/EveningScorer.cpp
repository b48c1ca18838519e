#include "host/scoring/EveningScorer.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "facade/DatabaseTransaction.h"
#include "facade/ThreadStore.h"
#include "handicaps/HandicapCalculation.h"
#include "host/results/Xml.h"
#include "names/NameText.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/SettingsStore.h"

// An evening as a careful scoring program stores it, by the public operations. The order within an event is fixed by
// what they do:
//
//   1. Register the competition. One of this name and day is found again; its results are cleared, its awards marked.
//   2. Ask each contestant's handicap before any result is noted; net scores are made of it.
//   3. Note all results. Noting one clears the awards of its players in this competition.
//   4. So awards are passed only when all results are noted.
//   5. End the update, which deletes the awards that were not passed again, and ask for the handicaps with this event.
//
// All events of a file are one transaction. Scoring a file twice would give its awards new numbers, so what is there is
// read before and after, and when both are the same the transaction is not committed at all.
namespace tavi::host {
namespace {

// Behind every place that there is, so that contestants without one stand at the end.
constexpr int kPlaceOfUnplaced = 1'000'000;

/// The codes stored in ScoringMethod; only 0 (match points) counts for handicaps.
std::int16_t ScoringCode(Event::Scoring scoring) {
  switch (scoring) {
    case Event::Scoring::MatchPoints:
      return 0;
    case Event::Scoring::CrossImps:
      return 1;
    case Event::Scoring::ButlerImps:
      return 2;
    case Event::Scoring::Aggregate:
      return 3;
    case Event::Scoring::Other:
      return 4;
  }
  return 4;
}

/// An individual has no second player, and a team may have an odd number of them.
std::int32_t NumberOf(const ScoredContestant& scored, std::size_t position) {
  return position < scored.players.size() ? scored.players[position].number : kNoMember;
}

std::string NameOf(const ScoredContestant& scored, std::size_t position) {
  return position < scored.players.size() ? scored.players[position].name : std::string();
}

/// By session, then North-South before East-West where both have winners of their own, then by place; those who share
/// one by score, the better first.
auto RankingOrder(const Event& event, const ScoredContestant& scored) {
  const Contestant& contestant = scored.contestant;
  return std::make_tuple(contestant.session, event.winners == 2 && contestant.direction == "EW" ? 1 : 0,
                         contestant.place.value_or(kPlaceOfUnplaced),
                         -contestant.actualPercentage.value_or(contestant.total.value_or(0.0)));
}

/// Adds how the players were recognised, each remark once.
void AddRemarks(const std::vector<ScoredContestant>& contestants, std::vector<std::string>& remarks) {
  for (const ScoredContestant& entry : contestants) {
    for (const ResolvedPlayer& player : entry.players) {
      const bool known = std::find(remarks.begin(), remarks.end(), player.remark) != remarks.end();
      if (!player.remark.empty() && !known) remarks.push_back(player.remark);
    }
  }
}

/// Makes a visitor of who bears the name of a member and a national number of somebody else, where the member plays
/// too, under the right one.
/// Two people of one name, only one of whom is a member: without this, both would be the same member, and the file
/// would be refused because he plays twice. Only who was recognised by name can be wrong.
void PartNamesakes(std::vector<ScoredContestant>& contestants) {
  std::set<std::pair<int, std::int32_t>> knownByNumber;
  for (const ScoredContestant& entry : contestants) {
    for (const ResolvedPlayer& player : entry.players) {
      if (player.byNumber) knownByNumber.emplace(entry.contestant.session, player.number);
    }
  }
  for (ScoredContestant& entry : contestants) {
    for (std::size_t i = 0; i < entry.players.size(); ++i) {
      ResolvedPlayer& player = entry.players[i];
      const EventPlayer& written = entry.contestant.players[i];
      if (player.byNumber || written.nationalNumber.empty()) continue;
      if (!knownByNumber.contains({entry.contestant.session, player.number})) continue;
      player = {kNoMember, written.name,
                written.name + ": the national number " + written.nationalNumber + " is not that of the member " +
                    player.name + ", who plays too; stored by name"};
    }
  }
}

}  // namespace

std::string StorableCompetitionName(const std::string& name) {
  // A competition is looked for by its name with escapes and stored without: one with a percent sign or a line break
  // would not be found again.
  return TidyText(ReplaceAll(name, "%", ""));
}

ScoredEvent EveningScorer::Prepare(Event event, const std::string& fileName) {
  ScoredEvent scored;
  event.name = StorableCompetitionName(event.name);
  // A name of percent signs only.
  if (event.name.empty()) event.name = "Event";
  for (const Contestant& contestant : event.contestants) {
    ScoredContestant entry;
    entry.contestant = contestant;
    for (const EventPlayer& player : contestant.players) {
      entry.players.push_back(directory_.Resolve(player));
    }
    scored.contestants.push_back(std::move(entry));
  }
  PartNamesakes(scored.contestants);
  // After the namesakes were parted: what is told is how each was recognised in the end.
  AddRemarks(scored.contestants, event.remarks);
  scored.event = std::move(event);
  // A handicap is an average percentage at match points, and a team's result is no player's.
  scored.countsForHandicaps = scored.event.kind != Event::Kind::Teams &&
                              scored.event.scoring == Event::Scoring::MatchPoints && scored.event.HasPercentages();
  RequireEverybodyOnce(scored, fileName);
  // Stable: contestants without place and score stay in the order of the file.
  std::stable_sort(scored.contestants.begin(), scored.contestants.end(),
                   [&](const ScoredContestant& left, const ScoredContestant& right) {
                     return RankingOrder(scored.event, left) < RankingOrder(scored.event, right);
                   });
  return scored;
}

/// A player who stands twice in a session would have two results of one evening. In different sessions of an event
/// everybody plays again.
void EveningScorer::RequireEverybodyOnce(const ScoredEvent& scored, const std::string& fileName) const {
  std::map<std::tuple<int, std::int32_t, std::string>, std::string> seen;
  for (const ScoredContestant& entry : scored.contestants) {
    for (std::size_t i = 0; i < entry.players.size(); ++i) {
      const ResolvedPlayer& player = entry.players[i];
      const bool isVisitor = player.number == kNoMember;
      const std::string visitor = isVisitor ? entry.contestant.players[i].nationalNumber : std::string();
      // Visitors of one name can be two people; only a number tells that they are one.
      if (isVisitor && visitor.empty()) continue;
      const auto [earlier, isNew] =
          seen.emplace(std::make_tuple(entry.contestant.session, player.number, visitor), entry.contestant.number);
      if (isNew) continue;
      throw Error(ErrorNumber::InvalidArgument, "tavi",
                  fileName + ":" + std::to_string(entry.contestant.line) + ": " + player.name +
                      " is listed twice, with number " + earlier->second + " and with number " +
                      entry.contestant.number + "; expected each player once in a session");
    }
  }
}

void EveningScorer::Store(std::vector<ScoredEvent>& events) {
  DatabaseTransaction transaction;
  const std::vector<std::string> before = ReadStoredEvents(events);
  for (ScoredEvent& scored : events) StoreOne(scored);
  // What is there already stays as it is, with the numbers of its awards.
  if (!before.empty() && ReadStoredEvents(events) == before) return;
  transaction.Commit();
}

void EveningScorer::StoreOne(ScoredEvent& scored) {
  Register(scored);
  FindHandicapsBefore(scored);
  NoteResults(scored);
  PassAwards(scored);
  database_.EndResultUpdate(scored.competition);
  FindHandicapsAfter(scored);
}

/// The file is open from here on, until the update ends.
void EveningScorer::Register(ScoredEvent& scored) {
  const Event& event = scored.event;
  const bool teams = event.kind == Event::Kind::Teams;
  scored.competition = database_.SetCompetitionEx(
      event.name, event.date, event.kind == Event::Kind::Individual, ScoringCode(event.scoring),
      event.scoring == Event::Scoring::ButlerImps ? std::int16_t{1} : std::int16_t{0}, event.swiss, false, 0,
      static_cast<std::int16_t>(event.tables), static_cast<std::int16_t>(event.winners), kUsualGoverningBody, 0,
      scored.countsForHandicaps, teams ? static_cast<std::int16_t>(event.contestants.size()) : std::int16_t{0});
}

void EveningScorer::FindHandicapsBefore(ScoredEvent& scored) {
  if (!scored.countsForHandicaps) return;
  const bool individual = scored.event.kind == Event::Kind::Individual;
  for (ScoredContestant& entry : scored.contestants) {
    const Handicaps handicaps = database_.CalculateHandicaps(NumberOf(entry, 0), NumberOf(entry, 1), scored.event.name,
                                                             scored.event.date, individual);
    entry.handicapBefore = handicaps.PartnershipHandicap();
    // A handicap is an average score: who plays to it nets the neutral 50.
    entry.net = RoundDecimalHalfEven(*entry.contestant.actualPercentage - *entry.handicapBefore + kNeutralHandicap, 2);
    entry.name = individual ? NameOf(entry, 0)
                            : database_.GetPairName(NumberOf(entry, 0), NameOf(entry, 0), NumberOf(entry, 1),
                                                    NameOf(entry, 1), name_format::kFirstAndLast, true);
  }
}

/// Without percentages there is nothing to note: results are percentages in the club's file.
void EveningScorer::NoteResults(const ScoredEvent& scored) {
  if (!scored.event.HasPercentages()) return;
  for (const ScoredContestant& entry : scored.contestants) {
    const double actual = *entry.contestant.actualPercentage;
    database_.NoteCompetitorResult(scored.competition, NumberOf(entry, 0), NameOf(entry, 0), NumberOf(entry, 1),
                                   NameOf(entry, 1), actual, entry.net.value_or(actual));
  }
}

void EveningScorer::PassAwards(const ScoredEvent& scored) {
  const std::size_t step = scored.event.kind == Event::Kind::Individual ? 1 : 2;
  for (const ScoredContestant& entry : scored.contestants) {
    // Pairs have two players whatever the file lists; a team's players receive the award two by two.
    const std::size_t count =
        scored.event.kind == Event::Kind::Teams ? entry.players.size() : std::min(step, entry.players.size());
    for (const Award& award : entry.contestant.awards) {
      for (std::size_t first = 0; first < count; first += step) {
        database_.AddMasterPoints(scored.competition, static_cast<std::int16_t>(entry.contestant.session),
                                  NumberOf(entry, first), NameOf(entry, first), NumberOf(entry, first + 1),
                                  NameOf(entry, first + 1), award.points, award.colour);
      }
    }
  }
}

void EveningScorer::FindHandicapsAfter(ScoredEvent& scored) {
  const bool individual = scored.event.kind == Event::Kind::Individual;
  for (ScoredContestant& entry : scored.contestants) {
    if (entry.name.empty()) {
      for (const ResolvedPlayer& player : entry.players) entry.name += (entry.name.empty() ? "" : " & ") + player.name;
    }
    if (!scored.countsForHandicaps) continue;
    entry.handicapAfter =
        // No competition is left out this time, so that this event counts too.
        database_.CalculateHandicaps(NumberOf(entry, 0), NumberOf(entry, 1), "", kNoCompetitionDate, individual)
            .PartnershipHandicap();
  }
}

namespace {

constexpr const char* kAwardNumber = "ID";

/// Adds each row of a statement: its values but the one of `unwanted`. Null and an empty text are told apart.
void AddRows(cDatabase& store, const std::string& statement, std::string_view unwanted,
             std::vector<std::string>& texts) {
  const auto rows = store.OpenRecordset(statement);
  for (; !rows->AtEnd(); rows->MoveNext()) {
    std::string text;
    for (const ado::Field& field : rows->Fields()) {
      if (EqualIgnoringCase(field.name, unwanted)) continue;
      const Value value = rows->Get(field.name);
      text += '\n' + field.name + (IsNull(value) ? "" : "=" + ToText(value));
    }
    texts.push_back(std::move(text));
  }
}

/// The competitions of an event's name and day, of which a club's file may hold several.
std::vector<std::string> NumbersOf(cDatabase& store, const Event& event) {
  std::vector<std::string> numbers;
  const auto rows =
      store.OpenRecordset("Select ID From Competitions Where CompetitionName = " + cDatabase::SQLString(event.name) +
                          " And CompetitionDate = " + cDatabase::SQLDate(event.date));
  for (; !rows->AtEnd(); rows->MoveNext()) numbers.push_back(ToText(rows->Get("ID")));
  return numbers;
}

}  // namespace

std::vector<std::string> ReadStoredEvents(const std::vector<ScoredEvent>& events) {
  const std::shared_ptr<cDatabase> store = ThreadStore();
  std::vector<std::string> texts;
  for (const ScoredEvent& scored : events) {
    // Everything that scoring an event changes, in an order that does not depend on when it was stored.
    for (const std::string& number : NumbersOf(*store, scored.event)) {
      AddRows(*store, "Select * From Competitions Where ID = " + number, "", texts);
      const auto results = static_cast<std::ptrdiff_t>(texts.size());
      AddRows(*store, "Select * From Results Where Competition = " + number, "", texts);
      // They have no numbers, and come in the order of their places in the file.
      std::sort(texts.begin() + results, texts.end());
      AddRows(*store, "Select * From MasterPoints Where CompetitionID = " + number + " Order By ID", kAwardNumber,
              texts);
    }
  }
  return texts;
}

}  // namespace tavi::host
