#include "access/provider/support/Counters.h"

#include <array>
#include <stdexcept>

#include "access/provider/AccessProvider.h"
#include "access/provider/support/Evening.h"
#include "platform/ConnectionTo.h"

namespace tavi::access::test {

namespace {

constexpr int kRows = 4;
constexpr std::uint64_t kRoundsPerConnection = 25;

std::int32_t NumberOf(ado::Connection& connection, const std::string& select) {
  const auto rows = connection.OpenRecordset(select, ado::CursorType::ForwardOnly, ado::LockType::ReadOnly,
                                             ado::SourceKind::CommandText);
  return std::get<std::int32_t>(rows->Get("N"));
}

void Require(bool holds, const std::string& what) {
  if (!holds) throw std::runtime_error(what);
}

/// Looks at the tables again and again.
class Observer {
 public:
  void Look(ado::Connection& connection) {
    const auto rows = connection.OpenRecordset("Select ID, A, B From Counters Order By ID", ado::CursorType::Dynamic,
                                               ado::LockType::ReadOnly, ado::SourceKind::CommandText);
    for (std::size_t row = 0; row < kRows; ++row, rows->MoveNext()) {
      const auto first = std::get<std::int32_t>(rows->Get("A"));
      Require(std::get<std::int32_t>(rows->Get("B")) == first, "A and B of a row differ");
      Require(first >= seen_[row], "a counter has gone back");
      seen_[row] = first;
    }
    Require(NumberOf(connection, "Select Max(Mark) - Min(Mark) As N From Counters") == 0, "marks differ");
  }

 private:
  std::array<std::int32_t, kRows> seen_{};
};

}  // namespace

std::unique_ptr<ado::Connection> OpenCounters(const std::string& path) {
  ProviderOptions options;
  options.pager.lockTimeout = std::chrono::minutes(1);
  options.pager.checkpointBytes = std::uint64_t{1} << 20U;
  return MakeAccessProvider(NativeFileSystem(), std::make_shared<EveningClock>(), options)->Open(ConnectionTo(path));
}

void MakeCounters(ado::Connection& connection) {
  connection.Execute("Create Table Counters (ID Long Constraint K Primary Key, A Long, B Long, Mark Long)");
  connection.Execute("Create Table Entries (ID Counter Constraint K Primary Key, Who Long, Round Long)");
  connection.Execute("Create Index ByWho On Entries (Who, Round)");
  for (int row = 0; row < kRows; ++row) {
    connection.Execute("Insert Into Counters (ID, A, B, Mark) Values (" + std::to_string(row) + ", 0, 0, 0)");
  }
}

void Count(const std::string& path, std::uint64_t rounds, int user) {
  const std::string who = std::to_string(user);
  Observer observer;
  std::unique_ptr<ado::Connection> connection;
  for (std::uint64_t round = 0; round < rounds; ++round) {
    if (round % kRoundsPerConnection == 0) {
      if (connection) connection->Close();
      connection = OpenCounters(path);
    }
    connection->Execute("Update Counters Set A = A + 1, B = B + 1 Where ID = " +
                        std::to_string((static_cast<std::uint64_t>(user) + round) % kRows));
    connection->Execute("Update Counters Set Mark = " + std::to_string(round * 1000) + " + " + who);
    connection->Execute("Insert Into Entries (Who, Round) Values (" + who + ", " + std::to_string(round) + ")");
    observer.Look(*connection);
    Require(NumberOf(*connection, "Select Count(*) As N From Entries Where Who = " + who) ==
                static_cast<std::int32_t>(round + 1),
            "own rows are missing");
  }
  connection->Close();
}

std::string CountersAfter(ado::Connection& connection, std::uint64_t rounds, int users) {
  const auto total = static_cast<std::int32_t>(rounds * static_cast<std::uint64_t>(users));
  const std::int32_t sum = NumberOf(connection, "Select CLng(Sum(A)) As N From Counters");
  if (sum != total) return "the counters hold " + std::to_string(sum) + " instead of " + std::to_string(total);
  const std::int32_t entries = NumberOf(connection, "Select Count(*) As N From Entries");
  if (entries != total) return std::to_string(entries) + " rows instead of " + std::to_string(total);
  for (int user = 0; user < users; ++user) {
    const std::string select = "Select Count(*) As N From Entries Where Who = " + std::to_string(user);
    if (NumberOf(connection, select) != static_cast<std::int32_t>(rounds)) return "rows of a user are missing";
  }
  return {};
}

}  // namespace tavi::access::test
