#include "host/results/UsebioReader.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>
#include <tuple>

#include "host/results/Event.h"
#include "host/results/Xml.h"
#include "platform/values/Convert.h"
#include "platform/values/Error.h"
#include "platform/values/Text.h"
#include "util/TextHelpers.h"

// From the elements of a result file to events. Writers differ in nearly everything, whatever version a file claims to
// have: leaves stand in any order, and most of them may be missing or empty. So each is looked for by name at its own
// place, never all over the file (TEAM, BOARD and CLUB_ID_NUMBER mean two things each), and what is there decides.
//
// An event is read in this order, because each step needs what the one before it found:
//   header        name, day, kind and way of scoring, which decide what is expected of the contestants
//   sections      contestants with their results, players and awards; for pairs also what the travellers say of them
//   numbers       the key of a contestant is session, section, number and direction; twice the same is a contradiction
//   percentages   whether handicaps are in the printed figures, found out by the travellers
// Everything is read before anything is stored: what is refused at the end of a file has changed nothing.
namespace tavi::host {
namespace {

// Bounds that no event of a club reaches: a file beyond them is damaged, or made to harm.
constexpr std::size_t kMaximumContestants = 2000;
constexpr std::size_t kMaximumNameLength = 100;
// Hundredths of a point. No award comes near it.
constexpr int kMaximumAward = 32767;

/// A part of an event that has its own list of contestants, and its travellers.
struct SectionPart {
  const XmlElement* node;
  int session = 1;
  std::string name;
};

/// Whether an event's type is made of words that are known: PAIRS, MP_PAIRS, SWISS_TEAMS, BUTLER_IMPS and so on.
/// Older versions have a list of types, later ones shorter words with the way of scoring elsewhere; both occur in one
/// version. So the words are what is known, and a new combination of known ones passes.
bool IsKnownType(const std::string& type) {
  static constexpr std::array kWords = {
      "PAIR",   "PAIRS",      "TEAM",  "TEAMS", "INDIVIDUAL", "INDIVIDUALS", "SWISS",     "MP",    "MATCH", "POINT",
      "POINTS", "MATCHPOINT", "CROSS", "IMP",   "IMPS",       "BUTLER",      "AGGREGATE", "VP",    "OF",    "FOUR",
      "FOURS",  "MULTIPLE",   "ROUND", "ROBIN", "KNOCKOUT",   "MATCHPOINTS", "MITCHELL",  "HOWELL"};
  const std::vector<std::string> words = Split(ReplaceAll(ReplaceAll(type, "-", "_"), " ", "_"), '_');
  return std::ranges::all_of(words, [](const std::string& word) { return std::ranges::count(kWords, word) > 0; });
}

/// A national number, or empty for the figures that writers put where there is none.
/// Some writers put 0 or 1, and a guide for converting tells users to enter 88888888. Taken for numbers, these would
/// make one person of all visitors. WithoutLeadingZeros makes nothing of zeros.
std::string NationalNumber(const std::string& written) {
  const std::string number = WithoutLeadingZeros(written);
  return number == "1" || number == "88888888" ? std::string() : number;
}

/// Reads one event. An object reads once: what it has found is moved out at the end. Refusals name the line at which
/// the thing in question begins.
class EventReader {
 public:
  EventReader(const XmlDocument& document, const XmlElement& node) : document_(document), node_(node) {}

  Event Read() {
    ReadHeader();
    ReadSections();
    if (event_.contestants.empty())
      document_.Refuse(node_, "the event lists nobody; expected PARTICIPANTS with results");
    RequireNumbersOnce();
    // Teams have victory points; no percentage of theirs is stored.
    if (event_.kind != Event::Kind::Teams) SettlePercentages();
    RequireAllOrNoPercentages();
    CountTables();
    return std::move(event_);
  }

