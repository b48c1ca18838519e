#pragma once

#include <cstddef>
#include <cstdint>

/// The bounds of statements. All of them end in an error with a description, never in a crash.
namespace tavi::access::sql {

/// Characters of a statement (Access's own limit).
inline constexpr std::size_t kMaximumStatementLength = 64000;
/// Levels of nesting, in brackets and sub-selects as well as in the tree that the parser makes: "1+2+3" has three. Long
/// chains of And and Or are no deeper than short ones. Walks of the tree may recurse.
inline constexpr std::uint16_t kMaximumDepth = 200;
/// Bytes of a text that an expression makes.
inline constexpr std::size_t kMaximumTextLength = std::size_t{16} * 1024 * 1024;

}  // namespace tavi::access::sql
