#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "host/results/Event.h"
#include "host/scoring/MemberDirectory.h"

namespace tavi::host {

/// A contestant with who its players are and what became of its result.
struct ScoredContestant {
  Contestant contestant;
  std::vector<ResolvedPlayer> players;
  std::string name;                      ///< as shown in a ranking
  std::optional<double> handicapBefore;  ///< of the pair or player, without this event
  std::optional<double> net;             ///< actual percentage - handicap before + 50
  std::optional<double> handicapAfter;   ///< with this event
};

/// An event ready to be stored, or stored.
struct ScoredEvent {
  Event event;
  std::int32_t competition = 0;  ///< the identifier once stored
  bool countsForHandicaps = false;
  std::vector<ScoredContestant> contestants;  ///< sorted by session, direction (of two winners) and place
};

/// Records events through the public class as a careful caller does: everything is checked first; the competition is
/// registered; all results are noted before any award is passed, because noting one clears that player's earlier
/// awards; all is one transaction. The file stays open.
class EveningScorer {
 public:
  EveningScorer(MembershipDatabase& database, MemberDirectory& directory)
      : database_(database), directory_(directory) {}

  /// Recognises the players. Raises InvalidArgument ("FILE:LINE: ...") when one stands twice in a session; nothing has
  /// been stored then. A visitor is known by the national number: visitors of one name, without numbers or with
  /// different ones, are different people.
  [[nodiscard]] ScoredEvent Prepare(Event event, const std::string& fileName);
  /// Stores prepared events as one, replacing what an earlier scoring of them stored: all of them, or, when an error
  /// passes, nothing. Events that are there already just so are left as they are.
  void Store(std::vector<ScoredEvent>& events);

 private:
  void RequireEverybodyOnce(const ScoredEvent& scored, const std::string& fileName) const;
  void StoreOne(ScoredEvent& scored);
  void Register(ScoredEvent& scored);
  void FindHandicapsBefore(ScoredEvent& scored);
  void NoteResults(const ScoredEvent& scored);
  void PassAwards(const ScoredEvent& scored);
  void FindHandicapsAfter(ScoredEvent& scored);

  MembershipDatabase& database_;
  MemberDirectory& directory_;
};

/// A competition's name as it can be found again: without line breaks and percent signs, blanks folded and trimmed.
std::string StorableCompetitionName(const std::string& name);

/// What the open file of the calling thread holds of some events: their competitions, results and awards as texts to
/// compare, empty where none of the events is there. The numbers of the awards are left out, because scoring an event
/// again gives new ones. So are handicaps: those of a pair are as they were at its last event, and scoring an earlier
/// one again would have later ones count.
[[nodiscard]] std::vector<std::string> ReadStoredEvents(const std::vector<ScoredEvent>& events);

}  // namespace tavi::host