 private:
  void ReadHeader() {
    event_.name = document_.Leaf(node_, "EVENT_DESCRIPTION");
    if (event_.name.empty()) event_.name = document_.Leaf(node_, "TITLE");
    event_.date = document_.RequiredDate(node_, "DATE");
    const std::string type = UpperCase(TidyText(node_.Attribute("EVENT_TYPE")));
    if (!type.empty() && !IsKnownType(type)) {
      document_.Refuse(node_, "EVENT_TYPE is \"" + type +
                                  "\", which is no kind of event that is known; expected PAIRS, INDIVIDUAL, TEAMS, or "
                                  "one of them with a way of scoring, such as MP_PAIRS, SWISS_PAIRS or SWISS_TEAMS");
    }
    // TEAM before INDIVIDUAL, and pairs where neither is said: without a type a file is of pairs.
    event_.kind = type.find("TEAM") != std::string::npos         ? Event::Kind::Teams
                  : type.find("INDIVIDUAL") != std::string::npos ? Event::Kind::Individual
                                                                 : Event::Kind::Pairs;
    event_.swiss = type.find("SWISS") != std::string::npos;
    event_.scoring = ScoringOf(type);
    // Absent means one winner.
    event_.winners = document_.Leaf(node_, "WINNER_TYPE") == "2" ? 2 : 1;
    if (event_.name.empty()) {
      event_.name = event_.kind == Event::Kind::Teams        ? "Teams"
                    : event_.kind == Event::Kind::Individual ? "Individual"
                                                             : "Pairs";
      event_.remarks.push_back("the event has no name; it is stored as \"" + event_.name + "\"");
    }
  }

  /// The element of later versions first, else the type of older ones, in which MP_PAIRS and BUTLER_PAIRS say it. A
  /// bare PAIRS or INDIVIDUAL means match points, as clubs play them; of teams and Swiss events a bare type says
  /// nothing.
  [[nodiscard]] Event::Scoring ScoringOf(const std::string& type) const {
    std::string method = UpperCase(document_.Leaf(node_, "BOARD_SCORING_METHOD"));
    if (method.empty()) method = type;
    if (method.find("CROSS_IMP") != std::string::npos || method == "CROSS IMPS") return Event::Scoring::CrossImps;
    if (method.find("BUTLER") != std::string::npos) return Event::Scoring::ButlerImps;
    if (method == "AGGREGATE") return Event::Scoring::Aggregate;
    if (method.find("MATCH") != std::string::npos || method == "MP_PAIRS") return Event::Scoring::MatchPoints;
    const bool typeOnly = method == type;
    if (typeOnly && event_.kind != Event::Kind::Teams && !event_.swiss) return Event::Scoring::MatchPoints;
    return Event::Scoring::Other;
  }

  /// Contestants lie in one of three shapes: in sessions, in sections directly below the event, or directly in the
  /// event. Without any session the event is one.
  void ReadSections() {
    std::vector<SectionPart> parts;
    int session = 0;
    for (const XmlElement* child : node_.Children("SESSION")) AddParts(*child, ++session, parts);
    if (session == 0) AddParts(node_, session = 1, parts);
    event_.sessions = session;
    for (const SectionPart& part : parts) ReadSection(part);
  }

  /// The places below an event or a session that hold contestants, those directly in it being a section without a name.
  static void AddParts(const XmlElement& parent, int session, std::vector<SectionPart>& parts) {
    if (parent.Child("PARTICIPANTS") != nullptr) parts.push_back({&parent, session, ""});
    for (const XmlElement* section : parent.Children("SECTION")) {
      parts.push_back({section, session, TidyText(section->Attribute("SECTION_ID"))});
    }
  }

  /// Reads the contestants of one part, and what its travellers make of them. rawPercentages_ gets one entry for each
  /// contestant of a pairs event, in their order, so that both lists go together by position.
  void ReadSection(const SectionPart& part) {
    const std::size_t first = event_.contestants.size();
    for (const XmlElement* participants : part.node->Children("PARTICIPANTS")) {
      for (const XmlElement& child : participants->children) ReadContestant(child, part);
    }
    if (event_.kind != Event::Kind::Pairs) return;
    const Travellers travellers(document_, *part.node);
    // Pointers into the event's list, which does not grow until the next section.
    std::vector<const Contestant*> listed;
    for (std::size_t i = first; i < event_.contestants.size(); ++i) listed.push_back(&event_.contestants[i]);
    travellers.RequireListedPairs(document_, listed);
    for (const Contestant* contestant : listed) rawPercentages_.push_back(travellers.Percentage(*contestant));
  }

