// What a scoring program waits for, on clubs of 100, 1,000 and 5,000 members with ten years of weekly evenings of 30
// pairs (15,000 results):
//   RecordEvening           one evening of 30 pairs: registered, results noted, awards passed, ended, closed
//   CalculateHandicaps      one pair's handicap
//   RecalculateAllHandicaps every member and partnership
//   FindMember              one exact name
//   FindNearestMatches      one name by sound
//   OpenClub                a new component object and the file opened: layout check and uniqueness flags
// The rows of one operation show how its cost grows with the club.

#include <benchmark/benchmark.h>

#include "BenchClub.h"

namespace tavi::bench {
namespace {

BenchClub& ClubOf(const benchmark::State& state) {
  return BenchClub::OfSize(static_cast<int>(state.range(0)));
}

void RecordEvening(benchmark::State& state) {
  constexpr int kPairs = 30;
  const BenchClub& bench = ClubOf(state);
  const auto club = bench.Open();
  for (auto _ : state) {
    const auto id = club->SetCompetitionEx("Measured Evening", Date::FromCivil(2026, 6, 29), false, 0, 0, false, false,
                                           0, 15, 1, "EBU", 0, true);
    for (int pair = 0; pair < kPairs; ++pair) {
      const int player = 1 + pair * 2;
      club->NoteCompetitorResult(id, player, "", player + 1, "", 35.0 + pair, 50.0);
      club->AddMasterPoints(id, 1, player, "", player + 1, "", 0.24, 0);
    }
    club->EndResultUpdate(id);
    club->CloseDatabase();
  }
  state.SetItemsProcessed(state.iterations() * kPairs);
}

void CalculateHandicaps(benchmark::State& state) {
  const BenchClub& bench = ClubOf(state);
  const auto club = bench.Open();
  int player = 1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(
        club->CalculateHandicaps(player, player + 1, "Tonight", Date::FromCivil(2026, 6, 30), false));
    player = 1 + (player + 4) % (bench.Members() - 1);
    state.PauseTiming();
    club->CloseDatabase();
    club->OpenDatabase();
    state.ResumeTiming();
  }
}

void RecalculateAllHandicaps(benchmark::State& state) {
  const BenchClub& bench = ClubOf(state);
  for (auto _ : state) {
    const auto club = bench.Open();
    club->RecalculateAllHandicaps();
    club->CloseDatabase();
  }
  state.SetItemsProcessed(state.iterations() * bench.Members());
}

void FindMember(benchmark::State& state) {
  const BenchClub& bench = ClubOf(state);
  const auto club = bench.Open();
  int member = 1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(club->FindMember(BenchClub::NameOf(member)));
    member = 1 + (member + 16) % bench.Members();
  }
}

void FindNearestMatches(benchmark::State& state) {
  const BenchClub& bench = ClubOf(state);
  const auto club = bench.Open();
  int member = 1;
  for (auto _ : state) {
    benchmark::DoNotOptimize(club->FindNearestMatches(BenchClub::NameOf(member)));
    member = 1 + (member + 16) % bench.Members();
  }
}

void OpenClub(benchmark::State& state) {
  const BenchClub& bench = ClubOf(state);
  for (auto _ : state) {
    const auto club = bench.Open();
    club->CloseDatabase();
  }
}

void ClubSizes(benchmark::internal::Benchmark* measured) {
  measured->Arg(100)->Arg(1000)->Arg(5000)->ArgName("members")->Unit(benchmark::kMicrosecond);
}

BENCHMARK(RecordEvening)->Apply(ClubSizes);
BENCHMARK(CalculateHandicaps)->Apply(ClubSizes);
BENCHMARK(RecalculateAllHandicaps)->Apply(ClubSizes);
BENCHMARK(FindMember)->Apply(ClubSizes);
BENCHMARK(FindNearestMatches)->Apply(ClubSizes);
BENCHMARK(OpenClub)->Apply(ClubSizes);

}  // namespace
}  // namespace tavi::bench

BENCHMARK_MAIN();
