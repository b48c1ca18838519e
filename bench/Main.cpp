// bench: what a club's work and plain statements cost, side by side with SQLite in one run. docs/measurements.md says
// how to read what it prints.
//
//   --jobs PATTERN     only jobs in whose names the pattern is found (a regular expression without regard to case)
//   --size SIZE        small: a club of 300, 20,000 rows; county: 5,000 members with 500,000 results, 200,000 rows (as
//                      without the option); large: the county, 5,000,000 rows
//   --rounds N         how often each job is done by each side, in turns (5)
//   --growth           over four sizes, each twice the one before, up to SIZE
//   --data FOLDER      keeps the files there for the next run

#include <sys/utsname.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <regex>
#include <stdexcept>
#include <thread>

#include "harness/Report.h"
#include "jobs/Jobs.h"

namespace tavi::bench {
namespace {

struct Options {
  std::string jobs;
  Scale scale;
  int rounds = 5;
  bool growth = false;
  std::string data;
};

Scale ScaleOf(const std::string& name) {
  const ClubSize small{};
  const ClubSize county{5'000, 8'000, 5'000, 100};
  if (name == "small") return {small, 20'000};
  if (name == "county") return {county, 200'000};
  if (name == "large") return {county, 5'000'000};
  throw std::runtime_error("--size takes small, county or large.");
}

/// A scale so many times smaller.
Scale Part(const Scale& scale, int divisor) {
  const ClubSize& club = scale.club;
  return {{club.members / divisor, club.pairs / divisor, club.competitions / divisor, club.pairsAnEvening},
          scale.rows / divisor};
}

Options Read(int count, char** words) {
  Options options;
  options.scale = ScaleOf("county");
  for (int i = 1; i < count; ++i) {
    const std::string word = words[i];
    if (word == "--growth") {
      options.growth = true;
      continue;
    }
    if (i + 1 == count) throw std::runtime_error("What is " + word + "? See the head of bench/Main.cpp.");
    const std::string value = words[++i];
    if (word == "--jobs") {
      options.jobs = value;
    } else if (word == "--size") {
      options.scale = ScaleOf(value);
    } else if (word == "--rounds") {
      options.rounds = std::max(1, std::stoi(value));
    } else if (word == "--data") {
      options.data = value;
    } else {
      throw std::runtime_error("What is " + word + "? See the head of bench/Main.cpp.");
    }
  }
  return options;
}

Jobs JobsFor(Data& data, const Scale& scale, const std::string& pattern) {
  Jobs all;
  AddEveningJobs(all, data, scale);
  AddHandicapJobs(all, data, scale);
  AddKeyJobs(all, data, scale);
  AddScanJobs(all, data, scale);
  AddJoinJobs(all, data, scale);
  AddFileJobs(all, data, scale);
  const std::regex wanted(pattern, std::regex::icase);
  Jobs chosen;
  for (Job& job : all) {
    if (std::regex_search(job.name, wanted)) chosen.push_back(std::move(job));
  }
  if (chosen.empty()) throw std::runtime_error("No job's name has '" + pattern + "' in it.");
  return chosen;
}

void PrintMachine() {
  struct utsname system {};
  ::uname(&system);
  std::printf("%s %s, %u processors. Times: processor time of a round, median; calls by the wall clock.\n\n",
              system.sysname, system.machine, std::thread::hardware_concurrency());
}

std::vector<Measured> Run(const Jobs& jobs, int rounds) {
  std::vector<Measured> all;
  std::fputs(Heading().c_str(), stdout);
  for (const Job& job : jobs) {
    all.push_back(Measure(job, rounds));
    std::fputs(Row(all.back()).c_str(), stdout);
    std::fflush(stdout);
  }
  std::puts("");
  return all;
}

void Run(const Options& options) {
  Data data(options.data);
  PrintMachine();
  if (!options.growth) {
    Run(JobsFor(data, options.scale, options.jobs), options.rounds);
    return;
  }
  std::vector<double> sizes;
  std::vector<std::vector<Measured>> measured;
  for (const int divisor : {8, 4, 2, 1}) {
    const Scale scale = Part(options.scale, divisor);
    sizes.push_back(scale.rows);
    measured.push_back(Run(JobsFor(data, scale, options.jobs), options.rounds));
  }
  std::fputs(GrowthTable(sizes, measured).c_str(), stdout);
}

}  // namespace
}  // namespace tavi::bench

int main(int count, char** words) {
  try {
    tavi::bench::Run(tavi::bench::Read(count, words));
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "bench: " << error.what() << '\n';
    return 1;
  }
}
