#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/values/Date.h"

namespace tavi::bench {

/// How large a club is. Ten years of evenings.
struct ClubSize {
  int members = 300;
  int pairs = 200;  ///< regular partnerships
  int competitions = 500;
  int pairsAnEvening = 30;

  [[nodiscard]] std::string Name() const { return "club-" + std::to_string(members); }
};

/// A club as plain arrays. Everything follows from its size: the same club every time.
struct Club {
  struct Pair {
    int lower = 0;
    int higher = 0;
  };
  struct Result {
    int competition = 0;
    int player = 0;
    int partner = 0;
    double percentage = 0;
  };

  explicit Club(const ClubSize& size);

  /// First and last name of a member (from 1).
  [[nodiscard]] static std::string FirstName(int member);
  [[nodiscard]] static std::string LastName(int member);
  /// Of a competition (from 1).
  [[nodiscard]] Date DateOf(int competition) const;

  ClubSize size;
  std::vector<Pair> pairs;
  std::vector<Result> results;
};

/// The day on which the bench takes place, behind all competitions.
Date Today();

/// An Access file and a SQLite file with the same tables, rows and indexes.
struct FilePair {
  std::filesystem::path ours;
  std::filesystem::path sqlite;
};

/// The files that jobs need, made when they are first asked for. Those of a club are ClubMembers.mdb in a folder of
/// their own.
class Data {
 public:
  /// Keeps them in `folder`, where they are found again by the next run; in a temporary one, which goes with this
  /// object, when it is empty.
  explicit Data(const std::filesystem::path& folder);
  ~Data();
  Data(const Data&) = delete;
  Data& operator=(const Data&) = delete;

  /// A club's file, opened once so that its layout, flags and keys are as an opening leaves them.
  FilePair ClubFiles(const ClubSize& size);
  /// The tables Items (`rows` rows, with a number key and indexes on a number and a date) and Sales (a third, with
  /// only the key).
  FilePair Plain(int rows);
  /// Fresh copies, to be changed, instead of the last ones.
  FilePair Copy(const FilePair& files);
  [[nodiscard]] const std::filesystem::path& Folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
  bool isTemporary_;
};

}  // namespace tavi::bench
