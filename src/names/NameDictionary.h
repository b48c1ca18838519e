#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string_view>
#include <vector>

#include "names/NameTables.h"

namespace tavi {

/// Finds the forms of a table that may be one slip of a typing hand away from a name. They are filed under the hashes
/// of their letters, and of their letters without one of them: what is one slip away shares one of these.
class SlipIndex {
 public:
  /// Files all forms, which takes some milliseconds.
  explicit SlipIndex(const NameTable& table);

  /// Calls `visit` with the numbers of forms that share a hash with the name; some of them several times, and among
  /// them are forms that are quite unlike it.
  template <typename Visitor>
  void ForEachNear(std::string_view letters, const Visitor& visit) const {
    ForEachGap(letters, [&](std::uint32_t hash) {
      for (const Entry& entry : Find(hash)) visit(entry.form);
    });
  }

 private:
  struct Entry {
    std::uint32_t hash = 0;
    std::uint32_t form = 0;
  };

  static std::uint32_t HashOf(std::string_view text, std::uint32_t hash = 2166136261U) {
    for (const char character : text) hash = (hash ^ static_cast<unsigned char>(character)) * 16777619U;
    return hash;
  }
  /// Calls `visit` with the hash of the text and of the text without one of its letters, for each of them.
  template <typename Visitor>
  static void ForEachGap(std::string_view text, const Visitor& visit) {
    visit(HashOf(text));
    std::uint32_t before = HashOf({});
    for (std::size_t position = 0; position < text.size(); ++position) {
      // Without the first or the second of a double letter is the same.
      if (position == 0 || text[position] != text[position - 1]) visit(HashOf(text.substr(position + 1), before));
      before = HashOf(text.substr(position, 1), before);
    }
  }
  void Sort();
  /// The entries with a hash, in the order of the forms.
  [[nodiscard]] std::span<const Entry> Find(std::uint32_t hash) const;

  std::vector<Entry> entries_;
  /// Where the entries begin whose hash has these upper bits.
  std::vector<std::uint32_t> starts_;
};

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
