#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/results/Xml.h"
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

/// What the travellers (score slips) of one section say of its pairs. The document outlives this object.
class Travellers {
 public:
  /// Reads the boards below a section (or event). A line that has no match points counts for nobody's score.
  Travellers(const XmlDocument& document, const XmlElement& section);

  /// True when there is any line that names two pairs.
  [[nodiscard]] bool Any() const { return !lines_.empty(); }
  /// Raises InvalidArgument when a line names a pair that is not among the contestants of its section.
  void RequireListedPairs(const XmlDocument& document, const std::vector<const Contestant*>& contestants) const;
  /// The percentage of the available match points that a pair scored; nothing without a line that has match points.
  [[nodiscard]] std::optional<double> Percentage(const Contestant& contestant) const;

 private:
  struct Line {
    const XmlElement* node = nullptr;
    std::string northSouth;
    std::string eastWest;
    std::optional<double> northSouthPoints;
    std::optional<double> eastWestPoints;
  };
  std::vector<Line> lines_;
};

/// A pair number as travellers and rankings may both write it: without blanks, a section in front and a direction
/// behind ("(B) 7 NS" is "7").
std::string PlainPairNumber(const std::string& written);
/// The direction that a pair number carries behind it ("NS", "EW"), or the empty text.
std::string DirectionInPairNumber(const std::string& written);

}  // namespace tavi::host