  /// One PAIR, TEAM or PLAYER; other children of PARTICIPANTS are passed over.
  void ReadContestant(const XmlElement& node, const SectionPart& part) {
    const std::string& kind = node.name;
    if (kind != "PAIR" && kind != "TEAM" && kind != "PLAYER") return;
    if (event_.contestants.size() == kMaximumContestants) {
      document_.Refuse(node,
                       "more than " + std::to_string(kMaximumContestants) + " contestants; this is no club event");
    }
    Contestant contestant;
    contestant.line = node.line;
    contestant.session = part.session;
    contestant.section = part.name;
    ReadNumber(node, kind, contestant);
    ReadResult(node, contestant);
    ReadAwards(node, contestant);
    if (kind == "PLAYER") {
      contestant.players.push_back(ReadPlayer(node));
    } else {
      ReadPlayers(node, contestant);
    }
    CheckPlayers(node, kind, contestant);
    event_.contestants.push_back(std::move(contestant));
  }

  void ReadNumber(const XmlElement& node, const std::string& kind, Contestant& contestant) const {
    if (kind == "TEAM") {
      // A team's number is an attribute and has no direction.
      contestant.number = TidyText(node.Attribute("TEAM_ID"));
    } else {
      const char* element = kind == "PAIR" ? "PAIR_NUMBER" : "PLAYER_NUMBER";
      const std::string written = document_.Leaf(node, element);
      contestant.number = PlainPairNumber(written);
      contestant.direction = UpperCase(document_.Leaf(node, "DIRECTION"));
      // Some writers give one number to a pair of each direction and join the direction to it ("7NS").
      if (contestant.direction.empty()) contestant.direction = DirectionInPairNumber(written);
    }
    if (contestant.number.empty()) document_.Refuse(node, "a " + kind + " has no number; expected one");
  }

  /// A place may be missing, 0 or no number at all, since nothing is computed of it; "3=" is a shared third. A
  /// percentage out of its range is refused, because it would become somebody's handicap.
  void ReadResult(const XmlElement& node, Contestant& contestant) const {
    std::string place = document_.Leaf(node, "PLACE");
    contestant.tied = place.ends_with("=");
    if (contestant.tied) place.pop_back();
    const bool isNumber =
        !place.empty() && place.size() < 6 && place.find_first_not_of("0123456789") == std::string::npos;
    if (isNumber && std::stoi(place) > 0) contestant.place = std::stoi(place);
    contestant.printedPercentage = document_.Number(node, "PERCENTAGE", true);
    if (contestant.printedPercentage &&
        (*contestant.printedPercentage < 0.0 || *contestant.printedPercentage > 100.0)) {
      document_.Refuse(*node.Child("PERCENTAGE"),
                       "PERCENTAGE is " + document_.Leaf(node, "PERCENTAGE") + "; expected 0 to 100");
    }
    contestant.total = document_.Number(node, "TOTAL_SCORE", true);
    contestant.handicap = document_.Number(node, "HANDICAP", true);
  }

  /// Awards are elements of their own, or in older files two leaves of the contestant itself. Where both are there, the
  /// elements count.
  void ReadAwards(const XmlElement& node, Contestant& contestant) const {
    bool nested = false;
    for (const XmlElement* award : node.Children("MASTER_POINTS")) {
      nested = true;
      AddAward(*award, contestant);
    }
    if (!nested) AddAward(node, contestant);
  }

  void AddAward(const XmlElement& parent, Contestant& contestant) const {
    const std::optional<int> hundredths = document_.Whole(parent, "MASTER_POINTS_AWARDED");
    // Absent, empty and 0 all mean that nothing was won.
    if (!hundredths || *hundredths == 0) return;
    if (*hundredths > kMaximumAward) {
      document_.Refuse(*parent.Child("MASTER_POINTS_AWARDED"), "MASTER_POINTS_AWARDED is " +
                                                                   std::to_string(*hundredths) +
                                                                   "; expected hundredths of a point, at most 32767");
    }
    std::string colour = document_.Leaf(parent, "MASTER_POINT_TYPE");
    // Older files name the colour once, for the whole event.
    if (colour.empty()) colour = document_.Leaf(node_, "MASTER_POINT_TYPE");
    contestant.awards.push_back({*hundredths / 100.0, ColourCode(colour)});
  }

  /// The players of a pair; those of a team in it directly or in pairs of their own.
  void ReadPlayers(const XmlElement& node, Contestant& contestant) const {
    for (const XmlElement& child : node.children) {
      const std::string& name = child.name;
      if (name == "PLAYER") AddPlayerOnce(ReadPlayer(child), contestant);
      if (name == "PAIR") {
        for (const XmlElement* player : child.Children("PLAYER")) AddPlayerOnce(ReadPlayer(*player), contestant);
      }
    }
  }

