#include "handicaps/PlainRule.h"

#include <algorithm>
#include <functional>

namespace tavi::testing {
namespace {

using Results = std::vector<PlainClub::Result>;

class Rule {
 public:
  Rule(const PlainClub& club, const PlainQuestion& question) : club_(club), question_(question) {}

  PlainAnswer Answer() const {
    const int partner = question_.individual ? -1 : question_.partner;
    const double unknown = club_.settings.unknown;
    if (question_.player == -1 && partner == -1) return {unknown, unknown, unknown};

    const bool twoPlayers = question_.player != -1 && partner != -1;
    const std::optional<double> pairSeed = twoPlayers ? PairSeed(question_.player, partner) : std::nullopt;
    const std::vector<double> first = Entries(question_.player, pairSeed);
    const std::vector<double> second = Entries(partner, pairSeed);
    PlainAnswer answer;
    answer.player1 = Mean(first, question_.player);
    answer.player2 = Mean(second, partner);
    if (question_.individual) {
      answer.pair = answer.player1;
      return answer;
    }
    answer.pair = (answer.player1 + answer.player2) / 2.0;
    if (twoPlayers && club_.settings.weighting != 50) answer.pair = Blended(answer.pair, pairSeed);
    if (IsActivePair(question_.player, partner)) {
      answer.pair = answer.pair * club_.settings.multiplier + club_.settings.add;
    }
    return answer;
  }

 private:
  bool InRange(int day) const {
    const int end = question_.day.value_or(club_.today);
    if (club_.settings.weeks >= 1 && day < end - 7 * club_.settings.weeks) return false;
    return !question_.day || day <= *question_.day;
  }

  bool Counts(const PlainClub::Result& result) const {
    const auto& competition = club_.competitions[static_cast<std::size_t>(result.competition)];
    const bool isScored = question_.day && competition.day == *question_.day && competition.name == question_.name &&
                          competition.individual == question_.individual;
    return competition.counts && InRange(competition.day) && !isScored;
  }

  int DayOf(const PlainClub::Result& result) const {
    return club_.competitions[static_cast<std::size_t>(result.competition)].day;
  }

  /// The latest results that fit; all of the day on which the limit falls.
  Results Latest(const std::function<bool(const PlainClub::Result&)>& fits) const {
    Results found;
    for (const auto& result : club_.results) {
      if (fits(result) && Counts(result)) found.push_back(result);
    }
    const auto limit = static_cast<std::size_t>(club_.settings.results);
    if (limit == 0 || found.size() <= limit) return found;
    std::vector<int> days;
    for (const auto& result : found) days.push_back(DayOf(result));
    std::sort(days.rbegin(), days.rend());
    const int lastDay = days[limit - 1];
    std::erase_if(found, [&](const auto& result) { return DayOf(result) < lastDay; });
    return found;
  }

  std::optional<double> UsableSeed(const std::optional<PlainClub::Seed>& seed) const {
    if (!seed || seed->percentage <= 0.0 || !InRange(seed->day)) return std::nullopt;
    return seed->percentage;
  }

  std::optional<double> PairSeed(int player, int partner) const {
    for (const auto& pair : club_.pairs) {
      if (pair.lower == std::min(player, partner) && pair.higher == std::max(player, partner)) {
        return UsableSeed(pair.seed);
      }
    }
    return std::nullopt;
  }

  /// What a player's average is taken over: results, and a seed while there is room for it.
  std::vector<double> Entries(int player, const std::optional<double>& pairSeed) const {
    std::vector<double> entries;
    if (player == -1) return entries;
    for (const auto& result : Latest([&](const auto& one) { return one.player == player || one.partner == player; })) {
      entries.push_back(result.percentage);
    }
    std::optional<double> seed = pairSeed;
    const bool isMember = player >= 1 && static_cast<std::size_t>(player) <= club_.memberSeeds.size();
    if (!seed && isMember) seed = UsableSeed(club_.memberSeeds[static_cast<std::size_t>(player) - 1]);
    if (seed && entries.size() + 1 <= static_cast<std::size_t>(club_.settings.results)) entries.push_back(*seed);
    return entries;
  }

  double Mean(const std::vector<double>& entries, int player) const {
    if (entries.empty()) return player == -1 ? club_.settings.unknown : 50.0;
    double sum = 0.0;
    for (const double entry : entries) sum += entry;
    return sum / static_cast<double>(entries.size());
  }

  bool AreTogether(const PlainClub::Result& result) const {
    return (result.player == question_.player && result.partner == question_.partner) ||
           (result.player == question_.partner && result.partner == question_.player);
  }

  double Blended(double gross, const std::optional<double>& pairSeed) const {
    const auto limit = static_cast<std::size_t>(club_.settings.results);
    std::vector<double> joint;
    for (const auto& result : Latest([&](const auto& one) { return AreTogether(one); })) {
      joint.push_back(result.percentage);
    }
    if (pairSeed && (limit == 0 || joint.size() < limit)) joint.push_back(*pairSeed);
    if (joint.empty()) return gross;
    const double together = Mean(joint, 0);
    // Results of anybody's, or seeds of a player's own (which a pair seed rules out), besides the pair seed.
    const auto has = [&](int player) {
      return !Latest([&](const auto& one) { return one.player == player || one.partner == player; }).empty() ||
             (!pairSeed && !Entries(player, pairSeed).empty());
    };
    if (club_.settings.weighting == 100 || (!has(question_.player) && !has(question_.partner))) return together;
    return gross + (together - gross) * (club_.settings.weighting - 50) / 50.0;
  }

  bool IsActivePair(int player, int partner) const {
    return std::any_of(club_.pairs.begin(), club_.pairs.end(), [&](const auto& pair) {
      return pair.active && pair.lower == std::min(player, partner) && pair.higher == std::max(player, partner);
    });
  }

  const PlainClub& club_;
  const PlainQuestion& question_;
};

}  // namespace

PlainAnswer HandicapsByTheRule(const PlainClub& club, const PlainQuestion& question) {
  return Rule(club, question).Answer();
}

}  // namespace tavi::testing
