#include <numeric>

#include "facade/MembershipDatabase.h"
#include "jobs/ClubAnswer.h"
#include "jobs/Jobs.h"
#include "jobs/SqliteClub.h"
#include "platform/values/Convert.h"

namespace tavi::bench {
namespace {

constexpr std::size_t kHandicaps = 200;
const std::string kTonight = "Tonight";

std::unique_ptr<MembershipDatabase> OpenClub(const FilePair& files) {
  auto club = std::make_unique<MembershipDatabase>(BenchPlatform());
  club->SetDatabaseFolder(files.ours.parent_path().string());
  club->OpenDatabase();
  return club;
}

/// Pairs from all over the club, the same for both sides.
const Club::Pair& PairOf(const Club& club, std::size_t call) {
  return club.pairs[call * 7919 % club.pairs.size()];
}

/// A pair's handicap from arrays in memory: the mean of the means of all results of each player.
Answer HandicapsOverArrays(const Club& club, Timer& timer) {
  std::vector<std::vector<double>> byPlayer(static_cast<std::size_t>(club.size.members) + 1);
  for (const Club::Result& result : club.results) {
    for (const int player : {result.player, result.partner}) {
      byPlayer[static_cast<std::size_t>(player)].push_back(result.percentage);
    }
  }
  const auto meanOf = [&](int player) {
    const std::vector<double>& all = byPlayer[static_cast<std::size_t>(player)];
    return all.empty() ? 50.0 : std::accumulate(all.begin(), all.end(), 0.0) / static_cast<double>(all.size());
  };
  Answer answer;
  timer.Section([&] {
    for (std::size_t i = 0; i < kHandicaps; ++i) {
      const Club::Pair& pair = PairOf(club, i);
      answer.AddRow(RoundDecimalHalfEven(meanOf(pair.lower) / 2.0 + meanOf(pair.higher) / 2.0, 2));
    }
  });
  return answer;
}

Job OneHandicap(Data& data, const ClubSize& size) {
  Job job{"one handicap, warm"};
  job.ours = [&data, size](Timer& timer) {
    const Club plain(size);
    const auto club = OpenClub(data.ClubFiles(size));
    static_cast<void>(club->CalculateHandicaps(1, 2, kTonight, Today(), false));
    Answer answer;
    timer.Section([&] {
      for (std::size_t i = 0; i < kHandicaps; ++i) {
        const Club::Pair& pair = PairOf(plain, i);
        timer.Call([&] {
          answer.AddRow(
              club->CalculateHandicaps(pair.lower, pair.higher, kTonight, Today(), false).PartnershipHandicap());
        });
      }
    });
    club->CloseDatabase();
    return answer;
  };
  job.other = [&data, size](Timer& timer) {
    const Club plain(size);
    SqliteClub club(data.ClubFiles(size).sqlite.string());
    club.Calculate(1, 2, kTonight, Today().days);
    Answer answer;
    timer.Section([&] {
      for (std::size_t i = 0; i < kHandicaps; ++i) {
        const Club::Pair& pair = PairOf(plain, i);
        timer.Call([&] { answer.AddRow(club.Calculate(pair.lower, pair.higher, kTonight, Today().days).pair); });
      }
    });
    return answer;
  };
  job.floor = [size](Timer& timer) { return HandicapsOverArrays(Club(size), timer); };
  return job;
}

Job AllHandicaps(Data& data, const ClubSize& size) {
  Job job{"all handicaps recalculated"};
  job.ours = [&data, size](Timer& timer) {
    const FilePair files = data.Copy(data.ClubFiles(size));
    const auto club = OpenClub(files);
    timer.Section([&] {
      club->RecalculateAllHandicaps();
      club->CloseDatabase();
    });
    OurFile file(files.ours.string());
    return AnswerOfClub(file);
  };
  job.other = [&data, size](Timer& timer) {
    const FilePair files = data.Copy(data.ClubFiles(size));
    auto club = std::make_unique<SqliteClub>(files.sqlite.string());
    timer.Section([&] {
      club->RecalculateAll();
      club.reset();
    });
    SqliteFile file(files.sqlite.string());
    return AnswerOfClub(file);
  };
  return job;
}

}  // namespace

void AddHandicapJobs(Jobs& jobs, Data& data, const Scale& scale) {
  jobs.push_back(OneHandicap(data, scale.club));
  jobs.push_back(AllHandicaps(data, scale.club));
}

}  // namespace tavi::bench
