#include "BenchClub.h"

#include <unistd.h>

#include <array>
#include <map>
#include <random>

#include "composition/Composition.h"
#include "platform/values/Convert.h"
#include "store/Layout.h"
#include "store/cDatabase.h"

namespace tavi::bench {
namespace {

constexpr int kYears = 10;
constexpr int kEveningsAYear = 50;
constexpr int kPairsAnEvening = 30;
const Date kLastDay = Date::FromCivil(2026, 6, 30);

constexpr std::array kFirstNames = {"Agnes", "Bernard", "Charlotte", "Declan",   "Edward",    "Felicity",
                                    "Giles", "Heather", "Imogen",    "James",    "Katherine", "Lars",
                                    "Mary",  "Norman",  "Olwen",     "Percival", "Quentin",   "Rosalind",
                                    "Samir", "Tanvi",   "Ursula",    "Victor",   "Winifred",  "Yolanda"};
constexpr std::array kSyllables = {"Ash",  "Bar",  "Con", "Dun", "Ever", "Fair",
                                   "Glen", "Hart", "Ing", "Kel", "Lang", "Mor"};
constexpr std::array kEndings = {"bury", "combe", "don",   "field", "ford", "ham",
                                 "ley",  "more",  "stone", "ton",   "wick", "worth"};

std::string Quoted(const std::string& text) {
  return cDatabase::SQLString(text);
}

}  // namespace

std::string BenchClub::NameOf(int number) {
  const auto n = static_cast<std::size_t>(number);
  return std::string(kFirstNames[n % kFirstNames.size()]) + " " + kSyllables[n / 3 % kSyllables.size()] +
         kEndings[n / 7 % kEndings.size()];
}

BenchClub::BenchClub(int members)
    : members_(members),
      folder_(std::filesystem::temp_directory_path() /
              ("tavi-bench-" + std::to_string(getpid()) + "-" + std::to_string(members))),
      platform_(MakePlatform({kLastDay})) {
  std::filesystem::create_directories(folder_);
  CreateEmptyDatabase((folder_ / "ClubMembers.mdb").string(), kLastDay);
  Fill();
}

BenchClub::~BenchClub() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

BenchClub& BenchClub::OfSize(int members) {
  static std::map<int, std::unique_ptr<BenchClub>> clubs;
  std::unique_ptr<BenchClub>& club = clubs[members];
  if (!club) club = std::make_unique<BenchClub>(members);
  return *club;
}

std::unique_ptr<MembershipDatabase> BenchClub::Open() const {
  auto club = std::make_unique<MembershipDatabase>(platform_);
  club->SetDatabaseFolder(folder_.string());
  club->OpenDatabase();
  return club;
}

void BenchClub::Fill() const {
  const auto connection = platform_->databaseProvider->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
                                                            (folder_ / "ClubMembers.mdb").string());
  CreateBaseFile(*connection);
  for (int number = 1; number <= members_; ++number) {
    const std::string name = NameOf(number);
    const std::string first = name.substr(0, name.find(' '));
    const std::string last = name.substr(name.find(' ') + 1);
    connection->Execute(
        "Insert into Members (MembershipNumber, EBUNumber, FirstName, MiddleInitials, LastName, FuzzedFirstName, "
        "FuzzedLastName, KnownAs) Values (" +
        std::to_string(number) + ", '" + std::to_string(700000 + number) + "', " + Quoted(first) + ", '', " +
        Quoted(last) + ", " + Quoted(platform_->nameKeyService->Key(NameKeyMode::FirstName, first)) + ", " +
        Quoted(platform_->nameKeyService->Key(NameKeyMode::Surname, last)) + ", '')");
  }
  for (int lower = 1; lower < members_; lower += 4) {
    connection->Execute(
        "Insert into Partnerships (LowerPlayer, HigherPlayer, HigherFirst, Handicap, KnownAs) Values (" +
        std::to_string(lower) + ", " + std::to_string(lower + 1) + ", 0, 50, '')");
  }
  std::mt19937 random(static_cast<unsigned>(members_));
  for (int evening = 0; evening < kYears * kEveningsAYear; ++evening) {
    const int day = kLastDay.DayNumber() - 7 * (kYears * kEveningsAYear - evening);
    connection->Execute(
        "Insert into Competitions (CompetitionName, CompetitionDate, Individual, ScoringMethod, ButlerType, "
        "IncludeInHandicapCalculations) Values ('Weekly Pairs', " +
        std::to_string(day) + ", 0, 0, 0, 1)");
    for (int pair = 0; pair < kPairsAnEvening; ++pair) {
      const int player = 1 + static_cast<int>(random() % static_cast<unsigned>(members_ - 1));
      const int partner = player % 4 == 1 ? player + 1 : 1 + (player + 1 + pair) % members_;
      const std::string percentage = NumberText(3000.0 / 100.0 + static_cast<double>(random() % 4000) / 100.0);
      connection->Execute(
          "Insert into Results (Competition, Player, Partner, ActualPercentage, NetPercentage) Values (" +
          std::to_string(evening + 1) + ", " + std::to_string(player) + ", " + std::to_string(partner) + ", " +
          percentage + ", " + percentage + ")");
    }
  }
  connection->Close();
}

}  // namespace tavi::bench