  /// In teams one person can stand in several pairs.
  void AddPlayerOnce(EventPlayer player, Contestant& contestant) const {
    const bool known = event_.kind == Event::Kind::Teams &&
                       std::any_of(contestant.players.begin(), contestant.players.end(), [&](const EventPlayer& other) {
                         return other.name == player.name && other.nationalNumber == player.nationalNumber;
                       });
    if (!known) contestant.players.push_back(std::move(player));
  }

  [[nodiscard]] EventPlayer ReadPlayer(const XmlElement& node) const {
    EventPlayer player;
    player.name = document_.Leaf(node, "PLAYER_NAME");
    // Some writers put a code behind the name, after a number sign.
    player.name = Trim(player.name.substr(0, player.name.find('#')));
    if (TextLength(player.name) > kMaximumNameLength) {
      document_.Refuse(node, "a player's name is longer than 100 characters; expected a name");
    }
    player.nationalNumber = NationalNumber(document_.Leaf(node, "NATIONAL_ID_NUMBER"));
    player.clubNumber = WithoutLeadingZeros(document_.Leaf(node, "CLUB_ID_NUMBER"));
    return player;
  }

  /// Of a player at least a name or a number is needed to know him by. A pair of one is refused; of three, one was
  /// replaced during the event, and the first two are taken, which the person who scores is told.
  void CheckPlayers(const XmlElement& node, const std::string& kind, const Contestant& contestant) {
    for (const EventPlayer& player : contestant.players) {
      if (player.name.empty() && player.nationalNumber.empty()) {
        document_.Refuse(
            node, "a player of " + kind + " " + contestant.number + " has neither name nor number; expected one");
      }
    }
    if (kind != "PAIR") return;
    if (contestant.players.size() < 2) {
      document_.Refuse(node, "pair " + contestant.number + " has " + std::to_string(contestant.players.size()) +
                                 " players; expected two");
    }
    if (contestant.players.size() > 2) {
      event_.remarks.push_back("pair " + contestant.number + " has " + std::to_string(contestant.players.size()) +
                               " players; the result is stored for the first two, " + contestant.players[0].name +
                               " and " + contestant.players[1].name);
    }
  }

  // Two sections may each have a pair 7, and so may both directions; the same in all four is a file that was put
  // together wrongly, and nobody could say whose result is whose.
  void RequireNumbersOnce() const {
    std::set<std::tuple<int, std::string, std::string, std::string>> seen;
    for (const Contestant& contestant : event_.contestants) {
      if (!seen.emplace(contestant.session, contestant.section, contestant.number, contestant.direction).second) {
        RefuseContestant(contestant,
                         "number " + contestant.number + " is given to two contestants; expected each number once");
      }
    }
  }

  /// By the line, because a contestant that has been read no longer has its element.
  [[noreturn]] void RefuseContestant(const Contestant& contestant, const std::string& reason) const {
    document_.RefuseLine(contestant.line, reason);
  }

  /// There is no convention: some files print the raw score with a handicap of 0 throughout, some add half the handicap
  /// to it. A handicap that is calculated here must come from the raw score, or it would count twice. Finds out whether
  /// the file's handicaps are already in the printed percentages, by the travellers.
  void SettlePercentages() {
    const bool handicapped = std::any_of(event_.contestants.begin(), event_.contestants.end(),
                                         [](const Contestant& c) { return c.handicap.value_or(0.0) != 0.0; });
    const double share = handicapped ? HandicapShare() : 0.0;
    for (Contestant& contestant : event_.contestants) {
      contestant.actualPercentage = contestant.printedPercentage;
      if (contestant.printedPercentage && share > 0.0) {
        const double raw = *contestant.printedPercentage - share * contestant.handicap.value_or(0.0);
        // Four decimals, without the noise of binary fractions. At the ends of the scale, taking out the handicap may
        // lead a little beyond what can be scored.
        contestant.actualPercentage = std::clamp(RoundDecimalHalfEven(raw, 4), 0.0, 100.0);
      }
    }
  }

