#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "facade/MembershipDatabase.h"
#include "host/results/Event.h"
#include "names/MemberValues.h"

namespace tavi::host {

/// Who a person in a result file is.
struct ResolvedPlayer {
  std::int32_t number = kNoMember;  ///< kNoMember: not a member
  std::string name;                 ///< the member's own name, or the name as written
  std::string remark;               ///< how the person was recognised when that was not plain; empty otherwise
  bool byNumber = false;            ///< recognised as a member by the governing body's number
};

/// The club's members as a scoring program keeps them to recognise players by: filled once by walking the members
/// through the public class.
class MemberDirectory {
 public:
  /// Walks all members, retired ones included.
  explicit MemberDirectory(MembershipDatabase& database);

  /// Finds a player: by the governing body's number first, then by name (as written, by familiar name, with initials),
  /// then by the club number when the name agrees, then by a name that is one slip away or sounds alike, if there is
  /// just one such member. Everybody else is no member.
  [[nodiscard]] ResolvedPlayer Resolve(const EventPlayer& player);

 private:
  struct Member {
    std::int32_t number = 0;
    std::string shown;                  ///< first name and surname
    std::string surname;                ///< folded
    std::vector<std::string> writings;  ///< folded forms of the whole name
    std::string familiarWriting;        ///< folded familiar name and surname; empty without a familiar name
    std::string nationalNumber;         ///< without leading zeros
    bool retired = false;
  };

  void AddWritings(Member& member, const std::string& familiarForm);
  [[nodiscard]] const Member* ByNationalNumber(const std::string& number) const;
  [[nodiscard]] const Member* RetiredByNationalNumber(const std::string& number) const;
  [[nodiscard]] std::vector<const Member*> ByWriting(const std::string& folded) const;
  [[nodiscard]] const Member* ByClubNumber(const EventPlayer& player, const std::string& clean) const;
  [[nodiscard]] std::vector<const Member*> ByInitial(const std::string& clean) const;
  [[nodiscard]] std::vector<const Member*> BySlip(const std::string& folded) const;
  [[nodiscard]] std::vector<const Member*> BySound(const std::string& clean);
  [[nodiscard]] const Member* OneNear(const EventPlayer& player, const std::string& clean);
  [[nodiscard]] static bool NumberAllows(const Member& member, const EventPlayer& player);
  [[nodiscard]] bool NameFits(const Member& member, const std::string& clean);

  MembershipDatabase& database_;
  std::map<std::int32_t, Member> members_;
};

/// A name reduced to what scorers write alike: upper case, accents dropped, only letters and digits kept, Mac at the
/// beginning of a word as Mc. A "?" (which stands where a letter had no place in a file's character set) is kept.
std::string FoldName(const std::string& name);

/// A written name without what does not belong to it: titles in front, a figure or a remark in brackets behind, points
/// behind initials, typographic apostrophes as plain ones; "Surname, First" the usual way round.
std::string CleanWrittenName(const std::string& name);

/// True when two folded names are equal, "?" standing for any one letter.
bool FoldedEqual(const std::string& left, const std::string& right);

/// True when one slip (a letter lost, added, changed, or two neighbours exchanged) at most lies between two folded
/// names.
bool WithinOneSlip(const std::string& left, const std::string& right);

}  // namespace tavi::host
