#pragma once

#include <string>

#include "data/Data.h"
#include "harness/Engines.h"

namespace tavi::bench {

/// What the component does with a club's file, done with SQLite as a careful program would: the same statements,
/// prepared once, and the same calculation with the default settings.
class SqliteClub {
 public:
  explicit SqliteClub(const std::string& path);

  /// Registers a competition that counts for handicaps, and returns its identifier.
  std::int64_t Register(const std::string& name, Date date);
  /// A result of a pair, with the handicaps that follow from it.
  void NoteResult(std::int64_t competition, std::int64_t player, std::int64_t partner, double percentage);
  void Award(std::int64_t competition, std::int64_t player, std::int64_t partner, double points);
  void EndUpdate(std::int64_t competition);

  struct Handicaps {
    double player = 0;
    double partner = 0;
    double pair = 0;
  };
  /// For a competition that is about to be scored; a date of 0 means all results. The partner -1 is nobody.
  Handicaps Calculate(std::int64_t player, std::int64_t partner, const std::string& competition, double date);
  void RecalculateAll();

  [[nodiscard]] SqliteFile& File() { return file_; }

 private:
  double Average(std::int64_t player, const std::string& competition, double date);
  void StoreMember(std::int64_t member, double handicap);
  void InsertAward(std::int64_t competition, std::int64_t member, double points);

  SqliteFile file_;
  SqliteStatement begin_;
  SqliteStatement commit_;
  SqliteStatement findCompetition_;
  SqliteStatement addCompetition_;
  SqliteStatement readCompetition_;
  SqliteStatement findPair_;
  SqliteStatement addResult_;
  SqliteStatement pairSeed_;
  SqliteStatement playerSeed_;
  SqliteStatement results_;
  SqliteStatement storePair_;
  SqliteStatement storeMember_;
  SqliteStatement clearAwards_;
  SqliteStatement addAward_;
  SqliteStatement dropAwards_;
};

}  // namespace tavi::bench
