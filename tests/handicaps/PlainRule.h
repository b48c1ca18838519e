#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavi::testing {

/// A small club as plain lists, and the rule of handicaps written down once more over it, as simply as can be: no
/// statements, no lists by key, nothing shared with the calculation that it judges.
struct PlainClub {
  struct Competition {
    int day = 0;
    std::string name;
    bool individual = false;
    bool counts = true;
  };
  struct Result {
    int competition = 0;  ///< index into competitions
    int player = -1;
    int partner = -1;
    double percentage = 0.0;
  };
  struct Seed {
    double percentage = 0.0;
    int day = 0;
  };
  struct Pair {
    int lower = 0;
    int higher = 0;
    bool active = true;
    std::optional<Seed> seed;
  };
  struct Settings {
    int weeks = 0;
    int results = 0;
    int weighting = 50;
    double multiplier = 1.0;
    double add = 0.0;
    double unknown = 50.0;
  };

  int today = 0;
  Settings settings;
  std::vector<Competition> competitions;
  std::vector<Result> results;
  std::vector<std::optional<Seed>> memberSeeds;  ///< of members 1, 2, ...
  std::vector<Pair> pairs;
};

/// The competition that is about to be scored; without a day: as of today, nothing left out.
struct PlainQuestion {
  int player = -1;
  int partner = -1;
  std::string name;
  std::optional<int> day;
  bool individual = false;
};

/// Handicaps before rounding.
struct PlainAnswer {
  double player1 = 0.0;
  double player2 = 0.0;
  double pair = 0.0;
};

PlainAnswer HandicapsByTheRule(const PlainClub& club, const PlainQuestion& question);

}  // namespace tavi::testing
