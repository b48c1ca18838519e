#include "host/commands/Lists.h"

#include <ostream>

#include "composition/NameMatch.h"
#include "host/text/NameFormats.h"

namespace tavi::host {
namespace {

constexpr int kHandicapPlaces = 2;

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

std::vector<WalkedPair> WalkPairs(MembershipDatabase& club) {
  std::vector<WalkedPair> pairs;
  WalkedPair pair;
  double unused = 0.0;
  for (bool more = club.GetFirstPartnership(pair.firstNumber, pair.firstName, pair.secondNumber, pair.secondName,
                                            pair.pairName, pair.alternateName, unused, kFirstAndLastName);
       more; more = club.GetNextPartnership(pair.firstNumber, pair.firstName, pair.secondNumber, pair.secondName,
                                            pair.pairName, pair.alternateName, unused, kFirstAndLastName)) {
    pairs.push_back(pair);
  }
  return pairs;
}

Decimals Handicap(double value) {
  return {value, kHandicapPlaces};
}

/// Adds a member who was found for a typed name, with the weight of the match and the reason for it.
void AddMatch(MembershipDatabase& club, const Context& context, const std::string& typed, std::int32_t number,
              Table& table) {
  std::string nationalNumber;
  const std::string name = club.GetNameAndEBUNumber(number, kFirstAndLastName, nationalNumber);
  MemberName parts;
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
  WalkMembers(*club, kSurnameFirst, [&](std::int32_t number, const std::string& name, double handicap) {
    members.push_back({number, name, handicap, club->Retired()});
  });
  Table table({"Number", "Name", "EBU number", "Handicap", "Active"});
  club->OpenDatabase();
  for (const Member& member : members) {
    std::string first;
    std::string initials;
    std::string last;
    const std::string nationalNumber = club->GetEBUNoAndNames(member.number, first, initials, last);
    table.Add({std::int64_t{member.number}, member.name, nationalNumber, Handicap(member.handicap), !member.retired});
  }
  club->CloseDatabase();
  table.Write(context.out, context.format);
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
               pair.pairName, active ? Cell(Handicap(handicap)) : Cell(), active});
  }
  club->CloseDatabase();
  table.Write(context.out, context.format);
  return kSucceeded;
}

int ListHandicaps(const Context& context, bool recalculate) {
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  if (recalculate) {
    club->RecalculateAllHandicaps();
    club->CloseDatabase();
  }
  Table table({"Kind", "Number", "Partner", "Name", "Handicap"});
  WalkMembers(*club, kFirstAndLastName, [&](std::int32_t number, const std::string& name, double handicap) {
    table.Add({std::string("member"), std::int64_t{number}, Cell(), name, Handicap(handicap)});
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
  club->CloseDatabase();
  table.Write(context.out, context.format);
  return kSucceeded;
}

int FindByName(const Context& context, const std::string& name) {
  const std::unique_ptr<MembershipDatabase> club = context.OpenClub();
  Table table({"Number", "Name", "EBU number", "Handicap", "Weight", "Match"});
  const std::int32_t exact = club->FindMember(name);
  if (exact >= 0) AddMatch(*club, context, name, exact, table);
  const MatchList matches = club->FindNearestMatches(name);
  if (matches.LowerBound == 1) {
    for (const std::int32_t number : matches.Numbers) {
      if (number != exact) AddMatch(*club, context, name, number, table);
    }
  }
  club->CloseDatabase();
  table.Write(context.out, context.format);
  if (table.RowCount() > 0) return kSucceeded;
  context.error << "tavi: no active member is called, or sounds like, \"" << Printable(name) << "\"\n";
  return kFailed;
}

}  // namespace tavi::host
