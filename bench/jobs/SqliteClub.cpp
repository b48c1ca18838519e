#include "jobs/SqliteClub.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "platform/values/Convert.h"

namespace tavi::bench {
namespace {

constexpr double kNeutral = 50.0;
constexpr double kLastDate = 1e6;

double Rounded(double handicap) {
  return RoundDecimalHalfEven(handicap, 2);
}

}  // namespace

SqliteClub::SqliteClub(const std::string& path)
    : file_(path),
      begin_(file_.Handle(), "BEGIN IMMEDIATE"),
      commit_(file_.Handle(), "COMMIT"),
      findCompetition_(file_.Handle(), "Select ID From Competitions Where CompetitionName = ? And CompetitionDate = ?"),
      addCompetition_(file_.Handle(),
                      "Insert Into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, "
                      "ButlerType, MasterPointsType, IncludeInHandicapCalculations, NumberOfWinners, NumberOfTables, "
                      "MasterPointsColour) Values (?, ?, 0, 0, 0, 0, -1, 1, 15, 0)"),
      readCompetition_(file_.Handle(), "Select * From Competitions Where ID = ?"),
      findPair_(file_.Handle(),
                "Select Active, KnownAs, Handicap From Partnerships Where LowerPlayer = ? And "
                "HigherPlayer = ?"),
      addResult_(file_.Handle(),
                 "Insert Into Results (Competition, Player, Partner, ActualPercentage, NetPercentage) "
                 "Values (?, ?, ?, ?, ?)"),
      pairSeed_(file_.Handle(),
                "Select HandicalcSeed, HandicalcSeedDate From Partnerships Where LowerPlayer = ? And "
                "HigherPlayer = ?"),
      playerSeed_(file_.Handle(), "Select HandicalcSeed, HandicalcSeedDate From Members Where MembershipNumber = ?"),
      results_(file_.Handle(),
               "Select ActualPercentage, Player, Partner, Competitions.ID, CompetitionDate From Results Inner Join "
               "Competitions On Results.Competition = Competitions.ID Where (Player = ?1 Or Partner = ?1) And "
               "IncludeInHandicapCalculations <> 0 And ScoringMethod = 0 And CompetitionDate <= ?2 And "
               "(CompetitionDate <> ?2 Or CompetitionName <> ?3 Or Individual <> 0) Order By CompetitionDate Desc"),
      storePair_(file_.Handle(), "Update Partnerships Set Handicap = ? Where LowerPlayer = ? And HigherPlayer = ?"),
      storeMember_(file_.Handle(), "Update Members Set Handicap = ? Where MembershipNumber = ?"),
      clearAwards_(file_.Handle(), "Delete From MasterPoints Where CompetitionID = ? And MembershipNumber = ?"),
      addAward_(file_.Handle(),
                "Insert Into MasterPoints (MembershipNumber, NonMemberName, CompetitionID, SessionNo, MasterPoints, "
                "Colour, Status, RecordUpdated) Values (?, ' ', ?, 1, ?, 0, 0, 1)"),
      dropAwards_(file_.Handle(), "Delete From MasterPoints Where CompetitionID = ? And RecordUpdated = 0") {}

std::int64_t SqliteClub::Register(const std::string& name, Date date) {
  std::int64_t identifier = 0;
  findCompetition_.Bind(1, name).Bind(2, date.days);
  while (findCompetition_.Next()) identifier = findCompetition_.Integer(0);
  if (identifier != 0) return identifier;
  addCompetition_.Bind(1, name).Bind(2, date.days).Run();
  findCompetition_.Bind(1, name).Bind(2, date.days);
  while (findCompetition_.Next()) identifier = findCompetition_.Integer(0);
  return identifier;
}

void SqliteClub::StoreMember(std::int64_t member, double handicap) {
  storeMember_.Bind(1, handicap).Bind(2, member).Run();
}

void SqliteClub::NoteResult(std::int64_t competition, std::int64_t player, std::int64_t partner, double percentage) {
  const auto [lower, higher] = std::minmax(player, partner);
  begin_.Run();
  readCompetition_.Bind(1, competition).Run();
  bool isPair = false;
  findPair_.Bind(1, lower).Bind(2, higher);
  while (findPair_.Next()) isPair = true;
  addResult_.Bind(1, competition).Bind(2, player).Bind(3, partner).Bind(4, percentage).Bind(5, percentage).Run();
  const Handicaps handicaps = Calculate(player, partner, "", 0);
  if (isPair) storePair_.Bind(1, handicaps.pair).Bind(2, lower).Bind(3, higher).Run();
  StoreMember(player, handicaps.player);
  StoreMember(partner, handicaps.partner);
  clearAwards_.Bind(1, competition).Bind(2, player).Run();
  clearAwards_.Bind(1, competition).Bind(2, partner).Run();
  commit_.Run();
}

void SqliteClub::InsertAward(std::int64_t competition, std::int64_t member, double points) {
  addAward_.Bind(1, member).Bind(2, competition).Bind(3, points).Run();
}

void SqliteClub::Award(std::int64_t competition, std::int64_t player, std::int64_t partner, double points) {
  readCompetition_.Bind(1, competition).Run();
  InsertAward(competition, player, points);
  InsertAward(competition, partner, points);
}

void SqliteClub::EndUpdate(std::int64_t competition) {
  dropAwards_.Bind(1, competition).Run();
}

double SqliteClub::Average(std::int64_t player, const std::string& competition, double date) {
  playerSeed_.Bind(1, player).Run();
  std::set<std::tuple<std::int64_t, std::int64_t, std::int64_t>> seen;
  double sum = 0;
  results_.Bind(1, player).Bind(2, date == 0 ? kLastDate : date).Bind(3, competition);
  while (results_.Next()) {
    const auto [lower, higher] = std::minmax({results_.Integer(1), results_.Integer(2)});
    if (seen.insert({results_.Integer(3), lower, higher}).second) sum += results_.Number(0);
  }
  return seen.empty() ? kNeutral : sum / static_cast<double>(seen.size());
}

SqliteClub::Handicaps SqliteClub::Calculate(std::int64_t player, std::int64_t partner, const std::string& competition,
                                            double date) {
  if (partner < 0) {
    const double handicap = Rounded(Average(player, competition, date));
    return {handicap, kNeutral, handicap};
  }
  pairSeed_.Bind(1, std::min(player, partner)).Bind(2, std::max(player, partner)).Run();
  const double one = Average(player, competition, date);
  const double other = Average(partner, competition, date);
  return {Rounded(one), Rounded(other), Rounded(one / 2.0 + other / 2.0)};
}

void SqliteClub::RecalculateAll() {
  std::map<std::int64_t, double> known;
  std::vector<std::pair<std::int64_t, std::int64_t>> pairs;
  SqliteStatement allPairs(file_.Handle(), "Select LowerPlayer, HigherPlayer From Partnerships Where Active <> 0");
  while (allPairs.Next()) pairs.emplace_back(allPairs.Integer(0), allPairs.Integer(1));
  for (const auto& [lower, higher] : pairs) {
    const Handicaps handicaps = Calculate(lower, higher, "", 0);
    storePair_.Bind(1, handicaps.pair).Bind(2, lower).Bind(3, higher).Run();
    known.emplace(lower, handicaps.player);
    known.emplace(higher, handicaps.partner);
  }
  std::vector<std::int64_t> members;
  SqliteStatement allMembers(file_.Handle(), "Select MembershipNumber From Members Where Active <> 0");
  while (allMembers.Next()) members.push_back(allMembers.Integer(0));
  for (const std::int64_t member : members) {
    const auto found = known.find(member);
    StoreMember(member, found != known.end() ? found->second : Calculate(member, -1, "", 0).player);
  }
}

}  // namespace tavi::bench
