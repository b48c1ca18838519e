#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/values/Date.h"

namespace tavi::host {

/// A person as a result file names one.
struct EventPlayer {
  std::string name;            ///< as written, tidied
  std::string nationalNumber;  ///< the union's number without leading zeros; empty when there is none
  std::string clubNumber;      ///< the number in some club, perhaps another one; empty when there is none
};

/// Master points that a contestant's players each receive.
struct Award {
  double points = 0.0;      ///< 0.24 for 24 hundredths
  std::int32_t colour = 0;  ///< see ColourCode
};

/// The code of a master-point colour: black (and anything unknown) 0, green 1, red 2, blue 3, gold 4.
std::int32_t ColourCode(const std::string& name);

/// One pair, player or team of an event, with its result.
struct Contestant {
  std::size_t line = 0;   ///< in the file, for messages
  int session = 1;        ///< counted from 1
  std::string section;    ///< empty when the event has none
  std::string number;     ///< as written, without direction and section
  std::string direction;  ///< "NS", "EW" or empty
  std::optional<int> place;
  bool tied = false;
  std::optional<double> printedPercentage;
  std::optional<double> actualPercentage;  ///< before any handicap that the file applied
  std::optional<double> total;
  std::optional<double> handicap;  ///< as the file has it
  std::vector<EventPlayer> players;
  std::vector<Award> awards;
};

/// One event of a result file.
struct Event {
  enum class Kind { Pairs, Individual, Teams };
  enum class Scoring { MatchPoints, CrossImps, ButlerImps, Aggregate, Other };

  std::string name;
  Date date;
  Kind kind = Kind::Pairs;
  Scoring scoring = Scoring::MatchPoints;
  bool swiss = false;
  int winners = 1;
  int tables = 0;
  int sessions = 1;
  std::vector<Contestant> contestants;  ///< in the file's order
  std::vector<std::string> remarks;     ///< what the reader assumed or left out, for the person who scores

  /// True when every contestant has a percentage to store.
  [[nodiscard]] bool HasPercentages() const;
};

}  // namespace tavi::host
