#pragma once

#include <cstdint>
#include <string>

#include "platform/ado/Provider.h"

namespace tavi::access::test {

/// What many users do to one file at the same time, and the proof that none of it was lost or seen in part.
///
/// Counters has four rows; a user's round adds 1 to both numbers of one row in one UPDATE, or sets the mark of all rows
/// in one UPDATE, and inserts a row into Entries with its own number.

/// Makes the tables.
void MakeCounters(ado::Connection& connection);

/// Runs rounds on a file as the user of a number (from 0). Between the changes it looks: two numbers that must be equal
/// are equal, no number is smaller than it was before, all marks are the same, the own rows are all there. Raises
/// std::runtime_error that says which is not so, and whatever the provider raises.
void Count(const std::string& path, std::uint64_t rounds, int user);

/// What is there after users 0 to `users` - 1 have each run `rounds`: empty, or what is wrong.
[[nodiscard]] std::string CountersAfter(ado::Connection& connection, std::uint64_t rounds, int users);

/// Opens a file for Count; waits for locks for a minute.
[[nodiscard]] std::unique_ptr<ado::Connection> OpenCounters(const std::string& path);

}  // namespace tavi::access::test
