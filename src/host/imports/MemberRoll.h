#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "platform/Platform.h"
#include "store/cDatabase.h"

namespace tavi::host {

/// A name as far as it tells who somebody is.
struct PersonName {
  std::string first;
  std::string knownAs;
  std::string last;
};

/// How well a written name agrees with a stored one.
enum class NameAgreement {
  Fits,       ///< first name and surname may both be the same, spelt or shortened otherwise
  HalfFits,   ///< only one of the two may be the same
  OtherName,  ///< neither: clearly another name
};

/// Compares two names by spelling (accents, a slip of the pen, an initial, a part of a double name) and by sound. A
/// part that one of them lacks agrees with anything.
NameAgreement CompareNames(const PersonName& stored, const PersonName& written, const NameKeyService& keys);

/// Whether a whole name in one text may be that of a person, wherever the surname begins in it.
bool FitsWholeName(const PersonName& stored, const std::string& written, const NameKeyService& keys);

/// A member as the club's file has it, retired or not. The values are written as in MemberLine; the address has all its
/// lines, the town among them.
struct StoredMember {
  std::int32_t number = 0;
  std::map<std::string, std::string> values;

  [[nodiscard]] const std::string& Value(const std::string& field) const { return values.at(field); }
  /// First name and surname.
  [[nodiscard]] std::string Name() const;
  /// "7, Ann Lee", for messages.
  [[nodiscard]] std::string NumberAndName() const;
};

/// All members of a club who have a number, to find those that a file means.
class MemberRoll {
 public:
  /// Reads the members of the open file. Errors are the provider's.
  explicit MemberRoll(cDatabase& store);

  [[nodiscard]] const std::map<std::int32_t, StoredMember>& Members() const { return members_; }
  /// The member whose club number, else whose governing body's number it is; null when it is nobody's. `place` begins
  /// the messages. Raises InvalidArgument when the two are different members' numbers, or when several members bear the
  /// governing body's one.
  [[nodiscard]] const StoredMember* Find(const std::string& place, std::optional<std::int32_t> number,
                                         const std::string& nationalNumber) const;

 private:
  [[nodiscard]] const StoredMember* ByNationalNumber(const std::string& place, const std::string& nationalNumber) const;

  std::map<std::int32_t, StoredMember> members_;
};

}  // namespace tavi::host
