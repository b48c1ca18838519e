#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "store/cDatabase.h"

/// What the table Members keeps beside the names themselves, and what therefore goes stale when they change:
/// - UniquenessFlag: how much of a name tells a member from the other active ones, so that names are shown no longer
///   than they must be (cPlayerDetails::UniquenessFlag has the values);
/// - FuzzedFirstName and FuzzedLastName: the sound-alike keys. A search compares them with fresh ones, so that members
///   whose stored keys were made by another function are not found until their keys are made anew.
namespace tavi {

/// Writes the flag of every active member, or of those of one first name. Errors of the store pass on.
void SetNameUniquenessFlags(cDatabase& database, const std::string& FirstName);

/// What a file keeps beside the names themselves, to be brought up to date in a file that is new to the store: the
/// flags, whose errors pass on, and the sound-alike keys.
[[nodiscard]] std::vector<FirstOpenStep> NameSteps();

/// A member's names and their keys as the columns FirstName, LastName, FuzzedFirstName and FuzzedLastName hold them.
struct StoredNames {
  std::string firstName;
  std::string surname;
  std::string firstNameKey;
  std::string surnameKey;
  bool operator==(const StoredNames&) const = default;
};

/// The same names with the keys that `keys` gives for them; equal to `names` when these are current.
[[nodiscard]] StoredNames WithFreshKeys(StoredNames names, const NameKeyService& keys);

/// What a refresh of the keys did.
struct NameKeyRefresh {
  std::size_t refreshed = 0;    ///< members whose keys were stored
  std::size_t passedOver = 0;   ///< members whose keys could not be made or stored
  std::string firstPassedOver;  ///< the first of them and why; empty without any
};

/// Stores fresh keys in the store's open file where they differ; a file without such members is not written. A member
/// whose keys cannot be stored is passed over. Where the file itself takes no change (it is read-only, or three members
/// one after the other fail) the error passes on; the members before keep their new keys.
NameKeyRefresh RefreshNameKeys(cDatabase& database);

/// The same as a first open step: what cannot be written stays, because only the search by similar names suffers, and
/// the diagnostics log says so.
void RefreshStoredNameKeys(cDatabase& database) noexcept;

}  // namespace tavi
