#pragma once

#include <cstdint>
#include <span>

#include "access/index/EntryMask.h"
#include "access/index/IndexPage.h"

namespace tavi::access {

/// Lays entries out on an index page from the start, replacing those that are there. The caller knows that they fit.
class EntryWriter {
 public:
  /// Entries behind the first are stored without their first `prefix` bytes.
  EntryWriter(Page& page, std::size_t prefix) : page_(page), prefix_(prefix) {}

  /// Adds the complete bytes of a leaf's entry.
  void Add(std::span<const std::uint8_t> bytes);
  /// Adds the complete bytes of a node's entry and its child.
  void Add(std::span<const std::uint8_t> bytes, PageNumber child);
  /// Writes mask, prefix and free bytes. Without it the page is not valid.
  void Finish();

 private:
  void Append(std::span<const std::uint8_t> bytes);

  Page& page_;
  std::size_t prefix_;
  std::size_t end_ = 0;
  EntryMask mask_;
};

}  // namespace tavi::access
