#pragma once

#include <memory>
#include <mutex>
#include <string_view>

#include "names/NameTables.h"
#include "names/SlipIndex.h"

namespace tavi {

/// A dictionary of name families (see NameTables.h) that also recognises writings that it does not list, by ear and by
/// the slips of a typing hand. Making one costs nothing; the first name that it does not list makes the index of slips.
/// Any number of threads may ask it at once.
class NameDictionary {
 public:
  explicit NameDictionary(const NameTable& table) : table_(table) {}

  /// The head, in plain letters, of the family that lists a name; empty when none does.
  [[nodiscard]] std::string_view ListedHeadOf(std::string_view letters) const;

  /// The head of the family that lists a name, else of the family with the form that is most like it; empty when none
  /// is like enough, and for a single letter. Of forms equally like it a head is taken before others, then the more
  /// common one.
  [[nodiscard]] std::string_view HeadOf(std::string_view letters) const;

 private:
  struct Nearest;

  void CompareBySound(Nearest& nearest) const;
  void CompareBySlip(Nearest& nearest) const;

  NameTable table_;
  mutable std::once_flag slipsAreFiled_;
  mutable std::unique_ptr<const SlipIndex> bySlip_;
};

}  // namespace tavi