  /// Each share is tried, and the one whose raw scores are nearest to those of the travellers wins. Printed figures
  /// differ from travellers by some tenths anyway, so only the sums are compared, and the smaller share stays where two
  /// are equal. How much of the handicap was added to the printed percentages: 0, 1/2 or 1.
  double HandicapShare() {
    double best = 0.0;
    double bestDifference = -1.0;
    for (const double share : {0.0, 0.5, 1.0}) {
      const double difference = DifferenceFromTravellers(share);
      if (difference >= 0.0 && (bestDifference < 0.0 || difference < bestDifference - 1e-9)) {
        best = share;
        bestDifference = difference;
      }
    }
    if (bestDifference < 0.0) {
      event_.remarks.emplace_back(
          "the file has handicaps but no travellers; the printed percentages are taken as the actual scores");
    } else if (best > 0.0) {
      event_.remarks.push_back(std::string("the printed percentages hold ") + (best == 1.0 ? "the" : "half the") +
                               " handicap; it was taken out again to get the actual scores");
    }
    return best;
  }

  /// Sum of the differences between travellers and printed percentages less a share of the handicap; -1 without any.
  [[nodiscard]] double DifferenceFromTravellers(double share) const {
    double sum = -1.0;
    for (std::size_t i = 0; i < event_.contestants.size() && i < rawPercentages_.size(); ++i) {
      const Contestant& contestant = event_.contestants[i];
      if (!rawPercentages_[i] || !contestant.printedPercentage) continue;
      const double raw = *contestant.printedPercentage - share * contestant.handicap.value_or(0.0);
      sum = std::max(sum, 0.0) + std::abs(raw - *rawPercentages_[i]);
    }
    return sum;
  }

  // Teams have none. Pairs that are scored by IMPs may have none either, but then nobody: one pair without a result in
  // a list of results would be stored as if it had not played.
  void RequireAllOrNoPercentages() const {
    if (event_.kind == Event::Kind::Teams) return;
    const bool any = std::any_of(event_.contestants.begin(), event_.contestants.end(),
                                 [](const Contestant& c) { return c.printedPercentage.has_value(); });
    const bool expected = any || (event_.scoring == Event::Scoring::MatchPoints && !event_.swiss);
    if (!expected) return;
    for (const Contestant& contestant : event_.contestants) {
      if (!contestant.printedPercentage) {
        RefuseContestant(contestant,
                         "number " + contestant.number + " has no PERCENTAGE; expected one for every contestant");
      }
    }
  }

  /// By the pairs, or the single players, of the first session; half a table counts as one, where a pair sat out.
  void CountTables() {
    const auto inFirstSession = std::count_if(event_.contestants.begin(), event_.contestants.end(),
                                              [](const Contestant& c) { return c.session == 1; });
    const int contestants = static_cast<int>(inFirstSession);
    const int perTable = event_.kind == Event::Kind::Individual ? 4 : 2;
    event_.tables = (contestants + perTable - 1) / perTable;
  }

  const XmlDocument& document_;
  const XmlElement& node_;
  Event event_;
  std::vector<std::optional<double>> rawPercentages_;  // by contestant, of pairs events
};

/// Two events of one name and day would be one competition; the later ones get a number behind the name.
/// In the order of the file, so that scoring the file again gives the same names.
void TellApart(std::vector<Event>& events) {
  for (std::size_t i = 0; i < events.size(); ++i) {
    int same = 1;
    for (std::size_t before = 0; before < i; ++before) {
      if (events[before].date == events[i].date && EqualIgnoringCase(events[before].name, events[i].name)) ++same;
    }
    if (same == 1) continue;
    events[i].name += " (" + std::to_string(same) + ")";
    events[i].remarks.push_back("another event of this name and day is in the file; this one is stored as \"" +
                                events[i].name + "\"");
  }
}

}  // namespace

std::vector<Event> ReadUsebio(std::string_view bytes, const std::string& fileName) {
  // Asked of the bytes, since an empty file has no encoding that could be told.
  if (TidyText(bytes).empty()) {
    throw Error(ErrorNumber::InvalidArgument, "tavi",
                fileName + ":1: the file is empty; expected a USEBIO result file");
  }
  const XmlDocument document(DecodeXml(bytes, fileName), fileName);
  const std::string& root = document.Root().name;
  // Such as the web page of the results, saved in place of the file.
  if (root != "USEBIO") document.Refuse(document.Root(), "the root element is " + TidyText(root) + "; expected USEBIO");
  std::vector<Event> events;
  for (const XmlElement* node : document.Root().Children("EVENT"))
    events.push_back(EventReader(document, *node).Read());
  if (events.empty()) document.Refuse(document.Root(), "there is no EVENT in the file; expected one at least");
  TellApart(events);
  return events;
}

std::vector<Event> ReadUsebioFile(const std::string& path) {
  return ReadUsebio(ReadWholeFile(path), path);
}

}  // namespace tavi::host
