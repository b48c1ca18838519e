#include "facade/MembershipDatabase.h"
#include "jobs/ClubAnswer.h"
#include "jobs/Jobs.h"
#include "jobs/SqliteClub.h"

namespace tavi::bench {
namespace {

constexpr int kPairs = 30;
constexpr double kPoints = 0.24;
const std::string kName = "Measured Evening";

/// The pairs that play, regular ones from all over the club.
std::vector<Club::Pair> PairsOf(const ClubSize& size) {
  const Club club(size);
  std::vector<Club::Pair> pairs;
  for (int i = 0; i < kPairs; ++i)
    pairs.push_back(club.pairs[club.pairs.size() * static_cast<std::size_t>(i) / kPairs]);
  return pairs;
}

double PercentageOf(std::size_t pair) {
  return 35.0 + static_cast<double>(pair);
}

Answer OurEvening(const FilePair& files, const std::vector<Club::Pair>& pairs, Timer& timer) {
  MembershipDatabase club(BenchPlatform());
  club.SetDatabaseFolder(files.ours.parent_path().string());
  club.OpenDatabase();
  timer.Section([&] {
    const auto id =
        club.SetCompetitionEx(kName, Date{Today().days - 1}, false, 0, 0, false, false, 0, 15, 1, "EBU", 0, true);
    for (std::size_t i = 0; i < pairs.size(); ++i) {
      const auto [player, partner] = pairs[i];
      timer.Call([&] { club.NoteCompetitorResult(id, player, "", partner, "", PercentageOf(i), PercentageOf(i)); });
      timer.Call([&] { club.AddMasterPoints(id, 1, player, "", partner, "", kPoints, 0); });
    }
    club.EndResultUpdate(id);
    club.CloseDatabase();
  });
  OurFile file(files.ours.string());
  return AnswerOfClub(file);
}

Answer SqliteEvening(const FilePair& files, const std::vector<Club::Pair>& pairs, Timer& timer) {
  {
    auto club = std::make_unique<SqliteClub>(files.sqlite.string());
    timer.Section([&] {
      const std::int64_t id = club->Register(kName, Date{Today().days - 1});
      for (std::size_t i = 0; i < pairs.size(); ++i) {
        timer.Call([&] { club->NoteResult(id, pairs[i].lower, pairs[i].higher, PercentageOf(i)); });
        timer.Call([&] { club->Award(id, pairs[i].lower, pairs[i].higher, kPoints); });
      }
      club->EndUpdate(id);
      club.reset();
    });
  }
  SqliteFile file(files.sqlite.string());
  return AnswerOfClub(file);
}

}  // namespace

void AddEveningJobs(Jobs& jobs, Data& data, const Scale& scale) {
  const ClubSize size = scale.club;
  Job job{"evening of 30 pairs, closed at its end"};
  job.ours = [&data, size](Timer& timer) { return OurEvening(data.Copy(data.ClubFiles(size)), PairsOf(size), timer); };
  job.other = [&data, size](Timer& timer) {
    return SqliteEvening(data.Copy(data.ClubFiles(size)), PairsOf(size), timer);
  };
  jobs.push_back(std::move(job));
}

}  // namespace tavi::bench
