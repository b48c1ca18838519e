#pragma once

/// The names that the tests of one file give it, its log, and the log that was set aside.
namespace tavi::access::test {

inline constexpr char kPath[] = "club.mdb";
inline constexpr char kLog[] = "club.mdb.redo";
inline constexpr char kAside[] = "club.mdb.redo-setaside-1";

}  // namespace tavi::access::test
