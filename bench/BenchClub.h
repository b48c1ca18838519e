#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "platform/Platform.h"

namespace tavi::bench {

/// A club of a chosen size with ten years of weekly evenings of 30 pairs, in a temporary folder that goes with it.
/// Everything in it follows from the size: the same club every time.
class BenchClub {
 public:
  explicit BenchClub(int members);
  ~BenchClub();
  BenchClub(const BenchClub&) = delete;
  BenchClub& operator=(const BenchClub&) = delete;

  /// One club of each size for the whole run.
  static BenchClub& OfSize(int members);

  /// A component object on the club, the file held open.
  [[nodiscard]] std::unique_ptr<MembershipDatabase> Open() const;
  [[nodiscard]] int Members() const { return members_; }
  /// First and last name of a member (number 1 to Members()).
  [[nodiscard]] static std::string NameOf(int number);

 private:
  void Fill() const;

  int members_;
  std::filesystem::path folder_;
  std::shared_ptr<const Platform> platform_;
};

}  // namespace tavi::bench
