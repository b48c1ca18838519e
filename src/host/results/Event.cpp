#include "host/results/Event.h"

#include <algorithm>

#include "platform/values/Text.h"

// What an event is made of, whatever file it came from: codes, numbers of pairs, and travellers. Pairs are known by
// number and direction within their section. Writers put both into one text in several ways ("7NS", "7 NS", "(B) 7
// NS"), and may do so differently in the ranking and in the travellers, so both sides are brought to the plain number.
namespace tavi::host {

// By the first letters, because files write "Green", "GREEN" or a letter; green and gold need the second.
std::int32_t ColourCode(const std::string& name) {
  const std::string upper = UpperCase(name);
  if (upper.starts_with("G") && !upper.starts_with("GO")) return 1;
  if (upper.starts_with("R")) return 2;
  if (upper == "BLUE") return 3;
  if (upper.starts_with("GO")) return 4;
  return 0;
}

bool Event::HasPercentages() const {
  return std::all_of(contestants.begin(), contestants.end(),
                     [](const Contestant& contestant) { return contestant.actualPercentage.has_value(); });
}

namespace {

/// Whether a contestant is the pair of this number on this side. One without a direction sits on either, as in an event
/// with one winner, where pairs change sides.
bool IsSide(const Contestant& contestant, const std::string& number, const char* direction) {
  return contestant.number == number && (contestant.direction.empty() || contestant.direction == direction);
}

/// "(B) 7" is 7: the section is known already by the element that the pair stands in.
std::string WithoutSection(const std::string& written) {
  const std::size_t close = written.find(')');
  return written.starts_with("(") && close != std::string::npos ? Trim(written.substr(close + 1)) : Trim(written);
}

}  // namespace

std::string DirectionInPairNumber(const std::string& written) {
  const std::string upper = UpperCase(Trim(written));
  // More than two characters: a direction alone would leave no number.
  if (upper.size() > 2 && upper.ends_with("NS")) return "NS";
  if (upper.size() > 2 && upper.ends_with("EW")) return "EW";
  return {};
}

std::string PlainPairNumber(const std::string& written) {
  std::string number = WithoutSection(written);
  if (!DirectionInPairNumber(number).empty()) number = Trim(number.substr(0, number.size() - 2));
  // Leading zeros come and go; a number of zeros only stays, since it would be none without them.
  const std::size_t digit = number.find_first_not_of('0');
  return digit == std::string::npos || digit == 0 ? number : number.substr(digit);
}

// A line that names only one pair is a sit-out, or belongs to an individual event, and says nothing of two pairs.
Travellers::Travellers(const XmlDocument& document, const XmlElement& section) {
  for (const XmlElement* board : section.Children("BOARD")) {
    for (const XmlElement* node : board->Children("TRAVELLER_LINE")) {
      Line line;
      line.node = node;
      line.northSouth = PlainPairNumber(document.Leaf(*node, "NS_PAIR_NUMBER"));
      line.eastWest = PlainPairNumber(document.Leaf(*node, "EW_PAIR_NUMBER"));
      line.northSouthPoints = document.Number(*node, "NS_MATCH_POINTS", true);
      line.eastWestPoints = document.Number(*node, "EW_MATCH_POINTS", true);
      if (!line.northSouth.empty() && !line.eastWest.empty()) lines_.push_back(std::move(line));
    }
  }
}

void Travellers::RequireListedPairs(const XmlDocument& document,
                                    const std::vector<const Contestant*>& contestants) const {
  const auto require = [&](const Line& line, const std::string& number, const char* direction) {
    const bool listed = std::any_of(contestants.begin(), contestants.end(), [&](const Contestant* contestant) {
      return IsSide(*contestant, number, direction);
    });
    if (!listed) {
      document.Refuse(*line.node, "a traveller names pair " + number + " sitting " + direction +
                                      ", which is not in the ranking; expected only pairs that are listed");
    }
  };
  for (const Line& line : lines_) {
    require(line, line.northSouth, "NS");
    require(line, line.eastWest, "EW");
  }
}

std::optional<double> Travellers::Percentage(const Contestant& contestant) const {
  double points = 0.0;
  double available = 0.0;
  for (const Line& line : lines_) {
    if (!line.northSouthPoints || !line.eastWestPoints) continue;
    const bool northSouth = IsSide(contestant, line.northSouth, "NS");
    const bool eastWest = IsSide(contestant, line.eastWest, "EW");
    if (!northSouth && !eastWest) continue;
    points += northSouth ? *line.northSouthPoints : *line.eastWestPoints;
    // What both sides got together is what there was to be had. The number of lines of a board would not do, because
    // sections may be scored across each other.
    available += *line.northSouthPoints + *line.eastWestPoints;
  }
  if (available <= 0.0) return std::nullopt;
  return 100.0 * points / available;
}

}  // namespace tavi::host
