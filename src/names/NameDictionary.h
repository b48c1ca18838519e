#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavi {

/// A dictionary of name families (see NameTables.h) that also recognises writings that it does not list, by ear and by
/// the slips of a typing hand. Not changed after it is made: any number of threads may ask it at once.
class NameDictionary {
 public:
  /// Brings a name to the plain capital letters in which names are compared.
  using Letters = std::string (*)(std::string_view name);

  /// Reads the rows of the tables, of which earlier ones are more common.
  NameDictionary(std::span<const std::span<const std::string_view>> tables, Letters letters);

  /// The head, in plain letters, of the family that lists a name; empty when none does.
  [[nodiscard]] std::string_view ListedHeadOf(std::string_view letters) const;

  /// The head of the family that lists a name, else of the family with the form that is most like it; empty when none
  /// is like enough, and for a single letter. Of forms equally like it a head is taken before others, then the more
  /// common one.
  [[nodiscard]] std::string_view HeadOf(std::string_view letters) const;

 private:
  struct Form {
    std::string letters;
    std::string sounds;
    std::uint32_t family = 0;
    bool isHead = false;
  };

  /// Forms filed under a hash of something that they have.
  class Index {
   public:
    void Add(std::uint32_t hash, std::size_t form);
    /// To be called once, after the last Add and before the first Find.
    void Sort();
    struct Entry {
      std::uint32_t hash = 0;
      std::uint32_t form = 0;
    };
    /// The entries with a hash, in the order of the forms.
    [[nodiscard]] std::span<const Entry> Find(std::uint32_t hash) const;

   private:
    std::vector<Entry> entries_;
    /// Where the entries begin whose hash has these upper bits.
    std::vector<std::uint32_t> starts_;
  };

  struct Nearest;

  void ReadFamily(std::string_view family, Letters letters);
  void FileForms();
  void CompareBySound(Nearest& nearest) const;
  void CompareBySlip(Nearest& nearest) const;
  void CompareBySlip(Nearest& nearest, std::uint32_t hash) const;

  std::vector<Form> forms_;
  std::vector<std::string> heads_;
  Index byLetters_;
  Index bySkeleton_;
  /// Under the hashes of the letters and of the letters without one of them: what is one slip away from a form shares
  /// one of them.
  Index bySlip_;
};

}  // namespace tavi
