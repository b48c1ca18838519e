#pragma once

#include <map>
#include <optional>
#include <string>

#include "host/results/Event.h"
#include "host/results/XmlDocument.h"

namespace tavi::host {

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
/// behind
/// ("(B) 7 NS" is "7").
std::string PlainPairNumber(const std::string& written);
/// The direction that a pair number carries behind it ("NS", "EW"), or the empty text.
std::string DirectionInPairNumber(const std::string& written);

}  // namespace tavi::host
