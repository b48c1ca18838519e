#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "host/commands/ClubCheck.h"
#include "host/commands/Commands.h"
#include "host/text/Table.h"
#include "names/MemberValues.h"
#include "names/NameMatching.h"
#include "names/NameText.h"

// Lists of members and pairs, made with the operations that every program has, and nothing else where they do. A walk
// (GetFirst..., GetNext...) is first made to its end, and what else is to be shown of each is asked for afterwards:
// walks close the file at their beginning and end, and around the many small questions OpenDatabase and CloseDatabase
// keep it open, which otherwise would be opened and closed for each.
namespace tavi::host {
namespace {

constexpr int kHandicapPlaces = 2;

// What the operations pass back of a pair.
struct WalkedPair {
  std::int32_t firstNumber = 0;
  std::string firstName;
  std::int32_t secondNumber = 0;
  std::string secondName;
  std::string pairName;
  std::string alternateName;
};

/// Calls `visit` for each member of a walk.
template <typename Visitor>
void WalkMembers(MembershipDatabase& club, std::int16_t nameFormat, const Visitor& visit) {
  std::int32_t number = 0;
  std::string name;
  double handicap = 0.0;
  for (bool more = club.GetFirstMember(number, name, handicap, nameFormat); more;
       more = club.GetNextMember(number, name, handicap, nameFormat)) {
    visit(number, name, handicap);
  }
}

/// The pairs of a walk, in its order. Its handicap is not used: IsRegularPair answers it with the rest.
std::vector<WalkedPair> WalkPairs(MembershipDatabase& club) {
  std::vector<WalkedPair> pairs;
  WalkedPair pair;
  double unused = 0.0;
  for (bool more = club.GetFirstPartnership(pair.firstNumber, pair.firstName, pair.secondNumber, pair.secondName,
                                            pair.pairName, pair.alternateName, unused, name_format::kFirstAndLast);
       more; more = club.GetNextPartnership(pair.firstNumber, pair.firstName, pair.secondNumber, pair.secondName,
                                            pair.pairName, pair.alternateName, unused, name_format::kFirstAndLast)) {
    pairs.push_back(pair);
  }
  return pairs;
}

Decimals Handicap(double value) {
  return {value, kHandicapPlaces};
}

/// A membership number; nothing for a row that has none.
/// Shown as nothing rather than as the number that stands for nobody.
Cell Number(std::int32_t number) {
  return number == kNoMember ? Cell() : Cell(std::int64_t{number});
}

/// A pair that does not say who plays, as far as it does.
struct ShownPair {
  Cell first;
  std::string firstName;
  Cell second;
  std::string secondName;
  std::string name;
  Cell handicap;
};

/// The names that can be found out for what is known of the pair.
ShownPair Shown(MembershipDatabase& club, const IncompletePair& pair) {
  const auto nameOf = [&club](const std::optional<std::int32_t>& number) {
    return number ? club.GetMemberName(*number, name_format::kFirstAndLast) : std::string();
  };
  ShownPair shown{Number(pair.first.value_or(kNoMember)),
                  nameOf(pair.first),
                  Number(pair.second.value_or(kNoMember)),
                  nameOf(pair.second),
                  pair.knownAs,
                  Cell()};
  // One of the names, as neither pair of them is whole.
  if (shown.name.empty()) shown.name = shown.firstName + shown.secondName;
  if (pair.handicap) shown.handicap = Handicap(*pair.handicap);
  return shown;
}

/// Adds a member who was found for a typed name, with the weight of the match and the reason for it.
void AddMatch(MembershipDatabase& club, const Context& context, const std::string& typed, std::int32_t number,
              Table& table) {
  std::string nationalNumber;
  const std::string name = club.GetNameAndEBUNumber(number, name_format::kFirstAndLast, nationalNumber);
  MemberName parts;
  // The weight is of the parts of the name as they are stored, not of the name as it is shown.
  nationalNumber = club.GetEBUNoAndNames(number, parts.first, parts.initials, parts.last);
  const NameMatch match = CompareNames(context.platform->nameKeyService, typed, parts);
  table.Add({std::int64_t{number}, name, nationalNumber, Handicap(club.GetHandicap(number)), std::int64_t{match.weight},
             match.reason});
}

}  // namespace

int ListMembers(const Context& context, bool all) {
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  club->IncludeInactiveMembers = all;
  struct Member {
    std::int32_t number;
    std::string name;
    double handicap;
    bool retired;
  };
  std::vector<Member> members;
  WalkMembers(*club, name_format::kSurnameFirst, [&](std::int32_t number, const std::string& name, double handicap) {
    // Retired tells of the member where the walk is, so it is asked on the way.
    members.push_back({number, name, handicap, club->Retired()});
  });
  Table table({"Number", "Name", "EBU number", "Handicap", "Active"});
  club->OpenDatabase();
  for (const Member& member : members) {
    std::string first;
    std::string initials;
    std::string last;
    const std::string nationalNumber = club->GetEBUNoAndNames(member.number, first, initials, last);
    // A row without a number is shown all the same: the list is where somebody would notice it.
    table.Add({Number(member.number), member.name, nationalNumber, Handicap(member.handicap), !member.retired});
  }
  club->CloseDatabase();
  context.Write(table);
  return kSucceeded;
}

int ListPairs(const Context& context, bool all) {
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  club->IncludeInactiveMembers = all;
  const std::vector<WalkedPair> pairs = WalkPairs(*club);
  Table table({"First", "First player", "Second", "Second player", "Pair", "Handicap", "Active"});
  club->OpenDatabase();
  for (const WalkedPair& pair : pairs) {
    std::string alias;
    double handicap = 0.0;
    const bool active = club->IsRegularPair(pair.firstNumber, pair.secondNumber, alias, handicap);
    table.Add({std::int64_t{pair.firstNumber}, pair.firstName, std::int64_t{pair.secondNumber}, pair.secondName,
               // Of an inactive pair IsRegularPair tells 50, which stands for none.
               pair.pairName, active ? Cell(Handicap(handicap)) : Cell(), active});
  }
  // Those without a number stand at the end: walks pass them over, and nobody would know of them.
  for (const IncompletePair& pair : IncompletePairs(context, club->DatabaseFileName())) {
    if (!pair.active && !all) continue;
    const ShownPair shown = Shown(*club, pair);
    table.Add({shown.first, shown.firstName, shown.second, shown.secondName, shown.name,
               pair.active ? shown.handicap : Cell(), pair.active});
  }
  club->CloseDatabase();
  context.Write(table);
  return kSucceeded;
}

int ListHandicaps(const Context& context, bool recalculate) {
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  if (recalculate) {
    // Closed before the lists are made: what they show is in the file.
    club->RecalculateAllHandicaps();
    club->CloseDatabase();
  }
  Table table({"Kind", "Number", "Partner", "Name", "Handicap"});
  WalkMembers(*club, name_format::kFirstAndLast, [&](std::int32_t number, const std::string& name, double handicap) {
    table.Add({std::string("member"), Number(number), Cell(), name, Handicap(handicap)});
  });
  const std::vector<WalkedPair> pairs = WalkPairs(*club);
  club->OpenDatabase();
  for (const WalkedPair& pair : pairs) {
    std::string alias;
    double handicap = 0.0;
    club->IsRegularPair(pair.firstNumber, pair.secondNumber, alias, handicap);
    table.Add({std::string("pair"), std::int64_t{pair.firstNumber}, std::int64_t{pair.secondNumber}, pair.pairName,
               Handicap(handicap)});
  }
  for (const IncompletePair& pair : IncompletePairs(context, club->DatabaseFileName())) {
    if (!pair.active) continue;
    const ShownPair shown = Shown(*club, pair);
    table.Add({std::string("pair"), shown.first, shown.second, shown.name, shown.handicap});
  }
  club->CloseDatabase();
  context.Write(table);
  return kSucceeded;
}

int FindByName(const Context& context, const std::string& name) {
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  Table table({"Number", "Name", "EBU number", "Handicap", "Weight", "Match"});
  // The exact one stands first, and only once.
  const std::int32_t exact = club->FindMember(name);
  if (exact >= 0) AddMatch(*club, context, name, exact, table);
  const MatchList matches = club->FindNearestMatches(name);
  // From 0, holding one 0, the list means nobody.
  if (matches.LowerBound == 1) {
    for (const std::int32_t number : matches.Numbers) {
      if (number != exact) AddMatch(*club, context, name, number, table);
    }
  }
  club->CloseDatabase();
  context.Write(table);
  if (table.RowCount() > 0) return kSucceeded;
  context.error << "tavi: no active member is called, or sounds like, \"" << Printable(name) << "\"\n";
  return kFailed;
}

namespace {

/// The word before the tab: which of a person's names the line is.
std::optional<NameKeyMode> ModeOf(std::string_view word) {
  if (word == "first") return NameKeyMode::FirstName;
  if (word == "last") return NameKeyMode::Surname;
  return std::nullopt;
}

}  // namespace

int WriteKeys(const Context& context) {
  std::string line;
  for (std::size_t number = 1; std::getline(context.in, line); ++number) {
    // Lists from Windows end their lines with CR LF.
    if (line.ends_with('\r')) line.pop_back();
    const std::size_t tab = line.find('\t');
    const std::optional<NameKeyMode> mode = ModeOf(std::string_view(line).substr(0, tab));
    if (tab == std::string::npos || !mode) {
      context.error << "tavi: line " << number << " is \"" << Printable(line)
                    << "\"; expected \"first\" or \"last\", a tab and a name\n";
      return kFailed;
    }
    context.out << context.platform->nameKeyService->Key(*mode, std::string_view(line).substr(tab + 1)) << '\n';
  }
  return kSucceeded;
}

}  // namespace tavi::host
