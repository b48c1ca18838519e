#include <algorithm>
#include <array>
#include <random>
#include <set>

#include "access/file/FileSystem.h"
#include "composition/Composition.h"
#include "data/Data.h"
#include "data/TableWriter.h"
#include "facade/MembershipDatabase.h"
#include "store/Layout.h"

namespace tavi::bench {
namespace {

constexpr int kDays = 3650;
constexpr std::array kFirstNames = {"Agnes", "Bernard", "Charlotte", "Declan",   "Edward",    "Felicity",
                                    "Giles", "Heather", "Imogen",    "James",    "Katherine", "Lars",
                                    "Mary",  "Norman",  "Olwen",     "Percival", "Quentin",   "Rosalind",
                                    "Samir", "Tanvi",   "Ursula",    "Victor",   "Winifred",  "Yolanda"};
constexpr std::array kBeginnings = {"Ash",  "Bar",  "Con", "Dun", "Ever", "Fair",
                                    "Glen", "Hart", "Ing", "Kel", "Lang", "Mor"};
constexpr std::array kMiddles = {"", "ber", "cas", "der", "fel", "gan", "hur", "kin", "lo", "min", "ner", "sel"};
constexpr std::array kEndings = {"bury", "combe", "don",   "field", "ford", "ham",
                                 "ley",  "more",  "stone", "ton",   "wick", "worth"};

/// The same tables and indexes as those of a club's file, as far as the jobs need them.
constexpr std::array kSqliteTables = {
    "CREATE TABLE Members (MembershipNumber INTEGER PRIMARY KEY, EBUNumber TEXT, FirstName TEXT, MiddleInitials TEXT, "
    "LastName TEXT, FuzzedFirstName TEXT, FuzzedLastName TEXT, KnownAs TEXT, Active INTEGER DEFAULT -1, "
    "Handicap REAL DEFAULT 50, HandicalcSeed REAL, HandicalcSeedDate REAL)",
    "CREATE TABLE Partnerships (LowerPlayer INTEGER NOT NULL, HigherPlayer INTEGER NOT NULL, HigherFirst INTEGER, "
    "Handicap REAL DEFAULT 50, KnownAs TEXT, Active INTEGER DEFAULT -1, HandicalcSeed REAL, HandicalcSeedDate REAL)",
    "CREATE TABLE Competitions (ID INTEGER PRIMARY KEY, CompetitionName TEXT, CompetitionDate REAL, Individual "
    "INTEGER, "
    "ScoringMethod INTEGER, ButlerType INTEGER, MasterPointsType INTEGER, IncludeInHandicapCalculations INTEGER, "
    "NumberOfTables INTEGER, NumberOfWinners INTEGER, MasterPointsColour INTEGER, IsTeams INTEGER DEFAULT 0, IsSwiss "
    "INTEGER DEFAULT 0, IsExternal INTEGER DEFAULT 0, QualiFinal INTEGER DEFAULT 0, NatCode TEXT DEFAULT 'EBU')",
    "CREATE TABLE Results (Competition INTEGER, Player INTEGER, Partner INTEGER, ActualPercentage REAL, "
    "NetPercentage REAL)",
    "CREATE TABLE MasterPoints (ID INTEGER PRIMARY KEY, MembershipNumber INTEGER, NonMemberName TEXT, CompetitionID "
    "INTEGER, SessionNo INTEGER DEFAULT -1, MasterPoints REAL, Colour INTEGER DEFAULT -1, Status INTEGER, "
    "RecordUpdated INTEGER)",
    "CREATE INDEX MembersFullName ON Members (FirstName, LastName, MiddleInitials)",
    "CREATE INDEX MembersLastName ON Members (LastName)",
    "CREATE INDEX MembersFuzzedFirst ON Members (FuzzedFirstName)",
    "CREATE INDEX MembersFuzzedLast ON Members (FuzzedLastName)",
    "CREATE INDEX MembersEbu ON Members (EBUNumber)",
    "CREATE UNIQUE INDEX PartnershipsKey ON Partnerships (LowerPlayer, HigherPlayer)",
    "CREATE INDEX PartnershipsHigher ON Partnerships (HigherPlayer)",
    "CREATE INDEX CompetitionsDate ON Competitions (CompetitionDate, CompetitionName)",
    "CREATE INDEX ResultsCompetition ON Results (Competition)",
    "CREATE INDEX ResultsPlayer ON Results (Player)",
    "CREATE INDEX ResultsPartner ON Results (Partner)",
    "CREATE INDEX MasterPointsCompetition ON MasterPoints (CompetitionID)",
    "CREATE INDEX MasterPointsMember ON MasterPoints (MembershipNumber)"};

void WriteMembers(const Club& club, access::Database& ours, SqliteFile& sqlite) {
  const NameKeyService& keys = *BenchPlatform()->nameKeyService;
  TableWriter members(ours, sqlite, "Members",
                      {"MembershipNumber", "EBUNumber", "FirstName", "MiddleInitials", "LastName", "FuzzedFirstName",
                       "FuzzedLastName", "KnownAs", "Active", "Handicap"});
  for (int number = 1; number <= club.size.members; ++number) {
    const std::string first = Club::FirstName(number);
    const std::string last = Club::LastName(number);
    members.Add({number, std::to_string(700'000 + number), first, std::string(), last,
                 keys.Key(NameKeyMode::FirstName, first), keys.Key(NameKeyMode::Surname, last), std::string(), true,
                 50.0});
  }
  members.Finish();
}

void WritePairs(const Club& club, access::Database& ours, SqliteFile& sqlite) {
  TableWriter pairs(ours, sqlite, "Partnerships",
                    {"LowerPlayer", "HigherPlayer", "HigherFirst", "Handicap", "KnownAs", "Active"});
  for (const Club::Pair& pair : club.pairs) pairs.Add({pair.lower, pair.higher, 0, 50.0, std::string(), true});
  pairs.Finish();
}

void WriteCompetitions(const Club& club, access::Database& ours, SqliteFile& sqlite) {
  TableWriter competitions(
      ours, sqlite, "Competitions",
      {"ID", "CompetitionName", "CompetitionDate", "Individual", "ScoringMethod", "ButlerType",
       "IncludeInHandicapCalculations", "IsTeams", "IsSwiss", "IsExternal", "QualiFinal", "NatCode"});
  for (int id = 1; id <= club.size.competitions; ++id) {
    competitions.Add({id, "Pairs " + std::to_string(id % 7), club.DateOf(id), 0, 0, 0, -1, false, false, false, false,
                      std::string("EBU")});
  }
  competitions.Finish();
}

void WriteResults(const Club& club, access::Database& ours, SqliteFile& sqlite) {
  TableWriter results(ours, sqlite, "Results",
                      {"Competition", "Player", "Partner", "ActualPercentage", "NetPercentage"});
  for (const Club::Result& result : club.results) {
    results.Add({result.competition, result.player, result.partner, result.percentage, result.percentage});
  }
  results.Finish();
  TableWriter awards(ours, sqlite, "MasterPoints",
                     {"ID", "MembershipNumber", "NonMemberName", "CompetitionID", "SessionNo", "MasterPoints", "Colour",
                      "Status", "RecordUpdated"});
  int id = 0;
  for (const Club::Result& result : club.results) {
    if (result.percentage < 56) continue;
    for (const int member : {result.player, result.partner}) {
      awards.Add({++id, member, std::string(), result.competition, 1, 0.24, 0, 0, 1});
    }
  }
  awards.Finish();
}

}  // namespace

Date Today() {
  return Date::FromCivil(2026, 6, 30);
}

std::string Club::FirstName(int member) {
  return kFirstNames[static_cast<std::size_t>(member) % kFirstNames.size()];
}

std::string Club::LastName(int member) {
  // Spread, so that neighbours in number are none by name.
  const auto n = static_cast<std::size_t>(member) * 7919;
  return std::string(kBeginnings[n % 12]) + kMiddles[n / 12 % 12] + kEndings[n / 144 % 12];
}

Date Club::DateOf(int competition) const {
  return Date{Today().days - kDays + static_cast<double>(std::int64_t{kDays} * competition / (size.competitions + 1))};
}

Club::Club(const ClubSize& clubSize) : size(clubSize) {
  std::mt19937 random(static_cast<unsigned>(size.members));
  const auto upTo = [&random](int limit) { return 1 + static_cast<int>(random() % static_cast<unsigned>(limit)); };
  // Some play far more often than others.
  const auto player = [&] { return std::min(upTo(size.members), upTo(size.members)); };
  std::set<std::pair<int, int>> known;
  while (static_cast<int>(pairs.size()) < size.pairs) {
    const int one = player();
    const int other = player();
    if (one == other || !known.insert(std::minmax({one, other})).second) continue;
    pairs.push_back({std::min(one, other), std::max(one, other)});
  }
  for (int competition = 1; competition <= size.competitions; ++competition) {
    std::set<std::pair<int, int>> playing;
    for (int i = 0; i < size.pairsAnEvening; ++i) {
      // In quarters, whose sums are exact in any order.
      const double percentage = 30.0 + static_cast<double>(random() % 160) / 4.0;
      const int one = player();
      const bool isRegular = i % 3 != 0;
      const Pair pair =
          isRegular ? pairs[static_cast<std::size_t>(upTo(size.pairs) - 1)] : Pair{one, one % size.members + 1};
      if (!playing.insert(std::minmax({pair.lower, pair.higher})).second) continue;
      results.push_back({competition, pair.lower, pair.higher, percentage});
    }
  }
}

FilePair Data::ClubFiles(const ClubSize& size) {
  const std::filesystem::path folder = folder_ / size.Name();
  const FilePair files{folder / "ClubMembers.mdb", folder / "club.sqlite"};
  const std::filesystem::path ready = folder / "ready";
  if (std::filesystem::exists(ready)) return files;
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  const Club club(size);
  CreateEmptyDatabase(files.ours.string(), Today());
  CreateBaseFile(*BenchPlatform()->databaseProvider->Open(ConnectionText(files.ours.string())));
  {
    access::Database ours(access::Pager::Open(access::NativeFileSystem(), files.ours.string(), {}));
    SqliteFile sqlite(files.sqlite.string());
    for (const char* statement : kSqliteTables) sqlite.Run(statement);
    WriteMembers(club, ours, sqlite);
    WritePairs(club, ours, sqlite);
    WriteCompetitions(club, ours, sqlite);
    WriteResults(club, ours, sqlite);
    sqlite.Run("ANALYZE");
    ours.GetPager().Close();
  }
  MembershipDatabase settled(BenchPlatform());
  settled.SetDatabaseFolder(folder.string());
  settled.OpenDatabase();
  settled.CloseDatabase();
  std::filesystem::create_directory(ready);
  return files;
}

}  // namespace tavi::bench
