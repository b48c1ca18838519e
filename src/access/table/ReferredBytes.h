#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <unordered_map>

#include "access/file/Page.h"

namespace tavi::access {

/// Bounds what reading the rows of a table takes. A long value, and the body of a row that was moved, lies apart from
/// its row and belongs to that row alone, so that all of them together are no longer than the file. Where a damaged
/// file has thousands of rows refer to one long value, reading them all would give thousands of times its bytes.
class ReferredBytes {
 public:
  /// A row and what of it lies elsewhere: a column's permanent number, or kBody.
  struct Reference {
    RowPointer row;
    std::uint16_t part = 0;
  };
  static constexpr std::uint16_t kBody = 0xFFFF;

  /// Notes that a reference leads to so many bytes; one that is known already is noted with its present length. False
  /// when all that are known, this one included, lead to more than twice `fileSize` bytes: twice, so that what is
  /// merely doubled can be read. Then this one is forgotten. `lengthNow` gives what a reference leads to by now, 0 when
  /// nothing: what was changed since is found out when it matters.
  [[nodiscard]] bool Note(Reference reference, std::size_t length, std::uint64_t fileSize,
                          const std::function<std::size_t(Reference)>& lengthNow);

 private:
  void Renew(const std::function<std::size_t(Reference)>& lengthNow);

  std::unordered_map<std::uint64_t, std::size_t> lengths_;
  std::uint64_t sum_ = 0;
  std::uint64_t notedSinceRenewal_ = 0;
  bool wasRenewed_ = false;
};

}  // namespace tavi::access
